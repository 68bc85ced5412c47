#include "vek/parking/cgdVeiculo.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "support/TerminalDatabase.h"
#include "vek/foundation/MessageCatalogue.h"

namespace vek {
namespace {

using testing::ErrorOf;
using testing::Lines;

std::string Select(const std::string& plate) {
  return Lines({"SELECT A.*", "FROM   TbVeiculo A", "WHERE  A.Cd_Placa = '" + plate + "'", ";"}) + "\r";
}

class cgdVeiculoTest : public ::testing::Test {
 protected:
  cgdVeiculoTest() {
    veiculo.Ob_cgpSistema(db.session);
    db.Query("INSERT INTO TbPessoa (Cd_Pessoa, Nm_Pessoa) VALUES (10, 'Viação Araguarina')");
    db.Query(
        "INSERT INTO TbEmpresaOnibus (Cd_EmpresaOnibus, Cd_Pessoa, Nm_EmpresaOnibus) "
        "VALUES (10, 10, 'Araguarina')");
    db.Query("INSERT INTO TbCor (Cd_Cor, Nm_Cor) VALUES (1, 'Prata')");
    db.Query("INSERT INTO TbMarcaModelo (Cd_MarcaModelo, Ds_MarcaModelo) VALUES (2, 'Fiat Uno')");
  }

