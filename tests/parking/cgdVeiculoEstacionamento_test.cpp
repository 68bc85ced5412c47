#include "vek/parking/cgdVeiculoEstacionamento.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/TerminalDatabase.h"
#include "vek/foundation/MessageCatalogue.h"

namespace vek {
namespace {

using testing::ErrorOf;
using testing::Lines;

// The plate comes first and the company second, the reverse of the other
// tables' statements.
std::string ConsultarStatement(const std::string& plate, int32_t company) {
  return Lines({"SELECT *", "FROM   TbVeiculoEstacionamento A",
                "       INNER JOIN TbVeiculo B On A.Cd_Placa = B.Cd_Placa",
                "WHERE  Cd_EmpresaUsuariaSistema = " + std::to_string(company),
                "       And A.Cd_Placa = '" + plate + "'", ";"}) +
         "\r";
}

std::string AlterarStatement(const std::string& plate, int32_t company) {
  return Lines({"SELECT A.*", "FROM   TbVeiculoEstacionamento A", "WHERE  A.Cd_Placa = '" + plate + "'",
                "       And Cd_EmpresaUsuariaSistema = " + std::to_string(company), ";"}) +
         "\r";
}

class cgdVeiculoEstacionamentoTest : public ::testing::Test {
 protected:
  cgdVeiculoEstacionamentoTest() {
    veiculo.Ob_cgpSistema(db.session);
    db.Query("INSERT INTO TbCor (Cd_Cor, Nm_Cor) VALUES (4, 'Vermelho')");
    db.Query("INSERT INTO TbMarcaModelo (Cd_MarcaModelo, Ds_MarcaModelo) VALUES (6, 'VW Gol')");
    db.Query("INSERT INTO TbVeiculo (Cd_Placa, No_Frota, Cd_Cor, Cd_MarcaModelo) VALUES ('ABC1D23', 12, 4, 6)");
  }

  void Key(const std::string& plate, int32_t company) {
    veiculo.Ob_cgp()->Let("Cd_Placa", Variant(plate));
    veiculo.Ob_cgp()->Let("Cd_EmpresaUsuariaSistema", Variant(company));
  }

