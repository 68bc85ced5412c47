#include "vek/db/dialect/SqliteTranslator.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "db/dialect/SqliteTestDb.h"
#include "vek/schema/Catalogue.h"
#include "vek/schema/Ddl.h"

namespace vek::dialect {
namespace {

using testing::Lines;
using testing::Rows;
using testing::SqliteTestDb;
using testing::TranslationError;

bool Mentions(const std::string& text, const std::string& part) {
  return text.find(part) != std::string::npos;
}

class SqliteTranslator : public ::testing::Test {
 protected:
  void CreateTickets() {
    db_.Exec("CREATE TABLE TbTicketEstacionamento (Cd_Placa TEXT COLLATE SQLSERVER_CI_AS, "
        "Cd_TicketEstacionamento INTEGER, No_Situacao INTEGER, Vl_Tarifa REAL, "
        "Qt_TempoPermanenciaMinutos INTEGER, Dt_Saida TEXT, Dt_Entrada TEXT, Cd_EmpresaUsuariaSistema INTEGER, "
        "Cd_ClienteEstacionamento INTEGER, Cd_Caixa INTEGER, Ic_Mensalista INTEGER, Cd_ClienteConvenio INTEGER, "
        "Ds_Ticket TEXT, Cd_CartaoEstacionamento INTEGER, Ic_TicketRevalidado INTEGER)");
  }

  // A ticket through the translator, as the library writes its literals.
  void AddTicket(int number, const std::string& plate, int state, const std::string& entry,
                 const std::string& exit, int client = 0, int monthly = 0,
                 const std::string& code = "NULL") {
    db_.Run("INSERT INTO TbTicketEstacionamento (Cd_Placa, Cd_TicketEstacionamento, No_Situacao, Vl_Tarifa, "
        "Dt_Saida, Dt_Entrada, Cd_EmpresaUsuariaSistema, Cd_ClienteEstacionamento, Ic_Mensalista, Ds_Ticket, "
        "Cd_CartaoEstacionamento, Cd_Caixa)\rValues (" +
        plate + "," + std::to_string(number) + "," + std::to_string(state) + ",0," + exit + "," +
        entry + ",1," + std::to_string(client) + "," + std::to_string(monthly) + "," + code +
        ",0,7)");
  }

  void CreateTimetables() {
    db_.Exec("CREATE TABLE TbHorariosLinha (Cd_EmpresaUsuariaSistema INTEGER, Cd_Linha INTEGER, "
        "Cd_HorarioLinha INTEGER, Cd_EmpresaOnibus INTEGER, Cd_TipoOnibus INTEGER, Hr_Saida TEXT, "
        "Hr_Chegada TEXT, Ic_TemEmbarques INTEGER, Ic_TemDesembarque INTEGER, No_Plataforma INTEGER, "
        "Dt_Inicial TEXT, Dt_Final TEXT, Ic_ViagemNoSabado INTEGER)");
  }

