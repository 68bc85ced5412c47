#include "vek/parking/cgdConvenioEstacionamento.h"

#include "vek/db/Recordset.h"
#include "vek/platform/Format.h"

namespace vek {

std::string cgdConvenioEstacionamento::InUseFilter() {
  return SqlLines() << "From   TbTicketEstacionamento"
                    << "WHERE  TbTicketEstacionamento.Cd_EmpresaUsuariaSistema = " +
                           KeyLiteral("Cd_EmpresaUsuariaSistema")
                    << "       And TbTicketEstacionamento.Cd_ClienteConvenio = " + KeyLiteral("Cd_ClienteConvenio")
                    << "       And TbTicketEstacionamento.No_situacao = 1"
                    << "       And TbTicketEstacionamento.Ic_Mensalista = 0";
}

uint8_t cgdConvenioEstacionamento::VagasUtilizadas() {
  return Run("VagasUtilizadas", [&] {
    ds_sql_ = "SELECT Count(*) As Qt_TotalVagasUtilizadas\r" + InUseFilter();
    return CByte(FirstValue());
  });
}

std::shared_ptr<Recordset> cgdConvenioEstacionamento::rsVagasUtilizadas() {
  return Run("rsVagasUtilizadas", [&] {
    ds_sql_ = "SELECT TbTicketEstacionamento.*\r" + InUseFilter();
    return OpenReport();
  });
}

std::shared_ptr<Recordset> cgdConvenioEstacionamento::rsVagasUtilizadasEmDeterminadoHorario(Date Hr_Referencia) {
  return Run("rsVagasUtilizadasEmDeterminadoHorario", [&] {
    ds_sql_ = SqlLines() << "SELECT TbTicketEstacionamento.*"
                         << "From   TbTicketEstacionamento"
                         << "WHERE  TbTicketEstacionamento.Cd_EmpresaUsuariaSistema = " +
                                KeyLiteral("Cd_EmpresaUsuariaSistema")
                         << "       And TbTicketEstacionamento.Cd_ClienteConvenio = " + KeyLiteral("Cd_ClienteConvenio")
                         << "       And (TbTicketEstacionamento.Dt_Saida > '" +
                                Format(Variant(Hr_Referencia), "dd/mm/yyyy hh:Nn:ss") + "'"
                         << "            Or TbTicketEstacionamento.Dt_Saida  IS NULL)";
    return OpenReport();
  });
}

int32_t cgdConvenioEstacionamento::VagasDisponiveis(Date Hr_Referencia, int32_t Cd_TicketEstacionamento) {
  return Run("VagasDisponiveis", [&] {
    ds_sql_ =
        SqlLines()
        << "SELECT TbConvenioEstacionamento.Qt_Vagas -"
        << "       (SELECT Count(1)"
        << "        FROM   TbTicketEstacionamento"
        << "        WHERE  TbTicketEstacionamento.Cd_EmpresaUsuariaSistema = "
           "TbConvenioEstacionamento.Cd_EmpresaUsuariaSistema"
        << "               And TbTicketEstacionamento.Cd_ClienteConvenio = TbConvenioEstacionamento.Cd_ClienteConvenio"
        << "               And TbTicketEstacionamento.Cd_TicketEstacionamento <> " +
               std::to_string(Cd_TicketEstacionamento)
        << "               And (TbTicketEstacionamento.Dt_Saida > '" +
               Format(Variant(Hr_Referencia), "dd/mm/yyyy hh:Nn:ss") + "'"
        << "                    Or TbTicketEstacionamento.Dt_Saida  IS NULL)) As Qt_VagasDisponiveis"
        << "FROM   TbConvenioEstacionamento"
        << "WHERE  TbConvenioEstacionamento.Cd_EmpresaUsuariaSistema = " + KeyLiteral("Cd_EmpresaUsuariaSistema")
        << "       And TbConvenioEstacionamento.Cd_ClienteConvenio = " + KeyLiteral("Cd_ClienteConvenio");
    const Variant free = FirstValue();
    return free.IsEmpty() || free.IsNull() ? 0 : CLng(free);
  });
}

void cgdConvenioEstacionamento::CarregarMSFlexGridDeBusca(FlexGrid& Ob_MSFlexGrid, TextControl& ObQt_Registros,
                                                          const std::string& Ds_Condicao) {
  Run("CarregarMSFlexGridDeBusca", [&] {
    SqlLines sql;
    sql << "SELECT   A.Cd_ClienteConvenio,"
        << "         B.Nm_Pessoa"
        << "FROM     TbConvenioEstacionamento A"
        << "         Join TbPessoa B on A.Cd_ClienteConvenio = B.Cd_Pessoa";
    AddFilter(sql, Ds_Condicao);
    sql << "ORDER BY B.Nm_Pessoa"
        << ";";
    ds_sql_ = sql;
    FillSearchGrid(Ob_MSFlexGrid, ObQt_Registros, {{"Cd_ClienteConvenio", "###,###,##0"}, {"Nm_Pessoa"}});
  });
}

void cgdConvenioEstacionamento::CarregarComboBox(ComboBox& Ob_ComboBox, const std::string& Ds_Condicao) {
  Run("CarregarComboBox", [&] {
    SqlLines sql;
    sql << "SELECT   A.Cd_ClienteConvenio,"
        << "         B.Nm_Pessoa"
        << "FROM     TbConvenioEstacionamento A"
        << "         Inner Join TbPessoa B on A.Cd_ClienteConvenio = B.Cd_Pessoa"
        << "WHERE    A.Cd_EmpresaUsuariaSistema = " + KeyLiteral("Cd_EmpresaUsuariaSistema");
    AddFilter(sql, Ds_Condicao, "         And ");
    sql << "ORDER BY B.Nm_Pessoa";
    ds_sql_ = sql;
    FillComboBox(Ob_ComboBox, {.caption = "Carregando os convênios",
                               .text_column = "Nm_Pessoa",
                               .code_column = "Cd_ClienteConvenio",
                               .empty_message = "Não existe nenhuma cor cadastrada"});
  });
}

}  // namespace vek
