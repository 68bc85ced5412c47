#include "vek/registry/cgdCidades.h"

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

std::string PostcodeStatement(const std::string& filter) {
  return "SELECT   C.CD_CIDADE,\r"
         "         C.NM_CIDADE\r"
         "FROM     TBCEP_TbLogradouro A JOIN TbLogradouro B ON A.CD_LOGRADOURO = B.CD_LOGRADOURO\r"
         "                              JOIN TbCidade C ON B.CD_CIDADE = C.CD_CIDADE\r"
         "WHERE " + filter + "\r"
         "ORDER BY C.NM_CIDADE;\r";
}

std::string GridStatement(const std::string& where_line) {
  return "SELECT   A.Cd_Cidade,\r"
         "         A.Nm_Cidade,\r"
         "         A.Sg_UF,\r"
         "         A.Qt_DistanciaEmKm\r"
         "FROM     TbCidade A\r" +
         where_line +
         "ORDER BY A.Nm_Cidade,\r"
         "         A.Sg_UF\r"
         ";\r";
}

// Two cities share a name in two states; one city has neither state nor distance.
class cgdCidadesTest : public ::testing::Test {
 protected:
  cgdCidadesTest() {
    cidades.Ob_cgpSistema(db.session);
    db.session->SetProgress(progress);
    db.Query("INSERT INTO TbUF (Cd_UF, Nm_UF, Sg_UF) VALUES (9, 'Goiás', 'GO')");
    db.Query("INSERT INTO TbUF (Cd_UF, Nm_UF, Sg_UF) VALUES (5, 'Piauí', 'PI')");
    db.Query("INSERT INTO TbCidade (Cd_Cidade, Nm_Cidade, Cd_UF, Sg_UF, Qt_DistanciaEmKm) VALUES (3, 'Goiânia', 9, 'GO', 0)");
    db.Query("INSERT INTO TbCidade (Cd_Cidade, Nm_Cidade, Cd_UF, Sg_UF, Qt_DistanciaEmKm) VALUES (4, 'Bom Jesus', 5, 'PI', 1650)");
    db.Query("INSERT INTO TbCidade (Cd_Cidade, Nm_Cidade, Cd_UF, Sg_UF, Qt_DistanciaEmKm) VALUES (6, 'Bom Jesus', 9, 'GO', 210)");
    db.Query("INSERT INTO TbCidade (Cd_Cidade, Nm_Cidade) VALUES (8, 'Anápolis')");
    db.Query("INSERT INTO TbLogradouro (Cd_Logradouro, Nm_Logradouro, Cd_Cidade) VALUES (20, 'Avenida Goiás', 3)");
    db.Query("INSERT INTO TbLogradouro (Cd_Logradouro, Nm_Logradouro, Cd_Cidade) VALUES (21, 'Rua do Comércio', 6)");
    db.Query("INSERT INTO TbCEP_TbLogradouro (Cd_Logradouro, Cd_EP) VALUES (20, '74000-000')");
    db.Query("INSERT INTO TbCEP_TbLogradouro (Cd_Logradouro, Cd_EP) VALUES (21, '75000-000')");
    db.Query("INSERT INTO TbCEP_TbLogradouro (Cd_Logradouro, Cd_EP) VALUES (20, '75000-000')");
  }

  testing::TerminalDatabase db;
  std::shared_ptr<testing::RecordingProgress> progress = std::make_shared<testing::RecordingProgress>();
  cgdCidades cidades;
  ListComboBox combo;
};

TEST_F(cgdCidadesTest, APostcodeFilterListsTheCitiesOfItsStreets) {
  const std::string filter = "TbCEP_TbLogradouro.Cd_EP = '74000-000'";
  cidades.CarregarComboBox(combo, filter);
  EXPECT_EQ(db.statements, std::vector<std::string>{PostcodeStatement(filter)});
  EXPECT_EQ(testing::EntriesOf(combo), (Entries{{"Goiânia", 3}}));

  // The clause is recognised in any case.
  const std::string shared = "TBCEP_TBLOGRADOURO.CD_EP = '75000-000'";
  cidades.CarregarComboBox(combo, shared);
  EXPECT_EQ(db.statements.back(), PostcodeStatement(shared));
  EXPECT_EQ(testing::EntriesOf(combo), (Entries{{"--ESCOLHA-->", 0}, {"Bom Jesus", 6}, {"Goiânia", 3}}));
  EXPECT_EQ(progress->calls,
            (std::vector<std::string>{"Show Carregando as cidades", "Close", "Show Carregando as cidades", "Close"}));

  cidades.CarregarComboBox(combo, "TbCEP_TbLogradouro.Cd_EP = '00000-000'");
  EXPECT_EQ(combo.ListCount(), 0);
}

TEST_F(cgdCidadesTest, TheGridShowsStateAndDistanceInNameThenStateOrder) {
  ListGrid grid;
  TextBox count;
  cidades.CarregarMSFlexGridDeBusca(grid, count);
  EXPECT_EQ(db.statements, std::vector<std::string>{GridStatement("")});
  EXPECT_EQ(grid.Lines(), (std::vector<std::string>{"\t8\tAnápolis\t\t", "\t6\tBom Jesus\tGO\t210",
                                                    "\t4\tBom Jesus\tPI\t1650", "\t3\tGoiânia\tGO\t0"}));
  EXPECT_EQ(count.Text(), "4");
  EXPECT_TRUE(progress->calls.empty());

  ListGrid filtered;
  cidades.CarregarMSFlexGridDeBusca(filtered, count, "A.Sg_UF = 'PI'");
  EXPECT_EQ(db.statements.back(), GridStatement("WHERE A.Sg_UF = 'PI'\r"));
  EXPECT_EQ(filtered.Lines(), std::vector<std::string>{"\t4\tBom Jesus\tPI\t1650"});
  EXPECT_EQ(count.Text(), "1");

  const VekError error = testing::ErrorOf([&] { cidades.CarregarMSFlexGridDeBusca(filtered, count, "A.Sg_UF = = 'PI'"); });
  EXPECT_EQ(error.Number(), static_cast<int32_t>(0x80040E14u));
  EXPECT_EQ(error.Source(), testing::ProviderSource() + " -> cgdCidades.CarregarMSFlexGridDeBusca, ");
  EXPECT_EQ(filtered.Lines().size(), 1u);
}

}  // namespace
}  // namespace vek
