#include "vek/platform/Clock.h"

#include <chrono>
#include <cstdint>
#include <ctime>

namespace vek {
namespace {

// Days from 1970-01-01 back to the date type's day 0, 1899-12-30.
constexpr int64_t kUnixEpochSerial = 25569;
constexpr int64_t kMillisecondsPerDay = 86'400'000;

}  // namespace

Date SystemClock::Now() const {
  const auto now = std::chrono::system_clock::now();
  const int64_t utc_ms =
      std::chrono::duration_cast<std::chrono::milliseconds>(now.time_since_epoch()).count();
  const std::time_t seconds = static_cast<std::time_t>(utc_ms / 1000);
  std::tm local{};
  int64_t offset_ms = 0;
  if (::localtime_r(&seconds, &local) != nullptr) offset_ms = int64_t{local.tm_gmtoff} * 1000;
  const int64_t local_ms = utc_ms + offset_ms;
  // Whole days and the time of day apart, so the fraction keeps its precision.
  int64_t days = local_ms / kMillisecondsPerDay;
  int64_t ms_of_day = local_ms % kMillisecondsPerDay;
  if (ms_of_day < 0) {
    ms_of_day += kMillisecondsPerDay;
    --days;
  }
  return Date(static_cast<double>(days + kUnixEpochSerial) +
              static_cast<double>(ms_of_day) / static_cast<double>(kMillisecondsPerDay));
}

Date FixedClock::Now() const {
  const std::lock_guard<std::mutex> lock(mutex_);
  return now_;
}

void FixedClock::Set(Date now) {
  const std::lock_guard<std::mutex> lock(mutex_);
  now_ = now;
}

void FixedClock::Advance(double seconds) {
  const std::lock_guard<std::mutex> lock(mutex_);
  now_ = now_ + seconds / 86400.0;
}

}  // namespace vek
