#include "vek/platform/Format.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <string>
#include <vector>

#include "support/TestSupport.h"

namespace vek {
namespace {

using testing::ErrorOf;
using testing::kBrazilLocale;
using testing::kDotLocale;
using testing::LocaleGuard;

struct Case {
  Variant value;
  std::string pattern;
  std::string with_dot;
  std::string in_brazil;
};

void ExpectInBothLocales(const std::vector<Case>& cases) {
  for (const Case& c : cases) {
    {
      LocaleGuard guard(kDotLocale);
      EXPECT_EQ(Format(c.value, c.pattern), c.with_dot) << "pattern " << c.pattern;
    }
    {
      LocaleGuard guard(kBrazilLocale);
      EXPECT_EQ(Format(c.value, c.pattern), c.in_brazil) << "pattern " << c.pattern;
    }
  }
}

Currency Money(int64_t ten_thousandths) { return Currency::FromRaw(ten_thousandths); }

TEST(Format, GroupedWholeNumbers) {
  ExpectInBothLocales({
      {1200000, "###,###,##0", "1,200,000", "1.200.000"},
      {0, "###,###,##0", "0", "0"},
      {999, "###,###,##0", "999", "999"},
      {1000, "###,###,##0", "1,000", "1.000"},
      {-1234567, "###,###,##0", "-1,234,567", "-1.234.567"},
      {1234.5, "###,###,##0", "1,235", "1.235"},
      {-0.4, "###,###,##0", "0", "0"},
      {1e15, "###,###,##0", "1,000,000,000,000,000", "1.000.000.000.000.000"},
      {1234567, "###,##0", "1,234,567", "1.234.567"},
      {int16_t{-32768}, "###,##0", "-32,768", "-32.768"},
      {0, "###,###", "", ""},
      {0.4, "###,###", "", ""},
      {0.5, "###,###", "1", "1"},
      {1234, "###,###", "1,234", "1.234"},
  });
}

TEST(Format, DecimalsRoundHalfAwayFromZeroOnFifteenDigits) {
  ExpectInBothLocales({
      {1234.5, "###,###,##0.00", "1,234.50", "1.234,50"},
      {1.005, "###,###,##0.00", "1.01", "1,01"},
      {-1.005, "###,###,##0.00", "-1.01", "-1,01"},
      {0.004, "###,###,##0.00", "0.00", "0,00"},
      {-0.004, "###,###,##0.00", "0.00", "0,00"},
      {999999.995, "###,###,##0.00", "1,000,000.00", "1.000.000,00"},
      {0.1 + 0.2, "0.0000000000000000", "0.3000000000000000", "0,3000000000000000"},
      {1.0 / 3.0, "0.00000000000000000000", "0.33333333333333300000", "0,33333333333333300000"},
      {2.5, "0", "3", "3"},
      {-2.5, "0", "-3", "-3"},
      {0.5, "0", "1", "1"},
      {1e20, "0", "100000000000000000000", "100000000000000000000"},
      {45.25, "#0.0", "45.3", "45,3"},
      {0, "#0.0", "0.0", "0,0"},
      {0.05, "#0.0", "0.1", "0,1"},
      {12.5, "###.00", "12.50", "12,50"},
      {0.256, "###.00", ".26", ",26"},
      {1234.5, "###.00", "1234.50", "1234,50"},
  });
}

TEST(Format, CurrencyRoundsItsExactTenThousandths) {
  ExpectInBothLocales({
      {Money(12345678), "###,###,##0.00", "1,234.57", "1.234,57"},
      {Money(50), "###,###,##0.00", "0.01", "0,01"},
      {Money(-50), "###,###,##0.00", "-0.01", "-0,01"},
      {Money(-49), "###,###,##0.00", "0.00", "0,00"},
      {Money(12345), "###########0.0000", "1.2345", "1,2345"},
      {Money(-1), "###########0.0000", "-0.0001", "-0,0001"},
      {Money(12345000), "###########0.00", "1234.50", "1234,50"},
      // 922337203685477.5808: more digits than a Double holds, still exact.
      {Money(std::numeric_limits<int64_t>::min()), "0", "-922337203685478", "-922337203685478"},
      {Money(std::numeric_limits<int64_t>::max()), "###,###,##0.0000",
       "922,337,203,685,477.5807", "922.337.203.685.477,5807"},
  });
}

TEST(Format, IntegerPartAndDecimalSeparatorShowAsThePatternSays) {
  ExpectInBothLocales({
      {0, "###,###.00", ".00", ",00"},
      {0.5, "###,###.00", ".50", ",50"},
      {-0.25, "###,###.00", "-.25", "-,25"},
      {1234.5, "###,###.00", "1,234.50", "1.234,50"},
      {5, "00", "05", "05"},
      {123, "00", "123", "123"},
      {-5, "00", "-05", "-05"},
      {2.5, "00", "03", "03"},
      // A pattern ending in the point keeps the separator.
      {12, "###########0.", "12.", "12,"},
      {12.5, "###########0.", "13.", "13,"},
      {-3, "###########0.", "-3.", "-3,"},
  });
}

TEST(Format, LiteralsAndQuotedTextAreCopied) {
  ExpectInBothLocales({
      {-5, "R$ ###,##0.00", "-R$ 5.00", "-R$ 5,00"},
      {1234.5, "R$ ###,##0.00", "R$ 1,234.50", "R$ 1.234,50"},
      {12.34, "#0.0 %", "12.3 %", "12,3 %"},
      {7, "\"Qtd: \"0", "Qtd: 7", "Qtd: 7"},
      {7, "\\d0", "d7", "d7"},
      {7, "0 €", "7 €", "7 €"},
      // A comma after the last digit divides by a thousand.
      {1234567, "#,##0,", "1,235", "1.235"},
  });
}

TEST(Format, NumberPatternsTakeEveryKindOfValue) {
  ExpectInBothLocales({
      {Variant::Null(), "###,##0", "", ""},
      {Variant(), "00", "00", "00"},
      {Variant(), "###,###", "", ""},
      {true, "0", "-1", "-1"},
      {false, "0", "0", "0"},
      {uint8_t{255}, "00", "255", "255"},
      {DateSerial(2026, 11, 21), "0", "46347", "46347"},
      {DateSerial(2026, 11, 21) + 0.5, "###,##0.00", "46,347.50", "46.347,50"},
      {"abc", "###,##0", "abc", "abc"},
      {"", "###,##0", "", ""},
      {"21/11/2026", "###,##0", "21/11/2026", "21/11/2026"},
  });
  {
    LocaleGuard guard(kBrazilLocale);
    EXPECT_EQ(Format(Variant("1234,5"), "###,###,##0.00"), "1.234,50");
    EXPECT_EQ(Format(Variant(" -7 "), "00"), "-07");
  }
  {
    LocaleGuard guard(kDotLocale);
    EXPECT_EQ(Format(Variant("1234.5"), "###,###,##0.00"), "1,234.50");
  }
  EXPECT_EQ(ErrorOf([] { Format(Variant(std::numeric_limits<double>::infinity()), "0"); }).Number(),
            kOverflow);
}

TEST(Format, DatePatternsOfTheSystem) {
  const Date moment = DateSerial(2026, 1, 5) + TimeSerial(7, 3, 9);
  ExpectInBothLocales({
      {moment, "dd/mm/yyyy", "05/01/2026", "05/01/2026"},
      {moment, "dd/mm/yyyy hh:Nn:Ss", "05/01/2026 07:03:09", "05/01/2026 07:03:09"},
      {moment, "hh:NN", "07:03", "07:03"},
      {moment, "yyyy-mm-dd hh:Nn:ss", "2026-01-05 07:03:09", "2026-01-05 07:03:09"},
      {moment, "mm/dd/yyyy", "01/05/2026", "01/05/2026"},
      {TimeSerial(23, 59, 0), "hh:NN", "23:59", "23:59"},
  });
}

TEST(Format, DateTokensAndTheirReadings) {
  const Date moment = DateSerial(2026, 1, 5) + TimeSerial(7, 3, 9);
  EXPECT_EQ(Format(moment, "DD/MM/YYYY"), "05/01/2026");
  EXPECT_EQ(Format(moment, "d/m/yy"), "5/1/26");
  EXPECT_EQ(Format(moment, "h:n:s"), "7:3:9");
  // m after an hour is the minute; elsewhere it is the month.
  EXPECT_EQ(Format(moment, "hh:mm"), "07:03");
  EXPECT_EQ(Format(moment, "mm hh"), "01 07");
  EXPECT_EQ(Format(moment, "yyyy-mm-ddThh:nn:ss"), "2026-01-05T07:03:09");
  EXPECT_EQ(Format(DateSerial(2026, 3, 1), "y"), "60");
  EXPECT_EQ(Format(DateSerial(2026, 11, 21), "dd \"de\" mm"), "21 de 11");
  EXPECT_EQ(Format(DateSerial(2026, 11, 21), "\\d\\d dd"), "dd 21");
  EXPECT_EQ(Format(DateSerial(9, 7, 3), "yyyy-mm-dd"), "2009-07-03");
  EXPECT_EQ(Format(TimeSerial(10, 0, 0), "dd/mm/yyyy"), "30/12/1899");
  EXPECT_EQ(Format(Date(-1.25), "dd/mm/yyyy hh:Nn"), "29/12/1899 06:00");
  // The shown second is rounded and carries into the next day.
  EXPECT_EQ(Format(DateSerial(2026, 12, 31) + 86399.6 / 86400.0, "dd/mm/yyyy hh:Nn:ss"),
            "01/01/2027 00:00:00");
}

TEST(Format, DatePatternsTakeDatesNumbersAndDateText) {
  EXPECT_EQ(Format(Variant("21/11/2026 10:30"), "yyyy-mm-dd hh:Nn:ss"), "2026-11-21 10:30:00");
  EXPECT_EQ(Format(Variant("2026-11-21"), "dd/mm/yyyy"), "21/11/2026");
  EXPECT_EQ(Format(Variant("amanhã"), "dd/mm/yyyy"), "amanhã");
  EXPECT_EQ(Format(Variant("31/02/2026"), "dd/mm/yyyy"), "31/02/2026");
  EXPECT_EQ(Format(Variant(46347.4375), "dd/mm/yyyy hh:Nn"), "21/11/2026 10:30");
  EXPECT_EQ(Format(Variant(0), "dd/mm/yyyy"), "30/12/1899");
  EXPECT_EQ(Format(Variant(), "dd/mm/yyyy"), "30/12/1899");
  EXPECT_EQ(Format(Variant::Null(), "dd/mm/yyyy"), "");
}

TEST(Format, WithoutAPatternItIsTheTextOfTheValue) {
  LocaleGuard guard(kBrazilLocale);
  EXPECT_EQ(Format(Variant::Null()), "");
  EXPECT_EQ(Format(Variant(1.5)), "1,5");
  EXPECT_EQ(Format(Variant(1.5), ""), "1,5");
  EXPECT_EQ(Format(Variant(DateSerial(2026, 11, 21))), "21/11/2026");
}

}  // namespace
}  // namespace vek
