#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "cli/Commands.h"
#include "cli/ToolRun.h"
#include "support/TerminalDatabase.h"
#include "support/TestSupport.h"
#include "vek/vek.h"

namespace vek {
namespace {

namespace fs = std::filesystem;
using testing::RunTool;
using testing::ToolRun;

std::set<std::string> FileNames(const fs::path& folder) {
  std::set<std::string> names;
  for (const fs::directory_entry& entry : fs::directory_iterator(folder)) names.insert(entry.path().filename().string());
  return names;
}

size_t LineCount(const std::string& text) { return static_cast<size_t>(std::count(text.begin(), text.end(), '\n')); }

// A terminal folder whose Vek.ini names the test's database (a file, or a
// database on the server), as a scheduler finds it.
class BackupCommandTest : public ::testing::Test {
 protected:
  BackupCommandTest() {
    std::ostringstream ignored;
    cli::InitTerminalFolder(folder_, false, ignored);
    const std::vector<std::string> names = {"Cd_DB", "Nm_ServidorDB", "Ds_CaminhoDB"};
    const std::vector<std::string> values = db_.SessionArguments();
    for (size_t i = 0; i < names.size(); ++i) {
      WritePrivateProfileString("Persistencia", names[i], values[i], folder_ / "Vek.ini");
    }
    AddBusTypes(1, 3);
  }

  void AddBusTypes(int32_t first, int32_t last) {
    for (int32_t code = first; code <= last; ++code) {
      db_.Query("INSERT INTO TbTipoOnibus (Cd_TipoOnibus, Ds_TipoOnibus) VALUES (" + std::to_string(code) +
                ", 'Tipo " + std::to_string(code) + "')");
    }
  }

  fs::path Local() const { return folder_ / "Backup"; }

