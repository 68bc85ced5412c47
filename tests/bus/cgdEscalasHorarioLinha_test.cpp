#include "vek/bus/cgdEscalasHorarioLinha.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "bus/BusTerminal.h"
#include "vek/foundation/MessageCatalogue.h"
#include "vek/platform/Controls.h"

namespace vek {
namespace {

using testing::ErrorOf;
using testing::Lines;

std::string KeyLines(int32_t tenant, int32_t line, int32_t code, int32_t city) {
  return Lines({"WHERE  Cd_EmpresaUsuariaSistema = " + std::to_string(tenant), "And Cd_Linha = " + std::to_string(line),
                "And Cd_HorarioLinha = " + std::to_string(code), "And Cd_Cidade = " + std::to_string(city)}) +
         "\r";
}

TEST(cgdEscalasHorarioLinhaTest, AStopIsKeptUnderItsFourKeys) {
  testing::BusTerminal db;
  cgdEscalasHorarioLinha escala;
  escala.Ob_cgpSistema(db.session);
  auto stop = escala.Ob_cgp();
  stop->Let("Cd_EmpresaUsuariaSistema", Variant(1));
  stop->Let("Cd_Linha", Variant(1));
  stop->Let("Cd_HorarioLinha", Variant(1));
  stop->Let("Cd_Cidade", Variant(7));
  escala.Salvar();
  EXPECT_EQ(db.statements,
            (std::vector<std::string>{"SELECT A.*\rFROM   TbEscalasHorarioLinha A\r" + KeyLines(1, 1, 1, 7) + ";\r",
                                      "SELECT A.*\rFROM   TbEscalasHorarioLinha A\r" + KeyLines(0, 0, 0, 0) + ";\r"}));
  EXPECT_FALSE(escala.temCampoSequencial());
  EXPECT_EQ(escala.Consultar(false)->Get("Cd_Cidade"), Variant(7));

  // A stop of a timetable that is not there is refused by the database.
  stop->Let("Cd_HorarioLinha", Variant(99));
  EXPECT_EQ(ErrorOf([&] { escala.Incluir(); }).Number(), static_cast<int32_t>(0x80040E2Fu));

  stop->Let("Cd_HorarioLinha", Variant(1));
  escala.Excluir();
  EXPECT_EQ(db.statements.back(), "DELETE \rFROM   TbEscalasHorarioLinha\r" + KeyLines(1, 1, 1, 7));
  EXPECT_EQ(db.Query("SELECT * FROM TbEscalasHorarioLinha")->RecordCount(), 2);
  stop->Let("Cd_Cidade", Variant(0));
  EXPECT_EQ(ErrorOf([&] { escala.Excluir(); }).Number(), kErrorNoKey);
}

TEST(cgdEscalasHorarioLinhaTest, TheGridIsLaidOutAndListsStopsByDistance) {
  testing::BusTerminal db;
  testing::LocaleGuard locale(testing::kBrazilLocale);
  db.Query("INSERT INTO TbCidade (Cd_Cidade, Nm_Cidade, Cd_UF, Sg_UF, Qt_DistanciaEmKm) VALUES (8, 'Presidente Prudente', 2, 'SP', 1050)");
  db.Query("INSERT INTO TbEscalasHorarioLinha VALUES (1, 2, 3, 8)");
  cgdEscalasHorarioLinha escala;
  escala.Ob_cgpSistema(db.session);
  ListGrid grid;
  grid.AddItem("left from before");
  const std::string filter = "A.Cd_EmpresaUsuariaSistema = 1 And A.Cd_Linha = 2 And A.Cd_HorarioLinha = 3";
  escala.CarregarMSFlexGrid(grid, filter);
  EXPECT_EQ(db.statements.back(),
            Lines({"SELECT   A.Cd_Cidade,", "B.Nm_Cidade,", "B.Sg_Uf,", "B.Qt_DistanciaEmKm",
                   "FROM     TbEscalasHorarioLinha A", "Inner Join TbCidade B On A.Cd_Cidade = B.Cd_Cidade",
                   "WHERE " + filter, "ORDER BY B.Qt_DistanciaEmKm,", "B.Nm_Cidade"}) +
                "\r");
  EXPECT_EQ(grid.FormatString(), "<|<Codigo|<Cidade|Distancia");
  EXPECT_EQ(grid.ColWidths(), (std::map<int32_t, int32_t>{{1, 600}, {2, 2700}, {3, 800}}));
  EXPECT_EQ(grid.Lines(), (std::vector<std::string>{"\t3\tUberlândia / MG\t330", "\t7\tCampinas / SP\t800",
                                                    "\t8\tPresidente Prudente / SP\t1.050"}));
  const VekError bad = ErrorOf([&] { escala.CarregarMSFlexGrid(grid, "A.Cd_Linha ="); });
  EXPECT_EQ(bad.Source(), testing::ProviderSource() + " -> cgdEscalasHorarioLinha.CarregarMSFlexGrid, ");
}

}  // namespace
}  // namespace vek
