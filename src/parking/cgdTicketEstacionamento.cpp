#include "vek/parking/cgdTicketEstacionamento.h"

#include "vek/db/Recordset.h"
#include "vek/foundation/SqlLiterals.h"
#include "vek/platform/Text.h"

namespace vek {
namespace {

// Dates before this are no exit at all (the empty date among them).
const Date kFirstExit = DateSerial(2000, 1, 1);

}  // namespace

bool cgdTicketEstacionamento::LookupKeyMissing() {
  if (CLng(Ob_cgp()->Get("Cd_TicketEstacionamento")) != 0) return false;
  return CLng(Ob_cgp()->Get("Cd_EmpresaUsuariaSistema")) == 0 || CStr(Ob_cgp()->Get("Ds_Ticket")).empty();
}

std::string cgdTicketEstacionamento::ConsultarStatement() {
  if (CLng(Ob_cgp()->Get("Cd_TicketEstacionamento")) != 0) return SelectByKey(true);
  const std::string code = CStr(Ob_cgp()->Get("Ds_Ticket"));
  RequireNoApostrophe("Ds_Ticket", code);
  return SqlLines() << "SELECT TbTicketEstacionamento.*"
                    << "FROM   TbTicketEstacionamento"
                    << "WHERE  TbTicketEstacionamento.Cd_EmpresaUsuariaSistema = " +
                           KeyLiteral("Cd_EmpresaUsuariaSistema")
                    << "       And TbTicketEstacionamento.Ds_Ticket = '" + code + "'"
                    << (CBool(Ob_cgp()->Get("Ic_TicketRevalidado")) ? "       And Ic_TicketRevalidado <> 0"
                                                                     : "       And Ic_TicketRevalidado = 0");
}

void cgdTicketEstacionamento::ExcluirTarifas() {
  Run("ExcluirTarifas", [&] {
    ds_sql_ = SqlLines() << "DELETE "
                         << "FROM   TbTicketEstacionamento_TbTarifa"
                         << "WHERE  Cd_EmpresaUsuariaSistema = " + KeyLiteral("Cd_EmpresaUsuariaSistema")
                         << "       And Cd_TicketEstacionamento = " + KeyLiteral("Cd_TicketEstacionamento");
    ExecuteStatement();
  });
}

std::shared_ptr<cgpTicketEstacionamento> cgdTicketEstacionamento::Consultar(
    bool Ic_RestaurarDefaulSeNaoEcontrarRegistro) {
  return cgdRecord::Consultar(Ic_RestaurarDefaulSeNaoEcontrarRegistro);
}

std::string cgdTicketEstacionamento::PendingByPlateStatement() {
  return SqlLines() << "SELECT A.*"
                    << "FROM   TbTicketEstacionamento A"
                    << "WHERE  A.Cd_EmpresaUsuariaSistema = " + KeyLiteral("Cd_EmpresaUsuariaSistema")
                    << "       And A.Cd_Placa = " + KeyLiteral("Cd_Placa", true)
                    << "       And A.No_Situacao = 1"
                    << ";";
}

std::shared_ptr<cgpTicketEstacionamento> cgdTicketEstacionamento::ConsultarTicketPendentePorPlaca(
    bool Ic_RestaurarDefaulSeNaoEcontrarRegistro) {
  return Run("ConsultarTicketPendentePorPlaca", [&] {
    ds_sql_ = PendingByPlateStatement();
    LoadFirstRow(Ic_RestaurarDefaulSeNaoEcontrarRegistro, "ConsultarTicketPendentePorPlaca");
    return Ob_cgp();
  });
}

bool cgdTicketEstacionamento::ExisteEntradaPendente() {
  return Run("ExisteEntradaPendente", [&] {
    ds_sql_ = PendingByPlateStatement();
    return StatementHasRows();
  });
}

bool cgdTicketEstacionamento::ConsultarTicketPendentePorCartao() {
  return Run("ConsultarTicketPendentePorCartao", [&] {
    ds_sql_ = SqlLines() << "SELECT TOP 1"
                         << "         TbTicketEstacionamento.*"
                         << "FROM     TbTicketEstacionamento"
                         << "WHERE    TbTicketEstacionamento.Cd_EmpresaUsuariaSistema = " +
                                KeyLiteral("Cd_EmpresaUsuariaSistema")
                         << "         And TbTicketEstacionamento.Cd_CartaoEstacionamento = " +
                                KeyLiteral("Cd_CartaoEstacionamento", false)
                         << "         And TbTicketEstacionamento.No_Situacao = 1"
                         << "ORDER BY TbTicketEstacionamento.Dt_Entrada Desc;";
    // Ob_cgp stays as it was when the card has no pending entry.
    if (!StatementHasRows()) return false;
    return LoadFirstRow(false, "ConsultarTicketPendentePorCartao");
  });
}

bool cgdTicketEstacionamento::Existe() {
  return Run("Existe", [&] {
    if (LookupKeyMissing()) RaiseError(kErrorNoKey, RuntimeTypeName(*this), "Existe");
    ds_sql_ = ConsultarStatement();
    return StatementHasRows();
  });
}

std::shared_ptr<Recordset> cgdTicketEstacionamento::rsTarifas() {
  return Run("rsTarifas", [&] {
    ds_sql_ = SqlLines() << "SELECT   B.Ds_Tarifa,"
                         << "         A.Qt_Unidade,"
                         << "         A.Vl_Tarifa,"
                         << "         A.Qt_Unidade * A.Vl_Tarifa as Vl_Total"
                         << "FROM     TbTicketEstacionamento_TbTarifa A"
                         << "         INNER JOIN TbTarifa B On A.Cd_EmpresaUsuariaSistema = B.Cd_EmpresaUsuariaSistema"
                         << "                    And A.Cd_Tarifa = b.Cd_Tarifa"
                         << "WHERE    A.Cd_EmpresaUsuariaSistema = " + KeyLiteral("Cd_EmpresaUsuariaSistema")
                         << "         And A.Cd_TicketEstacionamento = " + KeyLiteral("Cd_TicketEstacionamento")
                         << "ORDER BY A.Vl_Tarifa Desc";
    return OpenReport();
  });
}

std::string cgdTicketEstacionamento::InsertStatement() {
  static const std::vector<std::string> kColumns = {
      "Cd_Placa",           "Cd_TicketEstacionamento", "No_Situacao",      "Vl_Tarifa",
      "Qt_TempoPermanenciaMinutos", "Dt_Saida",        "Dt_Entrada",       "Cd_EmpresaUsuariaSistema",
      "Cd_ClienteEstacionamento",   "Cd_Caixa",        "Ic_Mensalista",    "Cd_ClienteConvenio",
      "Ds_Ticket",          "Cd_CartaoEstacionamento", "Ic_TicketRevalidado"};
  std::vector<std::string> values;
  values.reserve(kColumns.size());
  for (const std::string& column : kColumns) {
    if (column == "Dt_Saida" && CDate(Ob_cgp()->Get(column)) < kFirstExit) {
      values.emplace_back("NULL");
    } else {
      values.push_back(ValueLiteral(column));
    }
  }
  return InsertLines(kColumns, values);
}

void cgdTicketEstacionamento::AdjustUpdatedRow(Recordset& row) {
  if (CStr(Ob_cgp()->Get("Ds_Ticket")).empty()) row.Fields().Item("Ds_Ticket").Value(Variant::Null());
  if (CDate(Ob_cgp()->Get("Dt_Saida")) < kFirstExit) row.Fields().Item("Dt_Saida").Value(Variant::Null());
}

int32_t cgdTicketEstacionamento::ObterMinutosPermitidoPorCadaDia() {
  return Run("ObterMinutosPermitidoPorCadaDia", [&] {
    ds_sql_ =
        SqlLines()
        << "SELECT (IsNull(TbPrecoEstacionamentoMensalista.Qt_HorasPermanencia,24) * 60) As Qt_MinutosPermitidoDia"
        << "From   TbTicketEstacionamento"
        << "       INNER JOIN TbClienteEstacionamento ON TbClienteEstacionamento.Cd_EmpresaUsuariaSistema = "
           "TbTicketEstacionamento.Cd_EmpresaUsuariaSistema"
        << "                  And TbTicketEstacionamento.Cd_ClienteEstacionamento = "
           "TbClienteEstacionamento.Cd_ClienteEstacionamento"
        << "       LEFT  JOIN TbPrecoEstacionamentoMensalista ON "
           "TbPrecoEstacionamentoMensalista.Cd_EmpresaUsuariaSistema = TbClienteEstacionamento.Cd_EmpresaUsuariaSistema"
        << "                  And TbPrecoEstacionamentoMensalista.Cd_Tarifa = TbClienteEstacionamento.Cd_Tarifa"
        << "Where  TbTicketEstacionamento.Cd_EmpresaUsuariaSistema = " + KeyLiteral("Cd_EmpresaUsuariaSistema")
        << "       And TbTicketEstacionamento.Cd_TicketEstacionamento = " + KeyLiteral("Cd_TicketEstacionamento");
    const Variant minutes = FirstValue();
    return minutes.IsEmpty() || minutes.IsNull() ? 0 : CLng(minutes);
  });
}

int32_t cgdTicketEstacionamento::ObterMinutosPermanenciaoOutrosTickets() {
  return Run("ObterMinutosPermanenciaoOutrosTickets", [&] {
    ds_sql_ = SqlLines()
              << "SELECT Sum(IsNull(DATEDIFF(N,TbTicketEstacionamento.Dt_Entrada,TbTicketEstacionamento.Dt_Saida),0)) "
                 "As Qt_MinutosPermanenciaoOutrosTickets"
              << "From   TbTicketEstacionamento"
              << "Where  TbTicketEstacionamento.Cd_EmpresaUsuariaSistema = " + KeyLiteral("Cd_EmpresaUsuariaSistema")
              << "       And TbTicketEstacionamento.Cd_ClienteEstacionamento = " +
                     KeyLiteral("Cd_ClienteEstacionamento", false)
              << "       And TbTicketEstacionamento.Ic_Mensalista = 1"
              << "       And TbTicketEstacionamento.No_Situacao = 2"
              << "       And TbTicketEstacionamento.Dt_Entrada >= " +
                     DateSemHoraToSql(CDate(Ob_cgp()->Get("Dt_Entrada")), *Ob_cgpSistema());
    const Variant minutes = FirstValue();
    return minutes.IsEmpty() || minutes.IsNull() ? 0 : CLng(minutes);
  });
}

void cgdTicketEstacionamento::LiberarTicketMadis(std::string& Ds_Aviso) {
  Run("LiberarTicketMadis", [&] {
    RunAccessControlProcedure("TicketEstacionamento_LiberarTicketMadis", "Cd_TicketEstacionamento", Ds_Aviso);
  });
}

void cgdTicketEstacionamento::AssociarLogMadisAoTicket(int32_t IDEMPRESA, int32_t IDLOGPERMANENCIA) {
  Run("AssociarLogMadisAoTicket", [&] {
    ds_sql_ = SqlLines() << "UPDATE MDESTACIONAMENTO.dbo.LOGPERMANENCIAMENSALISTA"
                         << "SET    Cd_TicketEstacionamento = " + KeyLiteral("Cd_TicketEstacionamento")
                         << "WHERE  IDEMPRESA = " + std::to_string(IDEMPRESA)
                         << "       And IDLOGPERMANENCIA = " + std::to_string(IDLOGPERMANENCIA);
    ExecuteStatement();
  });
}

void cgdTicketEstacionamento::RegistrarSaidaDasEntradasAnterioresDessaCartao(int32_t /*IDEMPRESA*/,
                                                                            int32_t IDCARTAO) {
  Run("RegistrarSaidaDasEntradasAnterioresDessaCartao", [&] {
    ds_sql_ = SqlLines() << "UPDATE TbTicketEstacionamento"
                         << "SET    No_Situacao = 2,"
                         << "       Dt_Saida = Dt_Entrada,"
                         << "       Vl_Tarifa = 0,"
                         << "       Qt_TempoPermanenciaMinutos = 0"
                         << "WHERE  Cd_CartaoEstacionamento = " + std::to_string(IDCARTAO)
                         << "       And No_Situacao = 1";
    ExecuteStatement();
  });
}

bool cgdTicketEstacionamento::GateLogHasRows(std::string_view member, const std::string& Ds_Ticket,
                                             std::string_view table, std::string_view event_line) {
  return Run(member, [&] {
    if (Len(Ds_Ticket) <= 13) {
      throw VekError(kBusinessError, std::string(),
                     "Erro na consulta se houve saída da Madis, foi informado ticket " + Ds_Ticket +
                         " (deve ser de no mínimo 13 números)");
    }
    const std::string code = Left(Ds_Ticket, 13);
    RequireNoApostrophe("Ds_Ticket", code);
    SqlLines sql;
    sql << "SELECT *"
        << "FROM   MDESTACIONAMENTO.dbo." + std::string(table) << "WHERE  CODIGOCARTAO = '" + code + "'";
    if (!event_line.empty()) sql << event_line;
    ds_sql_ = sql;
    return StatementHasRows();
  });
}

bool cgdTicketEstacionamento::HouveEntradaTicketMadis(const std::string& Ds_Ticket) {
  return GateLogHasRows("HouveEntradaTicketMadis", Ds_Ticket, "LOGCARTOESAVULSOS", "       And EVENTO = 1");
}

bool cgdTicketEstacionamento::HouveSaidaTicketMadis(const std::string& Ds_Ticket) {
  return GateLogHasRows("HouveSaidaTicketMadis", Ds_Ticket, "LOGCARTOESAVULSOS", "       And EVENTO = 2");
}

bool cgdTicketEstacionamento::EstaBloqueadoTicketMadis(const std::string& Ds_Ticket) {
  return GateLogHasRows("EstaBloqueadoTicketMadis", Ds_Ticket, "CARTOESAVULSOSBLOQUEADOS", "");
}

}  // namespace vek
