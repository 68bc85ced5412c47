#include "vek/registry/cgdBairros.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "support/RecordingControls.h"
#include "support/TerminalDatabase.h"
#include "vek/platform/Controls.h"

namespace vek {
namespace {

using testing::ErrorOf;
using testing::RecordingProgress;

const std::string kPostcodeStatementStart =
    "SELECT TbBairro.CD_BAIRRO,\r"
    "       TbBairro.NM_BAIRRO\r"
    "FROM   TBCEP_TbLogradouro\r"
    "       JOIN TbLogradouro ON TBCEP_TbLogradouro.CD_LOGRADOURO = TbLogradouro.CD_LOGRADOURO\r"
    "       JOIN TbCidade ON TbLogradouro.Cd_Cidade = TbCidade.CD_CIDADE\r"
    "       JOIN TbBairro ON TbCidade.CD_CIDADE = TbBairro.CD_CIDADE\r";

std::string PostcodeStatement(const std::string& filter) {
  return kPostcodeStatementStart + "WHERE  " + filter + "\rORDER BY TbBairro.Nm_Bairro\r";
}

std::string GridStatement(const std::string& where_line) {
  return "SELECT   A.Cd_Bairro,\r"
         "         A.Nm_Bairro,\r"
         "         B.Nm_Cidade,\r"
         "         B.Sg_UF\r"
         "FROM     TbBairro A\r"
         "                Join TbCidade B On A.Cd_Cidade = B.Cd_Cidade\r" +
         where_line +
         "ORDER BY A.Nm_Bairro,\r"
         "         B.Nm_Cidade\r"
         ";\r";
}

// Goiânia has four neighbourhoods and the postcode 74000-000; Brasília has
// one and the postcode 70000-000; 79000-000 is a street of a city without
// neighbourhoods.
class cgdBairrosTest : public ::testing::Test {
 protected:
  cgdBairrosTest() {
    bairros.Ob_cgpSistema(db.session);
    db.session->SetProgress(progress);
    db.Query("INSERT INTO TbUF (Cd_UF, Nm_UF, Sg_UF) VALUES (9, 'Goiás', 'GO')");
    db.Query("INSERT INTO TbUF (Cd_UF, Nm_UF, Sg_UF) VALUES (7, 'Distrito Federal', 'DF')");
    db.Query("INSERT INTO TbCidade (Cd_Cidade, Nm_Cidade, Cd_UF, Sg_UF) VALUES (3, 'Goiânia', 9, 'GO')");
    db.Query("INSERT INTO TbCidade (Cd_Cidade, Nm_Cidade, Cd_UF, Sg_UF) VALUES (4, 'Brasília', 7, 'DF')");
    db.Query("INSERT INTO TbCidade (Cd_Cidade, Nm_Cidade) VALUES (10, 'Sem Bairros')");
    db.Query("INSERT INTO TbLogradouro (Cd_Logradouro, Nm_Logradouro, Cd_Cidade) VALUES (20, 'Avenida Goiás', 3)");
    db.Query("INSERT INTO TbLogradouro (Cd_Logradouro, Nm_Logradouro, Cd_Cidade) VALUES (21, 'Eixo Monumental', 4)");
    db.Query("INSERT INTO TbLogradouro (Cd_Logradouro, Nm_Logradouro, Cd_Cidade) VALUES (22, 'Rua Única', 10)");
    db.Query("INSERT INTO TbCEP_TbLogradouro (Cd_Logradouro, Cd_EP) VALUES (20, '74000-000')");
    db.Query("INSERT INTO TbCEP_TbLogradouro (Cd_Logradouro, Cd_EP) VALUES (21, '70000-000')");
    db.Query("INSERT INTO TbCEP_TbLogradouro (Cd_Logradouro, Cd_EP) VALUES (22, '79000-000')");
    db.Query("INSERT INTO TbBairro (Cd_Bairro, Nm_Bairro, Cd_Cidade) VALUES (1, 'Centro', 3)");
    db.Query("INSERT INTO TbBairro (Cd_Bairro, Nm_Bairro, Cd_Cidade) VALUES (2, 'Setor Oeste', 3)");
    db.Query("INSERT INTO TbBairro (Cd_Bairro, Nm_Bairro, Cd_Cidade) VALUES (5, 'Água Branca', 3)");
    db.Query("INSERT INTO TbBairro (Cd_Bairro, Nm_Bairro, Cd_Cidade) VALUES (6, 'setor aeroporto', 3)");
    db.Query("INSERT INTO TbBairro (Cd_Bairro, Nm_Bairro, Cd_Cidade) VALUES (8, 'Asa Sul', 4)");
  }

  testing::Entries ComboEntries() const { return testing::EntriesOf(combo); }

