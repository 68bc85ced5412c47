#include "vek/revenue/cgdTarifa.h"

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

std::string Select(int32_t code) {
  return Lines({"SELECT A.*", "FROM   TbTarifa A", "WHERE  A.Cd_Tarifa = " + std::to_string(code) + ";"}) + "\r";
}

// The tariffs' codes run against their descriptions, so that an order by
// code and an order by description can't be mistaken for each other.
class cgdTarifaTest : public ::testing::Test {
 protected:
  cgdTarifaTest() {
    tarifa.Ob_cgpSistema(db.session);
    db.session->SetProgress(progress);
  }

  void InsertTariffs() {
    db.Query(
        "INSERT INTO TbTarifa (Cd_Tarifa, Cd_EmpresaUsuariaSistema, Ds_Tarifa, Vl_Tarifa, Cd_TipoReceita) "
        "VALUES (1, 1, 'Sanitário', 1.5, 3)");
    db.Query(
        "INSERT INTO TbTarifa (Cd_Tarifa, Cd_EmpresaUsuariaSistema, Ds_Tarifa, Vl_Tarifa, Cd_TipoReceita) "
        "VALUES (2, 1, 'Estacionamento hora', 6, 2)");
    db.Query(
        "INSERT INTO TbTarifa (Cd_Tarifa, Cd_EmpresaUsuariaSistema, Ds_Tarifa, Vl_Tarifa, Cd_TipoReceita) "
        "VALUES (3, 2, 'Embarque intermunicipal', 2.35, 1)");
    db.Query(
        "INSERT INTO TbTarifa (Cd_Tarifa, Cd_EmpresaUsuariaSistema, Ds_Tarifa, Vl_Tarifa, Cd_TipoReceita) "
        "VALUES (1234567, 1, 'Bagageiro', 0.5, 4)");
  }

  testing::TerminalDatabase db;
  std::shared_ptr<SilentProgress> progress = std::make_shared<SilentProgress>();
  cgdTarifa tarifa;
  ListComboBox combo;
};

TEST_F(cgdTarifaTest, ATariffIsNumberedByTheDatabaseAndItsLookUpsEndTheWhereLineWithASemicolon) {
  auto record = tarifa.Ob_cgp();
  record->Let("Cd_EmpresaUsuariaSistema", Variant(1));
  record->Let("Ds_Tarifa", Variant("Embarque interestadual"));
  record->Let("Vl_Tarifa", Variant(Currency::FromRaw(31234)));
  record->Let("Cd_TipoReceita", Variant(1));
  tarifa.Salvar();
  const int32_t code = CLng(record->Get("Cd_Tarifa"));
  EXPECT_GT(code, 0);
  // Key 0 goes straight to the insert, whose empty set is read on code 0.
  EXPECT_EQ(db.statements, (std::vector<std::string>{Select(0)}));

  cgdTarifa other;
  other.Ob_cgpSistema(db.session);
  other.Ob_cgp()->Let("Cd_Tarifa", Variant(code));
  auto loaded = other.Consultar();
  EXPECT_EQ(db.statements.back(), Select(code));
  EXPECT_EQ(CStr(loaded->Get("Ds_Tarifa")), "Embarque interestadual");
  EXPECT_EQ(loaded->Get("Vl_Tarifa"), Variant(Currency::FromRaw(31234)));
  EXPECT_EQ(CLng(loaded->Get("Cd_TipoReceita")), 1);
  EXPECT_EQ(CLng(loaded->Get("Cd_EmpresaUsuariaSistema")), 1);

  loaded->Let("Vl_Tarifa", Variant(Currency::FromRaw(35000)));
  other.Salvar();
  EXPECT_EQ(db.statements.back(), Select(code));
  auto stored = db.Query("SELECT Cd_Tarifa, Vl_Tarifa FROM TbTarifa");
  ASSERT_EQ(stored->RecordCount(), 1);
  EXPECT_EQ(CLng(stored->Fields().Item(0).Value()), code);
  EXPECT_EQ(CCur(stored->Fields().Item(1).Value()), Currency::FromRaw(35000));

  other.Excluir();
  EXPECT_EQ(db.statements.back(), "DELETE \rFROM   TbTarifa\rWHERE  Cd_Tarifa = " + std::to_string(code) + "\r");
  EXPECT_EQ(db.Query("SELECT * FROM TbTarifa")->RecordCount(), 0);

  EXPECT_TRUE(tarifa.temCampoSequencial());
  EXPECT_EQ(tarifa.nomeCamposSequencial(), std::vector<std::string>{"Cd_Tarifa"});
}

