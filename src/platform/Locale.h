#pragma once
// The process-wide number separators that Format, CStr and the numeric
// conversions of text use, as the classic runtime took them from the machine.

#include <string>

namespace vek {

struct Locale {
  std::string decimal;
  std::string grouping;
};

// The separators in force: those given to SetLocale, or else the environment's.
Locale CurrentLocale();
void SetLocale(Locale locale);

// The separators of the environment's LC_NUMERIC (LC_ALL, LC_NUMERIC, LANG).
// Where that has no grouping separator, grouping is "," when the decimal is
// "." and "." when it is ",".
Locale LocaleFromEnvironment();

}  // namespace vek