  testing::TerminalDatabase db;
  std::shared_ptr<RecordingProgress> progress = std::make_shared<RecordingProgress>();
  cgdBairros bairros;
  ListComboBox combo;
};

using testing::Entries;

TEST_F(cgdBairrosTest, APostcodeListsItsCitysNeighbourhoodsAfterTheChooseEntry) {
  combo.AddItem("left from before");
  const std::string filter = "TbCEP_TbLogradouro.Cd_EP = '74000-000'";
  bairros.CarregarComboBox(combo, filter);
  // Accented names sort beside their base letter, and case is ignored.
  EXPECT_EQ(ComboEntries(), (Entries{{"--ESCOLHA-->", 0}, {"Água Branca", 5}, {"Centro", 1},
                                {"setor aeroporto", 6}, {"Setor Oeste", 2}}));
  ASSERT_EQ(db.statements.size(), 1u);
  EXPECT_EQ(db.statements[0], PostcodeStatement(filter));

  EXPECT_EQ(progress->calls, (std::vector<std::string>{"Show Carregando os bairros", "Close"}));
  EXPECT_EQ(progress->steps, (std::vector<double>{0.0, 25.0, 50.0, 75.0, 100.0}));
  EXPECT_FALSE(progress->Visible());
}

TEST_F(cgdBairrosTest, OneRowStandsAloneAndNoRowLeavesTheListEmpty) {
  bairros.CarregarComboBox(combo, "TbCEP_TbLogradouro.Cd_EP = '70000-000'");
  EXPECT_EQ(ComboEntries(), (Entries{{"Asa Sul", 8}}));

  combo.AddItem("left from before");
  bairros.CarregarComboBox(combo, "TbCEP_TbLogradouro.Cd_EP = '79000-000'");
  EXPECT_EQ(combo.ListCount(), 0);
  bairros.CarregarComboBox(combo, "TbCEP_TbLogradouro.Cd_EP = '00000-000'");
  EXPECT_EQ(combo.ListCount(), 0);
  EXPECT_EQ(progress->calls.size(), 6u);  // every load shows and closes the window
  EXPECT_EQ(progress->calls.back(), "Close");
}

TEST_F(cgdBairrosTest, OnlyAFilterThatStartsWithThePostcodeClauseJoinsThePostcodes) {
  // Which filters start with the clause is the list loader's to say; the
  // loader follows it, in any case.
  const std::string lower = "tbcep_tblogradouro.cd_ep = '74000-000'";
  bairros.CarregarComboBox(combo, lower);
  EXPECT_EQ(db.statements.back(), PostcodeStatement(lower));
  EXPECT_EQ(combo.ListCount(), 5);
  const std::string later = "A.Cd_Cidade = 3 AND TbCEP_TbLogradouro.Cd_EP = '74000-000'";
  ErrorOf([&] { bairros.CarregarComboBox(combo, later); });
  EXPECT_EQ(db.statements.back(),
            "SELECT   TbBairro.*\rFROM     TbBairro A\rWHERE " + later + "\rORDER BY TbBairro.Nm_Bairro\r;\r");
}

TEST_F(cgdBairrosTest, ThePlainListNamesTheTableThatItsFromClauseAliases) {
  // The table's own name stands for its alias A, as it did on SQL Server 2000.
  combo.AddItem("left from before");
  bairros.CarregarComboBox(combo);
  EXPECT_EQ(db.statements.back(), "SELECT   TbBairro.*\rFROM     TbBairro A\rORDER BY TbBairro.Nm_Bairro\r;\r");
  EXPECT_EQ(ComboEntries(), (Entries{{"--ESCOLHA-->", 0}, {"Água Branca", 5}, {"Asa Sul", 8}, {"Centro", 1},
                                {"setor aeroporto", 6}, {"Setor Oeste", 2}}));
  EXPECT_EQ(progress->calls, (std::vector<std::string>{"Show Carregando os bairros", "Close"}));
  EXPECT_EQ(progress->steps.back(), 100.0);

  // A filter may name the table or its alias.
  bairros.CarregarComboBox(combo, "TbBairro.Cd_Cidade = 4");
  EXPECT_EQ(db.statements.back(),
            "SELECT   TbBairro.*\rFROM     TbBairro A\rWHERE TbBairro.Cd_Cidade = 4\rORDER BY TbBairro.Nm_Bairro\r;\r");
  EXPECT_EQ(ComboEntries(), (Entries{{"Asa Sul", 8}}));
  bairros.CarregarComboBox(combo, "A.Cd_Cidade = 3 AND tbbairro.Nm_Bairro LIKE 'setor%'");
  EXPECT_EQ(ComboEntries(), (Entries{{"--ESCOLHA-->", 0}, {"setor aeroporto", 6}, {"Setor Oeste", 2}}));
}

TEST_F(cgdBairrosTest, ABadFilterFailsWithTheDatabasesErrorAndTheLoadersLink) {
  const VekError combo_error =
      ErrorOf([&] { bairros.CarregarComboBox(combo, "TbCEP_TbLogradouro.Cd_EP = = '74000-000'"); });
  EXPECT_EQ(combo_error.Number(), static_cast<int32_t>(0x80040E14u));
  EXPECT_NE(combo_error.Description().find("syntax error"), std::string::npos) << combo_error.Description();
  EXPECT_EQ(combo_error.Source(), testing::ProviderSource() + " -> cgdBairros.CarregarComboBox, ");
  EXPECT_FALSE(progress->Visible());
  EXPECT_EQ(progress->calls.back(), "Close");

  ListGrid grid;
  TextBox count("antes");
  const VekError grid_error =
      ErrorOf([&] { bairros.CarregarMSFlexGridDeBusca(grid, count, "A.Cd_Inexistente = 1"); });
  EXPECT_EQ(grid_error.Source(), testing::ProviderSource() + " -> cgdBairros.CarregarMSFlexGridDeBusca, ");
  EXPECT_NE(grid_error.Description().find(testing::NameInMessage("Cd_Inexistente")), std::string::npos) << grid_error.Description();
  EXPECT_TRUE(grid.Lines().empty());
  EXPECT_EQ(count.Text(), "antes");

  cgdBairros without_session;
  EXPECT_EQ(ErrorOf([&] { without_session.CarregarComboBox(combo); }).Source(),
            " -> cgdBairros.CarregarComboBox, ");
}

TEST_F(cgdBairrosTest, TheGridGetsOneTabbedLinePerRowWithNullsAsEmptyCells) {
  db.Query("INSERT INTO TbCidade (Cd_Cidade, Nm_Cidade) VALUES (11, 'Sem UF')");
  db.Query("INSERT INTO TbBairro (Cd_Bairro, Nm_Bairro, Cd_Cidade) VALUES (12, 'Vila Nula', 11)");
  db.Query("INSERT INTO TbBairro (Cd_Bairro, Nm_Bairro) VALUES (13, 'Sem Cidade')");  // joins nothing
  ListGrid grid;
  grid.AddItem("\tlinha do formulário");
  TextBox count;
  bairros.CarregarMSFlexGridDeBusca(grid, count);
  EXPECT_EQ(grid.Lines(), (std::vector<std::string>{
                              "\tlinha do formulário",  // the loader does not clear the grid
                              "\t5\tÁgua Branca\tGoiânia\tGO",
                              "\t8\tAsa Sul\tBrasília\tDF",
                              "\t1\tCentro\tGoiânia\tGO",
                              "\t6\tsetor aeroporto\tGoiânia\tGO",
                              "\t2\tSetor Oeste\tGoiânia\tGO",
                              "\t12\tVila Nula\tSem UF\t",
                          }));
  EXPECT_EQ(count.Text(), "6");
  EXPECT_EQ(db.statements.back(), GridStatement(""));
  EXPECT_TRUE(progress->calls.empty());

  ListGrid filtered;
  bairros.CarregarMSFlexGridDeBusca(filtered, count, "B.Sg_UF = 'DF'");
  EXPECT_EQ(filtered.Lines(), (std::vector<std::string>{"\t8\tAsa Sul\tBrasília\tDF"}));
  EXPECT_EQ(count.Text(), "1");
  EXPECT_EQ(db.statements.back(), GridStatement("WHERE B.Sg_UF = 'DF'\r"));

  ListGrid none;
  bairros.CarregarMSFlexGridDeBusca(none, count, "A.Cd_Cidade = 10");
  EXPECT_TRUE(none.Lines().empty());
  EXPECT_EQ(count.Text(), "0");
}

TEST_F(cgdBairrosTest, TheGridCountUsesTheLocalesGrouping) {
  db.Query(
      "WITH n (i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 1234) "
      "INSERT INTO TbBairro (Nm_Bairro, Cd_Cidade) SELECT 'Lote ' + CAST(i AS VARCHAR(10)), 4 FROM n");
  ListGrid grid;
  TextBox count;
  testing::LocaleGuard brazil(testing::kBrazilLocale);
  bairros.CarregarMSFlexGridDeBusca(grid, count, "A.Cd_Cidade = 4");
  EXPECT_EQ(count.Text(), "1.235");
  EXPECT_EQ(grid.Lines().size(), 1235u);
  EXPECT_EQ(grid.Lines().front(), "\t8\tAsa Sul\tBrasília\tDF");
}

}  // namespace
}  // namespace vek