  testing::TerminalDatabase db;
  cgdVeiculo veiculo;
};

TEST_F(cgdVeiculoTest, AVehicleIsKeptByItsPlateAlone) {
  auto record = veiculo.Ob_cgp();
  record->Let("Cd_Placa", Variant("ABC1D23"));
  record->Let("No_Frota", Variant(305));
  record->Let("Cd_EmpresaOnibus", Variant(10));
  record->Let("Cd_Cor", Variant(1));
  record->Let("Cd_MarcaModelo", Variant(2));
  veiculo.Salvar();
  // The update finds no row, the insert opens the empty set on ''.
  EXPECT_EQ(db.statements, (std::vector<std::string>{Select("ABC1D23"), Select("")}));
  EXPECT_EQ(CStr(record->Get("Cd_Placa")), "ABC1D23");

  cgdVeiculo other;
  other.Ob_cgpSistema(db.session);
  other.Ob_cgp()->Let("Cd_Placa", Variant("ABC1D23"));
  auto loaded = other.Consultar(false);
  EXPECT_EQ(db.statements.back(), Select("ABC1D23"));
  EXPECT_EQ(CLng(loaded->Get("No_Frota")), 305);
  EXPECT_EQ(CLng(loaded->Get("Cd_EmpresaOnibus")), 10);
  EXPECT_EQ(CLng(loaded->Get("Cd_Cor")), 1);
  EXPECT_EQ(CLng(loaded->Get("Cd_MarcaModelo")), 2);

  // A car without a bus company: its code 0 is stored as Null.
  loaded->Let("Cd_EmpresaOnibus", Variant(0));
  loaded->Let("No_Frota", Variant(0));
  other.Salvar();
  EXPECT_EQ(db.statements.back(), Select("ABC1D23"));
  auto rows = db.Query("SELECT Cd_EmpresaOnibus, No_Frota, Cd_Cor FROM TbVeiculo");
  ASSERT_EQ(rows->RecordCount(), 1);
  EXPECT_TRUE(rows->Fields().Item(0).Value().IsNull());
  EXPECT_EQ(CLng(rows->Fields().Item(1).Value()), 0);  // not a code: kept as 0
  EXPECT_EQ(CLng(rows->Fields().Item(2).Value()), 1);

  other.Excluir();
  EXPECT_EQ(db.statements.back(), "DELETE \rFROM   TbVeiculo\rWHERE  Cd_Placa = 'ABC1D23'\r");
  EXPECT_EQ(db.Query("SELECT * FROM TbVeiculo")->RecordCount(), 0);

  EXPECT_FALSE(veiculo.temCampoSequencial());
  EXPECT_TRUE(veiculo.nomeCamposSequencial().empty());
}

TEST_F(cgdVeiculoTest, ExisteAsksWithoutTheSemicolonLineAndLeavesTheRecordAlone) {
  db.Query("INSERT INTO TbVeiculo (Cd_Placa, No_Frota, Cd_Cor) VALUES ('ABC1D23', 7, 1)");
  veiculo.Ob_cgp()->Let("Cd_Placa", Variant("ABC1D23"));
  veiculo.Ob_cgp()->Let("No_Frota", Variant(99));
  EXPECT_TRUE(veiculo.Existe());
  EXPECT_EQ(db.statements.back(), "SELECT A.*\rFROM   TbVeiculo A\rWHERE  A.Cd_Placa = 'ABC1D23'\r");
  EXPECT_EQ(CLng(veiculo.Ob_cgp()->Get("No_Frota")), 99);
  EXPECT_EQ(CLng(veiculo.Ob_cgp()->Get("Cd_Cor")), 0);

  // Plates compare without case, as on SQL Server.
  veiculo.Ob_cgp()->Let("Cd_Placa", Variant("abc1d23"));
  EXPECT_TRUE(veiculo.Existe());

  veiculo.Ob_cgp()->Let("Cd_Placa", Variant("XYZ9A99"));
  EXPECT_FALSE(veiculo.Existe());
  EXPECT_EQ(db.statements.back(), "SELECT A.*\rFROM   TbVeiculo A\rWHERE  A.Cd_Placa = 'XYZ9A99'\r");

  const size_t sent = db.statements.size();
  veiculo.Ob_cgp()->Let("Cd_Placa", Variant(""));
  const VekError no_plate = ErrorOf([&] { veiculo.Existe(); });
  EXPECT_EQ(no_plate.Number(), kErrorNoKey);
  EXPECT_EQ(no_plate.Source(), " -> cgdVeiculo.Existe,  -> cgdVeiculo.Existe, ");
  EXPECT_EQ(db.statements.size(), sent);
}

TEST_F(cgdVeiculoTest, APlateHoldingAnApostropheIsRefusedBeforeAnyStatement) {
  db.Query("INSERT INTO TbVeiculo (Cd_Placa) VALUES ('ABC1D23')");
  veiculo.Ob_cgp()->Let("Cd_Placa", Variant("X' OR '1'='1"));
  for (const auto& [member, call] : std::vector<std::pair<std::string, std::function<void()>>>{
           {"Existe", [&] { veiculo.Existe(); }},
           {"Consultar", [&] { veiculo.Consultar(); }},
           {"Alterar", [&] { veiculo.Alterar(); }},
           {"Excluir", [&] { veiculo.Excluir(); }},
           // A row stored under such a plate could never be found again.
           {"Incluir", [&] { veiculo.Incluir(); }},
       }) {
    const VekError refused = ErrorOf(call);
    EXPECT_EQ(refused.Number(), kBusinessError) << member;
    EXPECT_NE(refused.Description().find("Cd_Placa"), std::string::npos) << refused.Description();
    EXPECT_EQ(refused.Source(), " -> cgdVeiculo." + member + ", ") << member;
  }
  const VekError saved = ErrorOf([&] { veiculo.Salvar(); });
  EXPECT_EQ(saved.Number(), kBusinessError);  // not taken for a missing row
  EXPECT_EQ(saved.Source(), " -> cgdVeiculo.Alterar,  -> cgdVeiculo.Salvar, ");
  EXPECT_TRUE(db.statements.empty());
  EXPECT_EQ(db.Query("SELECT * FROM TbVeiculo")->RecordCount(), 1);
}

TEST_F(cgdVeiculoTest, ACodeOfAColourOrCompanyThatIsNotThereFailsInTheDatabase) {
  veiculo.Ob_cgp()->Let("Cd_Placa", Variant("ABC1D23"));
  veiculo.Ob_cgp()->Let("Cd_Cor", Variant(77));
  const VekError refused = ErrorOf([&] { veiculo.Salvar(); });
  EXPECT_EQ(refused.Number(), static_cast<int32_t>(0x80040E2Fu));
  EXPECT_EQ(refused.Source(), testing::ProviderSource() + " -> cgdVeiculo.Incluir,  -> cgdVeiculo.Salvar, ");
  EXPECT_EQ(db.Query("SELECT * FROM TbVeiculo")->RecordCount(), 0);
}

}  // namespace
}  // namespace vek