  testing::ScratchApp app_;
  const fs::path folder_ = app_.Path() / "terminal";
  testing::TerminalDatabase db_{(app_.Path() / "Terminal.db").string()};
};

TEST_F(BackupCommandTest, BackupTwiceThenVerifyAndReportTheStatus) {
  ToolRun run = RunTool({"backup", folder_.string(), "--status"});
  EXPECT_EQ(run.code, 1);
  EXPECT_EQ(run.out, "No verified backup: run vek backup --verify after a backup\n");
  EXPECT_EQ(LineCount(run.err), 1u) << run.err;

  run = RunTool({"backup", folder_.string()});
  ASSERT_EQ(run.code, 0) << run.err;
  EXPECT_NE(run.out.find(" - Iniciado backup completo\n"), std::string::npos) << run.out;
  EXPECT_NE(run.out.find(" - Copiou arquivo de backup para o diretório de espelho (compactado)\n"), std::string::npos);
  EXPECT_NE(run.out.find((Local() / "VekBkp.bak").string() + ": 1 set\n  1  " + testing::FullSetKind() + "  "),
            std::string::npos)
      << run.out;
  EXPECT_EQ(run.err, "");
  EXPECT_TRUE(fs::is_regular_file(folder_ / "BackupEspelho" / "VekBkp.zip"));

  // The next call, the same day after five: a differential set.
  AddBusTypes(4, 5);
  run = RunTool({"backup", folder_.string()});
  ASSERT_EQ(run.code, 0) << run.err;
  EXPECT_NE(run.out.find(" - Pronto para iniciar o backup incremental\n"), std::string::npos) << run.out;
  EXPECT_NE(run.out.find(": 2 sets\n"), std::string::npos) << run.out;
  EXPECT_NE(run.out.find("  2  " + testing::DifferentialSetKind() + "  "), std::string::npos) << run.out;

  run = RunTool({"backup", folder_.string(), "--verify"});
  ASSERT_EQ(run.code, 0) << run.out << run.err;
  EXPECT_NE(run.out.find("row counts equal the live database's\nok\n"), std::string::npos) << run.out;
  EXPECT_TRUE(run.out.ends_with("\nok\n")) << run.out;
  // The scratch database is gone.
  EXPECT_EQ(FileNames(Local()), (std::set<std::string>{"VekBkp.bak", "VekBkp.zip"}));
  const BackupCheck check = VerifyBackup(Local() / "VekBkp.bak");
  ASSERT_EQ(check.sets.size(), 2u);
  const std::string taken = Format(Variant(check.sets[1].time), "dd/mm/yyyy hh:Nn:Ss");

  run = RunTool({"backup", folder_.string(), "--status"});
  EXPECT_EQ(run.code, 0) << run.err;
  EXPECT_TRUE(run.out.starts_with("Last verified backup: " + taken + " " + check.sets[1].kind + " set 2, taken 0.0 "
                                  "hours ago (verified "))
      << run.out;
  EXPECT_TRUE(run.out.ends_with("\nok\n")) << run.out;

  // A row written after the backup: the restored copy no longer matches.
  AddBusTypes(6, 6);
  run = RunTool({"backup", folder_.string(), "--verify"});
  EXPECT_EQ(run.code, 1);
  EXPECT_NE(run.out.find("row counts differ:\n  TbTipoOnibus: 6 rows live, 5 in the backup\nfailed\n"),
            std::string::npos)
      << run.out;
  EXPECT_EQ(LineCount(run.err), 1u) << run.err;
  EXPECT_EQ(FileNames(Local()), (std::set<std::string>{"VekBkp.bak", "VekBkp.zip"}));
  // ...and the last verified backup is still the one that matched.
  EXPECT_NE(RunTool({"backup", folder_.string(), "--status"}).out.find(taken + " " + check.sets[1].kind + " set 2"),
            std::string::npos);
}

TEST_F(BackupCommandTest, TheStatusFailsWhenTheVerifiedBackupIsTooOld) {
  const Date now = SystemClock().Now();
  SaveSetting("VEK", "Backup", "LastVerifiedBackup", Format(Variant(now - 30.5 / 24.0), "dd/mm/yyyy hh:Nn:Ss") +
                                                         " differential set 4");
  ToolRun run = RunTool({"backup", folder_.string(), "--status"});
  EXPECT_EQ(run.code, 1);
  EXPECT_NE(run.out.find(" differential set 4, taken 30.5 hours ago"), std::string::npos) << run.out;
  EXPECT_TRUE(run.out.ends_with("\ntoo old: more than 24 hours\n")) << run.out;
  EXPECT_EQ(LineCount(run.err), 1u) << run.err;
  run = RunTool({"backup", folder_.string(), "--status", "--max-age", "30"});
  EXPECT_EQ(run.code, 1);
  EXPECT_TRUE(run.out.ends_with("\ntoo old: more than 30 hours\n")) << run.out;
  run = RunTool({"backup", folder_.string(), "--status", "--max-age", "31"});
  EXPECT_EQ(run.code, 0) << run.out;
  EXPECT_TRUE(run.out.ends_with("\nok\n")) << run.out;
}

TEST_F(BackupCommandTest, NothingToVerifyIsAFailureAndBadUsageIsTwoInOneLine) {
  ToolRun run = RunTool({"backup", folder_.string(), "--verify"});
  EXPECT_EQ(run.code, 1);
  EXPECT_NE(run.err.find("does not exist"), std::string::npos) << run.err;
  EXPECT_EQ(LineCount(run.err), 1u) << run.err;

  for (const char* option : {"--verify", "--status"}) {
    run = RunTool({"backup", (app_.Path() / "nowhere").string(), option});
    EXPECT_EQ(run.code, 1);
    EXPECT_NE(run.err.find("there is no Vek.ini"), std::string::npos) << run.err;
  }

  // An empty backup folder setting: the system's error, and no file anywhere.
  WritePrivateProfileString("Backup", "Ds_PathBkpLocal", "", folder_ / "Vek.ini");
  run = RunTool({"backup", folder_.string()});
  EXPECT_EQ(run.code, 1);
  EXPECT_NE(run.err.find("Não foi configurado o diretório de backup (error 0x80040458"), std::string::npos)
      << run.err;
  EXPECT_FALSE(fs::exists(Local()));
  EXPECT_FALSE(fs::exists(folder_ / "BackupEspelho"));

  for (const std::vector<std::string>& usage : std::vector<std::vector<std::string>>{
           {"backup", folder_.string(), "--verify", "--status"},
           {"backup", folder_.string(), "--max-age", "3"},
           {"backup", folder_.string(), "--status", "--max-age", "0"},
           {"backup", folder_.string(), "--status", "--max-age", "ontem"},
           {"backup", folder_.string(), "outro"},
           {"backup", "--bogus"}}) {
    run = RunTool(usage);
    EXPECT_EQ(run.code, 2) << usage.back();
    EXPECT_EQ(LineCount(run.err), 1u) << run.err;
  }
  EXPECT_EQ(RunTool({"backup", "--help"}).code, 0);
}

}  // namespace
}  // namespace vek
