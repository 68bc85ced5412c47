#include "vek/db/dialect/DateText.h"

#include "vek/platform/Date.h"
#include "vek/platform/TextReader.h"

#include <algorithm>
#include <iterator>

namespace vek::dialect {
namespace {

// Day numbers count from 0001-01-01; the calendar itself is the platform's.
const int64_t kSerialOfYearOne = SerialFromCivil(1, 1, 1);


bool ReadTime(TextReader& reader, DateTimeParts& parts) {
  const auto hour = reader.Number(1, 2);
  if (!hour || !reader.Take(':')) return false;
  const auto minute = reader.Number(1, 2);
  if (!minute) return false;
  parts.hour = *hour;
  parts.minute = *minute;
  if (reader.Take(':')) {
    const auto second = reader.Number(1, 2);
    if (!second) return false;
    parts.second = *second;
    if (reader.Take('.')) {
      // Digits beyond the millisecond are dropped.
      int32_t scale = 100;
      size_t digits = 0;
      while (reader.Peek() >= '0' && reader.Peek() <= '9') {
        if (scale > 0) parts.millisecond += (reader.Peek() - '0') * scale;
        scale /= 10;
        reader.Take(reader.Peek());
        ++digits;
      }
      if (digits == 0) return false;
    }
  }
  return parts.hour <= 23 && parts.minute <= 59 && parts.second <= 59;
}

bool ValidDate(const DateTimeParts& parts) {
  return parts.year >= 1 && parts.year <= 9999 && parts.month >= 1 && parts.month <= 12 &&
         parts.day >= 1 && parts.day <= DaysInMonth(parts.year, parts.month);
}

void AppendPadded(std::string& out, int64_t value, int width) {
  char digits[24];
  int count = 0;
  do {
    digits[count++] = static_cast<char>('0' + value % 10);
    value /= 10;
  } while (value > 0);
  for (int i = count; i < width; ++i) out.push_back('0');
  while (count > 0) out.push_back(digits[--count]);
}

}  // namespace

int32_t DaysInMonth(int32_t year, int32_t month) { return vek::DaysInMonth(year, month); }

int64_t DayNumber(int32_t year, int32_t month, int32_t day) {
  return SerialFromCivil(year, month, day) - kSerialOfYearOne;
}

int64_t MomentOf(const DateTimeParts& parts) {
  return DayNumber(parts.year, parts.month, parts.day) * kMillisecondsPerDay +
         ((int64_t{parts.hour} * 60 + parts.minute) * 60 + parts.second) * 1000 + parts.millisecond;
}

std::optional<DateTimeParts> PartsOf(int64_t moment) {
  if (moment < 0) return std::nullopt;
  const int64_t days = moment / kMillisecondsPerDay;
  int64_t ms = moment % kMillisecondsPerDay;
  const CivilDay civil = CivilFromSerial(days + kSerialOfYearOne);
  if (civil.year < 1 || civil.year > 9999) return std::nullopt;
  DateTimeParts parts;
  parts.year = static_cast<int32_t>(civil.year);
  parts.month = civil.month;
  parts.day = civil.day;
  parts.millisecond = static_cast<int32_t>(ms % 1000);
  ms /= 1000;
  parts.second = static_cast<int32_t>(ms % 60);
  ms /= 60;
  parts.minute = static_cast<int32_t>(ms % 60);
  parts.hour = static_cast<int32_t>(ms / 60);
  return parts;
}

std::optional<DateTimeParts> ParseDateText(std::string_view text, bool accept_time_only) {
  while (!text.empty() && (text.front() == ' ' || text.front() == '\t')) text.remove_prefix(1);
  while (!text.empty() && (text.back() == ' ' || text.back() == '\t')) text.remove_suffix(1);
  const size_t first_separator = text.find_first_not_of("0123456789");
  if (first_separator == std::string_view::npos || first_separator == 0) return std::nullopt;

  TextReader reader(text);
  DateTimeParts parts;
  const char separator = text[first_separator];
  if (separator == ':') {
    if (!accept_time_only) return std::nullopt;
    parts.year = 1900;
    if (!ReadTime(reader, parts) || !reader.AtEnd()) return std::nullopt;
    return parts;
  }
  const std::optional<DateDigits> date = reader.DayFirstOrIsoDate(separator);
  if (!date) return std::nullopt;
  const bool iso = separator == '-';
  parts.year = date->year;
  parts.month = date->month;
  parts.day = date->day;
  if (!ValidDate(parts)) return std::nullopt;
  if (reader.AtEnd()) return parts;
  const bool spaced = reader.SkipSpaces() > 0;
  if (!spaced && !(iso && reader.Take('T'))) return std::nullopt;
  if (!ReadTime(reader, parts) || !reader.AtEnd()) return std::nullopt;
  return parts;
}

std::string FormatCanonical(const DateTimeParts& parts) {
  std::string out;
  out.reserve(23);
  AppendPadded(out, parts.year, 4);
  out.push_back('-');
  AppendPadded(out, parts.month, 2);
  out.push_back('-');
  AppendPadded(out, parts.day, 2);
  out.push_back(' ');
  AppendPadded(out, parts.hour, 2);
  out.push_back(':');
  AppendPadded(out, parts.minute, 2);
  out.push_back(':');
  AppendPadded(out, parts.second, 2);
  if (parts.millisecond != 0) {
    out.push_back('.');
    AppendPadded(out, parts.millisecond, 3);
  }
  return out;
}

std::optional<DatePart> ParseDatePart(std::string_view name) {
  struct Entry {
    std::string_view name;
    DatePart part;
  };
  static constexpr Entry kEntries[] = {
      {"year", DatePart::Year},       {"yy", DatePart::Year},
      {"yyyy", DatePart::Year},       {"quarter", DatePart::Quarter},
      {"qq", DatePart::Quarter},      {"q", DatePart::Quarter},
      {"month", DatePart::Month},     {"mm", DatePart::Month},
      {"m", DatePart::Month},         {"dayofyear", DatePart::DayOfYear},
      {"dy", DatePart::DayOfYear},    {"y", DatePart::DayOfYear},
      {"day", DatePart::Day},         {"dd", DatePart::Day},
      {"d", DatePart::Day},           {"week", DatePart::Week},
      {"wk", DatePart::Week},         {"ww", DatePart::Week},
      {"weekday", DatePart::Weekday}, {"dw", DatePart::Weekday},
      {"w", DatePart::Weekday},       {"hour", DatePart::Hour},
      {"hh", DatePart::Hour},         {"minute", DatePart::Minute},
      {"mi", DatePart::Minute},       {"n", DatePart::Minute},
      {"second", DatePart::Second},   {"ss", DatePart::Second},
      {"s", DatePart::Second},        {"millisecond", DatePart::Millisecond},
      {"ms", DatePart::Millisecond},
  };
  for (const Entry& entry : kEntries) {
    if (entry.name.size() != name.size()) continue;
    bool same = true;
    for (size_t i = 0; i < name.size() && same; ++i) {
      char c = name[i];
      if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
      same = c == entry.name[i];
    }
    if (same) return entry.part;
  }
  return std::nullopt;
}

std::string_view DatePartName(DatePart part) {
  switch (part) {
    case DatePart::Year:
      return "year";
    case DatePart::Quarter:
      return "quarter";
    case DatePart::Month:
      return "month";
    case DatePart::DayOfYear:
      return "dayofyear";
    case DatePart::Day:
      return "day";
    case DatePart::Week:
      return "week";
    case DatePart::Weekday:
      return "weekday";
    case DatePart::Hour:
      return "hour";
    case DatePart::Minute:
      return "minute";
    case DatePart::Second:
      return "second";
    case DatePart::Millisecond:
      return "millisecond";
  }
  return "day";
}

bool IsSupportedDateStyle(int64_t style) {
  static constexpr int64_t kStyles[] = {0,   1,   3,   4,   5,   8,   12,  20,  21,  23,
                                        100, 101, 103, 104, 105, 108, 112, 120, 121, 126};
  return std::find(std::begin(kStyles), std::end(kStyles), style) != std::end(kStyles);
}

std::string FormatDateStyle(const DateTimeParts& parts, int64_t style) {
  std::string out;
  const bool full_year = style >= 100 || style == 20 || style == 21 || style == 23;
  const auto year = [&] {
    if (full_year) {
      AppendPadded(out, parts.year, 4);
    } else {
      AppendPadded(out, parts.year % 100, 2);
    }
  };
  const auto time = [&] {
    AppendPadded(out, parts.hour, 2);
    out.push_back(':');
    AppendPadded(out, parts.minute, 2);
    out.push_back(':');
    AppendPadded(out, parts.second, 2);
  };
  const auto day_month_year = [&](char separator) {
    AppendPadded(out, parts.day, 2);
    out.push_back(separator);
    AppendPadded(out, parts.month, 2);
    out.push_back(separator);
    year();
  };
  switch (style) {
    case 0:
    case 100: {
      static constexpr std::string_view kMonths[] = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                                     "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
      out.append(kMonths[parts.month - 1]);
      out.push_back(' ');
      if (parts.day < 10) out.push_back(' ');
      AppendPadded(out, parts.day, 1);
      out.push_back(' ');
      AppendPadded(out, parts.year, 4);
      out.push_back(' ');
      const int32_t hour12 = parts.hour % 12 == 0 ? 12 : parts.hour % 12;
      if (hour12 < 10) out.push_back(' ');
      AppendPadded(out, hour12, 1);
      out.push_back(':');
      AppendPadded(out, parts.minute, 2);
      out.append(parts.hour < 12 ? "AM" : "PM");
      return out;
    }
    case 1:
    case 101:
      AppendPadded(out, parts.month, 2);
      out.push_back('/');
      AppendPadded(out, parts.day, 2);
      out.push_back('/');
      year();
      return out;
    case 3:
    case 103:
      day_month_year('/');
      return out;
    case 4:
    case 104:
      day_month_year('.');
      return out;
    case 5:
    case 105:
      day_month_year('-');
      return out;
    case 8:
    case 108:
      time();
      return out;
    case 12:
    case 112:
      year();
      AppendPadded(out, parts.month, 2);
      AppendPadded(out, parts.day, 2);
      return out;
    case 23:
      AppendPadded(out, parts.year, 4);
      out.push_back('-');
      AppendPadded(out, parts.month, 2);
      out.push_back('-');
      AppendPadded(out, parts.day, 2);
      return out;
    case 20:
    case 120:
    case 21:
    case 121:
    case 126: {
      AppendPadded(out, parts.year, 4);
      out.push_back('-');
      AppendPadded(out, parts.month, 2);
      out.push_back('-');
      AppendPadded(out, parts.day, 2);
      out.push_back(style == 126 ? 'T' : ' ');
      time();
      if (style == 21 || style == 121 || (style == 126 && parts.millisecond != 0)) {
        out.push_back('.');
        AppendPadded(out, parts.millisecond, 3);
      }
      return out;
    }
    default:
      return FormatCanonical(parts);
  }
}

}  // namespace vek::dialect
