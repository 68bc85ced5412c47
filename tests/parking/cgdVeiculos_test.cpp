#include "vek/parking/cgdVeiculos.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/TerminalDatabase.h"
#include "vek/platform/Controls.h"

namespace vek {
namespace {

using testing::ErrorOf;

std::string GridStatement(const std::string& where_line) {
  return "SELECT   A.Cd_Placa,\r"
         "         A.No_Frota,\r"
         "         A.Cd_EmpresaOnibus,\r"
         "         C.Nm_Pessoa\r"
         "FROM     TbVeiculo A\r"
         "         Join TbEmpresaOnibus B On A.Cd_EmpresaOnibus = B.Cd_Pessoa\r"
         "         Join TbPessoa C On B.Cd_Pessoa = C.Cd_Pessoa\r" +
         where_line +
         "ORDER BY C.Nm_Pessoa,\r"
         "         A.Cd_Placa\r"
         ";\r";
}

// Two bus companies (a company's code is its person's), their buses, and
// cars that belong to no company.
class cgdVeiculosTest : public ::testing::Test {
 protected:
  cgdVeiculosTest() {
    veiculos.Ob_cgpSistema(db.session);
    db.Query("INSERT INTO TbPessoa (Cd_Pessoa, Nm_Pessoa) VALUES (10, 'Viação Araguarina')");
    db.Query("INSERT INTO TbPessoa (Cd_Pessoa, Nm_Pessoa) VALUES (20, 'Expresso São Luiz')");
    db.Query("INSERT INTO TbPessoa (Cd_Pessoa, Nm_Pessoa) VALUES (30, 'Ana Motorista')");
    db.Query(
        "INSERT INTO TbEmpresaOnibus (Cd_EmpresaOnibus, Cd_Pessoa, Nm_EmpresaOnibus) VALUES (10, 10, 'Araguarina')");
    db.Query("INSERT INTO TbEmpresaOnibus (Cd_EmpresaOnibus, Cd_Pessoa, Nm_EmpresaOnibus) VALUES (20, 20, 'São Luiz')");
    db.Query("INSERT INTO TbVeiculo (Cd_Placa, No_Frota, Cd_EmpresaOnibus) VALUES ('KDA1234', 305, 10)");
    db.Query("INSERT INTO TbVeiculo (Cd_Placa, No_Frota, Cd_EmpresaOnibus) VALUES ('BRA2E19', 1200, 10)");
    db.Query("INSERT INTO TbVeiculo (Cd_Placa, Cd_EmpresaOnibus) VALUES ('NFX0A11', 20)");
    db.Query("INSERT INTO TbVeiculo (Cd_Placa) VALUES ('AAA0000')");
    db.Query("INSERT INTO TbVeiculo (Cd_Placa, No_Frota) VALUES ('CAR1B22', 7)");
  }

  testing::TerminalDatabase db;
  cgdVeiculos veiculos;
  ListGrid grid;
  TextBox count;
};

TEST_F(cgdVeiculosTest, OnlyVehiclesOfABusCompanyAreListedFleetNumberFirst) {
  testing::LocaleGuard brazil(testing::kBrazilLocale);
  veiculos.CarregarMSFlexGridDeBusca(grid, count);
  // By the company's name, then by plate; a missing fleet number is an
  // empty cell, and numbers are not grouped.
  EXPECT_EQ(grid.Lines(),
            (std::vector<std::string>{"\t\tNFX0A11\t20\tExpresso São Luiz", "\t1200\tBRA2E19\t10\tViação Araguarina",
                                      "\t305\tKDA1234\t10\tViação Araguarina"}));
  EXPECT_EQ(count.Text(), "3");
  EXPECT_EQ(db.statements.back(), GridStatement(""));
}

TEST_F(cgdVeiculosTest, AFilterGoesAfterWhereAndABadOneFailsWithTheLoadersLink) {
  veiculos.CarregarMSFlexGridDeBusca(grid, count, "A.Cd_EmpresaOnibus = 10 AND A.No_Frota < 1000");
  EXPECT_EQ(grid.Lines(), (std::vector<std::string>{"\t305\tKDA1234\t10\tViação Araguarina"}));
  EXPECT_EQ(count.Text(), "1");
  EXPECT_EQ(db.statements.back(), GridStatement("WHERE A.Cd_EmpresaOnibus = 10 AND A.No_Frota < 1000\r"));

  // A car of no company stays out even when the filter names it.
  ListGrid car;
  veiculos.CarregarMSFlexGridDeBusca(car, count, "A.Cd_Placa = 'CAR1B22'");
  EXPECT_TRUE(car.Lines().empty());
  EXPECT_EQ(count.Text(), "0");

  ListGrid bad;
  count.Text("antes");
  const VekError error = ErrorOf([&] { veiculos.CarregarMSFlexGridDeBusca(bad, count, "X.Cd_Placa = 'A'"); });
  EXPECT_EQ(error.Source(), testing::ProviderSource() + " -> cgdVeiculos.CarregarMSFlexGridDeBusca, ");
  EXPECT_TRUE(bad.Lines().empty());
  EXPECT_EQ(count.Text(), "antes");
}

}  // namespace
}  // namespace vek
