#include "vek/bus/cgdVeiculoOnibus.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "bus/BusTerminal.h"
#include "vek/foundation/MessageCatalogue.h"

namespace vek {
namespace {

using testing::ErrorOf;
using testing::Lines;

std::string ByPlate(const std::string& plate) {
  return Lines({"SELECT A.*", "FROM   TbVeiculoOnibus A", "WHERE  A.Cd_Placa = '" + plate + "'", ";"}) + "\r";
}
std::string ByFleet(int32_t company, int32_t fleet) {
  return Lines({"SELECT A.*", "FROM   TbVeiculoOnibus A", "WHERE  A.Cd_EmpresaOnibus = " + std::to_string(company),
                "And A.No_Frota = " + std::to_string(fleet), ";"}) +
         "\r";
}

class cgdVeiculoOnibusTest : public ::testing::Test {
 protected:
  cgdVeiculoOnibusTest() {
    veiculo.Ob_cgpSistema(db.session);
    db.Query("INSERT INTO TbVeiculoOnibus (Cd_Placa, Cd_EmpresaOnibus, No_Frota) VALUES ('KDJ2B17', 10, 4512)");
  }
  int32_t Buses() { return db.Query("SELECT * FROM TbVeiculoOnibus")->RecordCount(); }

  testing::BusTerminal db;
  cgdVeiculoOnibus veiculo;
};

TEST_F(cgdVeiculoOnibusTest, ABusIsFoundByPlateOrElseByCompanyAndFleetNumber) {
  auto bus = veiculo.Ob_cgp();
  bus->Let("Cd_Placa", Variant("KDJ2B17"));
  EXPECT_EQ(CLng(veiculo.Consultar(false)->Get("No_Frota")), 4512);
  EXPECT_EQ(db.statements.back(), ByPlate("KDJ2B17"));

  bus->RestaurarDefault();
  bus->Let("Cd_EmpresaOnibus", Variant(10));
  bus->Let("No_Frota", Variant(4512));
  EXPECT_EQ(CStr(veiculo.Consultar(false)->Get("Cd_Placa")), "KDJ2B17");
  EXPECT_EQ(db.statements.back(), ByFleet(10, 4512));

  // An empty plate with company or fleet number 0 finds nothing and resets.
  bus->RestaurarDefault();
  bus->Let("No_Frota", Variant(4512));
  EXPECT_EQ(CLng(veiculo.Consultar()->Get("No_Frota")), 0);
  EXPECT_EQ(db.statements.back(), ByFleet(0, 4512));

  // A new bus: the update finds nothing and the insert opens the empty set.
  bus->Let("Cd_Placa", Variant("NFT4C21"));
  bus->Let("Cd_EmpresaOnibus", Variant(11));
  bus->Let("No_Frota", Variant(77));
  const size_t before = db.statements.size();
  veiculo.Salvar();
  EXPECT_EQ(std::vector<std::string>(db.statements.begin() + static_cast<long>(before), db.statements.end()),
            (std::vector<std::string>{ByPlate("NFT4C21"), ByPlate("")}));
  EXPECT_EQ(db.Column("SELECT No_Frota FROM TbVeiculoOnibus ORDER BY Cd_Placa", "No_Frota"),
            (std::vector<std::string>{"4512", "77"}));
}

TEST_F(cgdVeiculoOnibusTest, DeletingByCompanyAndFleetNumberSendsTheLookUpAndLeavesTheBus) {
  veiculo.Ob_cgp()->Let("Cd_Placa", Variant("KDJ2B17"));
  veiculo.Ob_cgp()->Let("Cd_EmpresaOnibus", Variant(10));
  veiculo.Ob_cgp()->Let("No_Frota", Variant(4512));
  veiculo.Excluir();
  EXPECT_EQ(db.statements.back(), ByFleet(10, 4512));
  EXPECT_EQ(Buses(), 1);

  veiculo.Ob_cgp()->Let("No_Frota", Variant(0));
  veiculo.Excluir();
  EXPECT_EQ(db.statements.back(), "DELETE \rFROM   TbVeiculoOnibus\rWHERE  Cd_Placa = 'KDJ2B17'\r");
  EXPECT_EQ(Buses(), 0);

  veiculo.Ob_cgp()->RestaurarDefault();
  veiculo.Ob_cgp()->Let("Cd_EmpresaOnibus", Variant(10));
  const size_t sent = db.statements.size();
  const VekError nothing = ErrorOf([&] { veiculo.Excluir(); });
  EXPECT_EQ(nothing.Number(), kErrorNoKey);
  EXPECT_EQ(nothing.Source(), " -> cgdVeiculoOnibus.Excluir,  -> cgdVeiculoOnibus.Excluir, ");
  EXPECT_EQ(db.statements.size(), sent);
  EXPECT_EQ(CLng(veiculo.Ob_cgp()->Get("Cd_EmpresaOnibus")), 0);  // reset
}

TEST_F(cgdVeiculoOnibusTest, ExportDoesNothingAndAPlateWithAnApostropheIsRefused) {
  veiculo.ExportarVeiculoOnibus();
  EXPECT_TRUE(db.statements.empty());
  EXPECT_EQ(Buses(), 1);

  veiculo.Ob_cgp()->Let("Cd_Placa", Variant("X' OR '1'='1"));
  for (const char* member : {"Consultar", "Excluir"}) {
    const VekError refused = ErrorOf([&] {
      if (std::string(member) == "Consultar") {
        veiculo.Consultar();
      } else {
        veiculo.Excluir();
      }
    });
    EXPECT_EQ(refused.Number(), kBusinessError) << member;
    EXPECT_EQ(refused.Source(), std::string(" -> cgdVeiculoOnibus.") + member + ", ");
  }
  EXPECT_TRUE(db.statements.empty());
  // A bus of a company that is not there fails in the database.
  veiculo.Ob_cgp()->Let("Cd_Placa", Variant("QWE1R23"));
  veiculo.Ob_cgp()->Let("Cd_EmpresaOnibus", Variant(99));
  EXPECT_EQ(ErrorOf([&] { veiculo.Incluir(); }).Number(), static_cast<int32_t>(0x80040E2Fu));
  EXPECT_EQ(Buses(), 1);
}

}  // namespace
}  // namespace vek
