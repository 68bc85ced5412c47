#include "vek/foundation/ListLoader.h"

#include <gtest/gtest.h>

#include <limits>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "support/RecordingControls.h"
#include "support/TerminalDatabase.h"
#include "vek/platform/Controls.h"

namespace vek {
namespace {

using testing::kBrazilLocale;
using testing::kDotLocale;
using testing::ErrorOf;
using testing::LocaleGuard;

// A collection whose grid shows money and dates, which the address lists
// never do: cells are the runtime's CStr, without grouping, and Null is an
// empty cell.
class cgdCaixasDeTeste : public ListCollection {
 public:
  void CarregarMSFlexGridDeBusca(FlexGrid& grid, TextControl& count) {
    Run("CarregarMSFlexGridDeBusca", [&] {
      ds_sql_ = SqlLines() << "SELECT A.Cd_Caixa, A.Dt_Abertura, T.Vl_Tarifa"
                           << "FROM   TbCaixa A JOIN TbTarifa T ON T.Cd_Tarifa = A.Cd_Caixa"
                           << "ORDER BY A.Cd_Caixa";
      FillSearchGrid(grid, count);
    });
  }
  static bool Postcode(std::string_view filter) { return IsPostcodeFilter(filter); }
};

TEST(ListLoaderTest, CountsShowWithTheLocalesGroupingBetweenEveryThreeDigits) {
  {
    LocaleGuard guard(kDotLocale);
    EXPECT_EQ(RecordCountText(0), "0");
    EXPECT_EQ(RecordCountText(999), "999");
    EXPECT_EQ(RecordCountText(1000), "1,000");
    EXPECT_EQ(RecordCountText(std::numeric_limits<int32_t>::max()), "2,147,483,647");
  }
  {
    LocaleGuard guard(kBrazilLocale);
    EXPECT_EQ(RecordCountText(100000), "100.000");
  }
  {
    LocaleGuard guard(Locale{",", "\u00a0"});  // a grouping character of two bytes
    EXPECT_EQ(RecordCountText(1200000), "1\u00a0200\u00a0000");
  }
}

TEST(ListLoaderTest, GridCellsOfMoneyAndDatesReadFromTheDatabase) {
  testing::TerminalDatabase db;
  db.Query("INSERT INTO TbTarifa (Cd_Tarifa, Ds_Tarifa, Vl_Tarifa, Cd_TipoReceita) VALUES (1, 'Embarque', 1234.5678, 1)");
  db.Query("INSERT INTO TbTarifa (Cd_Tarifa, Ds_Tarifa, Cd_TipoReceita) VALUES (2, 'Sem valor', 1)");
  db.Query("INSERT INTO TbCaixa (Cd_EmpresaUsuariaSistema, Cd_Caixa, Cd_Usuario, Dt_Abertura) "
           "VALUES (1, 1, 1, '2026-11-21 06:05:04')");
  db.Query("INSERT INTO TbCaixa (Cd_EmpresaUsuariaSistema, Cd_Caixa, Cd_Usuario) VALUES (1, 2, 1)");
  cgdCaixasDeTeste caixas;
  caixas.Ob_cgpSistema(db.session);
  ListGrid grid;
  TextBox count;
  LocaleGuard guard(kBrazilLocale);
  caixas.CarregarMSFlexGridDeBusca(grid, count);
  EXPECT_EQ(grid.Lines(), (std::vector<std::string>{"\t1\t21/11/2026 06:05:04\t1234,5678", "\t2\t\t"}));
  EXPECT_EQ(count.Text(), "2");
}

// A data manager that fills lists with options of the test's choosing, on
// the revenue types every terminal holds.
class cgdListasDeTeste : public ListCollection {
 public:
  void CarregarComboBox(ComboBox& combo, const std::string& filter, bool choose_entry, bool progress,
                        std::string_view empty_message) {
    Run("CarregarComboBox", [&] {
      SqlLines sql;
      sql << "SELECT Cd_TipoReceita, Nm_TipoReceita"
          << "FROM   TbTipoReceita";
      AddFilter(sql, filter);
      sql << "ORDER BY Cd_TipoReceita";
      ds_sql_ = sql;
      FillComboBox(combo, {.caption = "Carregando os tipos",
                           .text_column = "Nm_TipoReceita",
                           .code_column = "Cd_TipoReceita",
                           .choose_entry = choose_entry,
                           .progress = progress,
                           .empty_message = empty_message});
    });
  }
  void CarregarMSFlexGrid(FlexGrid& grid, TextControl* count, const std::vector<GridColumn>& columns,
                          bool leading_tab) {
    Run("CarregarMSFlexGrid", [&] {
      ds_sql_ = SqlLines() << "SELECT T.Cd_Tarifa, T.Ds_Tarifa, T.Vl_Tarifa, R.Nm_TipoReceita"
                           << "FROM   TbTarifa T JOIN TbTipoReceita R ON R.Cd_TipoReceita = T.Cd_TipoReceita"
                           << "ORDER BY T.Cd_Tarifa";
      FillSearchGrid(grid, count, columns, leading_tab);
    });
  }
};

using testing::Entries;
using testing::EntriesOf;

class ListOptionsTest : public ::testing::Test {
 protected:
  ListOptionsTest() {
    listas.Ob_cgpSistema(db.session);
    db.session->SetProgress(progress);
    db.session->SetMessages(messages);
    progress->Caption("antes");
  }

