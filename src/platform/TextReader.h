#pragma once
// A cursor over text for the small hand-written readers of dates and times:
// one character at a time, runs of digits, blanks.

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

namespace vek {

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
