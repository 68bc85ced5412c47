// Receivables and the daily closing: their records, the closing's checks.

#include "vek/revenue/cgdFechamentoDiario.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "revenue/BillingData.h"
#include "support/TerminalDatabase.h"
#include "vek/foundation/MessageCatalogue.h"
#include "vek/platform/Controls.h"
#include "vek/revenue/cgdContaReceber.h"
#include "vek/revenue/cgdParametrosMicrosiga.h"

namespace vek {
namespace {

using testing::ErrorOf;
using testing::Lines;

class DailyClosingTest : public ::testing::Test {
 protected:
  DailyClosingTest() {
    closing.Ob_cgpSistema(db.session);
    receivable.Ob_cgpSistema(db.session);
  }

  testing::TerminalDatabase db;
  cgdFechamentoDiario closing;
  cgdContaReceber receivable;
};

TEST_F(DailyClosingTest, AClosingIsKeyedByCompanyAndDayWrittenAsADateLiteral) {
  auto record = closing.Ob_cgp();
  record->Let("Cd_EmpresaUsuariaSistema", Variant(1));
  record->Let("Dt_FechamentoDiario", Variant(DateSerial(2026, 3, 2)));
  record->Let("Vl_Deposito", Variant(Currency(1234.5678)));
  closing.Salvar();
  const std::string select = Lines({"SELECT A.*", "FROM   TbFechamentoDiario A",
                                    "WHERE  A.Cd_EmpresaUsuariaSistema = 1",
                                    "       and A.Dt_FechamentoDiario = '2026-03-02'", ";"}) +
                             "\r";
  ASSERT_EQ(db.statements.size(), 2u);
  EXPECT_EQ(db.statements[0], select);  // Alterar finds no row ...
  EXPECT_EQ(db.statements[1], Lines({"SELECT A.*", "FROM   TbFechamentoDiario A",
                                     "WHERE  A.Cd_EmpresaUsuariaSistema = 0",
                                     "       and A.Dt_FechamentoDiario = '1899-12-30'", ";"}) +
                                  "\r");  // ... so Incluir adds it

  // The same day of another company is another closing.
  record->Let("Cd_EmpresaUsuariaSistema", Variant(2));
  record->Let("Vl_Deposito", Variant(Currency(10.0)));
  closing.Salvar();
  record->Let("Cd_EmpresaUsuariaSistema", Variant(1));
  record->Let("Vl_Deposito", Variant(Currency(0.0)));
  closing.Consultar(false);
  EXPECT_EQ(db.statements.back(), select);
  EXPECT_EQ(CCur(record->Get("Vl_Deposito")), Currency(1234.5678));

  record->Let("Vl_Deposito", Variant(Currency(99.99)));
  closing.Salvar();  // an update now
  EXPECT_EQ(testing::RowCount(db, "TbFechamentoDiario"), 2);
  EXPECT_EQ(CCur(db.Query("SELECT Vl_Deposito FROM TbFechamentoDiario WHERE Cd_EmpresaUsuariaSistema = 1")
                     ->Fields()
                     .Item(0)
                     .Value()),
            Currency(99.99));

  closing.Excluir();
  EXPECT_EQ(db.statements.back(), Lines({"DELETE ", "FROM   TbFechamentoDiario", "WHERE  Cd_EmpresaUsuariaSistema = 1",
                                         "       And Dt_FechamentoDiario = '2026-03-02'"}) +
                                      "\r");
  EXPECT_EQ(testing::RowCount(db, "TbFechamentoDiario"), 1);

  // A closing without its day has no key.
  record->Let("Dt_FechamentoDiario", Variant(Date()));
  db.statements.clear();
  EXPECT_EQ(ErrorOf([&] { closing.Consultar(); }).Number(), kErrorNoKey);
  EXPECT_TRUE(db.statements.empty());
}

TEST_F(DailyClosingTest, TheLatestClosingIsOfAnyCompanyAndNoneIsNoObject) {
  EXPECT_EQ(closing.ConsultarUltimaDataFechamento(), nullptr);
  const std::string latest = Lines({"SELECT   TOP 1 *", "FROM     TbFechamentoDiario",
                                    "ORDER BY Dt_FechamentoDiario Desc"}) +
                             "\r";
  EXPECT_EQ(db.statements.back(), latest);
  testing::AddClosing(db, 1, "2026-02-27", "10");
  testing::AddClosing(db, 2, "2026-03-02", "20.5");
  testing::AddClosing(db, 1, "2026-03-01", "30");
  auto found = closing.ConsultarUltimaDataFechamento();
  ASSERT_NE(found, nullptr);
  EXPECT_EQ(found, closing.Ob_cgp());
  EXPECT_EQ(CDate(found->Get("Dt_FechamentoDiario")), DateSerial(2026, 3, 2));
  EXPECT_EQ(CLng(found->Get("Cd_EmpresaUsuariaSistema")), 2);
  EXPECT_EQ(CCur(found->Get("Vl_Deposito")), Currency(20.5));
  EXPECT_EQ(db.statements.back(), latest);
}

TEST_F(DailyClosingTest, TheBillingCheckListsTheDaysReceivablesByPayerWithTheirTotal) {
  testing::AddPayer(db, 10, "Viação Útil");
  testing::AddPayer(db, 11, "Auto Viação Goiânia");
  testing::AddReceivable(db, 1, 7, 1, 10, "'2026-03-02'", "'2026-03-09'", "1234.5");
  testing::AddReceivable(db, 2, 8, 2, 11, "'2026-03-02'", "'2026-03-16'", "1000000");
  testing::AddReceivable(db, 1, 9, 1, 11, "'2026-03-01'", "'2026-03-09'", "5");  // another day
  closing.Ob_cgp()->Let("Dt_FechamentoDiario", Variant(DateSerial(2026, 3, 2)));
  testing::LocaleGuard brazil(testing::kBrazilLocale);
  ListGrid grid;
  TextBox total;
  closing.VerificarFaturamentos(grid, total);
  EXPECT_EQ(db.statements.back(),
            Lines({"SELECT   A.No_ContaReceber,", "         A.No_Parcela,", "         B.Nm_Pessoa,",
                   "         A.Dt_Vencimento,", "         A.Vl_ContaReceber", "FROM     TbContaReceber A",
                   "         Join TbPessoa B On A.Cd_Pessoa = B.Cd_Pessoa", "WHERE    A.Dt_Emissao = '2026-03-02'",
                   "ORDER BY B.Nm_Pessoa"}) +
                "\r");
  EXPECT_EQ(grid.Lines(), (std::vector<std::string>{"8\t2\tAuto Viação Goiânia\t16/03/2026\t1.000.000,00",
                                                    "7\t1\tViação Útil\t09/03/2026\t1.234,50"}));
  EXPECT_EQ(total.Text(), "1.001.234,50");

  // A day without billing: no line, a zero total.
  ListGrid empty;
  closing.Ob_cgp()->Let("Dt_FechamentoDiario", Variant(DateSerial(2026, 3, 3)));
  closing.VerificarFaturamentos(empty, total);
  EXPECT_TRUE(empty.Lines().empty());
  EXPECT_EQ(total.Text(), "0,00");

  // Its failures name the loader it was made from.
  db.connection->Close();
  const VekError error = ErrorOf([&] { closing.VerificarFaturamentos(empty, total); });
  EXPECT_TRUE(error.Source().ends_with(" -> cgdFechamentoDiario.CarregarMSFlexGridDeBusca, ")) << error.Source();
}

TEST_F(DailyClosingTest, AReceivableIsNumberedThroughTheSequenceTableAndDeletedByItsWholeKey) {
  auto record = receivable.Ob_cgp();
  record->Let("Cd_EmpresaUsuariaSistema", Variant(1));
  record->Let("No_Parcela", Variant(int16_t{1}));
  record->Let("Cd_Pessoa", Variant(10));
  record->Let("Dt_Emissao", Variant(DateSerial(2026, 3, 2)));
  record->Let("Dt_Vencimento", Variant(DateSerial(2026, 3, 9)));
  record->Let("Vl_ContaReceber", Variant(Currency(0.0001)));
  record->Let("Ds_Historico", Variant("Embarques de 02/03/2026"));
  record->Let("Ic_GeradoPeloSistema", Variant(true));
  receivable.Salvar();
  const int32_t first = CLng(record->Get("No_ContaReceber"));
  EXPECT_GT(first, 0);
  record->Let("No_ContaReceber", Variant(0));
  receivable.Salvar();
  const int32_t second = CLng(record->Get("No_ContaReceber"));
  EXPECT_EQ(second, first + 1);
  EXPECT_EQ(receivable.nomeCamposSequencial(), std::vector<std::string>{"No_ContaReceber"});

  record->Let("No_ContaReceber", Variant(first));
  record->Let("Vl_ContaReceber", Variant(Currency(0.0)));
  receivable.Consultar(false);
  EXPECT_EQ(db.statements.back(), Lines({"SELECT A.*", "FROM   TbContaReceber A", "WHERE  A.Cd_EmpresaUsuariaSistema = 1",
                                         "       and A.No_ContaReceber = " + std::to_string(first),
                                         "       and A.No_Parcela = 1", ";"}) +
                                      "\r");
  EXPECT_EQ(CCur(record->Get("Vl_ContaReceber")), Currency(0.0001));
  // The flag written -1 is stored 1, which the closing's query looks for.
  EXPECT_EQ(testing::RowCount(db, "TbContaReceber WHERE Ic_GeradoPeloSistema = 1"), 2);

  receivable.Excluir();
  EXPECT_EQ(db.statements.back(), Lines({"DELETE ", "FROM   TbContaReceber", "WHERE  Cd_EmpresaUsuariaSistema = 1",
                                         "       And No_ContaReceber = " + std::to_string(first),
                                         "       And No_Parcela = 1"}) +
                                      "\r");
  EXPECT_EQ(testing::RowCount(db, "TbContaReceber"), 1);
}

TEST_F(DailyClosingTest, TheErpParametersAreOneRowPerCompany) {
  cgdParametrosMicrosiga parameters;
  parameters.Ob_cgpSistema(db.session);
  auto record = parameters.Ob_cgp();
  record->Let("Cd_EmpresaUsuariaSistema", Variant(3));
  record->Let("Ds_Filial", Variant("01"));
  record->Let("No_Moeda", Variant(1));
  parameters.Salvar();
  record->RestaurarDefault();
  record->Let("Cd_EmpresaUsuariaSistema", Variant(3));
  parameters.Consultar(false);
  EXPECT_EQ(db.statements.back(), Lines({"SELECT A.*", "FROM   TbParametrosMicrosiga A",
                                         "WHERE  A.Cd_EmpresaUsuariaSistema = 3", ";"}) +
                                      "\r");
  EXPECT_EQ(record->Get("Ds_Filial"), Variant("01"));
  parameters.Excluir();
  EXPECT_EQ(db.statements.back(),
            Lines({"DELETE ", "FROM   TbParametrosMicrosiga", "WHERE  Cd_EmpresaUsuariaSistema = 3"}) + "\r");
  EXPECT_FALSE(parameters.temCampoSequencial());
}

}  // namespace
}  // namespace vek
