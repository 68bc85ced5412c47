#include "vek/platform/Variant.h"

#include <charconv>
#include <cmath>
#include <cstdio>
#include <limits>
#include <optional>

#include "vek/platform/VekError.h"
#include "vek/platform/Locale.h"
#include "vek/platform/Text.h"

namespace vek {
namespace {

bool IsBlank(char c) { return c == ' ' || c == '\t'; }

std::optional<double> ParseRadixNumber(std::string_view digits, int base) {
  if (digits.empty() || digits.size() > (base == 16 ? 8u : 11u)) return std::nullopt;
  uint64_t value = 0;
  auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), value, base);
  if (error != std::errc() || end != digits.data() + digits.size() || value > 0xFFFFFFFFu) {
    return std::nullopt;
  }
  // Like the runtime, up to four hex digits (or an octal value of 16 bits)
  // make an Integer and more make a Long, so the top bit is a sign.
  if (base == 16 ? digits.size() <= 4 : value <= 0xFFFF) {
    return static_cast<double>(static_cast<int16_t>(static_cast<uint16_t>(value)));
  }
  return static_cast<double>(static_cast<int32_t>(static_cast<uint32_t>(value)));
}

// Reads a number as the runtime reads numeric text: blanks around it, a sign,
// grouping separators ignored, the locale's decimal separator, an exponent.
std::optional<double> ParseNumber(std::string_view text) {
  while (!text.empty() && IsBlank(text.front())) text.remove_prefix(1);
  while (!text.empty() && IsBlank(text.back())) text.remove_suffix(1);
  if (text.size() > 2 && text[0] == '&') {
    const char radix = static_cast<char>(text[1] | 0x20);
    if (radix == 'h') return ParseRadixNumber(text.substr(2), 16);
    if (radix == 'o') return ParseRadixNumber(text.substr(2), 8);
  }
  const Locale locale = CurrentLocale();
  std::string plain;
  size_t pos = 0;
  if (pos < text.size() && (text[pos] == '+' || text[pos] == '-')) {
    if (text[pos] == '-') plain += '-';
    ++pos;
  }
  bool digits = false;
  bool decimal_seen = false;
  while (pos < text.size()) {
    const char c = text[pos];
    if (c >= '0' && c <= '9') {
      plain += c;
      digits = true;
      ++pos;
    } else if (!decimal_seen && !locale.decimal.empty() && text.substr(pos).starts_with(locale.decimal)) {
      plain += '.';
      decimal_seen = true;
      pos += locale.decimal.size();
    } else if (!decimal_seen && !locale.grouping.empty() && digits &&
               text.substr(pos).starts_with(locale.grouping)) {
      pos += locale.grouping.size();
    } else {
      break;
    }
  }
  if (!digits) return std::nullopt;
  if (pos < text.size() && (text[pos] == 'e' || text[pos] == 'E')) {
    plain += 'e';
    ++pos;
    if (pos < text.size() && (text[pos] == '+' || text[pos] == '-')) plain += text[pos++];
    const size_t exponent_start = pos;
    while (pos < text.size() && text[pos] >= '0' && text[pos] <= '9') plain += text[pos++];
    if (pos == exponent_start) return std::nullopt;
  }
  if (pos != text.size()) return std::nullopt;
  double value = 0;
  auto [end, error] = std::from_chars(plain.data(), plain.data() + plain.size(), value);
  if (error != std::errc() || end != plain.data() + plain.size()) return std::nullopt;
  return value;
}

[[noreturn]] void TypeMismatch() { RaiseRuntimeError(kTypeMismatch); }

// The value as a double for the numeric conversions; Empty is 0, True is -1.
double NumericValue(const Variant& value) {
  switch (value.Type()) {
    case VariantType::Empty: return 0;
    case VariantType::Null: TypeMismatch();
    case VariantType::Boolean: return *value.Get<bool>() ? -1 : 0;
    case VariantType::Byte: return *value.Get<uint8_t>();
    case VariantType::Integer: return *value.Get<int16_t>();
    case VariantType::Long: return *value.Get<int32_t>();
    case VariantType::Double: return *value.Get<double>();
    case VariantType::Currency: return value.Get<Currency>()->ToDouble();
    case VariantType::Date: return value.Get<Date>()->Serial();
    case VariantType::String: {
      if (auto number = ParseNumber(*value.Get<std::string>())) return *number;
      TypeMismatch();
    }
  }
  TypeMismatch();
}

// Rounds half to even, then checks the integer type's range.
template <class Integer>
Integer ToInteger(const Variant& value) {
  double rounded;
  if (const Currency* money = value.Get<Currency>()) {
    // Round the exact ten-thousandths rather than their double image.
    const int64_t raw = money->Raw();
    int64_t whole = raw / 10000;
    const int64_t rest = raw % 10000;
    if (rest > 5000 || (rest == 5000 && whole % 2 != 0)) ++whole;
    if (rest < -5000 || (rest == -5000 && whole % 2 != 0)) --whole;
    rounded = static_cast<double>(whole);
  } else {
    rounded = std::nearbyint(NumericValue(value));
  }
  if (!(rounded >= static_cast<double>(std::numeric_limits<Integer>::min()) &&
        rounded <= static_cast<double>(std::numeric_limits<Integer>::max()))) {
    RaiseRuntimeError(kOverflow);
  }
  return static_cast<Integer>(rounded);
}

