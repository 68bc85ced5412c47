#include "vek/parking/cgdTicketEstacionamento.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "parking/ParkingData.h"
#include "vek/foundation/MessageCatalogue.h"
#include "vek/parking/cgdTicketEstacionamento_Tarifa.h"

namespace vek {
namespace {

using testing::CountOf;
using testing::ErrorOf;
using testing::Lines;

std::string KeySelect(int32_t company, int32_t ticket) {
  return Lines({"SELECT A.*", "FROM   TbTicketEstacionamento A",
                "WHERE  A.Cd_EmpresaUsuariaSistema = " + std::to_string(company),
                "       And A.Cd_TicketEstacionamento = " + std::to_string(ticket), ";"}) +
         "\r";
}

std::string PendingByPlate(const std::string& plate) {
  return Lines({"SELECT A.*", "FROM   TbTicketEstacionamento A", "WHERE  A.Cd_EmpresaUsuariaSistema = 1",
                "       And A.Cd_Placa = '" + plate + "'", "       And A.No_Situacao = 1", ";"}) +
         "\r";
}

const std::string kGateMessage = "Erro na consulta se houve saída da Madis, foi informado ticket ";

class cgdTicketEstacionamentoTest : public ::testing::Test {
 protected:
  cgdTicketEstacionamentoTest() {
    ticket.Ob_cgpSistema(db.session);
    testing::AddTariff(db, 21, "ATE 15 MIN", "3.5");
    testing::AddTariff(db, 22, "ATE 1 HORA", "8");
  }

  std::shared_ptr<cgpTicketEstacionamento> Fresh(int32_t company = 1) {
    auto record = std::make_shared<cgpTicketEstacionamento>();
    record->Let("Cd_EmpresaUsuariaSistema", Variant(company));
    ticket.Ob_cgp(record);
    return record;
  }

  Variant Stored(int32_t number, const std::string& column) {
    return db.Query("SELECT " + column + " FROM TbTicketEstacionamento WHERE Cd_TicketEstacionamento = " +
                    std::to_string(number))
        ->Fields()
        .Item(0)
        .Value();
  }

