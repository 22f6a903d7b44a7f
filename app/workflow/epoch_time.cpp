#include "app/workflow/epoch_time.h"

#include <algorithm>

#include "gnss/position/position_state.h"

namespace tarvex {
namespace {

constexpr std::int64_t kDayMs = 86'400'000;
// How much later than it should an epoch may be read, and so the next one seem too early.
constexpr std::int64_t kSlackMs = 2000;

}  // namespace

void EpochTime::Follow(std::int32_t epochMs, std::int64_t steadyMs) {
  if (begun_) {
    const std::int64_t steadyStep = std::max<std::int64_t>(0, steadyMs - lastSteadyMs_);
    const bool known = epochMs != kNoEpoch && lastEpochMs_ != kNoEpoch;
    const std::int64_t step = (epochMs - std::int64_t{lastEpochMs_} + kDayMs) % kDayMs;
    if (known && recorded_) {
      passedMs_ += step < kDayMs / 2 ? step : 0;
    } else {
      passedMs_ += known && step <= steadyStep + kSlackMs ? step : steadyStep;
    }
  }
  begun_ = true;
  lastEpochMs_ = epochMs;
  lastSteadyMs_ = steadyMs;
}

}  // namespace tarvex
