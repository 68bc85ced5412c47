#pragma once
// Where the library reads "now": the session's clock, the system's wall clock
// by default and a fixed clock in tests.

#include <mutex>

#include "vek/platform/Date.h"

namespace vek {

class Clock {
 public:
  virtual ~Clock() = default;
  virtual Date Now() const = 0;
};

// The local wall-clock time, to the millisecond.
class SystemClock final : public Clock {
 public:
  Date Now() const override;
};

// A clock that moves only when told to; safe to use from several threads.
class FixedClock final : public Clock {
 public:
  explicit FixedClock(Date now) : now_(now) {}
  Date Now() const override;
  void Set(Date now);
  // Negative seconds move the clock back.
  void Advance(double seconds);

 private:
  mutable std::mutex mutex_;
  Date now_;
};

}  // namespace vek
