#include "vek/platform/Date.h"

#include <gtest/gtest.h>

#include <cmath>

#include "support/TestSupport.h"

namespace vek {
namespace {

using testing::ErrorOf;

void ExpectParts(Date date, int32_t year, int32_t month, int32_t day, int32_t hour, int32_t minute,
                 int32_t second) {
  const DateParts parts = SplitDate(date);
  EXPECT_EQ(parts.year, year);
  EXPECT_EQ(parts.month, month);
  EXPECT_EQ(parts.day, day);
  EXPECT_EQ(parts.hour, hour);
  EXPECT_EQ(parts.minute, minute);
  EXPECT_EQ(parts.second, second);
}

TEST(Date, SerialsCountDaysFromThe30thOfDecember1899) {
  EXPECT_EQ(DateSerial(1899, 12, 30).Serial(), 0.0);
  EXPECT_EQ(DateSerial(1900, 1, 1).Serial(), 2.0);
  EXPECT_EQ(DateSerial(1899, 12, 29).Serial(), -1.0);
  EXPECT_EQ(DateSerial(2000, 1, 1).Serial(), 36526.0);
  EXPECT_EQ(DateSerial(2026, 11, 21).Serial(), 46347.0);
  EXPECT_EQ(DateSerial(100, 1, 1).Serial(), -657434.0);
  EXPECT_EQ(DateSerial(9999, 12, 31).Serial(), 2958465.0);
}

TEST(Date, LeapYearsFollowTheGregorianRules) {
  EXPECT_EQ(DateSerial(1900, 3, 1) - DateSerial(1900, 2, 28), 1.0);
  EXPECT_EQ(DateSerial(2000, 3, 1) - DateSerial(2000, 2, 28), 2.0);
  EXPECT_EQ(DateSerial(2024, 3, 1) - DateSerial(2024, 2, 28), 2.0);
  EXPECT_EQ(DateSerial(2026, 3, 1) - DateSerial(2026, 2, 28), 1.0);
  ExpectParts(DateSerial(2024, 2, 29), 2024, 2, 29, 0, 0, 0);
  ExpectParts(DateSerial(2026, 2, 29), 2026, 3, 1, 0, 0, 0);
}

TEST(Date, DateSerialRollsOverAndMapsTwoDigitYears) {
  EXPECT_EQ(DateSerial(2025, 13, 1), DateSerial(2026, 1, 1));
  EXPECT_EQ(DateSerial(2026, 0, 1), DateSerial(2025, 12, 1));
  EXPECT_EQ(DateSerial(2026, 3, 0), DateSerial(2026, 2, 28));
  EXPECT_EQ(DateSerial(2024, 3, 0), DateSerial(2024, 2, 29));
  EXPECT_EQ(DateSerial(2026, 1, -1), DateSerial(2025, 12, 30));
  EXPECT_EQ(DateSerial(2026, 1, 366), DateSerial(2027, 1, 1));
  EXPECT_EQ(DateSerial(0, 1, 1), DateSerial(2000, 1, 1));
  EXPECT_EQ(DateSerial(29, 6, 1), DateSerial(2029, 6, 1));
  EXPECT_EQ(DateSerial(30, 6, 1), DateSerial(1930, 6, 1));
  EXPECT_EQ(ErrorOf([] { DateSerial(10000, 1, 1); }).Number(), kInvalidProcedureCall);
  EXPECT_EQ(ErrorOf([] { DateSerial(9999, 12, 32); }).Number(), kInvalidProcedureCall);
  EXPECT_EQ(ErrorOf([] { DateSerial(100, 1, 0); }).Number(), kInvalidProcedureCall);
  EXPECT_EQ(ErrorOf([] { DateSerial(2026, INT32_MAX, INT32_MAX); }).Number(), kInvalidProcedureCall);
}

TEST(Date, TimeSerialCarriesIntoMinutesHoursAndDays) {
  EXPECT_EQ(TimeSerial(10, 30, 0).Serial(), 0.4375);
  EXPECT_EQ(TimeSerial(0, 90, 0), TimeSerial(1, 30, 0));
  EXPECT_EQ(TimeSerial(12, -30, 0), TimeSerial(11, 30, 0));
  ExpectParts(TimeSerial(25, 0, 61), 1899, 12, 31, 1, 1, 1);
  // Before 30/12/1899 the time of day is the absolute fraction.
  ExpectParts(TimeSerial(0, 0, -1), 1899, 12, 29, 23, 59, 59);
  ExpectParts(TimeSerial(-6, 0, 0), 1899, 12, 29, 18, 0, 0);
}

TEST(Date, SplitDateRoundsToTheSecondWithCarryAtMidnight) {
  const Date new_year_eve = DateSerial(2026, 12, 31);
  ExpectParts(new_year_eve + 86399.4 / 86400.0, 2026, 12, 31, 23, 59, 59);
  ExpectParts(new_year_eve + 86399.6 / 86400.0, 2027, 1, 1, 0, 0, 0);
  ExpectParts(DateSerial(2024, 2, 28) + 86399.5 / 86400.0, 2024, 2, 29, 0, 0, 0);
  ExpectParts(Date(0.5), 1899, 12, 30, 12, 0, 0);
  ExpectParts(Date(-1.25), 1899, 12, 29, 6, 0, 0);
  ExpectParts(Date(-0.75), 1899, 12, 30, 18, 0, 0);
  ExpectParts(DateSerial(2026, 1, 5) + TimeSerial(7, 3, 9), 2026, 1, 5, 7, 3, 9);
  const Date moment = DateSerial(2026, 11, 21) + TimeSerial(10, 30, 15);
  EXPECT_EQ(Year(moment), 2026);
  EXPECT_EQ(Month(moment), 11);
  EXPECT_EQ(Day(moment), 21);
  EXPECT_EQ(Hour(moment), 10);
  EXPECT_EQ(Minute(moment), 30);
  EXPECT_EQ(Second(moment), 15);
  EXPECT_EQ(ErrorOf([] { SplitDate(Date(3e6)); }).Number(), kOverflow);
  EXPECT_EQ(ErrorOf([] { SplitDate(Date(std::nan(""))); }).Number(), kOverflow);
}

TEST(Date, DateAddClampsMonthEndsAndKeepsTheTime) {
  const Date morning = TimeSerial(10, 30, 0);
  EXPECT_EQ(DateAdd("m", 1, DateSerial(2026, 1, 31) + morning), DateSerial(2026, 2, 28) + morning);
  EXPECT_EQ(DateAdd("M", 1, DateSerial(2024, 1, 31)), DateSerial(2024, 2, 29));
  EXPECT_EQ(DateAdd("m", -2, DateSerial(2026, 1, 15)), DateSerial(2025, 11, 15));
  EXPECT_EQ(DateAdd("m", -1, DateSerial(2026, 3, 31)), DateSerial(2026, 2, 28));
  EXPECT_EQ(DateAdd("YYYY", 1, DateSerial(2024, 2, 29)), DateSerial(2025, 2, 28));
  EXPECT_EQ(DateAdd("yyyy", -4, DateSerial(2024, 2, 29)), DateSerial(2020, 2, 29));
  EXPECT_EQ(DateAdd("q", -1, DateSerial(2026, 5, 31)), DateSerial(2026, 2, 28));
  EXPECT_EQ(DateAdd("q", 2, DateSerial(2026, 11, 21)), DateSerial(2027, 5, 21));
}

TEST(Date, DateAddMovesDaysAndTimes) {
  const Date day = DateSerial(2026, 11, 21);
  EXPECT_EQ(DateAdd("d", -1, day), DateSerial(2026, 11, 20));
  EXPECT_EQ(DateAdd("y", 41, day), DateSerial(2027, 1, 1));
  EXPECT_EQ(DateAdd("w", 1, day), DateSerial(2026, 11, 22));
  EXPECT_EQ(DateAdd("WW", 2, day), DateSerial(2026, 12, 5));
  ExpectParts(DateAdd("h", 25, day + TimeSerial(10, 30, 0)), 2026, 11, 22, 11, 30, 0);
  ExpectParts(DateAdd("n", -31, day + TimeSerial(10, 30, 0)), 2026, 11, 21, 9, 59, 0);
  ExpectParts(DateAdd("s", 1, DateSerial(2026, 12, 31) + TimeSerial(23, 59, 59)), 2027, 1, 1, 0, 0,
              0);
  ExpectParts(DateAdd("n", -1, DateSerial(2026, 1, 1)), 2025, 12, 31, 23, 59, 0);
  // On a negative date a later time is further from zero.
  ExpectParts(DateAdd("h", 1, Date(-1.25)), 1899, 12, 29, 7, 0, 0);
  ExpectParts(DateAdd("h", 18, Date(-1.25)), 1899, 12, 30, 0, 0, 0);
}

TEST(Date, DateAddRoundsTheNumberHalfToEvenAndRejectsBadArguments) {
  const Date day = DateSerial(2026, 11, 21);
  EXPECT_EQ(DateAdd("d", 2.5, day), day + 2.0);
  EXPECT_EQ(DateAdd("d", 3.5, day), day + 4.0);
  EXPECT_EQ(DateAdd("d", -2.5, day), day - 2.0);
  EXPECT_EQ(DateAdd("d", 1.4, day), day + 1.0);
  EXPECT_EQ(DateAdd("m", 0.6, day), DateSerial(2026, 12, 21));
  EXPECT_EQ(ErrorOf([&] { DateAdd("x", 1, day); }).Number(), kInvalidProcedureCall);
  EXPECT_EQ(ErrorOf([&] { DateAdd("", 1, day); }).Number(), kInvalidProcedureCall);
  EXPECT_EQ(ErrorOf([&] { DateAdd("dd", 1, day); }).Number(), kInvalidProcedureCall);
  EXPECT_EQ(ErrorOf([&] { DateAdd("yyyy", 8000, day); }).Number(), kInvalidProcedureCall);
  EXPECT_EQ(ErrorOf([&] { DateAdd("d", 1e300, day); }).Number(), kInvalidProcedureCall);
  EXPECT_EQ(ErrorOf([&] { DateAdd("s", -1, DateSerial(100, 1, 1)); }).Number(), kInvalidProcedureCall);
}

TEST(Date, WeekdayCountsFromTheChosenFirstDay) {
  const Date saturday = DateSerial(2026, 11, 21);
  EXPECT_EQ(Weekday(saturday), 7);
  EXPECT_EQ(Weekday(saturday, 2), 6);
  EXPECT_EQ(Weekday(saturday, 7), 1);
  EXPECT_EQ(Weekday(saturday + 1.0), 1);
  EXPECT_EQ(Weekday(saturday + 1.0, 2), 7);
  EXPECT_EQ(Weekday(saturday, 0), 7);
  EXPECT_EQ(Weekday(Date(0.0)), 7);
  EXPECT_EQ(Weekday(Date(-1.5)), 6);
  EXPECT_EQ(Weekday(saturday + 86399.7 / 86400.0), 1);
  EXPECT_EQ(ErrorOf([&] { Weekday(saturday, 8); }).Number(), kInvalidProcedureCall);
  EXPECT_EQ(ErrorOf([&] { Weekday(saturday, -1); }).Number(), kInvalidProcedureCall);
}

TEST(Date, ParseDateReadsTheThreeFormsAndNothingElse) {
  const Date day = DateSerial(2026, 11, 21);
  EXPECT_EQ(ParseDate("21/11/2026"), day);
  EXPECT_EQ(ParseDate("5/1/2026"), DateSerial(2026, 1, 5));
  EXPECT_EQ(ParseDate("  21/11/2026 10:30:00  "), day + TimeSerial(10, 30, 0));
  EXPECT_EQ(ParseDate("21/11/2026 7:03"), day + TimeSerial(7, 3, 0));
  EXPECT_EQ(ParseDate("2026-11-21"), day);
  EXPECT_EQ(ParseDate("2026-11-21 23:59:59"), day + TimeSerial(23, 59, 59));
  EXPECT_EQ(ParseDate("2026-11-21T10:30"), day + TimeSerial(10, 30, 0));
  EXPECT_EQ(ParseDate("10:30"), TimeSerial(10, 30, 0));
  EXPECT_EQ(ParseDate("00:00:00"), Date(0.0));
  EXPECT_EQ(ParseDate("29/02/2024"), DateSerial(2024, 2, 29));
  EXPECT_EQ(ParseDate("29/02/2000"), DateSerial(2000, 2, 29));
  EXPECT_EQ(ParseDate("01/01/0100"), DateSerial(100, 1, 1));
  // Impossible days and times, and forms of other places, are no dates.
  for (const char* text :
       {"29/02/2026", "29/02/1900", "31/04/2026", "00/01/2026", "01/13/2026", "24:00", "10:60",
        "10:30:60", "2026-13-01", "2026-02-30", "05/01/26", "1/1/99999", "01/01/0099",
        "21/11/2026T10:30", "21/11/2026 10:30 x", "21/11/2026 10", "21/11/2026 10:30:",
        "2026/11/21", "21-11-2026", "", "   ", "10", ":30"}) {
    EXPECT_FALSE(ParseDate(text).has_value()) << text;
  }
}

}  // namespace
}  // namespace vek
