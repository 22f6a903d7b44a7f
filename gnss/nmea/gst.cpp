#include <cmath>

#include "core/text/field_cursor.h"
#include "gnss/nmea/nmea_number.h"
#include "gnss/nmea/sentences.h"

namespace tarvex {

SentenceResult ReadGst(std::string_view line, const SentenceContext& /*context*/,
                       GnssPositionState& state) {
  FieldCursor fields(line);
  std::string_view time;
  std::string_view latitude;
  std::string_view longitude;
  std::string_view height;
  if (!fields.Skip(1) || !fields.Take(time) || !fields.Skip(4) || !fields.Take(latitude) ||
      !fields.Take(longitude)) {
    return SentenceResult::RanOut;
  }
  const double sigmaLatitude = NmeaNumber(latitude);
  const double sigmaLongitude = NmeaNumber(longitude);
  state.hrms = ToJobDistance(
      std::sqrt(sigmaLatitude * sigmaLatitude + sigmaLongitude * sigmaLongitude), state.unit);
  if (!fields.Take(height)) return SentenceResult::RanOut;
  state.vrms = ToJobDistance(NmeaNumber(FirstField(height, '*')), state.unit);
  state.precisionEpochMs = MillisecondsOfDay(time);
  state.precisionKnown =
      !latitude.empty() && !longitude.empty() && !FirstField(height, '*').empty();
  return SentenceResult::Read;
}

}  // namespace tarvex
