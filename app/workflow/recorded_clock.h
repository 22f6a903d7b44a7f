// The time of a recording: the local date and time at which it began, as a person gives it, and
// from then on the receiver's own seconds. What is journaled from a recording so bears the time of
// the field, and the same recording always gives the same bytes.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "platform/clock.h"

namespace tarvex {

class RecordedClock final : public Clock {
 public:
  RecordedClock(Clock& clock, const LocalTime& start);

  /// Goes on to an epoch (UTC milliseconds of the day) of the recording; the first one is the
  /// start. A receiver's time that steps back by less than an hour steps back; by more, it is that
  /// of the next day.
  void Follow(std::int32_t epochMs);

  LocalTime Now() override;
  std::int64_t SteadyMilliseconds() override { return clock_.SteadyMilliseconds(); }
  void SleepMilliseconds(std::int64_t durationMs) override { clock_.SleepMilliseconds(durationMs); }

 private:
  Clock& clock_;
  std::int64_t startS_;  ///< since 1970, without regard to time zones
  std::int64_t passedMs_ = 0;
  std::int32_t lastEpochMs_;
};

/// "2026-11-21 10:15:30", also with a T between; nothing when it is no date and time.
std::optional<LocalTime> ParseLocalTime(std::string_view text);

}  // namespace tarvex
