#include "vek/revenue/cgdApuracoesReceita.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "revenue/AssessmentData.h"
#include "support/RecordingControls.h"
#include "vek/db/Connection.h"
#include "vek/db/Recordset.h"
#include "vek/platform/Controls.h"
#include "vek/platform/Format.h"
#include "vek/schema/ReportDatabase.h"

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

// ---- the per-company report -------------------------------------------------

class GerarArqTempApuracaoPorEmpresaTest : public cgdApuracoesReceitaTest {
 protected:
  GerarArqTempApuracaoPorEmpresaTest() {
    std::filesystem::create_directories(folder.Path() / "Modelos");
    schema::WriteReportDatabaseTemplate(folder.Path() / "Modelos" / "bdTemp.db");
    db.session->Let("Ds_CaminhoAplicacao", Variant(folder.Path().string()));
    db.session->SetProgress(progress);
  }

  // The report's rows as the report writer reads them: SQL on the file, through
  // a connection of its own.
  std::vector<std::string> Report(const std::string& columns, const std::string& tail = "") {
    testing::LocaleGuard dot(testing::kDotLocale);
    auto report = std::make_shared<Connection>();
    report->Open("Driver=SQLite3;Database=" + (folder.Path() / "bdTemp.db").string());
    auto rows = report->Execute("SELECT " + columns + " FROM cgrApuracaoReceita3 " + tail);
    std::vector<std::string> result;
    for (; !rows->Eof(); rows->MoveNext()) {
      std::string line;
      for (int32_t i = 0; i < rows->Fields().Count(); ++i) line += (i ? "|" : "") + CStr(rows->Fields().Item(i).Value());
      result.push_back(line);
    }
    return result;
  }

  bool Sent(const std::string& statement) const {
    return std::find(db.statements.begin(), db.statements.end(), statement) != db.statements.end();
  }

  testing::ScratchFolder folder;
  std::shared_ptr<testing::RecordingProgress> progress = std::make_shared<testing::RecordingProgress>();
};

