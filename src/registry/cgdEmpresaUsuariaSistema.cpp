#include "vek/registry/cgdEmpresaUsuariaSistema.h"

namespace vek {

std::string cgdEmpresaUsuariaSistema::ConsultarStatement() {
  return SqlLines() << "SELECT A.*,"
                    << "       B.Qt_MinutosMaximoSaidaAposPagamento"
                    << "FROM   TbEmpresaUsuariaSistema A"
                    << "       LEFT JOIN TbParametrosMadis B ON B.Cd_EmpresaUsuariaSistema = A.Cd_EmpresaUsuariaSistema"
                    << "WHERE  A.Cd_EmpresaUsuariaSistema = " + KeyLiteral("Cd_EmpresaUsuariaSistema");
}

void cgdEmpresaUsuariaSistema::CarregarComboBox(ComboBox& Ob_ComboBox, const std::string& /*Ds_Condicao*/) {
  Run("CarregarComboBox", [&] {
    ds_sql_ = SqlLines() << "SELECT   Tbempresausuariasistema.Cd_EmpresaUsuariaSistema,"
                         << "         TbPessoa.Nm_Pessoa"
                         << "FROM     TbEmpresaUsuariaSistema"
                         << "         Inner Join TbPessoa On TbEmpresaUsuariaSistema.Cd_Pessoa = TbPessoa.Cd_Pessoa"
                         << "ORDER BY TbPessoa.Nm_Pessoa";
    FillComboBox(Ob_ComboBox, {.caption = {},
                               .text_column = "Nm_Pessoa",
                               .code_column = "Cd_EmpresaUsuariaSistema",
                               .choose_entry = false,
                               .progress = false});
  });
}

}  // namespace vek
