#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "cli/Commands.h"
#include "cli/ToolRun.h"
#include "support/TestSupport.h"

namespace vek {
namespace {

namespace fs = std::filesystem;
using testing::RunTool;
using testing::ToolRun;

TEST(SqlCommandTest, BadUsageIsExitTwoAndAMissingDatabaseIsRefusedWithoutMakingAFile) {
  testing::ScratchFolder scratch;
  const std::string missing = (scratch.Path() / "no-such" / "Vek.db").string();
  const std::string mistyped = (scratch.Path() / "Vke.db").string();
  const std::string text_file = (scratch.Path() / "notes.txt").string();
  const std::string empty_file = (scratch.Path() / "empty.db").string();
  std::ofstream(text_file) << "SELECT 1 is what I meant to run\n";
  std::ofstream(empty_file).flush();
  const struct {
    std::vector<std::string> args;
    int code;
  } cases[] = {
      {{"sql"}, 2},                                          // no statement
      {{"sql", "--dialect", "oracle", "SELECT 1"}, 2},       // no such dialect
      {{"sql", "SELECT 1", "SELECT 2"}, 2},                  // one statement per call
      {{"sql", "--run"}, 2},                                 // --run without its database
      {{"sql", "--run", missing, "SELECT 1"}, 1},            // a folder that is not there
      {{"sql", "--run", mistyped, "SELECT 1"}, 1},           // a typo in the file name
      {{"sql", "--run", scratch.Path().string(), "SELECT 1"}, 1},  // a folder, not a file
      {{"sql", "--run", "Driver=SQLite3;Database=" + mistyped, "SELECT 1"}, 1},  // the typo in a string
      {{"sql", "--run", text_file, "SELECT 1"}, 1},          // a file that is no database
      {{"sql", "--run", empty_file, "SELECT 1"}, 1},         // SQLite would take it for a new one
  };
  for (const auto& tried : cases) {
    const ToolRun run = RunTool(tried.args);
    EXPECT_EQ(run.code, tried.code) << ::testing::PrintToString(tried.args) << run.err;
    EXPECT_FALSE(run.err.empty()) << ::testing::PrintToString(tried.args);
    if (tried.code == 1) {
      EXPECT_NE(run.err.find("no database file or terminal folder at"), std::string::npos) << run.err;
    }
  }
  EXPECT_FALSE(fs::exists(mistyped));
  EXPECT_EQ(fs::file_size(empty_file), 0u);
  EXPECT_FALSE(fs::exists(scratch.Path() / "no-such"));
}

TEST(SqlCommandTest, AStatementRunsOnATerminalsDatabase) {
  testing::ScratchFolder scratch;
  std::ostringstream made;
  cli::InitTerminalFolder(scratch.Path(), false, made);
  const ToolRun run = RunTool({"sql", "--run", (scratch.Path() / "Vek.db").string(),
                               "SELECT TOP 1 Nm_TipoReceita FROM TbTipoReceita ORDER BY Cd_TipoReceita"});
  EXPECT_EQ(run.code, 0) << run.err;
  EXPECT_NE(run.out.find("LIMIT 1"), std::string::npos) << run.out;  // the translation is shown
  EXPECT_NE(run.out.find("Nm_TipoReceita\nEMBARQUE\n(1 row)"), std::string::npos) << run.out;
}

TEST(SqlCommandTest, OnATerminalFolderItShowsWhatRunsAndTheTypesOfTheColumns) {
  testing::ScratchFolder scratch;
  std::ostringstream made;
  cli::InitTerminalFolder(scratch.Path(), false, made);
  const ToolRun run = RunTool({"sql", "--types", "--run", scratch.Path().string(),
                               "SELECT CONVERT(money, 10) / 3 AS Terco, '1' + 1 AS Dois, "
                               "CONVERT(varchar, CONVERT(money, 10) / 3) AS Texto"});
  EXPECT_EQ(run.code, 0) << run.err;
  EXPECT_NE(run.out.find("vek_money("), std::string::npos) << run.out;  // the text the connection runs
  EXPECT_NE(run.out.find("Terco\tDois\tTexto\nadCurrency\tadInteger\tadVarChar\n"), std::string::npos) << run.out;
  EXPECT_NE(run.out.find("\t2\t3.33\n(1 row)"), std::string::npos) << run.out;

  const ToolRun postgres = RunTool({"sql", "--dialect", "postgresql", "SELECT CONVERT(money, 10) / 3"});
  EXPECT_EQ(postgres.code, 0) << postgres.err;
  EXPECT_NE(postgres.out.find("AS numeric(19,4))"), std::string::npos) << postgres.out;
}

}  // namespace
}  // namespace vek
