#include "gnss/position/position_state.h"

#include "core/string_table.h"

namespace tarvex {

std::string OriginSentence(PositionOrigin origin) {
  constexpr int kFirstOriginText = 3430;
  if (origin == PositionOrigin::Measured) return {};
  return Strings().Text(kFirstOriginText + static_cast<int>(origin));
}

std::string HeightSentence(const GnssPositionState& state) {
  constexpr int kNoHeightText = 3434;
  constexpr int kNoSeparationText = 3435;
  if (!state.heightKnown) return Strings().Text(kNoHeightText);
  return state.separationKnown ? std::string() : Strings().Text(kNoSeparationText);
}

}  // namespace tarvex
