// The last step of every reading: the position is accepted or declined before anybody uses it.
#pragma once

#include <cmath>

#include "gnss/position/position_state.h"

namespace tarvex {

class PositionAcceptance {
 public:
  virtual ~PositionAcceptance() = default;
  /// False declines the position (GnssReadResult::Declined).
  [[nodiscard]] virtual bool Accepts(GnssPositionState& state, int receiverType) = 0;
};

/// Accepts a position whose values are all finite and in range; what a reading uses by default.
class AcceptInRange final : public PositionAcceptance {
 public:
  [[nodiscard]] bool Accepts(GnssPositionState& state, int /*receiverType*/) override {
    constexpr double kHighest = 30000.0;
    return std::abs(state.latitude) <= 90.0 && std::abs(state.longitude) <= 180.0 &&
           std::abs(state.height) <= kHighest && std::isfinite(state.hrms) &&
           std::isfinite(state.vrms);
  }
};

}  // namespace tarvex
