#include "gnss/nmea_number.h"
#include "gnss/sentences/position_fields.h"
#include "gnss/sentences/sentences.h"

namespace tarvex {
namespace {

SolutionType GgaSolution(int quality, const ReceiverMake& make) {
  switch (quality) {
    case 2:
      return make.reader == ReaderKind::StreamBuffered ? SolutionType::Float : SolutionType::Dgps;
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
  if (context.settings.skip_empty && PositionAndQualityEmpty(fields)) return SentenceResult::Read;
  state.epoch_ms = MillisecondsOfDay(field);
  if (!TakeLatitudeLongitude(fields, state)) return SentenceResult::RanOut;
  if (!fields.Take(field)) return SentenceResult::RanOut;
  const int quality = NmeaInteger(field);
  if (quality == 0) return SentenceResult::NoFix;
  state.solutionType = GgaSolution(quality, context.make);
  state.origin = GgaOrigin(quality);
  if (!fields.Take(field)) return SentenceResult::RanOut;
  state.satellites = NmeaInteger(field);
  if (!fields.Take(field)) return SentenceResult::RanOut;
  state.hdop = NmeaNumber(field);
  if (!fields.Take(field)) return SentenceResult::RanOut;
  state.height = NmeaNumber(field);
  state.height_known = !field.empty();
  if (!fields.Skip(1) || !fields.Take(field)) return SentenceResult::RanOut;
  state.geoid_separation = NmeaNumber(field);
  state.separation_known = !field.empty() || context.make.ellipsoid_height;
  if (!context.make.ellipsoid_height) state.height += state.geoid_separation;
  const bool age_there = fields.Skip(1) && fields.Take(field);
  state.age_of_corrections = age_there && !field.empty() ? NmeaNumber(field) : -1.0;
  if (!context.make.hemisphere_family) return SentenceResult::Position;
  if (!age_there) return SentenceResult::RanOut;
  state.correctionAge = NmeaNumber(field);
  return SentenceResult::Position;
}

}  // namespace tarvex
