#include "vek/bus/cgdTipoOnibus.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "bus/BusTerminal.h"
#include "support/RecordingControls.h"
#include "vek/foundation/MessageCatalogue.h"
#include "vek/platform/Controls.h"

namespace vek {
namespace {

using testing::ErrorOf;

TEST(cgdTipoOnibusTest, ABusTypeIsNumberedByTheDatabaseAndListedByDescription) {
  testing::BusTerminal db;
  auto progress = std::make_shared<testing::RecordingProgress>();
  db.session->SetProgress(progress);
  cgdTipoOnibus tipo;
  tipo.Ob_cgpSistema(db.session);
  tipo.Ob_cgp()->Let("Ds_TipoOnibus", Variant("Executivo"));
  tipo.Salvar();
  EXPECT_EQ(db.statements, (std::vector<std::string>{"SELECT A.*\rFROM   TbTipoOnibus A\rWHERE  A.Cd_TipoOnibus = 0\r;\r"}));
  EXPECT_EQ(CLng(tipo.Ob_cgp()->Get("Cd_TipoOnibus")), 3);
  EXPECT_EQ(tipo.nomeCamposSequencial(), std::vector<std::string>{"Cd_TipoOnibus"});

  ListComboBox combo;
  tipo.CarregarComboBox(combo);
  EXPECT_EQ(db.statements.back(), "SELECT Cd_TipoOnibus,\r       Ds_TipoOnibus\rFROM   TbTipoOnibus\rORDER BY Ds_TipoOnibus\r");
  EXPECT_EQ(testing::EntriesOf(combo),
            (testing::Entries{{"--ESCOLHA-->", 0}, {"Convencional", 1}, {"Executivo", 3}, {"Leito", 2}}));
  EXPECT_EQ(progress->calls, (std::vector<std::string>{"Show Carregando Tipo de Onibus", "Close"}));

  tipo.CarregarComboBox(combo, "Cd_TipoOnibus = 2");
  EXPECT_EQ(db.statements.back(),
            "SELECT Cd_TipoOnibus,\r       Ds_TipoOnibus\rFROM   TbTipoOnibus\rWHERE  Cd_TipoOnibus = 2\rORDER BY Ds_TipoOnibus\r");
  EXPECT_EQ(testing::EntriesOf(combo), (testing::Entries{{"Leito", 2}}));

  // A type that timetables use is kept by the database; an unused one goes.
  tipo.Ob_cgp()->Let("Cd_TipoOnibus", Variant(2));
  const VekError refused = ErrorOf([&] { tipo.Excluir(); });
  EXPECT_EQ(refused.Number(), static_cast<int32_t>(0x80040E2Fu));
  EXPECT_EQ(db.statements.back(), "DELETE \rFROM   TbTipoOnibus\rWHERE  Cd_TipoOnibus = 2\r");
  tipo.Ob_cgp()->Let("Cd_TipoOnibus", Variant(3));
  tipo.Excluir();
  EXPECT_EQ(db.Column("SELECT Cd_TipoOnibus FROM TbTipoOnibus ORDER BY 1", "Cd_TipoOnibus"),
            (std::vector<std::string>{"1", "2"}));
}

}  // namespace
}  // namespace vek
