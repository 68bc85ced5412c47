// The ODBC driver against a real PostgreSQL server (psqlODBC Unicode). The
// server comes from VEK_PG_CONNECTION (scripts/pg-test-cluster writes it);
// without it these tests are skipped, except those that need no server.

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>
#include <limits>
#include <string>
#include <vector>

#include "support/TerminalDatabase.h"
#include "support/TestSupport.h"
#include "vek/db/Command.h"
#include "vek/db/Connection.h"
#include "vek/db/DbError.h"
#include "vek/db/Driver.h"
#include "vek/db/Recordset.h"
#include "vek/platform/VekError.h"

namespace vek {
namespace {

using testing::ErrorOf;

class OdbcDriverTest : public ::testing::Test {
 protected:
  void SetUp() override {
    const char* text = std::getenv("VEK_PG_CONNECTION");
    if (text == nullptr || *text == '\0') VEK_SKIP_WITHOUT_SERVER("VEK_PG_CONNECTION is not set");
    connection_string_ = text;
    driver_ = OpenDriver(connection_string_, [] { return Date(); });
  }

  void TearDown() override {
    if (!driver_) return;
    for (auto name = created_.rbegin(); name != created_.rend(); ++name) {
      try {
        Run("DROP " + *name + " CASCADE");
      } catch (const VekError&) {
      }
    }
  }

  // A table of this process's own, so that runs can share one server.
  std::string NewTable(const std::string& name, const std::string& columns) {
    const std::string table = "odbc_" + name + "_" + std::to_string(::getpid());
    Run("DROP TABLE IF EXISTS " + table + " CASCADE");
    Run("CREATE TABLE " + table + " (" + columns + ")");
    created_.push_back("TABLE IF EXISTS " + table);
    return table;
  }

  std::string NewFunction(const std::string& name, const std::string& rest) {
    const std::string function = "odbc_" + name + "_" + std::to_string(::getpid());
    Run("CREATE OR REPLACE FUNCTION " + function + rest);
    created_.push_back("FUNCTION IF EXISTS " + function);
    return function;
  }

  std::string NewSchema(const std::string& name) {
    const std::string schema = "odbc_" + name + "_" + std::to_string(::getpid());
    Run("DROP SCHEMA IF EXISTS " + schema + " CASCADE");
    Run("CREATE SCHEMA " + schema);
    created_.push_back("SCHEMA IF EXISTS " + schema);
    return schema;
  }

  QueryResult Run(const std::string& text, std::vector<Variant> parameters = {}) {
    return driver_->Run(text, parameters);
  }