TEST_F(cgdTarifaTest, ALookUpOfCodeFiveNamesNoTenantAndAMissingKeyIsRefusedBeforeAnySql) {
  InsertTariffs();
  db.Query(
      "INSERT INTO TbTarifa (Cd_Tarifa, Cd_EmpresaUsuariaSistema, Ds_Tarifa, Cd_TipoReceita) "
      "VALUES (5, 7, 'De outra empresa', 1)");
  tarifa.Ob_cgp()->Let("Cd_Tarifa", Variant(5));
  EXPECT_EQ(CStr(tarifa.Consultar(false)->Get("Ds_Tarifa")), "De outra empresa");
  EXPECT_EQ(db.statements.back(), "SELECT A.*\rFROM   TbTarifa A\rWHERE  A.Cd_Tarifa = 5;\r");

  db.statements.clear();
  tarifa.Ob_cgp()->RestaurarDefault();
  const VekError no_key = ErrorOf([&] { tarifa.Consultar(); });
  EXPECT_EQ(no_key.Number(), kErrorNoKey);
  EXPECT_EQ(no_key.Source(), " -> cgdTarifa.Consultar,  -> cgdTarifa.Consultar, ");
  EXPECT_EQ(ErrorOf([&] { tarifa.Excluir(); }).Source(), " -> cgdTarifa.Excluir,  -> cgdTarifa.Excluir, ");
  EXPECT_TRUE(db.statements.empty());

  tarifa.Ob_cgp()->Let("Cd_Tarifa", Variant(99));
  const VekError not_found = ErrorOf([&] { tarifa.Consultar(false); });
  EXPECT_EQ(not_found.Number(), kErrorRecordNotFound);
  EXPECT_EQ(not_found.Source(), " -> cgdTarifa.Consultar,  -> cgdTarifa.Consultar, ");
  EXPECT_EQ(ErrorOf([&] { tarifa.Alterar(); }).Number(), kErrorRecordNotFound);
}

TEST_F(cgdTarifaTest, DeletingATariffStillReferredToFailsInTheDatabase) {
  InsertTariffs();
  db.Query(
      "INSERT INTO TbTicketSanitario (Cd_EmpresaUsuariaSistema, Cd_TicketSanitario, Cd_Tarifa, Qt_Unidade) "
      "VALUES (1, 1, 1, 1)");
  tarifa.Ob_cgp()->Let("Cd_Tarifa", Variant(1));
  const VekError refused = ErrorOf([&] { tarifa.Excluir(); });
  EXPECT_EQ(refused.Number(), static_cast<int32_t>(0x80040E2Fu));
  EXPECT_EQ(refused.Source(), testing::ProviderSource() + " -> cgdTarifa.Excluir, ");
  // No check goes before the DELETE: it is the one statement sent.
  EXPECT_EQ(db.statements, (std::vector<std::string>{"DELETE \rFROM   TbTarifa\rWHERE  Cd_Tarifa = 1\r"}));
  EXPECT_EQ(db.Query("SELECT * FROM TbTarifa WHERE Cd_Tarifa = 1")->RecordCount(), 1);

  // A revenue type that is not there fails the same way on the way in.
  cgdTarifa nova;
  nova.Ob_cgpSistema(db.session);
  nova.Ob_cgp()->Let("Ds_Tarifa", Variant("Sem tipo válido"));
  nova.Ob_cgp()->Let("Cd_TipoReceita", Variant(40));
  const VekError orphan = ErrorOf([&] { nova.Incluir(); });
  EXPECT_EQ(orphan.Number(), static_cast<int32_t>(0x80040E2Fu));
  EXPECT_EQ(orphan.Source(), testing::ProviderSource() + " -> cgdTarifa.Incluir, ");
}

