#include "vek/schema/PostgresDdl.h"

#include <gtest/gtest.h>

#include <set>
#include <string>
#include <vector>

#include "db/dialect/PgTestDb.h"
#include "support/TerminalDatabase.h"
#include "vek/schema/Catalogue.h"

namespace vek::schema {
namespace {

std::string Lower(std::string_view text) {
  std::string lower(text);
  for (char& c : lower) c = static_cast<char>(c >= 'A' && c <= 'Z' ? c + 32 : c);
  return lower;
}

// PostgreSQL cuts names at 63 characters: two indexes alike that far would be one.
TEST(PostgresDdlText, IndexAndTriggerNamesAreDistinctAndFitPostgresNames) {
  std::set<std::string> names;
  size_t expected = 0;
  for (const std::string& statement : PostgresDdl()) {
    for (const char* prefix : {"CREATE INDEX IF NOT EXISTS ", "CREATE UNIQUE INDEX IF NOT EXISTS ",
                               "CREATE OR REPLACE TRIGGER "}) {
      const std::string_view text(prefix);
      if (statement.compare(0, text.size(), text) != 0) continue;
      const std::string name = statement.substr(text.size(), statement.find(' ', text.size()) - text.size());
      EXPECT_LE(name.size(), 63u) << name;
      EXPECT_EQ(name, Lower(name));
      names.insert(name);
      ++expected;
    }
  }
  EXPECT_EQ(names.size(), expected);
  size_t indexes = 0;
  for (const TableDef& table : Tables()) indexes += table.indexes.size();
  EXPECT_GT(expected, indexes);  // the indexes and the bit triggers
  // The longest names are cut and told apart by a hash of the whole.
  size_t shortened = 0;
  for (const std::string& name : names) shortened += name.size() == 63 ? 1 : 0;
  EXPECT_GE(shortened, 2u);
}

TEST(PostgresDdlText, ColumnTypes) {
  EXPECT_EQ(PostgresTypeName({"Vl_Tarifa", ColumnType::Money}), "NUMERIC(19,4)");
  EXPECT_EQ(PostgresTypeName({"Dt_Entrada", ColumnType::DateTime}), "TIMESTAMP(0)");
  EXPECT_EQ(PostgresTypeName({"Ic_Ativo", ColumnType::Bit}), "SMALLINT");
  EXPECT_EQ(PostgresTypeName({"No_Situacao", ColumnType::TinyInt}), "SMALLINT");
  EXPECT_EQ(PostgresTypeName({"Sg_UF", ColumnType::Char, 2}), "CHAR(2)");
  EXPECT_EQ(PostgresTypeName({"Nm_Cor", ColumnType::VarChar, 30}), "VARCHAR(30)");
  EXPECT_EQ(PostgresTypeName({"In_Tarifa1", ColumnType::Float}), "DOUBLE PRECISION");
}

#ifdef VEK_TEST_HAS_LIBPQ

using dialect::testing::PgError;
using dialect::testing::PgRows;
using dialect::testing::PgTestDb;

class PostgresDdlOnServer : public ::testing::Test {
 protected:
  void SetUp() override {
    if (!db_.Open()) VEK_SKIP_WITHOUT_SERVER("VEK_PG_CONNECTION is not set");
    for (const std::string& statement : PostgresDdl()) db_.Exec(statement);
  }

  // The SQLSTATE of running `sql`; "" when it runs.
  std::string StateOf(const std::string& sql) {
    try {
      db_.Exec(sql);
    } catch (const PgError& error) {
      return error.SqlState();
    }
    return "";
  }

