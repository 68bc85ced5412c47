// The search grids of streets and of their postcodes.

#include "vek/registry/cgdLogradouros.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/TerminalDatabase.h"
#include "vek/platform/Controls.h"
#include "vek/registry/cgdCEP_Logradouros.h"

namespace vek {
namespace {

std::string StreetsStatement(const std::string& where_line) {
  return "SELECT   A.Cd_Logradouro,\r"
         "         B.Nm_TipoLogradouro,\r"
         "         A.Nm_Logradouro,\r"
         "         C.Nm_Cidade,\r"
         "         C.Sg_UF\r"
         "FROM     TbLogradouro A\r"
         "         Left Join TbTipoLogradouro B On A.Cd_TipoLogradouro = B.Cd_TipoLogradouro\r"
         "         Join TbCidade C On A.Cd_Cidade = C.Cd_Cidade\r" +
         where_line +
         "ORDER BY A.Nm_Logradouro,\r"
         "         C.Nm_Cidade\r"
         ";\r";
}

std::string PostcodesStatement(const std::string& where_line) {
  return "SELECT   A.Cd_EP,\r"
         "         B.Nm_Logradouro,\r"
         "         C.Nm_Cidade,\r"
         "         C.Sg_UF\r"
         "FROM     TbCEP_TbLogradouro A\r"
         "         Join TbLogradouro B On A.Cd_Logradouro = B.Cd_Logradouro\r"
         "         Join TbCidade C On B.Cd_Cidade = C.Cd_Cidade\r" +
         where_line +
         "ORDER BY A.Cd_EP,\r"
         "         B.Nm_Logradouro\r"
         ";\r";
}

// A street named alike in two cities, a street without a type and one
// without a city (which no grid shows).
class cgdLogradourosTest : public ::testing::Test {
 protected:
  cgdLogradourosTest() {
    logradouros.Ob_cgpSistema(db.session);
    ceps.Ob_cgpSistema(db.session);
    db.Query("INSERT INTO TbUF (Cd_UF, Nm_UF, Sg_UF) VALUES (9, 'Goiás', 'GO')");
    db.Query("INSERT INTO TbCidade (Cd_Cidade, Nm_Cidade, Cd_UF, Sg_UF) VALUES (3, 'Goiânia', 9, 'GO')");
    db.Query("INSERT INTO TbCidade (Cd_Cidade, Nm_Cidade, Cd_UF, Sg_UF) VALUES (4, 'Anápolis', 9, 'GO')");
    db.Query("INSERT INTO TbTipoLogradouro (Cd_TipoLogradouro, Nm_TipoLogradouro) VALUES (1, 'Avenida')");
    db.Query("INSERT INTO TbTipoLogradouro (Cd_TipoLogradouro, Nm_TipoLogradouro) VALUES (2, 'Rua')");
    db.Query("INSERT INTO TbLogradouro (Cd_Logradouro, Nm_Logradouro, Cd_TipoLogradouro, Cd_Cidade) VALUES (20, 'Goiás', 1, 3)");
    db.Query("INSERT INTO TbLogradouro (Cd_Logradouro, Nm_Logradouro, Cd_TipoLogradouro, Cd_Cidade) VALUES (21, 'Goiás', 1, 4)");
    db.Query("INSERT INTO TbLogradouro (Cd_Logradouro, Nm_Logradouro, Cd_Cidade) VALUES (22, 'Beco da Lapa', 3)");
    db.Query("INSERT INTO TbLogradouro (Cd_Logradouro, Nm_Logradouro, Cd_TipoLogradouro) VALUES (23, 'Rua Solta', 2)");
    db.Query("INSERT INTO TbCEP_TbLogradouro (Cd_Logradouro, Cd_EP) VALUES (20, '74000-000')");
    db.Query("INSERT INTO TbCEP_TbLogradouro (Cd_Logradouro, Cd_EP) VALUES (20, '74000-001')");
    db.Query("INSERT INTO TbCEP_TbLogradouro (Cd_Logradouro, Cd_EP) VALUES (21, '75000-000')");
    db.Query("INSERT INTO TbCEP_TbLogradouro (Cd_Logradouro, Cd_EP) VALUES (22, '74000-000')");
    db.Query("INSERT INTO TbCEP_TbLogradouro (Cd_Logradouro, Cd_EP) VALUES (23, '76000-000')");
  }

