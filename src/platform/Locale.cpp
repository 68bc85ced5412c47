#include "vek/platform/Locale.h"

#include <langinfo.h>
#include <locale.h>

#include <mutex>
#include <optional>
#include <utility>

namespace vek {
namespace {

std::mutex& LocaleMutex() {
  static std::mutex mutex;
  return mutex;
}

// What SetLocale chose; empty until a program chooses.
std::optional<Locale>& ChosenLocale() {
  static std::optional<Locale> chosen;
  return chosen;
}

// Read once: the environment does not change under a running program.
const Locale& EnvironmentLocale() {
  static const Locale environment = LocaleFromEnvironment();
  return environment;
}

}  // namespace

Locale LocaleFromEnvironment() {
  Locale locale{".", ""};
  // A locale object of its own leaves the process's C locale untouched, so
  // printf and strtod keep reading "." whatever the machine says.
  locale_t numeric = newlocale(LC_NUMERIC_MASK, "", static_cast<locale_t>(0));
  if (numeric != static_cast<locale_t>(0)) {
    const char* radix = nl_langinfo_l(RADIXCHAR, numeric);
    const char* thousands = nl_langinfo_l(THOUSEP, numeric);
    if (radix != nullptr && *radix != '\0') locale.decimal = radix;
    if (thousands != nullptr && *thousands != '\0') locale.grouping = thousands;
    freelocale(numeric);
  }
  if (locale.grouping.empty()) locale.grouping = locale.decimal == "," ? "." : ",";
  return locale;
}

Locale CurrentLocale() {
  {
    std::lock_guard lock(LocaleMutex());
    if (ChosenLocale()) return *ChosenLocale();
  }
  return EnvironmentLocale();
}

void SetLocale(Locale locale) {
  std::lock_guard lock(LocaleMutex());
  ChosenLocale() = std::move(locale);
}

}  // namespace vek
