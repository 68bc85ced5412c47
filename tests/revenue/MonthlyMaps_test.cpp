// The monthly boarding and alighting maps written into the report file,
// read back through SQL by a connection of the test's own.
#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "revenue/MovementMap.h"
#include "support/RecordingControls.h"
#include "vek/revenue/cgdItensMapaMovimentoED.h"
#include "vek/platform/VekError.h"
#include "vek/schema/ReportDatabase.h"

namespace vek {
namespace {

namespace fs = std::filesystem;
using testing::MovementMap;
using Rows = std::vector<std::string>;

class MonthlyMapsTest : public ::testing::Test {
 protected:
  MonthlyMapsTest() {
    db.session->Let("Ds_CaminhoAplicacao", Variant(app.Path().string()));
    db.session->SetProgress(progress);
    mapa.Ob_cgpSistema(db.session);
    // The template the terminal's folder holds.
    fs::create_directories(app.Path() / "Modelos");
    schema::WriteReportDatabaseTemplate(app.Path() / "Modelos" / "bdTemp.db");
    fs::copy_file(app.Path() / "Modelos" / "bdTemp.db", app.Path() / "bdTemp.db.model");
  }

  // The report file's rows as "company|name|city|Qt_Dia19|Qt_Dia20|Qt_Dia21|Qt_Dia22|Qt_Dia23|Qt_Total".
  Rows Report(const std::string& table) {
    auto report = std::make_shared<Connection>();
    report->Open("Driver=SQLite3;Database=" + (app.Path() / "bdTemp.db").string());
    auto rows = report->Execute("SELECT * FROM " + table);
    return MovementMap::RowsOf(*rows, {"Cd_EmpresaOnibus", "Nm_EmpresaOnibus", "Nm_Cidade", "Qt_Dia19", "Qt_Dia20",
                                       "Qt_Dia21", "Qt_Dia22", "Qt_Dia23", "Qt_Total"});
  }
  // How many day fields of the table hold a value.
  int32_t FilledDayFields(const std::string& table) {
    auto report = std::make_shared<Connection>();
    report->Open("Driver=SQLite3;Database=" + (app.Path() / "bdTemp.db").string());
    int32_t filled = 0;
    for (int32_t day = 1; day <= 31; ++day) {
      const std::string field = "Qt_Dia" + std::string(day < 10 ? "0" : "") + std::to_string(day);
      filled += CLng(report->Execute("SELECT COUNT(" + field + ") FROM " + table)->Fields().Item(0).Value());
    }
    return filled;
  }

