#include "vek/revenue/cgdApuracaoReceita.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "revenue/AssessmentData.h"
#include "vek/db/Recordset.h"
#include "vek/foundation/MessageCatalogue.h"
#include "vek/revenue/cgdApuracaoReceita_Tarifa.h"

namespace vek {
namespace {

using testing::ErrorOf;
using testing::Lines;

std::string Select(int32_t tenant, int32_t number) {
  return Lines({"SELECT A.*", "FROM   TbApuracaoReceita A", "WHERE  A.Cd_EmpresaUsuariaSistema = " + std::to_string(tenant),
                "       and A.No_ApuracaoReceita = " + std::to_string(number) + ";"}) +
         "\r";
}

std::string Insert(const std::string& values) {
  return Lines({"INSERT INTO TBAPURACAORECEITA (", "CD_EMPRESAUSUARIASISTEMA,", "NO_APURACAORECEITA,", "CD_TIPORECEITA,",
                "CD_PESSOA,", "DT_FATURAMENTO,", "DT_MOVIMENTO,", "DT_VENCIMENTO,", "NO_CONTARECEBER,",
                "VL_APURACAORECEITA,", "NO_PARCELA,", "CD_CAIXA,", "DT_INICIAL,", "DT_FINAL,", "IC_TOTALIZACAODECAIXA",
                ")", "Values (", values, ")"}) +
         "\r";
}

class cgdApuracaoReceitaTest : public ::testing::Test {
 protected:
  cgdApuracaoReceitaTest() { apuracao.Ob_cgpSistema(db.session); }

  // A boarding assessment of Viação Araguarina for 20/11/2026, billed on the
  // 21st and due on the 28th, with the instalment and till the caller chose.
  std::shared_ptr<cgpApuracaoReceita> Boarding(int32_t number = 0) {
    auto record = apuracao.Ob_cgp();
    record->RestaurarDefault();
    record->Let("Cd_EmpresaUsuariaSistema", Variant(1));
    record->Let("No_ApuracaoReceita", Variant(number));
    record->Let("Cd_TipoReceita", Variant(1));
    record->Let("Cd_Pessoa", Variant(10));
    record->Let("Dt_Faturamento", Variant(DateSerial(2026, 11, 21)));
    record->Let("Dt_Movimento", Variant(DateSerial(2026, 11, 20)));
    record->Let("Dt_Vencimento", Variant(DateSerial(2026, 11, 28)));
    record->Let("Vl_ApuracaoReceita", Variant(Currency::FromRaw(12345678)));  // 1234,5678
    record->Let("No_Parcela", Variant(int16_t{7}));
    return record;
  }

  std::vector<std::string> Stored(const std::string& columns, const std::string& where = "") {
    testing::LocaleGuard dot(testing::kDotLocale);
    return db.Rows("SELECT " + columns + " FROM TbApuracaoReceita " + where +
                   " ORDER BY Cd_EmpresaUsuariaSistema, No_ApuracaoReceita");
  }

