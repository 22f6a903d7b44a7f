// The clock of a POSIX system.
#include <chrono>
#include <ctime>
#include <thread>

#include "platform/clock.h"

namespace tarvex {
namespace {

class PosixClock final : public Clock {
 public:
  LocalTime Now() override {
    const std::time_t now = std::time(nullptr);
    std::tm parts{};
    ::localtime_r(&now, &parts);
    return {.year = parts.tm_year + 1900,
            .month = parts.tm_mon + 1,
            .day = parts.tm_mday,
            .hour = parts.tm_hour,
            .minute = parts.tm_min,
            .second = parts.tm_sec};
  }

  std::int64_t SteadyMilliseconds() override {
    return std::chrono::duration_cast<std::chrono::milliseconds>(
               std::chrono::steady_clock::now().time_since_epoch())
        .count();
  }

  void SleepMilliseconds(std::int64_t durationMs) override {
    std::this_thread::sleep_for(std::chrono::milliseconds(durationMs));
  }
};

}  // namespace

Clock& SystemClock() {
  static PosixClock clock;
  return clock;
}

}  // namespace tarvex
