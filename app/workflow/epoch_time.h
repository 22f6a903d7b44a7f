// Time that passes from epoch to epoch, as a person with a watch beside the receiver would say it:
// by the receiver's own time of day, which is exact, as long as the machine's steady clock does not
// contradict it. A receiver that finds or changes its time does not move it.
#pragma once

#include <cstdint>

namespace tarvex {

class EpochTime {
 public:
  /// The epochs of a recording are read faster than they were made: they count as they are, unless
  /// they step back.
  explicit EpochTime(bool recorded) : recorded_(recorded) {}

  /// Goes on to an epoch (UTC milliseconds of the day, or kNoEpoch) that was read at `steadyMs`.
  void Follow(std::int32_t epochMs, std::int64_t steadyMs);

  /// Since the first epoch.
  std::int64_t passedMs() const { return passedMs_; }

 private:
  bool recorded_;
  bool begun_ = false;
  std::int32_t lastEpochMs_ = 0;
  std::int64_t lastSteadyMs_ = 0;
  std::int64_t passedMs_ = 0;
};

}  // namespace tarvex
