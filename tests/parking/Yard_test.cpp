// The operating company's members that work on the car park as a whole: the
// yard list, the gates' unprocessed monthly passages and the housekeeping
// of old entries.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "parking/ParkingData.h"
#include "vek/foundation/MessageCatalogue.h"
#include "vek/platform/Format.h"
#include "vek/registry/cgdEmpresaUsuariaSistema.h"

namespace vek {
namespace {

using testing::CountOf;
using testing::ErrorOf;
using testing::Lines;

void AddPassage(testing::TerminalDatabase& db, int32_t id, int32_t company, int32_t card, int32_t event,
                const std::string& moment, const std::string& ticket = "NULL") {
  db.Query("INSERT INTO MDESTACIONAMENTO.dbo.LOGPERMANENCIAMENSALISTA (IDLOGPERMANENCIA, IDEMPRESA, IDEMPRESACARTAO, "
           "IDCARTAO, EVENTO, DATAHORAPASSAGEM, REALTIME, Cd_TicketEstacionamento) VALUES (" +
           std::to_string(id) + ", " + std::to_string(company) + ", " + std::to_string(company) + ", " +
           std::to_string(card) + ", " + std::to_string(event) + ", '" + moment + "', 1, " + ticket + ")");
}

class YardTest : public ::testing::Test {
 protected:
  YardTest() {
    empresa.Ob_cgpSistema(db.session);
    empresa.Ob_cgp()->Let("Cd_EmpresaUsuariaSistema", Variant(1));
  }

  // A yard of every kind: tickets of this system with and without a code,
  // loose tickets of the gates, monthly cards inside and out.
  void FillYard() {
    db.Query("INSERT INTO TbMarcaModelo (Cd_MarcaModelo, Ds_MarcaModelo) VALUES (6, 'VW Gol')");
    db.Query("INSERT INTO TbVeiculo (Cd_Placa, Cd_MarcaModelo) VALUES ('ABC1D23', 6)");
    testing::AddTicket(db, 1, "ABC1D23", 1, "2026-11-21 08:00:00");
    testing::AddTicket(db, 2, "XYZ9K88", 1, "2026-11-21 07:00:00", "NULL", "'12345678901234'");
    testing::AddTicket(db, 3, "DONE111", 2, "2026-11-21 06:00:00", "'2026-11-21 06:30:00'");
    testing::AddTicket(db, 4, "", 1, "2026-11-21 06:00:00");                      // no plate: not listed
    testing::AddTicket(db, 5, "OTHER22", 1, "2026-11-21 06:00:00", "NULL", "NULL", 2);  // another company
    db.Query("INSERT INTO MDESTACIONAMENTO.dbo.CARTOESAVULSOS (CODIGOCARTAO, DATAHORAENTRADA) VALUES "
             "('1234567890123', '2026-11-21 07:00:00'), ('9999999999999', '2026-11-21 09:00:00')");
    db.Query("INSERT INTO MDESTACIONAMENTO.dbo.CLIENTE (IDEMPRESACADASTRO, IDCLIENTE, NOME, VAGASEMUSO) VALUES "
             "(1, 500, 'MARIANA APARECIDA SANTOS', 1), (1, 501, 'JOSE', 1), (1, 502, 'SEM VAGA', 0)");
    db.Query("INSERT INTO MDESTACIONAMENTO.dbo.CLIENTECARTAO (IDEMPRESACADASTRO, IDCLIENTE, IDEMPRESACARTAO, IDCARTAO, "
             "CODIGOCARTAO, NOMEPROPRIETARIO) VALUES (1, 500, 1, 40, 1001, 'MARIA'), (1, 501, 1, 41, 1002, 'JOSE'), "
             "(1, 502, 1, 42, 1003, 'X')");
    AddPassage(db, 1, 1, 40, 1, "2026-11-21 05:00:00");
    AddPassage(db, 2, 1, 40, 2, "2026-11-21 05:30:00");
    AddPassage(db, 3, 1, 40, 1, "2026-11-21 06:15:00");  // card 40 is inside since 06:15
    AddPassage(db, 4, 1, 41, 1, "2026-11-21 05:00:00");
    AddPassage(db, 5, 1, 41, 2, "2026-11-21 09:00:00");  // card 41 went out
    AddPassage(db, 6, 1, 42, 1, "2026-11-21 05:00:00");  // its client has no vacancy in use
  }

