#include "vek/parking/cgdVeiculos.h"

namespace vek {

void cgdVeiculos::CarregarMSFlexGridDeBusca(FlexGrid& Ob_MSFlexGrid, TextControl& ObQt_Registros,
                                            const std::string& Ds_Condicao) {
  Run("CarregarMSFlexGridDeBusca", [&] {
    SqlLines sql;
    sql << "SELECT   A.Cd_Placa,"
        << "         A.No_Frota,"
        << "         A.Cd_EmpresaOnibus,"
        << "         C.Nm_Pessoa"
        << "FROM     TbVeiculo A"
        << "         Join TbEmpresaOnibus B On A.Cd_EmpresaOnibus = B.Cd_Pessoa"
        << "         Join TbPessoa C On B.Cd_Pessoa = C.Cd_Pessoa";
    AddFilter(sql, Ds_Condicao);
    sql << "ORDER BY C.Nm_Pessoa,"
        << "         A.Cd_Placa"
        << ";";
    ds_sql_ = sql;
    FillSearchGrid(Ob_MSFlexGrid, ObQt_Registros,
                   {{"No_Frota"}, {"Cd_Placa"}, {"Cd_EmpresaOnibus"}, {"Nm_Pessoa"}});
  });
}

}  // namespace vek
