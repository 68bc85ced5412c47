#include "vek/platform/Clock.h"

#include <gtest/gtest.h>

#include <ctime>
#include <filesystem>
#include <thread>
#include <vector>

#include "support/TestSupport.h"
#include "vek/platform/AppPath.h"

namespace vek {
namespace {

namespace fs = std::filesystem;
using testing::EnvGuard;

constexpr double kSecond = 1.0 / 86400.0;

TEST(ClockTest, FixedClockMovesOnlyWhenTold) {
  const Date start(45356.125);  // 5 Mar 2024 03:00
  FixedClock clock(start);
  const Clock& as_clock = clock;
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
  const SystemClock clock;
  const auto utc_serial = [] { return std::time(nullptr) / 86400.0 + 25569.0; };
  {
    EnvGuard tz("TZ", "UTC0");
    ::tzset();
    EXPECT_NEAR(clock.Now().Serial(), utc_serial(), 2 * kSecond);
  }
  {
    EnvGuard tz("TZ", "<-03>3");  // three hours west of Greenwich, no summer time
    ::tzset();
    EXPECT_NEAR(clock.Now().Serial(), utc_serial() - 3.0 / 24.0, 2 * kSecond);
  }
  ::tzset();
}

TEST(AppPathTest, SetPathWinsOverVekHomeWhichWinsOverExecutableFolder) {
  const fs::path executable_folder = fs::read_symlink("/proc/self/exe").parent_path();
  SetAppPath({});
  {
    EnvGuard home("VEK_HOME", nullptr);
    EXPECT_EQ(AppPath(), executable_folder);
  }
  {
    EnvGuard home("VEK_HOME", "");
    EXPECT_EQ(AppPath(), executable_folder);
  }
  {
    EnvGuard home("VEK_HOME", "/opt/vek");
    EXPECT_EQ(AppPath(), fs::path("/opt/vek"));
    SetAppPath("/srv/terminal");
    EXPECT_EQ(AppPath(), fs::path("/srv/terminal"));
    SetAppPath({});
    EXPECT_EQ(AppPath(), fs::path("/opt/vek"));
  }
}

}  // namespace
}  // namespace vek