  testing::TerminalDatabase db;
  cgdLogradouros logradouros;
  cgdCEP_Logradouros ceps;
  ListGrid grid;
  TextBox count;
};

TEST_F(cgdLogradourosTest, TheStreetsGridShowsTypeCityAndState) {
  logradouros.CarregarMSFlexGridDeBusca(grid, count);
  EXPECT_EQ(db.statements, std::vector<std::string>{StreetsStatement("")});
  EXPECT_EQ(grid.Lines(), (std::vector<std::string>{"\t22\t\tBeco da Lapa\tGoiânia\tGO",
                                                    "\t21\tAvenida\tGoiás\tAnápolis\tGO",
                                                    "\t20\tAvenida\tGoiás\tGoiânia\tGO"}));
  EXPECT_EQ(count.Text(), "3");

  ListGrid filtered;
  logradouros.CarregarMSFlexGridDeBusca(filtered, count, "B.Nm_TipoLogradouro = 'Avenida' And C.Cd_Cidade = 3");
  EXPECT_EQ(db.statements.back(), StreetsStatement("WHERE B.Nm_TipoLogradouro = 'Avenida' And C.Cd_Cidade = 3\r"));
  EXPECT_EQ(filtered.Lines(), std::vector<std::string>{"\t20\tAvenida\tGoiás\tGoiânia\tGO"});
  EXPECT_EQ(count.Text(), "1");

  const VekError error = testing::ErrorOf([&] { logradouros.CarregarMSFlexGridDeBusca(filtered, count, "D.Cd_Cidade = 3"); });
  EXPECT_EQ(error.Number(), static_cast<int32_t>(0x80040E14u));
  EXPECT_EQ(error.Source(), testing::ProviderSource() + " -> cgdLogradouros.CarregarMSFlexGridDeBusca, ");
  EXPECT_EQ(count.Text(), "1");
}

TEST_F(cgdLogradourosTest, ThePostcodesGridListsEachStreetOfAPostcode) {
  ceps.CarregarMSFlexGridDeBusca(grid, count);
  EXPECT_EQ(db.statements, std::vector<std::string>{PostcodesStatement("")});
  EXPECT_EQ(grid.Lines(), (std::vector<std::string>{"\t74000-000\tBeco da Lapa\tGoiânia\tGO",
                                                    "\t74000-000\tGoiás\tGoiânia\tGO",
                                                    "\t74000-001\tGoiás\tGoiânia\tGO",
                                                    "\t75000-000\tGoiás\tAnápolis\tGO"}));
  EXPECT_EQ(count.Text(), "4");

  ListGrid filtered;
  ceps.CarregarMSFlexGridDeBusca(filtered, count, "A.Cd_EP Like '74000%'");
  EXPECT_EQ(db.statements.back(), PostcodesStatement("WHERE A.Cd_EP Like '74000%'\r"));
  EXPECT_EQ(filtered.Lines().size(), 3u);
  EXPECT_EQ(count.Text(), "3");

  const VekError error = testing::ErrorOf([&] { ceps.CarregarMSFlexGridDeBusca(filtered, count, "A.Cd_EP ="); });
  EXPECT_EQ(error.Number(), static_cast<int32_t>(0x80040E14u));
  EXPECT_EQ(error.Source(), testing::ProviderSource() + " -> cgdCEP_Logradouros.CarregarMSFlexGridDeBusca, ");
}

}  // namespace
}  // namespace vek
