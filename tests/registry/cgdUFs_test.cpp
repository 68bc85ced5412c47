#include "vek/registry/cgdUFs.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "support/RecordingControls.h"
#include "support/TerminalDatabase.h"
#include "vek/platform/Controls.h"

namespace vek {
namespace {

using testing::Entries;
using testing::EntriesOf;

using testing::ErrorOf;

const std::string kPlainStart = "SELECT A.*\rFROM   TbUF A\r";
const std::string kPlainEnd = "ORDER BY A.Nm_UF\r;\r";

std::string PostcodeStatement(const std::string& filter) {
  return "SELECT   D.CD_UF,\r"
         "         D.NM_UF,\r"
         "         D.SG_UF\r"
         "FROM     TBCEP_TbLogradouro A JOIN TbLogradouro B ON A.CD_LOGRADOURO = B.CD_LOGRADOURO\r"
         "                              JOIN TbCidade C ON B.CD_CIDADE = C.CD_CIDADE\r"
         "                              JOIN TBUF D ON C.SG_UF = D.SG_UF\r"
         "WHERE " + filter + "\r"
         "ORDER BY D.NM_UF;\r";
}

class cgdUFsTest : public ::testing::Test {
 protected:
  cgdUFsTest() {
    ufs.Ob_cgpSistema(db.session);
    db.session->SetProgress(progress);
  }

  // Three states whose name order (MA, MT, MG) is not their abbreviation
  // order, and a postcode in Mato Grosso.
  void AddStates() {
    db.Query("INSERT INTO TbUF (Cd_UF, Nm_UF, Sg_UF) VALUES (11, 'Minas Gerais', 'MG')");
    db.Query("INSERT INTO TbUF (Cd_UF, Nm_UF, Sg_UF) VALUES (12, 'Maranhão', 'MA')");
    db.Query("INSERT INTO TbUF (Cd_UF, Nm_UF, Sg_UF) VALUES (13, 'Mato Grosso', 'MT')");
    db.Query("INSERT INTO TbCidade (Cd_Cidade, Nm_Cidade, Cd_UF, Sg_UF) VALUES (3, 'Cuiabá', 13, 'MT')");
    db.Query("INSERT INTO TbLogradouro (Cd_Logradouro, Nm_Logradouro, Cd_Cidade) VALUES (20, 'Avenida do CPA', 3)");
    db.Query("INSERT INTO TbCEP_TbLogradouro (Cd_Logradouro, Cd_EP) VALUES (20, '78000-000')");
  }

