#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <memory>
#include <sstream>
#include <string>

#include "cli/Commands.h"
#include "cli/ToolRun.h"
#include "support/DbfFile.h"
#include "support/TestSupport.h"
#include "vek/vek.h"

namespace vek {
namespace {

namespace fs = std::filesystem;
using testing::RunTool;

class ExportDbfCommandTest : public ::testing::Test {
 protected:
  // A terminal folder with three receivables: two issued on 2 and 3 March,
  // one on 4 March.
  void MakeTerminal() {
    std::ostringstream ignored;
    cli::InitTerminalFolder(folder_, false, ignored);
    auto connection = std::make_shared<Connection>();
    connection->Open("Driver=SQLite3;Database=" + (folder_ / "Vek.db").string());
    connection->Execute("INSERT INTO TbPessoa (Cd_Pessoa, Nm_Pessoa) VALUES (10, 'Viação Goiânia')");
    connection->Execute(
        "INSERT INTO TbContaReceber (Cd_EmpresaUsuariaSistema, No_ContaReceber, No_Parcela, Cd_Pessoa, Dt_Emissao, "
        "Dt_Vencimento, Vl_ContaReceber, Qt_DiasProrrogacao, Ds_Historico) VALUES "
        "(1, 1, 1, 10, '2026-03-02', '2026-03-04', 100.5, 0, 'Conceição'), "
        "(1, 2, 1, 10, '2026-03-03', '2026-03-04', 7, 0, ''), "
        "(1, 3, 1, 10, '2026-03-04', '2026-03-11', 9, 0, '')");
    connection->Close();
  }

  testing::ScratchApp app_;
  const fs::path folder_ = app_.Path() / "terminal";
};

TEST_F(ExportDbfCommandTest, TheReceivablesOfThePeriodGoIntoTheTable) {
  MakeTerminal();
  const fs::path erp = folder_ / "Modelos";
  const testing::ToolRun run =
      RunTool({"export", "dbf", folder_.string(), "--from", "02/03/2026", "--to", "2026-03-03", erp.string(), "SE1"});
  EXPECT_EQ(run.code, 0) << run.err;
  EXPECT_EQ(run.err, "");
  EXPECT_EQ(run.out, "2 receivables issued from 02/03/2026 to 03/03/2026 written into table SE1 in " +
                         fs::canonical(erp).string() + "\n");
  EXPECT_EQ(testing::DbfFile(erp / "SE1.dbf").LiveRecords(), 2u);

  // Again for one day: the table holds that day's title alone.
  EXPECT_EQ(RunTool({"export", "dbf", folder_.string(), "--from", "4/3/2026", "--to", "4/3/2026", erp.string(),
                     "se1"})
                .out.substr(0, 14),
            "1 receivable i");
  const testing::DbfFile file(erp / "SE1.dbf");
  EXPECT_EQ(file.Records(), 3u);
  EXPECT_EQ(file.LiveRecords(), 1u);
}

TEST_F(ExportDbfCommandTest, BadUsageIsTwoAndAFailureIsOneExplainedInOneLine) {
  MakeTerminal();
  const std::string erp = (folder_ / "Modelos").string();
  const testing::ToolRun help = RunTool({"export", "dbf", "--help"});
  EXPECT_EQ(help.code, 0);
  EXPECT_NE(help.out.find("[DIR] FOLDER TABLE"), std::string::npos) << help.out;
  EXPECT_NE(help.out.find("--from"), std::string::npos);
  EXPECT_EQ(RunTool({"export"}).code, 2);
  EXPECT_EQ(RunTool({"export", "dbf", folder_.string(), "--from", "02/03/2026", erp, "SE1"}).code, 2);
  EXPECT_EQ(RunTool({"export", "dbf", folder_.string(), "--from", "31/02/2026", "--to", "01/03/2026", erp, "SE1"}).code,
            2);
  EXPECT_EQ(RunTool({"export", "dbf", folder_.string(), "--from", "03/03/2026", "--to", "02/03/2026", erp, "SE1"}).code,
            2);
  EXPECT_EQ(RunTool({"export", "dbf", "--from", "02/03/2026", "--to", "02/03/2026", "SE1"}).code, 2);

  const testing::ToolRun missing =
      RunTool({"export", "dbf", folder_.string(), "--from", "02/03/2026", "--to", "02/03/2026", erp, "SE9"});
  EXPECT_EQ(missing.code, 1);
  EXPECT_EQ(missing.out, "");
  EXPECT_NE(missing.err.find("Para exportar para o formato DBF é necessário instalar o BDE"), std::string::npos)
      << missing.err;
  EXPECT_NE(missing.err.find("File 'se9.dbf' does not exist"), std::string::npos) << missing.err;
  EXPECT_EQ(std::count(missing.err.begin(), missing.err.end(), '\n'), 1);

  const testing::ToolRun no_terminal = RunTool(
      {"export", "dbf", (app_.Path() / "none").string(), "--from", "02/03/2026", "--to", "02/03/2026", erp, "SE1"});
  EXPECT_EQ(no_terminal.code, 1);
  EXPECT_NE(no_terminal.err.find("there is no Vek.ini"), std::string::npos) << no_terminal.err;
}

}  // namespace
}  // namespace vek