  testing::TerminalDatabase db;
  cgdVeiculoEstacionamento veiculo;
};

TEST_F(cgdVeiculoEstacionamentoTest, ACompanysRecordIsSavedAndReadTogetherWithTheVehicle) {
  Key("ABC1D23", 1);
  veiculo.Ob_cgp()->Let("Cd_ClienteEstacionamento", Variant(31));
  veiculo.Salvar();
  EXPECT_EQ(db.statements,
            (std::vector<std::string>{AlterarStatement("ABC1D23", 1),
                                      Lines({"SELECT A.*", "FROM   TbVeiculoEstacionamento A", "WHERE  A.Cd_Placa = ''",
                                             "       And Cd_EmpresaUsuariaSistema = 0", ";"}) +
                                          "\r"}));

  cgdVeiculoEstacionamento other;
  other.Ob_cgpSistema(db.session);
  other.Ob_cgp()->Let("Cd_Placa", Variant("ABC1D23"));
  other.Ob_cgp()->Let("Cd_EmpresaUsuariaSistema", Variant(1));
  auto loaded = other.Consultar(false);
  EXPECT_EQ(db.statements.back(), ConsultarStatement("ABC1D23", 1));
  EXPECT_EQ(CLng(loaded->Get("Cd_ClienteEstacionamento")), 31);
  // The vehicle's own columns come along.
  EXPECT_EQ(CLng(loaded->Get("No_Frota")), 12);
  EXPECT_EQ(CLng(loaded->Get("Cd_Cor")), 4);
  EXPECT_EQ(CLng(loaded->Get("Cd_MarcaModelo")), 6);
  EXPECT_EQ(CStr(loaded->Get("Cd_Placa")), "ABC1D23");

  loaded->Let("Cd_ClienteEstacionamento", Variant(32));
  other.Salvar();
  EXPECT_EQ(db.statements.back(), AlterarStatement("ABC1D23", 1));
  auto rows = db.Query("SELECT Cd_ClienteEstacionamento FROM TbVeiculoEstacionamento");
  ASSERT_EQ(rows->RecordCount(), 1);
  EXPECT_EQ(CLng(rows->Fields().Item(0).Value()), 32);

  // Another company knows nothing of the plate.
  Key("ABC1D23", 2);
  EXPECT_EQ(ErrorOf([&] { veiculo.Consultar(false); }).Number(), kErrorRecordNotFound);

  other.Excluir();
  EXPECT_EQ(db.statements.back(),
            "DELETE \rFROM   TbVeiculoEstacionamento\rWHERE  Cd_Placa = 'ABC1D23'\r       And Cd_EmpresaUsuariaSistema "
            "= 1\r");
  EXPECT_EQ(db.Query("SELECT * FROM TbVeiculoEstacionamento")->RecordCount(), 0);
  EXPECT_EQ(db.Query("SELECT * FROM TbVeiculo")->RecordCount(), 1);  // the vehicle stays
  EXPECT_FALSE(veiculo.temCampoSequencial());
}

TEST_F(cgdVeiculoEstacionamentoTest, APlateThatTbVeiculoLacksIsNotFoundThoughTheCompanyHasIt) {
  db.Query(
      "INSERT INTO TbVeiculoEstacionamento (Cd_Placa, Cd_EmpresaUsuariaSistema, Cd_ClienteEstacionamento) "
      "VALUES ('SEM0V00', 1, 44)");
  Key("SEM0V00", 1);
  veiculo.Ob_cgp()->Let("Cd_ClienteEstacionamento", Variant(5));
  auto reset = veiculo.Consultar();
  EXPECT_EQ(db.statements.back(), ConsultarStatement("SEM0V00", 1));
  EXPECT_EQ(CStr(reset->Get("Cd_Placa")), "");
  EXPECT_EQ(CLng(reset->Get("Cd_ClienteEstacionamento")), 0);

  Key("SEM0V00", 1);
  const VekError not_found = ErrorOf([&] { veiculo.Consultar(false); });
  EXPECT_EQ(not_found.Number(), kErrorRecordNotFound);
  EXPECT_EQ(not_found.Source(), " -> cgdVeiculoEstacionamento.Consultar,  -> cgdVeiculoEstacionamento.Consultar, ");

  // Alterar reads the company's record alone, so it does find the row.
  veiculo.Ob_cgp()->Let("Cd_ClienteEstacionamento", Variant(45));
  veiculo.Alterar();
  EXPECT_EQ(db.statements.back(), AlterarStatement("SEM0V00", 1));
  EXPECT_EQ(CLng(db.Query("SELECT Cd_ClienteEstacionamento FROM TbVeiculoEstacionamento")->Fields().Item(0).Value()),
            45);
}

TEST_F(cgdVeiculoEstacionamentoTest, BothKeysAreNeededAndThePlateIsGuarded) {
  Key("", 1);
  EXPECT_EQ(ErrorOf([&] { veiculo.Consultar(); }).Number(), kErrorNoKey);
  Key("ABC1D23", 0);
  EXPECT_EQ(ErrorOf([&] { veiculo.Excluir(); }).Number(), kErrorNoKey);
  EXPECT_EQ(CStr(veiculo.Ob_cgp()->Get("Cd_Placa")), "");  // reset before raising

  Key("AB'1D23", 1);
  const VekError refused = ErrorOf([&] { veiculo.Consultar(); });
  EXPECT_EQ(refused.Number(), kBusinessError);
  EXPECT_EQ(refused.Source(), " -> cgdVeiculoEstacionamento.Consultar, ");
  EXPECT_EQ(ErrorOf([&] { veiculo.Excluir(); }).Number(), kBusinessError);
  EXPECT_EQ(ErrorOf([&] { veiculo.Salvar(); }).Number(), kBusinessError);
  EXPECT_TRUE(db.statements.empty());
}

}  // namespace
}  // namespace vek