  testing::TerminalDatabase db;
  std::shared_ptr<SilentProgress> progress = std::make_shared<SilentProgress>();
  cgdUFs ufs;
  ListComboBox combo;
};

TEST_F(cgdUFsTest, NoStateLeavesTheListEmptyAndOneStateStandsAlone) {
  combo.AddItem("left from before");
  ufs.CarregarComboBox(combo);
  EXPECT_EQ(combo.ListCount(), 0);
  EXPECT_EQ(progress->Caption(), "Carregando as UFs");
  EXPECT_FALSE(progress->Visible());
  ASSERT_EQ(db.statements.size(), 1u);
  EXPECT_EQ(db.statements[0], kPlainStart + kPlainEnd);

  db.Query("INSERT INTO TbUF (Cd_UF, Nm_UF, Sg_UF) VALUES (9, 'Goiás', 'GO')");
  ufs.CarregarComboBox(combo);
  EXPECT_EQ(EntriesOf(combo), (Entries{{"Goiás", 9}}));
  ufs.CarregarComboBoxSomenteSigla(combo);
  EXPECT_EQ(EntriesOf(combo), (Entries{{"GO", 9}}));
}

TEST_F(cgdUFsTest, SeveralStatesComeInNameOrderAfterTheChooseEntry) {
  AddStates();
  ufs.CarregarComboBox(combo);
  EXPECT_EQ(EntriesOf(combo), (Entries{{"--ESCOLHA-->", 0}, {"Maranhão", 12}, {"Mato Grosso", 13},
                                       {"Minas Gerais", 11}}));
  ufs.CarregarComboBoxSomenteSigla(combo);
  EXPECT_EQ(EntriesOf(combo), (Entries{{"--ESCOLHA-->", 0}, {"MA", 12}, {"MT", 13}, {"MG", 11}}));
  EXPECT_EQ(db.statements.back(), kPlainStart + kPlainEnd);
  EXPECT_DOUBLE_EQ(progress->Percentage(), 100.0);

  ufs.CarregarComboBoxSomenteSigla(combo, "A.Sg_UF LIKE 'M%' AND A.Cd_UF > 11");
  EXPECT_EQ(EntriesOf(combo), (Entries{{"--ESCOLHA-->", 0}, {"MA", 12}, {"MT", 13}}));
  EXPECT_EQ(db.statements.back(), kPlainStart + "WHERE A.Sg_UF LIKE 'M%' AND A.Cd_UF > 11\r" + kPlainEnd);
}

TEST_F(cgdUFsTest, APostcodeFilterInAnyCaseSelectsThePostcodeStatement) {
  AddStates();
  // The statement gives the postcode table the alias A while the filter
  // names the table itself, which stands for A as on SQL Server 2000.
  const std::string filter = "tbcep_tblogradouro.cd_ep = '78000-000'";
  combo.AddItem("left from before");
  ufs.CarregarComboBox(combo, filter);
  EXPECT_EQ(db.statements.back(), PostcodeStatement(filter));
  EXPECT_EQ(EntriesOf(combo), (Entries{{"Mato Grosso", 13}}));
  ufs.CarregarComboBoxSomenteSigla(combo, filter);
  EXPECT_EQ(db.statements.back(), PostcodeStatement(filter));
  EXPECT_EQ(EntriesOf(combo), (Entries{{"MT", 13}}));
  // A second street of the postcode in another state lists both states.
  db.Query("INSERT INTO TbCidade (Cd_Cidade, Nm_Cidade, Cd_UF, Sg_UF) VALUES (4, 'Uberaba', 11, 'MG')");
  db.Query("INSERT INTO TbLogradouro (Cd_Logradouro, Nm_Logradouro, Cd_Cidade) VALUES (21, 'Rua Um', 4)");
  db.Query("INSERT INTO TbCEP_TbLogradouro (Cd_Logradouro, Cd_EP) VALUES (21, '78000-000')");
  ufs.CarregarComboBox(combo, "TbCEP_TbLogradouro.Cd_EP = '78000-000'");
  EXPECT_EQ(EntriesOf(combo), (Entries{{"--ESCOLHA-->", 0}, {"Mato Grosso", 13}, {"Minas Gerais", 11}}));
  ufs.CarregarComboBox(combo, "TbCEP_TbLogradouro.Cd_EP = '01000-000'");
  EXPECT_EQ(combo.ListCount(), 0);
  // The clause further on is an ordinary filter on TbUF A.
  const std::string later = "A.Cd_UF = 13 OR A.Cd_UF IN (SELECT Cd_Logradouro FROM TbCEP_TbLogradouro "
                            "WHERE TbCEP_TbLogradouro.Cd_EP = '78000-000')";
  ufs.CarregarComboBox(combo, later);
  EXPECT_EQ(db.statements.back(), kPlainStart + "WHERE " + later + "\r" + kPlainEnd);
  EXPECT_EQ(EntriesOf(combo), (Entries{{"Mato Grosso", 13}}));
}

TEST_F(cgdUFsTest, EveryLoaderReportsABadFilterUnderTheNameItHasAlwaysUsed) {
  AddStates();
  combo.AddItem("left from before");
  const VekError list = ErrorOf([&] { ufs.CarregarComboBox(combo, "A.Nm_UF = = 'x'"); });
  EXPECT_EQ(list.Number(), static_cast<int32_t>(0x80040E14u));
  EXPECT_EQ(list.Source(), testing::ProviderSource() + " -> cgdUFs.CarregarComboBox, ");
  EXPECT_EQ(combo.ListCount(), 0);
  EXPECT_FALSE(progress->Visible());

  const VekError abbreviations = ErrorOf([&] { ufs.CarregarComboBoxSomenteSigla(combo, "A.Nm_UF = = 'x'"); });
  EXPECT_EQ(abbreviations.Number(), list.Number());
  EXPECT_EQ(abbreviations.Description(), list.Description());
  EXPECT_EQ(abbreviations.Source(), testing::ProviderSource() + " -> cgdUFs.CarregarComboBox, ");

  ListGrid grid;
  TextBox count;
  EXPECT_EQ(ErrorOf([&] { ufs.CarregarMSFlexGridDeBusca(grid, count, "A.Nm_UF = = 'x'"); }).Source(),
            testing::ProviderSource() + " -> cgdUFs.CarregarMSFlexGridDeBusca, ");
}

TEST_F(cgdUFsTest, TheGridShowsAbbreviationAndNameAfterTheFixedCell) {
  ListGrid grid;
  TextBox count("antes");
  ufs.CarregarMSFlexGridDeBusca(grid, count);
  EXPECT_TRUE(grid.Lines().empty());
  EXPECT_EQ(count.Text(), "0");
  EXPECT_EQ(db.statements.back(), "SELECT   A.Sg_UF,\r         A.Nm_UF\rFROM     TbUF A\rORDER BY A.Nm_UF\r;\r");

  AddStates();
  db.Query("INSERT INTO TbUF (Cd_UF, Nm_UF) VALUES (14, 'Sem Sigla')");
  ufs.CarregarMSFlexGridDeBusca(grid, count);
  EXPECT_EQ(grid.Lines(), (std::vector<std::string>{"\tMA\tMaranhão", "\tMT\tMato Grosso", "\tMG\tMinas Gerais",
                                                    "\t\tSem Sigla"}));
  EXPECT_EQ(count.Text(), "4");

  ufs.CarregarMSFlexGridDeBusca(grid, count, "A.Sg_UF = 'MG'");
  EXPECT_EQ(grid.Lines().size(), 5u);  // added to what the grid held
  EXPECT_EQ(grid.Lines().back(), "\tMG\tMinas Gerais");
  EXPECT_EQ(count.Text(), "1");
  EXPECT_EQ(db.statements.back(),
            "SELECT   A.Sg_UF,\r         A.Nm_UF\rFROM     TbUF A\rWHERE A.Sg_UF = 'MG'\rORDER BY A.Nm_UF\r;\r");
}

}  // namespace
}  // namespace vek
