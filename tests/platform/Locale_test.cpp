#include "vek/platform/Locale.h"

#include <gtest/gtest.h>
#include <locale.h>

#include <atomic>
#include <string>
#include <thread>
#include <vector>

#include "support/TestSupport.h"

namespace vek {
namespace {

using testing::EnvGuard;

bool IsInstalled(const char* name) {
  locale_t probe = newlocale(LC_NUMERIC_MASK, name, static_cast<locale_t>(0));
  if (probe == static_cast<locale_t>(0)) return false;
  freelocale(probe);
  return true;
}

TEST(Locale, EnvironmentSeparatorsAndTheirFallbacks) {
  // Without grouping of its own, and on a locale the machine does not have,
  // the grouping is the other separator.
  for (const char* name : {"C", "xx_NOWHERE.UTF-8"}) {
    EnvGuard guard("LC_ALL", name);
    const Locale locale = LocaleFromEnvironment();
    EXPECT_EQ(locale.decimal, ".") << name;
    EXPECT_EQ(locale.grouping, ",") << name;
  }
  // pt_BR names its grouping "."; pt_PT names none and gets "." all the same.
  if (!IsInstalled("pt_BR.UTF-8") || !IsInstalled("pt_PT.UTF-8")) {
    GTEST_SKIP() << "the Portuguese locales are not installed here";
  }
  for (const char* name : {"pt_BR.UTF-8", "pt_PT.UTF-8"}) {
    EnvGuard guard("LC_ALL", name);
    const Locale locale = LocaleFromEnvironment();
    EXPECT_EQ(locale.decimal, ",") << name;
    EXPECT_EQ(locale.grouping, ".") << name;
  }
}

TEST(Locale, ReadersNeverSeeHalfOfAChange) {
  const Locale before = CurrentLocale();
  SetLocale({".", ","});
  std::atomic<bool> stop{false};
  std::atomic<int> torn{0};
  std::vector<std::thread> readers;
  for (int i = 0; i < 2; ++i) {
    readers.emplace_back([&] {
      while (!stop) {
        const Locale seen = CurrentLocale();
        const bool brazil = seen.decimal == "," && seen.grouping == ".";
        const bool dot = seen.decimal == "." && seen.grouping == ",";
        if (!brazil && !dot) ++torn;
      }
    });
  }
  for (int i = 0; i < 20000; ++i) SetLocale(i % 2 == 0 ? Locale{",", "."} : Locale{".", ","});
  stop = true;
  for (std::thread& reader : readers) reader.join();
  SetLocale(before);
  EXPECT_EQ(torn.load(), 0);
}

}  // namespace
}  // namespace vek
