#include "vek/revenue/cgdItensRateioMovimentoED.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "bus/BusTerminal.h"
#include "vek/platform/Controls.h"

namespace vek {
namespace {

using testing::ErrorOf;
using testing::Lines;

// Araguarina (10) spreads its boardings over four cities, São Luiz (11) over
// one; operating company 2 has a line of Araguarina's too.
class cgdItensRateioMovimentoEDTest : public ::testing::Test {
 protected:
  cgdItensRateioMovimentoEDTest() {
    rateio.Ob_cgpSistema(db.session);
    for (const char* row : {"1, 10, 4, 1200", "1, 10, 5, 35", "1, 10, 7, 640", "1, 10, 2, 1000000", "1, 11, 3, 80",
                            "2, 10, 3, 9"}) {
      db.Query(std::string("INSERT INTO TbItemRateioMovimentoED (Cd_EmpresaUsuariaSistema, Cd_EmpresaOnibus, "
                           "Cd_Cidade, Qt_Embarques) VALUES (") +
               row + ")");
    }
  }

  static std::string GridStatement(const std::string& filter) {
    std::string text = Lines({"SELECT   A.Cd_Cidade,", "         A.Qt_Embarques,", "         B.Nm_Cidade,",
                              "         B.Sg_UF", "FROM     TbItemRateioMovimentoED A Join TbCidade B",
                              "                                   On A.Cd_Cidade = B.Cd_Cidade"}) +
                       "\r";
    if (!filter.empty()) text += "WHERE " + filter + "\r";
    return text + "ORDER BY B.Nm_Cidade;\r";
  }

  testing::BusTerminal db;
  cgdItensRateioMovimentoED rateio;
  ListGrid grid;
  TextBox total;
};

TEST_F(cgdItensRateioMovimentoEDTest, TheGridListsACompanysCitiesByNameAndTotalsTheirBoardings) {
  testing::LocaleGuard locale(testing::kBrazilLocale);
  grid.AddItem("left from before");
  const std::string filter = "A.Cd_EmpresaUsuariaSistema = 1 And A.Cd_EmpresaOnibus = 10";
  rateio.CarregarMSFlexGrid(grid, total, filter);
  EXPECT_EQ(db.statements.back(), GridStatement(filter));
  EXPECT_EQ(grid.FormatString(), "<|Cod|<Nome Cidade|>Embarques");
  EXPECT_EQ(grid.Lines(), (std::vector<std::string>{"\t2\tAnápolis/GO\t1000000", "\t7\tCampinas/SP\t640",
                                                    "\t5\tSanta Bárbara d'Oeste/SP\t35",
                                                    "\t4\tSão Paulo/SP\t1200"}));
  EXPECT_EQ(total.Text(), "1.001.875");

  // No filter: every line of every company and operating company.
  rateio.CarregarMSFlexGrid(grid, total);
  EXPECT_EQ(db.statements.back(), GridStatement(""));
  EXPECT_EQ(grid.Lines().size(), 6u);
  EXPECT_EQ(grid.Lines()[5], "\t3\tUberlândia/MG\t9");
  EXPECT_EQ(total.Text(), "1.001.964");

  // Nothing selected: an empty grid and a total of 0.
  rateio.CarregarMSFlexGrid(grid, total, "A.Cd_EmpresaOnibus = 99");
  EXPECT_TRUE(grid.Lines().empty());
  EXPECT_EQ(total.Text(), "0");
}

TEST_F(cgdItensRateioMovimentoEDTest, AGridWithABadFilterFailsWithTheLoadersLinkAndLeavesTheTotal) {
  total.Text("17");
  const VekError bad = ErrorOf([&] { rateio.CarregarMSFlexGrid(grid, total, "A.Cd_EmpresaOnibus ="); });
  EXPECT_EQ(bad.Number(), static_cast<int32_t>(0x80040E14u));
  EXPECT_EQ(bad.Source(), testing::ProviderSource() + " -> cgdItensRateioMovimentoED.CarregarMSFlexGrid, ");
  EXPECT_EQ(total.Text(), "17");
}

TEST_F(cgdItensRateioMovimentoEDTest, ACompanysLinesComeFewestBoardingsFirstFromEveryOperatingCompany) {
  auto lines = rateio.ConsultarRateioPorEmpresa(10);
  EXPECT_EQ(db.statements.back(), Lines({"SELECT   *", "FROM     TbItemRateioMovimentoED",
                                         "WHERE    Cd_EmpresaOnibus = 10", "ORDER BY Qt_Embarques"}) +
                                      "\r");
  EXPECT_EQ(lines->ActiveConnection(), nullptr);
  EXPECT_EQ(testing::BusTerminal::ColumnOf(*lines, "Qt_Embarques"),
            (std::vector<std::string>{"9", "35", "640", "1200", "1000000"}));
  EXPECT_EQ(testing::BusTerminal::ColumnOf(*lines, "Cd_EmpresaUsuariaSistema"),
            (std::vector<std::string>{"2", "1", "1", "1", "1"}));
  EXPECT_EQ(rateio.ConsultarRateioPorEmpresa(12)->RecordCount(), 0);
}

}  // namespace
}  // namespace vek
