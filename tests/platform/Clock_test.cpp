#include "vek/platform/Clock.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "vek/platform/AppPath.h"

namespace vek {
namespace {

namespace fs = std::filesystem;

constexpr double kSecond = 1.0 / 86400.0;

class ScopedEnv {
 public:
  ScopedEnv(const char* name, const char* value) : name_(name) {
    if (const char* old = std::getenv(name)) old_ = old;
    if (value == nullptr) {
      ::unsetenv(name);
    } else {
      ::setenv(name, value, 1);
    }
  }
  ~ScopedEnv() {
    if (old_) {
      ::setenv(name_, old_->c_str(), 1);
    } else {
      ::unsetenv(name_);
    }
  }
  ScopedEnv(const ScopedEnv&) = delete;
  ScopedEnv& operator=(const ScopedEnv&) = delete;

 private:
  const char* name_;
  std::optional<std::string> old_;
};

TEST(ClockTest, FixedClockMovesOnlyWhenTold) {
  const Date start(45356.125);  // 5 Mar 2024 03:00
  FixedClock clock(start);
  const Clock& as_clock = clock;
  EXPECT_EQ(as_clock.Now(), start);
  EXPECT_EQ(as_clock.Now(), start);

  clock.Advance(90);
  EXPECT_NEAR(clock.Now() - start, 90 * kSecond, 1e-9);
  clock.Advance(-0.5);
  EXPECT_NEAR(clock.Now() - start, 89.5 * kSecond, 1e-9);
  clock.Set(Date(45357.0));
  EXPECT_EQ(clock.Now(), Date(45357.0));

  // No advance is lost when threads share the clock.
  std::vector<std::thread> threads;
  for (int t = 0; t < 4; ++t) {
    threads.emplace_back([&clock] {
      for (int i = 0; i < 1000; ++i) clock.Advance(1);
    });
  }
  for (auto& thread : threads) thread.join();
  EXPECT_NEAR(clock.Now() - Date(45357.0), 4000 * kSecond, 1e-6);
}

TEST(ClockTest, SystemClockReadsLocalWallTime) {
  std::optional<std::string> old_tz;
  if (const char* tz = std::getenv("TZ")) old_tz = tz;
  const SystemClock clock;
  const auto utc_serial = [] { return std::time(nullptr) / 86400.0 + 25569.0; };

  ::setenv("TZ", "UTC0", 1);
  ::tzset();
  double expected = utc_serial();
  EXPECT_NEAR(clock.Now().Serial(), expected, 2 * kSecond);

  // Three hours west of Greenwich, no summer time.
  ::setenv("TZ", "<-03>3", 1);
  ::tzset();
  expected = utc_serial() - 3.0 / 24.0;
  EXPECT_NEAR(clock.Now().Serial(), expected, 2 * kSecond);

  if (old_tz) {
    ::setenv("TZ", old_tz->c_str(), 1);
  } else {
    ::unsetenv("TZ");
  }
  ::tzset();
}

TEST(AppPathTest, SetPathWinsOverVekHomeWhichWinsOverExecutableFolder) {
  const fs::path executable_folder = fs::read_symlink("/proc/self/exe").parent_path();
  SetAppPath({});
  {
    ScopedEnv home("VEK_HOME", nullptr);
    EXPECT_EQ(AppPath(), executable_folder);
  }
  {
    ScopedEnv home("VEK_HOME", "");
    EXPECT_EQ(AppPath(), executable_folder);
  }
  {
    ScopedEnv home("VEK_HOME", "/opt/vek");
    EXPECT_EQ(AppPath(), fs::path("/opt/vek"));
    SetAppPath("/srv/terminal");
    EXPECT_EQ(AppPath(), fs::path("/srv/terminal"));
    SetAppPath({});
    EXPECT_EQ(AppPath(), fs::path("/opt/vek"));
  }
}

}  // namespace
}  // namespace vek
