#include "gnss/nmea/nmea_number.h"
#include "gnss/nmea/position_fields.h"
#include "gnss/nmea/sentences.h"

namespace tarvex {

SentenceResult ReadGll(std::string_view line, const SentenceContext& context,
                       GnssPositionState& state) {
  FieldCursor fields(line);
  if (!fields.Skip(1) || !TakeLatitudeLongitude(fields, state)) return SentenceResult::RanOut;
  std::string_view time;
  std::string_view status;
  state.epochMs = fields.Take(time) ? MillisecondsOfDay(time) : kNoEpoch;
  const bool told = fields.Take(status);
  if (context.settings.gllStatus && told && status.starts_with('V')) return SentenceResult::NoFix;
  state.origin = PositionOrigin::Measured;
  state.height = 0.0;
  state.heightKnown = false;
  state.geoidSeparation = 0.0;
  state.separationKnown = true;  // there is no height
  return SentenceResult::Position;
}

}  // namespace tarvex
