#include "vek/db/dialect/SqliteFunctions.h"

#include <gtest/gtest.h>

#include <string>

#include "db/dialect/SqliteTestDb.h"

namespace vek::dialect {
namespace {

using testing::Rows;
using testing::SqliteTestDb;

class SqliteFunctions : public ::testing::Test {
 protected:
  // The value of an expression, or SQLite's error for it.
  std::string Eval(const std::string& expression) { return db_.Scalar("SELECT " + expression); }
  std::string EvalError(const std::string& expression) { return db_.QueryError("SELECT " + expression); }

  SqliteTestDb db_;
};

TEST_F(SqliteFunctions, DateDiffCountsBoundariesCrossed) {
  EXPECT_EQ(Eval("vek_datediff('minute', '2026-11-21 10:00:59', '2026-11-21 10:01:00')"), "1");
  EXPECT_EQ(Eval("vek_datediff('minute', '2026-11-21 10:00:00', '2026-11-21 10:00:59')"), "0");
  EXPECT_EQ(Eval("vek_datediff('n', '2026-11-21 10:05', '2026-11-21 10:00')"), "-5");
  EXPECT_EQ(Eval("vek_datediff('day', '2026-11-20 23:59:00', '2026-11-21 00:01:00')"), "1");
  EXPECT_EQ(Eval("vek_datediff('day', '2026-11-21 00:00:00', '2026-11-21 23:59:59')"), "0");
  EXPECT_EQ(Eval("vek_datediff('day', '2026-02-28', '2026-03-01')"), "1");
  EXPECT_EQ(Eval("vek_datediff('day', '2024-02-28', '2024-03-01')"), "2");
  EXPECT_EQ(Eval("vek_datediff('hour', '2026-11-21 10:59:59', '2026-11-21 11:00:00')"), "1");
  EXPECT_EQ(Eval("vek_datediff('second', '2026-11-21 10:00:00.999', '2026-11-21 10:00:01')"), "1");
  EXPECT_EQ(Eval("vek_datediff('millisecond', '2026-11-21 10:00:00.999', '2026-11-21 10:00:01')"),
            "1");
  EXPECT_EQ(Eval("vek_datediff('month', '2026-01-31', '2026-02-01')"), "1");
  EXPECT_EQ(Eval("vek_datediff('year', '2026-12-31 23:59:59', '2027-01-01')"), "1");
  EXPECT_EQ(Eval("vek_datediff('quarter', '2026-03-31', '2026-04-01')"), "1");
  // Weeks turn on Sunday: 21/11/2026 is a Saturday.
  EXPECT_EQ(Eval("vek_datediff('week', '2026-11-21', '2026-11-22')"), "1");
  EXPECT_EQ(Eval("vek_datediff('week', '2026-11-22', '2026-11-28')"), "0");
  EXPECT_EQ(Eval("vek_datediff('day', NULL, '2026-11-21')"), "NULL");
  EXPECT_EQ(Eval("vek_datediff('day', 0, '1900-01-31')"), "30");
}

TEST_F(SqliteFunctions, DateDiffReadsEveryDateFormAndRefusesOthers) {
  EXPECT_EQ(Eval("vek_datediff('minute', '2026-11-21T10:00:00', '21/11/2026 10:02')"), "2");
  EXPECT_EQ(Eval("vek_datediff('day', '2026-11-21', '2026-11-22 00:00:00.000')"), "1");
  EXPECT_NE(EvalError("vek_datediff('day', 'amanhã', '2026-11-21')").find("Conversion failed"),
            std::string::npos);
  EXPECT_NE(EvalError("vek_datediff('fortnight', '2026-11-21', '2026-11-21')").find("datediff"),
            std::string::npos);
  EXPECT_NE(EvalError("vek_datediff('millisecond', '2000-01-01', '2026-01-01')").find("overflow"),
            std::string::npos);
}

TEST_F(SqliteFunctions, DateArithmetic) {
  EXPECT_EQ(Eval("vek_date_add('2026-11-21 23:59:59', 1)"), "2026-11-22 23:59:59");
  EXPECT_EQ(Eval("vek_date_add('2026-12-31 12:00:00', 0.5)"), "2027-01-01 00:00:00");
  EXPECT_EQ(Eval("vek_date_add('2026-11-21', NULL)"), "NULL");
  EXPECT_EQ(Eval("vek_dateadd('month', 1, '2026-01-31 08:00:00')"), "2026-02-28 08:00:00");
  EXPECT_EQ(Eval("vek_dateadd('month', 1, '2024-01-31')"), "2024-02-29 00:00:00");
  EXPECT_EQ(Eval("vek_dateadd('year', -1, '2024-02-29')"), "2023-02-28 00:00:00");
  EXPECT_EQ(Eval("vek_dateadd('minute', 2, '2026-11-21 23:59:00')"), "2026-11-22 00:01:00");
  EXPECT_EQ(Eval("vek_dateadd('day', 1.9, '2026-11-21')"), "2026-11-22 00:00:00");
  EXPECT_NE(EvalError("vek_dateadd('year', 9000, '2026-11-21')").find("overflow"),
            std::string::npos);
  EXPECT_EQ(Eval("vek_date('2026-11-21 23:59:59')"), "2026-11-21 00:00:00");
  EXPECT_EQ(Eval("vek_datetime('21/11/2026 7:05')"), "2026-11-21 07:05:00");
  EXPECT_EQ(Eval("vek_datepart('weekday', '2026-11-22')"), "1");  // Sunday
  EXPECT_EQ(Eval("vek_datepart('weekday', '2026-11-21')"), "7");
  EXPECT_EQ(Eval("vek_datepart('dayofyear', '2024-12-31')"), "366");
  EXPECT_EQ(Eval("vek_datepart('week', '2026-01-04')"), "2");  // the first Sunday of 2026
  EXPECT_EQ(Eval("vek_datepart('day', '2026-11-21 23:59:59')"), "21");
}

TEST_F(SqliteFunctions, TextConversionWritesNumbersAndDatesAsSqlServer) {
  EXPECT_EQ(Eval("vek_text(12, 30, -1, 0, 0)"), "12");
  EXPECT_EQ(Eval("vek_text(-0.0, 30, -1, 0, 0)"), "0");
  EXPECT_EQ(Eval("vek_text(12.5, 30, -1, 0, 0)"), "12.5");
  EXPECT_EQ(Eval("vek_text(0.1 + 0.2, 30, -1, 0, 0)"), "0.3");
  EXPECT_EQ(Eval("vek_text(NULL, 30, -1, 0, 0)"), "NULL");
  EXPECT_EQ(Eval("vek_text('2026-11-21 23:59:59', 30, 103, 0, 0)"), "21/11/2026");
  EXPECT_EQ(Eval("vek_text('2026-11-21 23:59:59', 30, -1, 1, 0)"), "Nov 21 2026 11:59PM");
  EXPECT_EQ(Eval("vek_text('2026-11-21 23:59:59', 30, -1, 0, 0)"), "2026-11-21 23:59:59");
  EXPECT_EQ(Eval("vek_text('não é data', 30, 103, 0, 0)"), "não é data");
  EXPECT_EQ(Eval("vek_text('ação', 2, -1, 0, 0)"), "aç");
  EXPECT_EQ(Eval("'[' || vek_text('ab', 4, -1, 0, 1) || ']'"), "[ab  ]");
  EXPECT_EQ(Eval("vek_text(123456, 3, -1, 0, 0)"), "*");
}

TEST_F(SqliteFunctions, RuntimePlusConcatenatesTextsAndAddsNumbers) {
  EXPECT_EQ(Eval("vek_add('12', '34')"), "1234");
  EXPECT_EQ(Eval("vek_add(12, 34)"), "46");
  EXPECT_EQ(Eval("vek_add('5', 1)"), "6");
  EXPECT_EQ(Eval("vek_add(1.5, ' 2 ')"), "3.5");
  EXPECT_EQ(Eval("vek_add(NULL, 'a')"), "NULL");
  EXPECT_EQ(Eval("vek_add(9223372036854775807, 1)"), "9.22337203685478e+18");
  EXPECT_NE(EvalError("vek_add('ABC1234', 1)").find("'ABC1234' to data type int"),
            std::string::npos);
}

TEST_F(SqliteFunctions, RoundIsDecimalAndHalfAwayFromZero) {
  EXPECT_EQ(Eval("vek_round(2.675, 2)"), "2.68");
  EXPECT_EQ(Eval("vek_round(-2.5, 0)"), "-3.0");
  EXPECT_EQ(Eval("vek_round(2.679, 2, 1)"), "2.67");
  EXPECT_EQ(Eval("vek_round(-2.679, 2, 1)"), "-2.67");
  EXPECT_EQ(Eval("vek_round(1234.5678, -2)"), "1200.0");
  EXPECT_EQ(Eval("vek_round(99.95, 1)"), "100.0");
  EXPECT_EQ(Eval("vek_round(1250, -2)"), "1300");
  EXPECT_EQ(Eval("vek_round(1249, -2)"), "1200");
  EXPECT_EQ(Eval("typeof(vek_round(7, 2))"), "integer");
  EXPECT_EQ(Eval("vek_round(0.004, 2)"), "0.0");
  EXPECT_EQ(Eval("vek_round(NULL, 2)"), "NULL");
  EXPECT_NE(EvalError("vek_round(9223372036854775807, -1)").find("overflow"), std::string::npos);
}

TEST_F(SqliteFunctions, TextFunctionsCountCharactersNotBytes) {
  EXPECT_EQ(Eval("vek_substring('Conceição', 7, 2)"), "çã");
  EXPECT_EQ(Eval("vek_substring('abc', 0, 2)"), "a");
  EXPECT_EQ(Eval("vek_substring('abc', -1, 3)"), "a");
  EXPECT_EQ(Eval("vek_substring('abc', 5, 2)"), "");
  EXPECT_EQ(Eval("vek_substring(1234567, 2, 3)"), "234");
  EXPECT_NE(EvalError("vek_substring('abc', 1, -1)").find("Invalid length"), std::string::npos);
  EXPECT_EQ(Eval("vek_len('ação  ')"), "4");
  EXPECT_EQ(Eval("vek_len('  a')"), "3");
  EXPECT_EQ(Eval("vek_upper('são joão')"), "SÃO JOÃO");
  EXPECT_EQ(Eval("vek_lower('AÇÃO')"), "ação");
  EXPECT_EQ(Eval("vek_charindex('JOÃO', 'são joão')"), "5");
  EXPECT_EQ(Eval("vek_charindex('joao', 'são joão')"), "0");
  EXPECT_EQ(Eval("vek_charindex('a', 'banana', 3)"), "4");
  EXPECT_EQ(Eval("vek_charindex('', 'abc')"), "0");
  EXPECT_EQ(Eval("vek_left('Ação', 2)"), "Aç");
  EXPECT_EQ(Eval("vek_right('Ação', 2)"), "ão");
  EXPECT_EQ(Eval("vek_right('ab', 5)"), "ab");
  EXPECT_NE(EvalError("vek_left('ab', -1)").find("left"), std::string::npos);
  EXPECT_EQ(Eval("vek_replace('Ação e AÇÃO', 'ação', 'x')"), "x e x");
  EXPECT_EQ(Eval("vek_replace('abc', '', 'x')"), "abc");
}

TEST_F(SqliteFunctions, LikeIsCaseInsensitiveAccentSensitiveWithSqlServerWildcards) {
  EXPECT_EQ(Eval("'JOÃO' LIKE 'joão%'"), "1");
  EXPECT_EQ(Eval("'Joao' LIKE 'joão'"), "0");
  EXPECT_EQ(Eval("'São Paulo' LIKE '%PAULO'"), "1");
  EXPECT_EQ(Eval("'Ção' LIKE '_ão'"), "1");
  EXPECT_EQ(Eval("'Ção' LIKE '__ão'"), "0");
  EXPECT_EQ(Eval("'b1' LIKE '[abc][0-9]'"), "1");
  EXPECT_EQ(Eval("'B1' LIKE '[a-c]_'"), "1");
  EXPECT_EQ(Eval("'á' LIKE '[a-c]'"), "1");
  EXPECT_EQ(Eval("'d' LIKE '[a-c]'"), "0");
  EXPECT_EQ(Eval("'d' LIKE '[^a-c]'"), "1");
  EXPECT_EQ(Eval("'10%' LIKE '10[%]'"), "1");
  EXPECT_EQ(Eval("'100' LIKE '10[%]'"), "0");
  EXPECT_EQ(Eval("'10%' LIKE '10!%' ESCAPE '!'"), "1");
  EXPECT_EQ(Eval("'10x' LIKE '10!%' ESCAPE '!'"), "0");
  EXPECT_EQ(Eval("'[x' LIKE '[x'"), "1");
  EXPECT_EQ(Eval("'abc  ' LIKE 'abc'"), "1");
  EXPECT_EQ(Eval("'abc' LIKE 'abc '"), "0");
  EXPECT_EQ(Eval("'a%c' NOT LIKE 'a_c'"), "0");
  EXPECT_EQ(Eval("NULL LIKE '%'"), "NULL");
  EXPECT_EQ(Eval("'' LIKE '%'"), "1");
  EXPECT_EQ(Eval("'aXbXc' LIKE '%b%c'"), "1");
  EXPECT_EQ(Eval("'aXbXd' LIKE '%b%c'"), "0");
  EXPECT_NE(EvalError("'a' LIKE 'a' ESCAPE 'ab'").find("single character"), std::string::npos);
  EXPECT_TRUE(MatchesSqlServerLike("MARIA DA CONCEIÇÃO", "%conceição"));
}

TEST_F(SqliteFunctions, CollationComparesAsSqlServersDefault) {
  db_.Exec("CREATE TABLE p (Nm_Pessoa TEXT COLLATE SQLSERVER_CI_AS)");
  db_.Exec(
      "INSERT INTO p VALUES ('Zé'), ('Antônio'), ('ana'), ('Ângela'), ('Ana'), ('Bruno'), "
      "('JOÃO'), "
      "('joão  '), ('Joao')");
  EXPECT_EQ(db_.Query("SELECT count(*) FROM p WHERE Nm_Pessoa = 'joão'")[0][0], "2");
  EXPECT_EQ(db_.Query("SELECT count(*) FROM p WHERE Nm_Pessoa = 'JOAO'")[0][0], "1");
  EXPECT_EQ(db_.Query("SELECT count(DISTINCT Nm_Pessoa) FROM p")[0][0], "7");
  const Rows ordered =
      db_.Query("SELECT Nm_Pessoa FROM p WHERE Nm_Pessoa < 'B' ORDER BY Nm_Pessoa, rowid");
  ASSERT_EQ(ordered.size(), 4u);
  EXPECT_EQ(ordered[0][0], "ana");
  EXPECT_EQ(ordered[1][0], "Ana");
  EXPECT_EQ(ordered[2][0], "Ângela");
  EXPECT_EQ(ordered[3][0], "Antônio");
  EXPECT_LT(CompareSqlServerText("Joao", "João"), 0);
  EXPECT_LT(CompareSqlServerText("João", "Jose"), 0);
  EXPECT_EQ(CompareSqlServerText("ABC", "abc   "), 0);
  EXPECT_LT(CompareSqlServerText("ab", "abc"), 0);
  EXPECT_GT(CompareSqlServerText("Zé", "Ângela"), 0);
}

TEST_F(SqliteFunctions, DatabaseNamesAndUnknownDoubleQuotedNames) {
  EXPECT_EQ(Eval("vek_database_name('main', '/var/lib/vek/Terminal.db')"), "Terminal");
  EXPECT_EQ(Eval("vek_database_name('main', '')"), "main");
  EXPECT_EQ(Eval("vek_database_name('MDESTACIONAMENTO', '/x/MDESTACIONAMENTO.db')"), "MDESTACIONAMENTO");
  // An unknown double-quoted name is an error, never a string.
  db_.Exec("CREATE TABLE t (a INTEGER)");
  EXPECT_NE(db_.QueryError("SELECT \"no_such_column\" FROM t").find("no such column"), std::string::npos);
}

}  // namespace
}  // namespace vek::dialect