  std::string connection_string_;
  std::unique_ptr<Driver> driver_;
  std::vector<std::string> created_;
};

const ColumnInfo& Column(const QueryResult& result, std::string_view name) {
  const int32_t index = result.columns->IndexOf(name);
  if (index < 0) throw std::runtime_error("no column " + std::string(name));
  return result.columns->Columns()[static_cast<size_t>(index)];
}

const Variant& Value(const QueryResult& result, size_t row, std::string_view name) {
  return result.rows.at(row).at(static_cast<size_t>(result.columns->IndexOf(name)));
}

TEST(OdbcDriverRouting, ConnectionStringsOfOtherDriversGoToOdbc) {
  // No server needed: the driver manager itself refuses an unknown driver.
  const VekError unknown = ErrorOf([] { OpenDriver("Driver={No Such Driver};Server=x", [] { return Date(); }); });
  EXPECT_EQ(unknown.Number(), adErrUnspecified);
  EXPECT_EQ(unknown.Source(), "ODBC");
  EXPECT_NE(unknown.Description().find("not found"), std::string::npos) << unknown.Description();
  const VekError dsn = ErrorOf([] { OpenDriver("DSN=vek_no_such_dsn", [] { return Date(); }); });
  EXPECT_EQ(dsn.Source(), "ODBC");
  // SQLite's own strings stay with the embedded driver.
  EXPECT_EQ(OpenDriver("Driver=SQLite3;Database=:memory:", [] { return Date(); })->SqlDialect(), Dialect::SQLite);
}

TEST_F(OdbcDriverTest, ConnectsWithThePostgreSqlDialectAndRefusesABadServer) {
  EXPECT_EQ(driver_->SqlDialect(), Dialect::PostgreSQL);
  auto connection = std::make_shared<Connection>();
  connection->Open(connection_string_);
  EXPECT_EQ(connection->SqlDialect(), Dialect::PostgreSQL);
  EXPECT_EQ(CLng(connection->RunStatement("SELECT 41 AS kind", {}, false).rows.at(0).at(0)), 41);

  // Port 1 on loopback: nothing listens there.
  const VekError refused = ErrorOf([] {
    OpenDriver("Driver={PostgreSQL Unicode};Server=127.0.0.1;Port=1;Database=vek_test;Uid=postgres;Pwd=",
               [] { return Date(); });
  });
  EXPECT_EQ(refused.Number(), adErrUnspecified);
  EXPECT_EQ(refused.Source(), "ODBC");
  EXPECT_FALSE(refused.Description().empty());

  const VekError missing = ErrorOf([&] { Run("SELECT ? + ?", {Variant(1)}); });
  EXPECT_EQ(missing.Description(), "The statement expects 2 parameter(s), 1 given.");
  driver_->Close();
  driver_->Close();
  EXPECT_EQ(ErrorOf([&] { Run("SELECT 1"); }).Number(), adErrUnspecified);
}

TEST_F(OdbcDriverTest, ValuesRoundTripThroughParametersWithTheirTypes) {
  const std::string table = NewTable(
      "types", "id integer PRIMARY KEY, nr integer, sm smallint, vl numeric(19,4), rate numeric(10,2), "
               "ratio double precision, dt timestamp, ok boolean, nm varchar(40), obs text, uf char(2)");
  const std::string insert = "INSERT INTO " + table + " VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?)";
  const std::string accented = "Ação de São João d'Ávila – 'quoted'";
  const Currency largest = Currency::FromRaw(std::numeric_limits<int64_t>::max());
  const Date last_second = DateSerial(2024, 2, 29) + TimeSerial(23, 59, 59);
  const Date midnight = DateSerial(2026, 1, 1);
  EXPECT_EQ(Run(insert, {Variant(1), Variant(std::numeric_limits<int32_t>::max()), Variant(int16_t{-32768}),
                         Variant(Currency::FromRaw(12345678901)), Variant(0.125), Variant(-2.5), Variant(last_second),
                         Variant(true), Variant(accented), Variant("linha 1\rlinha 2\n🚌"), Variant("SP")})
                .records_affected,
            1);
  Run(insert, {Variant(2), Variant(std::numeric_limits<int32_t>::min()), Variant(int16_t{32767}), Variant(largest),
               Variant::Null(), Variant::Null(), Variant(midnight), Variant(false), Variant(""), Variant::Null(),
               Variant::Null()});
  Run(insert, {Variant(3), Variant::Null(), Variant::Null(), Variant(Currency::FromRaw(-1)), Variant::Null(),
               Variant::Null(), Variant::Null(), Variant::Null(), Variant::Null(), Variant::Null(), Variant::Null()});

  const QueryResult rows = Run("SELECT * FROM " + table + " ORDER BY id");
  ASSERT_EQ(rows.rows.size(), 3u);
  EXPECT_EQ(Column(rows, "nr").type, adInteger);
  EXPECT_EQ(Column(rows, "sm").type, adSmallInt);
  EXPECT_EQ(Column(rows, "vl").type, adCurrency);
  EXPECT_EQ(Column(rows, "rate").type, adNumeric);
  EXPECT_EQ(Column(rows, "ratio").type, adDouble);
  EXPECT_EQ(Column(rows, "dt").type, adDBTimeStamp);
  EXPECT_EQ(Column(rows, "ok").type, adBoolean);
  EXPECT_EQ(Column(rows, "nm").type, adVarChar);
  EXPECT_EQ(Column(rows, "nm").defined_size, 40);
  EXPECT_EQ(Column(rows, "obs").defined_size, std::numeric_limits<int32_t>::max());
  EXPECT_EQ(Column(rows, "uf").type, adChar);

  EXPECT_EQ(Value(rows, 0, "nr"), Variant(std::numeric_limits<int32_t>::max()));
  EXPECT_EQ(Value(rows, 1, "nr"), Variant(std::numeric_limits<int32_t>::min()));
  EXPECT_EQ(Value(rows, 0, "sm"), Variant(int16_t{-32768}));
  EXPECT_EQ(Value(rows, 1, "sm"), Variant(int16_t{32767}));
  EXPECT_EQ(Value(rows, 0, "vl"), Variant(Currency::FromRaw(12345678901)));
  EXPECT_EQ(Value(rows, 1, "vl"), Variant(largest));  // beyond a double's digits
  EXPECT_EQ(Value(rows, 2, "vl"), Variant(Currency::FromRaw(-1)));
  EXPECT_EQ(Value(rows, 0, "rate"), Variant(0.13));  // the server rounds to its scale
  EXPECT_EQ(Value(rows, 0, "ratio"), Variant(-2.5));
  EXPECT_EQ(Value(rows, 0, "dt"), Variant(last_second));
  EXPECT_EQ(Value(rows, 1, "dt"), Variant(midnight));
  EXPECT_EQ(Value(rows, 0, "ok"), Variant(true));
  EXPECT_EQ(Value(rows, 1, "ok"), Variant(false));
  EXPECT_EQ(Value(rows, 0, "nm"), Variant(accented));
  EXPECT_EQ(Value(rows, 0, "obs"), Variant("linha 1\rlinha 2\n🚌"));
  EXPECT_EQ(Value(rows, 1, "nm"), Variant(""));
  EXPECT_EQ(Value(rows, 0, "uf"), Variant("SP"));
  for (size_t i = 1; i < rows.rows[2].size(); ++i) {
    if (i != 3) {
      EXPECT_TRUE(rows.rows[2][i].IsNull()) << i;
    }
  }

  // The server holds characters, not the bytes of their encoding, and a
  // parameter finds the text it wrote.
  const QueryResult lengths =
      Run("SELECT char_length(nm) AS chars, id FROM " + table + " WHERE nm = ? AND dt = ?",
          {Variant(accented), Variant(last_second)});
  ASSERT_EQ(lengths.rows.size(), 1u);
  EXPECT_EQ(CLng(lengths.rows[0][0]), 35);
  EXPECT_EQ(CLng(lengths.rows[0][1]), 1);
  // Text longer than one read of the driver, with a character of two UTF-16
  // units across the first boundary.
  const std::string long_text = std::string(2047, 'a') + "🚌" + [] {
    std::string tail;
    for (int i = 0; i < 3000; ++i) tail += "ç";
    return tail;
  }();
  Run("UPDATE " + table + " SET obs = ? WHERE id = 2", {Variant(long_text)});
  EXPECT_EQ(Run("SELECT obs FROM " + table + " WHERE id = 2").rows.at(0).at(0), Variant(long_text));
  EXPECT_EQ(Run("SELECT char_length(obs) FROM " + table + " WHERE id = 2").rows.at(0).at(0), Variant(5048));

  // Half a second off is another timestamp.
  EXPECT_TRUE(Run("SELECT id FROM " + table + " WHERE dt = ?", {Variant(last_second - 1.0 / 86400 / 2)}).rows.empty());
}

TEST_F(OdbcDriverTest, DatesKeepTheirTimeOfDayAtTheEdgesOfTheDayAndBeforeDayZero) {
  const std::string table = NewTable("dates", "id integer PRIMARY KEY, dt timestamp, tm time");
  const std::vector<Date> dates = {DateSerial(1999, 12, 31) + TimeSerial(23, 59, 59), DateSerial(2000, 1, 1),
                                   Date(-1.25) /* 29/12/1899 06:00 */, Date(2.5 / 86400 + 45000) /* half a second */};
  for (size_t i = 0; i < dates.size(); ++i) {
    Run("INSERT INTO " + table + " (id, dt, tm) VALUES (?, ?, ?)",
        {Variant(static_cast<int32_t>(i)), Variant(dates[i]), Variant(TimeSerial(23, 59, 59))});
  }
  const QueryResult rows =
      Run("SELECT dt, to_char(dt, 'YYYY-MM-DD HH24:MI:SS.MS') AS text, tm FROM " + table + " ORDER BY id");
  ASSERT_EQ(rows.rows.size(), dates.size());
  EXPECT_EQ(Value(rows, 0, "text"), Variant("1999-12-31 23:59:59.000"));
  EXPECT_EQ(Value(rows, 1, "text"), Variant("2000-01-01 00:00:00.000"));
  EXPECT_EQ(Value(rows, 2, "text"), Variant("1899-12-29 06:00:00.000"));
  EXPECT_EQ(Value(rows, 3, "text"), Variant("2023-03-15 00:00:02.500"));
  for (size_t i = 0; i < dates.size(); ++i) {
    EXPECT_NEAR(CDate(rows.rows[i][0]).Serial(), dates[i].Serial(), 1e-9) << i;
  }
  EXPECT_EQ(Column(rows, "tm").type, adDBTimeStamp);
  EXPECT_EQ(Value(rows, 0, "tm"), Variant(TimeSerial(23, 59, 59)));  // a time alone lies on day zero
}

TEST_F(OdbcDriverTest, DescribesBaseTablesKeysAndIdentityColumns) {
  const std::string schema = NewSchema("other");
  const std::string table = NewTable("meta", "id serial PRIMARY KEY, Nm_Bairro varchar(60) NOT NULL, vl numeric(19,4)");
  const std::string pair = NewTable("pair", "cd_a integer, cd_b varchar(3), ds varchar(10), PRIMARY KEY (cd_a, cd_b)");
  Run("CREATE TABLE " + schema + ".acesso (cd_acesso integer GENERATED BY DEFAULT AS IDENTITY PRIMARY KEY, "
      "nm varchar(20))");

  const QueryResult meta = Run("SELECT t.id, t.NM_BAIRRO, t.vl * 2 AS dobro, 1 AS um FROM " + table + " t");
  EXPECT_EQ(meta.columns->IndexOf("Nm_Bairro"), 1);  // the server folded the name; look-ups ignore case
  const ColumnInfo& id = Column(meta, "id");
  EXPECT_EQ(id.base_table, table);
  EXPECT_EQ(id.base_column, "id");
  EXPECT_EQ(id.base_database, "public");
  EXPECT_TRUE(id.is_key);
  EXPECT_TRUE(id.is_autoincrement);
  const ColumnInfo& name = Column(meta, "nm_bairro");
  EXPECT_EQ(name.base_column, "nm_bairro");
  EXPECT_FALSE(name.is_key);
  EXPECT_FALSE(name.is_autoincrement);
  EXPECT_EQ(name.defined_size, 60);
  EXPECT_TRUE(Column(meta, "dobro").base_table.empty());
  EXPECT_TRUE(Column(meta, "um").base_table.empty());

  const QueryResult keys = Run("SELECT ds, cd_b, cd_a FROM " + pair);
  EXPECT_FALSE(Column(keys, "ds").is_key);
  EXPECT_TRUE(Column(keys, "cd_a").is_key);
  EXPECT_TRUE(Column(keys, "cd_b").is_key);
  EXPECT_FALSE(Column(keys, "cd_a").is_autoincrement);

  const QueryResult other = Run("SELECT cd_acesso, nm FROM " + schema + ".acesso");
  EXPECT_EQ(Column(other, "cd_acesso").base_database, schema);
  EXPECT_EQ(Column(other, "cd_acesso").base_table, "acesso");
  EXPECT_TRUE(Column(other, "cd_acesso").is_key);
  EXPECT_TRUE(Column(other, "cd_acesso").is_autoincrement);

  // The same text after the table changed describes the new columns.
  const std::string all = "SELECT * FROM " + pair;
  EXPECT_EQ(Run(all).columns->Columns().size(), 3u);
  Run("ALTER TABLE " + pair + " ADD COLUMN dt timestamp");
  Run("INSERT INTO " + pair + " VALUES (1, 'a', 'x', ?)", {Variant(DateSerial(2026, 5, 1))});
  const QueryResult altered = Run(all);
  ASSERT_EQ(altered.columns->Columns().size(), 4u);
  EXPECT_EQ(Value(altered, 0, "dt"), Variant(DateSerial(2026, 5, 1)));
}

TEST_F(OdbcDriverTest, InsertBringsTheIdentityBack) {
  const std::string schema = NewSchema("ins");
  const std::string table = NewTable("ins", "id serial PRIMARY KEY, nm varchar(40), vl numeric(19,4)");
  Run("CREATE TABLE " + schema + ".linha (cd integer GENERATED ALWAYS AS IDENTITY PRIMARY KEY, nm varchar(20))");
  Run("SELECT setval(pg_get_serial_sequence('" + table + "', 'id'), 41)");

  RowWrite write;
  write.database = "public";
  write.table = table;
  write.columns = {"NM", "Vl"};  // names in any case reach the lower-case columns
  write.values = {Variant("d'Ávila"), Variant(Currency::FromRaw(15000))};
  write.identity_column = "id";
  EXPECT_EQ(driver_->Insert(write), std::optional<int64_t>(42));
  write.values = {Variant("Ônibus"), Variant::Null()};
  EXPECT_EQ(driver_->Insert(write), std::optional<int64_t>(43));
  write.columns.clear();
  write.values.clear();
  EXPECT_EQ(driver_->Insert(write), std::optional<int64_t>(44));  // DEFAULT VALUES

  RowWrite plain = write;
  plain.columns = {"id", "nm"};
  plain.values = {Variant(100), Variant("sem identidade")};
  plain.identity_column.clear();
  EXPECT_EQ(driver_->Insert(plain), std::nullopt);

  const QueryResult rows = Run("SELECT id, nm, vl FROM " + table + " ORDER BY id");
  ASSERT_EQ(rows.rows.size(), 4u);
  EXPECT_EQ(rows.rows[0][1], Variant("d'Ávila"));
  EXPECT_EQ(rows.rows[0][2], Variant(Currency::FromRaw(15000)));
  EXPECT_EQ(rows.rows[1][1], Variant("Ônibus"));
  EXPECT_TRUE(rows.rows[2][1].IsNull());
  EXPECT_EQ(rows.rows[3][0], Variant(100));

  RowWrite other;
  other.database = schema;
  other.table = "LINHA";
  other.columns = {"nm"};
  other.values = {Variant("Centro")};
  other.identity_column = "cd";
  EXPECT_EQ(driver_->Insert(other), std::optional<int64_t>(1));
  EXPECT_EQ(driver_->Insert(other), std::optional<int64_t>(2));
}

TEST_F(OdbcDriverTest, UpdateFindsTheRowByItsOriginalKey) {
  const std::string table = NewTable("upd", "cd_a integer, cd_b varchar(3), ds varchar(20), PRIMARY KEY (cd_a, cd_b)");
  Run("INSERT INTO " + table + " VALUES (1, 'a''b', 'um'), (1, 'c', 'dois'), (2, 'a''b', 'três')");

  RowWrite write;
  write.database = "public";
  write.table = table;
  write.columns = {"cd_b", "ds"};  // the key itself changes
  write.values = {Variant("z"), Variant("mudou")};
  write.key_columns = {"cd_a", "cd_b"};
  write.key_values = {Variant(1), Variant("a'b")};
  EXPECT_EQ(driver_->Update(write), 1);
  EXPECT_EQ(driver_->Update(write), 0);  // the original key is gone now

  const QueryResult rows = Run("SELECT cd_a, cd_b, ds FROM " + table + " ORDER BY cd_a, cd_b");
  ASSERT_EQ(rows.rows.size(), 3u);
  EXPECT_EQ(rows.rows[0], (Row{Variant(1), Variant("c"), Variant("dois")}));
  EXPECT_EQ(rows.rows[1], (Row{Variant(1), Variant("z"), Variant("mudou")}));
  EXPECT_EQ(rows.rows[2], (Row{Variant(2), Variant("a'b"), Variant("três")}));

  write.key_columns = {"cd_a"};
  write.key_values = {Variant(2)};
  const VekError partial = ErrorOf([&] { driver_->Update(write); });
  EXPECT_EQ(partial.Number(), adErrUnspecified);
  EXPECT_EQ(partial.Description(), "Insufficient key column information for updating or refreshing.");

  EXPECT_EQ(Run("UPDATE " + table + " SET ds = ds || '!'").records_affected, 3);
  EXPECT_EQ(Run("DELETE FROM " + table + " WHERE cd_a = ?", {Variant(99)}).records_affected, 0);
}

TEST_F(OdbcDriverTest, RecordsetWritesBackThroughTheDriver) {
  const std::string table = NewTable("rs", "id serial PRIMARY KEY, nm varchar(40) NOT NULL, vl numeric(19,4)");
  auto connection = std::make_shared<Connection>();
  connection->Open(connection_string_);
  Recordset recordset;
  recordset.LockType(adLockOptimistic);
  recordset.Attach(connection->RunStatement("SELECT id, nm, vl FROM " + table, {}, false), connection);
  EXPECT_EQ(recordset.Fields()["ID"].Properties("ISAUTOINCREMENT").Value(), Variant(true));
  recordset.AddNew();
  recordset.Fields()["nm"].Value(Variant("São Paulo"));
  recordset.Fields()["vl"].Value(Variant(12.34567));  // the field converts to money
  recordset.Update();
  EXPECT_EQ(recordset.Fields()["id"].Value(), Variant(1));
  recordset.Fields()["nm"].Value(Variant("Santo André"));
  recordset.Update();

  const QueryResult rows = connection->RunStatement("SELECT id, nm, vl FROM " + table, {}, false);
  ASSERT_EQ(rows.rows.size(), 1u);
  EXPECT_EQ(rows.rows[0], (Row{Variant(1), Variant("Santo André"), Variant(Currency::FromRaw(123457))}));
}

TEST_F(OdbcDriverTest, ConstraintViolationsAndSyntaxErrorsKeepTheServersMessage) {
  const std::string parent = NewTable("parent", "id integer PRIMARY KEY, nm varchar(10) UNIQUE");
  const std::string child = NewTable("child", "id integer PRIMARY KEY, parent_id integer NOT NULL REFERENCES " +
                                                  parent + "(id)");
  const std::string insert_parent = "INSERT INTO " + parent + " VALUES (?, ?)";
  Run(insert_parent, {Variant(1), Variant("um")});

  const VekError unique = ErrorOf([&] { Run(insert_parent, {Variant(2), Variant("um")}); });
  EXPECT_EQ(unique.Number(), adErrConstraint);
  EXPECT_EQ(unique.Source(), "ODBC");
  EXPECT_NE(unique.Description().find("duplicate key value violates unique constraint"), std::string::npos)
      << unique.Description();
  // The statement that failed runs again once the value is free.
  Run(insert_parent, {Variant(2), Variant("dois")});

  const VekError foreign = ErrorOf([&] { Run("INSERT INTO " + child + " VALUES (1, ?)", {Variant(99)}); });
  EXPECT_EQ(foreign.Number(), adErrConstraint);
  EXPECT_NE(foreign.Description().find("foreign key"), std::string::npos) << foreign.Description();
  EXPECT_EQ(ErrorOf([&] { Run("INSERT INTO " + child + " VALUES (2, NULL)"); }).Number(), adErrConstraint);

  const VekError syntax = ErrorOf([&] { Run("SELEC 1"); });
  EXPECT_EQ(syntax.Number(), adErrSyntax);
  EXPECT_EQ(syntax.Source(), "ODBC");
  EXPECT_NE(syntax.Description().find("syntax error at or near \"SELEC\""), std::string::npos)
      << syntax.Description();
  const VekError unknown = ErrorOf([&] { Run("SELECT * FROM odbc_no_such_table"); });
  EXPECT_EQ(unknown.Number(), adErrSyntax);
  EXPECT_NE(unknown.Description().find("odbc_no_such_table"), std::string::npos);
  EXPECT_EQ(ErrorOf([&] { Run("SELECT 1 / ?", {Variant(0)}); }).Number(), adErrUnspecified);

  // The connection is still good after the errors.
  EXPECT_EQ(Run("SELECT count(*) FROM " + parent).rows.at(0).at(0), Variant(2));
}

TEST_F(OdbcDriverTest, ProcedureCallsSetOutputParametersOfEachType) {
  const std::string function = NewFunction(
      "outputs", "(a integer, INOUT b varchar, OUT n numeric(19,4), OUT d timestamp, OUT t varchar, OUT z integer) "
                 "LANGUAGE plpgsql AS $$ BEGIN b := b || 'ção'; n := a / 3.0; d := '2026-11-21 10:30:05'; "
                 "t := repeat('x', a * 1000); z := NULL; END $$");
  const auto call = [&](int32_t a, Variant b) {
    Parameters parameters;
    parameters.Append(std::make_shared<Parameter>("@a", adInteger, adParamInput, 0, Variant(a)));
    parameters.Append(std::make_shared<Parameter>("@b", adVarChar, adParamInputOutput, 20, std::move(b)));
    parameters.Append(std::make_shared<Parameter>("@n", adCurrency, adParamOutput, 0, Variant()));
    parameters.Append(std::make_shared<Parameter>("@d", adDate, adParamOutput, 0, Variant()));
    parameters.Append(std::make_shared<Parameter>("@t", adVarChar, adParamOutput, 5000, Variant()));
    parameters.Append(std::make_shared<Parameter>("@z", adInteger, adParamOutput, 0, Variant(7)));
    driver_->CallProcedure(function, parameters);
    return parameters;
  };
  Parameters first = call(1, Variant("não"));
  EXPECT_EQ(first.Item("@b").Value(), Variant("nãoção"));
  EXPECT_EQ(first.Item("@n").Value(), Variant(Currency::FromRaw(3333)));
  EXPECT_EQ(first.Item("@d").Value(), Variant(DateSerial(2026, 11, 21) + TimeSerial(10, 30, 5)));
  EXPECT_EQ(Len(CStr(first.Item("@t").Value())), 1000);
  EXPECT_TRUE(first.Item("@z").Value().IsNull());
  // Called again on the same prepared call, with a text beyond 4000 characters.
  Parameters second = call(5, Variant("a"));
  EXPECT_EQ(second.Item("@b").Value(), Variant("ação"));
  EXPECT_EQ(Len(CStr(second.Item("@t").Value())), 5000);

  const std::string sum = NewFunction("sum", "(a integer, b integer) RETURNS integer LANGUAGE sql AS $$ SELECT a + b $$");
  Parameters with_result;
  with_result.Append(std::make_shared<Parameter>("@RETURN_VALUE", adInteger, adParamReturnValue, 0, Variant()));
  with_result.Append(std::make_shared<Parameter>("@a", adInteger, adParamInput, 0, Variant(40)));
  with_result.Append(std::make_shared<Parameter>("@b", adInteger, adParamInput, 0, Variant(2)));
  driver_->CallProcedure(sum, with_result);
  EXPECT_EQ(with_result.Item(0).Value(), Variant(42));

  Parameters none;
  const VekError missing = ErrorOf([&] { driver_->CallProcedure("odbc_no_such_procedure", none); });
  EXPECT_EQ(missing.Number(), adErrSyntax);
  EXPECT_EQ(missing.Source(), "ODBC");
  EXPECT_NE(missing.Description().find("odbc_no_such_procedure"), std::string::npos) << missing.Description();
  // The connection is still good after the failed call.
  EXPECT_EQ(Run("SELECT 1").rows.at(0).at(0), Variant(1));
}

}  // namespace
}  // namespace vek
