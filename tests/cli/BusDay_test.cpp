#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "support/DemoDay.h"
#include "support/TestSupport.h"
#include "vek/vek.h"

namespace vek {
namespace {

namespace fs = std::filesystem;

// The text of the output between two step headings.
std::string Section(const std::string& out, const std::string& from, const std::string& to) {
  const size_t start = out.find(from);
  const size_t end = out.find(to, start);
  return start == std::string::npos ? std::string() : out.substr(start, end - start);
}

TEST(BusDayTest, TheDaysTripsAreMadeOnceAndTheMorningReachesTheBoard) {
  testing::DemoDay day;
  const std::string& out = day.Out();

  // Monday: 9 timetables, one expired in February and one on Saturdays only.
  EXPECT_EQ(day.Value("SELECT COUNT(*) FROM TbHorariosLinha"), "9");
  EXPECT_EQ(day.Value("SELECT COUNT(*) FROM TbViagemOnibus"), "7");
  EXPECT_EQ(day.Value("SELECT COUNT(*) FROM (SELECT DISTINCT Cd_Linha, Cd_HorarioLinha, Hr_Previsto FROM TbViagemOnibus)"),
            "7");
  EXPECT_NE(out.find("7 timetables run on 02/03/2026"), std::string::npos) << out;
  EXPECT_NE(out.find("The same step run again: 7 timetables, 0 trips created"), std::string::npos);

  // Until 10:30 three departures left with their boardings and two buses arrived.
  EXPECT_EQ(day.Value("SELECT COUNT(*) FROM TbViagemOnibus WHERE No_Andamento = 2 AND Qt_EmbarquesComPassagem > 0 "
                      "AND Hr_SaidaRodoviaria IS NOT NULL"),
            "3");
  EXPECT_EQ(day.Value("SELECT COUNT(*) FROM TbViagemOnibus WHERE No_Andamento = 3"), "2");
  // The 10:45 departure was announced at 10:35 and marked played; the
  // earlier ones were never played.
  EXPECT_EQ(day.Value("SELECT COUNT(*) FROM TbAgendaSom"), "5");
  EXPECT_EQ(day.Value("SELECT Dt_Agendamento FROM TbAgendaSom WHERE Ic_Feito <> 0"),
            CStr(Variant(DateSerial(2026, 3, 2) + TimeSerial(10, 35, 0))));

  // Arrivals show where passengers alight, departures where they board; the
  // bus passing through is on both, the 21:00 departure on neither yet.
  const std::string arrivals = Section(out, "CHEGADAS", "PARTIDAS");
  const std::string departures = Section(out, "PARTIDAS", "Announcements");
  EXPECT_NE(arrivals.find("Caldas Novas/GO"), std::string::npos) << arrivals;
  EXPECT_NE(arrivals.find("Brasília/DF      Uberlândia/MG"), std::string::npos) << arrivals;
  EXPECT_EQ(arrivals.find("Santa Bárbara"), std::string::npos) << arrivals;
  EXPECT_NE(departures.find("Santa Bárbara d'Oeste/SP"), std::string::npos) << departures;
  EXPECT_NE(departures.find("Uberlândia/MG"), std::string::npos) << departures;
  EXPECT_EQ(departures.find("Caldas Novas"), std::string::npos) << departures;
  EXPECT_EQ(departures.find("21:00"), std::string::npos) << departures;

  // Campinas is a stop only: found with the stops, not without.
  EXPECT_NE(out.find("to \"Campinas/SP\", stops included (cgdHorariosLinha.adoRsHorariosLinha): 2"), std::string::npos);
  EXPECT_NE(out.find("to \"Campinas/SP\" (cgdHorariosLinha.adoRsHorariosLinha): 0"), std::string::npos);
  EXPECT_NE(out.find("to \"Bárbara d'Oeste\" (cgdHorariosLinha.adoRsHorariosLinha): 1"), std::string::npos);
  // Cities with a recorded name are marked in the work table.
  EXPECT_EQ(day.Value("SELECT COUNT(DISTINCT Cd_Cidade) FROM TempCidade WHERE Ic_ExisteArquivoSom <> 0"), "4");
  EXPECT_EQ(day.Value("SELECT COUNT(DISTINCT Cd_Cidade) FROM TempCidade"), "8");
}

}  // namespace
}  // namespace vek
