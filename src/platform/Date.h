#pragma once
// The classic date type: days since 30 December 1899 as a double, the fraction
// being the time of day (a time alone lies on 30 December 1899). A negative
// serial keeps its time of day as the absolute fraction, as the runtime did.

#include <compare>
#include <cstdint>
#include <optional>
#include <string_view>

namespace vek {

class Date {
 public:
  constexpr Date() = default;
  constexpr explicit Date(double serial) : serial_(serial) {}

  constexpr double Serial() const { return serial_; }

  friend constexpr Date operator+(Date a, Date b) { return Date(a.serial_ + b.serial_); }
  friend constexpr Date operator+(Date a, double days) { return Date(a.serial_ + days); }
  friend constexpr Date operator-(Date a, double days) { return Date(a.serial_ - days); }
  // The difference of two dates is a number of days.
  friend constexpr double operator-(Date a, Date b) { return a.serial_ - b.serial_; }
  friend constexpr bool operator==(Date a, Date b) = default;
  friend constexpr auto operator<=>(Date a, Date b) = default;

 private:
  double serial_ = 0.0;
};

// The parts of a date, rounded to the whole second as the runtime shows them.
struct DateParts {
  int32_t year = 1899;
  int32_t month = 12;
  int32_t day = 30;
  int32_t hour = 0;
  int32_t minute = 0;
  int32_t second = 0;
};
DateParts SplitDate(Date date);

// Exact calendar arithmetic (proleptic Gregorian): the serial of a civil day
// and back, for any year.
struct CivilDay {
  int64_t year;
  int32_t month;
  int32_t day;
};
int64_t SerialFromCivil(int64_t year, int64_t month, int64_t day);
CivilDay CivilFromSerial(int64_t serial);
bool IsLeapYear(int64_t year);
// 0 for a month outside 1 to 12.
int32_t DaysInMonth(int64_t year, int64_t month);

// Year 0-29 means 2000-2029 and 30-99 means 1930-1999; months and days out of
// range roll over into the neighbouring months and years. A result outside
// years 100 to 9999 raises error 5.
Date DateSerial(int32_t year, int32_t month, int32_t day);
// Hours, minutes and seconds out of range roll over (the result may pass a day).
Date TimeSerial(int32_t hour, int32_t minute, int32_t second);

// Intervals "yyyy", "q", "m", "y", "d", "w", "ww", "h", "n", "s" (any case);
// another interval raises error 5. Adding months keeps the day or takes the
// last day of the target month.
Date DateAdd(std::string_view interval, double number, Date date);

// Sunday = 1 ... Saturday = 7 (first_day_of_week 1 = Sunday, 2 = Monday, ...).
int32_t Weekday(Date date, int32_t first_day_of_week = 1);
int32_t Day(Date date);
int32_t Month(Date date);
int32_t Year(Date date);
int32_t Hour(Date date);
int32_t Minute(Date date);
int32_t Second(Date date);

// Reads 'dd/mm/yyyy[ hh:nn[:ss]]' (day first), 'yyyy-mm-dd[ hh:nn[:ss]]' and
// 'hh:nn[:ss]'; nothing else. An impossible date gives no value.
std::optional<Date> ParseDate(std::string_view text);

}  // namespace vek
