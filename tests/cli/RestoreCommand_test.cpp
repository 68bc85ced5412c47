#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>

#include "cli/ToolRun.h"
#include "support/TestSupport.h"
#include "vek/vek.h"

namespace vek {
namespace {

namespace fs = std::filesystem;
using testing::RunTool;
using testing::ToolRun;

class RestoreCommandTest : public ::testing::Test {
 protected:
  RestoreCommandTest() {
    auto connection_object = std::make_shared<Connection>();
    Connection& connection = *connection_object;
    connection.Open("Driver=SQLite3;Database=" + (folder.Path() / "Vek.db").string());
    connection.SetClock(std::make_shared<FixedClock>(DateSerial(2026, 3, 2) + TimeSerial(22, 0, 0)));
    schema::CreateDatabase(connection);
    const std::string backup = "BACKUP DATABASE Vek\rTO  DISK = N'" + media.string() + "'\rWITH NOINIT, NAME = N'";
    connection.Execute(backup + "Cheio'");
    connection.Execute("INSERT INTO TbTipoOnibus (Cd_TipoOnibus, Ds_TipoOnibus) VALUES (1, 'Leito')");
    connection.Execute(backup + "Diferencial', DIFFERENTIAL");
  }

  testing::ScratchFolder folder;
  fs::path media = folder.Path() / "VekBkp.bak";
};

TEST_F(RestoreCommandTest, VerifiesThenRestoresAndNeverOverwritesWithoutForce) {
  ToolRun run = RunTool({"restore", media.string(), "--verify-only"});
  EXPECT_EQ(run.code, 0) << run.err;
  EXPECT_NE(run.out.find("2 sets\n"), std::string::npos) << run.out;
  EXPECT_NE(run.out.find("  1  full  02/03/2026 22:00:00  "), std::string::npos) << run.out;
  EXPECT_NE(run.out.find("\"Diferencial\"  ok\n"), std::string::npos) << run.out;
  EXPECT_TRUE(run.out.ends_with("\nok\n")) << run.out;
  EXPECT_FALSE(fs::exists(folder.Path() / "VekBkp.db"));

  // Without --to: the backup file's name with .db.
  run = RunTool({"restore", media.string()});
  EXPECT_EQ(run.code, 0) << run.err;
  EXPECT_NE(run.out.find("Restored " + (folder.Path() / "VekBkp.db").string() + " from set 1 (full, 02/03/2026 "
                                                                                "22:00:00, "),
            std::string::npos)
      << run.out;
  EXPECT_NE(run.out.find(" and set 2 (differential, "), std::string::npos) << run.out;
  auto restored_object = std::make_shared<Connection>();
  Connection& restored = *restored_object;
  restored.Open("Driver=SQLite3;Database=" + (folder.Path() / "VekBkp.db").string());
  EXPECT_EQ(CStr(restored.Execute("SELECT Ds_TipoOnibus FROM TbTipoOnibus")->Fields().Item(0).Value()), "Leito");
  restored.Close();

  run = RunTool({"restore", media.string(), "--to", (folder.Path() / "VekBkp.db").string()});
  EXPECT_EQ(run.code, 1);
  EXPECT_NE(run.err.find("já existe; use --force"), std::string::npos) << run.err;
  run = RunTool({"restore", media.string(), "--force"});
  EXPECT_EQ(run.code, 0) << run.err;
}

TEST_F(RestoreCommandTest, ADamagedForeignOrMissingFileExitsOneAndBadUsageTwo) {
  {
    std::fstream file(media, std::ios::in | std::ios::out | std::ios::binary);
    file.seekp(static_cast<std::streamoff>(fs::file_size(media) - 5));
    file.put('\x7f');
  }
  ToolRun run = RunTool({"restore", media.string(), "--verify-only"});
  EXPECT_EQ(run.code, 1);
  EXPECT_NE(run.out.find("the set's data is damaged (checksum)\nfailed\n"), std::string::npos) << run.out;
  EXPECT_NE(run.err.find("tem conjuntos danificados"), std::string::npos) << run.err;
  run = RunTool({"restore", media.string()});
  EXPECT_EQ(run.code, 1);
  EXPECT_NE(run.err.find("Set 2 of " + media.string() + " is damaged"), std::string::npos) << run.err;
  EXPECT_FALSE(fs::exists(folder.Path() / "VekBkp.db"));

  std::ofstream(folder.Path() / "Vek.ini") << "[Persistencia]\n";
  run = RunTool({"restore", (folder.Path() / "Vek.ini").string()});
  EXPECT_EQ(run.code, 1);
  EXPECT_NE(run.err.find("is not a backup media file"), std::string::npos) << run.err;
  run = RunTool({"restore", (folder.Path() / "nada.bak").string()});
  EXPECT_EQ(run.code, 1);
  EXPECT_NE(run.err.find("does not exist"), std::string::npos) << run.err;
  EXPECT_EQ(RunTool({"restore"}).code, 2);
  EXPECT_EQ(RunTool({"restore", media.string(), "--bogus"}).code, 2);
}

}  // namespace
}  // namespace vek
