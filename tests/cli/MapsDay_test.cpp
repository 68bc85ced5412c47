#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "support/DemoDay.h"
#include "support/TestSupport.h"
#include "vek/vek.h"

namespace vek {
namespace {

namespace fs = std::filesystem;

TEST(MapsDayTest, TheMapHoldsEveryBoardingOfTheDaysDeparturesAndTheApportionmentSpreadsThem) {
  testing::DemoDay day;
  const fs::path& folder = day.Folder();
  const std::string& out = day.Out();

  const std::string boarded = day.Value("SELECT SUM(Qt_EmbarquesComPassagem + Qt_EmbarquesSemPassagem) "
                                        "FROM TbViagemOnibus WHERE No_Andamento = 2");
  EXPECT_NE(boarded, "0");
  EXPECT_EQ(day.Value("SELECT SUM(Qt_Embarques) FROM TbItemMapaMovimentoED"), boarded);
  // Boardings go only to the end of a departed trip's line or a stop on its way.
  EXPECT_EQ(day.Value("SELECT COUNT(*) FROM TbItemMapaMovimentoED M WHERE M.Qt_Embarques > 0 AND NOT EXISTS ("
                      "SELECT 1 FROM TbViagemOnibus V JOIN TbHorariosLinha H ON H.Cd_HorarioLinha = V.Cd_HorarioLinha "
                      "JOIN TbLinha L ON L.Cd_Linha = V.Cd_Linha WHERE V.No_Andamento = 2 "
                      "AND H.Cd_EmpresaOnibus = M.Cd_EmpresaOnibus AND (L.Cd_CidadeDestino = M.Cd_Cidade OR EXISTS ("
                      "SELECT 1 FROM TbEscalasHorarioLinha E WHERE E.Cd_HorarioLinha = V.Cd_HorarioLinha "
                      "AND E.Cd_Cidade = M.Cd_Cidade)))"),
            "0");
  // Alightings come under the origin of each arrived or passing trip.
  EXPECT_EQ(day.Value("SELECT COUNT(*) FROM TbItemMapaMovimentoED WHERE Qt_Desembarques > 0"),
            day.Value("SELECT COUNT(*) FROM (SELECT DISTINCT H.Cd_EmpresaOnibus, L.Cd_CidadeOrigem FROM TbViagemOnibus V "
                      "JOIN TbHorariosLinha H ON H.Cd_HorarioLinha = V.Cd_HorarioLinha "
                      "JOIN TbLinha L ON L.Cd_Linha = V.Cd_Linha "
                      "WHERE V.No_Andamento IN (2, 3) AND H.Ic_TemDesembarque <> 0)"));
  EXPECT_EQ(day.Value("SELECT COUNT(*) FROM TbItemMapaMovimentoED WHERE Dt_Movimento <> '2026-03-02 00:00:00'"), "0");

  // One apportionment line per company and city boarded, with its boardings.
  EXPECT_EQ(day.Value("SELECT COUNT(*) FROM TbItemRateioMovimentoED"),
            day.Value("SELECT COUNT(*) FROM TbItemMapaMovimentoED WHERE Qt_Embarques > 0"));
  EXPECT_EQ(day.Value("SELECT SUM(Qt_Embarques) FROM TbItemRateioMovimentoED"), boarded);
  for (const char* company : {"Araguarina", "Real Expresso"}) {
    const std::string total = day.Value(std::string("SELECT SUM(R.Qt_Embarques) FROM TbItemRateioMovimentoED R "
                                                    "JOIN TbEmpresaOnibus E ON E.Cd_EmpresaOnibus = R.Cd_EmpresaOnibus "
                                                    "WHERE E.Nm_EmpresaOnibus = '") +
                                            company + "'");
    const size_t section = out.find(std::string("  ") + company + " (cgdItensRateioMovimentoED.CarregarMSFlexGrid");
    ASSERT_NE(section, std::string::npos) << out;
    EXPECT_EQ(out.find("Total: ", section), out.find("Total: " + total + "\n", section)) << company;
  }

  // The month so far in the report file of the folder: the day's boardings
  // on day 02, nothing on day 01, no field past the period.
  EXPECT_NE(out.find("  Written to " + (folder / "bdTemp.db").string() + "\n"), std::string::npos) << out;
  auto report = std::make_shared<Connection>();
  report->Open("Driver=SQLite3;Database=" + (folder / "bdTemp.db").string());
  EXPECT_EQ(testing::FirstValue(*report, "SELECT SUM(Qt_Dia02) FROM cgrMapaControleEmbarque1"), boarded);
  EXPECT_EQ(testing::FirstValue(*report, "SELECT SUM(Qt_Total) FROM cgrMapaControleEmbarque1"), boarded);
  EXPECT_EQ(testing::FirstValue(*report, "SELECT SUM(Qt_Dia01) FROM cgrMapaControleEmbarque1"), "0");
  EXPECT_EQ(testing::FirstValue(*report, "SELECT COUNT(Qt_Dia03) FROM cgrMapaControleEmbarque1"), "0");
  EXPECT_EQ(testing::FirstValue(*report, "SELECT SUM(Qt_Total) FROM cgrMapaControleDesembarque1"),
            day.Value("SELECT SUM(Qt_Desembarques) FROM TbItemMapaMovimentoED"));
}

}  // namespace
}  // namespace vek
