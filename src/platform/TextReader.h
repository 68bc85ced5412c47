#pragma once
// A cursor over text for the small hand-written readers of dates and times:
// one character at a time, runs of digits, blanks, and the two date forms
// the system writes.

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

namespace vek {

struct DateDigits {
  int32_t year;
  int32_t month;
  int32_t day;
};

class TextReader {
 public:
  explicit TextReader(std::string_view text) : text_(text) {}

  bool AtEnd() const { return pos_ >= text_.size(); }
  char Peek() const { return AtEnd() ? '\0' : text_[pos_]; }
  bool Take(char c) {
    if (Peek() != c) return false;
    ++pos_;
    return true;
  }
  // Between min_digits and max_digits decimal digits.
  std::optional<int32_t> Number(size_t min_digits, size_t max_digits) {
    int32_t value = 0;
    size_t count = 0;
    while (count < max_digits && Peek() >= '0' && Peek() <= '9') {
      value = value * 10 + (Peek() - '0');
      ++pos_;
      ++count;
    }
    if (count < min_digits) return std::nullopt;
    return value;
  }
  // 'dd/mm/yyyy' when the separator is '/', 'yyyy-mm-dd' when it is '-';
  // the numbers are not checked against the calendar.
  std::optional<DateDigits> DayFirstOrIsoDate(char separator) {
    if (separator == '-') {
      const auto year = Number(4, 4);
      if (!year || !Take('-')) return std::nullopt;
      const auto month = Number(1, 2);
      if (!month || !Take('-')) return std::nullopt;
      const auto day = Number(1, 2);
      if (!day) return std::nullopt;
      return DateDigits{*year, *month, *day};
    }
    if (separator != '/') return std::nullopt;
    const auto day = Number(1, 2);
    if (!day || !Take('/')) return std::nullopt;
    const auto month = Number(1, 2);
    if (!month || !Take('/')) return std::nullopt;
    const auto year = Number(4, 4);
    if (!year) return std::nullopt;
    return DateDigits{*year, *month, *day};
  }
  // Skips spaces; returns how many.
  size_t SkipSpaces() {
    size_t count = 0;
    while (Peek() == ' ') {
      ++pos_;
      ++count;
    }
    return count;
  }

 private:
  std::string_view text_;
  size_t pos_ = 0;
};

}  // namespace vek
