#include "vek/platform/Date.h"

#include <algorithm>
#include <cmath>
#include <string>

#include "vek/platform/VekError.h"
#include "vek/platform/TextReader.h"

namespace vek {
namespace {

// Serials of 1 January 100 and 31 December 9999, the runtime's limits.
constexpr int64_t kFirstDay = -657434;
constexpr int64_t kLastDay = 2958465;
constexpr int64_t kSecondsPerDay = 86400;
// Days from 1 March of year 0 to 1 January 1970, and from 30 December 1899 to
// 1 January 1970 (the civil-day algorithms count from 1970).
constexpr int64_t kMarchZeroTo1970 = 719468;
constexpr int64_t kSerialOf1970 = 25569;

int64_t FloorDiv(int64_t a, int64_t b) {
  int64_t q = a / b;
  if (a % b != 0 && ((a < 0) != (b < 0))) --q;
  return q;
}

int64_t FloorMod(int64_t a, int64_t b) { return a - FloorDiv(a, b) * b; }

}  // namespace

bool IsLeapYear(int64_t year) { return (year % 4 == 0 && year % 100 != 0) || year % 400 == 0; }

int32_t DaysInMonth(int64_t year, int64_t month) {
  static constexpr int32_t kDays[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  if (month < 1 || month > 12) return 0;
  if (month == 2 && IsLeapYear(year)) return 29;
  return kDays[month - 1];
}

// Exact integer calendar arithmetic (proleptic Gregorian), so that no date
// drifts through floating-point accumulation.
int64_t SerialFromCivil(int64_t year, int64_t month, int64_t day) {
  year -= month <= 2 ? 1 : 0;
  const int64_t era = FloorDiv(year, 400);
  const int64_t year_of_era = year - era * 400;
  const int64_t day_of_year = (153 * (month > 2 ? month - 3 : month + 9) + 2) / 5 + day - 1;
  const int64_t day_of_era = year_of_era * 365 + year_of_era / 4 - year_of_era / 100 + day_of_year;
  return era * 146097 + day_of_era - kMarchZeroTo1970 + kSerialOf1970;
}

CivilDay CivilFromSerial(int64_t serial) {
  const int64_t z = serial - kSerialOf1970 + kMarchZeroTo1970;
  const int64_t era = FloorDiv(z, 146097);
  const int64_t day_of_era = z - era * 146097;
  const int64_t year_of_era =
      (day_of_era - day_of_era / 1460 + day_of_era / 36524 - day_of_era / 146096) / 365;
  const int64_t day_of_year = day_of_era - (365 * year_of_era + year_of_era / 4 - year_of_era / 100);
  const int64_t shifted_month = (5 * day_of_year + 2) / 153;
  const int64_t day = day_of_year - (153 * shifted_month + 2) / 5 + 1;
  const int64_t month = shifted_month < 10 ? shifted_month + 3 : shifted_month - 9;
  return {year_of_era + era * 400 + (month <= 2 ? 1 : 0), static_cast<int32_t>(month),
          static_cast<int32_t>(day)};
}

namespace {

// The runtime keeps a negative date's time of day as the absolute fraction:
// -1.25 is 29 December 1899 at 06:00.
double ComposeSerial(int64_t day, double time_fraction) {
  const double whole = static_cast<double>(day);
  return day < 0 ? whole - time_fraction : whole + time_fraction;
}

struct DayAndTime {
  int64_t day;
  double fraction;  // of a day, 0 <= fraction < 1
};

DayAndTime SplitSerial(double serial) {
  if (!std::isfinite(serial) || serial <= static_cast<double>(kFirstDay - 1) ||
      serial >= static_cast<double>(kLastDay + 1)) {
    RaiseRuntimeError(kOverflow);
  }
  const double whole = std::trunc(serial);
  return {static_cast<int64_t>(whole), std::fabs(serial - whole)};
}

struct DayAndSecond {
  int64_t day;
  int64_t second;  // of the day, 0 <= second < 86400
};

// A time that rounds up to 24:00:00 belongs to the next calendar day.
DayAndSecond RoundToSecond(Date date) {
  DayAndTime parts = SplitSerial(date.Serial());
  int64_t second = std::llround(parts.fraction * static_cast<double>(kSecondsPerDay));
  if (second >= kSecondsPerDay) {
    second -= kSecondsPerDay;
    ++parts.day;
  }
  return {parts.day, second};
}

void CheckDayInRange(int64_t day) {
  if (day < kFirstDay || day > kLastDay) RaiseRuntimeError(kInvalidProcedureCall);
}

double RoundHalfEven(double value) {
  const double floor = std::floor(value);
  const double diff = value - floor;
  if (diff > 0.5) return floor + 1.0;
  if (diff < 0.5) return floor;
  return std::fmod(floor, 2.0) == 0.0 ? floor : floor + 1.0;
}

std::string AsciiLower(std::string_view text) {
  std::string lower(text);
  for (char& c : lower) {
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  }
  return lower;
}

Date AddMonths(Date date, int64_t months) {
  const DayAndTime parts = SplitSerial(date.Serial());
  const CivilDay civil = CivilFromSerial(parts.day);
  const int64_t total = civil.year * 12 + (civil.month - 1) + months;
  const int64_t year = FloorDiv(total, 12);
  const int64_t month = FloorMod(total, 12) + 1;
  if (year < 100 || year > 9999) RaiseRuntimeError(kInvalidProcedureCall);
  const int64_t day = std::min<int64_t>(civil.day, DaysInMonth(year, month));
  return Date(ComposeSerial(SerialFromCivil(year, month, day), parts.fraction));
}

Date AddDays(Date date, int64_t days) {
  const DayAndTime parts = SplitSerial(date.Serial());
  const int64_t day = parts.day + days;
  CheckDayInRange(day);
  return Date(ComposeSerial(day, parts.fraction));
}

// Works on a linear count of seconds so that negative dates, whose time runs
// the other way in the serial, move in the right direction.
Date AddSeconds(Date date, int64_t seconds) {
  const DayAndTime parts = SplitSerial(date.Serial());
  const double per_day = static_cast<double>(kSecondsPerDay);
  const double total = static_cast<double>(parts.day) * per_day + parts.fraction * per_day +
                       static_cast<double>(seconds);
  const double day = std::floor(total / per_day);
  if (day < static_cast<double>(kFirstDay) || day > static_cast<double>(kLastDay)) {
    RaiseRuntimeError(kInvalidProcedureCall);
  }
  const double fraction = std::clamp((total - day * per_day) / per_day, 0.0, 1.0);
  return Date(ComposeSerial(static_cast<int64_t>(day), fraction));
}

// ---- reading dates --------------------------------------------------------


bool IsBlank(char c) { return c == ' ' || c == '\t'; }

// 'hh:nn[:ss]' as a fraction of a day.
std::optional<double> ReadTime(TextReader& reader) {
  const auto hour = reader.Number(1, 2);
  if (!hour || !reader.Take(':')) return std::nullopt;
  const auto minute = reader.Number(1, 2);
  if (!minute) return std::nullopt;
  int32_t second = 0;
  if (reader.Take(':')) {
    const auto seconds = reader.Number(1, 2);
    if (!seconds) return std::nullopt;
    second = *seconds;
  }
  if (*hour > 23 || *minute > 59 || second > 59) return std::nullopt;
  const int64_t total = int64_t{*hour} * 3600 + int64_t{*minute} * 60 + second;
  return static_cast<double>(total) / static_cast<double>(kSecondsPerDay);
}

std::optional<int64_t> ValidDay(int32_t year, int32_t month, int32_t day) {
  if (year < 100 || year > 9999 || month < 1 || month > 12 || day < 1 ||
      day > DaysInMonth(year, month)) {
    return std::nullopt;
  }
  return SerialFromCivil(year, month, day);
}

}  // namespace

DateParts SplitDate(Date date) {
  const DayAndSecond rounded = RoundToSecond(date);
  const CivilDay civil = CivilFromSerial(rounded.day);
  DateParts parts;
  parts.year = static_cast<int32_t>(civil.year);
  parts.month = civil.month;
  parts.day = civil.day;
  parts.hour = static_cast<int32_t>(rounded.second / 3600);
  parts.minute = static_cast<int32_t>(rounded.second / 60 % 60);
  parts.second = static_cast<int32_t>(rounded.second % 60);
  return parts;
}

Date DateSerial(int32_t year, int32_t month, int32_t day) {
  int64_t full_year = year;
  if (full_year >= 0 && full_year <= 29) {
    full_year += 2000;
  } else if (full_year >= 30 && full_year <= 99) {
    full_year += 1900;
  }
  const int64_t months = full_year * 12 + (int64_t{month} - 1);
  const int64_t serial =
      SerialFromCivil(FloorDiv(months, 12), FloorMod(months, 12) + 1, 1) + (int64_t{day} - 1);
  CheckDayInRange(serial);
  return Date(static_cast<double>(serial));
}

Date TimeSerial(int32_t hour, int32_t minute, int32_t second) {
  const int64_t total = int64_t{hour} * 3600 + int64_t{minute} * 60 + second;
  const int64_t day = FloorDiv(total, kSecondsPerDay);
  CheckDayInRange(day);
  const double fraction =
      static_cast<double>(FloorMod(total, kSecondsPerDay)) / static_cast<double>(kSecondsPerDay);
  return Date(ComposeSerial(day, fraction));
}

Date DateAdd(std::string_view interval, double number, Date date) {
  const std::string unit = AsciiLower(interval);
  const double rounded = RoundHalfEven(number);
  // Any count beyond this leaves the calendar anyway; checking first keeps the
  // integer arithmetic below from overflowing.
  if (!std::isfinite(rounded) || std::fabs(rounded) > 1e12) RaiseRuntimeError(kInvalidProcedureCall);
  const auto n = static_cast<int64_t>(rounded);
  if (unit == "yyyy") return AddMonths(date, n * 12);
  if (unit == "q") return AddMonths(date, n * 3);
  if (unit == "m") return AddMonths(date, n);
  if (unit == "y" || unit == "d" || unit == "w") return AddDays(date, n);
  if (unit == "ww") return AddDays(date, n * 7);
  if (unit == "h") return AddSeconds(date, n * 3600);
  if (unit == "n") return AddSeconds(date, n * 60);
  if (unit == "s") return AddSeconds(date, n);
  RaiseRuntimeError(kInvalidProcedureCall);
}

int32_t Weekday(Date date, int32_t first_day_of_week) {
  // 0 is the runtime's "system setting", which here is Sunday.
  if (first_day_of_week == 0) first_day_of_week = 1;
  if (first_day_of_week < 1 || first_day_of_week > 7) RaiseRuntimeError(kInvalidProcedureCall);
  // Serial 1, 31 December 1899, was a Sunday.
  const int64_t sunday_based = FloorMod(RoundToSecond(date).day - 1, 7) + 1;
  return static_cast<int32_t>(FloorMod(sunday_based - first_day_of_week, 7) + 1);
}

int32_t Day(Date date) { return SplitDate(date).day; }
int32_t Month(Date date) { return SplitDate(date).month; }
int32_t Year(Date date) { return SplitDate(date).year; }
int32_t Hour(Date date) { return SplitDate(date).hour; }
int32_t Minute(Date date) { return SplitDate(date).minute; }
int32_t Second(Date date) { return SplitDate(date).second; }

std::optional<Date> ParseDate(std::string_view text) {
  while (!text.empty() && IsBlank(text.front())) text.remove_prefix(1);
  while (!text.empty() && IsBlank(text.back())) text.remove_suffix(1);

  // The first separator after the leading digits tells the three forms apart.
  const size_t first_separator = text.find_first_not_of("0123456789");
  if (first_separator == std::string_view::npos || first_separator == 0) return std::nullopt;
  TextReader reader(text);
  const char separator = text[first_separator];

  if (separator == ':') {
    const auto time = ReadTime(reader);
    if (!time || !reader.AtEnd()) return std::nullopt;
    return Date(*time);
  }

  const std::optional<DateDigits> date = reader.DayFirstOrIsoDate(separator);
  if (!date) return std::nullopt;
  const bool iso = separator == '-';
  const std::optional<int64_t> day = ValidDay(date->year, date->month, date->day);
  if (!day) return std::nullopt;
  if (reader.AtEnd()) return Date(static_cast<double>(*day));

  const bool spaced = reader.SkipSpaces() > 0;
  if (!spaced && !(iso && reader.Take('T'))) return std::nullopt;
  const auto time = ReadTime(reader);
  if (!time || !reader.AtEnd()) return std::nullopt;
  return Date(ComposeSerial(*day, *time));
}

}  // namespace vek