  testing::TerminalDatabase db;
  std::shared_ptr<SilentProgress> progress = std::make_shared<SilentProgress>();
  std::shared_ptr<SilentMessageBox> messages = std::make_shared<SilentMessageBox>();
  cgdListasDeTeste listas;
  ListComboBox combo;
};

TEST_F(ListOptionsTest, APickListMayGoWithoutTheChooseEntryAndWithoutTheProgressWindow) {
  combo.AddItem("left from before");
  listas.CarregarComboBox(combo, "", false, false, "");
  EXPECT_EQ(EntriesOf(combo), (Entries{{"EMBARQUE", 1}, {"ESTACIONAMENTO", 2}, {"SANITARIO", 3}, {"MALEX", 4}}));
  EXPECT_EQ(progress->Caption(), "antes");  // never touched
  EXPECT_EQ(progress->Percentage(), 0.0);

  listas.CarregarComboBox(combo, "Cd_TipoReceita > 2", true, true, "");
  EXPECT_EQ(EntriesOf(combo), (Entries{{"--ESCOLHA-->", 0}, {"SANITARIO", 3}, {"MALEX", 4}}));
  EXPECT_EQ(progress->Caption(), "Carregando os tipos");
  EXPECT_EQ(progress->Percentage(), 100.0);
  EXPECT_FALSE(progress->Visible());
  EXPECT_TRUE(messages->Messages().empty());
}

TEST_F(ListOptionsTest, AnEmptyListWithAMessageHoldsNenhumAndTellsThePersonAtTheScreen) {
  combo.AddItem("left from before");
  listas.CarregarComboBox(combo, "Cd_TipoReceita > 4", true, true, "Não existe nenhum tipo cadastrado");
  EXPECT_EQ(EntriesOf(combo), (Entries{{"NENHUM", 0}}));
  EXPECT_EQ(combo.NewIndex(), 0);
  ASSERT_EQ(messages->Messages().size(), 1u);
  EXPECT_EQ(messages->Messages()[0].prompt, "Não existe nenhum tipo cadastrado");
  EXPECT_EQ(messages->Messages()[0].buttons, vbInformation);
  EXPECT_FALSE(progress->Visible());

  // Without a message an empty list stays empty and nothing is said.
  listas.CarregarComboBox(combo, "Cd_TipoReceita > 4", true, true, "");
  EXPECT_EQ(combo.ListCount(), 0);
  // One row is no empty list, and two need no message either.
  listas.CarregarComboBox(combo, "Cd_TipoReceita = 4", true, true, "vazio");
  EXPECT_EQ(EntriesOf(combo), (Entries{{"MALEX", 4}}));
  listas.CarregarComboBox(combo, "Cd_TipoReceita < 3", false, true, "vazio");
  EXPECT_EQ(EntriesOf(combo), (Entries{{"EMBARQUE", 1}, {"ESTACIONAMENTO", 2}}));
  EXPECT_EQ(messages->Messages().size(), 1u);

  // A failing list says nothing: the error is the message.
  const VekError error = ErrorOf([&] { listas.CarregarComboBox(combo, "Cd_Nada = 1", true, true, "vazio"); });
  EXPECT_EQ(error.Source(), testing::ProviderSource() + " -> cgdListasDeTeste.CarregarComboBox, ");
  EXPECT_EQ(messages->Messages().size(), 1u);
  EXPECT_FALSE(progress->Visible());
}

TEST_F(ListOptionsTest, TheSessionsMessageBoxIsASilentOneUnlessTheProgramGivesItsOwn) {
  auto session = std::make_shared<cgpSistema>();
  // No screen: the safe answer.
  EXPECT_EQ(session->Messages().Show("Excluir o registro?", vbYesNo + vbQuestion, "Vek"), vbNo);
  session->SetMessages(messages);
  EXPECT_EQ(&session->Messages(), messages.get());
  session->SetMessages(nullptr);
  EXPECT_NE(&session->Messages(), messages.get());
  EXPECT_EQ(session->Messages().Show("Gravar?", vbOKCancel, ""), vbCancel);
  EXPECT_TRUE(messages->Messages().empty());
}

TEST_F(ListOptionsTest, GridColumnsComeInTheOrderGivenWithTheirPatterns) {
  db.Query("INSERT INTO TbTarifa (Cd_Tarifa, Ds_Tarifa, Vl_Tarifa, Cd_TipoReceita) "
           "VALUES (1, 'Embarque', 1234.5678, 1)");
  db.Query("INSERT INTO TbTarifa (Cd_Tarifa, Ds_Tarifa, Cd_TipoReceita) VALUES (2500, 'Sem valor', 3)");
  LocaleGuard brazil(kBrazilLocale);
  ListGrid grid;
  TextBox count;
  listas.CarregarMSFlexGrid(grid, &count,
                            {{"Nm_TipoReceita"}, {"Vl_Tarifa", "###,###,##0.00"}, {"Cd_Tarifa", "###,###,##0"}},
                            false);
  // Null through a pattern is an empty cell too.
  EXPECT_EQ(grid.Lines(), (std::vector<std::string>{"EMBARQUE	1.234,57	1", "SANITARIO		2.500"}));
  EXPECT_EQ(count.Text(), "2");

  // With the leading tab, and no count control at all.
  ListGrid tabbed;
  listas.CarregarMSFlexGrid(tabbed, nullptr, {{"Ds_Tarifa"}}, true);
  EXPECT_EQ(tabbed.Lines(), (std::vector<std::string>{"\tEmbarque", "\tSem valor"}));

  // A column the statement lacks fails before any line is written.
  ListGrid wrong;
  count.Text("antes");
  const VekError error =
      ErrorOf([&] { listas.CarregarMSFlexGrid(wrong, &count, {{"Cd_Tarifa"}, {"Nm_Inexistente"}}, false); });
  EXPECT_EQ(error.Number(), 3265);
  EXPECT_NE(error.Source().find(" -> cgdListasDeTeste.CarregarMSFlexGrid, "), std::string::npos) << error.Source();
  EXPECT_TRUE(wrong.Lines().empty());
  EXPECT_EQ(count.Text(), "antes");
}

TEST(ListLoaderTest, APostcodeFilterIsOneWhoseFirst26CharactersAreTheClause) {
  EXPECT_TRUE(cgdCaixasDeTeste::Postcode("TbCEP_TbLogradouro.Cd_EP = '74000-000'"));
  EXPECT_TRUE(cgdCaixasDeTeste::Postcode("tbcep_tblogradouro.cd_ep ="));
  EXPECT_TRUE(cgdCaixasDeTeste::Postcode("TBCEP_TBLOGRADOURO.CD_EP = Á"));
  EXPECT_FALSE(cgdCaixasDeTeste::Postcode("TbCEP_TbLogradouro.Cd_EP "));  // 25 characters
  EXPECT_FALSE(cgdCaixasDeTeste::Postcode("TbCEP_TbLogradouro.Cd_EP=='x'"));
  EXPECT_FALSE(cgdCaixasDeTeste::Postcode(" TbCEP_TbLogradouro.Cd_EP = 'x'"));
  EXPECT_FALSE(cgdCaixasDeTeste::Postcode("A.X = 1 AND TbCEP_TbLogradouro.Cd_EP = 'x'"));
  EXPECT_FALSE(cgdCaixasDeTeste::Postcode(""));
}

}  // namespace
}  // namespace vek
