#include "vek/foundation/ListLoader.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <vector>

#include "support/TerminalDatabase.h"
#include "vek/platform/Controls.h"

namespace vek {
namespace {

using testing::kBrazilLocale;
using testing::kDotLocale;
using testing::LocaleGuard;

// A collection whose grid shows money and dates, which the address lists
// never do: cells are the runtime's CStr, without grouping, and Null is an
// empty cell.
class cgdCaixasDeTeste : public ListCollection {
 public:
  void CarregarMSFlexGridDeBusca(FlexGrid& grid, TextControl& count) {
    Run("CarregarMSFlexGridDeBusca", [&] {
      ds_sql_ = SqlLines() << "SELECT A.Cd_Caixa, A.Dt_Abertura, T.Vl_Tarifa"
                           << "FROM   TbCaixa A JOIN TbTarifa T ON T.Cd_Tarifa = A.Cd_Caixa"
                           << "ORDER BY A.Cd_Caixa";
      FillSearchGrid(grid, count);
    });
  }
  static bool Postcode(std::string_view filter) { return IsPostcodeFilter(filter); }
};

TEST(ListLoaderTest, CountsShowWithTheLocalesGroupingBetweenEveryThreeDigits) {
  {
    LocaleGuard guard(kDotLocale);
    EXPECT_EQ(RecordCountText(0), "0");
    EXPECT_EQ(RecordCountText(999), "999");
    EXPECT_EQ(RecordCountText(1000), "1,000");
    EXPECT_EQ(RecordCountText(std::numeric_limits<int32_t>::max()), "2,147,483,647");
  }
  {
    LocaleGuard guard(kBrazilLocale);
    EXPECT_EQ(RecordCountText(100000), "100.000");
  }
  {
    LocaleGuard guard(Locale{",", "\u00a0"});  // a grouping character of two bytes
    EXPECT_EQ(RecordCountText(1200000), "1\u00a0200\u00a0000");
  }
}

TEST(ListLoaderTest, GridCellsOfMoneyAndDatesReadFromTheDatabase) {
  testing::TerminalDatabase db;
  db.Query("INSERT INTO TbTarifa (Cd_Tarifa, Ds_Tarifa, Vl_Tarifa, Cd_TipoReceita) VALUES (1, 'Embarque', 1234.5678, 1)");
  db.Query("INSERT INTO TbTarifa (Cd_Tarifa, Ds_Tarifa, Cd_TipoReceita) VALUES (2, 'Sem valor', 1)");
  db.Query("INSERT INTO TbCaixa (Cd_EmpresaUsuariaSistema, Cd_Caixa, Cd_Usuario, Dt_Abertura) "
           "VALUES (1, 1, 1, '2026-11-21 06:05:04')");
  db.Query("INSERT INTO TbCaixa (Cd_EmpresaUsuariaSistema, Cd_Caixa, Cd_Usuario) VALUES (1, 2, 1)");
  cgdCaixasDeTeste caixas;
  caixas.Ob_cgpSistema(db.session);
  ListGrid grid;
  TextBox count;
  LocaleGuard guard(kBrazilLocale);
  caixas.CarregarMSFlexGridDeBusca(grid, count);
  EXPECT_EQ(grid.Lines(), (std::vector<std::string>{"\t1\t21/11/2026 06:05:04\t1234,5678", "\t2\t\t"}));
  EXPECT_EQ(count.Text(), "2");
}

TEST(ListLoaderTest, APostcodeFilterIsOneWhoseFirst26CharactersAreTheClause) {
  EXPECT_TRUE(cgdCaixasDeTeste::Postcode("TbCEP_TbLogradouro.Cd_EP = '74000-000'"));
  EXPECT_TRUE(cgdCaixasDeTeste::Postcode("tbcep_tblogradouro.cd_ep ="));
  EXPECT_TRUE(cgdCaixasDeTeste::Postcode("TBCEP_TBLOGRADOURO.CD_EP = Á"));
  EXPECT_FALSE(cgdCaixasDeTeste::Postcode("TbCEP_TbLogradouro.Cd_EP "));  // 25 characters
  EXPECT_FALSE(cgdCaixasDeTeste::Postcode("TbCEP_TbLogradouro.Cd_EP=='x'"));
  EXPECT_FALSE(cgdCaixasDeTeste::Postcode(" TbCEP_TbLogradouro.Cd_EP = 'x'"));
  EXPECT_FALSE(cgdCaixasDeTeste::Postcode("A.X = 1 AND TbCEP_TbLogradouro.Cd_EP = 'x'"));
  EXPECT_FALSE(cgdCaixasDeTeste::Postcode(""));
}

}  // namespace
}  // namespace vek
