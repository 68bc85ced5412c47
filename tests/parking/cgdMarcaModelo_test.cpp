#include "vek/parking/cgdMarcaModelo.h"

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

class cgdMarcaModeloTest : public ::testing::Test {
 protected:
  cgdMarcaModeloTest() {
    marca.Ob_cgpSistema(db.session);
    db.session->SetMessages(messages);
  }

  void InsertModels() {
    db.Query("INSERT INTO TbMarcaModelo (Cd_MarcaModelo, Ds_MarcaModelo) VALUES (1, 'VW Gol')");
    db.Query("INSERT INTO TbMarcaModelo (Cd_MarcaModelo, Ds_MarcaModelo) VALUES (2, 'Fiat Uno')");
    db.Query("INSERT INTO TbMarcaModelo (Cd_MarcaModelo, Ds_MarcaModelo) VALUES (3000, 'Chevrolet Onix')");
  }

  testing::TerminalDatabase db;
  std::shared_ptr<SilentMessageBox> messages = std::make_shared<SilentMessageBox>();
  cgdMarcaModelo marca;
  ListComboBox combo;
};

TEST_F(cgdMarcaModeloTest, FoundByItsCodeOrByItsDescriptionWhenTheCodeIsZero) {
  InsertModels();
  marca.Ob_cgp()->Let("Ds_MarcaModelo", Variant("Fiat Uno"));
  auto found = marca.Consultar(false);
  EXPECT_EQ(CLng(found->Get("Cd_MarcaModelo")), 2);
  EXPECT_EQ(db.statements.back(), "SELECT A.*\rFROM   TbMarcaModelo A\rWHERE  A.Ds_MarcaModelo = 'Fiat Uno'\r;\r");

  // The code comes first: a description of another row is not looked at.
  marca.Ob_cgp()->Let("Cd_MarcaModelo", Variant(1));
  EXPECT_EQ(CStr(marca.Consultar(false)->Get("Ds_MarcaModelo")), "VW Gol");
  EXPECT_EQ(db.statements.back(), "SELECT A.*\rFROM   TbMarcaModelo A\rWHERE  A.Cd_MarcaModelo = 1\r;\r");

  marca.Ob_cgp()->RestaurarDefault();
  marca.Ob_cgp()->Let("Ds_MarcaModelo", Variant("Ford Ka"));
  const VekError not_found = ErrorOf([&] { marca.Consultar(false); });
  EXPECT_EQ(not_found.Number(), kErrorRecordNotFound);
  EXPECT_EQ(CStr(marca.Consultar()->Get("Ds_MarcaModelo")), "");

  const size_t sent = db.statements.size();
  const VekError neither = ErrorOf([&] { marca.Consultar(); });
  EXPECT_EQ(neither.Number(), kErrorNoKey);
  EXPECT_EQ(neither.Source(), " -> cgdMarcaModelo.Consultar,  -> cgdMarcaModelo.Consultar, ");

  marca.Ob_cgp()->Let("Ds_MarcaModelo", Variant("Citroën C4 'Lounge'"));
  const VekError refused = ErrorOf([&] { marca.Consultar(); });
  EXPECT_EQ(refused.Number(), kBusinessError);
  EXPECT_NE(refused.Description().find("Ds_MarcaModelo"), std::string::npos) << refused.Description();
  EXPECT_EQ(refused.Source(), " -> cgdMarcaModelo.Consultar, ");
  EXPECT_EQ(db.statements.size(), sent);
}

TEST_F(cgdMarcaModeloTest, ANewOneIsNumberedAndDeletingNeedsTheCode) {
  marca.Ob_cgp()->Let("Ds_MarcaModelo", Variant("Renault Kwid"));
  marca.Incluir();
  const int32_t code = CLng(marca.Ob_cgp()->Get("Cd_MarcaModelo"));
  EXPECT_GT(code, 0);
  EXPECT_EQ(db.statements.back(), "SELECT A.*\rFROM   TbMarcaModelo A\rWHERE  A.Cd_MarcaModelo = 0\r;\r");

  cgdMarcaModelo by_description;
  by_description.Ob_cgpSistema(db.session);
  by_description.Ob_cgp()->Let("Ds_MarcaModelo", Variant("Renault Kwid"));
  const size_t sent = db.statements.size();
  EXPECT_EQ(ErrorOf([&] { by_description.Excluir(); }).Number(), kErrorNoKey);
  EXPECT_EQ(db.statements.size(), sent);

  marca.Excluir();
  EXPECT_EQ(db.statements.back(),
            "DELETE \rFROM   TbMarcaModelo\rWHERE  Cd_MarcaModelo = " + std::to_string(code) + "\r");
  EXPECT_EQ(db.Query("SELECT * FROM TbMarcaModelo")->RecordCount(), 0);
}

