#include <algorithm>

#include "core/text/field_cursor.h"
#include "gnss/nmea/nmea_number.h"
#include "gnss/nmea/sentences.h"

namespace tarvex {
namespace {

constexpr int kMostSatellites = 256;  // more than a line holds

}  // namespace

SentenceResult ReadRre(std::string_view line, const SentenceContext& context,
                       GnssPositionState& state) {
  if (context.traits.hemisphereFamily && std::count(line.begin(), line.end(), '$') > 1) {
    return SentenceResult::InvalidData;
  }
  FieldCursor fields(line);
  std::string_view field;
  if (!fields.Skip(1) || !fields.Take(field)) return SentenceResult::RanOut;
  const int residuals = NmeaInteger(field);
  if (residuals < 0 || residuals > kMostSatellites) return SentenceResult::RanOut;
  if (!fields.Skip(2 * residuals) || !fields.Take(field)) return SentenceResult::RanOut;
  state.hrms = ToJobDistance(NmeaNumber(field), state.unit);
  state.precisionKnown = false;
  state.precisionEpochMs = kNoEpoch;  // the sentence has no time
  const bool horizontal = !field.empty();
  if (!fields.Take(field)) return SentenceResult::RanOut;
  state.precisionKnown = horizontal && !FirstField(field, '*').empty();
  state.vrms = ToJobDistance(NmeaNumber(field), state.unit);
  return SentenceResult::Read;
}

}  // namespace tarvex
