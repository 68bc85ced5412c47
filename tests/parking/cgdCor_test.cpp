#include "vek/parking/cgdCor.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "support/RecordingControls.h"
#include "support/TerminalDatabase.h"
#include "vek/foundation/MessageCatalogue.h"
#include "vek/platform/Controls.h"

namespace vek {
namespace {

using testing::ErrorOf;
using testing::Lines;
using testing::Entries;
using testing::EntriesOf;

class cgdCorTest : public ::testing::Test {
 protected:
  cgdCorTest() {
    cor.Ob_cgpSistema(db.session);
    db.session->SetProgress(progress);
    db.session->SetMessages(messages);
  }

  void InsertColours() {
    db.Query("INSERT INTO TbCor (Cd_Cor, Nm_Cor) VALUES (1, 'Vermelho')");
    db.Query("INSERT INTO TbCor (Cd_Cor, Nm_Cor) VALUES (2, 'Azul')");
    db.Query("INSERT INTO TbCor (Cd_Cor, Nm_Cor) VALUES (1500, 'Prata')");
  }

  testing::TerminalDatabase db;
  std::shared_ptr<SilentProgress> progress = std::make_shared<SilentProgress>();
  std::shared_ptr<SilentMessageBox> messages = std::make_shared<SilentMessageBox>();
  cgdCor cor;
  ListComboBox combo;
};

TEST_F(cgdCorTest, AColourIsNumberedByTheDatabaseAndFoundByItsCode) {
  cor.Ob_cgp()->Let("Nm_Cor", Variant("Grafite"));
  cor.Salvar();
  const int32_t code = CLng(cor.Ob_cgp()->Get("Cd_Cor"));
  EXPECT_GT(code, 0);
  EXPECT_EQ(db.statements.back(), "SELECT A.*\rFROM   TbCor A\rWHERE  A.Cd_Cor = 0\r;\r");

  cgdCor other;
  other.Ob_cgpSistema(db.session);
  other.Ob_cgp()->Let("Cd_Cor", Variant(code));
  EXPECT_EQ(CStr(other.Consultar(false)->Get("Nm_Cor")), "Grafite");
  EXPECT_EQ(db.statements.back(), "SELECT A.*\rFROM   TbCor A\rWHERE  A.Cd_Cor = " + std::to_string(code) + "\r;\r");

  // Colours have no look-up by name.
  cgdCor by_name;
  by_name.Ob_cgpSistema(db.session);
  by_name.Ob_cgp()->Let("Nm_Cor", Variant("Grafite"));
  EXPECT_EQ(ErrorOf([&] { by_name.Consultar(); }).Number(), kErrorNoKey);

  other.Excluir();
  EXPECT_EQ(db.statements.back(), "DELETE \rFROM   TbCor\rWHERE  Cd_Cor = " + std::to_string(code) + "\r");
  EXPECT_EQ(db.Query("SELECT * FROM TbCor")->RecordCount(), 0);
  EXPECT_EQ(cor.nomeCamposSequencial(), std::vector<std::string>{"Cd_Cor"});
}

TEST_F(cgdCorTest, AColourThatAVehicleHasCannotBeDeleted) {
  InsertColours();
  db.Query("INSERT INTO TbVeiculo (Cd_Placa, Cd_Cor) VALUES ('ABC1D23', 2)");
  cor.Ob_cgp()->Let("Cd_Cor", Variant(2));
  const VekError refused = ErrorOf([&] { cor.Excluir(); });
  EXPECT_EQ(refused.Number(), static_cast<int32_t>(0x80040E2Fu));
  EXPECT_EQ(refused.Source(), testing::ProviderSource() + " -> cgdCor.Excluir, ");
  EXPECT_EQ(db.Query("SELECT * FROM TbCor")->RecordCount(), 3);
}

TEST_F(cgdCorTest, ThePickListGoesByNameAndSaysSoWhenThereIsNoColourAtAll) {
  combo.AddItem("left from before");
  cor.CarregarComboBox(combo);
  EXPECT_EQ(EntriesOf(combo), (Entries{{"NENHUM", 0}}));
  ASSERT_EQ(messages->Messages().size(), 1u);
  EXPECT_EQ(messages->Messages()[0].prompt, "Não existe nenhuma cor cadastrada");
  EXPECT_EQ(messages->Messages()[0].buttons, vbInformation);
  EXPECT_EQ(db.statements.back(), Lines({"SELECT   *", "FROM     TbCor", "ORDER BY Nm_Cor"}) + "\r");
  EXPECT_EQ(progress->Caption(), "Carregando as cores");
  EXPECT_FALSE(progress->Visible());

  InsertColours();
  cor.CarregarComboBox(combo);
  EXPECT_EQ(EntriesOf(combo), (Entries{{"--ESCOLHA-->", 0}, {"Azul", 2}, {"Prata", 1500}, {"Vermelho", 1}}));
  EXPECT_EQ(messages->Messages().size(), 1u);  // nothing more to say

  cor.CarregarComboBox(combo, "Nm_Cor = 'Azul'");
  EXPECT_EQ(db.statements.back(),
            Lines({"SELECT   *", "FROM     TbCor", "WHERE Nm_Cor = 'Azul'", "ORDER BY Nm_Cor"}) + "\r");
  EXPECT_EQ(EntriesOf(combo), (Entries{{"Azul", 2}}));

  // A filter that leaves nothing reads like an empty table.
  cor.CarregarComboBox(combo, "Nm_Cor = 'Rosa'");
  EXPECT_EQ(EntriesOf(combo), (Entries{{"NENHUM", 0}}));
  EXPECT_EQ(messages->Messages().size(), 2u);
}

TEST_F(cgdCorTest, TheSearchGridShowsTheGroupedCodeAfterTheEmptyFirstCell) {
  InsertColours();
  ListGrid grid;
  TextBox count;
  testing::LocaleGuard brazil(testing::kBrazilLocale);
  cor.CarregarMSFlexGridDeBusca(grid, count);
  EXPECT_EQ(grid.Lines(), (std::vector<std::string>{"\t2\tAzul", "\t1.500\tPrata", "\t1\tVermelho"}));
  EXPECT_EQ(count.Text(), "3");
  EXPECT_EQ(db.statements.back(),
            Lines({"SELECT   A.Cd_Cor,", "         A.Nm_Cor", "FROM     TbCor A", "ORDER BY A.Nm_Cor", ";"}) + "\r");

  ListGrid filtered;
  cor.CarregarMSFlexGridDeBusca(filtered, count, "A.Cd_Cor > 1");
  EXPECT_EQ(filtered.Lines(), (std::vector<std::string>{"\t2\tAzul", "\t1.500\tPrata"}));
  EXPECT_EQ(db.statements.back(), Lines({"SELECT   A.Cd_Cor,", "         A.Nm_Cor", "FROM     TbCor A",
                                         "WHERE A.Cd_Cor > 1", "ORDER BY A.Nm_Cor", ";"}) +
                                      "\r");
  EXPECT_TRUE(messages->Messages().empty());  // an empty grid says nothing either
  ListGrid none;
  cor.CarregarMSFlexGridDeBusca(none, count, "A.Cd_Cor < 0");
  EXPECT_TRUE(none.Lines().empty());
  EXPECT_EQ(count.Text(), "0");
  EXPECT_TRUE(messages->Messages().empty());

  const VekError bad = ErrorOf([&] { cor.CarregarMSFlexGridDeBusca(none, count, "A.Cd_Cor >"); });
  EXPECT_EQ(bad.Source(), testing::ProviderSource() + " -> cgdCor.CarregarMSFlexGridDeBusca, ");
}

TEST_F(cgdCorTest, TheGridCountIsGroupedTheLocalesWay) {
  db.Query(
      "WITH n (i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 1234) "
      "INSERT INTO TbCor (Nm_Cor) SELECT 'Cor ' + CAST(i AS VARCHAR(10)) FROM n");
  ListGrid grid;
  TextBox count;
  {
    testing::LocaleGuard brazil(testing::kBrazilLocale);
    cor.CarregarMSFlexGridDeBusca(grid, count);
    EXPECT_EQ(count.Text(), "1.234");
  }
  {
    testing::LocaleGuard dot(testing::kDotLocale);
    cor.CarregarMSFlexGridDeBusca(grid, count, "A.Cd_Cor <> 1000");
    EXPECT_EQ(count.Text(), "1,233");
  }
  EXPECT_EQ(grid.Lines().size(), 1234u + 1233u);  // the grid is never cleared by the loader
  EXPECT_EQ(grid.Lines().front(), "\t1\tCor 1");
}

}  // namespace
}  // namespace vek