  PgTestDb db_;
};

TEST_F(PostgresDdlOnServer, CreatesEveryTableColumnAndIndexOnceAndRunsAgainUnchanged) {
  for (const std::string& statement : PostgresDdl()) db_.Exec(statement);
  size_t columns = 0;
  for (const TableDef& table : Tables()) {
    const std::string schema = table.database.empty() ? "public" : "mdestacionamento";
    const std::string where = " WHERE table_schema = '" + schema + "' AND table_name = '" + Lower(table.name) + "'";
    EXPECT_EQ(db_.Scalar("SELECT count(*) FROM information_schema.columns" + where),
              std::to_string(table.columns.size()))
        << table.name;
    columns += table.columns.size();
    // Each index of the catalogue, plus the primary key's.
    EXPECT_EQ(db_.Scalar("SELECT count(*) FROM pg_indexes WHERE schemaname = '" + schema + "' AND tablename = '" +
                         Lower(table.name) + "'"),
              std::to_string(table.indexes.size() + (table.primary_key.empty() ? 0 : 1)))
        << table.name;
  }
  EXPECT_EQ(db_.Scalar("SELECT count(*) FROM information_schema.columns WHERE table_schema IN ('public', "
                       "'mdestacionamento')"),
            std::to_string(columns));
  // Types as declared.
  const auto type_of = [&](const std::string& table, const std::string& column) {
    return db_.Query("SELECT data_type, coalesce(character_maximum_length, numeric_precision, datetime_precision), "
                     "coalesce(numeric_scale, 0), is_nullable, coalesce(collation_name, '-'), is_identity "
                     "FROM information_schema.columns WHERE table_name = '" + table + "' AND column_name = '" +
                     column + "'").at(0);
  };
  EXPECT_EQ(type_of("tbtarifa", "vl_tarifa"),
            (std::vector<std::string>{"numeric", "19", "4", "YES", "-", "NO"}));
  EXPECT_EQ(type_of("tbtarifa", "cd_tarifa"),
            (std::vector<std::string>{"integer", "32", "0", "NO", "-", "YES"}));
  EXPECT_EQ(type_of("tbticketestacionamento", "dt_entrada"),
            (std::vector<std::string>{"timestamp without time zone", "0", "0", "YES", "-", "NO"}));
  EXPECT_EQ(type_of("tbuf", "sg_uf"), (std::vector<std::string>{"character", "2", "0", "YES", "vek_ci", "NO"}));
  EXPECT_EQ(type_of("logpermanenciamensalista", "realtime"),
            (std::vector<std::string>{"smallint", "16", "0", "YES", "-", "NO"}));
  // Fixed rows once; an identity numbers after them.
  EXPECT_EQ(db_.Query("SELECT IDEVENTO, DESCRICAO FROM mdestacionamento.EVENTO ORDER BY 1"),
            (PgRows{{"1", "ENTRADA"}, {"2", "SAIDA"}}));
  EXPECT_EQ(db_.Scalar("SELECT count(*) FROM TbTipoReceita"), "4");
  EXPECT_EQ(db_.Scalar("INSERT INTO TbTipoReceita (Nm_TipoReceita) VALUES ('OUTRA') RETURNING Cd_TipoReceita"), "5");
}

TEST_F(PostgresDdlOnServer, TextComparesWithoutCaseButWithAccentsAsSqlServer) {
  db_.Exec("INSERT INTO TbUF (Nm_UF, Sg_UF) VALUES ('Goiás', 'GO'), ('São Paulo', 'SP'), ('SAO PAULO', 'SQ')");
  EXPECT_EQ(db_.Scalar("SELECT Sg_UF FROM TbUF WHERE Nm_UF = 'GOIÁS'"), "GO");
  EXPECT_EQ(db_.Scalar("SELECT count(*) FROM TbUF WHERE Nm_UF = 'goias'"), "0");
  EXPECT_EQ(db_.Scalar("SELECT count(*) FROM TbUF WHERE Nm_UF IN ('são paulo', 'x')"), "1");
  EXPECT_EQ(db_.Scalar("SELECT count(DISTINCT Nm_UF) FROM TbUF"), "3");
  EXPECT_EQ(db_.Scalar("SELECT count(*) FROM TbUF WHERE Sg_UF = 'go ' AND Sg_UF > 'GA'"), "1");
  // A unique index and a text key refuse what differs in case only.
  EXPECT_EQ(StateOf("INSERT INTO TbUF (Nm_UF, Sg_UF) VALUES ('Goiás de novo', 'go')"), "23505");
  db_.Exec("INSERT INTO TbVeiculo (Cd_Placa) VALUES ('ABC1D23')");
  EXPECT_EQ(StateOf("INSERT INTO TbVeiculo (Cd_Placa) VALUES ('abc1d23')"), "23505");
  EXPECT_EQ(StateOf("INSERT INTO TbVeiculo (Cd_Placa) VALUES ('ÁBC1D23')"), "");
  // Sorting puts accented letters beside their base letter.
  db_.Exec("INSERT INTO TbCor (Nm_Cor) VALUES ('azul'), ('Âmbar'), ('Branco'), ('amarelo')");
  EXPECT_EQ(db_.Query("SELECT string_agg(Nm_Cor, ',' ORDER BY Nm_Cor) FROM TbCor").at(0).at(0),
            "amarelo,Âmbar,azul,Branco");
}

TEST_F(PostgresDdlOnServer, BitsStoreOneForAnyTrueAndTinyintsStayInTheirRange) {
  db_.Exec("INSERT INTO TbEmpresaOnibus (Cd_EmpresaOnibus) VALUES (1)");
  db_.Exec("INSERT INTO TbTipoOnibus (Ds_TipoOnibus) VALUES ('x')");
  db_.Exec("INSERT INTO TbLinha (Cd_Linha) VALUES (1)");
  db_.Exec("INSERT INTO TbHorariosLinha (Cd_EmpresaUsuariaSistema, Cd_Linha, Cd_HorarioLinha, Ic_TemEmbarques, "
           "Ic_ViagemNoDomingo, Ic_ViagemNoSabado, Ic_ViagemNaSexta) VALUES (1, 1, 1, -1, 0, NULL, 1), "
           "(1, 1, 2, 2, -1, -1, 0)");
  EXPECT_EQ(db_.Query("SELECT Ic_TemEmbarques, Ic_ViagemNoDomingo, coalesce(Ic_ViagemNoSabado, 9), Ic_ViagemNaSexta "
                      "FROM TbHorariosLinha ORDER BY Cd_HorarioLinha"),
            (PgRows{{"1", "0", "9", "1"}, {"1", "1", "1", "0"}}));
  db_.Exec("UPDATE TbHorariosLinha SET Ic_ViagemNaSexta = -1, Ic_TemEmbarques = 0 WHERE Cd_HorarioLinha = 2");
  EXPECT_EQ(db_.Scalar("SELECT Ic_ViagemNaSexta || '/' || Ic_TemEmbarques FROM TbHorariosLinha WHERE Cd_HorarioLinha = 2"),
            "1/0");
  EXPECT_EQ(db_.Scalar("SELECT count(*) FROM TbHorariosLinha WHERE Ic_ViagemNoDomingo = 1"), "1");
  // The access-control schema's bits too.
  db_.Exec("INSERT INTO mdestacionamento.LOGPERMANENCIAMENSALISTA (IDLOGPERMANENCIA, IDEMPRESA, REALTIME) VALUES (1, 1, -1)");
  EXPECT_EQ(db_.Scalar("SELECT REALTIME FROM mdestacionamento.LOGPERMANENCIAMENSALISTA"), "1");
  db_.Exec("INSERT INTO TbTelefone (Cd_Pessoa, No_TipoTelefone) VALUES (1, 0), (1, 255)");
  EXPECT_EQ(StateOf("INSERT INTO TbTelefone (Cd_Pessoa, No_TipoTelefone) VALUES (2, 256)"), "23514");
  EXPECT_EQ(StateOf("INSERT INTO TbTelefone (Cd_Pessoa, No_TipoTelefone) VALUES (2, -1)"), "23514");
  // Money keeps four decimals, rounding the fifth.
  db_.Exec("INSERT INTO TbTarifa (Ds_Tarifa, Vl_Tarifa) VALUES ('a', 1.23455), ('b', -0.00005)");
  EXPECT_EQ(db_.Query("SELECT Vl_Tarifa FROM TbTarifa ORDER BY Cd_Tarifa"), (PgRows{{"1.2346"}, {"-0.0001"}}));
}

#else

TEST(PostgresDdlOnServer, NeedsLibpq) { VEK_SKIP_WITHOUT_SERVER("libpq-dev is not installed"); }

#endif  // VEK_TEST_HAS_LIBPQ

}  // namespace
}  // namespace vek::schema
