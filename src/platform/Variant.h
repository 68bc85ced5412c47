#pragma once
// The classic variant: one value of the types the system's data carries, and
// the conversions CBool ... CStr with the classic rules and errors (13 type
// mismatch, 6 overflow; integers round half to even).

#include <cstdint>
#include <string>
#include <string_view>
#include <variant>

#include "vek/platform/Currency.h"
#include "vek/platform/Date.h"

namespace vek {

// The runtime's VarType codes.
enum class VariantType : int32_t {
  Empty = 0,
  Null = 1,
  Integer = 2,
  Long = 3,
  Double = 5,
  Currency = 6,
  Date = 7,
  String = 8,
  Boolean = 11,
  Byte = 17,
};

class Variant {
 public:
  struct NullValue {
    friend constexpr bool operator==(NullValue, NullValue) { return true; }
  };

  Variant() = default;  // Empty
  Variant(NullValue) : value_(NullValue{}) {}
  Variant(bool v) : value_(v) {}
  Variant(uint8_t v) : value_(v) {}
  Variant(int16_t v) : value_(v) {}
  Variant(int32_t v) : value_(v) {}
  // A 64-bit integer is a Long when it fits and a Double otherwise.
  Variant(int64_t v);
  Variant(long long v) : Variant(static_cast<int64_t>(v)) {}
  Variant(double v) : value_(v) {}
  Variant(Currency v) : value_(v) {}
  Variant(Date v) : value_(v) {}
  Variant(std::string v) : value_(std::move(v)) {}
  Variant(std::string_view v) : value_(std::string(v)) {}
  Variant(const char* v) : value_(std::string(v)) {}

  static Variant Null() { return Variant(NullValue{}); }

  VariantType Type() const;
  // The runtime's TypeName: "Empty", "Null", "Integer", "Long", "Double", ...
  std::string TypeName() const;

  bool IsEmpty() const { return std::holds_alternative<std::monostate>(value_); }
  bool IsNull() const { return std::holds_alternative<NullValue>(value_); }
  bool IsString() const { return std::holds_alternative<std::string>(value_); }
  bool IsDate() const { return std::holds_alternative<Date>(value_); }
  // Byte, Integer, Long, Double or Currency (not Boolean, not Date).
  bool IsNumber() const;

  // The stored value of the given alternative; nullptr when it holds another.
  template <class T>
  const T* Get() const {
    return std::get_if<T>(&value_);
  }

  // Same type and same value.
  friend bool operator==(const Variant& a, const Variant& b) = default;

 private:
  std::variant<std::monostate, NullValue, bool, uint8_t, int16_t, int32_t, double, Currency, Date,
               std::string>
      value_;
};

// True when the value converts to a number (numbers, Empty, Boolean, numeric text).
bool IsNumeric(const Variant& value);
// True when the value is a Date or text that CDate reads.
bool IsDate(const Variant& value);

// Numbers are true when not zero; text reads "True"/"False" (any case) or a number.
bool CBool(const Variant& value);
uint8_t CByte(const Variant& value);
int16_t CInt(const Variant& value);
int32_t CLng(const Variant& value);
// Text is read with the locale's decimal separator; grouping separators are
// ignored; "&H" and "&O" prefixes read hexadecimal and octal.
double CDbl(const Variant& value);
Currency CCur(const Variant& value);
// Numbers are date serials; text is read as ParseDate does.
Date CDate(const Variant& value);
// Empty is ""; Boolean "True"/"False"; numbers with the locale's decimal
// separator and up to 15 significant digits; dates "dd/mm/yyyy hh:mm:ss",
// without the time when it is midnight and without the date when it is
// 30/12/1899. Null raises error 94.
std::string CStr(const Variant& value);

}  // namespace vek