  testing::AssessmentData db;
  cgdApuracaoReceita apuracao;
};

TEST_F(cgdApuracaoReceitaTest, ANewAssessmentIsNumberedAndInsertedWithItsOwnLiteralsAndInstalmentOne) {
  testing::LocaleGuard brazil(testing::kBrazilLocale);  // money still goes with a decimal point
  auto record = Boarding();
  apuracao.Salvar();
  EXPECT_EQ(CLng(record->Get("No_ApuracaoReceita")), 1);
  // Number 0 goes straight to the insert: no UPDATE is tried.
  for (const std::string& statement : db.statements) EXPECT_EQ(statement.find("UPDATE TbApuracaoReceita"), std::string::npos);
  EXPECT_EQ(db.statements.back(),
            Insert("1,1,1,10,'2026-11-21','2026-11-20','2026-11-28',0,1234.57,1,0,'1899-12-30','1899-12-30',0"));
  // The header keeps two decimals and the instalment is 1 whatever the object held.
  EXPECT_EQ(Stored("No_ApuracaoReceita, Cd_Pessoa, Vl_ApuracaoReceita, No_Parcela, Cd_Caixa"),
            (std::vector<std::string>{"1|10|1234.57|1|0"}));

  // The next one takes the next number; a till total writes its flag as a small integer.
  Boarding();
  record->Let("Cd_TipoReceita", Variant(2));
  record->Let("Cd_Caixa", Variant(3));
  record->Let("Ic_TotalizacaoDeCaixa", Variant(true));
  record->Let("Dt_Inicial", Variant(DateSerial(2026, 11, 1)));
  record->Let("Dt_Final", Variant(DateSerial(2026, 11, 30)));
  apuracao.Incluir();
  EXPECT_EQ(CLng(record->Get("No_ApuracaoReceita")), 2);
  EXPECT_EQ(db.statements.back(),
            Insert("1,2,2,10,'2026-11-21','2026-11-20','2026-11-28',0,1234.57,1,3,'2026-11-01','2026-11-30',-1"));
  // Stored as SQL Server keeps a bit: 1, so the till reports find it.
  EXPECT_EQ(Stored("No_ApuracaoReceita, Cd_TipoReceita", "WHERE Ic_TotalizacaoDeCaixa = 1"),
            (std::vector<std::string>{"2|2"}));

  EXPECT_TRUE(apuracao.temCampoSequencial());
  EXPECT_EQ(apuracao.nomeCamposSequencial(), std::vector<std::string>{"No_ApuracaoReceita"});
}

TEST_F(cgdApuracaoReceitaTest, AnUpdateWritesEveryColumnInItsOrderAndKeepsInstalmentOne) {
  auto record = Boarding();
  apuracao.Salvar();
  db.statements.clear();

  record->Let("Cd_Pessoa", Variant(11));
  record->Let("No_ContaReceber", Variant(44));
  record->Let("Vl_ApuracaoReceita", Variant(Currency::FromRaw(995)));  // 0,0995
  record->Let("No_Parcela", Variant(int16_t{9}));
  record->Let("Cd_Caixa", Variant(5));
  record->Let("Dt_Inicial", Variant(DateSerial(2026, 11, 2)));
  record->Let("Dt_Final", Variant(DateSerial(2026, 11, 3)));
  record->Let("Ic_TotalizacaoDeCaixa", Variant(true));
  apuracao.Salvar();
  EXPECT_EQ(db.statements,
            (std::vector<std::string>{Lines({"UPDATE TbApuracaoReceita Set ",
                                             "       Cd_EmpresaUsuariaSistema = 1,",
                                             "       No_ApuracaoReceita = 1,",
                                             "       Cd_TipoReceita = 1,",
                                             "       Cd_Pessoa = 11,",
                                             "       Dt_Faturamento = '2026-11-21',",
                                             "       Dt_Movimento = '2026-11-20',",
                                             "       Dt_Vencimento = '2026-11-28',",
                                             "       No_ContaReceber = 44,",
                                             "       Vl_ApuracaoReceita = 0.10,",
                                             "       No_Parcela = 1,",
                                             "       Cd_Caixa = 5,",
                                             "       Dt_Final = '2026-11-03',",
                                             "       Dt_Inicial = '2026-11-02',",
                                             "       Ic_TotalizacaoDeCaixa = -1",
                                             "WHERE  Cd_EmpresaUsuariaSistema = 1",
                                             "       and No_ApuracaoReceita = 1"}) +
                                      "\r"}));
  EXPECT_EQ(Stored("Cd_Pessoa, No_ContaReceber, Vl_ApuracaoReceita, No_Parcela, Cd_Caixa",
                   "WHERE Ic_TotalizacaoDeCaixa = 1"),
            (std::vector<std::string>{"11|44|0.1|1|5"}));
  auto loaded = apuracao.Consultar(false);
  EXPECT_EQ(CDate(loaded->Get("Dt_Inicial")), DateSerial(2026, 11, 2));
  EXPECT_EQ(CDate(loaded->Get("Dt_Final")), DateSerial(2026, 11, 3));
  EXPECT_EQ(CInt(loaded->Get("No_Parcela")), 1);

  // A number that is not there: the UPDATE changes nothing, so Salvar inserts under it.
  db.statements.clear();
  Boarding(30);
  apuracao.Salvar();
  ASSERT_EQ(db.statements.size(), 2u);
  EXPECT_EQ(db.statements[0].substr(0, 30), "UPDATE TbApuracaoReceita Set \r");
  EXPECT_EQ(db.statements[1].substr(0, 31), "INSERT INTO TBAPURACAORECEITA (");
  EXPECT_EQ(Stored("No_ApuracaoReceita"), (std::vector<std::string>{"1", "30"}));
  const VekError not_found = ErrorOf([&] {
    Boarding(31);
    apuracao.Alterar();
  });
  EXPECT_EQ(not_found.Number(), kErrorRecordNotFound);
  EXPECT_EQ(not_found.Source(), " -> cgdApuracaoReceita.Alterar,  -> cgdApuracaoReceita.Alterar, ");
}

TEST_F(cgdApuracaoReceitaTest, ConsultarReadsTheCompanysNumberAndExcluirTakesTheLinesFirst) {
  db.Assess(1, 5, 10, "2026-11-20", {{1, 3}, {2, 4}});
  db.Assess(1, 6, 11, "2026-11-20", {{1, 8}});
  db.Assess(2, 5, 12, "2026-11-20", {{1, 2}});  // another company's number 5

  auto record = apuracao.Ob_cgp();
  record->Let("Cd_EmpresaUsuariaSistema", Variant(1));
  record->Let("No_ApuracaoReceita", Variant(5));
  auto loaded = apuracao.Consultar();
  EXPECT_EQ(db.statements.back(), Select(1, 5));
  EXPECT_EQ(CLng(loaded->Get("Cd_Pessoa")), 10);
  EXPECT_EQ(CCur(loaded->Get("Vl_ApuracaoReceita")), Currency::FromRaw(110000));  // 3 x 1 + 4 x 2
  EXPECT_EQ(CDate(loaded->Get("Dt_Movimento")), DateSerial(2026, 11, 20));

  db.statements.clear();
  apuracao.Excluir();
  EXPECT_EQ(db.statements,
            (std::vector<std::string>{
                Lines({"DELETE ", "FROM   TbApuracaoReceita_TbTarifa", "WHERE  Cd_EmpresaUsuariaSistema = 1",
                       "       and No_ApuracaoReceita = 5"}) + "\r",
                Lines({"DELETE ", "FROM   TbApuracaoReceita", "WHERE  Cd_EmpresaUsuariaSistema = 1",
                       "       and No_ApuracaoReceita = 5"}) + "\r"}));
  EXPECT_EQ(Stored("Cd_EmpresaUsuariaSistema, No_ApuracaoReceita"), (std::vector<std::string>{"1|6", "2|5"}));
  EXPECT_EQ(db.Rows("SELECT Cd_EmpresaUsuariaSistema, No_ApuracaoReceita, Cd_Tarifa FROM TbApuracaoReceita_TbTarifa "
                    "ORDER BY 1, 2, 3"),
            (std::vector<std::string>{"1|6|1", "2|5|1"}));

  // Gone: the default argument resets the object, false raises.
  record->Let("No_ApuracaoReceita", Variant(5));
  EXPECT_EQ(CLng(apuracao.Consultar()->Get("Cd_Pessoa")), 0);
  record->Let("Cd_EmpresaUsuariaSistema", Variant(1));
  record->Let("No_ApuracaoReceita", Variant(5));
  EXPECT_EQ(ErrorOf([&] { apuracao.Consultar(false); }).Number(), kErrorRecordNotFound);
  // Deleting it again is no error; a number 0 is refused before any SQL.
  apuracao.Excluir();
  db.statements.clear();
  record->Let("No_ApuracaoReceita", Variant(0));
  const VekError no_key = ErrorOf([&] { apuracao.Excluir(); });
  EXPECT_EQ(no_key.Number(), kErrorNoKey);
  EXPECT_EQ(no_key.Source(), " -> cgdApuracaoReceita.Excluir,  -> cgdApuracaoReceita.Excluir, ");
  EXPECT_TRUE(db.statements.empty());
}

TEST_F(cgdApuracaoReceitaTest, ThePayersAssessmentsOfTheDayAreFoundForTheCompanyOnly) {
  db.Assess(1, 1, 10, "2026-11-20", {{1, 3}});
  db.Assess(1, 2, 10, "2026-11-21", {{1, 4}});
  db.Assess(1, 3, 11, "2026-11-20", {{1, 5}});
  db.Assess(2, 1, 10, "2026-11-20", {{1, 6}});

  auto record = apuracao.Ob_cgp();
  record->Let("Cd_EmpresaUsuariaSistema", Variant(1));
  record->Let("Cd_Pessoa", Variant(10));
  record->Let("Dt_Movimento", Variant(DateSerial(2026, 11, 20)));
  auto rows = apuracao.ConsultarApuracoesPorDataEEmpresa();
  EXPECT_EQ(db.statements.back(), Lines({"SELECT A.*", "FROM   TbApuracaoReceita A",
                                         "WHERE  A.Cd_EmpresaUsuariaSistema = 1",
                                         "       AND A.Dt_Movimento = '2026-11-20'", "       AND A.Cd_Pessoa = 10"}) +
                                      "\r");
  ASSERT_EQ(rows->RecordCount(), 1);
  EXPECT_EQ(CLng(rows->Fields().Item("No_ApuracaoReceita").Value()), 1);
  EXPECT_EQ(rows->ActiveConnection(), nullptr);  // detached, as every report

  record->Let("Cd_Pessoa", Variant(12));
  EXPECT_EQ(apuracao.ConsultarApuracoesPorDataEEmpresa()->RecordCount(), 0);
}

// ---- the tariff lines -------------------------------------------------------

class cgdApuracaoReceita_TarifaTest : public cgdApuracaoReceitaTest {
 protected:
  cgdApuracaoReceita_TarifaTest() {
    linha.Ob_cgpSistema(db.session);
    db.Assess(1, 5, 10, "2026-11-20", {});
  }

