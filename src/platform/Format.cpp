#include "vek/platform/Format.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <optional>
#include <vector>

#include "vek/platform/VekError.h"
#include "vek/platform/Locale.h"

namespace vek {
namespace {

// ---- pattern elements -----------------------------------------------------

// One character of the pattern that may mean something, or literal text that
// was quoted or escaped.
struct Element {
  char symbol = '\0';  // '\0' for literal text
  std::string text;
};

size_t Utf8Length(unsigned char lead) {
  if (lead >= 0xF0) return 4;
  if (lead >= 0xE0) return 3;
  if (lead >= 0xC0) return 2;
  return 1;
}

std::vector<Element> SplitPattern(std::string_view pattern) {
  std::vector<Element> elements;
  size_t pos = 0;
  while (pos < pattern.size()) {
    const char c = pattern[pos];
    if (c == '"') {
      const size_t close = pattern.find('"', pos + 1);
      const size_t end = close == std::string_view::npos ? pattern.size() : close;
      elements.push_back({'\0', std::string(pattern.substr(pos + 1, end - pos - 1))});
      pos = end == pattern.size() ? end : end + 1;
    } else if (c == '\\' && pos + 1 < pattern.size()) {
      const size_t length = Utf8Length(static_cast<unsigned char>(pattern[pos + 1]));
      elements.push_back({'\0', std::string(pattern.substr(pos + 1, length))});
      pos += 1 + length;
    } else if (static_cast<unsigned char>(c) >= 0x80) {
      // Multi-byte characters are never pattern symbols.
      const size_t length = Utf8Length(static_cast<unsigned char>(c));
      elements.push_back({'\0', std::string(pattern.substr(pos, length))});
      pos += length;
    } else {
      elements.push_back({c, std::string(1, c)});
      ++pos;
    }
  }
  return elements;
}

char AsciiLower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

bool IsDateLetter(char symbol) {
  switch (AsciiLower(symbol)) {
    case 'd':
    case 'm':
    case 'y':
    case 'h':
    case 'n':
    case 's':
      return true;
    default:
      return false;
  }
}

bool IsDatePattern(const std::vector<Element>& elements) {
  for (const Element& element : elements) {
    if (IsDateLetter(element.symbol)) return true;
  }
  return false;
}

// ---- decimal values ---------------------------------------------------------

// A decimal number as digits: 0.digits x 10^point, no leading or trailing zero
// digits; zero has no digits.
struct Decimal {
  bool negative = false;
  std::string digits;
  int32_t point = 0;

  void Normalize() {
    const size_t leading = digits.find_first_not_of('0');
    if (leading == std::string::npos) {
      digits.clear();
      point = 0;
      return;
    }
    digits.erase(0, leading);
    point -= static_cast<int32_t>(leading);
    digits.erase(digits.find_last_not_of('0') + 1);
  }

  // Half away from zero at `decimals` places after the point.
  void Round(int32_t decimals) {
    const int64_t keep = int64_t{point} + decimals;
    if (keep >= static_cast<int64_t>(digits.size())) return;
    if (keep < 0) {
      digits.clear();
      point = 0;
      return;
    }
    const bool up = digits[static_cast<size_t>(keep)] >= '5';
    digits.resize(static_cast<size_t>(keep));
    if (up) {
      size_t i = digits.size();
      while (i > 0 && digits[i - 1] == '9') {
        digits[i - 1] = '0';
        --i;
      }
      if (i == 0) {
        digits.insert(digits.begin(), '1');
        ++point;
      } else {
        ++digits[i - 1];
      }
    }
    Normalize();
  }

  std::string IntegerDigits() const {
    if (point <= 0) return std::string();
    const auto whole = static_cast<size_t>(point);
    std::string result = digits.substr(0, whole);
    result.append(whole - result.size(), '0');
    return result;
  }

