#include "gnss/position/position_state.h"

#include "core/text/string_table.h"
#include "gnss/gnss_texts.h"

namespace tarvex {

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
