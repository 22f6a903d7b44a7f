// A clock that moves only when a test says so, or when somebody sleeps on it.
#pragma once

#include "platform/clock.h"

namespace tarvex {

class ManualClock final : public Clock {
 public:
  LocalTime now{.year = 2026, .month = 6, .day = 1, .hour = 9, .minute = 30, .second = 15};
  std::int64_t milliseconds = 1'000'000;
  std::int64_t sleptMs = 0;

  LocalTime Now() override { return now; }
  std::int64_t SteadyMilliseconds() override { return milliseconds; }
  void SleepMilliseconds(std::int64_t durationMs) override {
    milliseconds += durationMs;
    sleptMs += durationMs;
  }
};

}  // namespace tarvex
