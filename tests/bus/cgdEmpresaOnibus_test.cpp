#include "vek/bus/cgdEmpresaOnibus.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "bus/BusTerminal.h"
#include "vek/bus/cgdEmpresasOnibus.h"
#include "vek/foundation/MessageCatalogue.h"
#include "vek/platform/Controls.h"

namespace vek {
namespace {

using testing::ErrorOf;
using testing::Lines;

std::string Select(int32_t code) {
  return Lines({"SELECT A.*", "FROM   TbEmpresaOnibus A", "WHERE  A.Cd_EmpresaOnibus = " + std::to_string(code), ";"}) +
         "\r";
}

std::string Grid(const std::string& where_line) {
  return "SELECT   A.Cd_EmpresaOnibus,\rB.Nm_Pessoa,\rA.Nm_EmpresaOnibus\rFROM     TbEmpresaOnibus A\r"
         "Join TbPessoa B on A.Cd_EmpresaOnibus = B.Cd_Pessoa\r" +
         where_line + "ORDER BY A.Nm_EmpresaOnibus\r;\r";
}

class cgdEmpresaOnibusTest : public ::testing::Test {
 protected:
  cgdEmpresaOnibusTest() {
    empresa.Ob_cgpSistema(db.session);
    empresas.Ob_cgpSistema(db.session);
  }
  testing::BusTerminal db;
  cgdEmpresaOnibus empresa;
  cgdEmpresasOnibus empresas;
};

TEST_F(cgdEmpresaOnibusTest, ACompanyIsKeptUnderItsPersonCode) {
  db.Query("INSERT INTO TbPessoa (Cd_Pessoa, Nm_Pessoa) VALUES (12, 'Real Expresso S/A')");
  auto company = empresa.Ob_cgp();
  company->Let("Cd_EmpresaOnibus", Variant(12));
  company->Let("Cd_Pessoa", Variant(12));
  company->Let("Nm_EmpresaOnibus", Variant("Real Expresso"));
  company->Let("Cd_ClienteIntegracao", Variant("000123"));
  empresa.Salvar();
  // The update finds nothing; the insert keeps the code given.
  EXPECT_EQ(db.statements, (std::vector<std::string>{Select(12), Select(0)}));
  EXPECT_FALSE(empresa.temCampoSequencial());
  EXPECT_TRUE(empresa.nomeCamposSequencial().empty());

  cgdEmpresaOnibus other;
  other.Ob_cgpSistema(db.session);
  other.Ob_cgp()->Let("Cd_EmpresaOnibus", Variant(12));
  auto loaded = other.Consultar(false);
  EXPECT_EQ(CStr(loaded->Get("Nm_EmpresaOnibus")), "Real Expresso");
  EXPECT_EQ(CStr(loaded->Get("Cd_ClienteIntegracao")), "000123");  // leading zeros kept

  other.Excluir();
  EXPECT_EQ(db.statements.back(), "DELETE \rFROM   TbEmpresaOnibus\rWHERE  Cd_EmpresaOnibus = 12\r");
  EXPECT_EQ(other.Consultar()->Get("Nm_EmpresaOnibus"), Variant(std::string()));
  other.Ob_cgp()->Let("Cd_EmpresaOnibus", Variant(12));
  const VekError missing = ErrorOf([&] { other.Consultar(false); });
  EXPECT_EQ(missing.Number(), kErrorRecordNotFound);
  EXPECT_EQ(missing.Source(), " -> cgdEmpresaOnibus.Consultar,  -> cgdEmpresaOnibus.Consultar, ");

  // A company that timetables still run under is kept by the database.
  other.Ob_cgp()->Let("Cd_EmpresaOnibus", Variant(10));
  const VekError refused = ErrorOf([&] { other.Excluir(); });
  EXPECT_EQ(refused.Number(), static_cast<int32_t>(0x80040E2Fu));
  EXPECT_EQ(refused.Source(), testing::ProviderSource() + " -> cgdEmpresaOnibus.Excluir, ");
  other.Ob_cgp()->Let("Cd_EmpresaOnibus", Variant(0));
  EXPECT_EQ(ErrorOf([&] { other.Excluir(); }).Number(), kErrorNoKey);
}

TEST_F(cgdEmpresaOnibusTest, TheSearchGridListsCompaniesWithTheirPersonByDisplayName) {
  db.Query("INSERT INTO TbEmpresaOnibus (Cd_EmpresaOnibus, Cd_Pessoa, Nm_EmpresaOnibus) VALUES (13, 13, 'Sem Pessoa')");
  ListGrid grid;
  TextBox count;
  empresas.CarregarMSFlexGridDeBusca(grid, count);
  EXPECT_EQ(db.statements.back(), Grid(""));
  // The company whose person row is missing is left out.
  EXPECT_EQ(grid.Lines(), (std::vector<std::string>{"\t10\tViação Araguarina Ltda\tAraguarina",
                                                    "\t11\tExpresso São Luiz Ltda\tSão Luiz"}));
  EXPECT_EQ(count.Text(), "2");

  empresas.CarregarMSFlexGridDeBusca(grid, count, "A.Nm_EmpresaOnibus Like 'São%'");
  EXPECT_EQ(db.statements.back(), Grid("WHERE A.Nm_EmpresaOnibus Like 'São%'\r"));
  EXPECT_EQ(grid.Lines().back(), "\t11\tExpresso São Luiz Ltda\tSão Luiz");
  EXPECT_EQ(count.Text(), "1");

  const VekError bad = ErrorOf([&] { empresas.CarregarMSFlexGridDeBusca(grid, count, "No_Such_Column = 1"); });
  EXPECT_EQ(bad.Number(), static_cast<int32_t>(0x80040E14u));
  EXPECT_EQ(bad.Source(), testing::ProviderSource() + " -> cgdEmpresasOnibus.CarregarMSFlexGridDeBusca, ");
}

}  // namespace
}  // namespace vek