  std::vector<std::string> Yard() {
    std::vector<std::string> lines;
    auto rows = empresa.rsVeiculoNoPatio();
    for (; !rows->Eof(); rows->MoveNext()) {
      lines.push_back(Format(rows->Fields().Item(1).Value(), "hh:Nn") + " " + CStr(rows->Fields().Item(0).Value()) +
                      " " + (CBool(rows->Fields().Item(2).Value()) ? "1" : "0"));
    }
    return lines;
  }

  testing::TerminalDatabase db;
  cgdEmpresaUsuariaSistema empresa;
};

TEST_F(YardTest, TheYardListsTicketsLooseTicketsAndCardsInsideOldestFirst) {
  FillYard();
  EXPECT_EQ(Yard(), (std::vector<std::string>{"06:15 CARTAO:1001-MARIANA APARECID 1",
                                              "07:00 TICKET:12345678901234 0", "08:00 PLACA.:ABC1D23,VW Gol 0",
                                              "09:00 TICKET:9999999999999*** 0"}));
  const std::string& text = db.statements.back();
  EXPECT_EQ(text.substr(0, 70), "SELECT   Case When TbTicketEstacionamento.Ds_Ticket IS NULL Then \r    ");
  EXPECT_NE(text.find("         And TbTicketEstacionamento.Cd_Placa IS NOT NULL\rUNION ALL\r"
                      "SELECT   'TICKET:' + MDESTACIONAMENTO.dbo.CARTOESAVULSOS.CODIGOCARTAO + '***' As Ds_Ticket,\r"),
            std::string::npos);
  EXPECT_NE(text.find("WHERE    TbTicketEstacionamento.Ds_Ticket IS NULL\rUNION ALL\r"
                      "SELECT   Substring('CARTAO:' + Convert(Varchar,Cartao.CODIGOCARTAO) + '-' + Cliente.NOME,1,28) "
                      "As Ds_Ticket,\r         Max(LogPermanencia.DATAHORAPASSAGEM),\r      1   As Ic_Mensalista\r"),
            std::string::npos);
  EXPECT_NE(text.find("                     ORDER BY DATAHORAPASSAGEM DESC),'0') = 1\r"
                      "GROUP BY Convert(Varchar,Cartao.CODIGOCARTAO),\r         Cliente.NOME\rORDER BY 2\r"),
            std::string::npos);
  // The existence check comes first.
  EXPECT_EQ(db.statements[db.statements.size() - 2],
            Lines({"SELECT name, database_id, create_date", "From   sys.databases", "WHERE  name = 'MDESTACIONAMENTO'"}) +
                "\r");

  // The gates' loose tickets are matched against every company's codes and
  // listed for any company; the cards only for their own.
  empresa.Ob_cgp()->Let("Cd_EmpresaUsuariaSistema", Variant(2));
  EXPECT_EQ(Yard(), (std::vector<std::string>{"06:00 PLACA.:OTHER22, 0", "09:00 TICKET:9999999999999*** 0"}));
}

TEST_F(YardTest, WithoutTheAccessControlDatabaseOnlyThisSystemsTicketsAreListed) {
  testing::AddTicket(db, 1, "ABC1D23", 1, "2026-11-21 08:00:00");
  testing::DropAccessControlDatabase(db);
  EXPECT_EQ(Yard(), (std::vector<std::string>{"08:00 PLACA.:ABC1D23, 0"}));
  EXPECT_EQ(db.statements.back().find("UNION"), std::string::npos);
  EXPECT_TRUE(db.statements.back().ends_with("         And TbTicketEstacionamento.Cd_Placa IS NOT NULL\rORDER BY 2\r"));

  // The housekeeping then fails with its own text, at its first statement.
  const VekError failed = ErrorOf([&] { empresa.ApagarEntradasAntigasDoEstacionamento(); });
  EXPECT_EQ(failed.Number(), kBusinessError);
  EXPECT_EQ(failed.Description(), "Erro na exclusão das entradas antigas do estacionamento");
  EXPECT_NE(failed.Source().find("cgdEmpresaUsuariaSistema.ApagarEntradasAntigasDoEstacionamento"), std::string::npos);

  empresa.Ob_cgp()->Let("Cd_EmpresaUsuariaSistema", Variant(0));
  EXPECT_EQ(ErrorOf([&] { empresa.rsVeiculoNoPatio(); }).Number(), kErrorNoKey);
}

TEST_F(YardTest, UnprocessedMonthlyPassagesOfEveryCompanyComeInLogOrder) {
  FillYard();
  db.Query("INSERT INTO MDESTACIONAMENTO.dbo.CLIENTECARTAO (IDEMPRESACADASTRO, IDCLIENTE, IDEMPRESACARTAO, IDCARTAO, "
           "CODIGOCARTAO, NOMEPROPRIETARIO) VALUES (2, 700, 2, 40, 2001, 'OUTRA')");
  AddPassage(db, 0, 2, 40, 1, "2026-11-21 04:00:00");
  db.Query("UPDATE MDESTACIONAMENTO.dbo.LOGPERMANENCIAMENSALISTA SET Cd_TicketEstacionamento = 9 "
           "WHERE IDLOGPERMANENCIA = 2");
  auto rows = empresa.rsEntradaMensalistaMadisNaoProcessada();
  EXPECT_EQ(db.statements.back(),
            Lines({"SELECT   MDESTACIONAMENTO.dbo.LOGPERMANENCIAMENSALISTA.*,",
                   "         MDESTACIONAMENTO.dbo.CLIENTECARTAO.IDCLIENTE",
                   "FROM     MDESTACIONAMENTO.dbo.LOGPERMANENCIAMENSALISTA",
                   "         INNER JOIN MDESTACIONAMENTO.dbo.CLIENTECARTAO ON "
                   "MDESTACIONAMENTO.dbo.CLIENTECARTAO.IDEMPRESACARTAO = "
                   "MDESTACIONAMENTO.dbo.LOGPERMANENCIAMENSALISTA.IDEMPRESACARTAO",
                   "                    And MDESTACIONAMENTO.dbo.CLIENTECARTAO.IDCARTAO = "
                   "MDESTACIONAMENTO.dbo.LOGPERMANENCIAMENSALISTA.IDCARTAO",
                   "WHERE    Cd_TicketEstacionamento IS NULL",
                   "ORDER BY MDESTACIONAMENTO.dbo.LOGPERMANENCIAMENSALISTA.IDLOGPERMANENCIA"}) +
                "\r");
  std::vector<std::string> seen;
  for (; !rows->Eof(); rows->MoveNext()) {
    seen.push_back(CStr(rows->Fields().Item("IDLOGPERMANENCIA").Value()) + "/" +
                   CStr(rows->Fields().Item("IDCLIENTE").Value()));
  }
  EXPECT_EQ(seen, (std::vector<std::string>{"0/700", "1/500", "3/500", "4/501", "5/501", "6/502"}));
}

TEST_F(YardTest, HousekeepingDeletesWhatEntered91DaysAgoAndKeepsWhatEntered90DaysAgo) {
  // The clock says 21/11/2026 10:30: 23/08 is 90 days back, 22/08 is 91.
  db.Query("INSERT INTO MDESTACIONAMENTO.dbo.CARTOESAVULSOS (CODIGOCARTAO, DATAHORAENTRADA) VALUES "
           "('0000000000090', '2026-08-23 00:00:00'), ('0000000000091', '2026-08-22 23:59:59')");
  testing::AddTicket(db, 1, "D90", 1, "2026-08-23 00:00:00");
  testing::AddTicket(db, 2, "D91", 1, "2026-08-22 23:59:59");
  testing::AddTicket(db, 3, "D91CLOSED", 2, "2026-08-01 08:00:00", "'2026-08-01 09:00:00'");
  testing::AddTicket(db, 4, "D91OTHER", 1, "2026-08-01 08:00:00", "NULL", "NULL", 2);
  // Pending with an exit: closed for company 1 only.
  testing::AddTicket(db, 5, "EXIT1", 1, "2026-11-21 08:00:00", "'2026-11-21 09:00:00'");
  testing::AddTicket(db, 6, "EXIT2", 1, "2026-11-21 08:00:00", "'2026-11-21 09:00:00'", "NULL", 2);
  db.Query("INSERT INTO MDESTACIONAMENTO.dbo.CLIENTE (IDEMPRESACADASTRO, IDCLIENTE, NOME, VAGASEMUSO) VALUES "
           "(1, 500, 'MARIA', 1), (2, 500, 'MARIA', 1)");
  db.Query("INSERT INTO MDESTACIONAMENTO.dbo.CLIENTECARTAO (IDEMPRESACADASTRO, IDCLIENTE, IDEMPRESACARTAO, IDCARTAO, "
           "CODIGOCARTAO, NOMEPROPRIETARIO) VALUES (1, 500, 1, 40, 1001, 'MARIA'), (1, 500, 1, 41, 1002, 'MARIA'), "
           "(2, 500, 2, 40, 2001, 'MARIA')");
  AddPassage(db, 1, 1, 40, 1, "2026-11-21 05:00:00");  // card 40 inside: its entry goes
  AddPassage(db, 2, 1, 41, 1, "2026-11-21 05:00:00");
  AddPassage(db, 3, 1, 41, 2, "2026-11-21 06:00:00");  // card 41 out: kept
  AddPassage(db, 4, 2, 40, 1, "2026-11-21 05:00:00");  // company 2: kept

  empresa.ApagarEntradasAntigasDoEstacionamento();
  const size_t n = db.statements.size();
  ASSERT_GE(n, 4u);
  EXPECT_EQ(db.statements[n - 4],
            Lines({"DELETE", "FROM     MDESTACIONAMENTO.dbo.CARTOESAVULSOS",
                   "WHERE    DATEDIFF(day,MDESTACIONAMENTO.dbo.CARTOESAVULSOS.DATAHORAENTRADA, GetDate()) > 90"}) +
                "\r");
  EXPECT_EQ(db.statements[n - 3],
            Lines({"DELETE   MDESTACIONAMENTO.dbo.LOGPERMANENCIAMENSALISTA",
                   "FROM     MDESTACIONAMENTO.dbo.CLIENTE As Cliente",
                   "         INNER JOIN MDESTACIONAMENTO.dbo.CLIENTECARTAO As Cartao ON Cartao.IDEMPRESACADASTRO = "
                   "cliente.IDEMPRESACADASTRO",
                   "                   And Cartao.IDCLIENTE = Cliente.IDCLIENTE",
                   "         INNER JOIN MDESTACIONAMENTO.dbo.LOGPERMANENCIAMENSALISTA As LogPermanencia ON "
                   "LogPermanencia.IDEMPRESACARTAO = Cartao.IDEMPRESACARTAO",
                   "                   And LogPermanencia.IDCARTAO = Cartao.IDCARTAO",
                   "WHERE    LogPermanencia.IDEMPRESACARTAO = 1", "         And LogPermanencia.EVENTO = 1",
                   "         And IsNull(Cliente.VAGASEMUSO,0) > 0", "         And IsNull((SELECT   TOP 1",
                   "                              EVENTO",
                   "                     FROM     MDESTACIONAMENTO.dbo.LOGPERMANENCIAMENSALISTA ",
                   "                     WHERE    IDEMPRESACARTAO = Cartao.IDEMPRESACARTAO",
                   "                              And IDCARTAO = Cartao.IDCARTAO",
                   "                     ORDER BY DATAHORAPASSAGEM DESC),'0') = 1"}) +
                "\r");
  EXPECT_EQ(db.statements[n - 2], Lines({"UPDATE   TbTicketEstacionamento", "SET      No_Situacao = 2",
                                         "WHERE    Cd_EmpresaUsuariaSistema = 1", "         And No_Situacao = 1",
                                         "        And Dt_Saida IS NOT NULL"}) +
                                      "\r");
  EXPECT_EQ(db.statements[n - 1],
            Lines({"DELETE   TbTicketEstacionamento", "FROM     TbTicketEstacionamento",
                   "WHERE    TbTicketEstacionamento.Cd_EmpresaUsuariaSistema = 1",
                   "         And TbTicketEstacionamento.No_situacao = 1",
                   "         And DATEDIFF(day,TbTicketEstacionamento.Dt_Entrada, GetDate()) > 90"}) +
                "\r");

  EXPECT_EQ(CountOf(db, "MDESTACIONAMENTO.dbo.CARTOESAVULSOS WHERE CODIGOCARTAO = '0000000000090'"), 1);
  EXPECT_EQ(CountOf(db, "MDESTACIONAMENTO.dbo.CARTOESAVULSOS"), 1);
  std::vector<int32_t> tickets;
  for (auto rows = db.Query("SELECT Cd_TicketEstacionamento FROM TbTicketEstacionamento ORDER BY 1"); !rows->Eof();
       rows->MoveNext()) {
    tickets.push_back(CLng(rows->Fields().Item(0).Value()));
  }
  EXPECT_EQ(tickets, (std::vector<int32_t>{1, 3, 4, 5, 6}));
  EXPECT_EQ(CountOf(db, "TbTicketEstacionamento WHERE No_Situacao = 1"), 3);  // 1, 4 and 6
  std::vector<int32_t> passages;
  for (auto rows = db.Query("SELECT IDLOGPERMANENCIA FROM MDESTACIONAMENTO.dbo.LOGPERMANENCIAMENSALISTA ORDER BY 1");
       !rows->Eof(); rows->MoveNext()) {
    passages.push_back(CLng(rows->Fields().Item(0).Value()));
  }
  EXPECT_EQ(passages, (std::vector<int32_t>{2, 3, 4}));
}

}  // namespace
}  // namespace vek
