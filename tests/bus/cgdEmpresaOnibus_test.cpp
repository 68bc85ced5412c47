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

// Boardings are counted from the trips of the whole calendar day, of every
// operating company, through the timetable that names the bus company.
TEST_F(cgdEmpresaOnibusTest, TheDaysBoardingsAreCountedFromTheCompanysTripsOfTheWholeDay) {
  auto boarded = [&](int32_t trip, int32_t tenant, const std::string& with, const std::string& without) {
    db.Query("UPDATE TbViagemOnibus SET Qt_EmbarquesComPassagem = " + with + ", Qt_EmbarquesSemPassagem = " + without +
             " WHERE Cd_EmpresaUsuariaSistema = " + std::to_string(tenant) +
             " AND Cd_ViagemOnibus = " + std::to_string(trip));
  };
  db.Trip(1, 1, 1, "2026-11-21 00:00:00");  // Araguarina, first second of the day
  boarded(1, 1, "30", "2");
  db.Trip(2, 4, 6, "2026-11-21 23:59:59");  // Araguarina, last second
  boarded(2, 1, "10", "1");
  db.Trip(3, 1, 1, "2026-11-22 00:00:00");  // the next day
  boarded(3, 1, "100", "0");
  db.Trip(4, 1, 1, "2026-11-20 23:59:59");  // the day before
  boarded(4, 1, "100", "0");
  db.Trip(5, 3, 4, "2026-11-21 11:00:00");  // São Luiz
  boarded(5, 1, "7", "0");
  db.Trip(6, 1, 5, "2026-11-21 07:00:00", 0, 0, 2);  // São Luiz under operating company 2
  boarded(6, 2, "5", "3");
  db.Trip(7, 1, 1, "2026-11-21 12:00:00");  // Araguarina, without-ticket count unknown
  boarded(7, 1, "50", "NULL");

  empresa.Ob_cgp()->Let("Cd_EmpresaOnibus", Variant(10));
  EXPECT_EQ(empresa.ConsultarQuantidadeDeEmbarques(DateSerial(2026, 11, 21)), 43);
  EXPECT_EQ(db.statements.back(),
            Lines({"SELECT   Sum(A.Qt_EmbarquesComPassagem + A.Qt_EmbarquesSemPassagem) As Qt_Embarques",
                   "FROM     TbViagemOnibus A",
                   "         INNER JOIN TbHorariosLinha B On A.Cd_EmpresaUsuariaSistema = B.Cd_EmpresaUsuariaSistema",
                   "                    And A.Cd_HorarioLinha = B.Cd_HorarioLinha",
                   "Where    B.Cd_EmpresaOnibus = 10",
                   "         And A.Hr_Previsto Between '2026-11-21 00:00:00' And '2026-11-21 23:59:59'",
                   "         And B.Cd_EmpresaOnibus = 10"}) +
                "\r");
  empresa.Ob_cgp()->Let("Cd_EmpresaOnibus", Variant(11));
  EXPECT_EQ(empresa.ConsultarQuantidadeDeEmbarques(DateSerial(2026, 11, 21)), 15);
  // A day without trips boards nobody; so does a company without timetables.
  EXPECT_EQ(empresa.ConsultarQuantidadeDeEmbarques(DateSerial(2026, 11, 23)), 0);
  empresa.Ob_cgp()->Let("Cd_EmpresaOnibus", Variant(99));
  EXPECT_EQ(empresa.ConsultarQuantidadeDeEmbarques(DateSerial(2026, 11, 21)), 0);

  // A failure names the member.
  db.connection->Close();
  const VekError closed = ErrorOf([&] { empresa.ConsultarQuantidadeDeEmbarques(DateSerial(2026, 11, 21)); });
  EXPECT_NE(closed.Number(), 0);
  EXPECT_TRUE(closed.Source().ends_with(" -> cgdEmpresaOnibus.ConsultarQuantidadeDeEmbarques, ")) << closed.Source();
}

}  // namespace
}  // namespace vek
