// The last step of every reading: whoever uses the positions accepts or declines one.
#pragma once

#include <cmath>

#include "gnss/position/position_state.h"

namespace tarvex {

enum class [[nodiscard]] FinishResult : int{Declined = 0, Accepted = 1};

class PositionFinish {
 public:
  virtual ~PositionFinish() = default;
  virtual FinishResult Finish(GnssPositionState& state, int receiverType) = 0;
};

/// Accepts a position whose values are all finite and in range; what a reading uses by default.
class AcceptUsable final : public PositionFinish {
 public:
  FinishResult Finish(GnssPositionState& state, int /*receiverType*/) override {
    constexpr double kHighest = 30000.0;
    const bool usable = std::abs(state.latitude) <= 90.0 && std::abs(state.longitude) <= 180.0 &&
                        std::abs(state.height) <= kHighest && std::isfinite(state.hrms) &&
                        std::isfinite(state.vrms);
    return usable ? FinishResult::Accepted : FinishResult::Declined;
  }
};

}  // namespace tarvex
