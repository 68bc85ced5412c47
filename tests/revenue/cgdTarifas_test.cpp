#include "vek/revenue/cgdTarifas.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/TerminalDatabase.h"
#include "vek/platform/Controls.h"

namespace vek {
namespace {

using testing::ErrorOf;

std::string GridStatement(const std::string& where_line) {
  return "SELECT   A.Cd_Tarifa,\r"
         "         A.Ds_Tarifa,\r"
         "         B.Nm_TipoReceita\r"
         "FROM     TbTarifa A\r"
         "         Join TbTipoReceita B On A.Cd_TipoReceita = B.Cd_TipoReceita\r" +
         where_line + "ORDER BY A.Ds_Tarifa\r";
}

class cgdTarifasTest : public ::testing::Test {
 protected:
  cgdTarifasTest() {
    tarifas.Ob_cgpSistema(db.session);
    db.Query(
        "INSERT INTO TbTarifa (Cd_Tarifa, Cd_EmpresaUsuariaSistema, Ds_Tarifa, Cd_TipoReceita) "
        "VALUES (1, 1, 'Sanitário', 3)");
    db.Query(
        "INSERT INTO TbTarifa (Cd_Tarifa, Cd_EmpresaUsuariaSistema, Ds_Tarifa, Cd_TipoReceita) "
        "VALUES (2, 2, 'Estacionamento hora', 2)");
    db.Query(
        "INSERT INTO TbTarifa (Cd_Tarifa, Cd_EmpresaUsuariaSistema, Ds_Tarifa, Cd_TipoReceita) "
        "VALUES (3, 1, 'Embarque intermunicipal', 1)");
    db.Query(
        "INSERT INTO TbTarifa (Cd_Tarifa, Cd_EmpresaUsuariaSistema, Ds_Tarifa, Cd_TipoReceita) "
        "VALUES (4500, 1, 'Bagageiro', 4)");
    // A tariff of no revenue type has nothing to join.
    db.Query("INSERT INTO TbTarifa (Cd_Tarifa, Cd_EmpresaUsuariaSistema, Ds_Tarifa) VALUES (5, 1, 'Avulsa')");
  }

  testing::TerminalDatabase db;
  cgdTarifas tarifas;
  ListGrid grid;
  TextBox count;
};

TEST_F(cgdTarifasTest, EachTariffOfARevenueTypeIsListedByDescriptionWithItsTypesName) {
  testing::LocaleGuard brazil(testing::kBrazilLocale);
  tarifas.CarregarMSFlexGridDeBusca(grid, count);
  EXPECT_EQ(grid.Lines(),
            (std::vector<std::string>{"4.500\tBagageiro\tMALEX", "3\tEmbarque intermunicipal\tEMBARQUE",
                                      "2\tEstacionamento hora\tESTACIONAMENTO", "1\tSanitário\tSANITARIO"}));
  EXPECT_EQ(count.Text(), "4");
  EXPECT_EQ(db.statements.back(), GridStatement(""));
}

TEST_F(cgdTarifasTest, AFilterOnTheTariffsTenantQualifiesItsColumnsWithA) {
  tarifas.CarregarMSFlexGridDeBusca(grid, count, "A.Cd_EmpresaUsuariaSistema = 1 AND B.Cd_TipoReceita <> 4");
  EXPECT_EQ(grid.Lines(),
            (std::vector<std::string>{"3\tEmbarque intermunicipal\tEMBARQUE", "1\tSanitário\tSANITARIO"}));
  EXPECT_EQ(count.Text(), "2");
  EXPECT_EQ(db.statements.back(), GridStatement("WHERE  A.Cd_EmpresaUsuariaSistema = 1 AND B.Cd_TipoReceita <> 4\r"));

  // Both tables have the revenue type's code: left bare, the database can't
  // tell which one is meant.
  ListGrid bare;
  count.Text("antes");
  const VekError ambiguous = ErrorOf([&] { tarifas.CarregarMSFlexGridDeBusca(bare, count, "Cd_TipoReceita = 1"); });
  EXPECT_NE(ambiguous.Number(), 0);
  EXPECT_NE(ambiguous.Description().find("ambiguous"), std::string::npos) << ambiguous.Description();
  EXPECT_EQ(ambiguous.Source(), testing::ProviderSource() + " -> cgdTarifas.CarregarMSFlexGridDeBusca, ");
  EXPECT_TRUE(bare.Lines().empty());
  EXPECT_EQ(count.Text(), "antes");

  ListGrid none;
  tarifas.CarregarMSFlexGridDeBusca(none, count, "A.Cd_EmpresaUsuariaSistema = 9");
  EXPECT_TRUE(none.Lines().empty());
  EXPECT_EQ(count.Text(), "0");
}

}  // namespace
}  // namespace vek
