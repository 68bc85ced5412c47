#include "vek/platform/Currency.h"

#include <charconv>
#include <cmath>
#include <cstdlib>

#include "vek/platform/VekError.h"

namespace vek {

Currency::Currency(double value) {
  if (!(std::fabs(value) < 922337203685477.0)) RaiseRuntimeError(kOverflow);
  // Round the value as it reads in 15 significant digits, not its binary
  // image: 0.00015 is a half ten-thousandth even if the double is a hair less.
  char text[40];
  auto [end, error] = std::to_chars(text, text + sizeof text, value, std::chars_format::scientific, 14);
  *end = '\0';
  const bool negative = text[0] == '-';
  const char* mantissa = text + (negative ? 1 : 0);
  int64_t digits = mantissa[0] - '0';
  for (int i = 2; i < 16; ++i) digits = digits * 10 + (mantissa[i] - '0');
  const int exponent = std::atoi(mantissa + 17);  // after "d.dddddddddddddde"
  int shift = exponent - 14 + 4;                  // powers of ten from digits to ten-thousandths
  int64_t raw = digits;
  if (shift >= 0) {
    while (shift-- > 0) raw *= 10;
  } else if (shift < -18) {
    raw = 0;
  } else {
    int64_t divisor = 1;
    while (shift++ < 0) divisor *= 10;
    raw = digits / divisor;
    const int64_t rest = digits % divisor;
    if (rest * 2 > divisor || (rest * 2 == divisor && raw % 2 != 0)) ++raw;
  }
  (void)error;
  raw_ = negative ? -raw : raw;
}

std::string Currency::ToPlainString() const {
  const bool negative = raw_ < 0;
  const uint64_t magnitude = negative ? 0 - static_cast<uint64_t>(raw_) : static_cast<uint64_t>(raw_);
  std::string text = std::to_string(magnitude / 10000);
  std::string decimals = std::to_string(10000 + magnitude % 10000).substr(1);
  while (!decimals.empty() && decimals.back() == '0') decimals.pop_back();
  if (!decimals.empty()) text += "." + decimals;
  return negative ? "-" + text : text;
}

}  // namespace vek
