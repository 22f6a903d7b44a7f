#include "gnss/position/position_state.h"

#include "core/text/number_text.h"
#include "core/text/string_table.h"
#include "gnss/gnss_texts.h"

namespace tarvex {

void ForgetQuality(GnssPositionState& state) {
  state.hrms = state.vrms = 0.0;
  state.precisionKnown = state.precisionCarriedOver = false;
  state.precisionEpochMs = kNoEpoch;
  state.pdop = state.hdop = state.vdop = state.tdop = 0.0;
  state.ageOfCorrections = -1.0;
}

std::string ClockText(std::int32_t epochMs) {
  if (epochMs == kNoEpoch) return "no time";
  std::string text;
  AppendInteger(text, epochMs / 3'600'000, 2);
  text += ':';
  AppendInteger(text, epochMs / 60'000 % 60, 2);
  text += ':';
  AppendInteger(text, epochMs / 1000 % 60, 2);
  if (epochMs % 1000 != 0) {
    text += '.';
    AppendInteger(text, epochMs % 1000, 3);
  }
  return text;
}

std::string EpochText(const GnssPositionState& state) {
  if (state.epochMs == kNoEpoch) return ClockText(state.epochMs);
  return ClockText(state.epochMs) + (state.epochScale == TimeScale::Utc ? " UTC" : " GPS time");
}

std::string OriginSentence(PositionOrigin origin) {
  static_assert(kTextFirstOrigin + static_cast<int>(PositionOrigin::Simulated) == kTextLastOrigin);
  if (origin == PositionOrigin::Measured) return {};
  return Strings().Text(kTextFirstOrigin + static_cast<int>(origin));
}

std::string HeightSentence(const GnssPositionState& state) {
  if (!state.heightKnown) return Strings().Text(kTextNoHeight);
  return state.separationKnown ? std::string() : Strings().Text(kTextNoSeparation);
}

}  // namespace tarvex