// Company 10 boards with tariffs 1 and 2 (and 7, beyond the report's six
// slots); 11 with 1, 2 and, under operating company 2, 3; 12 only with 7.
TEST_F(GerarArqTempApuracaoPorEmpresaTest, EachCompanyGetsADayRowWithRunningTotalsAndItsTariffsSharesCutToFourDecimals) {
  db.Assess(1, 1, 10, "2026-11-20", {{1, 2}, {2, 1}});
  db.Assess(1, 2, 10, "2026-11-21", {{1, 1}, {7, 5}});
  db.Assess(1, 3, 11, "2026-11-20", {{1, 2}, {2, 1}});
  db.Assess(2, 1, 11, "2026-11-21", {{3, 3}});
  db.Assess(1, 4, 12, "2026-11-21", {{7, 3}});
  db.Assess(1, 5, 20, "2026-11-20", {{8, 1}}, 2);  // a monthly fee: not a boarding
  db.Assess(1, 6, 11, "2026-11-19", {{1, 50}});    // before the period
  apuracoes.GerarArqTempApuracaoPorEmpresa(DateSerial(2026, 11, 20), DateSerial(2026, 11, 21));

  const std::string days = "Cd_Pessoa, Nm_Empresa, Dt_Movimento, Qt_Tarifa1, Qt_Tarifa2, Qt_Tarifa3, Vl_Tarifa3, "
                           "Qt_TarifaDia, Vl_TarifaDia, Qt_AcumTarifaDia, Vl_AcumTarifaDia";
  EXPECT_EQ(Report(days, "ORDER BY Cd_Pessoa, Dt_Movimento"),
            (std::vector<std::string>{"0|Total Geral|20/11/2026|4|2|0|0|6|8|6|8",
                                      "0|Total Geral|21/11/2026|1|0|3|9|4|10|10|18",
                                      "10|Viação Araguarina Ltda|20/11/2026|2|1|0|0|3|4|3|4",
                                      "10|Viação Araguarina Ltda|21/11/2026|1|0|0|0|1|1|4|5",
                                      "11|Expresso São Luiz Ltda|20/11/2026|2|1|0|0|3|4|3|4",
                                      "11|Expresso São Luiz Ltda|21/11/2026|0|0|3|9|3|9|6|13",
                                      "12|Rápido d'Oeste Ltda|20/11/2026|0|0|0|0|0|0|0|0",
                                      "12|Rápido d'Oeste Ltda|21/11/2026|0|0|0|0|0|0|0|0"}));
  // Shares of the period on every row of the company: 1/6 is 0.1666, not
  // 0.1667; a company that boarded nobody in the six slots gets 0.
  EXPECT_EQ(Report("DISTINCT Cd_Pessoa, In_Tarifa1, In_Tarifa2, In_Tarifa3, In_Tarifa4, In_Tarifa6", "ORDER BY 1"),
            (std::vector<std::string>{"0|0.5|0.2|0.3|0|0", "10|0.75|0.25|0|0|0", "11|0.3333|0.1666|0.5|0|0",
                                      "12|0|0|0|0|0"}));

  // The statements, as the report database and the terminal's were sent them.
  EXPECT_EQ(db.statements.front(), "DELETE \rFROM cgrApuracaoReceita3;\r");
  EXPECT_TRUE(Sent(Lines({"SELECT   C.Cd_Pessoa,", "         C.Nm_Pessoa", "FROM     TbApuracaoReceita A",
                          "         JOIN TbApuracaoReceita_TbTarifa B on A.Cd_EmpresaUsuariaSistema = "
                          "B.Cd_EmpresaUsuariaSistema and",
                          "                                              A.No_ApuracaoReceita = B.No_ApuracaoReceita",
                          "         JOIN TbPessoa C on A.Cd_Pessoa = C.Cd_Pessoa",
                          "         JOIN TbTarifa D on B.Cd_Tarifa = D.Cd_Tarifa",
                          "         JOIN TbTipoReceita E on D.cd_tiporeceita = E.cd_tiporeceita",
                          "WHERE    A.Dt_Movimento BETWEEN '2026-11-20' AND '2026-11-21'",
                          "         And E.Nm_TipoReceita = 'EMBARQUE'", "GROUP BY C.Cd_Pessoa,", "         C.Nm_Pessoa;"}) +
                   "\r"));
  const std::string total_head = Lines({"SELECT    C.Ds_Tarifa,", "          SUM(A.Qt_Tarifa) As Qt_Total,",
                                        "          SUM(A.Qt_Tarifa * A.Vl_Tarifa) As Vl_Total",
                                        "FROM      TbApuracaoReceita_TbTarifa A",
                                        "          JOIN TbApuracaoReceita B ON A.Cd_EmpresaUsuariaSistema = "
                                        "B.Cd_EmpresaUsuariaSistema and",
                                        "                                     A.No_ApuracaoReceita = B.No_ApuracaoReceita",
                                        "          JOIN TbTarifa C ON A.Cd_Tarifa = C.Cd_Tarifa"});
  EXPECT_TRUE(Sent(total_head + "\r" +
                   Lines({"WHERE B.Cd_Pessoa = 11", "      AND A.Cd_Tarifa = 3", "      AND B.Dt_Movimento = '2026-11-21'",
                          "GROUP BY  C.Ds_Tarifa;"}) +
                   "\r"));
  EXPECT_TRUE(Sent(total_head + "\r" +
                   Lines({"WHERE A.Cd_Tarifa = 6", "      AND B.Dt_Movimento = '2026-11-20'", "GROUP BY  C.Ds_Tarifa;"}) +
                   "\r"));
  EXPECT_TRUE(Sent(Lines({"SELECT  Sum(cgrApuracaoReceita3.Qt_Tarifa2) AS Qt_TotalTarifa", "FROM    cgrApuracaoReceita3",
                          "WHERE  (((cgrApuracaoReceita3.Cd_Pessoa)=11));"}) +
                   "\r"));
  EXPECT_TRUE(Sent(Lines({"UPDATE cgrApuracaoReceita3 ", "SET    cgrApuracaoReceita3.In_Tarifa2 = 1666 / 10000",
                          "WHERE  (((cgrApuracaoReceita3.Cd_Pessoa)=11));"}) +
                   "\r"));
  EXPECT_TRUE(Sent(Lines({"UPDATE cgrApuracaoReceita3 ", "SET    cgrApuracaoReceita3.In_Tarifa1 = 0 / 10000",
                          "WHERE  (((cgrApuracaoReceita3.Cd_Pessoa)=12));"}) +
                   "\r"));
  EXPECT_EQ(db.statements.back(), Lines({"UPDATE cgrApuracaoReceita3 ", "SET    cgrApuracaoReceita3.In_Tarifa6 = 0 / 10000",
                                         "WHERE  (((cgrApuracaoReceita3.Cd_Pessoa)= 0));"}) +
                                      "\r");

  // The window: headed while the companies are found, then per company and day.
  EXPECT_EQ(progress->calls, (std::vector<std::string>{"Show Verificando Movimentos", "Close"}));
  EXPECT_EQ(progress->Caption(), "Verificando Apurações de Receita");
  EXPECT_EQ(progress->Label(), "Total geral em:21/11/2026");
  EXPECT_EQ(progress->steps.back(), 100.0);

  // A second run empties the table first.
  db.Assess(1, 7, 10, "2026-11-21", {{4, 2}});
  apuracoes.GerarArqTempApuracaoPorEmpresa(DateSerial(2026, 11, 21), DateSerial(2026, 11, 21));
  EXPECT_EQ(Report("Cd_Pessoa, Dt_Movimento, Qt_Tarifa1, Qt_Tarifa4, Qt_TarifaDia, In_Tarifa4", "ORDER BY Cd_Pessoa"),
            (std::vector<std::string>{"0|21/11/2026|1|2|6|0.3333", "10|21/11/2026|1|2|3|0.6666",
                                      "11|21/11/2026|0|0|3|0", "12|21/11/2026|0|0|0|0"}));
  EXPECT_EQ(progress->Label(), "Total geral em:21/11/2026");
}

TEST_F(GerarArqTempApuracaoPorEmpresaTest, WithoutTheReportDatabaseOrItsTemplateNothingIsWritten) {
  db.Assess(1, 1, 10, "2026-11-20", {{1, 2}});
  std::filesystem::remove(folder.Path() / "Modelos" / "bdTemp.db");
  const VekError missing =
      ErrorOf([&] { apuracoes.GerarArqTempApuracaoPorEmpresa(DateSerial(2026, 11, 20), DateSerial(2026, 11, 20)); });
  EXPECT_EQ(missing.Number(), kFileNotFound);
  EXPECT_TRUE(missing.Source().ends_with(" -> cgdApuracoesReceita.GerarArqTempApuracaoPorEmpresa, ")) << missing.Source();
  EXPECT_FALSE(std::filesystem::exists(folder.Path() / "bdTemp.db"));
  EXPECT_TRUE(db.statements.empty());
}

}  // namespace
}  // namespace vek
