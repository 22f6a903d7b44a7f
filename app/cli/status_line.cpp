#include "app/cli/status_line.h"

#include "app/cli/correction_text.h"
#include "core/text/number_text.h"

namespace tarvex {
namespace {

constexpr int kDecimals = 3;

// "12 s", "3 min 05 s".
std::string Duration(std::int64_t milliseconds) {
  const std::int64_t seconds = milliseconds / 1000;
  if (seconds < 60) return std::to_string(seconds) + " s";
  std::string text = std::to_string(seconds / 60) + " min ";
  AppendInteger(text, seconds % 60, 2);
  return text + " s";
}

// Why nothing is stored at the moment, or what is on the way.
std::string StoringText(const PositionSeen& seen) {
  std::string text;
  if (seen.paused) text += "PAUSED; ";
  if (seen.refusal) {
    text += seen.storeWanted ? "waiting for " : "not stored for ";
    std::string why = RefusalSentence(*seen.refusal);
    if (why.ends_with('.')) why.pop_back();
    text += Duration(seen.refusedForMs) + ": " + why + "; ";
  }
  if (seen.epochs > 1 && (seen.epoch > 0 || seen.storeWanted)) {
    text += "epoch " + std::to_string(seen.epoch) + " of " + std::to_string(seen.epochs) + "; ";
  }
  return text;
}

}  // namespace

std::string PrecisionText(const GnssPositionState& state) {
  if (!state.precisionKnown) return "HRMS and VRMS unknown";
  return "HRMS " + FixedNumber(state.hrms, kDecimals) + ", VRMS " +
         FixedNumber(state.vrms, kDecimals) +
         (state.precisionCarriedOver ? " (of an earlier epoch)" : "");
}

std::string StatusLine(const PositionSeen& seen) {
  const GnssPositionState& state = seen.state;
  std::string line = StoringText(seen) + std::string(SolutionText(state.solutionType)) + ", " +
                     std::to_string(state.satellites) + " sat, " + PrecisionText(state);
  if (!seen.corrections && state.correctionAge > 0.0) {
    line += ", age " + FixedNumber(state.correctionAge, 1) + " s";
  }
  if (seen.fromLast) {
    line += "; " + FixedNumber(*seen.fromLast, kDecimals) +
            (state.unit == DistanceUnit::Metres ? " m" : " ft") + " from " + seen.lastId;
  }
  if (seen.corrections) line += "; " + CorrectionLine(*seen.corrections, state);
  line += "; next " + seen.nextId;
  if (!seen.description.empty()) line += " " + seen.description;
  return line + "; " + std::to_string(seen.stored) + " stored";
}

}  // namespace tarvex