TEST_F(cgdMarcaModeloTest, SavingWithoutACodeAlwaysAddsAnotherAndADescriptionWithAnApostropheIsRefused) {
  InsertModels();
  // Only Consultar looks a make up by its description: a code of 0 is a new row.
  cgdMarcaModelo nova;
  nova.Ob_cgpSistema(db.session);
  nova.Ob_cgp()->Let("Ds_MarcaModelo", Variant("fiat uno"));
  nova.Salvar();
  EXPECT_EQ(CLng(nova.Ob_cgp()->Get("Cd_MarcaModelo")), 3001);
  EXPECT_EQ(db.statements, std::vector<std::string>{"SELECT A.*\rFROM   TbMarcaModelo A\rWHERE  A.Cd_MarcaModelo = 0\r;\r"});
  auto rows = db.Query("SELECT Ds_MarcaModelo FROM TbMarcaModelo WHERE Cd_MarcaModelo = 2");
  EXPECT_EQ(CStr(rows->Fields().Item(0).Value()), "Fiat Uno");  // untouched
  EXPECT_EQ(db.Query("SELECT * FROM TbMarcaModelo")->RecordCount(), 4);

  nova.Ob_cgp()->Let("Cd_MarcaModelo", Variant(0));
  nova.Ob_cgp()->Let("Ds_MarcaModelo", Variant("Fiat 'Mobi'"));
  const size_t sent = db.statements.size();
  const VekError refused = ErrorOf([&] { nova.Salvar(); });
  EXPECT_EQ(refused.Number(), kBusinessError);
  EXPECT_EQ(refused.Source(), " -> cgdMarcaModelo.Incluir,  -> cgdMarcaModelo.Salvar, ");
  // Under its code, or as a new row, the description could never be looked up again.
  nova.Ob_cgp()->Let("Cd_MarcaModelo", Variant(1));
  EXPECT_EQ(ErrorOf([&] { nova.Salvar(); }).Number(), kBusinessError);
  EXPECT_EQ(ErrorOf([&] { nova.Incluir(); }).Number(), kBusinessError);
  EXPECT_EQ(db.statements.size(), sent);
  EXPECT_EQ(db.Query("SELECT * FROM TbMarcaModelo WHERE Ds_MarcaModelo LIKE '%''%'")->RecordCount(), 0);
}

TEST_F(cgdMarcaModeloTest, ThePickListAndTheGridGoByDescription) {
  cgdMarcaModelo empty;
  empty.Ob_cgpSistema(db.session);
  empty.CarregarComboBox(combo);
  EXPECT_EQ(EntriesOf(combo), (Entries{{"NENHUM", 0}}));
  ASSERT_EQ(messages->Messages().size(), 1u);
  EXPECT_EQ(messages->Messages()[0].prompt, "Não existe nenhuma marca/modelo cadastrada");
  EXPECT_EQ(db.statements.back(), Lines({"SELECT   *", "FROM     TbMarcaModelo", "ORDER BY Ds_MarcaModelo"}) + "\r");

  InsertModels();
  marca.CarregarComboBox(combo);
  EXPECT_EQ(EntriesOf(combo), (Entries{{"--ESCOLHA-->", 0}, {"Chevrolet Onix", 3000}, {"Fiat Uno", 2}, {"VW Gol", 1}}));
  EXPECT_EQ(db.session->Progress().Caption(), "Carregando as marcas/modelos");
  EXPECT_EQ(messages->Messages().size(), 1u);

  ListGrid grid;
  TextBox count;
  testing::LocaleGuard brazil(testing::kBrazilLocale);
  marca.CarregarMSFlexGridDeBusca(grid, count);
  // Every column of the select list as it stands: no grouping of the code.
  EXPECT_EQ(grid.Lines(), (std::vector<std::string>{"\t3000\tChevrolet Onix", "\t2\tFiat Uno", "\t1\tVW Gol"}));
  EXPECT_EQ(count.Text(), "3");
  EXPECT_EQ(db.statements.back(), Lines({"SELECT   A.Cd_MarcaModelo,", "         A.Ds_MarcaModelo",
                                         "FROM     TbMarcaModelo A", "ORDER BY A.Ds_MarcaModelo", ";"}) +
                                      "\r");

  ListGrid filtered;
  marca.CarregarMSFlexGridDeBusca(filtered, count, "A.Ds_MarcaModelo LIKE 'f%'");
  EXPECT_EQ(filtered.Lines(), (std::vector<std::string>{"\t2\tFiat Uno"}));
  EXPECT_EQ(db.statements.back(),
            Lines({"SELECT   A.Cd_MarcaModelo,", "         A.Ds_MarcaModelo", "FROM     TbMarcaModelo A",
                   "WHERE A.Ds_MarcaModelo LIKE 'f%'", "ORDER BY A.Ds_MarcaModelo", ";"}) +
                "\r");
  EXPECT_EQ(count.Text(), "1");
}

}  // namespace
}  // namespace vek