TEST_F(cgdTarifaTest, ThePickListGoesByDescriptionNeverByCode) {
  InsertTariffs();
  combo.AddItem("left from before");
  tarifa.CarregarComboBox(combo);
  EXPECT_EQ(EntriesOf(combo), (Entries{{"--ESCOLHA-->", 0},
                                       {"Bagageiro", 1234567},
                                       {"Embarque intermunicipal", 3},
                                       {"Estacionamento hora", 2},
                                       {"Sanitário", 1}}));
  EXPECT_EQ(db.statements.back(),
            Lines({"SELECT Cd_Tarifa,", "       Ds_Tarifa", "FROM   TbTarifa", "ORDER BY Ds_Tarifa"}) + "\r");
  // The bus types' caption, kept as it is.
  EXPECT_EQ(progress->Caption(), "Carregando Tipo de Onibus");
  EXPECT_EQ(progress->Percentage(), 100.0);
  EXPECT_FALSE(progress->Visible());

  tarifa.CarregarComboBox(combo, "Cd_TipoReceita = 2");
  EXPECT_EQ(db.statements.back(), Lines({"SELECT Cd_Tarifa,", "       Ds_Tarifa", "FROM   TbTarifa",
                                         "WHERE  Cd_TipoReceita = 2", "ORDER BY Ds_Tarifa"}) +
                                      "\r");
  EXPECT_EQ(EntriesOf(combo), (Entries{{"Estacionamento hora", 2}}));

  // No tariff: the list is left empty, without a word.
  auto messages = std::make_shared<SilentMessageBox>();
  db.session->SetMessages(messages);
  tarifa.CarregarComboBox(combo, "Cd_EmpresaUsuariaSistema = 3");
  EXPECT_EQ(combo.ListCount(), 0);
  EXPECT_TRUE(messages->Messages().empty());
}

TEST_F(cgdTarifaTest, TheSearchGridShowsTheGroupedCodeThenTheDescriptionWithNoLeadingTab) {
  InsertTariffs();
  ListGrid grid;
  TextBox count;
  {
    testing::LocaleGuard brazil(testing::kBrazilLocale);
    tarifa.CarregarMSFlexGridDeBusca(grid, count);
  }
  EXPECT_EQ(grid.Lines(), (std::vector<std::string>{"1.234.567\tBagageiro", "3\tEmbarque intermunicipal",
                                                    "2\tEstacionamento hora", "1\tSanitário"}));
  EXPECT_EQ(count.Text(), "4");
  EXPECT_EQ(
      db.statements.back(),
      Lines({"SELECT   A.Cd_Tarifa,", "         A.Ds_Tarifa", "FROM     TbTarifa A", "ORDER BY A.Ds_Tarifa;"}) + "\r");

  ListGrid mine;
  {
    testing::LocaleGuard dot(testing::kDotLocale);
    tarifa.CarregarMSFlexGridDeBusca(mine, count, "A.Cd_EmpresaUsuariaSistema = 1 AND A.Vl_Tarifa < 2");
  }
  EXPECT_EQ(mine.Lines(), (std::vector<std::string>{"1,234,567\tBagageiro", "1\tSanitário"}));
  EXPECT_EQ(count.Text(), "2");
  EXPECT_EQ(db.statements.back(),
            Lines({"SELECT   A.Cd_Tarifa,", "         A.Ds_Tarifa", "FROM     TbTarifa A",
                   "WHERE  A.Cd_EmpresaUsuariaSistema = 1 AND A.Vl_Tarifa < 2", "ORDER BY A.Ds_Tarifa;"}) +
                "\r");
  EXPECT_TRUE(progress->Caption().empty());  // the grid shows no progress window

  ListGrid none;
  tarifa.CarregarMSFlexGridDeBusca(none, count, "A.Cd_Tarifa < 0");
  EXPECT_TRUE(none.Lines().empty());
  EXPECT_EQ(count.Text(), "0");
}

TEST_F(cgdTarifaTest, ABadFilterFailsInTheDatabaseWithTheLoadersLink) {
  InsertTariffs();
  const VekError combo_error = ErrorOf([&] { tarifa.CarregarComboBox(combo, "Cd_Inexistente = 1"); });
  EXPECT_EQ(combo_error.Source(), testing::ProviderSource() + " -> cgdTarifa.CarregarComboBox, ");
  EXPECT_NE(combo_error.Description().find(testing::NameInMessage("Cd_Inexistente")), std::string::npos)
      << combo_error.Description();
  EXPECT_FALSE(progress->Visible());

  ListGrid grid;
  TextBox count("antes");
  const VekError grid_error = ErrorOf([&] { tarifa.CarregarMSFlexGridDeBusca(grid, count, "A.Ds_Tarifa = = 'x'"); });
  EXPECT_EQ(grid_error.Number(), static_cast<int32_t>(0x80040E14u));
  EXPECT_EQ(grid_error.Source(), testing::ProviderSource() + " -> cgdTarifa.CarregarMSFlexGridDeBusca, ");
  EXPECT_TRUE(grid.Lines().empty());
  EXPECT_EQ(count.Text(), "antes");
}

}  // namespace
}  // namespace vek
