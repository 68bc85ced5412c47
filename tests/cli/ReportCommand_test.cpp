#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
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

class ReportCommandTest : public ::testing::Test {
 protected:
  // A terminal folder whose Vek.ini names company 1, with till 3 of user 2
  // opened on 02/03/2026 and closed at 18:00: two exits and a restroom sale through it, an exit
  // through till 4 that day, and a monthly client's payment.
  void MakeTerminal() {
    std::ostringstream ignored;
    cli::InitTerminalFolder(folder_, false, ignored);
    WritePrivateProfileString("EmpresaUsuaria", "Cd_EmpresaUsuariaSistema", "1", folder_ / "Vek.ini");
    auto connection = std::make_shared<Connection>();
    connection->Open("Driver=SQLite3;Database=" + (folder_ / "Vek.db").string());
    for (const char* statement : {
             "INSERT INTO TbCaixa (Cd_EmpresaUsuariaSistema, Cd_Caixa, Cd_Usuario, Dt_Abertura, No_Sequencial, "
             "Dt_Fechamento) VALUES (1, 3, 2, '2026-03-02 00:00:00', 1, '2026-03-02 18:00:00')",
             "INSERT INTO TbTarifa (Cd_Tarifa, Cd_EmpresaUsuariaSistema, Ds_Tarifa, Vl_Tarifa, Cd_TipoReceita) VALUES "
             "(10, 1, 'Estacionamento - hora', 8, 2), (11, 1, 'Sanitário', 2, 3)",
             "INSERT INTO TbPessoa (Cd_Pessoa, Nm_Pessoa) VALUES (50, 'Mariana Aparecida Santos')",
             "INSERT INTO TbTicketEstacionamento (Cd_EmpresaUsuariaSistema, Cd_TicketEstacionamento, Cd_Placa, "
             "No_Situacao, Dt_Entrada, Dt_Saida, Vl_Tarifa, Qt_TempoPermanenciaMinutos, Cd_Caixa) VALUES "
             "(1, 1, 'PQA1B23', 2, '2026-03-02 06:10:00', '2026-03-02 07:00:00', 8, 50, 3), "
             "(1, 2, 'RBX2F34', 2, '2026-03-02 06:20:00', '2026-03-02 07:40:00', 8, 80, 3), "
             "(1, 3, 'OGX4C56', 2, '2026-03-02 06:30:00', '2026-03-02 07:10:00', 8, 40, 4)",
             "INSERT INTO TbTicketEstacionamento_TbTarifa (Cd_EmpresaUsuariaSistema, Cd_TicketEstacionamento, "
             "Cd_Tarifa, Qt_Unidade, Vl_Tarifa) VALUES (1, 1, 10, 1, 8), (1, 2, 10, 1, 8), (1, 3, 10, 1, 8)",
             "INSERT INTO TbTicketSanitario (Cd_EmpresaUsuariaSistema, Cd_TicketSanitario, Dt_Entrada, Cd_Tarifa, "
             "Vl_Tarifa, Qt_Unidade, Cd_Caixa) VALUES (1, 1, '2026-03-02 08:00:00', 11, 2, 3, 3)",
             "INSERT INTO TbApuracaoReceita (Cd_EmpresaUsuariaSistema, No_ApuracaoReceita, Cd_TipoReceita, Cd_Pessoa, "
             "Dt_Movimento, Vl_ApuracaoReceita, No_Parcela, Cd_Caixa, Dt_Inicial, Dt_Final, Ic_TotalizacaoDeCaixa) "
             "VALUES (1, 1, 2, 50, '2026-03-02', 180, 1, 3, '2026-03-01', '2026-03-31', 0)"}) {
      connection->Execute(statement);
    }
    connection->Close();
  }

  testing::LocaleGuard dots_{testing::kDotLocale};
  testing::ScratchApp app_;
  const fs::path folder_ = app_.Path() / "terminal";
};

