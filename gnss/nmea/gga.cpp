#include "gnss/nmea/nmea_number.h"
#include "gnss/nmea/position_fields.h"
#include "gnss/nmea/sentences.h"

namespace tarvex {
namespace {

SolutionType GgaSolution(int quality, const NmeaTraits& traits) {
  switch (quality) {
    case 2:
      return traits.streamBuffered ? SolutionType::Float : SolutionType::Dgps;
    case 3:
    case 4:
      return SolutionType::Fixed;
    case 5:
      return SolutionType::Float;
    default:
      return SolutionType::Autonomous;
  }
}

PositionOrigin GgaOrigin(int quality) {
  switch (quality) {
    case 6:
      return PositionOrigin::Estimated;
    case 7:
      return PositionOrigin::Entered;
    case 8:
      return PositionOrigin::Simulated;
    default:
      return PositionOrigin::Measured;
  }
}

}  // namespace

SentenceResult ReadGga(std::string_view line, const SentenceContext& context,
                       GnssPositionState& state) {
  FieldCursor fields(line);
  std::string_view field;
  if (!fields.Skip(1) || !fields.Take(field)) return SentenceResult::RanOut;
  if (context.settings.skipEmpty && PositionAndQualityEmpty(fields)) return SentenceResult::Read;
  state.epochMs = MillisecondsOfDay(field);
  if (!TakeLatitudeLongitude(fields, state)) return SentenceResult::RanOut;
  if (!fields.Take(field)) return SentenceResult::RanOut;
  const int quality = NmeaInteger(field);
  if (quality == 0) return SentenceResult::NoFix;
  state.solutionType = GgaSolution(quality, context.traits);
  state.origin = GgaOrigin(quality);
  if (!TakeSatellitesAndHeight(fields, state) || !fields.Skip(1) ||
      !TakeSeparation(fields, context.traits, state)) {
    return SentenceResult::RanOut;
  }
  const bool ageThere = fields.Skip(1) && fields.Take(field);
  state.ageOfCorrections = ageThere && !field.empty() ? NmeaNumber(field) : -1.0;
  if (!context.traits.hemisphereFamily) return SentenceResult::Position;
  if (!ageThere) return SentenceResult::RanOut;
  state.correctionAge = NmeaNumber(field);
  return SentenceResult::Position;
}

}  // namespace tarvex