  SqliteTestDb db_;
};

// ---- TOP ----------------------------------------------------------------------

TEST_F(SqliteTranslator, TopBecomesLimitAtTheEndOfItsSelect) {
  db_.Exec("CREATE TABLE TbFechamentoDiario (Cd_EmpresaUsuariaSistema INTEGER, Dt_FechamentoDiario TEXT)");
  db_.Run("INSERT INTO TbFechamentoDiario VALUES (1, '19/11/2026'), (2, '21/11/2026'), (1, '20/11/2026')");
  const Rows latest = db_.Run(Lines(
      {"SELECT   TOP 1 *", "FROM     TbFechamentoDiario", "ORDER BY Dt_FechamentoDiario Desc"}));
  ASSERT_EQ(latest.size(), 1u);
  EXPECT_EQ(latest[0][1], "2026-11-21 00:00:00");
  EXPECT_EQ(db_.Run("SELECT   TOP 0 * FROM TbFechamentoDiario").size(), 0u);
  EXPECT_EQ(db_.Run("SELECT TOP (2) * FROM TbFechamentoDiario ORDER BY 2").size(), 2u);
  EXPECT_EQ(
      db_.Run("SELECT DISTINCT TOP 5 Cd_EmpresaUsuariaSistema FROM TbFechamentoDiario").size(), 2u);
  // The library's closing ";" line and a trailing comment stay after the LIMIT.
  const Rows first =
      db_.Run(Lines({"SELECT TOP 1", "         TbFechamentoDiario.*", "FROM     TbFechamentoDiario",
                     "WHERE    TbFechamentoDiario.Cd_EmpresaUsuariaSistema = 1",
                     "ORDER BY TbFechamentoDiario.Dt_FechamentoDiario Desc;"}));
  ASSERT_EQ(first.size(), 1u);
  EXPECT_EQ(first[0][1], "2026-11-20 00:00:00");
  // A line comment ends at the CR: what follows it still counts.
  EXPECT_EQ(db_.Value(Lines({"SELECT Cd_EmpresaUsuariaSistema FROM TbFechamentoDiario -- Cidade Destino",
                             "ORDER BY 1 DESC"})),
            "2");
  EXPECT_EQ(
      db_.Run(Lines({"SELECT TOP 1 A.*", "FROM   TbFechamentoDiario A",
                     "WHERE  Dt_FechamentoDiario Between '20/11/2026 00:00' And '21/11/2026 23:59'",
                     "-- (Data Atual - 11 horas) And (Data Atual + 12 horas)"}))
          .size(),
      1u);
}

TEST_F(SqliteTranslator, TopInsideSubqueriesAndUnionBranches) {
  db_.Exec("CREATE TABLE Evento (Cd INTEGER, Evento INTEGER, Dt_Passagem TEXT)");
  db_.Run("INSERT INTO Evento VALUES (1, 1, '20/11/2026 08:00'), (1, 2, '20/11/2026 18:00'), "
      "(2, 2, '20/11/2026 08:00'), (2, 1, '21/11/2026 07:00')");
  // The card is inside when its latest passage is an entry.
  const Rows inside = db_.Run(Lines(
      {"SELECT DISTINCT A.Cd", "FROM   Evento A", "WHERE  IsNull((SELECT   TOP 1",
       "                       Evento", "               FROM     Evento",
       "               WHERE    Cd = A.Cd", "               ORDER BY Dt_Passagem DESC),'0') = 1"}));
  ASSERT_EQ(inside.size(), 1u);
  EXPECT_EQ(inside[0][0], "2");
  // SQLite refuses LIMIT before UNION: each branch with TOP is wrapped, and
  // the final ORDER BY still orders the whole.
  const Rows both =
      db_.Run(Lines({"SELECT TOP 1 Dt_Passagem FROM Evento WHERE Cd = 1", "UNION ALL",
                     "SELECT TOP 2 Dt_Passagem FROM Evento WHERE Cd = 2", "ORDER BY 1 DESC"}));
  ASSERT_EQ(both.size(), 3u);
  EXPECT_GE(both[0][0], both[1][0]);
  EXPECT_GE(both[1][0], both[2][0]);
  EXPECT_EQ(both[0][0], "2026-11-21 07:00:00");
  const Rows last =
      db_.Run("SELECT Cd FROM Evento WHERE Evento = 2 UNION SELECT TOP 0 Cd FROM Evento");
  EXPECT_EQ(last.size(), 2u);
}

TEST_F(SqliteTranslator, TopOrderedByTheFirstTableKeepsItOutermost) {
  // The board: the latest trips first, with their timetables.
  db_.Exec("CREATE TABLE V (H INTEGER, Hr TEXT)");
  db_.Exec("CREATE TABLE Hl (H INTEGER, P INTEGER)");
  db_.Run("INSERT INTO V VALUES (1, '2026-11-21 10:00:00'), (2, '2026-11-21 11:00:00'), (3, '2026-11-21 09:00:00')");
  db_.Run("INSERT INTO Hl VALUES (1, 4), (2, 7)");
  const std::string board = "SELECT TOP 2 A.H, B.P FROM V A INNER JOIN Hl B On A.H = B.H ORDER BY A.Hr Desc, B.P";
  EXPECT_NE(TranslateToSqlite(board).find("V A CROSS JOIN Hl B On A.H = B.H"), std::string::npos);
  // The rows are the inner join's: trip 3 has no timetable.
  EXPECT_EQ(db_.Run(board), (Rows{{"2", "7"}, {"1", "4"}}));
  EXPECT_NE(TranslateToSqlite("SELECT TOP 2 * FROM V JOIN Hl On V.H = Hl.H ORDER BY V.Hr").find("V CROSS JOIN Hl"),
            std::string::npos);
  // Ordered by another table, without TOP, or an outer join: written as it stands.
  for (const char* other : {"SELECT TOP 2 * FROM V A INNER JOIN Hl B On A.H = B.H ORDER BY B.P",
                            "SELECT A.H FROM V A INNER JOIN Hl B On A.H = B.H ORDER BY A.Hr",
                            "SELECT TOP 2 * FROM V A LEFT JOIN Hl B On A.H = B.H ORDER BY A.Hr",
                            "SELECT TOP 2 * FROM V A INNER JOIN Hl B On A.H = B.H ORDER BY A.Hr + B.P"}) {
    EXPECT_EQ(TranslateToSqlite(other).find("CROSS"), std::string::npos) << other;
  }
}

TEST_F(SqliteTranslator, TopFormsWithoutALimitEquivalentAreRefused) {
  EXPECT_TRUE(Mentions(TranslationError("SELECT TOP 10 PERCENT * FROM t"), "PERCENT"));
  EXPECT_TRUE(
      Mentions(TranslationError("SELECT TOP 1 WITH TIES * FROM t ORDER BY a"), "WITH TIES"));
  EXPECT_TRUE(Mentions(TranslationError("SELECT TOP x * FROM t"), "TOP"));
  EXPECT_TRUE(Mentions(TranslationError("SELECT TOP -1 * FROM t"), "TOP"));
  EXPECT_TRUE(Mentions(TranslationError("DELETE TOP (1) FROM t"), "DELETE TOP"));
  EXPECT_TRUE(Mentions(TranslationError("UPDATE TOP (1) t SET a = 1"), "UPDATE TOP"));
  EXPECT_TRUE(Mentions(TranslationError("INSERT TOP (1) INTO t SELECT * FROM u"), "INSERT TOP"));
}

// ---- the server's clock and dates ---------------------------------------------------

TEST_F(SqliteTranslator, GetDateInAnyCaseIsTheConnectionsClock) {
  EXPECT_EQ(db_.Value("SELECT getDate()"), "2026-11-21 10:30:15");
  EXPECT_EQ(db_.Value("SELECT GETDATE()"), "2026-11-21 10:30:15");
  EXPECT_EQ(db_.Value("SELECT CURRENT_TIMESTAMP"), "2026-11-21 10:30:15");
  db_.SetNow("31/12/2026 23:59:59");
  EXPECT_EQ(db_.Value("SELECT getdate()"), "2026-12-31 23:59:59");
}

TEST_F(SqliteTranslator, TimetableValidityComparesMomentsOrDaysAsWritten) {
  CreateTimetables();
  // Valid until today at midnight; until tomorrow; open-ended; ended yesterday; starts tomorrow.
  db_.Run("INSERT INTO TbHorariosLinha (Cd_HorarioLinha, Dt_Inicial, Dt_Final, Ic_ViagemNoSabado) VALUES "
      "(1, '01/11/2026', '21/11/2026', 1), (2, '21/11/2026', '22/11/2026', 1), (3, NULL, NULL, 1), "
      "(4, '01/11/2026', '20/11/2026', 1), (5, '22/11/2026', NULL, 1), (6, NULL, NULL, 0)");
  // The trips of the day compare the full moment: today's midnight is past.
  const Rows of_the_day =
      db_.Run(Lines({"SELECT * ", "FROM   TbHorariosLinha ", "WHERE  Ic_ViagemNoSabado <> 0 ",
                     "And (", "getDate() >= Dt_Inicial ", "Or Dt_Inicial Is Null) ", "And (",
                     "getDate() <= Dt_Final ", "Or Dt_Final Is Null) "}));
  std::vector<std::string> codes;
  for (const auto& row : of_the_day) codes.push_back(row[2]);
  EXPECT_EQ(codes, (std::vector<std::string>{"2", "3"}));
  // The search compares days: a timetable ending today still runs today.
  const Rows search = db_.Run(
      Lines({"SELECT Cd_HorarioLinha FROM TbHorariosLinha A",
             "WHERE (A.Dt_Inicial Is Null Or CONVERT(date, GetDate()) >= A.Dt_Inicial)",
             "And (A.Dt_Final Is Null Or CONVERT(date, GetDate()) <= A.Dt_Final)", "ORDER BY 1"}));
  codes.clear();
  for (const auto& row : search) codes.push_back(row[0]);
  EXPECT_EQ(codes, (std::vector<std::string>{"1", "2", "3", "6"}));
}

TEST_F(SqliteTranslator, DateLiteralsBecomeStoredDateText) {
  CreateTickets();
  AddTicket(1, "'A'", 2, "'19/11/2026 08:00:00'", "'19/11/2026 23:59:59'");
  AddTicket(2, "'B'", 2, "'20/11/2026 00:00:00'", "'20/11/2026 00:00:00'");
  AddTicket(3, "'C'", 2, "'2026-11-21 08:00'", "'21/11/2026 23:59:59'");
  AddTicket(4, "'D'", 2, "'21/11/2026 08:00:01'", "'22/11/2026 00:00:00'");
  const Rows period =
      db_.Run(Lines({"SELECT   IsNull(TbTicketEstacionamento.Cd_Placa,'') As Cd_Placa,",
                     "         TbTicketEstacionamento.Dt_Saida", "FROM     TbTicketEstacionamento",
                     "WHERE    TbTicketEstacionamento.Cd_EmpresaUsuariaSistema = 1",
                     "         And TbTicketEstacionamento.No_Situacao = 2",
                     "         And TbTicketEstacionamento.Dt_Saida Between '20/11/2026 00:00:00' "
                     "And '21/11/2026 23:59:59'",
                     "ORDER BY TbTicketEstacionamento.Dt_Saida"}));
  ASSERT_EQ(period.size(), 2u);
  EXPECT_EQ(period[0][0], "B");
  EXPECT_EQ(period[1][0], "C");
  EXPECT_EQ(period[1][1], "2026-11-21 23:59:59");
  // Minute precision ('dd/mm/yyyy hh:nn') means hh:nn:00.
  EXPECT_EQ(
      db_.Value("SELECT count(*) FROM TbTicketEstacionamento WHERE Dt_Entrada <= '21/11/2026 08:00'"),
      "3");
  EXPECT_EQ(
      db_.Value("SELECT count(*) FROM TbTicketEstacionamento WHERE Dt_Entrada > '2026-11-20'"),
      "2");
}

TEST_F(SqliteTranslator, DateDiffCountsBoundariesExactly) {
  CreateTickets();
  AddTicket(1, "'A'", 2, "'21/11/2026 10:00:59'", "'21/11/2026 10:01:00'", 9, 1);  // 1 minute
  AddTicket(2, "'B'", 2, "'21/11/2026 00:00:00'", "'21/11/2026 00:05:00'", 9, 1);  // 5 minutes
  AddTicket(3, "'C'", 2, "'20/11/2026 23:59:00'", "'21/11/2026 00:01:00'", 9,
            1);                                                   // 2 minutes, 1 day
  AddTicket(4, "'D'", 2, "'20/11/2026 08:00:00'", "NULL", 9, 1);  // no exit: 0
  const std::string minutes =
      db_.Value(Lines({"SELECT Sum(IsNull(DATEDIFF(N,TbTicketEstacionamento.Dt_Entrada,"
                       "TbTicketEstacionamento.Dt_Saida),0)) As Qt_MinutosPermanenciaoOutrosTickets",
                       "From   TbTicketEstacionamento",
                       "Where  TbTicketEstacionamento.Cd_EmpresaUsuariaSistema = 1",
                       "       And TbTicketEstacionamento.Cd_ClienteEstacionamento = 9",
                       "       And TbTicketEstacionamento.Ic_Mensalista = 1",
                       "       And TbTicketEstacionamento.No_Situacao = 2",
                       "       And TbTicketEstacionamento.Dt_Entrada >= '20/11/2026'"}));
  EXPECT_EQ(minutes, "8");
  const Rows units = db_.Run("SELECT DATEDIFF(mi, Dt_Entrada, Dt_Saida), DATEDIFF(minute, Dt_Entrada, Dt_Saida), "
      "DATEDIFF(day, Dt_Entrada, Dt_Saida), DATEDIFF(dd, Dt_Entrada, Dt_Saida), DATEDIFF(d, Dt_Entrada, Dt_Saida), "
      "DATEDIFF(hh, Dt_Entrada, Dt_Saida), DATEDIFF(ss, Dt_Entrada, Dt_Saida), DATEDIFF(s, Dt_Entrada, Dt_Saida), "
      "DATEDIFF(mm, Dt_Entrada, '01/12/2026'), DATEDIFF(yyyy, Dt_Entrada, '01/01/2027') "
      "FROM TbTicketEstacionamento WHERE Cd_TicketEstacionamento = 3");
  EXPECT_EQ(units[0],
            (std::vector<std::string>{"2", "2", "1", "1", "1", "1", "120", "120", "1", "1"}));
  EXPECT_TRUE(Mentions(TranslationError("SELECT DATEDIFF(fortnight, a, b) FROM t"), "fortnight"));
  EXPECT_TRUE(Mentions(TranslationError("SELECT DATEDIFF(day, a) FROM t"), "DATEDIFF"));
}

TEST_F(SqliteTranslator, OldPendingEntriesAreDeletedAfterNinetyMidnights) {
  CreateTickets();
  AddTicket(1, "'A'", 1, "'23/08/2026 00:00:00'", "NULL");  // 90 midnights ago: stays
  AddTicket(2, "'B'", 1, "'22/08/2026 23:59:59'", "NULL");  // 91: goes
  AddTicket(3, "'C'", 2, "'01/01/2026 00:00:00'", "'01/01/2026 01:00:00'");  // closed: stays
  db_.Run(Lines({"DELETE   TbTicketEstacionamento", "FROM     TbTicketEstacionamento",
                 "WHERE    TbTicketEstacionamento.Cd_EmpresaUsuariaSistema = 1",
                 "         And TbTicketEstacionamento.No_situacao = 1",
                 "         And DATEDIFF(day,TbTicketEstacionamento.Dt_Entrada, GetDate()) > 90"}));
  const Rows left = db_.Run("SELECT Cd_Placa FROM TbTicketEstacionamento ORDER BY 1");
  ASSERT_EQ(left.size(), 2u);
  EXPECT_EQ(left[0][0], "A");
  EXPECT_EQ(left[1][0], "C");
}

// ---- CONVERT, CAST and "+" ---------------------------------------------------------------

TEST_F(SqliteTranslator, ConvertAndCastTargets) {
  db_.Exec("CREATE TABLE T (Qt_Valor REAL, Dt_Movimento TEXT, Codigo INTEGER)");
  db_.Run("INSERT INTO T VALUES (2.675, '21/11/2026 23:59:59', 1234567)");
  const Rows rows = db_.Run("SELECT CONVERT(int, Qt_Valor), CONVERT(decimal(10,2), Qt_Valor), CONVERT(money, 1.23456), "
      "CAST(Qt_Valor AS varchar(10)), '[' + CONVERT(char(6), 'ab') + ']', CAST(Dt_Movimento AS date), "
      "CONVERT(datetime, '21/11/2026 7:05'), CONVERT(varchar(3), Codigo), CAST(Codigo AS float) / 2, "
      "CONVERT(varchar, Dt_Movimento, 120), CONVERT(nvarchar(max), Codigo) FROM T");
  ASSERT_EQ(rows.size(), 1u);
  EXPECT_EQ(rows[0], (std::vector<std::string>{"2", "2.68", "1.2346", "2.675", "[ab    ]",
                                               "2026-11-21 00:00:00", "2026-11-21 07:05:00", "*",
                                               "617283.5", "2026-11-21 23:59:59", "1234567"}));
  EXPECT_TRUE(Mentions(TranslationError("SELECT CONVERT(bit, 1)"), "bit"));
  EXPECT_TRUE(Mentions(TranslationError("SELECT CONVERT(varchar, x, 999) FROM t"), "999"));
  EXPECT_TRUE(Mentions(TranslationError("SELECT CONVERT(datetime, '11/21/2026', 101)"), "101"));
  EXPECT_TRUE(Mentions(TranslationError("SELECT CONVERT(varchar, x, @style) FROM t"), "style"));
  EXPECT_TRUE(Mentions(TranslationError("SELECT CAST(x) FROM t"), "CAST"));
}

TEST_F(SqliteTranslator, PlusConcatenatesTextsAndAddsNumbersAndDays) {
  db_.Exec("CREATE TABLE TbCidade (Cd_Cidade INTEGER, Nm_Cidade TEXT, Sg_Uf TEXT)");
  db_.Exec("CREATE TABLE TbContaReceber (No_ContaReceber INTEGER, Dt_Vencimento TEXT, Qt_DiasProrrogacao INTEGER, "
      "Qt_EmbarquesComPassagem INTEGER, Qt_EmbarquesSemPassagem INTEGER, Codigo, Outro)");
  db_.Run("INSERT INTO TbCidade VALUES (1, 'São João del-Rei', 'MG'), (2, NULL, 'SP')");
  db_.Run("INSERT INTO TbContaReceber VALUES (1, '30/11/2026', 3, 10, 2, 'AB', 'CD'), "
      "(2, '31/12/2026 23:59:59', NULL, 1, NULL, 5, 7)");
  const Rows names = db_.Run(
      "SELECT D.Nm_Cidade + '/' + D.Sg_Uf As Nm_CidadeOrigem FROM TbCidade D ORDER BY Cd_Cidade");
  EXPECT_EQ(names[0][0], "São João del-Rei/MG");
  EXPECT_EQ(names[1][0], "NULL");  // NULL + text is NULL, as in SQL Server
  const Rows sums = db_.Run("SELECT A.Dt_Vencimento + A.Qt_DiasProrrogacao as Dt_VencProrrogado, "
      "Sum(A.Qt_EmbarquesComPassagem + A.Qt_EmbarquesSemPassagem) As Qt_Embarques, A.Codigo + A.Outro, "
      "Qt_EmbarquesComPassagem * 2 + Qt_EmbarquesSemPassagem, 1 + A.Dt_Vencimento - 2 "
      "FROM TbContaReceber A GROUP BY No_ContaReceber ORDER BY No_ContaReceber");
  EXPECT_EQ(sums[0], (std::vector<std::string>{"2026-12-03 00:00:00", "12", "ABCD", "22",
                                               "2026-11-29 00:00:00"}));
  EXPECT_EQ(sums[1],
            (std::vector<std::string>{"NULL", "NULL", "12", "NULL", "2026-12-30 23:59:59"}));
  EXPECT_EQ(db_.Value("SELECT getdate() - 1"), "2026-11-20 10:30:15");
  EXPECT_EQ(db_.Value("SELECT Max(Dt_Vencimento) + 0.5 FROM TbContaReceber"),
            "2027-01-01 11:59:59");
  EXPECT_EQ(db_.Value("SELECT 'Total: ' + CONVERT(varchar, (2 + 3) * 2)"), "Total: 10");
  EXPECT_EQ(db_.Value("SELECT 'a' + (CASE WHEN 1 = 1 THEN 'b' ELSE 'c' END) + Upper('ç')"), "abÇ");
  EXPECT_TRUE(Mentions(
      db_.RunError("SELECT Codigo + 1 FROM TbContaReceber WHERE No_ContaReceber = 1"), "'AB'"));
  EXPECT_TRUE(Mentions(TranslationError("SELECT Dt_Entrada + 'x' FROM t"), "date"));
  EXPECT_TRUE(Mentions(TranslationError("SELECT Dt_Saida - Dt_Entrada FROM t"), "DATEDIFF"));
  EXPECT_TRUE(Mentions(TranslationError("SELECT 1 - Dt_Entrada FROM t"), "date"));
  EXPECT_TRUE(Mentions(TranslationError("SELECT Nm_Pessoa - 'x' FROM t"), "'-'"));
}

// ---- names -----------------------------------------------------------------------

TEST_F(SqliteTranslator, AccessControlDatabaseByThreeAndFourPartNames) {
  db_.Exec("ATTACH ':memory:' AS MDESTACIONAMENTO");
  db_.Exec("CREATE TABLE MDESTACIONAMENTO.CLIENTE (IDEMPRESACADASTRO INTEGER, IDCLIENTE INTEGER, NOME TEXT, "
      "VAGASEMUSO INTEGER)");
  db_.Exec("CREATE TABLE MDESTACIONAMENTO.CLIENTECARTAO (IDEMPRESACADASTRO INTEGER, IDCLIENTE INTEGER, "
      "IDEMPRESACARTAO INTEGER, IDCARTAO INTEGER, CODIGOCARTAO INTEGER, NOMEPROPRIETARIO TEXT)");
  db_.Exec("CREATE TABLE MDESTACIONAMENTO.LOGPERMANENCIAMENSALISTA (IDLOGPERMANENCIA INTEGER PRIMARY KEY, "
      "IDEMPRESA INTEGER, IDEMPRESACARTAO INTEGER, IDCARTAO INTEGER, EVENTO INTEGER, DATAHORAPASSAGEM TEXT, "
      "Cd_TicketEstacionamento INTEGER)");
  db_.Exec("CREATE TABLE TbClienteEstacionamento (Cd_EmpresaUsuariaSistema INTEGER, Cd_ClienteEstacionamento "
      "INTEGER, Cd_Tarifa INTEGER)");
  db_.Run("INSERT INTO MDESTACIONAMENTO.dbo.CLIENTE VALUES (1, 10, 'José da Silva Xavier Pereira', 2), "
      "(1, 11, 'Ana', 0)");
  db_.Run("INSERT INTO MDESTACIONAMENTO.dbo.CLIENTECARTAO VALUES (1, 10, 1, 100, 123456, 'José'), "
      "(1, 11, 1, 101, 777, 'Ana')");
  db_.Run("INSERT INTO MDESTACIONAMENTO.dbo.LOGPERMANENCIAMENSALISTA VALUES "
      "(1, 1, 1, 100, 1, '20/11/2026 08:00', NULL), (2, 1, 1, 100, 2, '20/11/2026 18:00', NULL), "
      "(3, 1, 1, 100, 1, '21/11/2026 07:00', NULL), (4, 1, 1, 101, 1, '21/11/2026 07:30', NULL)");
  db_.Run("INSERT INTO dbo.TbClienteEstacionamento VALUES (1, 10, 5), (1, 12, 5)");

  const Rows client =
      db_.Run(Lines({"SELECT TbClienteEstacionamento.*,",
                     "       IsNull(MDESTACIONAMENTO.DBO.CLIENTE.VAGASEMUSO,0) As Qt_VagasEmUso",
                     "FROM   TbClienteEstacionamento",
                     "       LEFT JOIN MDESTACIONAMENTO.DBO.CLIENTE ON "
                     "MDESTACIONAMENTO.DBO.CLIENTE.IDEMPRESACADASTRO = "
                     "TbClienteEstacionamento.Cd_EmpresaUsuariaSistema",
                     "                 And MDESTACIONAMENTO.DBO.CLIENTE.IDCLIENTE = "
                     "TbClienteEstacionamento.Cd_ClienteEstacionamento",
                     "WHERE  TbClienteEstacionamento.Cd_EmpresaUsuariaSistema = 1", "ORDER BY 2"}));
  ASSERT_EQ(client.size(), 2u);
  EXPECT_EQ(client[0][3], "2");
  EXPECT_EQ(client[1][3], "0");  // unknown to the access-control system

  const std::string joins = Lines(
      {"FROM     MDESTACIONAMENTO.dbo.CLIENTE As Cliente",
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
       "                     ORDER BY DATAHORAPASSAGEM DESC),'0') = 1"});
  // The delete through the join removes the entries of the card inside, only.
  db_.Run("DELETE   MDESTACIONAMENTO.dbo.LOGPERMANENCIAMENSALISTA\r" + joins);
  const Rows logs = db_.Run("SELECT IDLOGPERMANENCIA FROM MDESTACIONAMENTO.dbo.LOGPERMANENCIAMENSALISTA ORDER BY 1");
  ASSERT_EQ(logs.size(), 2u);
  EXPECT_EQ(logs[0][0], "2");
  EXPECT_EQ(logs[1][0], "4");

  db_.Run(Lines({"UPDATE MDESTACIONAMENTO.dbo.LOGPERMANENCIAMENSALISTA",
                 "SET    Cd_TicketEstacionamento = 55", "WHERE  IDEMPRESA = 1",
                 "       And IDLOGPERMANENCIA = 4"}));
  const Rows pending =
      db_.Run(Lines({"SELECT   MDESTACIONAMENTO.dbo.LOGPERMANENCIAMENSALISTA.*,",
                     "         MDESTACIONAMENTO.dbo.CLIENTECARTAO.IDCLIENTE",
                     "FROM     MDESTACIONAMENTO.dbo.LOGPERMANENCIAMENSALISTA",
                     "         INNER JOIN MDESTACIONAMENTO.dbo.CLIENTECARTAO ON "
                     "MDESTACIONAMENTO.dbo.CLIENTECARTAO.IDEMPRESACARTAO = "
                     "MDESTACIONAMENTO.dbo.LOGPERMANENCIAMENSALISTA.IDEMPRESACARTAO",
                     "                    And MDESTACIONAMENTO.dbo.CLIENTECARTAO.IDCARTAO = "
                     "MDESTACIONAMENTO.dbo.LOGPERMANENCIAMENSALISTA.IDCARTAO",
                     "WHERE    Cd_TicketEstacionamento IS NULL",
                     "ORDER BY MDESTACIONAMENTO.dbo.LOGPERMANENCIAMENSALISTA.IDLOGPERMANENCIA"}));
  ASSERT_EQ(pending.size(), 1u);
  EXPECT_EQ(pending[0][0], "2");
  EXPECT_EQ(pending[0].back(), "10");
}

TEST_F(SqliteTranslator, AgreementVacanciesAtAMomentWithACorrelatedCount) {
  CreateTickets();
  db_.Exec("CREATE TABLE TbConvenioEstacionamento (Cd_EmpresaUsuariaSistema INTEGER, Cd_ClienteConvenio INTEGER, "
      "Qt_Vagas INTEGER)");
  db_.Run("INSERT INTO TbConvenioEstacionamento VALUES (1, 30, 5)");
  // Left exactly at the moment (does not count), a second later, never, and one being edited.
  AddTicket(1, "'A'", 2, "'21/11/2026 08:00'", "'21/11/2026 10:30:15'", 0, 0);
  AddTicket(2, "'B'", 2, "'21/11/2026 08:00'", "'21/11/2026 10:30:16'", 0, 0);
  AddTicket(3, "'C'", 1, "'21/11/2026 08:00'", "NULL", 0, 0);
  AddTicket(4, "'D'", 1, "'21/11/2026 09:00'", "NULL", 0, 0);
  db_.Run("UPDATE TbTicketEstacionamento SET Cd_ClienteConvenio = 30");
  const std::string free_places = db_.Value(Lines(
      {"SELECT TbConvenioEstacionamento.Qt_Vagas -", "       (SELECT Count(1)",
       "        FROM   TbTicketEstacionamento",
       "        WHERE  TbTicketEstacionamento.Cd_EmpresaUsuariaSistema = "
       "TbConvenioEstacionamento.Cd_EmpresaUsuariaSistema",
       "               And TbTicketEstacionamento.Cd_ClienteConvenio = TbConvenioEstacionamento.Cd_ClienteConvenio",
       "               And TbTicketEstacionamento.Cd_TicketEstacionamento <> 4",
       "               And (TbTicketEstacionamento.Dt_Saida > '21/11/2026 10:30:15'",
       "                    Or TbTicketEstacionamento.Dt_Saida  IS NULL)) As Qt_VagasDisponiveis",
       "FROM   TbConvenioEstacionamento",
       "WHERE  TbConvenioEstacionamento.Cd_EmpresaUsuariaSistema = 1",
       "       And TbConvenioEstacionamento.Cd_ClienteConvenio = 30"}));
  EXPECT_EQ(free_places, "3");
}

TEST_F(SqliteTranslator, BracketedAndOwnerQualifiedNames) {
  db_.Exec("CREATE TABLE \"Tb Cor\" (\"Cd Cor\" INTEGER, \"Nm]Cor\" TEXT)");
  db_.Run("INSERT INTO [dbo].[Tb Cor] ([Cd Cor], [Nm]]Cor]) VALUES (1, N'Azul')");
  EXPECT_EQ(db_.Value("SELECT [C].[Nm]]Cor] FROM dbo.[Tb Cor] [C] WHERE [C].[Cd Cor] = 1"), "Azul");
  EXPECT_EQ(db_.Value("SELECT C.* FROM [Tb Cor] C"), "1");
  // An unknown bracketed name is an error, never a string.
  EXPECT_TRUE(Mentions(db_.RunError("SELECT [Nm_Inexistente] FROM [Tb Cor]"), "no such column"));
}

TEST_F(SqliteTranslator, SysDatabasesListsTheAttachedDatabases) {
  const std::string exists = Lines({"SELECT name, database_id, create_date", "From   sys.databases",
                                    "WHERE  name = 'MDESTACIONAMENTO'"});
  EXPECT_EQ(db_.Run(exists).size(), 0u);
  db_.Exec("ATTACH ':memory:' AS MDESTACIONAMENTO");
  const Rows found = db_.Run(exists);
  ASSERT_EQ(found.size(), 1u);
  EXPECT_EQ(found[0][0], "MDESTACIONAMENTO");
  EXPECT_EQ(found[0][2], "NULL");
  EXPECT_EQ(db_.Run("SELECT name FROM sys.databases WHERE name = 'mdestacionamento'").size(), 1u);
  EXPECT_EQ(db_.Run("SELECT d.name FROM sys.databases AS d WHERE d.name = 'main'").size(), 1u);
  EXPECT_EQ(db_.Run("SELECT name FROM sys.databases WHERE name = 'temp'").size(), 0u);
  EXPECT_TRUE(Mentions(TranslationError("SELECT * FROM sys.tables"), "sys.tables"));
}

// ---- qualifiers that name an aliased table ------------------------------------------

class SqliteTranslatorAddresses : public SqliteTranslator {
 protected:
  // Goiânia has three neighbourhoods and the postcode 74000-000, Brasília
  // one and 70000-000, Salvador one and no postcode.
  SqliteTranslatorAddresses() {
    for (const char* table :
         {"TbUF", "TbCidade", "TbBairro", "TbLogradouro", "TbCEP_TbLogradouro"}) {
      for (const std::string& statement :
           schema::SqliteTableStatements(*schema::FindTable(table), "")) {
        db_.Exec(statement);
      }
    }
    db_.Run("INSERT INTO TbUF (Cd_UF, Nm_UF, Sg_UF) VALUES (9, 'Goiás', 'GO'), "
            "(7, 'Distrito Federal', 'DF'), (5, 'Bahia', 'BA')");
    db_.Run("INSERT INTO TbCidade (Cd_Cidade, Nm_Cidade, Cd_UF, Sg_UF) VALUES (3, 'Goiânia', 9, "
            "'GO'), (4, 'Brasília', 7, 'DF'), (6, 'Salvador', 5, 'BA')");
    db_.Run("INSERT INTO TbBairro (Cd_Bairro, Nm_Bairro, Cd_Cidade) VALUES (1, 'Centro', 3), "
            "(2, 'Setor Oeste', 3), (5, 'Água Branca', 3), (8, 'Asa Sul', 4), (9, 'Barra', 6)");
    db_.Run("INSERT INTO TbLogradouro (Cd_Logradouro, Nm_Logradouro, Cd_Cidade) VALUES "
            "(20, 'Avenida Goiás', 3), (21, 'Eixo Monumental', 4)");
    db_.Run("INSERT INTO TbCEP_TbLogradouro (Cd_Logradouro, Cd_EP) VALUES (20, '74000-000'), (21, '70000-000')");
  }

