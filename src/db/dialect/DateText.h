#pragma once
// Dates as SQLite holds them for this library: text 'yyyy-mm-dd hh:mm:ss'.
// Moments are counted in whole milliseconds since 0001-01-01 00:00:00 so that
// every calendar computation (DATEDIFF boundaries, day additions) is exact
// integer arithmetic, never floating-point days.

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace vek::dialect {

inline constexpr int64_t kMillisecondsPerDay = 86'400'000;

struct DateTimeParts {
  int32_t year = 1;
  int32_t month = 1;
  int32_t day = 1;
  int32_t hour = 0;
  int32_t minute = 0;
  int32_t second = 0;
  int32_t millisecond = 0;
};

// Days from 0001-01-01 to the given civil date (proleptic Gregorian).
int64_t DayNumber(int32_t year, int32_t month, int32_t day);
// Milliseconds since 0001-01-01 00:00:00.
int64_t MomentOf(const DateTimeParts& parts);
// The parts of a moment; nullopt outside years 1 to 9999.
std::optional<DateTimeParts> PartsOf(int64_t moment);

int32_t DaysInMonth(int32_t year, int32_t month);

// Reads 'yyyy-mm-dd', 'yyyy-mm-dd hh:mm[:ss[.fff]]', 'yyyy-mm-ddThh:mm[:ss[.fff]]'
// and the day-first 'dd/mm/yyyy[ hh:mm[:ss[.fff]]]'; with accept_time_only also
// 'hh:mm[:ss[.fff]]', which SQL Server places on 1900-01-01. Blanks around the
// text are ignored. Impossible dates and anything else give nullopt.
std::optional<DateTimeParts> ParseDateText(std::string_view text, bool accept_time_only);

// 'yyyy-mm-dd hh:mm:ss', with '.fff' only when the milliseconds are not 0.
std::string FormatCanonical(const DateTimeParts& parts);

// SQL Server's date parts, as DATEDIFF, DATEADD and DATEPART name them.
enum class DatePart {
  Year,
  Quarter,
  Month,
  DayOfYear,
  Day,
  Week,
  Weekday,
  Hour,
  Minute,
  Second,
  Millisecond
};
// The full names and SQL Server's abbreviations ("yy", "mm", "dd", "n", "mi",
// "ss"...), any case; anything else gives nullopt.
std::optional<DatePart> ParseDatePart(std::string_view name);
// The full name ("minute").
std::string_view DatePartName(DatePart part);

// CONVERT styles of a date into text that are supported: 0 and 100 ("Nov 21
// 2026 11:59PM"), 1/101 mm/dd/yy[yy], 3/103 dd/mm/yy[yy], 4/104 dd.mm.yy[yy],
// 5/105 dd-mm-yy[yy], 8/108 hh:mi:ss, 12/112 yy[yy]mmdd, 20/120 and 21/121
// (ODBC canonical, 121 with milliseconds), 23 yyyy-mm-dd, 126 ISO 8601.
bool IsSupportedDateStyle(int64_t style);
// The date in a supported style (an unsupported one gives the canonical text).
std::string FormatDateStyle(const DateTimeParts& parts, int64_t style);

}  // namespace vek::dialect
