#include "vek/bus/cgdLinha.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "bus/BusTerminal.h"
#include "vek/bus/cgdLinhas.h"
#include "vek/foundation/MessageCatalogue.h"
#include "vek/platform/Controls.h"

namespace vek {
namespace {

using testing::ErrorOf;

std::string Grid(const std::string& where_line) {
  return "SELECT   A.Cd_Linha,\rB.Nm_Cidade as Nm_CidadeOrigem,\rC.Nm_Cidade as Nm_CidadeDestino\r"
         "FROM     TbLinha A\rJoin TbCidade B On A.Cd_CidadeOrigem = B.Cd_Cidade\r"
         "Join TbCidade C On A.Cd_CidadeDestino = C.Cd_Cidade\r" +
         where_line + "ORDER BY B.Nm_Cidade,\rC.Nm_Cidade\r;\r";
}

TEST(cgdLinhaTest, ALineIsNumberedAndItsDeleteLeavesTimetablesToTheDatabase) {
  testing::BusTerminal db;
  cgdLinha linha;
  linha.Ob_cgpSistema(db.session);
  linha.Ob_cgp()->Let("Cd_CidadeOrigem", Variant(1));
  linha.Ob_cgp()->Let("Cd_CidadeDestino", Variant(7));
  linha.Salvar();
  EXPECT_EQ(db.statements, std::vector<std::string>{"SELECT A.*\rFROM   TbLinha A\rWHERE  A.Cd_Linha = 0\r;\r"});
  EXPECT_EQ(CLng(linha.Ob_cgp()->Get("Cd_Linha")), 5);
  EXPECT_EQ(linha.nomeCamposSequencial(), std::vector<std::string>{"Cd_Linha"});
  EXPECT_TRUE(linha.temCampoSequencial());

  linha.Ob_cgp()->Let("Cd_CidadeDestino", Variant(3));
  linha.Alterar();
  EXPECT_EQ(db.statements.back(), "SELECT A.*\rFROM   TbLinha A\rWHERE  A.Cd_Linha = 5\r;\r");
  EXPECT_EQ(db.Column("SELECT Cd_CidadeDestino FROM TbLinha WHERE Cd_Linha = 5", "Cd_CidadeDestino"),
            std::vector<std::string>{"3"});

  linha.Excluir();
  EXPECT_EQ(db.statements.back(), "DELETE \rFROM   TbLinha\rWHERE  Cd_Linha = 5\r");
  EXPECT_EQ(CLng(linha.Consultar()->Get("Cd_CidadeOrigem")), 0);

  // Line 1 has timetables: the delete fails and leaves them.
  linha.Ob_cgp()->Let("Cd_Linha", Variant(1));
  const VekError refused = ErrorOf([&] { linha.Excluir(); });
  EXPECT_EQ(refused.Number(), static_cast<int32_t>(0x80040E2Fu));
  EXPECT_EQ(refused.Source(), testing::ProviderSource() + " -> cgdLinha.Excluir, ");
  EXPECT_EQ(db.Query("SELECT * FROM TbHorariosLinha WHERE Cd_Linha = 1")->RecordCount(), 3);
  // A city that is not there is refused too.
  linha.Ob_cgp()->Let("Cd_Linha", Variant(0));
  linha.Ob_cgp()->Let("Cd_CidadeDestino", Variant(99));
  EXPECT_EQ(ErrorOf([&] { linha.Salvar(); }).Number(), static_cast<int32_t>(0x80040E2Fu));
}

TEST(cgdLinhasTest, TheSearchGridListsLinesByOriginThenDestination) {
  testing::BusTerminal db;
  cgdLinhas linhas;
  linhas.Ob_cgpSistema(db.session);
  ListGrid grid;
  TextBox count;
  linhas.CarregarMSFlexGridDeBusca(grid, count);
  EXPECT_EQ(db.statements.back(), Grid(""));
  EXPECT_EQ(grid.Lines(), (std::vector<std::string>{"\t3\tAnápolis\tGoiânia", "\t2\tGoiânia\tSanta Bárbara d'Oeste",
                                                    "\t1\tGoiânia\tSão Paulo", "\t4\tOlhos-d'Água\tGoiânia"}));
  EXPECT_EQ(count.Text(), "4");

  linhas.CarregarMSFlexGridDeBusca(grid, count, "C.Sg_UF = 'SP'");
  EXPECT_EQ(db.statements.back(), Grid("WHERE C.Sg_UF = 'SP'\r"));
  EXPECT_EQ(count.Text(), "2");
  EXPECT_EQ(grid.Lines().size(), 6u);  // the grid is not cleared

  const VekError bad = ErrorOf([&] { linhas.CarregarMSFlexGridDeBusca(grid, count, "X."); });
  EXPECT_EQ(bad.Source(), testing::ProviderSource() + " -> cgdLinhas.CarregarMSFlexGridDeBusca, ");
}

}  // namespace
}  // namespace vek
