#include "vek/revenue/cgdCaixa.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "revenue/TillData.h"
#include "vek/db/DbError.h"
#include "vek/foundation/MessageCatalogue.h"
#include "vek/platform/Format.h"

namespace vek {
namespace {

using testing::CountOf;
using testing::ErrorOf;
using testing::Lines;

class cgdCaixaTest : public ::testing::Test {
 protected:
  cgdCaixaTest() { caixa.Ob_cgpSistema(db.session); }

  // Opens a till of user 5 on `day` as the cashier's program does.
  int32_t OpenTill(Date day, int32_t sequence, int32_t company = 1) {
    auto till = caixa.Ob_cgp();
    till->RestaurarDefault();
    till->Let("Cd_EmpresaUsuariaSistema", Variant(company));
    till->Let("Cd_Usuario", Variant(5));
    till->Let("Dt_Abertura", Variant(day));
    till->Let("No_Sequencial", Variant(sequence));
    caixa.Salvar();
    return CLng(till->Get("Cd_Caixa"));
  }

  // The feed's rows in the order the report prints them.
  std::vector<std::string> Feed() {
    auto rows = db.Query("SELECT * FROM TempApuracaoReceita7 ORDER BY Ds_Tipo, Cd_Codigo");
    std::vector<std::string> lines;
    for (; !rows->Eof(); rows->MoveNext()) {
      std::string line;
      for (int32_t i = 0; i < 6; ++i) {
        const Variant value = rows->Fields().Item(i).Value();
        if (i) line += "|";
        line += value.IsNull() ? "NULL" : i >= 4 ? Format(value, "0.00") : CStr(value);
      }
      lines.push_back(line);
    }
    return lines;
  }