  char FractionDigit(int32_t index) const {
    const int64_t at = int64_t{point} + index;
    return at >= 0 && at < static_cast<int64_t>(digits.size()) ? digits[static_cast<size_t>(at)]
                                                                : '0';
  }
};

Decimal DecimalFromUnsigned(uint64_t magnitude, bool negative, int32_t scale) {
  Decimal value;
  value.negative = negative;
  value.digits = std::to_string(magnitude);
  value.point = static_cast<int32_t>(value.digits.size()) - scale;
  value.Normalize();
  return value;
}

Decimal DecimalFromInteger(int64_t number) {
  const uint64_t magnitude =
      number < 0 ? uint64_t{0} - static_cast<uint64_t>(number) : static_cast<uint64_t>(number);
  return DecimalFromUnsigned(magnitude, number < 0, 0);
}

// The runtime sees a Double as its 15 significant digits, and rounds those.
Decimal DecimalFromDouble(double number) {
  if (!std::isfinite(number)) RaiseRuntimeError(kOverflow);
  char buffer[64];
  const auto result = std::to_chars(buffer, buffer + sizeof buffer, std::fabs(number),
                                    std::chars_format::scientific, 14);
  const std::string_view text(buffer, static_cast<size_t>(result.ptr - buffer));
  const size_t e = text.find('e');
  Decimal value;
  value.negative = number < 0;
  for (char c : text.substr(0, e)) {
    if (c >= '0' && c <= '9') value.digits += c;
  }
  std::string_view exponent_text = text.substr(e + 1);
  if (!exponent_text.empty() && exponent_text.front() == '+') exponent_text.remove_prefix(1);
  int32_t exponent = 0;
  std::from_chars(exponent_text.data(), exponent_text.data() + exponent_text.size(), exponent);
  value.point = exponent + 1;
  value.Normalize();
  return value;
}

// The number a number pattern shows; none for text that is not a number.
std::optional<Decimal> NumberOf(const Variant& value) {
  if (value.IsEmpty()) return Decimal{};
  if (const auto* b = value.Get<bool>()) return DecimalFromInteger(*b ? -1 : 0);
  if (const auto* u = value.Get<uint8_t>()) return DecimalFromInteger(*u);
  if (const auto* i = value.Get<int16_t>()) return DecimalFromInteger(*i);
  if (const auto* l = value.Get<int32_t>()) return DecimalFromInteger(*l);
  if (const auto* d = value.Get<double>()) return DecimalFromDouble(*d);
  if (const auto* date = value.Get<Date>()) return DecimalFromDouble(date->Serial());
  if (const auto* c = value.Get<Currency>()) {
    const int64_t raw = c->Raw();
    const uint64_t magnitude =
        raw < 0 ? uint64_t{0} - static_cast<uint64_t>(raw) : static_cast<uint64_t>(raw);
    return DecimalFromUnsigned(magnitude, raw < 0, 4);
  }
  try {
    return DecimalFromDouble(CDbl(value));
  } catch (const VekError&) {
    return std::nullopt;
  }
}

// ---- number patterns --------------------------------------------------------

struct NumberPattern {
  std::vector<Element> integer_part;   // placeholders and literals before the point
  std::vector<Element> fraction_part;  // after it
  bool has_point = false;
  bool grouping = false;
  int32_t thousands_scale = 0;
  int32_t integer_placeholders = 0;
  int32_t required_integer_digits = 0;
  int32_t fraction_placeholders = 0;
  int32_t required_fraction_digits = 0;
};

bool IsPlaceholder(char symbol) { return symbol == '#' || symbol == '0'; }

NumberPattern ReadNumberPattern(const std::vector<Element>& elements) {
  NumberPattern pattern;
  size_t point_at = elements.size();
  for (size_t i = 0; i < elements.size(); ++i) {
    if (elements[i].symbol == '.') {
      point_at = i;
      pattern.has_point = true;
      break;
    }
  }

  size_t first = point_at;
  size_t last = point_at;
  for (size_t i = 0; i < point_at; ++i) {
    if (!IsPlaceholder(elements[i].symbol)) continue;
    if (first == point_at) first = i;
    last = i;
  }
  for (size_t i = 0; i < point_at; ++i) {
    const Element& element = elements[i];
    if (element.symbol == ',' && first != point_at && i > first) {
      // A comma among the digits asks for grouping; one after them scales.
      if (i < last) {
        pattern.grouping = true;
      } else {
        ++pattern.thousands_scale;
      }
      continue;
    }
    if (IsPlaceholder(element.symbol)) {
      ++pattern.integer_placeholders;
      if (element.symbol == '0' && pattern.required_integer_digits == 0) {
        // Every placeholder from the first '0' to the point shows a digit.
        pattern.required_integer_digits = 1;
      } else if (pattern.required_integer_digits > 0) {
        ++pattern.required_integer_digits;
      }
    }
    pattern.integer_part.push_back(element);
  }

  for (size_t i = point_at + 1; i < elements.size(); ++i) {
    const Element& element = elements[i];
    if (element.symbol == ',') continue;
    if (IsPlaceholder(element.symbol)) {
      ++pattern.fraction_placeholders;
      if (element.symbol == '0') pattern.required_fraction_digits = pattern.fraction_placeholders;
    }
    pattern.fraction_part.push_back(element);
  }
  return pattern;
}

std::string FormatNumber(const NumberPattern& pattern, Decimal value, const Locale& locale) {
  value.point -= 3 * pattern.thousands_scale;
  value.Round(pattern.fraction_placeholders);

  std::string integer_digits = value.IntegerDigits();
  if (static_cast<int32_t>(integer_digits.size()) < pattern.required_integer_digits) {
    integer_digits.insert(
        0, static_cast<size_t>(pattern.required_integer_digits) - integer_digits.size(), '0');
  }

  std::string out;
  if (value.negative && !value.digits.empty()) out += '-';

  // Digits fill the placeholders from the right; the leftmost placeholder
  // takes whatever does not fit. Without placeholders the digits stand just
  // before the point.
  const auto digit_count = static_cast<int32_t>(integer_digits.size());
  const int32_t placeholders = pattern.integer_placeholders;
  int32_t next_digit = 0;
  const auto emit_digits_up_to = [&](int32_t end) {
    for (; next_digit < end; ++next_digit) {
      out += integer_digits[static_cast<size_t>(next_digit)];
      const int32_t from_right = digit_count - 1 - next_digit;
      if (pattern.grouping && from_right > 0 && from_right % 3 == 0) out += locale.grouping;
    }
  };
  int32_t placeholder_index = 0;  // from the left
  for (const Element& element : pattern.integer_part) {
    if (!IsPlaceholder(element.symbol)) {
      out += element.text;
      continue;
    }
    const int32_t from_right = placeholders - 1 - placeholder_index;
    emit_digits_up_to(std::max(0, digit_count - from_right));
    ++placeholder_index;
  }
  emit_digits_up_to(digit_count);

  if (!pattern.has_point) return out;
  out += locale.decimal;

  std::string fraction;
  for (int32_t i = 0; i < pattern.fraction_placeholders; ++i) fraction += value.FractionDigit(i);
  while (static_cast<int32_t>(fraction.size()) > pattern.required_fraction_digits &&
         fraction.back() == '0') {
    fraction.pop_back();
  }
  size_t next_fraction = 0;
  for (const Element& element : pattern.fraction_part) {
    if (!IsPlaceholder(element.symbol)) {
      out += element.text;
    } else if (next_fraction < fraction.size()) {
      out += fraction[next_fraction++];
    }
  }
  return out;
}

// ---- date patterns ----------------------------------------------------------

// The date a date pattern shows; none for text that is not a date.
std::optional<Date> DateOf(const Variant& value) {
  if (const auto* date = value.Get<Date>()) return *date;
  if (value.IsString()) {
    try {
      return CDate(value);
    } catch (const VekError&) {
      return std::nullopt;
    }
  }
  return Date(CDbl(value));
}

std::string Padded(int64_t number, size_t width) {
  std::string text = std::to_string(number);
  if (text.size() < width) text.insert(0, width - text.size(), '0');
  return text;
}

int32_t DayOfYear(const DateParts& parts) {
  return static_cast<int32_t>(DateSerial(parts.year, parts.month, parts.day) -
                              DateSerial(parts.year, 1, 1)) +
         1;
}

std::string FormatDate(const std::vector<Element>& elements, Date date) {
  const DateParts parts = SplitDate(date);
  std::string out;
  bool after_hour = false;
  size_t i = 0;
  while (i < elements.size()) {
    const Element& element = elements[i];
    const char letter = AsciiLower(element.symbol);
    if (!IsDateLetter(letter)) {
      out += element.text;
      ++i;
      continue;
    }
    size_t run = 1;
    while (i + run < elements.size() && AsciiLower(elements[i + run].symbol) == letter) ++run;
    size_t taken = std::min<size_t>(run, 2);
    const size_t width = taken;
    switch (letter) {
      case 'd':
        out += Padded(parts.day, width);
        break;
      case 'm':
        // As in the runtime, m right after an hour means minutes.
        out += Padded(after_hour ? parts.minute : parts.month, width);
        break;
      case 'y':
        if (run >= 4) {
          taken = 4;
          out += Padded(parts.year, 4);
        } else if (run >= 2) {
          out += Padded(parts.year % 100, 2);
        } else {
          out += std::to_string(DayOfYear(parts));
        }
        break;
      case 'h':
        out += Padded(parts.hour, width);
        break;
      case 'n':
        out += Padded(parts.minute, width);
        break;
      default:  // 's'
        out += Padded(parts.second, width);
        break;
    }
    after_hour = letter == 'h';
    i += taken;
  }
  return out;
}

const std::string& TextOf(const Variant& value) {
  static const std::string kNone;
  const auto* text = value.Get<std::string>();
  return text != nullptr ? *text : kNone;
}

}  // namespace

std::string Format(const Variant& value) {
  if (value.IsNull()) return std::string();
  return CStr(value);
}

std::string Format(const Variant& value, std::string_view pattern) {
  if (value.IsNull()) return std::string();
  if (pattern.empty()) return CStr(value);
  const std::vector<Element> elements = SplitPattern(pattern);
  if (IsDatePattern(elements)) {
    const std::optional<Date> date = DateOf(value);
    if (!date) return TextOf(value);
    return FormatDate(elements, *date);
  }
  const std::optional<Decimal> number = NumberOf(value);
  if (!number) return TextOf(value);
  return FormatNumber(ReadNumberPattern(elements), *number, CurrentLocale());
}

}  // namespace vek
