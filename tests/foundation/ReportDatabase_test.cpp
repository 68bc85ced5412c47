// The report database: the template vek init writes, the copy a session
// makes of it, and the Jet statements the reports send it, read back by the
// sqlite3 client as well as through a connection.

#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>
#include <memory>
#include <string>

#include "support/TestSupport.h"
#include "vek/db/Connection.h"
#include "vek/db/Recordset.h"
#include "vek/db/dialect/AccessTranslator.h"
#include "vek/db/dialect/Tokenizer.h"
#include "vek/foundation/ReportDatabase.h"
#include "vek/foundation/cgpSistema.h"
#include "vek/platform/Date.h"
#include "vek/platform/VekError.h"
#include "vek/schema/ReportDatabase.h"

namespace vek {
namespace {

namespace fs = std::filesystem;
using testing::ErrorOf;
using testing::Lines;

// What the sqlite3 client prints for `query` on `file`.
std::string Sqlite3Client(const fs::path& file, const std::string& query) {
  const std::string command = "sqlite3 '" + file.string() + "' \"" + query + "\" 2>&1";
  std::string output;
  if (FILE* pipe = popen(command.c_str(), "r")) {
    char buffer[256];
    while (fgets(buffer, sizeof buffer, pipe)) output += buffer;
    pclose(pipe);
  }
  return output;
}

class ReportDatabaseTest : public ::testing::Test {
 protected:
  ReportDatabaseTest() {
    fs::create_directories(folder_.Path() / "Modelos");
    schema::WriteReportDatabaseTemplate(folder_.Path() / "Modelos" / "bdTemp.db");
    session_->Let("Ds_CaminhoAplicacao", Variant(folder_.Path().string()));
  }

  std::shared_ptr<Connection> OpenReportDatabase() {
    auto connection = std::make_shared<Connection>();
    connection->Open(PrepareReportDatabase(*session_));
    return connection;
  }