// The lines of `text` from the one that starts with `heading` to the next
// empty line.
std::string Section(const std::string& text, const std::string& heading) {
  const size_t start = text.find("\n" + heading);
  if (start == std::string::npos) return "(no section " + heading + ")";
  const size_t end = text.find("\n\n", start + 1);
  return text.substr(start + 1, end == std::string::npos ? std::string::npos : end - start);
}

TEST_F(ReportCommandTest, ATillsReportsAndItsClosingFeedArePrinted) {
  MakeTerminal();
  const testing::ToolRun run = RunTool({"report", "till", folder_.string(), "3"});
  ASSERT_EQ(run.code, 0) << run.err;
  EXPECT_EQ(run.err, "");
  EXPECT_TRUE(run.out.starts_with(
      "Till 3 of company 1: opened 02/03/2026 00:00 by user 2 (sequence 1), closed 02/03/2026 18:00\n"))
      << run.out;
  EXPECT_NE(Section(run.out, "Parking exits through the till").find("(2 exits, R$ 16.00)"), std::string::npos) << run.out;
  // The period is the till's opening day to its closing day, at any till.
  EXPECT_NE(Section(run.out, "Parking exits from 02/03/2026 to 02/03/2026").find("(3 exits, R$ 24.00)"),
            std::string::npos)
      << run.out;
  EXPECT_NE(Section(run.out, "Monthly-client payments").find("Mariana Aparecida Santos"), std::string::npos);
  EXPECT_NE(Section(run.out, "The till's totalling").find("(0 assessments)"), std::string::npos);
  EXPECT_NE(Section(run.out, "Restroom sales").find("(1 sale)"), std::string::npos);
  const std::string feed = Section(run.out, "Till-closing feed");
  // Units as "QTDE:n", the payment's period start day first, the total of every line.
  EXPECT_NE(feed.find("\n  ESTACIONAMENTO    10  Estacionamento - hora     QTDE:2           R$ 8.00   R$ 16.00\n"
                      "  MENSALISTA         1  Mariana Aparecida Santos  01/03/2026     R$ 180.00  R$ 180.00\n"
                      "  SANITARIO         11  Sanitário                 QTDE:3           R$ 2.00    R$ 6.00\n"
                      "  Total R$ 202.00\n"),
            std::string::npos)
      << feed;
}

TEST_F(ReportCommandTest, BadTillsFoldersAndArgumentsAreRefused) {
  MakeTerminal();
  testing::ToolRun run = RunTool({"report", "till", folder_.string(), "9"});
  EXPECT_EQ(run.code, 1);
  EXPECT_EQ(run.out, "");
  EXPECT_NE(run.err.find("Company 1 has no till 9"), std::string::npos) << run.err;
  EXPECT_EQ(std::count(run.err.begin(), run.err.end(), '\n'), 1);

  run = RunTool({"report", "till", (app_.Path() / "nowhere").string(), "3"});
  EXPECT_EQ(run.code, 1);
  EXPECT_NE(run.err.find("no Vek.ini"), std::string::npos) << run.err;

  // Without DIR the current folder is the terminal's.
  const fs::path here = fs::current_path();
  fs::current_path(folder_);
  run = RunTool({"report", "till", "3"});
  fs::current_path(here);
  EXPECT_EQ(run.code, 0) << run.err;
  EXPECT_TRUE(run.out.starts_with("Till 3 of company 1")) << run.out;

  EXPECT_EQ(RunTool({"report", "till", folder_.string(), "x3"}).code, 2);
  EXPECT_EQ(RunTool({"report", "till", folder_.string(), "0"}).code, 2);
  EXPECT_EQ(RunTool({"report", "till"}).code, 2);
  EXPECT_EQ(RunTool({"report", "till", folder_.string(), "3", "4"}).code, 2);
  EXPECT_EQ(RunTool({"report"}).code, 2);

  run = RunTool({"report", "till", "--help"});
  EXPECT_EQ(run.code, 0);
  EXPECT_NE(run.out.find("six reports"), std::string::npos) << run.out;
}

}  // namespace
}  // namespace vek
