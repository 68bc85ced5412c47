#include "vek/db/dialect/PostgresTranslator.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "db/dialect/PgTestDb.h"
#include "support/TerminalDatabase.h"
#include "support/TestSupport.h"
#include "vek/schema/Catalogue.h"
#include "vek/schema/PostgresDdl.h"

namespace vek::dialect {
namespace {

using testing::PgTranslationError;
using vek::testing::Lines;

bool Mentions(const std::string& text, const std::string& part) {
  return text.find(part) != std::string::npos;
}

// ---- what has no faithful form: no server needed ----------------------------------

TEST(PostgresTranslatorErrors, UnsupportedConstructsAreNamedBySourcePostgresTranslator) {
  EXPECT_TRUE(Mentions(PgTranslationError("EXEC TicketEstacionamento_LiberarTicketMadis 1, 2"), "EXEC"));
  EXPECT_TRUE(Mentions(PgTranslationError("SELECT @@ROWCOUNT"), "@@ROWCOUNT"));
  EXPECT_TRUE(Mentions(PgTranslationError("SELECT TOP 10 PERCENT * FROM t"), "PERCENT"));
  EXPECT_TRUE(Mentions(PgTranslationError("SELECT TOP 1 WITH TIES * FROM t ORDER BY a"), "WITH TIES"));
  EXPECT_TRUE(Mentions(PgTranslationError("DELETE TOP (1) FROM t"), "DELETE TOP"));
  EXPECT_TRUE(Mentions(PgTranslationError("SELECT * INTO TbCopia FROM TbCor"), "SELECT ... INTO"));
  EXPECT_TRUE(Mentions(PgTranslationError("SELECT CONVERT(datetime, '11/21/2026', 101)"), "month first"));
  EXPECT_TRUE(Mentions(PgTranslationError("SELECT CONVERT(varchar, x, 999) FROM t"), "999"));
  EXPECT_TRUE(Mentions(PgTranslationError("SELECT CONVERT(decimal(99999999999, 2), x) FROM t"), "99999999999"));
  EXPECT_TRUE(Mentions(PgTranslationError("SELECT DATEDIFF(fortnight, a, b) FROM t"), "fortnight"));
  EXPECT_TRUE(Mentions(PgTranslationError("SELECT Dt_Saida - Dt_Entrada FROM t"), "PostgreSQL"));
  EXPECT_TRUE(Mentions(PgTranslationError("SELECT * FROM sys.tables"), "sys.tables"));
  EXPECT_TRUE(Mentions(PgTranslationError("SELECT 'abc FROM t"), "Unterminated string"));
  EXPECT_TRUE(Mentions(PgTranslationError("DELETE T FROM U JOIN V ON U.a = V.a"), "not in the FROM clause"));
  EXPECT_EQ(PgTranslationError("SELECT 1"), "");
}

#ifdef VEK_TEST_HAS_LIBPQ

using testing::PgRows;
using testing::PgTestDb;

class PostgresTranslator : public ::testing::Test {
 protected:
  void SetUp() override {
    if (!db_.Open()) VEK_SKIP_WITHOUT_SERVER("VEK_PG_CONNECTION is not set");
  }

  // The catalogue's tables, created as the terminal's database has them.
  void CreateTables(std::initializer_list<const char*> names, std::string_view schema = {}) {
    for (const char* name : names) {
      for (const std::string& statement :
           schema::PostgresTableStatements(*schema::FindTable(name), schema)) {
        db_.Exec(statement);
      }
    }
  }

  void AddTicket(int number, const std::string& plate, int state, const std::string& entry,
                 const std::string& exit, int client = 0) {
    db_.Run("INSERT INTO TbTicketEstacionamento (Cd_Placa, Cd_TicketEstacionamento, No_Situacao, Vl_Tarifa, "
            "Dt_Saida, Dt_Entrada, Cd_EmpresaUsuariaSistema, Cd_ClienteEstacionamento, Ic_Mensalista, Cd_Caixa)\r"
            "Values ('" + plate + "'," + std::to_string(number) + "," + std::to_string(state) + ",0," +
            exit + "," + entry + ",1," + std::to_string(client) + ",-1,7)");
  }

