#include "vek/platform/Locale.h"

#include <gtest/gtest.h>
#include <locale.h>

#include <atomic>
#include <cstdlib>
#include <optional>
#include <string>
#include <thread>
#include <vector>

namespace vek {
namespace {

// Sets LC_ALL for one test and puts back what was there.
class EnvironmentGuard {
 public:
  explicit EnvironmentGuard(const char* lc_all) {
    if (const char* old = std::getenv("LC_ALL")) saved_ = old;
    setenv("LC_ALL", lc_all, 1);
  }
  ~EnvironmentGuard() {
    if (saved_) {
      setenv("LC_ALL", saved_->c_str(), 1);
    } else {
      unsetenv("LC_ALL");
    }
  }

 private:
  std::optional<std::string> saved_;
};

TEST(Locale, EnvironmentWithoutGroupingGetsTheOtherSeparator) {
  {
    EnvironmentGuard guard("C");
    const Locale locale = LocaleFromEnvironment();
    EXPECT_EQ(locale.decimal, ".");
    EXPECT_EQ(locale.grouping, ",");
  }
  {
    // A locale the machine does not have falls back to the C separators.
    EnvironmentGuard guard("xx_NOWHERE.UTF-8");
    const Locale locale = LocaleFromEnvironment();
    EXPECT_EQ(locale.decimal, ".");
    EXPECT_EQ(locale.grouping, ",");
  }
}

bool IsInstalled(const char* name) {
  locale_t probe = newlocale(LC_NUMERIC_MASK, name, static_cast<locale_t>(0));
  if (probe == static_cast<locale_t>(0)) return false;
  freelocale(probe);
  return true;
}

TEST(Locale, CommaEnvironmentsGroupWithAPoint) {
  // pt_BR names its grouping "."; pt_PT names none and gets "." all the same.
  if (!IsInstalled("pt_BR.UTF-8") || !IsInstalled("pt_PT.UTF-8")) {
    GTEST_SKIP() << "the Portuguese locales are not installed here";
  }
  for (const char* name : {"pt_BR.UTF-8", "pt_PT.UTF-8"}) {
    EnvironmentGuard guard(name);
    const Locale locale = LocaleFromEnvironment();
    EXPECT_EQ(locale.decimal, ",") << name;
    EXPECT_EQ(locale.grouping, ".") << name;
  }
}

TEST(Locale, SetLocaleReplacesTheProcessWideSeparators) {
  const Locale before = CurrentLocale();
  SetLocale({",", "."});
  EXPECT_EQ(CurrentLocale().decimal, ",");
  EXPECT_EQ(CurrentLocale().grouping, ".");
  SetLocale({".", "\xC2\xA0"});
  EXPECT_EQ(CurrentLocale().grouping, "\xC2\xA0");
  SetLocale(before);
  EXPECT_EQ(CurrentLocale().decimal, before.decimal);
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
