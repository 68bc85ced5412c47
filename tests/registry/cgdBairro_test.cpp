#include "vek/registry/cgdBairro.h"

#include <gtest/gtest.h>

#include "support/TerminalDatabase.h"
#include "vek/foundation/MessageCatalogue.h"
#include "vek/registry/cgdCidade.h"

namespace vek {
namespace {

using testing::ErrorOf;

class cgdBairroTest : public ::testing::Test {
 protected:
  cgdBairroTest() {
    bairro.Ob_cgpSistema(db.session);
    db.Query("INSERT INTO TbUF (Cd_UF, Nm_UF, Sg_UF) VALUES (9, 'Goiás', 'GO')");
    db.Query("INSERT INTO TbCidade (Cd_Cidade, Nm_Cidade, Cd_UF, Sg_UF) VALUES (3, 'Goiânia', 9, 'GO')");
  }

  testing::TerminalDatabase db;
  cgdBairro bairro;
};

TEST_F(cgdBairroTest, ANeighbourhoodIsSavedLoadedChangedSavedAgainAndDeleted) {
  auto record = bairro.Ob_cgp();
  record->Let("Nm_Bairro", Variant("Setor Oeste"));
  record->Let("Cd_Cidade", Variant(3));
  bairro.Salvar();
  const int32_t code = CLng(record->Get("Cd_Bairro"));
  EXPECT_GT(code, 0);
  ASSERT_EQ(db.statements.size(), 1u);  // the update found no key and sent nothing
  EXPECT_EQ(db.statements[0], "SELECT A.*\rFROM   TbBairro A\rWHERE  A.Cd_Bairro = 0\r;\r");

  cgdBairro other;
  other.Ob_cgpSistema(db.session);
  other.Ob_cgp()->Let("Cd_Bairro", Variant(code));
  auto loaded = other.Consultar();
  EXPECT_EQ(CStr(loaded->Get("Nm_Bairro")), "Setor Oeste");
  EXPECT_EQ(CLng(loaded->Get("Cd_Cidade")), 3);
  const std::string select = "SELECT A.*\rFROM   TbBairro A\rWHERE  A.Cd_Bairro = " + std::to_string(code) + "\r;\r";
  EXPECT_EQ(db.statements.back(), select);

  loaded->Let("Nm_Bairro", Variant("Setor Sul"));
  other.Salvar();
  EXPECT_EQ(db.statements.back(), select);
  auto rows = db.Query("SELECT Nm_Bairro FROM TbBairro");
  ASSERT_EQ(rows->RecordCount(), 1);
  EXPECT_EQ(CStr(rows->Fields().Item(0).Value()), "Setor Sul");

  other.Excluir();
  EXPECT_EQ(db.statements.back(), "DELETE \rFROM   TbBairro\rWHERE  Cd_Bairro = " + std::to_string(code) + "\r");
  EXPECT_EQ(db.Query("SELECT * FROM TbBairro")->RecordCount(), 0);
  other.Excluir();  // no row: no error
}

TEST_F(cgdBairroTest, MissingKeysAndRowsRaiseTheProtocolErrors) {
  bairro.Ob_cgp()->Let("Nm_Bairro", Variant("x"));
  const VekError no_key = ErrorOf([&] { bairro.Excluir(); });
  EXPECT_EQ(no_key.Number(), static_cast<int32_t>(0x80040201u));
  EXPECT_EQ(no_key.Source(), " -> cgdBairro.Excluir,  -> cgdBairro.Excluir, ");
  EXPECT_EQ(CStr(bairro.Ob_cgp()->Get("Nm_Bairro")), "");  // reset before raising
  EXPECT_EQ(ErrorOf([&] { bairro.Consultar(); }).Number(), kErrorNoKey);
  EXPECT_EQ(ErrorOf([&] { bairro.Alterar(); }).Number(), kErrorNoKey);
  EXPECT_TRUE(db.statements.empty());

  bairro.Ob_cgp()->Let("Cd_Bairro", Variant(77));
  bairro.Ob_cgp()->Let("Nm_Bairro", Variant("resto"));
  auto reset = bairro.Consultar();
  EXPECT_EQ(CLng(reset->Get("Cd_Bairro")), 0);
  EXPECT_EQ(CStr(reset->Get("Nm_Bairro")), "");

  bairro.Ob_cgp()->Let("Cd_Bairro", Variant(77));
  const VekError not_found = ErrorOf([&] { bairro.Consultar(false); });
  EXPECT_EQ(not_found.Number(), static_cast<int32_t>(0x80040202u));
  EXPECT_EQ(not_found.Description(), "Registro nao encontrado");
  EXPECT_EQ(not_found.Source(), " -> cgdBairro.Consultar,  -> cgdBairro.Consultar, ");
  EXPECT_EQ(ErrorOf([&] { bairro.Alterar(); }).Source(), " -> cgdBairro.Alterar,  -> cgdBairro.Alterar, ");
}

TEST_F(cgdBairroTest, SavingAKeyThatIsNotThereInsertsUnderTheDatabasesNumber) {
  db.Query("INSERT INTO TbBairro (Cd_Bairro, Nm_Bairro) VALUES (5, 'Centro')");
  bairro.Ob_cgp()->Let("Cd_Bairro", Variant(50));
  bairro.Ob_cgp()->Let("Nm_Bairro", Variant("Novo"));
  bairro.Salvar();
  EXPECT_EQ(CLng(bairro.Ob_cgp()->Get("Cd_Bairro")), 6);  // the identity, not 50
  auto rows = db.Query("SELECT Cd_Bairro, Nm_Bairro FROM TbBairro ORDER BY Cd_Bairro");
  ASSERT_EQ(rows->RecordCount(), 2);
  EXPECT_EQ(CStr(rows->Fields().Item(1).Value()), "Centro");  // untouched
}

TEST_F(cgdBairroTest, ACodeOfZeroIsStoredAsNullAndAMissingCityFailsInTheDatabase) {
  bairro.Ob_cgp()->Let("Nm_Bairro", Variant("Sem cidade"));
  bairro.Salvar();
  auto rows = db.Query("SELECT Cd_Cidade FROM TbBairro");
  EXPECT_TRUE(rows->Fields().Item(0).Value().IsNull());

  cgdBairro orphan;
  orphan.Ob_cgpSistema(db.session);
  orphan.Ob_cgp()->Let("Nm_Bairro", Variant("Órfão"));
  orphan.Ob_cgp()->Let("Cd_Cidade", Variant(999));
  const VekError refused = ErrorOf([&] { orphan.Salvar(); });
  EXPECT_EQ(refused.Number(), static_cast<int32_t>(0x80040E2Fu));
  EXPECT_EQ(refused.Source(), testing::ProviderSource() + " -> cgdBairro.Incluir,  -> cgdBairro.Salvar, ");

  // A city that neighbourhoods still refer to can't be deleted.
  cgdCidade cidade;
  cidade.Ob_cgpSistema(db.session);
  bairro.Ob_cgp()->Let("Cd_Cidade", Variant(3));
  bairro.Salvar();
  cidade.Ob_cgp()->Let("Cd_Cidade", Variant(3));
  EXPECT_EQ(ErrorOf([&] { cidade.Excluir(); }).Number(), static_cast<int32_t>(0x80040E2Fu));
}

TEST_F(cgdBairroTest, TheSequenceColumnIsTheKey) {
  EXPECT_TRUE(bairro.temCampoSequencial());
  EXPECT_EQ(bairro.nomeCamposSequencial(), std::vector<std::string>{"Cd_Bairro"});
}

}  // namespace
}  // namespace vek
