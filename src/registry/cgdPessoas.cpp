#include "vek/registry/cgdPessoas.h"

namespace vek {

void cgdPessoas::CarregarMSFlexGridDeBusca(FlexGrid& Ob_MSFlexGrid, TextControl& ObQt_Registros,
                                           const std::string& Ds_Condicao) {
  Run("CarregarMSFlexGridDeBusca", [&] {
    SqlLines sql;
    sql << "SELECT   A.Cd_Pessoa,"
        << "         A.Nm_Pessoa,"
        << "         B.No_CPF,"
        << "         C.No_CNPJ"
        << "FROM     TbPessoa A"
        << "         Left Join TbPessoaFisica B On A.Cd_Pessoa = B.Cd_Pessoa"
        << "         Left Join TbPessoaJuridica C On A.Cd_Pessoa = C.Cd_Pessoa";
    AddFilter(sql, Ds_Condicao);
    sql << "ORDER BY A.Nm_Pessoa,"
        << "         A.Cd_Pessoa"
        << ";";
    ds_sql_ = sql;
    FillSearchGrid(Ob_MSFlexGrid, ObQt_Registros);
  });
}

}  // namespace vek