  static std::string Column(const Rows& rows, size_t column) {
    std::string joined;
    for (const auto& row : rows) joined += (joined.empty() ? "" : "|") + row.at(column);
    return joined;
  }
};

// The loaders' own statements run through them in the registry tests.
TEST_F(SqliteTranslatorAddresses, TheListLoadersQualifyByTheTablesRealName) {
  const std::string plain =
      Lines({"SELECT   TbBairro.*", "FROM     TbBairro A", "ORDER BY TbBairro.Nm_Bairro", ";"});
  const Rows all = db_.Run(plain);
  ASSERT_EQ(all.size(), 5u);
  EXPECT_EQ(all[0], (std::vector<std::string>{"5", "Água Branca", "3"}));  // A.*, no more
  EXPECT_EQ(Column(all, 1), "Água Branca|Asa Sul|Barra|Centro|Setor Oeste");
  EXPECT_FALSE(Mentions(TranslateToSqlite(plain), "TbBairro."));
}

TEST_F(SqliteTranslatorAddresses, AnAliasOrAnUnaliasedTableOfTheNameKeepsTheQualifier) {
  // TbBairro is the alias of the cities here, not the neighbourhoods' B.
  EXPECT_EQ(db_.Value("SELECT TbBairro.Nm_Cidade FROM TbCidade TbBairro JOIN TbBairro B ON "
                      "B.Cd_Cidade = TbBairro.Cd_Cidade WHERE B.Cd_Bairro = 8"),
            "Brasília");
  // The same table once with and once without an alias: the name is the unaliased one.
  EXPECT_EQ(Column(db_.Run("SELECT TbBairro.Nm_Bairro FROM TbBairro A JOIN TbBairro ON "
                           "TbBairro.Cd_Cidade = A.Cd_Cidade WHERE A.Cd_Bairro = 1 And "
                           "TbBairro.Cd_Bairro <> 1 ORDER BY 1"),
                   0),
            "Água Branca|Setor Oeste");
  // A name that two aliased tables share means neither: the database refuses it.
  EXPECT_TRUE(Mentions(db_.RunError("SELECT TbCidade.Nm_Cidade FROM TbCidade D JOIN TbCidade E ON D.Cd_UF = E.Cd_UF"),
                       "no such column"));
  // Texts, bracketed names, owners and other cases.
  EXPECT_EQ(db_.Value("SELECT 'TbBairro.Nm_Bairro' FROM TbBairro A -- TbBairro.x\r"),
            "TbBairro.Nm_Bairro");
  EXPECT_EQ(db_.Value("SELECT [TbBairro].[Nm_Bairro] FROM [TbBairro] [A] WHERE [tbBAIRRO].Cd_Bairro = 8"),
            "Asa Sul");
  EXPECT_EQ(db_.Value("SELECT dbo.TbBairro.Nm_Bairro FROM dbo.TbBairro As A WHERE dbo.TbBairro.Cd_Bairro = 9"),
            "Barra");
  // A table named like an attached database: names in FROM are never qualifiers.
  db_.Exec("ATTACH ':memory:' AS Arquivo");
  db_.Exec("CREATE TABLE Arquivo.TbBairro (Cd_Bairro INTEGER, Nm_Bairro TEXT)");
  db_.Exec("CREATE TABLE main.Arquivo (Cd_Bairro INTEGER)");
  db_.Exec("INSERT INTO Arquivo.TbBairro VALUES (1, 'Arquivado')");
  db_.Exec("INSERT INTO main.Arquivo VALUES (1)");
  EXPECT_EQ(db_.Value("SELECT B.Nm_Bairro FROM Arquivo Z JOIN Arquivo.dbo.TbBairro B ON "
                      "B.Cd_Bairro = Arquivo.Cd_Bairro"),
            "Arquivado");
  // Each branch of a compound is a scope of its own.
  EXPECT_EQ(Column(db_.Run("SELECT TbBairro.Nm_Bairro FROM TbBairro A WHERE TbBairro.Cd_Bairro = 2 "
                           "UNION ALL SELECT TbBairro.Nm_Bairro FROM TbBairro WHERE TbBairro.Cd_Bairro = 9 ORDER BY 1"),
                   0),
            "Barra|Setor Oeste");
}

TEST_F(SqliteTranslatorAddresses, SubQueriesLookQualifiersUpFromTheirOwnScopeOutwards) {
  // Correlated: TbCidade inside is the outer query's C.
  const Rows counts = db_.Run(
      Lines({"SELECT TbCidade.Nm_Cidade,", "       (SELECT Count(*) FROM TbBairro",
             "        WHERE  TbBairro.Cd_Cidade = TbCidade.Cd_Cidade) As Qt_Bairros",
             "FROM   TbCidade C", "ORDER BY TbCidade.Nm_Cidade"}));
  EXPECT_EQ(counts, (Rows{{"Brasília", "1"}, {"Goiânia", "3"}, {"Salvador", "1"}}));
  // The sub-query's own alias, and the outer table by its real name.
  EXPECT_EQ(Column(db_.Run(Lines({"SELECT C.Nm_Cidade FROM TbCidade C",
                                  "WHERE EXISTS (SELECT 1 FROM TbBairro B",
                                  "              WHERE TbBairro.Cd_Cidade = TbCidade.Cd_Cidade",
                                  "                And TbBairro.Nm_Bairro Like 'S%')"})),
                   0),
            "Goiânia");
  // A sub-query's alias that is the outer table's name shadows it.
  EXPECT_EQ(Column(db_.Run(Lines({"SELECT TbBairro.Nm_Bairro FROM TbBairro A",
                                  "WHERE TbBairro.Cd_Cidade IN (SELECT TbBairro.Cd_Cidade",
                                  "                             FROM TbCidade TbBairro",
                                  "                             WHERE TbBairro.Sg_UF = 'BA')"})),
                   0),
            "Barra");
  // After the sub-query, whose TbBairro has no alias, the outer scope holds again.
  EXPECT_EQ(db_.Value(Lines({"SELECT Count(*) FROM TbBairro A",
                             "WHERE (SELECT Count(*) FROM TbBairro WHERE TbBairro.Cd_Cidade = A.Cd_Cidade) > 1",
                             "  And TbBairro.Cd_Bairro <> 1"})),
            "2");
  // Many tables, by database and table name too, and a sub-query among them.
  const Rows chain = db_.Run(Lines(
      {"SELECT TbBairro.Nm_Bairro, main.dbo.TbCidade.Nm_Cidade, TbUF.Sg_UF, TbCEP_TbLogradouro.Cd_EP",
       "FROM   main.dbo.TbBairro A",
       "       JOIN main.dbo.TbCidade C ON C.Cd_Cidade = TbBairro.Cd_Cidade",
       "       JOIN main.dbo.TbUF U ON U.Cd_UF = TbCidade.Cd_UF",
       "       JOIN main.dbo.TbLogradouro L ON L.Cd_Cidade = TbCidade.Cd_Cidade",
       "       JOIN main.dbo.TbCEP_TbLogradouro P ON P.Cd_Logradouro = TbLogradouro.Cd_Logradouro",
       "WHERE  TbBairro.Cd_Bairro IN (SELECT TbBairro.Cd_Bairro FROM TbBairro B",
       "                              WHERE TbBairro.Nm_Bairro Like 'A%' And TbUF.Sg_UF = 'DF')",
       "ORDER BY main.TbCidade.Nm_Cidade, TbBairro.Nm_Bairro"}));
  EXPECT_EQ(chain, (Rows{{"Asa Sul", "Brasília", "DF", "70000-000"}}));
  // A branch of a compound does not see the branch before it.
  EXPECT_EQ(Column(db_.Run(Lines({"SELECT TbBairro.Nm_Bairro FROM TbBairro A",
                                  "WHERE EXISTS (SELECT 1 FROM TbCidade TbBairro WHERE TbBairro.Cd_Cidade = 99",
                                  "              UNION ALL",
                                  "              SELECT 1 FROM TbCidade C WHERE C.Cd_Cidade = "
                                  "TbBairro.Cd_Cidade And C.Sg_UF = 'DF')"})),
                   0),
            "Asa Sul");
}

TEST_F(SqliteTranslatorAddresses, DeleteAndUpdateQualifyByTheRealNameToo) {
  db_.Run("UPDATE TbCidade SET Nm_Cidade = Upper(Nm_Cidade) FROM TbUF U WHERE U.Cd_UF = "
          "TbCidade.Cd_UF And TbUF.Sg_UF = 'DF'");
  EXPECT_EQ(db_.Value("SELECT Nm_Cidade FROM TbCidade WHERE Cd_Cidade = 4"), "BRASÍLIA");
  db_.Run("DELETE FROM TbBairro A WHERE TbBairro.Cd_Bairro = 9");
  db_.Run(Lines({"DELETE TbBairro", "FROM   TbBairro A JOIN TbCidade C ON C.Cd_Cidade = TbBairro.Cd_Cidade",
                 "WHERE  TbCidade.Sg_UF = 'DF'"}));
  EXPECT_EQ(Column(db_.Run("SELECT Cd_Bairro FROM TbBairro ORDER BY 1"), 0), "1|2|5");
}

// ---- DELETE, UPDATE, INSERT -----------------------------------------------------------

TEST_F(SqliteTranslator, DeleteForms) {
  db_.Exec("CREATE TABLE TbViagemOnibus (Cd_EmpresaUsuariaSistema INTEGER, Cd_ViagemOnibus INTEGER, "
      "Hr_Previsto TEXT, No_Plataforma INTEGER)");
  const auto reset = [&] {
    db_.Exec("DELETE FROM TbViagemOnibus");
    db_.Run("INSERT INTO TbViagemOnibus VALUES (1, 1, '21/11/2026 08:00', 1), (1, 2, '21/11/2026 08:00', 2), "
        "(2, 3, '21/11/2026 08:00', 3), (1, 4, '21/11/2026 08:01', 3)");
  };
  const auto remaining = [&] {
    std::string codes;
    for (const auto& row : db_.Run("SELECT Cd_ViagemOnibus FROM TbViagemOnibus ORDER BY 1"))
      codes += row[0];
    return codes;
  };
  reset();
  db_.Run(Lines({"DELETE ", "FROM   TbViagemOnibus A", "WHERE  Cd_EmpresaUsuariaSistema = 1",
                 "And Hr_Previsto = '2026-11-21 08:00:00'", ";"}));
  EXPECT_EQ(remaining(), "34");
  reset();
  db_.Run("DELETE FROM TbViagemOnibus A WHERE A.No_Plataforma = 3 AND A.Cd_EmpresaUsuariaSistema = 1");
  EXPECT_EQ(remaining(), "123");
  reset();
  db_.Run("DELETE TbViagemOnibus WHERE No_Plataforma = 1");
  EXPECT_EQ(remaining(), "234");
  reset();
  db_.Run("DELETE A FROM TbViagemOnibus A JOIN TbViagemOnibus B ON B.No_Plataforma = A.No_Plataforma "
      "AND B.Cd_ViagemOnibus <> A.Cd_ViagemOnibus");
  EXPECT_EQ(remaining(), "12");
  reset();
  db_.Run(Lines({"DELETE", "FROM   TbViagemOnibus", "WHERE  Cd_ViagemOnibus = 2"}));
  EXPECT_EQ(remaining(), "134");
  reset();
  db_.Run("TRUNCATE TABLE TbViagemOnibus");
  EXPECT_EQ(remaining(), "");
  EXPECT_TRUE(
      Mentions(TranslationError("DELETE T FROM U JOIN V ON U.a = V.a"), "not in the FROM clause"));
  EXPECT_TRUE(Mentions(TranslationError("DELETE FROM WHERE a = 1"), "DELETE"));
}

TEST_F(SqliteTranslator, UpdateAndInsertForms) {
  db_.Exec("CREATE TABLE TbCidade (Cd_Cidade INTEGER, Nm_Cidade TEXT, Sg_Cidade TEXT, Sg_UF TEXT, Cd_UF INTEGER, "
      "Qt_DistanciaEmKm INTEGER)");
  db_.Exec("CREATE TABLE TbLinha (Cd_Linha INTEGER, Cd_CidadeOrigem INTEGER, Cd_CidadeDestino INTEGER)");
  db_.Exec("CREATE TABLE TbEscalasHorarioLinha (Cd_Linha INTEGER, Cd_Cidade INTEGER)");
  db_.Exec("CREATE TABLE TempCidade (Cd_Cidade INTEGER, Nm_Cidade TEXT, Sg_Cidade TEXT, Sg_UF TEXT, Cd_UF INTEGER, "
      "Qt_DistanciaEmKm INTEGER, Ic_ExisteArquivoSom INTEGER)");
  db_.Run("INSERT TbCidade VALUES (1, 'Belo Horizonte', 'BHZ', 'MG', 31, 0), (2, 'São Paulo', 'SAO', 'SP', 35, 586), "
      "(3, 'Três Corações', 'TCO', 'MG', 31, 280)");
  db_.Run("INSERT INTO TbLinha VALUES (1, 1, 2), (2, 2, 1)");
  db_.Run("INSERT INTO TbEscalasHorarioLinha VALUES (1, 3), (2, 2)");
  db_.Run(Lines({"Delete", "from TempCidade"}));
  const std::string columns = Lines({"SELECT   B.Cd_Cidade,", "B.Nm_Cidade,", "B.Sg_Cidade,",
                                     "B.Sg_UF,", "B.Cd_UF,", "B.Qt_DistanciaEmKm,", "0"});
  db_.Run(Lines({"INSERT INTO TempCidade", columns, "FROM     TbLinha A",
                 "INNER JOIN TbCidade B On B.Cd_Cidade = A.Cd_CidadeOrigem"}));
  db_.Run(Lines({"INSERT INTO TempCidade", columns, "FROM     TbEscalasHorarioLinha A",
                 "INNER JOIN TbCidade B On B.Cd_Cidade = A.Cd_Cidade"}));
  db_.Run(Lines({"Update TempCidade", "Set    Ic_ExisteArquivoSom = 1", "Where  Cd_Cidade = 2"}));
  db_.Run("UPDATE TempCidade SET TempCidade.Nm_Cidade = Upper(Nm_Cidade) + '!' WHERE Cd_Cidade = 3");
  const Rows cities =
      db_.Run(Lines({"SELECT   DISTINCT *", "from TempCidade", "ORDER BY Cd_Cidade"}));
  ASSERT_EQ(cities.size(), 3u);
  EXPECT_EQ(cities[1][6], "1");
  EXPECT_EQ(cities[2][1], "TRÊS CORAÇÕES!");
  EXPECT_TRUE(Mentions(
      TranslationError("UPDATE A SET x = 1 FROM TempCidade A JOIN TbCidade B ON A.x = B.x"),
      "UPDATE ... FROM"));
  EXPECT_TRUE(Mentions(TranslationError("INSERT INTO t EXEC proc"), "EXEC"));
}

// ---- queries as the system writes them -----------------------------------------------------

TEST_F(SqliteTranslator, TillTakingsUnionOrderedByTariff) {
  db_.Exec("CREATE TABLE TbTarifa (Cd_EmpresaUsuariaSistema INTEGER, Cd_Tarifa INTEGER, Ds_Tarifa TEXT)");
  db_.Exec("CREATE TABLE TbTicketEstacionamento_TbTarifa (Cd_EmpresaUsuariaSistema INTEGER, Cd_Tarifa INTEGER, "
      "Cd_TicketEstacionamento INTEGER, Qt_Unidade INTEGER, Vl_Tarifa REAL)");
  db_.Exec("CREATE TABLE TbTicketEstacionamento (cd_empresausuariasistema INTEGER, Cd_TicketEstacionamento INTEGER, "
      "Cd_Caixa INTEGER)");
  db_.Exec("CREATE TABLE TbTicketSanitario (Cd_EmpresaUsuariaSistema INTEGER, Cd_Tarifa INTEGER, Qt_Unidade INTEGER, "
      "Vl_Tarifa REAL, Cd_Caixa INTEGER)");
  db_.Run("INSERT INTO TbTarifa VALUES (1, 2, 'ESTACIONAMENTO 1H'), (1, 1, 'SANITARIO'), (2, 2, 'OUTRA')");
  db_.Run("INSERT INTO TbTicketEstacionamento VALUES (1, 10, 7), (2, 10, 7), (1, 11, 8)");
  db_.Run("INSERT INTO TbTicketEstacionamento_TbTarifa VALUES (1, 2, 10, 2, 5.0), (1, 2, 11, 1, 5.0), "
      "(2, 2, 10, 9, 5.0)");
  db_.Run("INSERT INTO TbTicketSanitario VALUES (1, 1, 3, 1.5, 7), (1, 1, 1, 1.5, 7)");
  const std::string columns =
      Lines({"         A.Cd_Tarifa,", "         B.Ds_Tarifa,",
             "         Sum(A.Qt_Unidade) As Qt_Unidade,", "         A.Vl_Tarifa"});
  const std::string group =
      Lines({"GROUP BY A.Cd_Tarifa,", "         B.Ds_Tarifa,", "         A.Vl_Tarifa"});
  const Rows takings = db_.Run(Lines(
      {"SELECT   'ESTACIONAMENTO' AS Ds_Tipo,",
       columns,
       "FROM     TbTicketEstacionamento_TbTarifa A",
       "         INNER JOIN TbTarifa B On A.Cd_EmpresaUsuariaSistema = B.Cd_EmpresaUsuariaSistema",
       "                    And A.Cd_Tarifa = b.Cd_Tarifa",
       "         INNER JOIN TbTicketEstacionamento C On A.cd_empresausuariasistema = C.cd_empresausuariasistema",
       "                    And A.Cd_TicketEstacionamento = C.Cd_TicketEstacionamento",
       "WHERE    A.Cd_EmpresaUsuariaSistema = 1",
       "         And C.Cd_Caixa = 7",
       group,
       "UNION",
       "SELECT   'SANITARIO' AS Ds_Tipo,",
       columns,
       "FROM     TbTicketSanitario A",
       "         INNER JOIN TbTarifa B On A.Cd_EmpresaUsuariaSistema = B.Cd_EmpresaUsuariaSistema",
       "                    And A.Cd_Tarifa = B.Cd_Tarifa",
       "WHERE    A.Cd_EmpresaUsuariaSistema = 1",
       "         And A.Cd_Caixa = 7",
       group,
       "ORDER BY A.Cd_Tarifa;"}));
  ASSERT_EQ(takings.size(), 2u);
  EXPECT_EQ(takings[0], (std::vector<std::string>{"SANITARIO", "1", "SANITARIO", "4", "1.5"}));
  EXPECT_EQ(takings[1],
            (std::vector<std::string>{"ESTACIONAMENTO", "2", "ESTACIONAMENTO 1H", "2", "5.0"}));
}

TEST_F(SqliteTranslator, TextAndDateFunctionsKeepTheirSqlServerMeaning) {
  db_.Exec("CREATE TABLE TbCartaoEstacionamento (Cd_EmpresaUsuariaSistema INTEGER, Cd_ClienteEstacionamento INTEGER, "
      "Cd_CartaoEstacionamento INTEGER, Ds_IdentificacaoCartao TEXT, Nm_Portador TEXT, No_TipoVeiculo INTEGER, "
      "Hr_Validade TEXT)");
  db_.Run("INSERT INTO TbCartaoEstacionamento VALUES (1, 9, 1, '  0001  ', 'joão', 0, '21/11/2026 23:59:59'), "
      "(1, 9, 2, '0002', 'Zé', 1, '01/02/2027 00:00'), (1, 9, 3, '0003', 'Ana', 2, NULL)");
  const Rows text = db_.Run("SELECT Len(Ds_IdentificacaoCartao), Upper(Nm_Portador), LTrim(Ds_IdentificacaoCartao) + "
      "'|', CharIndex('JO', Nm_Portador), Substring(Nm_Portador, 2, 10), Round(12.345, 2), Day(Hr_Validade), "
      "Month(Hr_Validade), Year(Hr_Validade), Left(Nm_Portador, 2), Right(Nm_Portador, 2), "
      "Replace(Nm_Portador, 'JOÃO', 'x'), Lower('ÁGUA') FROM TbCartaoEstacionamento ORDER BY 1 DESC, 2");
  ASSERT_EQ(text.size(), 3u);
  EXPECT_EQ(text[0], (std::vector<std::string>{"6", "JOÃO", "0001  |", "1", "oão", "12.35", "21",
                                               "11", "2026", "jo", "ão", "x", "água"}));
  EXPECT_EQ(text[1][1], "ANA");
  EXPECT_EQ(text[1][6], "NULL");
  // From the first character on, a text's substring is SQLite's own, which an
  // index on the expression can serve; elsewhere SQL Server's positions need vek_substring.
  EXPECT_NE(TranslateToSqlite("SELECT Substring(Nm_Portador,1,13) FROM T").find("CAST(substr(Nm_Portador,1,13) AS TEXT)"),
            std::string::npos);
  for (const char* other : {"Substring(Nm_Portador,0,13)", "Substring(Nm_Portador,1,Qt_A)",
                            "Substring(Qt_A,1,2)"}) {
    EXPECT_NE(TranslateToSqlite(std::string("SELECT ") + other + " FROM T").find("vek_substring("),
              std::string::npos) << other;
  }
}

TEST_F(SqliteTranslator, SelectAliasAssignmentNamesTheColumn) {
  db_.Exec("CREATE TABLE T (Qt_A INTEGER, Qt_B INTEGER, Nm_X TEXT)");
  db_.Run("INSERT INTO T VALUES (2, 3, 'x')");
  const Rows rows = db_.Run("SELECT Total = Qt_A + Qt_B, 'Nome' = Nm_X + '!', [Soma Dupla] = (Qt_A + Qt_B) * 2 FROM T");
  EXPECT_EQ(rows[0], (std::vector<std::string>{"5", "x!", "10"}));
  EXPECT_EQ(db_.Value("SELECT x.Total FROM (SELECT Total = Qt_A FROM T) x"), "2");
  EXPECT_EQ(db_.Value("SELECT count(*) FROM T WHERE Qt_A = 2"), "1");
  EXPECT_TRUE(Mentions(TranslationError("SELECT @x = Qt_A FROM T"), "variables"));
}

TEST_F(SqliteTranslator, SeveralStatementsTranslateOneByOne) {
  db_.Exec("CREATE TABLE T (Dt_Movimento TEXT)");
  db_.Exec(TranslateToSqlite("DELETE FROM T; INSERT T VALUES ('21/11/2026'); INSERT INTO T SELECT getdate();"));
  const Rows rows = db_.Run("SELECT Dt_Movimento FROM T ORDER BY 1");
  ASSERT_EQ(rows.size(), 2u);
  EXPECT_EQ(rows[0][0], "2026-11-21 00:00:00");
  EXPECT_EQ(rows[1][0], "2026-11-21 10:30:15");
  db_.Exec(TranslateToSqlite("BEGIN TRAN; DELETE FROM T; ROLLBACK TRAN"));
  EXPECT_EQ(db_.Value("SELECT count(*) FROM T"), "2");
}

TEST(SqliteStringLiteralValue, IsTheTextTheTranslationWritesBetweenQuotes) {
  const std::vector<Token> tokens = Tokenize(
      "'21/11/2026' N'2026-11-21 10:30' '1/2/2027 7:05:09' '2026-11-21 10:30:15.250' 'it''s' "
      "N'Ação' '74000-000' '31/02/2026' ' 21/11/2026' '' 5 [x]");
  ASSERT_EQ(tokens.size(), 23u);
  const auto value = [&](size_t i) { return SqliteStringLiteralValue(tokens[i * 2]); };
  const auto is_date = [&](size_t i) { return IsSqliteDateLiteral(tokens[i * 2]); };
  EXPECT_EQ(value(0), "2026-11-21 00:00:00");
  EXPECT_EQ(value(1), "2026-11-21 10:30:00");
  EXPECT_EQ(value(2), "2027-02-01 07:05:09");  // day first
  EXPECT_EQ(value(3), "2026-11-21 10:30:15.250");
  EXPECT_EQ(value(4), "it's");
  EXPECT_EQ(value(5), "Ação");
  EXPECT_EQ(value(6), "74000-000");   // a postcode, not a date
  EXPECT_EQ(value(7), "31/02/2026");  // no such day
  EXPECT_EQ(value(8), " 21/11/2026");
  EXPECT_EQ(value(9), "");
  EXPECT_EQ(value(10), "");  // a number stands for no text
  EXPECT_EQ(value(11), "");
  for (size_t i = 0; i < 4; ++i) EXPECT_TRUE(is_date(i)) << i;
  for (size_t i = 4; i < 12; ++i) EXPECT_FALSE(is_date(i)) << i;
  // The translation writes exactly that value where the literal meets a column.
  for (size_t i = 0; i < 10; ++i) {
    std::string quoted = "'";
    for (char c : value(i)) quoted += c == '\'' ? std::string("''") : std::string(1, c);
    EXPECT_EQ(TranslateToSqlite("SELECT * FROM T WHERE Dt_X = " + std::string(tokens[i * 2].text)),
              "SELECT * FROM T WHERE Dt_X = " + quoted + "'")
        << i;
  }
}

TEST_F(SqliteTranslator, UnsupportedConstructsRaiseClearErrors) {
  EXPECT_TRUE(
      Mentions(TranslationError("EXEC TicketEstacionamento_LiberarTicketMadis 1, 2"), "EXEC"));
  EXPECT_TRUE(Mentions(
      TranslationError(
          Lines({"BACKUP DATABASE Vek", "TO  DISK = N'/bkp/VekBkp.bak' WITH NOFORMAT, NOINIT"})),
      "BACKUP"));
  EXPECT_TRUE(Mentions(TranslationError("SET NOCOUNT ON"), "SET"));
  EXPECT_TRUE(Mentions(TranslationError("DECLARE @x int"), "DECLARE"));
  EXPECT_TRUE(Mentions(TranslationError("SELECT * INTO TbCopia FROM TbCor"), "SELECT ... INTO"));
  EXPECT_TRUE(Mentions(TranslationError("CREATE TABLE T (Cd INT IDENTITY(1,1))"), "IDENTITY"));
  EXPECT_TRUE(Mentions(TranslationError("SELECT (1 + 2"), "'('"));
  EXPECT_TRUE(Mentions(TranslationError("SELECT 1 + 2)"), "')'"));
  EXPECT_TRUE(
      Mentions(TranslationError("SELECT CASE WHEN a = 1 THEN 2 FROM t"), "CASE without END"));
  EXPECT_TRUE(Mentions(TranslationError("SELECT IsNull(a) FROM t"), "IsNull"));
  EXPECT_TRUE(Mentions(TranslationError("SELECT 'abc FROM t"), "Unterminated string"));
  EXPECT_EQ(TranslationError("SELECT 1"), "");
}

}  // namespace
}  // namespace vek::dialect