std::string WithLocaleDecimal(std::string text) {
  const size_t point = text.find('.');
  if (point != std::string::npos) text.replace(point, 1, CurrentLocale().decimal);
  return text;
}

std::string DoubleText(double value) {
  char buffer[64];
  auto [end, error] =
      std::to_chars(buffer, buffer + sizeof buffer, value, std::chars_format::general, 15);
  std::string text(buffer, error == std::errc() ? end : buffer);
  for (char& c : text) {
    if (c == 'e') c = 'E';
  }
  return WithLocaleDecimal(text);
}

std::string DateText(Date date) {
  const DateParts p = SplitDate(date);
  char buffer[32];
  const bool has_time = p.hour != 0 || p.minute != 0 || p.second != 0;
  const bool has_day = !(p.year == 1899 && p.month == 12 && p.day == 30);
  std::string text;
  if (has_day || !has_time) {
    std::snprintf(buffer, sizeof buffer, "%02d/%02d/%04d", p.day, p.month, p.year);
    text = buffer;
  }
  if (has_time) {
    std::snprintf(buffer, sizeof buffer, "%02d:%02d:%02d", p.hour, p.minute, p.second);
    if (!text.empty()) text += ' ';
    text += buffer;
  }
  return text;
}

}  // namespace

Variant::Variant(int64_t v) {
  if (v >= std::numeric_limits<int32_t>::min() && v <= std::numeric_limits<int32_t>::max()) {
    value_ = static_cast<int32_t>(v);
  } else {
    value_ = static_cast<double>(v);
  }
}

VariantType Variant::Type() const {
  static constexpr VariantType kTypes[] = {
      VariantType::Empty, VariantType::Null,     VariantType::Boolean,
      VariantType::Byte,  VariantType::Integer,  VariantType::Long,
      VariantType::Double, VariantType::Currency, VariantType::Date,
      VariantType::String};
  return kTypes[value_.index()];
}

std::string Variant::TypeName() const {
  switch (Type()) {
    case VariantType::Empty: return "Empty";
    case VariantType::Null: return "Null";
    case VariantType::Boolean: return "Boolean";
    case VariantType::Byte: return "Byte";
    case VariantType::Integer: return "Integer";
    case VariantType::Long: return "Long";
    case VariantType::Double: return "Double";
    case VariantType::Currency: return "Currency";
    case VariantType::Date: return "Date";
    case VariantType::String: return "String";
  }
  return "Unknown";
}

bool Variant::IsNumber() const {
  switch (Type()) {
    case VariantType::Byte:
    case VariantType::Integer:
    case VariantType::Long:
    case VariantType::Double:
    case VariantType::Currency: return true;
    default: return false;
  }
}

bool IsNumeric(const Variant& value) {
  if (value.IsNull() || value.IsDate()) return false;
  if (const std::string* text = value.Get<std::string>()) return ParseNumber(*text).has_value();
  return true;
}

bool IsDate(const Variant& value) {
  if (value.IsDate()) return true;
  if (const std::string* text = value.Get<std::string>()) return ParseDate(*text).has_value();
  return false;
}

bool CBool(const Variant& value) {
  if (const bool* flag = value.Get<bool>()) return *flag;
  if (const std::string* text = value.Get<std::string>()) {
    const std::string trimmed = Trim(*text);
    if (EqualsIgnoreCase(trimmed, "True")) return true;
    if (EqualsIgnoreCase(trimmed, "False")) return false;
  }
  return NumericValue(value) != 0;
}

uint8_t CByte(const Variant& value) { return ToInteger<uint8_t>(value); }
int16_t CInt(const Variant& value) { return ToInteger<int16_t>(value); }
int32_t CLng(const Variant& value) {
  // Keys and codes are Longs already: nothing to round or check.
  if (const int32_t* number = value.Get<int32_t>()) return *number;
  return ToInteger<int32_t>(value);
}

double CDbl(const Variant& value) { return NumericValue(value); }

Currency CCur(const Variant& value) {
  if (const Currency* money = value.Get<Currency>()) return *money;
  if (const int32_t* number = value.Get<int32_t>()) return Currency::FromRaw(int64_t{*number} * 10000);
  return Currency(NumericValue(value));
}

Date CDate(const Variant& value) {
  if (const Date* date = value.Get<Date>()) return *date;
  if (const std::string* text = value.Get<std::string>()) {
    if (auto date = ParseDate(*text)) return *date;
    TypeMismatch();
  }
  const double serial = NumericValue(value);
  // The runtime's dates run from 1 January 100 to 31 December 9999.
  if (!(serial >= -657434.0 && serial < 2958466.0)) RaiseRuntimeError(kOverflow);
  return Date(serial);
}

std::string CStr(const Variant& value) {
  switch (value.Type()) {
    case VariantType::Empty: return std::string();
    case VariantType::Null: RaiseRuntimeError(kInvalidUseOfNull);
    case VariantType::Boolean: return *value.Get<bool>() ? "True" : "False";
    case VariantType::Byte: return std::to_string(*value.Get<uint8_t>());
    case VariantType::Integer: return std::to_string(*value.Get<int16_t>());
    case VariantType::Long: return std::to_string(*value.Get<int32_t>());
    case VariantType::Double: return DoubleText(*value.Get<double>());
    case VariantType::Currency: return WithLocaleDecimal(value.Get<Currency>()->ToPlainString());
    case VariantType::Date: return DateText(*value.Get<Date>());
    case VariantType::String: return *value.Get<std::string>();
  }
  return std::string();
}

}  // namespace vek