  testing::ScratchApp app;
  MovementMap db;
  std::shared_ptr<testing::RecordingProgress> progress = std::make_shared<testing::RecordingProgress>();
  cgdItensMapaMovimentoED mapa;
};

const Date kFriday = DateSerial(2026, 11, 20);
const Date kSunday = DateSerial(2026, 11, 22);

TEST_F(MonthlyMapsTest, TheBoardingMapFillsOnlyThePeriodsDaysAndLeavesOutCompaniesWithoutBoardings) {
  mapa.GerarArqTempMapaEmbarqueMensal(kFriday, kSunday, AbrangenciaGeral, "GO");
  EXPECT_TRUE(fs::exists(app.Path() / "bdTemp.db"));
  EXPECT_EQ(Report("cgrMapaControleEmbarque1"),
            (Rows{"10|Araguarina|Anápolis-GO|NULL|0|9|0|NULL|9", "10|Araguarina|São Paulo-SP|NULL|12|38|0|NULL|50"}));
  // Two rows of three days each; the other 28 day fields stay empty.
  EXPECT_EQ(FilledDayFields("cgrMapaControleEmbarque1"), 6);
  EXPECT_EQ(progress->calls, (std::vector<std::string>{"Show Gerando item mapa movimento Embarque", "Close"}));
  EXPECT_EQ(progress->steps, (std::vector<double>{0.0, 50.0, 100.0}));
  // The pairs, then each pair's three days from the terminal's database.
  int32_t days = 0;
  for (const std::string& statement : db.statements) days += statement.rfind("SELECT   Sum(Qt_Embarques)", 0) == 0;
  EXPECT_EQ(days, 6);

  // Within the state only: Anápolis; the earlier rows are gone.
  mapa.GerarArqTempMapaEmbarqueMensal(kFriday, kSunday, AbrangenciaIntermunicipal, "GO");
  EXPECT_EQ(Report("cgrMapaControleEmbarque1"), (Rows{"10|Araguarina|Anápolis-GO|NULL|0|9|0|NULL|9"}));
}

TEST_F(MonthlyMapsTest, TheAlightingMapNamesTheCompanyByItsPerson) {
  mapa.GerarArqTempMapaDesembarqueMensal(kFriday, kSunday, AbrangenciaGeral, "GO");
  EXPECT_EQ(Report("cgrMapaControleDesembarque1"),
            (Rows{"10|Viação Araguarina Ltda|Anápolis-GO|NULL|0|3|0|NULL|3",
                  "10|Viação Araguarina Ltda|São Paulo-SP|NULL|0|5|0|NULL|5",
                  "11|Expresso São Luiz Ltda|Goiânia-GO|NULL|0|9|0|NULL|9",
                  "11|Expresso São Luiz Ltda|Uberlândia-MG|NULL|0|0|4|NULL|4", "12|NULL|Goiânia-GO|NULL|0|6|0|NULL|6"}));
  EXPECT_EQ(progress->calls, (std::vector<std::string>{"Show Gerando item mapa movimento Desembarque", "Close"}));
  // The boarding map of the same file is not touched.
  EXPECT_TRUE(Report("cgrMapaControleEmbarque1").empty());
}

TEST_F(MonthlyMapsTest, AWorkFileThatIsThereIsKeptAndOnlyItsTableEmptied) {
  {
    auto work = std::make_shared<Connection>();
    fs::copy_file(app.Path() / "Modelos" / "bdTemp.db", app.Path() / "bdTemp.db");
    work->Open("Driver=SQLite3;Database=" + (app.Path() / "bdTemp.db").string());
    work->ExecuteNative("CREATE TABLE Marca (Id INTEGER)");
    work->ExecuteNative("INSERT INTO cgrMapaControleEmbarque1 (Cd_EmpresaOnibus, Cd_Cidade, Qt_Dia01) VALUES (99, 99, 7)");
  }
  mapa.GerarArqTempMapaEmbarqueMensal(kSunday, kSunday, AbrangenciaGeral, "GO");
  EXPECT_TRUE(Report("cgrMapaControleEmbarque1").empty());  // nobody boarded on Sunday
  auto work = std::make_shared<Connection>();
  work->Open("Driver=SQLite3;Database=" + (app.Path() / "bdTemp.db").string());
  EXPECT_EQ(work->Execute("SELECT COUNT(*) FROM Marca")->RecordCount(), 1);
  EXPECT_EQ(progress->calls.back(), "Close");
}

TEST_F(MonthlyMapsTest, AFailureCarriesTheFeedsLinkAndClosesTheWindow) {
  fs::remove(app.Path() / "Modelos" / "bdTemp.db");
  const VekError missing = testing::ErrorOf(
      [&] { mapa.GerarArqTempMapaDesembarqueMensal(kFriday, kSunday, AbrangenciaGeral, "GO"); });
  EXPECT_EQ(missing.Number(), kFileNotFound);
  EXPECT_EQ(missing.Source(), "vek -> cgdItensMapaMovimentoED.GerarArqTempMapaDesembarqueMensal, ");
  EXPECT_FALSE(fs::exists(app.Path() / "bdTemp.db"));

  // The terminal's map is gone: the window was shown and is closed again.
  fs::copy_file(app.Path() / "bdTemp.db.model", app.Path() / "Modelos" / "bdTemp.db");
  db.connection->ExecuteNative("DROP TABLE TbItemMapaMovimentoED");
  const VekError failed = testing::ErrorOf(
      [&] { mapa.GerarArqTempMapaDesembarqueMensal(kFriday, kSunday, AbrangenciaGeral, "GO"); });
  EXPECT_EQ(failed.Source(), testing::ProviderSource() +
                                 " -> cgdItensMapaMovimentoED.ConsultarEmpresasComDesembarque, "
                                 " -> cgdItensMapaMovimentoED.GerarArqTempMapaDesembarqueMensal, ");
  EXPECT_EQ(progress->calls, (std::vector<std::string>{"Show Gerando item mapa movimento Desembarque", "Close"}));
}

}  // namespace
}  // namespace vek
