// The revenue types: the record (cgdTipoReceita) and its pick list
// (cgdTiposReceita), on the four types every terminal holds.

#include "vek/revenue/cgdTipoReceita.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "support/RecordingControls.h"
#include "support/TerminalDatabase.h"
#include "vek/foundation/MessageCatalogue.h"
#include "vek/platform/Controls.h"
#include "vek/revenue/cgdTiposReceita.h"

namespace vek {
namespace {

using testing::ErrorOf;
using testing::Lines;
using testing::Entries;
using testing::EntriesOf;

class cgdTipoReceitaTest : public ::testing::Test {
 protected:
  cgdTipoReceitaTest() {
    tipo.Ob_cgpSistema(db.session);
    tipos.Ob_cgpSistema(db.session);
    db.session->SetProgress(progress);
  }

  testing::TerminalDatabase db;
  std::shared_ptr<SilentProgress> progress = std::make_shared<SilentProgress>();
  cgdTipoReceita tipo;
  cgdTiposReceita tipos;
  ListComboBox combo;
};

TEST_F(cgdTipoReceitaTest, TheFourFixedTypesAreThereAndANewOneIsNumberedAfterThem) {
  tipo.Ob_cgp()->Let("Cd_TipoReceita", Variant(1));
  EXPECT_EQ(CStr(tipo.Consultar(false)->Get("Nm_TipoReceita")), "EMBARQUE");
  EXPECT_EQ(db.statements.back(), "SELECT A.*\rFROM   TbTipoReceita A\rWHERE  A.Cd_TipoReceita = 1;\r");

  cgdTipoReceita novo;
  novo.Ob_cgpSistema(db.session);
  novo.Ob_cgp()->Let("Nm_TipoReceita", Variant("GUARDA-VOLUMES"));
  novo.Salvar();
  EXPECT_EQ(CLng(novo.Ob_cgp()->Get("Cd_TipoReceita")), 5);
  EXPECT_EQ(db.statements.back(), "SELECT A.*\rFROM   TbTipoReceita A\rWHERE  A.Cd_TipoReceita = 0;\r");

  novo.Ob_cgp()->Let("Nm_TipoReceita", Variant("GUARDA VOLUMES"));
  novo.Alterar();
  EXPECT_EQ(db.statements.back(), "SELECT A.*\rFROM   TbTipoReceita A\rWHERE  A.Cd_TipoReceita = 5;\r");
  auto rows = db.Query("SELECT Nm_TipoReceita FROM TbTipoReceita WHERE Cd_TipoReceita = 5");
  ASSERT_EQ(rows->RecordCount(), 1);
  EXPECT_EQ(CStr(rows->Fields().Item(0).Value()), "GUARDA VOLUMES");

  novo.Excluir();
  EXPECT_EQ(db.statements.back(), "DELETE \rFROM   TbTipoReceita\rWHERE  Cd_TipoReceita = 5\r");
  EXPECT_EQ(db.Query("SELECT * FROM TbTipoReceita")->RecordCount(), 4);

  EXPECT_EQ(tipo.nomeCamposSequencial(), std::vector<std::string>{"Cd_TipoReceita"});
}

TEST_F(cgdTipoReceitaTest, DeletingATypeThatATariffStillUsesFailsInTheDatabase) {
  db.Query("INSERT INTO TbTarifa (Cd_Tarifa, Ds_Tarifa, Cd_TipoReceita) VALUES (8, 'Sanitário', 3)");
  tipo.Ob_cgp()->Let("Cd_TipoReceita", Variant(3));
  const VekError refused = ErrorOf([&] { tipo.Excluir(); });
  EXPECT_EQ(refused.Number(), static_cast<int32_t>(0x80040E2Fu));
  EXPECT_EQ(refused.Source(), testing::ProviderSource() + " -> cgdTipoReceita.Excluir, ");
  EXPECT_EQ(db.statements, (std::vector<std::string>{"DELETE \rFROM   TbTipoReceita\rWHERE  Cd_TipoReceita = 3\r"}));
  EXPECT_EQ(db.Query("SELECT * FROM TbTipoReceita")->RecordCount(), 4);

  // Without the tariff it goes.
  db.Query("DELETE FROM TbTarifa");
  tipo.Excluir();
  EXPECT_EQ(db.Query("SELECT * FROM TbTipoReceita WHERE Cd_TipoReceita = 3")->RecordCount(), 0);

  tipo.Ob_cgp()->Let("Cd_TipoReceita", Variant(0));
  EXPECT_EQ(ErrorOf([&] { tipo.Excluir(); }).Source(), " -> cgdTipoReceita.Excluir,  -> cgdTipoReceita.Excluir, ");
}

TEST_F(cgdTipoReceitaTest, ThePickListGoesByNameNeverByCode) {
  combo.AddItem("left from before");
  tipos.CarregarComboBox(combo);
  EXPECT_EQ(EntriesOf(combo),
            (Entries{{"--ESCOLHA-->", 0}, {"EMBARQUE", 1}, {"ESTACIONAMENTO", 2}, {"MALEX", 4}, {"SANITARIO", 3}}));
  EXPECT_EQ(db.statements.back(),
            Lines({"SELECT   A.*", "FROM     TbTipoReceita A", "ORDER BY A.Nm_TipoReceita;"}) + "\r");
  EXPECT_EQ(progress->Caption(), "Carregando tipos de receita");
  EXPECT_FALSE(progress->Visible());

  tipos.CarregarComboBox(combo, "A.Cd_TipoReceita >= 3");
  EXPECT_EQ(db.statements.back(), Lines({"SELECT   A.*", "FROM     TbTipoReceita A", "WHERE  A.Cd_TipoReceita >= 3",
                                         "ORDER BY A.Nm_TipoReceita;"}) +
                                      "\r");
  EXPECT_EQ(EntriesOf(combo), (Entries{{"--ESCOLHA-->", 0}, {"MALEX", 4}, {"SANITARIO", 3}}));

  tipos.CarregarComboBox(combo, "A.Nm_TipoReceita = 'EMBARQUE'");
  EXPECT_EQ(EntriesOf(combo), (Entries{{"EMBARQUE", 1}}));
  tipos.CarregarComboBox(combo, "A.Cd_TipoReceita > 4");
  EXPECT_EQ(combo.ListCount(), 0);

  const VekError bad = ErrorOf([&] { tipos.CarregarComboBox(combo, "A.Nm_Inexistente = 'x'"); });
  EXPECT_EQ(bad.Source(), testing::ProviderSource() + " -> cgdTiposReceita.CarregarComboBox, ");
  EXPECT_FALSE(progress->Visible());
}

}  // namespace
}  // namespace vek
