#include "support/TerminalDatabase.h"
#include "cli/Commands.h"
#include "vek/db/workbook/WorkbookFile.h"
#include "vek/vek.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>
#include <string>

#include "db/dialect/PgTestDb.h"
#include "support/DemoDay.h"
#include "support/TestSupport.h"
#include "vek/db/Recordset.h"
#include "vek/foundation/cgdSistema.h"

namespace vek {
namespace {

namespace fs = std::filesystem;
using testing::ErrorOf;
using testing::FirstValue;

// Each test works in a scratch folder, with the settings store inside it.
class InitCommandTest : public ::testing::Test {
 protected:
  testing::ScratchApp app_;
  const fs::path scratch_ = app_.Path();
};

TEST_F(InitCommandTest, MakesAFolderWhoseSettingsLoadAndWhoseDatabasesHaveTheirRows) {
  const fs::path target = scratch_ / "Rodoviária" / "." / "Goiânia";  // parents are made too
  std::ostringstream out;
  cli::InitTerminalFolder(target, false, out);

  const fs::path folder = fs::canonical(target);
  EXPECT_EQ(folder, fs::canonical(scratch_) / "Rodoviária" / "Goiânia");
  const std::string made = "folder    " + folder.string() + "\n" +
                           "settings  " + (folder / "Vek.ini").string() + "\n" +
                           "database  " + (folder / "Vek.db").string() + "\n" +
                           "database  " + (folder / "MDESTACIONAMENTO.db").string() + "\n" +
                           "folder    " + (folder / "Modelos").string() + "\n";
  // Then one line per template of the Modelos folder.
  EXPECT_EQ(out.str(), made + "template  " + (folder / "Modelos" / "bdTemp.db").string() + "\n" +
                           "template  " + (folder / "Modelos" / "SE1.dbf").string() + "\n" +
                           "template  " + (folder / "Modelos" / "MovimentoMensal.xlsx").string() + "\n");
  EXPECT_TRUE(fs::is_directory(folder / "Modelos"));
  EXPECT_TRUE(fs::is_regular_file(folder / "MDESTACIONAMENTO.db"));
  // The monthly workbook's template: DADOS with its headings and a row per day.
  workbook::WorkbookFile monthly(folder / "Modelos" / "MovimentoMensal.xlsx");
  EXPECT_EQ(monthly.SheetNames(), (std::vector<std::string>{"DADOS", "Resumo"}));
  workbook::Sheet& data = monthly.Worksheet("DADOS");
  for (size_t column = 0; column < kMonthlyWorkbookHeadings.size(); ++column) {
    EXPECT_EQ(CStr(data.Value(1, static_cast<int32_t>(column))), kMonthlyWorkbookHeadings[column]);
  }
  EXPECT_EQ(data.LastRow(), 32);
  EXPECT_EQ(CLng(data.Value(32, 0)), 31);
  // Vek.ini holds the database password: its owner alone reads it.
  EXPECT_EQ(fs::status(folder / "Vek.ini").permissions(), fs::perms::owner_read | fs::perms::owner_write);

  // The settings load whole: every numeric and boolean key has a value, the
  // turnstile key in the section it is read from too.
  SetAppPath(folder);
  cgdSistema sistema;
  std::shared_ptr<cgpSistema> session = sistema.Consultar();
  EXPECT_EQ(CLng(session->Get("Cursor")), 1);
  EXPECT_EQ(CLng(session->Get("LockType")), 3);
  EXPECT_EQ(CLng(session->Get("Cd_DB")), 31);
  EXPECT_EQ(CStr(session->Get("Ds_CaminhoDB")), (folder / "Vek.db").string());
  EXPECT_EQ(CStr(session->Get("Ds_FormatoData")), "yyyy-mm-dd");
  EXPECT_EQ(CStr(session->Get("Ds_CaminhoAplicacao")), folder.string());
  EXPECT_EQ(CStr(session->Get("Ds_PathBkpLocal")), (folder / "Backup").string());
  EXPECT_EQ(CStr(session->Get("Ds_PathBkpEspelho")), (folder / "BackupEspelho").string());
  EXPECT_EQ(CStr(session->Get("Ds_PathArquivosSom")), (folder / "Som").string());
  EXPECT_EQ(CLng(session->Get("Qt_TempoMilesegundosAcionarCatraca")), 0);
  EXPECT_EQ(CLng(session->Get("No_LPT")), 0);
  EXPECT_FALSE(CBool(session->Get("Ic_EntradaAutomatizadaNoEstacionamento")));
  EXPECT_EQ(CStr(session->Get("Ds_SenhaDB")), "");
  EXPECT_EQ(GetPrivateProfileString("Sanitario", "Qt_TempoMilesegundosAcionarCatraca", "x",
                                    folder / "Vek.ini"),
            "0");
  EXPECT_EQ(GetPrivateProfileString("Execucao", "Ic_ControleRelogioEstacionamento", "absent",
                                    folder / "Vek.ini"),
            "absent");

  auto connection = session->AbrirConexao();
  EXPECT_EQ(FirstValue(*connection, "SELECT Nm_TipoReceita FROM TbTipoReceita WHERE Cd_TipoReceita = 1"),
            "EMBARQUE");
  EXPECT_EQ(FirstValue(*connection, "SELECT DESCRICAO FROM MDESTACIONAMENTO.dbo.EVENTO WHERE IDEVENTO = 2"),
            "SAIDA");
}

TEST_F(InitCommandTest, AnExistingDatabaseIsRefusedUnlessForcedAndForcingKeepsItsRows) {
  const fs::path folder = scratch_ / "terminal";
  std::ostringstream first;
  cli::InitTerminalFolder(folder, false, first);
  {
    cgpSistema session;
    session.Let("Ds_CaminhoDB", Variant((folder / "Vek.db").string()));
    session.AbrirConexao()->Execute("INSERT INTO TbUF (Cd_UF, Nm_UF, Sg_UF) VALUES (9, 'Goiás', 'GO')");
  }
  WritePrivateProfileString("Persistencia", "Ds_FormatoData", "dd/mm/yyyy", folder / "Vek.ini");

  std::ostringstream refused_out;
  const VekError refused = ErrorOf([&] { cli::InitTerminalFolder(folder, false, refused_out); });
  EXPECT_EQ(refused.Number(), kBusinessError);
  EXPECT_NE(refused.Description().find((folder / "Vek.db").string()), std::string::npos)
      << refused.Description();
  EXPECT_NE(refused.Description().find("--force"), std::string::npos);
  EXPECT_EQ(refused_out.str(), "");
  EXPECT_EQ(GetPrivateProfileString("Persistencia", "Ds_FormatoData", "", folder / "Vek.ini"), "dd/mm/yyyy");

  std::ostringstream forced;
  cli::InitTerminalFolder(folder, true, forced);
  EXPECT_NE(forced.str().find("Vek.db (kept its data"), std::string::npos) << forced.str();
  EXPECT_NE(forced.str().find("Modelos (already there)"), std::string::npos) << forced.str();
  EXPECT_EQ(GetPrivateProfileString("Persistencia", "Ds_FormatoData", "", folder / "Vek.ini"), "dd/mm/yyyy");
  cgpSistema session;
  session.Let("Ds_CaminhoDB", Variant((folder / "Vek.db").string()));
  auto connection = session.AbrirConexao();
  EXPECT_EQ(FirstValue(*connection, "SELECT Nm_UF FROM TbUF WHERE Sg_UF = 'GO'"), "Goiás");
  EXPECT_EQ(FirstValue(*connection, "SELECT COUNT(*) FROM TbTipoReceita"), "4");  // fixed rows not doubled
}

TEST_F(InitCommandTest, TheCommandLineTakesTheFolderAndTheForceFlag) {
  const fs::path folder = scratch_ / "pela linha";
  auto parse = [&](std::vector<std::string> args) {
    CLI::App app{"vek"};
    cli::AddInitCommand(app);
    std::vector<const char*> argv{"vek"};
    for (const std::string& arg : args) argv.push_back(arg.c_str());
    std::ostringstream out;
    std::streambuf* saved = std::cout.rdbuf(out.rdbuf());
    try {
      app.parse(static_cast<int>(argv.size()), argv.data());
    } catch (...) {
      std::cout.rdbuf(saved);
      throw;
    }
    std::cout.rdbuf(saved);
    return out.str();
  };
  EXPECT_NE(parse({"init", folder.string()}).find("settings  "), std::string::npos);
  EXPECT_TRUE(fs::is_regular_file(folder / "Vek.db"));
  EXPECT_EQ(ErrorOf([&] { parse({"init", folder.string()}); }).Number(), kBusinessError);
  EXPECT_NE(parse({"init", "--force", folder.string()}).find("kept its data"), std::string::npos);
}

TEST_F(InitCommandTest, ARepairKeepsEverySettingTheFileHoldsAndAddsTheMissingOnes) {
  const fs::path folder = scratch_ / "terminal";
  std::ostringstream out;
  cli::InitTerminalFolder(folder, false, out);
  const fs::path ini = folder / "Vek.ini";
  // The terminal's own choices, a key lost, and a note of the administrator's.
  ASSERT_TRUE(WritePrivateProfileString("Persistencia", "Ds_FormatoData", "dd/mm/yyyy", ini));
  ASSERT_TRUE(WritePrivateProfileString("Persistencia", "Cursor", "3", ini));
  ASSERT_TRUE(WritePrivateProfileString("Persistencia", "LockType", std::nullopt, ini));
  {
    std::ofstream note(ini, std::ios::app);
    note << "; caixa 2, terminal norte\n";
  }
  cli::InitTerminalFolder(folder, true, out);

  EXPECT_EQ(GetPrivateProfileString("Persistencia", "Ds_FormatoData", "", ini), "dd/mm/yyyy");
  EXPECT_EQ(GetPrivateProfileString("Persistencia", "Cursor", "", ini), "3");
  EXPECT_EQ(GetPrivateProfileString("Persistencia", "LockType", "", ini), "3");  // the missing key is back
  std::ifstream text(ini);
  const std::string whole((std::istreambuf_iterator<char>(text)), std::istreambuf_iterator<char>());
  EXPECT_NE(whole.find("; caixa 2, terminal norte"), std::string::npos);
}

#ifdef VEK_TEST_HAS_LIBPQ
// A terminal whose database is on a PostgreSQL server.
TEST(PostgresInit, WritesTheServerIntoVekIniAndCreatesTheSchemaThere) {
  dialect::testing::PgTestDb server;
  if (!server.Open() || std::getenv("VEK_PG_PORT") == nullptr) VEK_SKIP_WITHOUT_SERVER("no PostgreSQL server");
  testing::ScratchApp app;
  const cli::ServerDatabase postgres{"postgres@127.0.0.1:" + std::string(std::getenv("VEK_PG_PORT")),
                                     server.Name()};
  std::ostringstream out;
  cli::InitTerminalFolder(app.Path() / "terminal", postgres, out);
  const fs::path folder = fs::canonical(app.Path() / "terminal");
  EXPECT_TRUE(fs::is_directory(folder / "Modelos"));
  EXPECT_FALSE(fs::exists(folder / "Vek.db"));

  SetAppPath(folder);
  cgdSistema sistema;
  std::shared_ptr<cgpSistema> session = sistema.Consultar();
  EXPECT_EQ(CLng(session->Get("Cd_DB")), 41);
  EXPECT_EQ(CStr(session->Get("Ds_CaminhoDB")), server.Name());
  auto connection = session->AbrirConexao();
  EXPECT_EQ(connection->SqlDialect(), Dialect::PostgreSQL);
  EXPECT_EQ(FirstValue(*connection, "SELECT Nm_TipoReceita FROM TbTipoReceita WHERE Cd_TipoReceita = 1"),
            "EMBARQUE");
  // Again on the same database: what is there is kept.
  connection->Execute("INSERT INTO TbUF (Cd_UF, Nm_UF, Sg_UF) VALUES (9, 'Goiás', 'GO')");
  std::ostringstream again;
  cli::InitTerminalFolder(app.Path() / "terminal", postgres, again);
  EXPECT_EQ(FirstValue(*connection, "SELECT Nm_UF FROM TbUF WHERE Sg_UF = 'go'"), "Goiás");
  EXPECT_EQ(ErrorOf([&] { cli::InitTerminalFolder(app.Path() / "x", cli::ServerDatabase{}, again); }).Number(),
            kBusinessError);

  // A repair of the folder (vek init --force) keeps the terminal on its server
  // and its date format.
  ASSERT_TRUE(WritePrivateProfileString("Persistencia", "Ds_FormatoData", "dd/mm/yyyy", folder / "Vek.ini"));
  std::ostringstream repaired;
  cli::InitTerminalFolder(app.Path() / "terminal", true, repaired);
  EXPECT_NE(repaired.str().find(server.Name() + " on " + postgres.server), std::string::npos) << repaired.str();
  EXPECT_FALSE(fs::exists(folder / "Vek.db"));
  std::shared_ptr<cgpSistema> reloaded = cgdSistema().Consultar();
  EXPECT_EQ(CLng(reloaded->Get("Cd_DB")), 41);
  EXPECT_EQ(CStr(reloaded->Get("Nm_ServidorDB")), postgres.server);
  EXPECT_EQ(CStr(reloaded->Get("Ds_CaminhoDB")), server.Name());
  EXPECT_EQ(CStr(reloaded->Get("Ds_FormatoData")), "dd/mm/yyyy");
  EXPECT_EQ(GetPrivateProfileString("Persistencia", "Ds_FormatoData", "", folder / "Vek.ini"), "dd/mm/yyyy");
  EXPECT_EQ(FirstValue(*connection, "SELECT Nm_UF FROM TbUF WHERE Sg_UF = 'GO'"), "Goiás");
}
#endif

}  // namespace
}  // namespace vek
