#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "cli/Commands.h"
#include "cli/demo/Day.h"
#include "support/DemoDay.h"
#include "support/TestSupport.h"
#include "vek/vek.h"

namespace vek {
namespace {

namespace fs = std::filesystem;

TEST(TillDayTest, TheCashiersTillTakesTheDayAndItsReportsAddUp) {
  testing::DemoDay day;
  const std::string& out = day.Out();

  // One till, opened by the cashier on the day at midnight, first of her day.
  EXPECT_EQ(day.Value("SELECT COUNT(*) FROM TbCaixa"), "1");
  const std::string till = day.Value("SELECT Cd_Caixa FROM TbCaixa");
  EXPECT_EQ(day.Value("SELECT U.Nm_Usuario || ' ' || C.Dt_Abertura || ' ' || C.No_Sequencial FROM TbCaixa C "
                      "JOIN TbUsuario U ON U.Cd_EmpresaUsuariaSistema = C.Cd_EmpresaUsuariaSistema "
                      "AND U.Cd_Usuario = C.Cd_Usuario"),
            "maria.souza 2026-03-02 00:00:00 1");
  // Every charged exit and every restroom sale went into it.
  EXPECT_EQ(day.Value("SELECT COUNT(*) FROM TbTicketEstacionamento WHERE No_Situacao = 2 AND Vl_Tarifa > 0 "
                      "AND Cd_Caixa <> " + till),
            "0");
  EXPECT_EQ(day.Value("SELECT COUNT(*) FROM TbTicketSanitario WHERE Cd_Caixa <> " + till), "0");

  // The feed's total is what the till's charge lines, sales and assessments add up to.
  const std::string lines = day.Value("SELECT SUM(L.Qt_Unidade * L.Vl_Tarifa) FROM TbTicketEstacionamento_TbTarifa L "
                                      "JOIN TbTicketEstacionamento T ON T.Cd_EmpresaUsuariaSistema = "
                                      "L.Cd_EmpresaUsuariaSistema AND T.Cd_TicketEstacionamento = "
                                      "L.Cd_TicketEstacionamento WHERE T.Cd_Caixa = " + till);
  const std::string sales = day.Value("SELECT SUM(Qt_Unidade * Vl_Tarifa) FROM TbTicketSanitario");
  // Then the monthly clients' payments and the till's own totalling, both assessments on the till.
  const std::string assessed = day.Value("SELECT SUM(Vl_ApuracaoReceita) FROM TbApuracaoReceita WHERE Cd_Caixa = " + till);
  const Currency total =
      CCur(Variant(CDbl(Variant(lines)) + CDbl(Variant(sales)) + CDbl(Variant(assessed))));
  testing::LocaleGuard brazil(testing::kBrazilLocale);  // the day prints in the Brazilian format
  const size_t feed = out.find("Till-closing feed");
  ASSERT_NE(feed, std::string::npos) << out;
  EXPECT_NE(out.find("  Total " + cli::demo::Money(total) + "\n", feed), std::string::npos) << out.substr(feed);
  EXPECT_EQ(day.Value("SELECT COUNT(*) FROM TempApuracaoReceita7 WHERE Ds_Observacao LIKE 'QTDE:%'"),
            day.Value("SELECT COUNT(*) FROM (SELECT DISTINCT Cd_Tarifa, Vl_Tarifa FROM TbTicketEstacionamento_TbTarifa "
                      "UNION ALL SELECT DISTINCT Cd_Tarifa, Vl_Tarifa FROM TbTicketSanitario)"));
}

}  // namespace
}  // namespace vek
