#include "vek/db/DateText.h"

#include "vek/db/dialect/DateText.h"

namespace vek {

std::string CanonicalDateText(Date date) {
  const DateParts p = SplitDate(date);
  return dialect::FormatCanonical({p.year, p.month, p.day, p.hour, p.minute, p.second, 0});
}

std::optional<Date> ParseCanonicalDate(std::string_view text) {
  const auto parts = dialect::ParseDateText(text, false);
  if (!parts || parts->year < 100) return std::nullopt;
  const double seconds = parts->hour * 3600.0 + parts->minute * 60.0 + parts->second +
                         (parts->millisecond >= 500 ? 1 : 0);
  const Date day = DateSerial(parts->year, parts->month, parts->day);
  // Before 30/12/1899 the time of day is the fraction's absolute value.
  return Date(day.Serial() + (day.Serial() < 0 ? -seconds : seconds) / 86400.0);
}

}  // namespace vek