  PgTestDb db_;
};

// ---- TOP and ORDER BY -------------------------------------------------------------

TEST_F(PostgresTranslator, TopBecomesLimitAndNullsSortWhereSqlServerPutsThem) {
  db_.Exec("CREATE TABLE Evento (Cd INTEGER, Evento INTEGER, Dt_Passagem TIMESTAMP(0))");
  db_.Run("INSERT INTO Evento VALUES (1, 1, '20/11/2026 08:00'), (1, 2, '20/11/2026 18:00'), "
          "(2, 2, '20/11/2026 08:00'), (2, 1, '21/11/2026 07:00'), (3, 1, NULL)");
  // PostgreSQL alone would put the NULL first when descending.
  EXPECT_EQ(db_.Value("SELECT TOP 1 Dt_Passagem FROM Evento ORDER BY Dt_Passagem DESC"), "2026-11-21 07:00:00");
  EXPECT_EQ(db_.Value("SELECT TOP 1 Cd FROM Evento ORDER BY Dt_Passagem, Cd DESC"), "3");
  EXPECT_EQ(db_.Run("SELECT TOP 0 * FROM Evento").size(), 0u);
  EXPECT_EQ(db_.Run("SELECT DISTINCT TOP (2) Cd FROM Evento ORDER BY 1").size(), 2u);
  // The card is inside when its latest passage is an entry.
  EXPECT_EQ(db_.Column(Lines({"SELECT DISTINCT A.Cd", "FROM   Evento A",
                              "WHERE  IsNull((SELECT   TOP 1", "                       Evento",
                              "               FROM     Evento", "               WHERE    Cd = A.Cd",
                              "               ORDER BY Dt_Passagem DESC),'0') = 1 -- a comment\r",
                              "ORDER BY 1"})),
            (std::vector<std::string>{"2", "3"}));
  // Branches with TOP are parenthesized; the final ORDER BY, qualified as
  // SQL Server lets it be, still orders the whole.
  EXPECT_EQ(db_.Column(Lines({"SELECT TOP 1 A.Dt_Passagem FROM Evento A WHERE A.Cd = 1 ORDER BY 1", "UNION ALL",
                              "SELECT TOP 2 A.Dt_Passagem FROM Evento A WHERE Cd = 2", "ORDER BY A.Dt_Passagem DESC"})),
            (std::vector<std::string>{"2026-11-21 07:00:00", "2026-11-20 08:00:00", "2026-11-20 08:00:00"}));
}

// ---- the server's clock and dates ---------------------------------------------------

TEST_F(PostgresTranslator, GetDateIsTheSessionsClockOrTheServersNow) {
  EXPECT_EQ(db_.Value("SELECT getDate()"), "2026-11-21 10:30:15");
  EXPECT_EQ(db_.Value("SELECT CURRENT_TIMESTAMP"), "2026-11-21 10:30:15");
  db_.SetNow("2026-12-31 23:59:59");
  EXPECT_EQ(db_.Value("SELECT GETDATE() + 1"), "2027-01-01 23:59:59");
  db_.Exec("RESET vek.now");
  EXPECT_EQ(db_.Scalar("SELECT abs(extract(epoch FROM (" + TranslateToPostgres("SELECT getdate()") +
                       ") - LOCALTIMESTAMP)) < 2"),
            "t");
}

TEST_F(PostgresTranslator, DateLiteralsAreReadDayFirstWhateverTheDateStyle) {
  CreateTables({"TbTicketEstacionamento"});
  db_.Exec("SET DateStyle = 'SQL, MDY'");  // a server that reads 01/02 as January 2nd
  AddTicket(1, "A", 2, "'19/11/2026 08:00:00'", "'19/11/2026 23:59:59'");
  AddTicket(2, "B", 2, "'20/11/2026 00:00:00'", "'20/11/2026 00:00:00'");
  AddTicket(3, "C", 2, "'2026-11-21 08:00'", "'21/11/2026 23:59:59'");
  AddTicket(4, "D", 2, "'01/02/2027 08:00:01'", "'02/02/2027 00:00:00'");
  db_.Exec("SET DateStyle = 'ISO, DMY'");
  EXPECT_EQ(db_.Column(Lines({"SELECT   IsNull(TbTicketEstacionamento.Cd_Placa,'') As Cd_Placa",
                              "FROM     TbTicketEstacionamento",
                              "WHERE    TbTicketEstacionamento.Dt_Saida Between '20/11/2026 00:00:00' "
                              "And '21/11/2026 23:59:59'",
                              "ORDER BY TbTicketEstacionamento.Dt_Saida"})),
            (std::vector<std::string>{"B", "C"}));
  EXPECT_EQ(db_.Value("SELECT Dt_Entrada FROM TbTicketEstacionamento WHERE Cd_Placa = 'D'"), "2027-02-01 08:00:01");
  // Minute precision ('dd/mm/yyyy hh:nn') means hh:nn:00.
  EXPECT_EQ(db_.Value("SELECT count(*) FROM TbTicketEstacionamento WHERE Dt_Entrada <= '21/11/2026 08:00'"), "3");
  EXPECT_EQ(db_.Value("SELECT count(*) FROM TbTicketEstacionamento WHERE Dt_Entrada > '2026-11-20'"), "2");
}

TEST_F(PostgresTranslator, DateDiffCountsBoundariesNotElapsedTime) {
  db_.Exec("CREATE TABLE T (Cd INTEGER, Dt_Entrada TIMESTAMP(3), Dt_Saida TIMESTAMP(3))");
  db_.Run("INSERT INTO T VALUES (1, '21/11/2026 10:00:59', '21/11/2026 10:01:00'), "
          "(2, '20/11/2026 23:59:00', '21/11/2026 00:01:00'), (3, '21/11/2026 10:30', NULL), "
          "(4, '31/12/2026 23:59:59.999', '01/01/2027 00:00:00'), (5, '21/11/2026 00:00', '22/11/2026 23:59:59')");
  const std::string units = "SELECT DATEDIFF(mi, Dt_Entrada, Dt_Saida), DATEDIFF(day, Dt_Entrada, Dt_Saida), "
      "DATEDIFF(hh, Dt_Entrada, Dt_Saida), DATEDIFF(ss, Dt_Entrada, Dt_Saida), DATEDIFF(ms, Dt_Entrada, Dt_Saida), "
      "DATEDIFF(wk, Dt_Entrada, Dt_Saida), DATEDIFF(mm, Dt_Entrada, Dt_Saida), DATEDIFF(yyyy, Dt_Entrada, Dt_Saida), "
      "DATEDIFF(q, Dt_Entrada, Dt_Saida) FROM T WHERE Cd = ";
  EXPECT_EQ(db_.Run(units + "1")[0], (std::vector<std::string>{"1", "0", "0", "1", "1000", "0", "0", "0", "0"}));
  EXPECT_EQ(db_.Run(units + "2")[0], (std::vector<std::string>{"2", "1", "1", "120", "120000", "0", "0", "0", "0"}));
  EXPECT_EQ(db_.Run(units + "3")[0][0], "NULL");
  EXPECT_EQ(db_.Run(units + "4")[0], (std::vector<std::string>{"1", "1", "1", "1", "1", "0", "1", "1", "1"}));
  // Saturday to Sunday crosses a week boundary.
  EXPECT_EQ(db_.Run(units + "5")[0], (std::vector<std::string>{"2879", "1", "47", "172799", "172799000", "1", "0", "0", "0"}));
  EXPECT_EQ(db_.Value("SELECT DATEDIFF(minute, GetDate(), '21/11/2026 10:31:00')"), "1");
}

TEST_F(PostgresTranslator, OldPendingEntriesAreDeletedAfterNinetyMidnights) {
  CreateTables({"TbTicketEstacionamento"});
  AddTicket(1, "A", 1, "'23/08/2026 00:00:00'", "NULL");  // 90 midnights ago: stays
  AddTicket(2, "B", 1, "'22/08/2026 23:59:59'", "NULL");  // 91: goes
  AddTicket(3, "C", 2, "'01/01/2026 00:00:00'", "'01/01/2026 01:00:00'");  // closed: stays
  db_.Run(Lines({"DELETE   TbTicketEstacionamento", "FROM     TbTicketEstacionamento",
                 "WHERE    TbTicketEstacionamento.Cd_EmpresaUsuariaSistema = 1",
                 "         And TbTicketEstacionamento.No_situacao = 1",
                 "         And DATEDIFF(day,TbTicketEstacionamento.Dt_Entrada, GetDate()) > 90"}));
  EXPECT_EQ(db_.Column("SELECT Cd_Placa FROM TbTicketEstacionamento ORDER BY 1"),
            (std::vector<std::string>{"A", "C"}));
  // The -1 the library writes for true reads back as 1.
  EXPECT_EQ(db_.Value("SELECT count(*) FROM TbTicketEstacionamento WHERE Ic_Mensalista = 1"), "2");
}

TEST_F(PostgresTranslator, DateAddAndDatePartKeepSqlServersCalendar) {
  EXPECT_EQ(db_.Value("SELECT DATEADD(month, 1, '31/01/2026 10:00')"), "2026-02-28 10:00:00");
  EXPECT_EQ(db_.Value("SELECT DATEADD(yy, 1, '29/02/2028')"), "2029-02-28 00:00:00");
  EXPECT_EQ(db_.Value("SELECT DATEADD(day, 1.9, '21/11/2026')"), "2026-11-22 00:00:00");
  EXPECT_EQ(db_.Value("SELECT DATEADD(mi, -1, '21/11/2026')"), "2026-11-20 23:59:00");
  // 22/11/2026 is a Sunday: weekday 1, and the first day of week 48.
  const PgRows parts = db_.Run("SELECT DATEPART(dw, '22/11/2026'), DATEPART(wk, '22/11/2026'), "
      "DATEPART(wk, '21/11/2026'), DATEPART(dy, '31/12/2026'), DATEPART(q, '01/10/2026'), "
      "DATEPART(ms, '2026-11-21 10:30:15.250'), DATEPART(ss, '2026-11-21 10:30:15.999')");
  EXPECT_EQ(parts[0], (std::vector<std::string>{"1", "48", "47", "365", "4", "250", "15"}));
}

// ---- CONVERT, CAST and "+" ---------------------------------------------------------------

TEST_F(PostgresTranslator, ConvertAndCastTargets) {
  db_.Exec("CREATE TABLE T (Qt_Valor DOUBLE PRECISION, Dt_Movimento TIMESTAMP(0), Codigo INTEGER, Ds_Texto VARCHAR(20))");
  db_.Run("INSERT INTO T VALUES (2.675, '21/11/2026 23:59:59', 1234567, '01/02/2027 07:05')");
  const PgRows rows = db_.Run("SELECT CONVERT(int, Qt_Valor), CONVERT(decimal(10,2), Qt_Valor), CONVERT(money, 1.23456), "
      "CAST(Qt_Valor AS varchar(10)), '[' + CONVERT(char(6), 'ab') + ']', CAST(Dt_Movimento AS date), "
      "CONVERT(datetime, '21/11/2026 7:05'), CONVERT(varchar(3), Codigo), CAST(Codigo AS float) / 2, "
      "CONVERT(varchar, Dt_Movimento, 120), CONVERT(nvarchar(max), Codigo), CONVERT(varchar(10), Dt_Movimento, 103), "
      "CONVERT(varchar, Dt_Movimento), CONVERT(datetime, Ds_Texto), CONVERT(int, -2.9), "
      "CONVERT(varchar(2), 'Ação') FROM T");
  ASSERT_EQ(rows.size(), 1u);
  EXPECT_EQ(rows[0], (std::vector<std::string>{"2", "2.68", "1.2346", "2.675", "[ab    ]", "2026-11-21",
                                               "2026-11-21 07:05:00", "*", "617283.5", "2026-11-21 23:59:59",
                                               "1234567", "21/11/2026", "Nov 21 2026 11:59PM",
                                               "2027-02-01 07:05:00", "-2", "Aç"}));
  EXPECT_EQ(db_.Value("SELECT CONVERT(varchar, CONVERT(datetime, '01/02/2027 09:05'), 100)"), "Feb  1 2027  9:05AM");
  EXPECT_TRUE(Mentions(db_.RunError("SELECT CONVERT(datetime, '31/02/2026')"), "out of range"));
  EXPECT_TRUE(Mentions(db_.RunError("SELECT CONVERT(datetime, 'amanhã')"), "Conversion failed"));
}

TEST_F(PostgresTranslator, PlusConcatenatesTextsAndAddsNumbersAndDays) {
  db_.Exec("CREATE TABLE TbCidade (Cd_Cidade INTEGER, Nm_Cidade VARCHAR(60) COLLATE vek_ci, Sg_Uf CHAR(2))");
  db_.Exec("CREATE TABLE TbContaReceber (No_ContaReceber INTEGER, Dt_Vencimento TIMESTAMP(0), "
           "Qt_DiasProrrogacao INTEGER, Qt_A INTEGER, Qt_B INTEGER, Codigo VARCHAR(5), Outro VARCHAR(5), "
           "Inteiro INTEGER, Valor NUMERIC(19,4))");
  db_.Run("INSERT INTO TbCidade VALUES (1, 'São João del-Rei', 'MG'), (2, NULL, 'SP')");
  db_.Run("INSERT INTO TbContaReceber VALUES (1, '30/11/2026', 3, 10, 2, 'AB', 'CD', 5, 1.5), "
          "(2, '31/12/2026 23:59:59', NULL, 1, NULL, NULL, 'x', 7, NULL)");
  EXPECT_EQ(db_.Column("SELECT D.Nm_Cidade + '/' + D.Sg_Uf As Nm_CidadeOrigem FROM TbCidade D ORDER BY Cd_Cidade"),
            (std::vector<std::string>{"São João del-Rei/MG", "NULL"}));  // NULL + text is NULL
  const PgRows sums = db_.Run("SELECT A.Dt_Vencimento + A.Qt_DiasProrrogacao as Dt_VencProrrogado, "
      "A.Qt_A + A.Qt_B As Qt_Embarques, A.Codigo + A.Outro, A.Inteiro + A.Valor, Qt_A * 2 + Qt_B, "
      "1 + A.Dt_Vencimento - 2 FROM TbContaReceber A ORDER BY No_ContaReceber");
  EXPECT_EQ(sums[0], (std::vector<std::string>{"2026-12-03 00:00:00", "12", "ABCD", "6.5000", "22",
                                               "2026-11-29 00:00:00"}));
  EXPECT_EQ(sums[1], (std::vector<std::string>{"NULL", "NULL", "NULL", "NULL", "NULL", "2026-12-30 23:59:59"}));
  EXPECT_EQ(db_.Value("SELECT getdate() - 1"), "2026-11-20 10:30:15");
  EXPECT_EQ(db_.Value("SELECT Max(Dt_Vencimento) + 0.5 FROM TbContaReceber"), "2027-01-01 11:59:59");
  EXPECT_EQ(db_.Value("SELECT 'Total: ' + CONVERT(varchar, (2 + 3) * 2)"), "Total: 10");
  EXPECT_EQ(db_.Value("SELECT 'a' + (CASE WHEN 1 = 1 THEN 'b' ELSE 'c' END) + Upper('ç')"), "abÇ");
  // A text that the database cannot add to a number is its error, not a wrong sum.
  EXPECT_FALSE(db_.RunError("SELECT Codigo + Inteiro FROM TbContaReceber").empty());
}

// ---- LIKE and text ---------------------------------------------------------------------

TEST_F(PostgresTranslator, LikeIgnoresCaseButNotAccentsUnderTheColumnsCollation) {
  db_.Exec("CREATE TABLE TbPessoa (Cd_Pessoa INTEGER, Nm_Pessoa VARCHAR(100) COLLATE vek_ci, "
           "Ds_Padrao VARCHAR(20) COLLATE vek_ci)");
  db_.Run("INSERT INTO TbPessoa VALUES (1, 'São João', 'S%'), (2, 'SAO PAULO', 's_o%'), (3, 'ana', 'A%'), "
          "(4, '100% Álcool', '%[%]%'), (5, 'C:\\dados', NULL), (6, NULL, '%')");
  const auto codes = [&](const std::string& where) {
    std::string joined;
    for (const std::string& code : db_.Column("SELECT Cd_Pessoa FROM TbPessoa WHERE " + where + " ORDER BY 1"))
      joined += code;
    return joined;
  };
  EXPECT_EQ(codes("Nm_Pessoa LIKE 'sÃo%'"), "1");
  EXPECT_EQ(codes("Nm_Pessoa LIKE 'sao%'"), "2");
  EXPECT_EQ(codes("Nm_Pessoa NOT LIKE 's%'"), "345");
  EXPECT_EQ(codes("Nm_Pessoa LIKE '_ã_ %'"), "1");
  EXPECT_EQ(codes("Nm_Pessoa LIKE '[a-c]%'"), "35");
  EXPECT_EQ(codes("Nm_Pessoa NOT LIKE '[^s]%'"), "12");
  EXPECT_EQ(codes("Nm_Pessoa LIKE '%[%]%'"), "4");
  EXPECT_EQ(codes("Nm_Pessoa LIKE '%!%%' ESCAPE '!'"), "4");
  EXPECT_EQ(codes("Nm_Pessoa LIKE 'c:\\d%'"), "5");  // no escape character unless told
  EXPECT_EQ(codes("Nm_Pessoa LIKE '%álcool'"), "4");
  EXPECT_EQ(codes("Nm_Pessoa LIKE N'%(%'"), "");
  // A pattern that is not a literal: the column's own, and one built with "+".
  EXPECT_EQ(codes("Nm_Pessoa LIKE Ds_Padrao"), "1234");
  EXPECT_EQ(codes("Nm_Pessoa LIKE Left(Nm_Pessoa, 2) + '%'"), "12345");
  EXPECT_EQ(codes("Nm_Pessoa = 'SÃO JOÃO'"), "1");
}

TEST_F(PostgresTranslator, TextFunctionsKeepTheirSqlServerMeaning) {
  db_.Exec("CREATE TABLE TbCartao (Cd INTEGER, Ds_Identificacao VARCHAR(40) COLLATE vek_ci, "
           "Nm_Portador VARCHAR(100) COLLATE vek_ci, Hr_Validade TIMESTAMP(0))");
  db_.Run("INSERT INTO TbCartao VALUES (1, '  0001  ', 'joão', '21/11/2026 23:59:59'), (2, '0002', 'Zé', NULL)");
  const PgRows text = db_.Run("SELECT Len(Ds_Identificacao), Upper(Nm_Portador), LTrim(Ds_Identificacao) + '|', "
      "CharIndex('JO', Nm_Portador), CharIndex('o', Nm_Portador, 3), Substring(Nm_Portador, 0, 3), Round(12.345, 2), "
      "Round(-2.5, 0), Round(12.349, 2, 1), Day(Hr_Validade), Month(Hr_Validade), Year(Hr_Validade), "
      "Left(Nm_Portador, 2), Right(Nm_Portador, 2), Replace(Nm_Portador, 'JOÃO', 'x.'), Lower('ÁGUA'), "
      "IsNull(Hr_Validade, '01/01/2000'), CharIndex('', Nm_Portador), Replace('a.b.c', '.', '\\') "
      "FROM TbCartao ORDER BY Cd");
  ASSERT_EQ(text.size(), 2u);
  EXPECT_EQ(text[0], (std::vector<std::string>{"6", "JOÃO", "0001  |", "1", "4", "jo", "12.35", "-3", "12.34", "21",
                                               "11", "2026", "jo", "ão", "x.", "água", "2026-11-21 23:59:59", "0",
                                               "a\\b\\c"}));
  EXPECT_EQ(text[1][1], "ZÉ");
  EXPECT_EQ(text[1][9], "NULL");
  EXPECT_EQ(text[1][16], "2000-01-01 00:00:00");
}

// ---- names --------------------------------------------------------------------------

TEST_F(PostgresTranslator, AccessControlDatabaseIsTheSchemaOfTheSameDatabase) {
  db_.Exec("CREATE SCHEMA mdestacionamento");
  CreateTables({"CLIENTE", "CLIENTECARTAO", "LOGPERMANENCIAMENSALISTA"}, "mdestacionamento");
  CreateTables({"TbTipoReceita", "TbTarifa", "TbCategoriaClienteEstacionamento", "TbCalendarioAcessoEstacionamento",
                "TbClienteEstacionamento"});
  db_.Run("INSERT INTO MDESTACIONAMENTO.dbo.CLIENTE VALUES (1, 10, 'José da Silva Xavier Pereira', 2), (1, 11, 'Ana', 0)");
  db_.Run("INSERT INTO [MDESTACIONAMENTO].[dbo].[CLIENTECARTAO] VALUES (1, 10, 1, 100, 123456, 'José'), (1, 11, 1, 101, 777, 'Ana')");
  db_.Run("INSERT INTO MDESTACIONAMENTO..LOGPERMANENCIAMENSALISTA (IDLOGPERMANENCIA, IDEMPRESA, IDEMPRESACARTAO, "
          "IDCARTAO, EVENTO, DATAHORAPASSAGEM, REALTIME) VALUES (1, 1, 1, 100, 1, '20/11/2026 08:00', -1), "
          "(2, 1, 1, 100, 2, '20/11/2026 18:00', 0), (3, 1, 1, 100, 1, '21/11/2026 07:00', 0), "
          "(4, 1, 1, 101, 1, '21/11/2026 07:30', 0)");
  db_.Run("INSERT INTO dbo.TbClienteEstacionamento (Cd_EmpresaUsuariaSistema, Cd_ClienteEstacionamento) VALUES (1, 10), (1, 12)");
  const PgRows client = db_.Run(Lines(
      {"SELECT TbClienteEstacionamento.*,", "       IsNull(MDESTACIONAMENTO.DBO.CLIENTE.VAGASEMUSO,0) As Qt_VagasEmUso",
       "FROM   TbClienteEstacionamento",
       "       LEFT JOIN MDESTACIONAMENTO.DBO.CLIENTE ON MDESTACIONAMENTO.DBO.CLIENTE.IDEMPRESACADASTRO = "
       "TbClienteEstacionamento.Cd_EmpresaUsuariaSistema",
       "                 And MDESTACIONAMENTO.DBO.CLIENTE.IDCLIENTE = TbClienteEstacionamento.Cd_ClienteEstacionamento",
       "ORDER BY 2"}));
  ASSERT_EQ(client.size(), 2u);
  EXPECT_EQ(client[0].back(), "2");
  EXPECT_EQ(client[1].back(), "0");  // unknown to the access-control system
  // The delete through the join removes the entries of the card inside, only.
  db_.Run(Lines({"DELETE   MDESTACIONAMENTO.dbo.LOGPERMANENCIAMENSALISTA",
                 "FROM     MDESTACIONAMENTO.dbo.CLIENTE As Cliente",
                 "         INNER JOIN MDESTACIONAMENTO.dbo.CLIENTECARTAO As Cartao ON Cartao.IDEMPRESACADASTRO = "
                 "cliente.IDEMPRESACADASTRO And Cartao.IDCLIENTE = Cliente.IDCLIENTE",
                 "         INNER JOIN MDESTACIONAMENTO.dbo.LOGPERMANENCIAMENSALISTA As LogPermanencia ON "
                 "LogPermanencia.IDEMPRESACARTAO = Cartao.IDEMPRESACARTAO And LogPermanencia.IDCARTAO = Cartao.IDCARTAO",
                 "WHERE    LogPermanencia.EVENTO = 1 And IsNull(Cliente.VAGASEMUSO,0) > 0",
                 "         And IsNull((SELECT   TOP 1 EVENTO FROM MDESTACIONAMENTO.dbo.LOGPERMANENCIAMENSALISTA",
                 "                     WHERE    IDEMPRESACARTAO = Cartao.IDEMPRESACARTAO And IDCARTAO = Cartao.IDCARTAO",
                 "                     ORDER BY DATAHORAPASSAGEM DESC),'0') = 1"}));
  EXPECT_EQ(db_.Column("SELECT IDLOGPERMANENCIA FROM MDESTACIONAMENTO.dbo.LOGPERMANENCIAMENSALISTA ORDER BY 1"),
            (std::vector<std::string>{"2", "4"}));
  db_.Run("UPDATE MDESTACIONAMENTO.dbo.LOGPERMANENCIAMENSALISTA SET Cd_TicketEstacionamento = 55 WHERE IDLOGPERMANENCIA = 4");
  const PgRows pending = db_.Run(Lines(
      {"SELECT   MDESTACIONAMENTO.dbo.LOGPERMANENCIAMENSALISTA.*, MDESTACIONAMENTO.dbo.CLIENTECARTAO.IDCLIENTE",
       "FROM     MDESTACIONAMENTO.dbo.LOGPERMANENCIAMENSALISTA",
       "         INNER JOIN MDESTACIONAMENTO.dbo.CLIENTECARTAO ON MDESTACIONAMENTO.dbo.CLIENTECARTAO.IDCARTAO = "
       "MDESTACIONAMENTO.dbo.LOGPERMANENCIAMENSALISTA.IDCARTAO",
       "WHERE    Cd_TicketEstacionamento IS NULL"}));
  ASSERT_EQ(pending.size(), 1u);
  EXPECT_EQ(pending[0][0], "2");
  EXPECT_EQ(pending[0].back(), "10");
  // sys.databases answers from the schemas, names compared without case.
  EXPECT_EQ(db_.Run("SELECT name, database_id, create_date FROM sys.databases WHERE name = 'MDESTACIONAMENTO'"),
            (PgRows{{"mdestacionamento", db_.Scalar("SELECT oid FROM pg_namespace WHERE nspname = 'mdestacionamento'"),
                     "NULL"}}));
  EXPECT_EQ(db_.Value("SELECT d.name FROM sys.databases AS d WHERE d.name = '" + db_.Name() + "'"), db_.Name());
  EXPECT_EQ(db_.Run("SELECT name FROM sys.databases WHERE name IN ('public', 'pg_catalog')").size(), 0u);
}

TEST_F(PostgresTranslator, QualifiersByTheRealNameOfAnAliasedTableAndBracketedNames) {
  CreateTables({"TbUF", "TbCidade", "TbBairro"});
  db_.Run("INSERT INTO TbUF (Cd_UF, Nm_UF, Sg_UF) VALUES (9, 'Goiás', 'GO'), (7, 'Distrito Federal', 'DF')");
  db_.Run("INSERT INTO TbCidade (Cd_Cidade, Nm_Cidade, Cd_UF, Sg_UF) VALUES (3, 'Goiânia', 9, 'GO'), (4, 'Brasília', 7, 'DF')");
  db_.Run("INSERT INTO TbBairro (Cd_Bairro, Nm_Bairro, Cd_Cidade) VALUES (1, 'centro', 3), (2, 'Setor Oeste', 3), "
          "(5, 'Água Branca', 3), (8, 'Asa Sul', 4)");
  // Accented letters sort beside their base letter; case does not order.
  EXPECT_EQ(db_.Column(Lines({"SELECT   TbBairro.Nm_Bairro", "FROM     TbBairro A", "ORDER BY TbBairro.Nm_Bairro", ";"})),
            (std::vector<std::string>{"Água Branca", "Asa Sul", "centro", "Setor Oeste"}));
  EXPECT_EQ(db_.Run(Lines({"SELECT TbCidade.Nm_Cidade,", "       (SELECT Count(*) FROM TbBairro",
                           "        WHERE  TbBairro.Cd_Cidade = TbCidade.Cd_Cidade) As Qt_Bairros",
                           "FROM   TbCidade C", "ORDER BY TbCidade.Nm_Cidade"})),
            (PgRows{{"Brasília", "1"}, {"Goiânia", "3"}}));
  EXPECT_EQ(db_.Value("SELECT [TbBairro].[Nm_Bairro] FROM [TbBairro] [A] WHERE [tbBAIRRO].Cd_Bairro = 8"), "Asa Sul");
  EXPECT_EQ(db_.Value("SELECT \"TBBAIRRO\".Nm_Bairro FROM dbo.TbBairro As A WHERE dbo.TbBairro.Cd_Bairro = 1"), "centro");
  db_.Exec("CREATE TABLE \"tb cor\" (\"cd cor\" INTEGER, \"nm]cor\" VARCHAR(30))");
  db_.Run("INSERT INTO [dbo].[Tb Cor] ([Cd Cor], [Nm]]Cor]) VALUES (1, N'Azul')");
  EXPECT_EQ(db_.Value("SELECT [C].[Nm]]Cor] FROM dbo.[Tb Cor] [C] WHERE [C].[Cd Cor] = 1"), "Azul");
  // A name that two aliased tables share means neither: the database refuses it.
  EXPECT_FALSE(db_.RunError("SELECT TbCidade.Nm_Cidade FROM TbCidade D JOIN TbCidade E ON D.Cd_UF = E.Cd_UF").empty());
  db_.Run("UPDATE TbCidade SET Nm_Cidade = Upper(Nm_Cidade) FROM TbUF U WHERE U.Cd_UF = TbCidade.Cd_UF And TbUF.Sg_UF = 'df'");
  EXPECT_EQ(db_.Value("SELECT Nm_Cidade FROM TbCidade WHERE Cd_Cidade = 4"), "BRASÍLIA");
}

// ---- DELETE, UPDATE, INSERT and the rest ------------------------------------------------

TEST_F(PostgresTranslator, DeleteForms) {
  db_.Exec("CREATE TABLE TbViagemOnibus (Cd_EmpresaUsuariaSistema INTEGER, Cd_ViagemOnibus INTEGER, "
           "Hr_Previsto TIMESTAMP(0), No_Plataforma INTEGER)");
  const auto reset = [&] {
    db_.Exec("DELETE FROM TbViagemOnibus");
    db_.Run("INSERT INTO TbViagemOnibus VALUES (1, 1, '21/11/2026 08:00', 1), (1, 2, '21/11/2026 08:00', 2), "
            "(2, 3, '21/11/2026 08:00', 3), (1, 4, '21/11/2026 08:01', 3)");
  };
  const auto remaining = [&] {
    std::string codes;
    for (const auto& row : db_.Run("SELECT Cd_ViagemOnibus FROM TbViagemOnibus ORDER BY 1")) codes += row[0];
    return codes;
  };
  reset();
  db_.Run(Lines({"DELETE ", "FROM   TbViagemOnibus A", "WHERE  Cd_EmpresaUsuariaSistema = 1",
                 "And Hr_Previsto = '2026-11-21 08:00:00'", ";"}));
  EXPECT_EQ(remaining(), "34");
  reset();
  db_.Run("DELETE FROM TbViagemOnibus A WHERE A.No_Plataforma = 3 AND TbViagemOnibus.Cd_EmpresaUsuariaSistema = 1");
  EXPECT_EQ(remaining(), "123");
  reset();
  db_.Run("DELETE TbViagemOnibus WHERE No_Plataforma = 1");
  EXPECT_EQ(remaining(), "234");
  reset();
  db_.Run("DELETE A FROM TbViagemOnibus A JOIN TbViagemOnibus B ON B.No_Plataforma = A.No_Plataforma "
          "AND B.Cd_ViagemOnibus <> A.Cd_ViagemOnibus");
  EXPECT_EQ(remaining(), "12");
  reset();
  db_.Run("DELETE TbViagemOnibus FROM TbViagemOnibus JOIN TbViagemOnibus B ON B.Cd_ViagemOnibus = 4");
  EXPECT_EQ(remaining(), "");
}

TEST_F(PostgresTranslator, UpdateInsertTruncateAndTransactions) {
  CreateTables({"TbCor"});
  db_.Run("INSERT TbCor (Nm_Cor) VALUES ('Azul')");
  db_.Run("INSERT INTO TbCor (Nm_Cor) VALUES ('Verde')");
  EXPECT_EQ(db_.Value("SELECT SCOPE_IDENTITY()"), "2");
  EXPECT_EQ(db_.Value("SELECT @@IDENTITY"), "2");
  db_.Run("UPDATE TbCor SET TbCor.Nm_Cor = Upper(Nm_Cor) + '!' WHERE Cd_Cor = 2");
  EXPECT_EQ(db_.Run("SELECT Total = Cd_Cor * 10, 'Nome' = Nm_Cor + '?', [Soma Dupla] = Cd_Cor + Cd_Cor FROM TbCor WHERE Cd_Cor = 2"),
            (PgRows{{"20", "VERDE!?", "4"}}));
  // SQL Server's TRUNCATE starts the identity again.
  db_.Run("TRUNCATE TABLE TbCor");
  db_.Run("INSERT INTO TbCor (Nm_Cor) VALUES ('Preto')");
  EXPECT_EQ(db_.Value("SELECT Cd_Cor FROM TbCor"), "1");
  db_.Exec(TranslateToPostgres("BEGIN TRAN; DELETE FROM TbCor; INSERT TbCor (Nm_Cor) VALUES ('x'); ROLLBACK TRAN"));
  EXPECT_EQ(db_.Column("SELECT Nm_Cor FROM TbCor"), (std::vector<std::string>{"Preto"}));
}

TEST_F(PostgresTranslator, TillTakingsUnionOrderedByTariff) {
  db_.Exec("CREATE TABLE TbTarifa (Cd_EmpresaUsuariaSistema INTEGER, Cd_Tarifa INTEGER, Ds_Tarifa VARCHAR(60))");
  db_.Exec("CREATE TABLE TbTicketEstacionamento_TbTarifa (Cd_EmpresaUsuariaSistema INTEGER, Cd_Tarifa INTEGER, "
           "Cd_TicketEstacionamento INTEGER, Qt_Unidade INTEGER, Vl_Tarifa NUMERIC(19,4))");
  db_.Exec("CREATE TABLE TbTicketSanitario (Cd_EmpresaUsuariaSistema INTEGER, Cd_Tarifa INTEGER, Qt_Unidade INTEGER, "
           "Vl_Tarifa NUMERIC(19,4), Cd_Caixa INTEGER)");
  db_.Run("INSERT INTO TbTarifa VALUES (1, 2, 'ESTACIONAMENTO 1H'), (1, 1, 'SANITARIO')");
  db_.Run("INSERT INTO TbTicketEstacionamento_TbTarifa VALUES (1, 2, 10, 2, 5.0), (1, 2, 11, 1, 5.0)");
  db_.Run("INSERT INTO TbTicketSanitario VALUES (1, 1, 3, 1.5, 7), (1, 1, 1, 1.5, 7)");
  const std::string columns = "A.Cd_Tarifa, B.Ds_Tarifa, Sum(A.Qt_Unidade) As Qt_Unidade, A.Vl_Tarifa";
  const std::string group = "GROUP BY A.Cd_Tarifa, B.Ds_Tarifa, A.Vl_Tarifa";
  const PgRows takings = db_.Run(Lines(
      {"SELECT 'ESTACIONAMENTO' AS Ds_Tipo, " + columns, "FROM TbTicketEstacionamento_TbTarifa A",
       "INNER JOIN TbTarifa B On A.Cd_EmpresaUsuariaSistema = B.Cd_EmpresaUsuariaSistema And A.Cd_Tarifa = b.Cd_Tarifa",
       group, "UNION", "SELECT 'SANITARIO' AS Ds_Tipo, " + columns, "FROM TbTicketSanitario A",
       "INNER JOIN TbTarifa B On A.Cd_EmpresaUsuariaSistema = B.Cd_EmpresaUsuariaSistema And A.Cd_Tarifa = B.Cd_Tarifa",
       "WHERE A.Cd_Caixa = 7", group, "ORDER BY A.Cd_Tarifa;"}));
  EXPECT_EQ(takings, (PgRows{{"SANITARIO", "1", "SANITARIO", "4", "1.5000"},
                             {"ESTACIONAMENTO", "2", "ESTACIONAMENTO 1H", "3", "5.0000"}}));
}

#else

TEST(PostgresTranslator, NeedsLibpq) { VEK_SKIP_WITHOUT_SERVER("libpq-dev is not installed"); }

#endif  // VEK_TEST_HAS_LIBPQ

}  // namespace
}  // namespace vek::dialect
