#include "gnss/nmea/nmea_number.h"
#include "gnss/nmea/sentences.h"
#include "gnss/nmea/text_fields.h"

namespace tarvex {

SentenceResult ReadRd1(std::string_view line, GnssPositionState& state) {
  constexpr int kStatusField = 5;
  FieldCursor fields(line);
  std::string_view field;
  if (!fields.Skip(kStatusField) || !fields.Take(field)) return SentenceResult::RanOut;
  state.differentialStatus = NmeaInteger(field);
  return SentenceResult::Read;
}

}  // namespace tarvex
