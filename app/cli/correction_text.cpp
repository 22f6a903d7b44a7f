#include "app/cli/correction_text.h"

#include "app/workflow/correction_base.h"
#include "core/text/number_text.h"

namespace tarvex {

std::string CorrectionLine(const CorrectionStatus& status, const GnssPositionState& state) {
  if (status.state != CorrectionState::Receiving || status.ageMs < 0) {
    const std::string sentence = CorrectionSentence(status);
    return status.doing.empty() ? sentence : sentence + " (" + status.doing + ")";
  }
  std::string line =
      "corrections " + FixedNumber(static_cast<double>(status.ageMs) / 1000.0, 1) + " s old";
  if (status.base) {
    line += ", base " + std::to_string(status.base->id);
    if (state.positions > 0) {
      line += " at " + FixedNumber(DistanceToBaseM(*status.base, state) / 1000.0, 1) + " km";
    }
  }
  if (status.baseMovedM > kBaseMovedAlarm) {
    line += ", THE BASE HAS MOVED " + FixedNumber(status.baseMovedM, 2) + " m";
  }
  return line;
}

std::string CorrectionSummary(const CorrectionStatus& status) {
  return "Corrections: " + std::to_string(status.bytes) + " bytes in " +
         std::to_string(status.frames) + " messages over " + std::to_string(status.connections) +
         (status.connections == 1 ? " connection, " : " connections, ") +
         std::to_string(status.bytesToReceiver) + " bytes to the receiver, " +
         std::to_string(status.badCrcs) + " damaged messages, " + std::to_string(status.ggasSent) +
         " positions sent to the caster.";
}

}  // namespace tarvex