  testing::ScratchFolder folder_;
  std::shared_ptr<cgpSistema> session_ = std::make_shared<cgpSistema>();
};

TEST_F(ReportDatabaseTest, IsCopiedFromTheTemplateOnceAndOpensInTheJetDialect) {
  const std::string jet = PrepareReportDatabase(*session_);
  EXPECT_EQ(jet, "Provider=Microsoft.Jet.OLEDB.4.0;Data Source=" + folder_.Path().string() + "\\bdTemp.mdb");
  ASSERT_TRUE(fs::is_regular_file(folder_.Path() / "bdTemp.db"));
  EXPECT_EQ(Sqlite3Client(folder_.Path() / "bdTemp.db",
                          "SELECT name FROM sqlite_schema WHERE type = 'table' ORDER BY name"),
            "cgrApuracaoReceita3\ncgrMapaControleDesembarque1\ncgrMapaControleEmbarque1\n");
  EXPECT_EQ(Sqlite3Client(folder_.Path() / "bdTemp.db",
                          "SELECT count(*) FROM pragma_table_info('cgrMapaControleEmbarque1') "
                          "WHERE name LIKE 'Qt_Dia__'"),
            "31\n");

  auto connection = std::make_shared<Connection>();
  connection->Open(jet);
  EXPECT_EQ(connection->SqlDialect(), Dialect::Access);
  connection->Execute("INSERT INTO cgrApuracaoReceita3 (Cd_Pessoa, Dt_Movimento) VALUES (7, '02/03/2026')");
  connection->Close();
  // A second report works on the same file: the template does not replace it.
  PrepareReportDatabase(*session_);
  EXPECT_EQ(Sqlite3Client(folder_.Path() / "bdTemp.db", "SELECT Cd_Pessoa FROM cgrApuracaoReceita3"), "7\n");
}

TEST_F(ReportDatabaseTest, AMissingFileOrTemplateIsAClearError) {
  fs::remove(folder_.Path() / "Modelos" / "bdTemp.db");
  const VekError no_template = ErrorOf([&] { PrepareReportDatabase(*session_); });
  EXPECT_EQ(no_template.Number(), kFileNotFound);
  EXPECT_NE(no_template.Description().find("Modelos"), std::string::npos) << no_template.Description();
  EXPECT_FALSE(fs::exists(folder_.Path() / "bdTemp.db"));

  // Jet opens only a file that is there; it never makes an empty one.
  auto connection = std::make_shared<Connection>();
  const VekError no_file = ErrorOf([&] {
    connection->Open("Provider=Microsoft.Jet.OLEDB.4.0;Data Source=" + folder_.Path().string() + "\\bdTemp.mdb");
  });
  EXPECT_EQ(no_file.Source(), "Microsoft JET Database Engine");
  EXPECT_EQ(no_file.Description(), "Could not find file '" + (folder_.Path() / "bdTemp.db").string() + "'.");
  EXPECT_FALSE(fs::exists(folder_.Path() / "bdTemp.db"));
}

TEST_F(ReportDatabaseTest, TakesTheReportsStatementsWithJetsMeaning) {
  auto connection = OpenReportDatabase();
  connection->Execute(Lines({"DELETE ", "FROM cgrApuracaoReceita3;"}));
  // The work table is opened whole and rows are appended to it.
  auto table = std::make_shared<Recordset>();
  table->Open("cgrApuracaoReceita3", connection, adOpenKeyset, adLockOptimistic, adCmdTable);
  for (int day = 1; day <= 3; ++day) {
    table->AddNew();
    table->Fields().Item("Cd_Pessoa").Value(Variant(5));
    table->Fields().Item("Nm_Empresa").Value(Variant("Viação Águia D'Oeste"));
    table->Fields().Item("Dt_Movimento").Value(Variant("0" + std::to_string(day) + "/03/2026"));
    table->Fields().Item("Qt_Tarifa1").Value(Variant(day == 2 ? 0 : 2));
    table->Fields().Item("Qt_Tarifa2").Value(Variant(1));
    table->Update();
  }
  table->Close();

  auto total = connection->Execute(Lines({"SELECT  Sum(cgrApuracaoReceita3.Qt_Tarifa1) AS Qt_TotalTarifa",
                                          "FROM    cgrApuracaoReceita3",
                                          "WHERE  (((cgrApuracaoReceita3.Cd_Pessoa)=5));"}));
  EXPECT_EQ(CLng(total->Fields().Item("Qt_TotalTarifa").Value()), 4);

  // Four of seven boardings: Jet divides as decimals, the share keeps four digits.
  const int32_t share = static_cast<int32_t>(10000.0 * 4 / 7);
  connection->Execute(Lines({"UPDATE cgrApuracaoReceita3 ",
                             "SET    cgrApuracaoReceita3.In_Tarifa1 = " + std::to_string(share) + " / 10000",
                             "WHERE  (((cgrApuracaoReceita3.Cd_Pessoa)=5));"}));
  const fs::path file = folder_.Path() / "bdTemp.db";
  EXPECT_EQ(Sqlite3Client(file, "SELECT DISTINCT In_Tarifa1 FROM cgrApuracaoReceita3"), "0.5714\n");
  EXPECT_EQ(Sqlite3Client(file, "SELECT Nm_Empresa, Dt_Movimento FROM cgrApuracaoReceita3 ORDER BY rowid LIMIT 1"),
            "Viação Águia D'Oeste|01/03/2026\n");

  // A date between # signs is month first, as Jet reads it.
  connection->Execute("UPDATE cgrApuracaoReceita3 SET Vl_TarifaDia = 1 WHERE #3/2/2026# = '2026-03-02'");
  auto dated = connection->Execute("SELECT Count(*) AS Qt FROM cgrApuracaoReceita3 WHERE Vl_TarifaDia = 1");
  EXPECT_EQ(CLng(dated->Fields().Item("Qt").Value()), 3);
  connection->Close();
  // The report writer reads the file alone: no journal is left beside it.
  EXPECT_FALSE(fs::exists(folder_.Path() / "bdTemp.db-wal"));
}

TEST(AccessLowering, ChangesOnlyWhatJetReadsDifferently) {
  using dialect::LowerAccessToTsql;
  EXPECT_EQ(LowerAccessToTsql("SET x = 6666 / 10000"), "SET x = 6666  * 1.0 / 10000");
  // Inside texts and names nothing changes; "..." is a text in Jet.
  EXPECT_EQ(LowerAccessToTsql("WHERE a = '1/2 #' AND [b/c] = \"d'e\""),
            "WHERE a = '1/2 #' AND [b/c] = 'd''e'");
  EXPECT_EQ(LowerAccessToTsql("WHERE d = #12/31/2026 23:59:59# OR d = #2026-03-02#"),
            "WHERE d = '2026-12-31 23:59:59' OR d = '2026-03-02 00:00:00'");
  for (const char* bad : {"WHERE d = #31/12/2026#", "WHERE d = #2026-03-02", "WHERE a = 'open"}) {
    EXPECT_EQ(ErrorOf([&] { LowerAccessToTsql(bad); }).Number(), dialect::kDialectErrorNumber) << bad;
  }
}

}  // namespace
}  // namespace vek
