#include "core/text/field_cursor.h"
#include "gnss/nmea/nmea_number.h"
#include "gnss/nmea/sentences.h"

namespace tarvex {

SentenceResult ReadRd1(std::string_view line, const SentenceContext& context,
                       GnssPositionState& state) {
  if (!context.traits.hemisphereFamily || context.settings.differentialChoice != kReadRd1) {
    return SentenceResult::Read;
  }
  constexpr int kStatusField = 5;
  FieldCursor fields(line);
  std::string_view field;
  if (!fields.Skip(kStatusField) || !fields.Take(field)) return SentenceResult::RanOut;
  state.differentialStatus = NmeaInteger(field);
  return SentenceResult::Read;
}

}  // namespace tarvex
