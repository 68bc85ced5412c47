#include <gtest/gtest.h>

#include <filesystem>
#include <sstream>
#include <string>

#include "cli/Commands.h"
#include "support/TestSupport.h"
#include "vek/vek.h"

namespace vek {
namespace {

namespace fs = std::filesystem;

std::string Value(Connection& db, const std::string& statement) {
  auto rows = db.Execute(statement);
  return rows->Eof() ? "(no row)" : CStr(rows->Fields().Item(0).Value());
}

TEST(MapsDayTest, TheMapHoldsEveryBoardingOfTheDaysDeparturesAndTheApportionmentSpreadsThem) {
  testing::ScratchApp app;
  const fs::path folder = app.Path() / "terminal";
  std::ostringstream captured;
  cli::RunDemo(folder, {}, captured);
  const std::string out = captured.str();
  auto connection = std::make_shared<Connection>();
  Connection& db = *connection;
  db.Open("Driver=SQLite3;Database=" + (folder / "Vek.db").string());

  const std::string boarded = Value(db, "SELECT SUM(Qt_EmbarquesComPassagem + Qt_EmbarquesSemPassagem) "
                                        "FROM TbViagemOnibus WHERE No_Andamento = 2");
  EXPECT_NE(boarded, "0");
  EXPECT_EQ(Value(db, "SELECT SUM(Qt_Embarques) FROM TbItemMapaMovimentoED"), boarded);
  // Boardings go only to the end of a departed trip's line or a stop on its way.
  EXPECT_EQ(Value(db, "SELECT COUNT(*) FROM TbItemMapaMovimentoED M WHERE M.Qt_Embarques > 0 AND NOT EXISTS ("
                      "SELECT 1 FROM TbViagemOnibus V JOIN TbHorariosLinha H ON H.Cd_HorarioLinha = V.Cd_HorarioLinha "
                      "JOIN TbLinha L ON L.Cd_Linha = V.Cd_Linha WHERE V.No_Andamento = 2 "
                      "AND H.Cd_EmpresaOnibus = M.Cd_EmpresaOnibus AND (L.Cd_CidadeDestino = M.Cd_Cidade OR EXISTS ("
                      "SELECT 1 FROM TbEscalasHorarioLinha E WHERE E.Cd_HorarioLinha = V.Cd_HorarioLinha "
                      "AND E.Cd_Cidade = M.Cd_Cidade)))"),
            "0");
  // Alightings come under the origin of each arrived or passing trip.
  EXPECT_EQ(Value(db, "SELECT COUNT(*) FROM TbItemMapaMovimentoED WHERE Qt_Desembarques > 0"),
            Value(db, "SELECT COUNT(*) FROM (SELECT DISTINCT H.Cd_EmpresaOnibus, L.Cd_CidadeOrigem FROM TbViagemOnibus V "
                      "JOIN TbHorariosLinha H ON H.Cd_HorarioLinha = V.Cd_HorarioLinha "
                      "JOIN TbLinha L ON L.Cd_Linha = V.Cd_Linha "
                      "WHERE V.No_Andamento IN (2, 3) AND H.Ic_TemDesembarque <> 0)"));
  EXPECT_EQ(Value(db, "SELECT COUNT(*) FROM TbItemMapaMovimentoED WHERE Dt_Movimento <> '2026-03-02 00:00:00'"), "0");

  // One apportionment line per company and city boarded, with its boardings.
  EXPECT_EQ(Value(db, "SELECT COUNT(*) FROM TbItemRateioMovimentoED"),
            Value(db, "SELECT COUNT(*) FROM TbItemMapaMovimentoED WHERE Qt_Embarques > 0"));
  EXPECT_EQ(Value(db, "SELECT SUM(Qt_Embarques) FROM TbItemRateioMovimentoED"), boarded);
  for (const char* company : {"Araguarina", "Real Expresso"}) {
    const std::string total = Value(db, std::string("SELECT SUM(R.Qt_Embarques) FROM TbItemRateioMovimentoED R "
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
  EXPECT_EQ(Value(*report, "SELECT SUM(Qt_Dia02) FROM cgrMapaControleEmbarque1"), boarded);
  EXPECT_EQ(Value(*report, "SELECT SUM(Qt_Total) FROM cgrMapaControleEmbarque1"), boarded);
  EXPECT_EQ(Value(*report, "SELECT SUM(Qt_Dia01) FROM cgrMapaControleEmbarque1"), "0");
  EXPECT_EQ(Value(*report, "SELECT COUNT(Qt_Dia03) FROM cgrMapaControleEmbarque1"), "0");
  EXPECT_EQ(Value(*report, "SELECT SUM(Qt_Total) FROM cgrMapaControleDesembarque1"),
            Value(db, "SELECT SUM(Qt_Desembarques) FROM TbItemMapaMovimentoED"));
}

}  // namespace
}  // namespace vek