  testing::LocaleGuard dots{testing::kDotLocale};
  testing::TerminalDatabase db;
  cgdCaixa caixa;
};

TEST_F(cgdCaixaTest, ATillIsNumberedPerCompanyAndFoundByNumberOrByItsOpening) {
  EXPECT_EQ(caixa.nomeCamposSequencial(), std::vector<std::string>{"Cd_Caixa"});
  EXPECT_TRUE(caixa.temCampoSequencial());

  const int32_t first = OpenTill(DateSerial(2026, 11, 21), 1);
  ASSERT_GT(first, 0);
  // Incluir adds the row to an empty record set of the table.
  const std::string empty = Lines({"SELECT A.*", "FROM   TbCaixa A", "WHERE  A.Cd_EmpresaUsuariaSistema = 0",
                                   "       And A.Cd_Caixa = 0;"}) + "\r";
  EXPECT_NE(std::find(db.statements.begin(), db.statements.end(), empty), db.statements.end());
  const int32_t second = OpenTill(DateSerial(2026, 11, 21), 2);
  EXPECT_EQ(second, first + 1);
  // The numbering table hands a number out once, whatever the company.
  EXPECT_EQ(OpenTill(DateSerial(2026, 11, 21), 1, 2), second + 1);

  auto till = caixa.Ob_cgp();
  till->RestaurarDefault();
  till->Let("Cd_EmpresaUsuariaSistema", Variant(1));
  till->Let("Cd_Caixa", Variant(second));
  caixa.Consultar(false);
  EXPECT_EQ(db.statements.back(), Lines({"SELECT A.*", "FROM   TbCaixa A", "WHERE  A.Cd_EmpresaUsuariaSistema = 1",
                                         "       And A.Cd_Caixa = " + std::to_string(second) + ";"}) +
                                      "\r");
  EXPECT_EQ(CLng(till->Get("No_Sequencial")), 2);
  EXPECT_EQ(CLng(till->Get("Cd_Usuario")), 5);

  // By the opening: user, opening day (session format) and sequence.
  till->RestaurarDefault();
  till->Let("Ic_ConsultarPorAbertura", Variant(true));
  till->Let("Cd_EmpresaUsuariaSistema", Variant(1));
  till->Let("Cd_Usuario", Variant(5));
  till->Let("Dt_Abertura", Variant(DateSerial(2026, 11, 21)));
  till->Let("No_Sequencial", Variant(1));
  caixa.Consultar(false);
  EXPECT_EQ(db.statements.back(),
            Lines({"SELECT A.*", "FROM   TbCaixa A", "WHERE  A.Cd_EmpresaUsuariaSistema = 1", "       And A.Cd_Usuario = 5",
                   "       And A.Dt_Abertura = '2026-11-21'", "       And A.No_Sequencial = 1"}) +
                "\r");
  EXPECT_EQ(CLng(till->Get("Cd_Caixa")), first);
  EXPECT_TRUE(CBool(till->Get("Ic_ConsultarPorAbertura")));  // not a column: the row leaves it alone

  // A sequence the user never opened is no till.
  till->Let("No_Sequencial", Variant(3));
  EXPECT_EQ(ErrorOf([&] { caixa.Consultar(false); }).Number(), kErrorRecordNotFound);
  caixa.Consultar();
  EXPECT_EQ(CLng(till->Get("Cd_Caixa")), 0);

  // An update keeps the number and writes through the key look-up.
  till->Let("Cd_EmpresaUsuariaSistema", Variant(1));
  till->Let("Cd_Caixa", Variant(first));
  caixa.Consultar(false);
  till->Let("No_Situacao", Variant(2));
  caixa.Salvar();
  EXPECT_EQ(CountOf(db, "TbCaixa WHERE No_Situacao = 2"), 1);
  EXPECT_EQ(CountOf(db, "TbCaixa"), 3);

  caixa.Excluir();
  EXPECT_EQ(db.statements.back(), Lines({"DELETE ", "FROM   TbCaixa", "WHERE  Cd_EmpresaUsuariaSistema = 1",
                                         "       And Cd_Caixa = " + std::to_string(first)}) +
                                      "\r");
  EXPECT_EQ(CountOf(db, "TbCaixa"), 2);

  till->Let("Cd_Caixa", Variant(0));
  till->Let("Ic_ConsultarPorAbertura", Variant(false));
  const VekError no_key = ErrorOf([&] { caixa.Consultar(); });
  EXPECT_EQ(no_key.Number(), kErrorNoKey);
  EXPECT_NE(no_key.Source().find("cgdCaixa.Consultar"), std::string::npos);
  till->Let("Ic_ConsultarPorAbertura", Variant(true));
  till->Let("Cd_EmpresaUsuariaSistema", Variant(0));
  EXPECT_EQ(ErrorOf([&] { caixa.Consultar(); }).Number(), kErrorNoKey);
}

TEST_F(cgdCaixaTest, TheClosingFeedRoundsEachLineCountsUnitsAndDatesPaymentsDayFirst) {
  testing::FillTill(db);
  auto till = caixa.Ob_cgp();
  till->Let("Cd_EmpresaUsuariaSistema", Variant(1));
  till->Let("Cd_Caixa", Variant(7));
  db.statements.clear();
  caixa.PreparaDadosParaRelatorioApuracaoReceita7();

  ASSERT_EQ(db.statements.size(), 5u);
  EXPECT_EQ(db.statements[0], "DELETE FROM TempApuracaoReceita7\r");
  EXPECT_EQ(db.statements[1],
            Lines({"INSERT INTO TempApuracaoReceita7", "SELECT   'ESTACIONAMENTO' AS Ds_Tipo,", "         A.Cd_Tarifa,",
                   "         B.Ds_Tarifa,", "         'QTDE:' + CONVERT(Varchar,Sum(A.Qt_Unidade)) As Ds_Observacao,",
                   "         A.Vl_Tarifa,", "         Sum(Round(A.Qt_Unidade * A.Vl_Tarifa,2)) As Vl_Total",
                   "FROM     TbTicketEstacionamento_TbTarifa A",
                   "         INNER JOIN TbTarifa B On A.Cd_EmpresaUsuariaSistema = B.Cd_EmpresaUsuariaSistema",
                   "                    And A.Cd_Tarifa = b.Cd_Tarifa",
                   "         INNER JOIN TbTicketEstacionamento C On A.cd_empresausuariasistema = C.cd_empresausuariasistema",
                   "                    And A.Cd_TicketEstacionamento = C.Cd_TicketEstacionamento",
                   "WHERE    A.Cd_EmpresaUsuariaSistema = 1", "         And C.Cd_Caixa = 7", "GROUP BY A.Cd_Tarifa,",
                   "         B.Ds_Tarifa,", "         A.Vl_Tarifa"}) +
                "\r");
  EXPECT_EQ(db.statements[2],
            Lines({"INSERT INTO TempApuracaoReceita7", "SELECT   'SANITARIO' AS Ds_Tipo,", "         A.Cd_Tarifa,",
                   "         B.Ds_Tarifa,", "         'QTDE:' + Convert(Varchar,Sum(A.Qt_Unidade)) As Ds_Observacao,",
                   "         A.Vl_Tarifa,", "         Sum(Round(A.Qt_Unidade * A.Vl_Tarifa,2)) As Vl_Total",
                   "FROM     TbTicketSanitario A",
                   "         INNER JOIN TbTarifa B On A.Cd_EmpresaUsuariaSistema = B.Cd_EmpresaUsuariaSistema",
                   "                    And A.Cd_Tarifa = B.Cd_Tarifa", "WHERE    A.Cd_EmpresaUsuariaSistema = 1",
                   "         And A.Cd_Caixa = 7", "GROUP BY A.Cd_Tarifa,", "         B.Ds_Tarifa,", "         A.Vl_Tarifa"}) +
                "\r");
  for (const auto& [index, kind, flag] : {std::tuple{3, "MENSALISTA", "0"}, std::tuple{4, "RECIBO CAIXA", "1"}}) {
    EXPECT_EQ(db.statements[index],
              Lines({"INSERT INTO TempApuracaoReceita7", "SELECT   '" + std::string(kind) + "' AS Ds_Tipo,",
                     "         TbApuracaoReceita.No_ApuracaoReceita,", "         TbPessoa.nm_pessoa,",
                     "         CONVERT(Varchar,TbApuracaoReceita.Dt_Inicial,103) As Ds_Observacao,",
                     "         TbApuracaoReceita.Vl_ApuracaoReceita,",
                     "         TbApuracaoReceita.Vl_ApuracaoReceita As Vl_Total", "From     TbApuracaoReceita",
                     "         INNER JOIN TbPessoa On tbapuracaoreceita.cd_pessoa = TbPessoa.cd_pessoa",
                     "WHERE    TbApuracaoReceita.Cd_EmpresaUsuariaSistema = 1",
                     "         And TbApuracaoReceita.Cd_Caixa = 7", "         And Ic_TotalizacaoDeCaixa = " + std::string(flag)}) +
                  "\r");
  }

  // Tariff 11: three lines of 0.145, each rounded to 0.15 before the sum.
  const std::vector<std::string> expected = {
      "ESTACIONAMENTO|10|ESTACIONAMENTO 1 HORA|QTDE:3|4.35|13.05",
      "ESTACIONAMENTO|11|ESTACIONAMENTO FRACAO|QTDE:3|0.15|0.45",
      "MENSALISTA|1|MARIA DA CONCEIÇÃO|01/11/2026|150.00|150.00",
      "RECIBO CAIXA|2|TERMINAL RODOVIARIO|21/11/2026|169.50|169.50",
      "SANITARIO|40|SANITARIO|QTDE:4|1.50|6.00"};
  EXPECT_EQ(Feed(), expected);
  // The unit value keeps its four decimals.
  EXPECT_EQ(CCur(db.Query("SELECT Vl_Unitario FROM TempApuracaoReceita7 WHERE Cd_Codigo = 11")->Fields().Item(0).Value()),
            Currency(0.145));

  // The table holds one till at a time: another till's feed replaces it.
  till->Let("Cd_Caixa", Variant(8));
  caixa.PreparaDadosParaRelatorioApuracaoReceita7();
  EXPECT_EQ(Feed(), (std::vector<std::string>{"ESTACIONAMENTO|10|ESTACIONAMENTO 1 HORA|QTDE:5|4.35|21.75",
                                              "SANITARIO|40|SANITARIO|QTDE:2|1.50|3.00"}));
}

TEST_F(cgdCaixaTest, ATillWithNoTakingsLeavesTheFeedEmptyAndAPaymentWithoutPeriodShowsNull) {
  testing::FillTill(db);
  const int32_t till = OpenTill(DateSerial(2026, 11, 21), 1);
  caixa.PreparaDadosParaRelatorioApuracaoReceita7();
  EXPECT_EQ(CountOf(db, "TempApuracaoReceita7"), 0);

  testing::AddCashAssessment(db, 1, 3, 100, till, 0, "80.00", "NULL");
  caixa.PreparaDadosParaRelatorioApuracaoReceita7();
  EXPECT_EQ(Feed(), std::vector<std::string>{"MENSALISTA|3|MARIA DA CONCEIÇÃO|NULL|80.00|80.00"});

  caixa.Ob_cgp()->Let("Cd_Caixa", Variant(0));
  db.statements.clear();
  EXPECT_EQ(ErrorOf([&] { caixa.PreparaDadosParaRelatorioApuracaoReceita7(); }).Number(), kErrorNoKey);
  EXPECT_TRUE(db.statements.empty());
}

TEST_F(cgdCaixaTest, AFailureMidwayLeavesWhatTheFeedAlreadyWrote) {
  testing::FillTill(db);
  db.Query("DROP TABLE TbPessoa");
  caixa.Ob_cgp()->Let("Cd_EmpresaUsuariaSistema", Variant(1));
  caixa.Ob_cgp()->Let("Cd_Caixa", Variant(7));
  const VekError failed = ErrorOf([&] { caixa.PreparaDadosParaRelatorioApuracaoReceita7(); });
  EXPECT_EQ(failed.Number(), adErrSyntax);
  EXPECT_EQ(failed.Source().rfind(testing::ProviderSource(), 0), 0u) << failed.Source();
  EXPECT_TRUE(failed.Source().ends_with(" -> cgdCaixa.PreparaDadosParaRelatorioApuracaoReceita7, ")) << failed.Source();
  EXPECT_EQ(Feed().size(), 3u);  // the parking and restroom rows stay
}

}  // namespace
}  // namespace vek
