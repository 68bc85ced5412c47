#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "support/DemoDay.h"
#include "support/TestSupport.h"
#include "vek/vek.h"

namespace vek {
namespace {

namespace fs = std::filesystem;

TEST(AssessmentDayTest, EachCompanyIsAssessedOnceForItsTripsAndTheTillTotalsWhatItTook) {
  testing::LocaleGuard dot(testing::kDotLocale);
  testing::DemoDay day;
  const std::string& out = day.Out();

  // One boarding assessment per bus company, even though the step ran twice,
  // each charging the company's boardings of its trips at the boarding fee.
  EXPECT_EQ(day.Value("SELECT COUNT(*) FROM TbApuracaoReceita WHERE Cd_TipoReceita = 1 AND Dt_Movimento = '2026-03-02'"),
            day.Value("SELECT COUNT(*) FROM TbEmpresaOnibus"));
  EXPECT_NE(out.find("The same step run again: 0 assessments made"), std::string::npos) << out;
  const std::string trips_per_company =
      "SELECT H.Cd_EmpresaOnibus, Sum(V.Qt_EmbarquesComPassagem + V.Qt_EmbarquesSemPassagem) As Qt "
      "FROM TbViagemOnibus V JOIN TbHorariosLinha H ON V.Cd_EmpresaUsuariaSistema = H.Cd_EmpresaUsuariaSistema "
      "AND V.Cd_HorarioLinha = H.Cd_HorarioLinha GROUP BY H.Cd_EmpresaOnibus";
  EXPECT_EQ(day.Value("SELECT COUNT(*) FROM TbApuracaoReceita A JOIN TbApuracaoReceita_TbTarifa B "
                      "ON A.No_ApuracaoReceita = B.No_ApuracaoReceita JOIN TbTarifa T ON B.Cd_Tarifa = T.Cd_Tarifa "
                      "LEFT JOIN (" + trips_per_company + ") Q ON Q.Cd_EmpresaOnibus = A.Cd_Pessoa "
                      "WHERE A.Cd_TipoReceita = 1 AND B.Qt_Tarifa = IsNull(Q.Qt, 0) AND B.Vl_Tarifa = T.Vl_Tarifa "
                      "AND A.Vl_ApuracaoReceita = B.Qt_Tarifa * B.Vl_Tarifa AND T.Ds_Tarifa = "
                      "'Taxa de embarque intermunicipal' AND A.No_Parcela = 1"),
            day.Value("SELECT COUNT(*) FROM TbEmpresaOnibus"));
  EXPECT_NE(day.Value("SELECT Sum(Vl_ApuracaoReceita) FROM TbApuracaoReceita WHERE Cd_TipoReceita = 1"), "0");

  // Each monthly client paid once at till 1, for the month.
  EXPECT_EQ(day.Value("SELECT COUNT(*) FROM TbApuracaoReceita A JOIN TbClienteEstacionamento C "
                      "ON A.Cd_Pessoa = C.Cd_ClienteEstacionamento WHERE A.Cd_TipoReceita = 2 AND A.Cd_Caixa = 1 "
                      "AND A.Ic_TotalizacaoDeCaixa = 0 AND A.Dt_Inicial = '2026-03-01' AND A.Dt_Final = '2026-03-31'"),
            day.Value("SELECT COUNT(*) FROM TbClienteEstacionamento"));

  // The till's totalling: car-park charge lines, restroom sales and monthly fees of till 1.
  const std::string took =
      "SELECT (SELECT Sum(A.Qt_Unidade * A.Vl_Tarifa) FROM TbTicketEstacionamento_TbTarifa A JOIN "
      "TbTicketEstacionamento C ON A.Cd_EmpresaUsuariaSistema = C.Cd_EmpresaUsuariaSistema AND "
      "A.Cd_TicketEstacionamento = C.Cd_TicketEstacionamento WHERE C.Cd_Caixa = 1) + "
      "(SELECT Sum(Qt_Unidade * Vl_Tarifa) FROM TbTicketSanitario WHERE Cd_Caixa = 1) + "
      "(SELECT Sum(Vl_ApuracaoReceita) FROM TbApuracaoReceita WHERE Cd_Caixa = 1 AND Ic_TotalizacaoDeCaixa = 0)";
  const std::string total = day.Value(took);
  EXPECT_EQ(day.Value("SELECT Vl_ApuracaoReceita FROM TbApuracaoReceita WHERE Ic_TotalizacaoDeCaixa = 1"), total);
  EXPECT_EQ(day.Value("SELECT Sum(B.Qt_Tarifa * B.Vl_Tarifa) FROM TbApuracaoReceita A JOIN TbApuracaoReceita_TbTarifa B "
                      "ON A.No_ApuracaoReceita = B.No_ApuracaoReceita WHERE A.Ic_TotalizacaoDeCaixa = 1"),
            total);
  EXPECT_NE(total, "0");
}

}  // namespace
}  // namespace vek