  std::shared_ptr<cgpApuracaoReceita_Tarifa> Line(int32_t tariff, int16_t quantity, int64_t raw_value) {
    auto record = linha.Ob_cgp();
    record->Let("Cd_EmpresaUsuariaSistema", Variant(1));
    record->Let("No_ApuracaoReceita", Variant(5));
    record->Let("Cd_Tarifa", Variant(tariff));
    record->Let("Qt_Tarifa", Variant(quantity));
    record->Let("Vl_Tarifa", Variant(Currency::FromRaw(raw_value)));
    return record;
  }

  cgdApuracaoReceita_Tarifa linha;
};

TEST_F(cgdApuracaoReceita_TarifaTest, ALineKeepsThreeDecimalsOfItsUnitPriceAndIsFoundByItsThreeKeys) {
  const std::string select = Lines({"SELECT A.*", "FROM   TbApuracaoReceita_TbTarifa A",
                                    "WHERE  A.Cd_EmpresaUsuariaSistema = 1", "       and A.No_ApuracaoReceita = 5",
                                    "       and A.Cd_Tarifa = 3;"}) +
                             "\r";
  Line(3, 120, 43217);  // 4,3217
  linha.Salvar();
  EXPECT_EQ(db.statements,
            (std::vector<std::string>{select, Lines({"INSERT INTO TBAPURACAORECEITA_TBTARIFA (",
                                                     "CD_EMPRESAUSUARIASISTEMA,", "NO_APURACAORECEITA,", "CD_TARIFA,",
                                                     "QT_TARIFA,", "VL_TARIFA", ")", "Values (", "1,5,3,120,4.322",
                                                     ")"}) +
                                                  "\r"}));
  EXPECT_FALSE(linha.temCampoSequencial());
  EXPECT_TRUE(linha.nomeCamposSequencial().empty());

  Line(4, 2, 10000);
  linha.Incluir();
  cgdApuracaoReceita_Tarifa other;
  other.Ob_cgpSistema(db.session);
  auto key = other.Ob_cgp();
  key->Let("Cd_EmpresaUsuariaSistema", Variant(1));
  key->Let("No_ApuracaoReceita", Variant(5));
  key->Let("Cd_Tarifa", Variant(3));
  auto loaded = other.Consultar(false);
  EXPECT_EQ(db.statements.back(), select);
  EXPECT_EQ(CInt(loaded->Get("Qt_Tarifa")), 120);
  EXPECT_EQ(CCur(loaded->Get("Vl_Tarifa")), Currency::FromRaw(43220));

  // An update goes through the stored row; the line total follows.
  loaded->Let("Qt_Tarifa", Variant(int16_t{121}));
  other.Salvar();
  {
    testing::LocaleGuard dot(testing::kDotLocale);
    EXPECT_EQ(db.Rows("SELECT Cd_Tarifa, Qt_Tarifa, Qt_Tarifa * Vl_Tarifa FROM TbApuracaoReceita_TbTarifa ORDER BY 1"),
              (std::vector<std::string>{"3|121|522.962", "4|2|2"}));
  }

  db.statements.clear();
  other.Excluir();
  EXPECT_EQ(db.statements,
            (std::vector<std::string>{Lines({"DELETE ", "FROM   TbApuracaoReceita_TbTarifa",
                                             "WHERE  Cd_EmpresaUsuariaSistema = 1", "       And No_ApuracaoReceita = 5",
                                             "       And Cd_Tarifa = 3"}) +
                                      "\r"}));
  EXPECT_EQ(db.Rows("SELECT Cd_Tarifa FROM TbApuracaoReceita_TbTarifa"), (std::vector<std::string>{"4"}));
  key->Let("Cd_Tarifa", Variant(0));
  EXPECT_EQ(ErrorOf([&] { other.Excluir(); }).Number(), kErrorNoKey);
}

TEST_F(cgdApuracaoReceita_TarifaTest, ALineOfAMissingAssessmentOrTariffIsRefusedByTheDatabase) {
  Line(3, 1, 10000)->Let("No_ApuracaoReceita", Variant(99));
  const VekError orphan = ErrorOf([&] { linha.Incluir(); });
  EXPECT_EQ(orphan.Number(), static_cast<int32_t>(0x80040E2Fu));
  EXPECT_EQ(orphan.Source(), testing::ProviderSource() + " -> cgdApuracaoReceita_Tarifa.Incluir, ");
  Line(55, 1, 10000);
  EXPECT_EQ(ErrorOf([&] { linha.Incluir(); }).Number(), static_cast<int32_t>(0x80040E2Fu));
  EXPECT_TRUE(db.Rows("SELECT Cd_Tarifa FROM TbApuracaoReceita_TbTarifa").empty());
}

}  // namespace
}  // namespace vek
