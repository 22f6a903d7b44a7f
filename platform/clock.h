// Time as the system needs it: the wall clock for stamps, a steady count of milliseconds for
// time-outs, and waiting. Handed in wherever it is needed, so that a session can be replayed to the
// same bytes and tests never sleep.
#pragma once

#include <cstdint>

namespace tarvex {

/// Local date and time of day.
struct LocalTime {
  int year = 0;
  int month = 0;  ///< 1 to 12
  int day = 0;    ///< 1 to 31
  int hour = 0;
  int minute = 0;
  int second = 0;

  bool operator==(const LocalTime&) const = default;
};

class Clock {
 public:
  virtual ~Clock() = default;

  virtual LocalTime Now() = 0;
  /// Milliseconds since an arbitrary start; never goes back.
  virtual std::int64_t SteadyMilliseconds() = 0;
  virtual void SleepMilliseconds(std::int64_t durationMs) = 0;
};

/// The clock of this machine.
Clock& SystemClock();

}  // namespace tarvex
