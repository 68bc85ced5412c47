#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <sstream>
#include <string>

#include "cli/Commands.h"
#include "cli/ToolRun.h"
#include "support/TestSupport.h"
#include "vek/db/workbook/WorkbookFile.h"
#include "vek/vek.h"

namespace vek {
namespace {

namespace fs = std::filesystem;
using testing::RunTool;

class ExportWorkbookCommandTest : public ::testing::Test {
 protected:
  // A terminal folder with one boarding assessment on 02/03/2026 and that
  // day's closing.
  void MakeTerminal() {
    std::ostringstream ignored;
    cli::InitTerminalFolder(folder_, false, ignored);
    auto connection = std::make_shared<Connection>();
    connection->Open("Driver=SQLite3;Database=" + (folder_ / "Vek.db").string());
    connection->Execute("INSERT INTO TbTarifa (Cd_Tarifa, Cd_EmpresaUsuariaSistema, Ds_Tarifa, Cd_TipoReceita) "
                        "VALUES (1, 1, 'Embarque', 1)");
    connection->Execute("INSERT INTO TbApuracaoReceita (Cd_EmpresaUsuariaSistema, No_ApuracaoReceita, Cd_TipoReceita, "
                        "Cd_Pessoa, Dt_Movimento) VALUES (1, 1, 1, 100, '2026-03-02')");
    connection->Execute("INSERT INTO TbApuracaoReceita_TbTarifa (Cd_EmpresaUsuariaSistema, No_ApuracaoReceita, "
                        "Cd_Tarifa, Qt_Tarifa, Vl_Tarifa) VALUES (1, 1, 1, 31, 4.5)");
    connection->Execute("INSERT INTO TbFechamentoDiario (Cd_EmpresaUsuariaSistema, Dt_FechamentoDiario, Vl_Deposito) "
                        "VALUES (1, '2026-03-02', 139.5)");
    connection->Close();
  }

  testing::ScratchApp app_;
  const fs::path folder_ = app_.Path() / "terminal";
  const fs::path workbook_ = app_.Path() / "Marco.xlsx";
};

TEST_F(ExportWorkbookCommandTest, TheMonthIsWrittenIntoAWorkbookMadeFromTheTemplate) {
  MakeTerminal();
  const testing::ToolRun run =
      RunTool({"export", "workbook", folder_.string(), "--from", "01/03/2026", "--to", "2026-03-03", workbook_.string()});
  EXPECT_EQ(run.code, 0) << run.err;
  EXPECT_EQ(run.out, "workbook  " + workbook_.string() + " (made from " +
                         (fs::canonical(folder_) / "Modelos" / "MovimentoMensal.xlsx").string() + ")\n" +
                         "exported  01/03/2026 to 03/03/2026: 3 days into " + workbook_.string() + "\n");
  EXPECT_EQ(run.err, "");  // no bar where stdout is no terminal
  workbook::WorkbookFile written(workbook_);
  workbook::Sheet& data = written.Worksheet("DADOS");
  EXPECT_EQ(CDate(data.Value(3, 1)), DateSerial(2026, 3, 2));
  EXPECT_EQ(CDbl(data.Value(3, 2)), 31.0);     // Qt_TotalEmbarque
  EXPECT_EQ(CDbl(data.Value(3, 3)), 139.5);    // Vl_TotalEmbarque
  EXPECT_EQ(CDbl(data.Value(3, 10)), 139.5);   // Vl_DepositoDia
  EXPECT_EQ(CDbl(data.Value(3, 11)), 31.0);    // Qt_EmbarqueTarifa1
  EXPECT_EQ(CDbl(data.Value(4, 3)), 0.0);      // the 3rd: nothing assessed
  EXPECT_TRUE(data.Value(5, 1).IsEmpty());     // the 4th: not exported

  // Again into the same file: it is written over, not made anew.
  const testing::ToolRun again =
      RunTool({"export", "workbook", folder_.string(), "--from", "02/03/2026", "--to", "02/03/2026", workbook_.string()});
  EXPECT_EQ(again.code, 0) << again.err;
  EXPECT_EQ(again.out, "exported  02/03/2026 to 02/03/2026: 1 day into " + workbook_.string() + "\n");
}

TEST_F(ExportWorkbookCommandTest, BadUsageAndFailuresExitWithTheirCodes) {
  EXPECT_EQ(RunTool({"export", "workbook", "--help"}).code, 0);
  EXPECT_NE(RunTool({"export", "workbook", "--help"}).out.find("--from"), std::string::npos);
  EXPECT_EQ(RunTool({"export"}).code, 2);
  EXPECT_EQ(RunTool({"export", "workbook", "--from", "01/03/2026", "--to", "03/03/2026"}).code, 2);  // no FILE
  EXPECT_EQ(RunTool({"export", "workbook", "x.xlsx", "--from", "31/02/2026", "--to", "03/03/2026"}).code, 2);
  EXPECT_EQ(RunTool({"export", "workbook", "x.xlsx", "--from", "03/03/2026", "--to", "01/03/2026"}).code, 2);
  EXPECT_EQ(RunTool({"export", "workbook", "x.xlsx", "--from", "28/02/2026", "--to", "01/03/2026"}).code, 2);

  fs::create_directories(folder_);
  testing::ToolRun run =
      RunTool({"export", "workbook", folder_.string(), "--from", "01/03/2026", "--to", "01/03/2026", workbook_.string()});
  EXPECT_EQ(run.code, 1);
  EXPECT_NE(run.err.find("não tem Vek.ini"), std::string::npos) << run.err;

  // A read-only workbook: one line, and the file as it was.
  MakeTerminal();
  fs::copy_file(folder_ / "Modelos" / "MovimentoMensal.xlsx", workbook_);
  fs::permissions(workbook_, fs::perms::owner_read);
  run = RunTool({"export", "workbook", folder_.string(), "--from", "01/03/2026", "--to", "01/03/2026", workbook_.string()});
  EXPECT_EQ(run.code, 1);
  EXPECT_NE(run.err.find("is read-only"), std::string::npos) << run.err;
  EXPECT_EQ(std::count(run.err.begin(), run.err.end(), '\n'), 1);
  workbook::WorkbookFile untouched(workbook_);
  EXPECT_TRUE(untouched.Worksheet("DADOS").Value(2, 1).IsEmpty());
}

}  // namespace
}  // namespace vek
