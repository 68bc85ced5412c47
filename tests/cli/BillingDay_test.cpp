#include <gtest/gtest.h>

#include <filesystem>
#include <memory>
#include <string>

#include "support/DbfFile.h"
#include "support/DemoDay.h"
#include "support/TestSupport.h"
#include "vek/vek.h"

namespace vek {
namespace {

namespace fs = std::filesystem;

TEST(BillingDayTest, LastWeeksFeesAreBilledTodayCheckedAndWrittenForTheErp) {
  testing::DemoDay day;
  const fs::path& folder = day.Folder();
  const std::string& out = day.Out();

  // Two terms: weekly in two spans, monthly in three.
  EXPECT_EQ(day.Value("SELECT COUNT(*) FROM TbItemCondicaoPagamento"), "5");
  // Monday 02/03 by the weekly term: Sunday to Tuesday, billed Wednesday 04/03, due Friday 06/03.
  EXPECT_NE(out.find("02/03/2026 segunda  Semanal  1 to 3    04/03/2026 quarta   06/03/2026 sexta"), std::string::npos)
      << out;
  // Every bus company's fees of Wednesday to Saturday are billed today,
  // due Wednesday: one receivable each, for the sum of its four days.
  const std::string companies = day.Value("SELECT COUNT(*) FROM TbEmpresaOnibus");
  EXPECT_NE(companies, "0");
  EXPECT_EQ(day.Value("SELECT COUNT(*) FROM TbContaReceber WHERE Dt_Emissao = '2026-03-02' AND "
                      "Dt_Vencimento = '2026-03-04' AND Ic_GeradoPeloSistema = 1"),
            companies);
  EXPECT_EQ(day.Value("SELECT COUNT(*) FROM TbContaReceber R WHERE Vl_ContaReceber <> (SELECT SUM(A.Vl_ApuracaoReceita) "
                      "FROM TbApuracaoReceita A WHERE A.Cd_Pessoa = R.Cd_Pessoa AND A.Dt_Vencimento = R.Dt_Vencimento "
                      "AND A.Dt_Faturamento = '2026-03-02')"),
            "0");
  EXPECT_EQ(day.Value("SELECT COUNT(*) FROM TbFechamentoDiario WHERE Dt_FechamentoDiario = '2026-03-02' AND "
                      "Vl_Deposito = 3480"),
            "1");
  // The ERP's table in the terminal folder holds one title per receivable.
  const fs::path titles = fs::canonical(folder) / "ERP" / "SE1.dbf";
  EXPECT_NE(out.find(titles.string()), std::string::npos) << out;
  EXPECT_EQ(std::to_string(testing::DbfFile(titles).LiveRecords()),
            day.Value("SELECT COUNT(*) FROM TbContaReceber WHERE Dt_Emissao = '2026-03-02'"));
}

}  // namespace
}  // namespace vek
