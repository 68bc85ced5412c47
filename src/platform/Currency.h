#pragma once
// The classic fixed-point money type: a 64-bit count of ten-thousandths.

#include <compare>
#include <cstdint>
#include <string>

namespace vek {

class Currency {
 public:
  constexpr Currency() = default;
  // Rounds to the ten-thousandth, half to even; out of range raises error 6.
  explicit Currency(double value);

  static constexpr Currency FromRaw(int64_t ten_thousandths) {
    Currency c;
    c.raw_ = ten_thousandths;
    return c;
  }
  constexpr int64_t Raw() const { return raw_; }
  double ToDouble() const { return static_cast<double>(raw_) / 10000.0; }

  // Plain decimal text with "." and only the decimals needed ("1234.5", "-3").
  std::string ToPlainString() const;

  friend constexpr Currency operator+(Currency a, Currency b) { return FromRaw(a.raw_ + b.raw_); }
  friend constexpr Currency operator-(Currency a, Currency b) { return FromRaw(a.raw_ - b.raw_); }
  friend constexpr Currency operator-(Currency a) { return FromRaw(-a.raw_); }
  friend constexpr Currency operator*(Currency a, int64_t n) { return FromRaw(a.raw_ * n); }
  Currency& operator+=(Currency other) {
    raw_ += other.raw_;
    return *this;
  }
  Currency& operator-=(Currency other) {
    raw_ -= other.raw_;
    return *this;
  }
  friend constexpr bool operator==(Currency a, Currency b) = default;
  friend constexpr auto operator<=>(Currency a, Currency b) = default;

 private:
  int64_t raw_ = 0;
};

}  // namespace vek
