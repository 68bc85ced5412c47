#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

#include "cli/Commands.h"
#include "cli/ToolRun.h"
#include "support/TestSupport.h"
#include "vek/vek.h"

namespace vek {
namespace {

namespace fs = std::filesystem;
using testing::RunTool;

class YardCommandTest : public ::testing::Test {
 protected:
  // A terminal folder whose Vek.ini names company 1, with two vehicles in
  // the yard, one that left, and a loose ticket only the gates know.
  void MakeTerminal() {
    std::ostringstream ignored;
    cli::InitTerminalFolder(folder_, false, ignored);
    WritePrivateProfileString("EmpresaUsuaria", "Cd_EmpresaUsuariaSistema", "1", folder_ / "Vek.ini");
    auto connection = std::make_shared<Connection>();
    connection->Open("Driver=SQLite3;Database=" + (folder_ / "Vek.db").string());
    connection->Execute("INSERT INTO TbMarcaModelo (Cd_MarcaModelo, Ds_MarcaModelo) VALUES (6, 'Fiat Strada')");
    connection->Execute("INSERT INTO TbVeiculo (Cd_Placa, Cd_MarcaModelo) VALUES ('OGX4C56', 6)");
    connection->Execute("INSERT INTO TbTicketEstacionamento (Cd_EmpresaUsuariaSistema, Cd_TicketEstacionamento, "
                        "Cd_Placa, No_Situacao, Dt_Entrada) VALUES (1, 1, 'OGX4C56', 1, '2026-03-02 09:15:00'), "
                        "(1, 2, 'PQA1B23', 1, '2026-03-02 07:40:00'), (1, 3, 'QTR7E89', 2, '2026-03-02 06:00:00')");
    connection->Execute("INSERT INTO MDESTACIONAMENTO.dbo.CARTOESAVULSOS (CODIGOCARTAO, DATAHORAENTRADA) VALUES "
                        "('2603020009999', '2026-03-02 08:00:00')");
    connection->Close();
  }

  testing::ScratchApp app_;
  const fs::path folder_ = app_.Path() / "terminal";
};

TEST_F(YardCommandTest, TheYardIsPrintedOldestEntryFirst) {
  MakeTerminal();
  const testing::ToolRun run = RunTool({"yard", folder_.string()});
  EXPECT_EQ(run.code, 0) << run.err;
  std::istringstream lines(run.out);
  std::string line;
  std::getline(lines, line);
  EXPECT_TRUE(line.starts_with("Vehicles in the yard of company 1, ")) << line;
  std::getline(lines, line);
  EXPECT_EQ(line, "  02/03/2026 07:40  avulso      PLACA.:PQA1B23,");
  std::getline(lines, line);
  EXPECT_EQ(line, "  02/03/2026 08:00  avulso      TICKET:2603020009999***");
  std::getline(lines, line);
  EXPECT_EQ(line, "  02/03/2026 09:15  avulso      PLACA.:OGX4C56,Fiat Strada");
  std::getline(lines, line);
  EXPECT_EQ(line, "3 vehicles in the yard");
  EXPECT_EQ(run.err, "");
}

TEST_F(YardCommandTest, AFolderWithoutATerminalOrWithoutACompanyIsAFailureExplainedInOneLine) {
  fs::create_directories(folder_);
  testing::ToolRun run = RunTool({"yard", folder_.string()});
  EXPECT_EQ(run.code, 1);
  EXPECT_EQ(run.out, "");
  EXPECT_NE(run.err.find("não tem Vek.ini"), std::string::npos) << run.err;
  EXPECT_EQ(std::count(run.err.begin(), run.err.end(), '\n'), 1);
  EXPECT_FALSE(fs::exists(folder_ / "Vek.db"));  // nothing made

  MakeTerminal();
  WritePrivateProfileString("EmpresaUsuaria", "Cd_EmpresaUsuariaSistema", "0", folder_ / "Vek.ini");
  run = RunTool({"yard", folder_.string()});
  EXPECT_EQ(run.code, 1);
  EXPECT_NE(run.err.find("não informa a empresa usuária"), std::string::npos) << run.err;

  EXPECT_EQ(RunTool({"yard", folder_.string(), "extra"}).code, 2);
}

}  // namespace
}  // namespace vek