  testing::TerminalDatabase db;
  cgdTicketEstacionamento ticket;
};

TEST_F(cgdTicketEstacionamentoTest, AnEntryIsInsertedPendingByItsOwnStatementWithoutExitNorCode) {
  auto entry = Fresh();
  entry->Let("Cd_Placa", Variant("ABC1D23"));
  entry->Let("No_Situacao", Variant(1));
  entry->Let("Dt_Entrada", Variant(DateSerial(2026, 11, 21) + TimeSerial(8, 5, 0)));
  entry->Let("Cd_CartaoEstacionamento", Variant(0));
  ticket.Salvar();
  const int32_t number = CLng(entry->Get("Cd_TicketEstacionamento"));
  ASSERT_GT(number, 0);
  EXPECT_EQ(db.statements.back(),
            Lines({"INSERT INTO TbTicketEstacionamento (", "   Cd_Placa,", "   Cd_TicketEstacionamento,",
                   "   No_Situacao,", "   Vl_Tarifa,", "   Qt_TempoPermanenciaMinutos,", "   Dt_Saida,",
                   "   Dt_Entrada,", "   Cd_EmpresaUsuariaSistema,", "   Cd_ClienteEstacionamento,", "   Cd_Caixa,",
                   "   Ic_Mensalista,", "   Cd_ClienteConvenio,", "   Ds_Ticket,", "   Cd_CartaoEstacionamento,",
                   "   Ic_TicketRevalidado", "   )", "Values (", "'ABC1D23',", std::to_string(number) + ",", "1,",
                   "0.00,", "0,", "NULL,", "'2026-11-21 08:05:00',", "1,", "0,", "0,", "0,", "0,", "'',", "0,",
                   "0)"}) +
                "\r");
  EXPECT_TRUE(Stored(number, "Dt_Saida").IsNull());
  // The insert writes an empty code as an empty text, not Null.
  EXPECT_FALSE(Stored(number, "Ds_Ticket").IsNull());
  EXPECT_EQ(CStr(Stored(number, "Ds_Ticket")), "");

  // A second entry gets the next number.
  auto second = Fresh();
  second->Let("Cd_Placa", Variant("XYZ9K88"));
  second->Let("Dt_Entrada", Variant(DateSerial(2026, 11, 21) + TimeSerial(8, 6, 0)));
  ticket.Salvar();
  EXPECT_EQ(CLng(second->Get("Cd_TicketEstacionamento")), number + 1);
}

TEST_F(cgdTicketEstacionamentoTest, AnExitBefore2000IsNoExitAndTheUpdateStoresAnEmptyCodeAsNull) {
  auto entry = Fresh();
  entry->Let("Cd_Placa", Variant("ABC1D23"));
  entry->Let("Dt_Entrada", Variant(DateSerial(2026, 11, 21) + TimeSerial(8, 0, 0)));
  entry->Let("Dt_Saida", Variant(DateSerial(1999, 12, 31)));
  ticket.Incluir();
  const int32_t number = CLng(entry->Get("Cd_TicketEstacionamento"));
  EXPECT_NE(db.statements.back().find("\rNULL,\r'2026-11-21 08:00:00',\r"), std::string::npos);
  EXPECT_TRUE(Stored(number, "Dt_Saida").IsNull());

  entry->Let("Ds_Ticket", Variant("98765432109876"));
  entry->Let("Dt_Saida", Variant(DateSerial(2026, 11, 21) + TimeSerial(9, 0, 0)));
  ticket.Alterar();
  EXPECT_EQ(db.statements.back().substr(0, KeySelect(1, number).size()), KeySelect(1, number));
  EXPECT_EQ(CStr(Stored(number, "Ds_Ticket")), "98765432109876");
  EXPECT_FALSE(Stored(number, "Dt_Saida").IsNull());

  entry->Let("Ds_Ticket", Variant(""));
  entry->Let("Dt_Saida", Variant(DateSerial(1999, 12, 31) + TimeSerial(23, 59, 59)));
  ticket.Alterar();
  EXPECT_TRUE(Stored(number, "Ds_Ticket").IsNull());
  EXPECT_TRUE(Stored(number, "Dt_Saida").IsNull());
}

TEST_F(cgdTicketEstacionamentoTest, APrintedCodeFindsTheOriginalOrOnlyItsRevalidations) {
  testing::AddTicket(db, 5, "ABC1D23", 2, "2026-11-20 08:00:00", "'2026-11-20 09:00:00'", "'11112222333344'");
  db.Query("INSERT INTO TbTicketEstacionamento (Cd_EmpresaUsuariaSistema, Cd_TicketEstacionamento, No_Situacao, "
           "Dt_Entrada, Ds_Ticket, Ic_TicketRevalidado) VALUES (1, 6, 1, '2026-11-21 08:00:00', '11112222333344', 1)");
  auto wanted = Fresh();
  wanted->Let("Ds_Ticket", Variant("11112222333344"));
  ticket.Consultar(false);
  EXPECT_EQ(db.statements.back(),
            Lines({"SELECT TbTicketEstacionamento.*", "FROM   TbTicketEstacionamento",
                   "WHERE  TbTicketEstacionamento.Cd_EmpresaUsuariaSistema = 1",
                   "       And TbTicketEstacionamento.Ds_Ticket = '11112222333344'",
                   "       And Ic_TicketRevalidado = 0"}) +
                "\r");
  EXPECT_EQ(CLng(wanted->Get("Cd_TicketEstacionamento")), 5);

  wanted = Fresh();
  wanted->Let("Ds_Ticket", Variant("11112222333344"));
  wanted->Let("Ic_TicketRevalidado", Variant(true));
  EXPECT_TRUE(ticket.Existe());
  EXPECT_EQ(db.statements.back().substr(db.statements.back().size() - 36), "       And Ic_TicketRevalidado <> 0\r");
  ticket.Consultar();
  EXPECT_EQ(CLng(wanted->Get("Cd_TicketEstacionamento")), 6);

  // By number when there is one, whatever the code says.
  wanted = Fresh();
  wanted->Let("Cd_TicketEstacionamento", Variant(5));
  wanted->Let("Ds_Ticket", Variant("nada"));
  EXPECT_TRUE(ticket.Existe());
  EXPECT_EQ(db.statements.back(), KeySelect(1, 5));

  wanted = Fresh();
  wanted->Let("Ds_Ticket", Variant("00000000000000"));
  EXPECT_FALSE(ticket.Existe());
  EXPECT_EQ(ErrorOf([&] { ticket.Consultar(false); }).Number(), kErrorRecordNotFound);

  // Neither number nor code: message 1, before any SQL.
  db.statements.clear();
  Fresh();
  EXPECT_EQ(ErrorOf([&] { ticket.Consultar(); }).Number(), kErrorNoKey);
  const VekError missing = ErrorOf([&] { ticket.Existe(); });
  EXPECT_EQ(missing.Number(), kErrorNoKey);
  EXPECT_NE(missing.Source().find("cgdTicketEstacionamento.Existe"), std::string::npos);
  Fresh(0)->Let("Ds_Ticket", Variant("11112222333344"));
  EXPECT_EQ(ErrorOf([&] { ticket.Consultar(); }).Number(), kErrorNoKey);

  Fresh()->Let("Ds_Ticket", Variant("1111'2222"));
  const VekError refused = ErrorOf([&] { ticket.Consultar(); });
  EXPECT_EQ(refused.Number(), kBusinessError);
  EXPECT_NE(refused.Description().find("Ds_Ticket"), std::string::npos);
  EXPECT_TRUE(db.statements.empty());
}

TEST_F(cgdTicketEstacionamentoTest, APendingTicketIsFoundByPlateAndTheNewestByCard) {
  testing::AddTicket(db, 1, "ABC1D23", 2, "2026-11-20 08:00:00", "'2026-11-20 09:00:00'");
  testing::AddTicket(db, 2, "ABC1D23", 1, "2026-11-21 08:00:00");
  testing::AddTicket(db, 3, "CARD001", 1, "2026-11-21 07:00:00", "NULL", "NULL", 1, 77);
  testing::AddTicket(db, 4, "CARD002", 1, "2026-11-21 09:00:00", "NULL", "NULL", 1, 77);
  testing::AddTicket(db, 5, "CARD003", 1, "2026-11-21 10:00:00", "NULL", "NULL", 2, 77);

  auto wanted = Fresh();
  wanted->Let("Cd_Placa", Variant("ABC1D23"));
  EXPECT_TRUE(ticket.ExisteEntradaPendente());
  EXPECT_EQ(db.statements.back(), PendingByPlate("ABC1D23"));
  EXPECT_EQ(CLng(wanted->Get("Cd_TicketEstacionamento")), 0);  // nothing loaded
  ticket.ConsultarTicketPendentePorPlaca();
  EXPECT_EQ(db.statements.back(), PendingByPlate("ABC1D23"));
  EXPECT_EQ(CLng(wanted->Get("Cd_TicketEstacionamento")), 2);

  wanted = Fresh();
  wanted->Let("Cd_Placa", Variant("ZZZ0Z00"));
  EXPECT_FALSE(ticket.ExisteEntradaPendente());
  EXPECT_EQ(ErrorOf([&] { ticket.ConsultarTicketPendentePorPlaca(false); }).Number(), kErrorRecordNotFound);
  ticket.ConsultarTicketPendentePorPlaca();
  EXPECT_EQ(CStr(wanted->Get("Cd_Placa")), "");  // defaults restored

  wanted = Fresh();
  wanted->Let("Cd_CartaoEstacionamento", Variant(77));
  EXPECT_TRUE(ticket.ConsultarTicketPendentePorCartao());
  EXPECT_EQ(db.statements.back(),
            Lines({"SELECT TOP 1", "         TbTicketEstacionamento.*", "FROM     TbTicketEstacionamento",
                   "WHERE    TbTicketEstacionamento.Cd_EmpresaUsuariaSistema = 1",
                   "         And TbTicketEstacionamento.Cd_CartaoEstacionamento = 77",
                   "         And TbTicketEstacionamento.No_Situacao = 1",
                   "ORDER BY TbTicketEstacionamento.Dt_Entrada Desc;"}) +
                "\r");
  EXPECT_EQ(CLng(wanted->Get("Cd_TicketEstacionamento")), 4);

  wanted = Fresh();
  wanted->Let("Cd_CartaoEstacionamento", Variant(78));
  wanted->Let("Cd_Placa", Variant("KEEP123"));
  EXPECT_FALSE(ticket.ConsultarTicketPendentePorCartao());
  EXPECT_EQ(CStr(wanted->Get("Cd_Placa")), "KEEP123");

  db.statements.clear();
  Fresh()->Let("Cd_Placa", Variant("AB'1"));
  for (const auto& member : std::vector<std::function<void()>>{[&] { ticket.ExisteEntradaPendente(); },
                                                                [&] { ticket.ConsultarTicketPendentePorPlaca(); },
                                                                [&] { ticket.Salvar(); }}) {
    const VekError refused = ErrorOf(member);
    EXPECT_EQ(refused.Number(), kBusinessError);
    EXPECT_NE(refused.Description().find("Cd_Placa"), std::string::npos);
  }
  EXPECT_TRUE(db.statements.empty());
}

TEST_F(cgdTicketEstacionamentoTest, AnExitWritesItsChargeLinesBeforeClosingAndAFailureLeavesItPending) {
  testing::AddTicket(db, 9, "ABC1D23", 1, "2026-11-21 08:00:00");
  auto exit = Fresh();
  exit->Let("Cd_TicketEstacionamento", Variant(9));
  ticket.Consultar(false);

  cgdTicketEstacionamento_Tarifa line;
  line.Ob_cgpSistema(db.session);
  auto charge = line.Ob_cgp();
  auto write_line = [&](int32_t tariff, int32_t units, double value) {
    charge->RestaurarDefault();
    charge->Let("Cd_EmpresaUsuariaSistema", Variant(1));
    charge->Let("Cd_TicketEstacionamento", Variant(9));
    charge->Let("Cd_Tarifa", Variant(tariff));
    charge->Let("Qt_Unidade", Variant(units));
    charge->Let("Vl_Tarifa", Variant(Currency(value)));
    line.Incluir();
  };
  auto close = [&] {
    exit->Let("No_Situacao", Variant(2));
    exit->Let("Dt_Saida", Variant(DateSerial(2026, 11, 21) + TimeSerial(9, 10, 0)));
    exit->Let("Qt_TempoPermanenciaMinutos", Variant(70));
    exit->Let("Vl_Tarifa", Variant(Currency(15.0)));
    ticket.Alterar();
  };

  // A line of a tariff that is not there fails: the ticket stays pending.
  ticket.ExcluirTarifas();
  EXPECT_EQ(db.statements.back(), Lines({"DELETE ", "FROM   TbTicketEstacionamento_TbTarifa",
                                         "WHERE  Cd_EmpresaUsuariaSistema = 1", "       And Cd_TicketEstacionamento = 9"}) +
                                      "\r");
  EXPECT_NE(ErrorOf([&] {
              write_line(999, 1, 1.0);
              close();
            }).Number(),
            0);
  EXPECT_EQ(CLng(Stored(9, "No_Situacao")), 1);
  EXPECT_TRUE(Stored(9, "Dt_Saida").IsNull());

  ticket.ExcluirTarifas();
  write_line(22, 1, 8.0);
  EXPECT_EQ(db.statements.back(),
            Lines({"INSERT INTO TbTicketEstacionamento_TbTarifa (", "   Cd_EmpresaUsuariaSistema,", "   Cd_Tarifa,",
                   "   Cd_TicketEstacionamento,", "   Qt_Unidade,", "   Vl_Tarifa", "   )", "Values (", "1,", "22,",
                   "9,", "1,", "8.00)"}) +
                "\r");
  write_line(21, 2, 3.5);
  close();
  EXPECT_EQ(CLng(Stored(9, "No_Situacao")), 2);
  EXPECT_EQ(CLng(Stored(9, "Qt_TempoPermanenciaMinutos")), 70);

  auto lines = ticket.rsTarifas();
  EXPECT_EQ(db.statements.back(),
            Lines({"SELECT   B.Ds_Tarifa,", "         A.Qt_Unidade,", "         A.Vl_Tarifa,",
                   "         A.Qt_Unidade * A.Vl_Tarifa as Vl_Total", "FROM     TbTicketEstacionamento_TbTarifa A",
                   "         INNER JOIN TbTarifa B On A.Cd_EmpresaUsuariaSistema = B.Cd_EmpresaUsuariaSistema",
                   "                    And A.Cd_Tarifa = b.Cd_Tarifa", "WHERE    A.Cd_EmpresaUsuariaSistema = 1",
                   "         And A.Cd_TicketEstacionamento = 9", "ORDER BY A.Vl_Tarifa Desc"}) +
                "\r");
  std::vector<std::string> seen;
  for (; !lines->Eof(); lines->MoveNext()) {
    seen.push_back(CStr(lines->Fields().Item("Ds_Tarifa").Value()) + " " +
                   CStr(CCur(lines->Fields().Item("Vl_Total").Value())));
  }
  EXPECT_EQ(seen, (std::vector<std::string>{"ATE 1 HORA 8", "ATE 15 MIN 7"}));

  // A line is read back by its three key values.
  charge->RestaurarDefault();
  charge->Let("Cd_EmpresaUsuariaSistema", Variant(1));
  charge->Let("Cd_TicketEstacionamento", Variant(9));
  charge->Let("Cd_Tarifa", Variant(21));
  line.Consultar(false);
  EXPECT_EQ(db.statements.back(), Lines({"SELECT A.*", "FROM   TbTicketEstacionamento_TbTarifa A",
                                         "WHERE  A.Cd_EmpresaUsuariaSistema = 1",
                                         "       And A.Cd_TicketEstacionamento = 9", "       And A.Cd_Tarifa = 21"}) +
                                      "\r");
  EXPECT_EQ(CLng(charge->Get("Qt_Unidade")), 2);
  line.Excluir();
  EXPECT_EQ(db.statements.back(), Lines({"DELETE ", "FROM   TbTicketEstacionamento_TbTarifa",
                                         "WHERE  Cd_EmpresaUsuariaSistema = 1", "       And Cd_TicketEstacionamento = 9",
                                         "       And Cd_Tarifa = 21"}) +
                                      "\r");
  EXPECT_EQ(CountOf(db, "TbTicketEstacionamento_TbTarifa"), 1);
}

TEST_F(cgdTicketEstacionamentoTest, AMonthlyClientsAllowanceAndTheMinutesItsOtherStaysUsed) {
  testing::AddTariff(db, 30, "MENSAL 10H", "200");
  testing::AddTariff(db, 31, "MENSAL LIVRE", "300");
  db.Query("INSERT INTO TbPrecoEstacionamentoMensalista (Cd_EmpresaUsuariaSistema, Cd_Tarifa, Qt_HorasPermanencia) "
           "VALUES (1, 30, 10)");
  db.Query("INSERT INTO TbClienteEstacionamento (Cd_EmpresaUsuariaSistema, Cd_ClienteEstacionamento, Cd_Tarifa) "
           "VALUES (1, 500, 30), (1, 501, 31)");
  // Client 500: two closed monthly stays since the 21st (50 and 30 minutes),
  // one the day before, one closed at no charge, and the current one.
  testing::AddTicket(db, 1, "M500", 2, "2026-11-21 06:00:00", "'2026-11-21 06:50:00'", "NULL", 1, 0, 500, 1);
  testing::AddTicket(db, 2, "M500", 2, "2026-11-21 07:00:00", "'2026-11-21 07:30:59'", "NULL", 1, 0, 500, 1);
  testing::AddTicket(db, 3, "M500", 2, "2026-11-20 07:00:00", "'2026-11-20 09:00:00'", "NULL", 1, 0, 500, 1);
  testing::AddTicket(db, 4, "M500", 2, "2026-11-21 07:40:00", "'2026-11-21 07:40:00'", "NULL", 1, 0, 500, 1);
  testing::AddTicket(db, 5, "M500", 1, "2026-11-21 09:00:00", "NULL", "NULL", 1, 0, 500, 1);
  testing::AddTicket(db, 6, "M501", 1, "2026-11-21 09:00:00", "NULL", "NULL", 1, 0, 501, 1);
  testing::AddTicket(db, 7, "LOOSE", 1, "2026-11-21 09:00:00");

  auto current = Fresh();
  current->Let("Cd_TicketEstacionamento", Variant(5));
  ticket.Consultar(false);
  EXPECT_EQ(ticket.ObterMinutosPermitidoPorCadaDia(), 600);
  EXPECT_TRUE(db.statements.back().starts_with(
      "SELECT (IsNull(TbPrecoEstacionamentoMensalista.Qt_HorasPermanencia,24) * 60) As Qt_MinutosPermitidoDia\r"))
      << db.statements.back();
  EXPECT_EQ(ticket.ObterMinutosPermanenciaoOutrosTickets(), 80);
  EXPECT_EQ(db.statements.back(),
            Lines({"SELECT Sum(IsNull(DATEDIFF(N,TbTicketEstacionamento.Dt_Entrada,TbTicketEstacionamento.Dt_Saida),0)) "
                   "As Qt_MinutosPermanenciaoOutrosTickets",
                   "From   TbTicketEstacionamento", "Where  TbTicketEstacionamento.Cd_EmpresaUsuariaSistema = 1",
                   "       And TbTicketEstacionamento.Cd_ClienteEstacionamento = 500",
                   "       And TbTicketEstacionamento.Ic_Mensalista = 1",
                   "       And TbTicketEstacionamento.No_Situacao = 2",
                   "       And TbTicketEstacionamento.Dt_Entrada >= '2026-11-21'"}) +
                "\r");

  // No monthly price row: a whole day.
  current = Fresh();
  current->Let("Cd_TicketEstacionamento", Variant(6));
  ticket.Consultar(false);
  EXPECT_EQ(ticket.ObterMinutosPermitidoPorCadaDia(), 1440);
  EXPECT_EQ(ticket.ObterMinutosPermanenciaoOutrosTickets(), 0);
  // No client at all.
  current = Fresh();
  current->Let("Cd_TicketEstacionamento", Variant(7));
  ticket.Consultar(false);
  EXPECT_EQ(ticket.ObterMinutosPermitidoPorCadaDia(), 0);
}

TEST_F(cgdTicketEstacionamentoTest, ANewCardEntryClosesTheCardsPendingEntriesOfEveryCompanyAtNoCharge) {
  testing::AddTicket(db, 1, "C1", 1, "2026-11-21 06:00:00", "NULL", "NULL", 1, 40);
  testing::AddTicket(db, 2, "C1", 1, "2026-11-21 07:00:00", "NULL", "NULL", 2, 40);
  testing::AddTicket(db, 3, "C2", 1, "2026-11-21 07:00:00", "NULL", "NULL", 1, 41);
  testing::AddTicket(db, 4, "C1", 2, "2026-11-20 07:00:00", "'2026-11-20 08:00:00'", "NULL", 1, 40);
  Fresh();
  ticket.RegistrarSaidaDasEntradasAnterioresDessaCartao(1, 40);
  EXPECT_EQ(db.statements.back(),
            Lines({"UPDATE TbTicketEstacionamento", "SET    No_Situacao = 2,", "       Dt_Saida = Dt_Entrada,",
                   "       Vl_Tarifa = 0,", "       Qt_TempoPermanenciaMinutos = 0",
                   "WHERE  Cd_CartaoEstacionamento = 40", "       And No_Situacao = 1"}) +
                "\r");
  EXPECT_EQ(CountOf(db, "TbTicketEstacionamento WHERE Cd_CartaoEstacionamento = 40 And No_Situacao = 1"), 0);
  EXPECT_EQ(CountOf(db, "TbTicketEstacionamento WHERE Cd_CartaoEstacionamento = 40 And Dt_Saida = Dt_Entrada"), 2);
  EXPECT_EQ(CountOf(db, "TbTicketEstacionamento WHERE Cd_CartaoEstacionamento = 41 And No_Situacao = 1"), 1);
}

TEST_F(cgdTicketEstacionamentoTest, TheGateChecksLookALooseTicketUpByItsFirst13Characters) {
  db.Query("INSERT INTO MDESTACIONAMENTO.dbo.LOGCARTOESAVULSOS (CODIGOCARTAO, EVENTO) VALUES ('1234567890123', 1)");
  db.Query("INSERT INTO MDESTACIONAMENTO.dbo.LOGCARTOESAVULSOS (CODIGOCARTAO, EVENTO) VALUES ('5555555555555', 1), "
           "('5555555555555', 2)");
  db.Query("INSERT INTO MDESTACIONAMENTO.dbo.CARTOESAVULSOSBLOQUEADOS (CODIGOCARTAO) VALUES ('5555555555555')");
  Fresh();
  EXPECT_TRUE(ticket.HouveEntradaTicketMadis("12345678901234"));
  EXPECT_EQ(db.statements.back(), Lines({"SELECT *", "FROM   MDESTACIONAMENTO.dbo.LOGCARTOESAVULSOS",
                                         "WHERE  CODIGOCARTAO = '1234567890123'", "       And EVENTO = 1"}) +
                                      "\r");
  EXPECT_FALSE(ticket.HouveSaidaTicketMadis("12345678901234"));
  EXPECT_EQ(db.statements.back(), Lines({"SELECT *", "FROM   MDESTACIONAMENTO.dbo.LOGCARTOESAVULSOS",
                                         "WHERE  CODIGOCARTAO = '1234567890123'", "       And EVENTO = 2"}) +
                                      "\r");
  EXPECT_FALSE(ticket.EstaBloqueadoTicketMadis("12345678901234"));
  EXPECT_EQ(db.statements.back(), Lines({"SELECT *", "FROM   MDESTACIONAMENTO.dbo.CARTOESAVULSOSBLOQUEADOS",
                                         "WHERE  CODIGOCARTAO = '1234567890123'"}) +
                                      "\r");
  EXPECT_TRUE(ticket.HouveSaidaTicketMadis("5555555555555XYZ"));
  EXPECT_TRUE(ticket.EstaBloqueadoTicketMadis("5555555555555X"));

  // Thirteen characters or fewer: the same message from all three, no SQL.
  db.statements.clear();
  const std::vector<std::pair<std::string, std::function<bool(const std::string&)>>> checks = {
      {"HouveEntradaTicketMadis", [&](const std::string& code) { return ticket.HouveEntradaTicketMadis(code); }},
      {"HouveSaidaTicketMadis", [&](const std::string& code) { return ticket.HouveSaidaTicketMadis(code); }},
      {"EstaBloqueadoTicketMadis", [&](const std::string& code) { return ticket.EstaBloqueadoTicketMadis(code); }}};
  for (const auto& entry : checks) {
    const std::string& member = entry.first;
    const auto& check = entry.second;  // clang 14 cannot capture a structured binding
    const VekError refused = ErrorOf([&] { check("1234567890123"); });
    EXPECT_EQ(refused.Number(), kBusinessError) << member;
    EXPECT_EQ(refused.Description(), kGateMessage + "1234567890123 (deve ser de no mínimo 13 números)") << member;
    EXPECT_NE(refused.Source().find("cgdTicketEstacionamento." + member), std::string::npos) << refused.Source();
    EXPECT_EQ(ErrorOf([&] { check(""); }).Description(), kGateMessage + " (deve ser de no mínimo 13 números)");
    // Characters are counted, not bytes.
    EXPECT_EQ(ErrorOf([&] { check("ÁÁÁÁÁÁÁÁÁÁÁÁÁ"); }).Number(), kBusinessError);
    const VekError quoted = ErrorOf([&] { check("12345'7890123456"); });
    EXPECT_EQ(quoted.Number(), kBusinessError);
    EXPECT_NE(quoted.Description().find("Ds_Ticket"), std::string::npos);
  }
  EXPECT_TRUE(db.statements.empty());
}

TEST_F(cgdTicketEstacionamentoTest, ReleasingATicketAndMarkingAPassageReachTheGatesDatabase) {
  testing::AddTicket(db, 11, "ABC1D23", 2, "2026-11-21 08:00:00", "'2026-11-21 09:00:00'", "'12345678901234'");
  testing::AddTicket(db, 12, "ABC1D24", 2, "2026-11-21 08:00:00", "'2026-11-21 09:00:00'");
  db.Query("INSERT INTO MDESTACIONAMENTO.dbo.CARTOESAVULSOS (CODIGOCARTAO, DATAHORAENTRADA) "
           "VALUES ('1234567890123', '2026-11-21 08:00:00')");
  db.Query("INSERT INTO MDESTACIONAMENTO.dbo.CARTOESAVULSOSBLOQUEADOS (CODIGOCARTAO) VALUES ('1234567890123')");
  auto released = Fresh();
  released->Let("Cd_TicketEstacionamento", Variant(11));
  std::string aviso = "antes";
  ticket.LiberarTicketMadis(aviso);
  EXPECT_EQ(aviso, "");
  EXPECT_EQ(db.statements.back(), "TicketEstacionamento_LiberarTicketMadis");
  EXPECT_EQ(CountOf(db, "MDESTACIONAMENTO.dbo.CARTOESAVULSOSBLOQUEADOS"), 0);

  // The procedure's refusal comes back with its own text.
  released->Let("Cd_TicketEstacionamento", Variant(12));
  const VekError refused = ErrorOf([&] { ticket.LiberarTicketMadis(aviso); });
  EXPECT_EQ(refused.Number(), kBusinessError);
  EXPECT_EQ(refused.Description(), "Ticket sem código de acesso da Madis");
  EXPECT_NE(refused.Source().find("cgdTicketEstacionamento.LiberarTicketMadis"), std::string::npos);

  db.Query("INSERT INTO MDESTACIONAMENTO.dbo.LOGPERMANENCIAMENSALISTA (IDLOGPERMANENCIA, IDEMPRESA, IDEMPRESACARTAO, "
           "IDCARTAO, EVENTO, DATAHORAPASSAGEM) VALUES (70, 1, 1, 40, 1, '2026-11-21 08:00:00'), "
           "(71, 1, 1, 40, 2, '2026-11-21 09:00:00')");
  ticket.AssociarLogMadisAoTicket(1, 70);
  EXPECT_EQ(db.statements.back(), Lines({"UPDATE MDESTACIONAMENTO.dbo.LOGPERMANENCIAMENSALISTA",
                                         "SET    Cd_TicketEstacionamento = 12", "WHERE  IDEMPRESA = 1",
                                         "       And IDLOGPERMANENCIA = 70"}) +
                                      "\r");
  EXPECT_EQ(CountOf(db, "MDESTACIONAMENTO.dbo.LOGPERMANENCIAMENSALISTA WHERE Cd_TicketEstacionamento = 12"), 1);
  EXPECT_EQ(CountOf(db, "MDESTACIONAMENTO.dbo.LOGPERMANENCIAMENSALISTA WHERE Cd_TicketEstacionamento IS NULL"), 1);
}

}  // namespace
}  // namespace vek
