#pragma once
// The runtime's Format for the number and date patterns the system uses.
//
// Number patterns: '#' optional digit, '0' required digit, ',' between digit
// placeholders groups the integer digits by three, ',' right after the last
// integer placeholder divides by 1000, the first '.' is the decimal position;
// the output carries CurrentLocale()'s separators. Shown decimals are rounded
// half away from zero on the 15 significant digits the runtime keeps of a
// Double (exactly, for Currency). Negative values get a leading "-" unless
// they round to zero. Other characters, "quoted text" and \x are copied.
//
// Date patterns (any pattern holding one of the letters d m y h n s, any
// case): d dd day, m mm month (minutes right after an h token), y day of the
// year, yy yyyy year, h hh hour of 24, n nn minutes, s ss seconds; anything
// else is copied.
//
// Null gives ""; text that the pattern's kind cannot read is returned as it is.

#include <string>
#include <string_view>

#include "vek/platform/Variant.h"

namespace vek {

// CStr of the value, or "" for Null.
std::string Format(const Variant& value);
// An empty pattern is the same as no pattern.
std::string Format(const Variant& value, std::string_view pattern);

}  // namespace vek
