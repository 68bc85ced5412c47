#include "vek/platform/Variant.h"

#include <gtest/gtest.h>

#include "support/TestSupport.h"

namespace vek {
namespace {

using testing::ErrorOf;
using testing::kBrazilLocale;
using testing::kDotLocale;
using testing::LocaleGuard;

TEST(Variant, HoldsTheClassicTypesWithTheirVarTypeCodes) {
  EXPECT_EQ(Variant().Type(), VariantType::Empty);
  EXPECT_EQ(Variant::Null().Type(), VariantType::Null);
  EXPECT_EQ(Variant(true).Type(), VariantType::Boolean);
  EXPECT_EQ(Variant(uint8_t{7}).Type(), VariantType::Byte);
  EXPECT_EQ(Variant(int16_t{7}).Type(), VariantType::Integer);
  EXPECT_EQ(Variant(7).Type(), VariantType::Long);
  EXPECT_EQ(Variant(int64_t{1} << 40).Type(), VariantType::Double);
  EXPECT_EQ(Variant(int64_t{-5}).Type(), VariantType::Long);
  EXPECT_EQ(Variant(Currency(1.5)).Type(), VariantType::Currency);
  EXPECT_EQ(Variant(Date(1.0)).Type(), VariantType::Date);
  EXPECT_EQ(Variant("x").Type(), VariantType::String);
  EXPECT_EQ(static_cast<int>(VariantType::Byte), 17);
  EXPECT_EQ(Variant(int16_t{1}).TypeName(), "Integer");
  EXPECT_NE(Variant(int16_t{1}), Variant(1));  // same number, other type
}

TEST(Variant, IntegerConversionsRoundHalfToEven) {
  EXPECT_EQ(CLng(Variant(2.5)), 2);
  EXPECT_EQ(CLng(Variant(3.5)), 4);
  EXPECT_EQ(CLng(Variant(-2.5)), -2);
  EXPECT_EQ(CLng(Variant(2.5000001)), 3);
  EXPECT_EQ(CInt(Variant(0.5)), 0);
  EXPECT_EQ(CByte(Variant(254.5)), 254);
  EXPECT_EQ(CLng(Variant(Currency::FromRaw(25000))), 2);
  EXPECT_EQ(CLng(Variant(Currency::FromRaw(35000))), 4);
  EXPECT_EQ(CLng(Variant(Currency::FromRaw(-15000))), -2);
  EXPECT_EQ(CLng(Variant(true)), -1);
  EXPECT_EQ(CLng(Variant()), 0);
}

TEST(Variant, RangesOverflowWithError6) {
  EXPECT_EQ(CInt(Variant(32767)), 32767);
  EXPECT_EQ(ErrorOf([] { CInt(Variant(32768)); }).Number(), 6);
  EXPECT_EQ(ErrorOf([] { CInt(Variant(32767.5)); }).Number(), 6);  // rounds to 32768
  EXPECT_EQ(CInt(Variant(-32768)), -32768);
  EXPECT_EQ(ErrorOf([] { CInt(Variant(-32769)); }).Number(), 6);
  EXPECT_EQ(ErrorOf([] { CByte(Variant(-1)); }).Number(), 6);
  EXPECT_EQ(ErrorOf([] { CByte(Variant(256)); }).Number(), 6);
  EXPECT_EQ(CLng(Variant(2147483647.0)), INT32_MAX);
  EXPECT_EQ(ErrorOf([] { CLng(Variant(2147483648.0)); }).Number(), 6);
  EXPECT_EQ(CLng(Variant(-2147483648.0)), INT32_MIN);
  EXPECT_EQ(ErrorOf([] { CCur(Variant(1e300)); }).Number(), 6);
  EXPECT_EQ(ErrorOf([] { CDate(Variant(1e10)); }).Number(), 6);
}

TEST(Variant, EmptyTextAndNullAreTypeMismatchWhereANumberIsWantedAndNotNumeric) {
  for (const Variant& bad :
       {Variant(""), Variant("   "), Variant::Null(), Variant("12a"), Variant("1e"), Variant("--1")}) {
    EXPECT_EQ(ErrorOf([&] { CLng(bad); }).Number(), 13) << bad.TypeName();
    EXPECT_EQ(ErrorOf([&] { CDbl(bad); }).Number(), 13);
    EXPECT_EQ(ErrorOf([&] { CBool(bad); }).Number(), 13);
  }
  EXPECT_EQ(ErrorOf([] { CInt(Variant("")); }).Description(), "Type mismatch");
  EXPECT_EQ(ErrorOf([] { CInt(Variant(1e9)); }).Description(), "Overflow");
  EXPECT_TRUE(IsNumeric(Variant("12")));
  EXPECT_TRUE(IsNumeric(Variant()));
  EXPECT_FALSE(IsNumeric(Variant("")));
  EXPECT_FALSE(IsNumeric(Variant::Null()));
  EXPECT_FALSE(IsNumeric(Variant("1 2")));
}

TEST(Variant, TextReadsWithTheLocaleSeparators) {
  {
    LocaleGuard guard(kDotLocale);
    EXPECT_DOUBLE_EQ(CDbl(Variant(" 1,234.5 ")), 1234.5);
    EXPECT_DOUBLE_EQ(CDbl(Variant("-0.25")), -0.25);
    EXPECT_DOUBLE_EQ(CDbl(Variant("1.5E+3")), 1500);
    EXPECT_EQ(CLng(Variant("2.5")), 2);
  }
  {
    LocaleGuard guard(kBrazilLocale);
    EXPECT_DOUBLE_EQ(CDbl(Variant("1.234,56")), 1234.56);
    EXPECT_DOUBLE_EQ(CDbl(Variant("1,5")), 1.5);
    EXPECT_DOUBLE_EQ(CDbl(Variant("1.5")), 15);  // "." groups digits here
    EXPECT_EQ(CCur(Variant("1234,5")), Currency::FromRaw(12345000));
  }
  EXPECT_EQ(CLng(Variant("&H041")), 65);
  EXPECT_EQ(CLng(Variant("&hFF")), 255);
  EXPECT_EQ(CLng(Variant("&HFFFF")), -1);
  EXPECT_EQ(CLng(Variant("&O17")), 15);
  EXPECT_EQ(ErrorOf([] { CLng(Variant("&HXYZ")); }).Number(), 13);
}

TEST(Variant, BooleansReadTrueFalseAndNumbers) {
  EXPECT_TRUE(CBool(Variant("True")));
  EXPECT_TRUE(CBool(Variant(" TRUE ")));
  EXPECT_FALSE(CBool(Variant("false")));
  EXPECT_TRUE(CBool(Variant("-1")));
  EXPECT_FALSE(CBool(Variant("0")));
  EXPECT_TRUE(CBool(Variant(0.001)));
  EXPECT_FALSE(CBool(Variant()));
  EXPECT_EQ(ErrorOf([] { CBool(Variant("Sim")); }).Number(), 13);
  EXPECT_EQ(CStr(Variant(true)), "True");
  EXPECT_EQ(CStr(Variant(false)), "False");
}

TEST(Variant, CurrencyKeepsTenThousandths) {
  EXPECT_EQ(CCur(Variant(0.00005)), Currency::FromRaw(0));  // half to even
  EXPECT_EQ(CCur(Variant(0.00015)), Currency::FromRaw(2));  // as it reads, not its binary image
  EXPECT_EQ(CCur(Variant(-0.00015)), Currency::FromRaw(-2));
  EXPECT_EQ(CCur(Variant(0.00025)), Currency::FromRaw(2));
  EXPECT_EQ(CCur(Variant(12.34565)), Currency::FromRaw(123456));
  EXPECT_EQ(CCur(Variant(0.1 + 0.2)), Currency::FromRaw(3000));
  EXPECT_EQ(CCur(Variant(-922337203685476.0)).Raw(), -9223372036854760000);
  EXPECT_EQ(CCur(Variant(1234.5)).Raw(), 12345000);
  EXPECT_EQ(CCur(Variant(INT32_MAX)).Raw(), int64_t{INT32_MAX} * 10000);
  EXPECT_EQ(Currency::FromRaw(-12345).ToPlainString(), "-1.2345");
  EXPECT_EQ(Currency::FromRaw(120000).ToPlainString(), "12");
  EXPECT_EQ(Currency::FromRaw(5).ToPlainString(), "0.0005");
}

TEST(Variant, DatesReadDayFirstAndIso) {
  const Date expected = DateSerial(2026, 11, 21) + TimeSerial(10, 30, 0);
  EXPECT_EQ(CDate(Variant("21/11/2026 10:30")), expected);
  EXPECT_EQ(CDate(Variant("2026-11-21 10:30:00")), expected);
  EXPECT_EQ(CDate(Variant("01/02/2026")), DateSerial(2026, 2, 1));
  EXPECT_EQ(CDate(Variant("10:30")), TimeSerial(10, 30, 0));
  EXPECT_EQ(CDate(Variant(2.0)), DateSerial(1900, 1, 1));
  EXPECT_EQ(ErrorOf([] { CDate(Variant("31/02/2026")); }).Number(), 13);
  EXPECT_EQ(ErrorOf([] { CDate(Variant("")); }).Number(), 13);
  EXPECT_EQ(ErrorOf([] { CDate(Variant::Null()); }).Number(), 13);
  EXPECT_TRUE(IsDate(Variant("29/02/2024")));
  EXPECT_FALSE(IsDate(Variant("29/02/2026")));
}

TEST(Variant, CStrWritesNumbersAndDatesAsTheRuntimeDid) {
  LocaleGuard guard(kBrazilLocale);
  EXPECT_EQ(CStr(Variant(1.5)), "1,5");
  EXPECT_EQ(CStr(Variant(0.1)), "0,1");
  EXPECT_EQ(CStr(Variant(1e15)), "1E+15");
  EXPECT_EQ(CStr(Variant(123456789012345.0)), "123456789012345");
  EXPECT_EQ(CStr(Variant(0.0001)), "0,0001");
  EXPECT_EQ(CStr(Variant(0.00001)), "1E-05");
  EXPECT_EQ(CStr(Variant(-3)), "-3");
  EXPECT_EQ(CStr(Variant(Currency(1234.5))), "1234,5");
  EXPECT_EQ(CStr(Variant()), "");
  EXPECT_EQ(CStr(Variant(DateSerial(2026, 11, 21) + TimeSerial(10, 30, 0))), "21/11/2026 10:30:00");
  EXPECT_EQ(CStr(Variant(DateSerial(2026, 1, 5))), "05/01/2026");
  EXPECT_EQ(CStr(Variant(TimeSerial(7, 3, 9))), "07:03:09");
  EXPECT_EQ(ErrorOf([] { CStr(Variant::Null()); }).Number(), 94);
}

}  // namespace
}  // namespace vek
