#include "vek/revenue/cgdApuracoesReceita.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "revenue/AssessmentData.h"
#include "vek/db/Recordset.h"
#include "vek/platform/Controls.h"
#include "vek/platform/Format.h"

namespace vek {
namespace {

using testing::ErrorOf;
using testing::Lines;

class cgdApuracoesReceitaTest : public ::testing::Test {
 protected:
  cgdApuracoesReceitaTest() { apuracoes.Ob_cgpSistema(db.session); }

  testing::AssessmentData db;
  cgdApuracoesReceita apuracoes;
};

TEST_F(cgdApuracoesReceitaTest, TheSearchGridListsAssessmentsByPayerThenDay) {
  db.Assess(1, 1234, 11, "2026-11-21", {{1, 1000}, {2, 117}});  // R$ 1.234,00
  db.Assess(1, 2, 11, "2026-11-20", {{1, 5}});
  db.Assess(1, 3, 10, "2026-11-21", {{7, 1}});
  db.Assess(2, 4, 12, "2026-11-19", {});
  ListGrid grid;
  TextBox count;
  {
    testing::LocaleGuard brazil(testing::kBrazilLocale);
    apuracoes.CarregarMSFlexGridDeBusca(grid, count);
  }
  EXPECT_EQ(db.statements.back(),
            Lines({"SELECT   A.No_ApuracaoReceita,", "         B.Nm_Pessoa,", "         A.Dt_Movimento,",
                   "         A.Vl_ApuracaoReceita", "FROM     TbApuracaoReceita A",
                   "         Join TbPessoa B on A.Cd_Pessoa = B.Cd_Pessoa", "ORDER BY B.Nm_Pessoa,",
                   "         A.Dt_Movimento"}) +
                "\r");
  EXPECT_EQ(grid.Lines(), (std::vector<std::string>{"2\tExpresso São Luiz Ltda\t20/11/2026\t5,00",
                                                    "1.234\tExpresso São Luiz Ltda\t21/11/2026\t1.234,00",
                                                    "4\tRápido d'Oeste Ltda\t19/11/2026\t0,00",
                                                    "3\tViação Araguarina Ltda\t21/11/2026\t9,50"}));
  EXPECT_EQ(count.Text(), "4");

  ListGrid mine;
  apuracoes.CarregarMSFlexGridDeBusca(mine, count, "A.Cd_EmpresaUsuariaSistema = 1 And A.Cd_Pessoa = 11");
  EXPECT_NE(db.statements.back().find("\rWHERE A.Cd_EmpresaUsuariaSistema = 1 And A.Cd_Pessoa = 11\rORDER BY "),
            std::string::npos);
  EXPECT_EQ(mine.Lines().size(), 2u);
  EXPECT_EQ(count.Text(), "2");

  const VekError bad = ErrorOf([&] { apuracoes.CarregarMSFlexGridDeBusca(mine, count, "No_Such_Column = 1"); });
  EXPECT_EQ(bad.Number(), static_cast<int32_t>(0x80040E14u));
  EXPECT_EQ(bad.Source(), testing::ProviderSource() + " -> cgdApuracoesReceita.CarregarMSFlexGridDeBusca, ");
}

TEST_F(cgdApuracoesReceitaTest, WhatIsToBeBilledIsSummedPerPayerAndDueDateOfTheBillingDate) {
  db.Assess(1, 1, 10, "2026-11-18", {{1, 10}}, 1, "2026-11-21", "2026-11-28");
  db.Assess(1, 2, 10, "2026-11-19", {{2, 10}}, 1, "2026-11-21", "2026-11-28");
  db.Assess(1, 3, 10, "2026-11-20", {{3, 1}}, 1, "2026-11-21", "2026-12-05");
  db.Assess(1, 4, 11, "2026-11-20", {{7, 2}}, 1, "2026-11-21", "2026-11-28");
  db.Assess(1, 5, 11, "2026-11-20", {{1, 99}}, 1, "2026-11-22", "2026-11-28");  // billed another day
  db.Assess(2, 5, 12, "2026-11-20", {{4, 1}}, 1, "2026-11-21", "2026-11-28");   // another operating company
  auto rows = apuracoes.ConsultarApuracoesAFaturarPorEmpresa(DateSerial(2026, 11, 21));
  EXPECT_EQ(db.statements.back(),
            Lines({"SELECT   Cd_Pessoa,", "         Dt_Vencimento,",
                   "         Sum(Vl_ApuracaoReceita) as Vl_TotalApuracaoReceita", "FROM     TbApuracaoReceita",
                   "WHERE    Dt_Faturamento = '2026-11-21'", "GROUP BY Cd_Pessoa,", "         Dt_Vencimento;"}) +
                "\r");
  EXPECT_EQ(rows->ActiveConnection(), nullptr);
  testing::LocaleGuard dot(testing::kDotLocale);
  std::vector<std::string> billed;
  for (; !rows->Eof(); rows->MoveNext()) {
    Fields& f = rows->Fields();
    billed.push_back(CStr(f.Item("Cd_Pessoa").Value()) + " " + Format(f.Item("Dt_Vencimento").Value(), "dd/mm/yyyy") +
                     " " + Format(f.Item("Vl_TotalApuracaoReceita").Value(), "0.0000"));
  }
  std::sort(billed.begin(), billed.end());
  EXPECT_EQ(billed, (std::vector<std::string>{"10 05/12/2026 3.0000", "10 28/11/2026 30.0000", "11 28/11/2026 19.0000",
                                              "12 28/11/2026 4.0000"}));
  EXPECT_EQ(apuracoes.ConsultarApuracoesAFaturarPorEmpresa(DateSerial(2026, 11, 23))->RecordCount(), 0);
}

}  // namespace
}  // namespace vek
