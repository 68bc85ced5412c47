#include "vek/bus/cgdEmpresasOnibus.h"

namespace vek {

void cgdEmpresasOnibus::CarregarMSFlexGridDeBusca(FlexGrid& Ob_MSFlexGrid, TextControl& ObQt_Registros,
                                                  const std::string& Ds_Condicao) {
  Run("CarregarMSFlexGridDeBusca", [&] {
    SqlLines sql;
    sql << "SELECT   A.Cd_EmpresaOnibus,"
        << "B.Nm_Pessoa,"
        << "A.Nm_EmpresaOnibus"
        << "FROM     TbEmpresaOnibus A"
        << "Join TbPessoa B on A.Cd_EmpresaOnibus = B.Cd_Pessoa";
    AddFilter(sql, Ds_Condicao);
    sql << "ORDER BY A.Nm_EmpresaOnibus"
        << ";";
    ds_sql_ = sql;
    FillSearchGrid(Ob_MSFlexGrid, ObQt_Registros);
  });
}

}  // namespace vek
