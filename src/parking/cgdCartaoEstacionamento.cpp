#include "vek/parking/cgdCartaoEstacionamento.h"

namespace vek {

std::string cgdCartaoEstacionamento::SelectStatement() {
  return SqlLines() << "SELECT A.*"
                    << "FROM   TbCartaoEstacionamento A"
                    << "WHERE  A.Cd_EmpresaUsuariaSistema = " + KeyLiteral("Cd_EmpresaUsuariaSistema")
                    << "       And Cd_CartaoEstacionamento = '" + KeyLiteral("Cd_CartaoEstacionamento") + "'"
                    << ";";
}

void cgdCartaoEstacionamento::CarregarComboBox(ComboBox& Ob_ComboBox, const std::string& /*Ds_Condicao*/) {
  Run("CarregarComboBox", [&] {
    ds_sql_ = SqlLines() << "SELECT   *"
                         << "FROM     TbCartaoEstacionamento"
                         << "WHERE    Cd_EmpresaUsuariaSistema = " + KeyLiteral("Cd_EmpresaUsuariaSistema")
                         << "ORDER BY Nm_CartaoEstacionamentoo";
    FillComboBox(Ob_ComboBox, {.caption = "Carregando os cartões",
                               .text_column = "Nm_CartaoEstacionamentoo",
                               .code_column = "Cd_CartaoEstacionamento",
                               .empty_message = "Não existe nenhuma cor cadastrada"});
  });
}

void cgdCartaoEstacionamento::CarregarMSFlexGridDeBusca(FlexGrid& Ob_MSFlexGrid, TextControl& ObQt_Registros,
                                                        const std::string& /*Ds_Condicao*/) {
  Run("CarregarMSFlexGridDeBusca", [&] {
    ds_sql_ = SqlLines() << "SELECT   TbCartaoEstacionamento.Cd_CartaoEstacionamento,"
                         << "         TbCartaoEstacionamento.Ds_IdentificacaoCartao,"
                         << "         TbPessoa.Nm_Pessoa,"
                         << "         TbCartaoEstacionamento.Nm_Portador"
                         << "From     TbCartaoEstacionamento"
                         << "         INNER JOIN TbPessoa ON TbPessoa.Cd_Pessoa = "
                            "TbCartaoEstacionamento.Cd_ClienteEstacionamento"
                         << "Where    TbCartaoEstacionamento.Cd_EmpresaUsuariaSistema = " +
                                KeyLiteral("Cd_EmpresaUsuariaSistema")
                         << "ORDER BY TbPessoa.Nm_Pessoa,"
                         << "         TbCartaoEstacionamento.Nm_Portador";
    FillSearchGrid(Ob_MSFlexGrid, ObQt_Registros);
  });
}

void cgdCartaoEstacionamento::AtualizarClienteCartaoMadis(std::string& Ds_Aviso) {
  Run("AtualizarClienteCartaoMadis", [&] {
    RunAccessControlProcedure("CartaoEstacionamento_AtualizarClienteCartaoMadis", "Cd_CartaoEstacionamento",
                              Ds_Aviso);
  });
}

void cgdCartaoEstacionamento::ExcluirClienteCartaoMadis(std::string& Ds_Aviso) {
  Run("ExcluirClienteCartaoMadis", [&] {
    RunAccessControlProcedure("CartaoEstacionamento_ExcluirClienteCartaoMadis", "Cd_CartaoEstacionamento",
                              Ds_Aviso);
  });
}

}  // namespace vek
