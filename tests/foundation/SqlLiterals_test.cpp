#include "vek/foundation/SqlLiterals.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>

#include "support/TestSupport.h"
#include "vek/foundation/cgpSistema.h"
#include "vek/platform/Text.h"

namespace vek {
namespace {

using testing::ErrorOf;
using testing::kBrazilLocale;
using testing::kDotLocale;
using testing::LocaleGuard;

TEST(SqlLiterals, IntegersAreWrittenInPlainDigitsAndZeroMayBeNull) {
  const LocaleGuard locale(kBrazilLocale);
  EXPECT_EQ(TinyIntToSql(0, false), "0");
  EXPECT_EQ(TinyIntToSql(0, true), "Null");
  EXPECT_EQ(TinyIntToSql(-5, true), "-5");
  EXPECT_EQ(SmallIntToSql(std::numeric_limits<int16_t>::min(), true), "-32768");
  EXPECT_EQ(SmallIntToSql(0, true), "Null");
  EXPECT_EQ(IntToSql(1234567, false), "1234567");
  EXPECT_EQ(IntToSql(std::numeric_limits<int32_t>::min()), "-2147483648");
  EXPECT_EQ(IntToSql(0, true), "Null");
  EXPECT_EQ(BitToSql(true), "-1");
  EXPECT_EQ(BitToSql(false), "0");
}

TEST(SqlLiterals, MoneyEndsWithADecimalPointWhateverTheLocale) {
  for (const Locale& machine : {kBrazilLocale, kDotLocale}) {
    const LocaleGuard locale(machine);
    EXPECT_EQ(MoneyToSql(Currency(1234.5), 2), "1234.50") << machine.decimal;
    EXPECT_EQ(MoneyToSql(Currency(12), 0), "12.") << machine.decimal;
    EXPECT_EQ(MoneyToSql(Currency(-0.125), 2), "-0.13") << machine.decimal;
    EXPECT_EQ(MoneyToSql(Currency(1234567.8912), 4), "1234567.8912") << machine.decimal;
    EXPECT_EQ(MoneyToSql(Currency(0), 2), "0.00") << machine.decimal;
  }
}

TEST(SqlLiterals, SubstituirVirgulaPorPontoWalksTheTrimmedLengthOverTheWholeText) {
  EXPECT_EQ(SubstituirVirgulaPorPonto("1.234,56"), "1234.56");
  EXPECT_EQ(SubstituirVirgulaPorPonto("1,234.56"), "1.23456");
  EXPECT_EQ(SubstituirVirgulaPorPonto(""), "");
  // Leading blanks cost as many characters at the end; trailing ones go.
  EXPECT_EQ(SubstituirVirgulaPorPonto("  12,50"), "  12.");
  EXPECT_EQ(SubstituirVirgulaPorPonto("12,50  "), "12.50");
  // Characters, not bytes: "é" counts once.
  EXPECT_EQ(SubstituirVirgulaPorPonto(" é,5"), " é.");

  const VekError error = ErrorOf([] { SubstituirVirgulaPorPonto(String(32768, "1")); });
  EXPECT_EQ(error.Number(), kOverflow);
  EXPECT_EQ(error.Source(), " -> cdpModulo.SubstituirVirgulaPorPonto, ");
  EXPECT_EQ(Len(SubstituirVirgulaPorPonto(String(32767, "1"))), 32767);
}

TEST(SqlLiterals, VarCharCutsToTheMaximumInCharactersAndEscapesNothing) {
  EXPECT_EQ(VarCharToSql("", 10, false), "''");
  EXPECT_EQ(VarCharToSql("", 10, true), "Null");
  EXPECT_EQ(VarCharToSql(" ", 10, true), "' '");
  EXPECT_EQ(VarCharToSql("São João", 5, true), "'São J'");
  EXPECT_EQ(VarCharToSql("ABC", 3), "'ABC'");
  EXPECT_EQ(VarCharToSql("ABC", 0), "''");
  EXPECT_EQ(VarCharToSql("D'Ávila", 20), "'D'Ávila'");

  const VekError error = ErrorOf([] { VarCharToSql("ABC", -1); });
  EXPECT_EQ(error.Number(), kInvalidProcedureCall);
  EXPECT_EQ(error.Source(), " -> , sa3.VarCharToSql, ");
}

TEST(SqlLiterals, DatesFollowTheSessionFormatReadOnEveryCall) {
  cgpSistema session;
  const Date moment = DateSerial(2026, 3, 7) + TimeSerial(9, 5, 4);
  session.Let("Ds_FormatoData", Variant("yyyy-mm-dd"));
  EXPECT_EQ(DateSemHoraToSql(moment, session), "'2026-03-07'");
  EXPECT_EQ(DateComHoraToSql(moment, session), "'2026-03-07 09:05:04'");
  session.Let("Ds_FormatoData", Variant("dd/mm/yyyy"));
  EXPECT_EQ(DateSemHoraToSql(moment, session), "'07/03/2026'");
  EXPECT_EQ(DateComHoraToSql(moment, session), "'07/03/2026 09:05:04'");
  EXPECT_EQ(DateComHoraToSql(DateSerial(2026, 12, 31) + TimeSerial(23, 59, 59), session),
            "'31/12/2026 23:59:59'");
}

TEST(SqlLiterals, WordTablesCoverTheirRangesAndNothingElse) {
  EXPECT_EQ(DiaDaSemanaPorExtenso(1), "DOMINGO");
  EXPECT_EQ(DiaDaSemanaPorExtenso(3), "TERÇA");
  EXPECT_EQ(DiaDaSemanaPorExtenso(7), "SÁBADO");
  EXPECT_EQ(DiaDaSemanaPorExtenso(Weekday(DateSerial(2026, 3, 7))), "SÁBADO");
  EXPECT_EQ(DiaDaSemanaPorExtenso(0), "");
  EXPECT_EQ(DiaDaSemanaPorExtenso(8), "");

  EXPECT_EQ(NumeroPorExtenso(3), "TRÊS");
  EXPECT_EQ(NumeroPorExtenso(14), "QUATORZE");
  EXPECT_EQ(NumeroPorExtenso(23), "VINTE E TRÊS");
  EXPECT_EQ(NumeroPorExtenso(30), "TRINTA");
  EXPECT_EQ(NumeroPorExtenso(31), "TRINTA E UM");
  EXPECT_EQ(NumeroPorExtenso(0), "");
  EXPECT_EQ(NumeroPorExtenso(32), "");
}

}  // namespace
}  // namespace vek
