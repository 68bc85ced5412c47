#include "vek/db/dialect/DateText.h"

#include <gtest/gtest.h>

#include <string>

#include "vek/platform/Date.h"

namespace vek::dialect {
namespace {

// The canonical text of a parse, or "none".
std::string Canonical(std::string_view text, bool time_only = false) {
  const auto parts = ParseDateText(text, time_only);
  return parts ? FormatCanonical(*parts) : "none";
}

TEST(DateText, ReadsDayFirstIsoAndTimeFormsAndRefusesOthers) {
  EXPECT_EQ(Canonical("1/2/2026 7:05"), "2026-02-01 07:05:00");
  EXPECT_EQ(Canonical("2026-11-21 08:09:10.5"), "2026-11-21 08:09:10.500");
  EXPECT_EQ(Canonical("2026-11-21 08:09:10.1239"), "2026-11-21 08:09:10.123");
  for (const char* text : {"00/01/2026", "21/13/2026", "21/11/2026 10:60", "21/11/2026T10:00",
                           "2026-11-21 10:00:00.", "20261121", "12345-678", "2026-11-21x", ""}) {
    EXPECT_EQ(Canonical(text), "none") << text;
  }
  // A time alone lies on the first of 1900, where it is accepted.
  EXPECT_EQ(Canonical("10:30"), "none");
  EXPECT_EQ(Canonical("10:30", true), "1900-01-01 10:30:00");
  EXPECT_EQ(Canonical("23:59:59.999", true), "1900-01-01 23:59:59.999");
}

// Literals are read here rather than by the platform's ParseDate (which has
// no milliseconds); both must agree on every date the library writes.
TEST(DateText, AgreesWithThePlatformsParseDate) {
  for (const char* text :
       {"21/11/2026", "1/2/2026 7:05", "21/11/2026 23:59:59", "2026-11-21T08:09:10", "2026-1-5",
        "  21/11/2026 ", "21/11/2026  10:00", "29/02/2024", "29/02/2026", "31/04/2026", "21/11/26",
        "21/11/2026 24:00", "30/12/1899", "31/12/9999 23:59:59", "2026-11-21 10:00:60"}) {
    const auto ours = ParseDateText(text, false);
    const auto platform = vek::ParseDate(text);
    ASSERT_EQ(ours.has_value(), platform.has_value()) << text;
    if (!ours) continue;
    const vek::DateParts parts = vek::SplitDate(*platform);
    EXPECT_EQ(ours->year, parts.year) << text;
    EXPECT_EQ(ours->month, parts.month) << text;
    EXPECT_EQ(ours->day, parts.day) << text;
    EXPECT_EQ(ours->hour, parts.hour) << text;
    EXPECT_EQ(ours->minute, parts.minute) << text;
    EXPECT_EQ(ours->second, parts.second) << text;
  }
}

TEST(DateText, MomentsRoundTripAtTheEdgesOfTheCalendar) {
  for (const char* text : {"0001-01-01 00:00:00", "9999-12-31 23:59:59.999", "1899-12-30 00:00:00",
                           "2000-02-29 12:00:00", "1900-03-01 00:00:00", "2026-12-31 23:59:59"}) {
    const auto parts = ParseDateText(text, false);
    ASSERT_TRUE(parts) << text;
    const auto back = PartsOf(MomentOf(*parts));
    ASSERT_TRUE(back) << text;
    EXPECT_EQ(FormatCanonical(*back), text);
  }
  EXPECT_EQ(MomentOf(*ParseDateText("0001-01-01", false)), 0);
  EXPECT_EQ(DayNumber(2026, 11, 22) - DayNumber(2026, 11, 21), 1);
  EXPECT_EQ(DayNumber(2025, 1, 1) - DayNumber(2024, 1, 1), 366);
  EXPECT_FALSE(PartsOf(-1));
  EXPECT_FALSE(PartsOf(MomentOf(*ParseDateText("9999-12-31 23:59:59.999", false)) + 1));
}

TEST(DateText, ConvertStyles) {
  const DateTimeParts evening = *ParseDateText("2026-11-21 23:05:09.007", false);
  const DateTimeParts morning = *ParseDateText("2026-01-02 00:04:00", false);
  EXPECT_EQ(FormatDateStyle(evening, 103), "21/11/2026");
  EXPECT_EQ(FormatDateStyle(evening, 3), "21/11/26");
  EXPECT_EQ(FormatDateStyle(evening, 101), "11/21/2026");
  EXPECT_EQ(FormatDateStyle(evening, 104), "21.11.2026");
  EXPECT_EQ(FormatDateStyle(evening, 105), "21-11-2026");
  EXPECT_EQ(FormatDateStyle(evening, 108), "23:05:09");
  EXPECT_EQ(FormatDateStyle(evening, 112), "20261121");
  EXPECT_EQ(FormatDateStyle(evening, 120), "2026-11-21 23:05:09");
  EXPECT_EQ(FormatDateStyle(evening, 121), "2026-11-21 23:05:09.007");
  EXPECT_EQ(FormatDateStyle(evening, 23), "2026-11-21");
  EXPECT_EQ(FormatDateStyle(evening, 126), "2026-11-21T23:05:09.007");
  EXPECT_EQ(FormatDateStyle(morning, 126), "2026-01-02T00:04:00");
  EXPECT_EQ(FormatDateStyle(evening, 0), "Nov 21 2026 11:05PM");
  EXPECT_EQ(FormatDateStyle(morning, 100), "Jan  2 2026 12:04AM");
  EXPECT_TRUE(IsSupportedDateStyle(103));
  EXPECT_FALSE(IsSupportedDateStyle(999));
  EXPECT_FALSE(IsSupportedDateStyle(2));
}

TEST(DateText, DatePartNamesAndAbbreviations) {
  EXPECT_EQ(ParseDatePart("N"), DatePart::Minute);
  EXPECT_EQ(ParseDatePart("mi"), DatePart::Minute);
  EXPECT_EQ(ParseDatePart("MINUTE"), DatePart::Minute);
  EXPECT_EQ(ParseDatePart("d"), DatePart::Day);
  EXPECT_EQ(ParseDatePart("dd"), DatePart::Day);
  EXPECT_EQ(ParseDatePart("Day"), DatePart::Day);
  EXPECT_EQ(ParseDatePart("m"), DatePart::Month);
  EXPECT_EQ(ParseDatePart("y"), DatePart::DayOfYear);
  EXPECT_EQ(ParseDatePart("yyyy"), DatePart::Year);
  EXPECT_EQ(ParseDatePart("s"), DatePart::Second);
  EXPECT_EQ(ParseDatePart("ms"), DatePart::Millisecond);
  EXPECT_FALSE(ParseDatePart("mins"));
  EXPECT_FALSE(ParseDatePart(""));
  EXPECT_EQ(DatePartName(DatePart::Minute), "minute");
}

}  // namespace
}  // namespace vek::dialect
