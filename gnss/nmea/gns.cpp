#include "gnss/nmea/nmea_number.h"
#include "gnss/nmea/position_fields.h"
#include "gnss/nmea/sentences.h"

namespace tarvex {
namespace {

SolutionType GnsSolution(char mode) {
  switch (mode) {
    case 'D':
    case 'F':
      return SolutionType::Dgps;
    case 'P':
    case 'R':
      return SolutionType::Fixed;
    default:
      return SolutionType::Autonomous;
  }
}

// One letter a satellite system. The best one tells more: "NRRR" is a fixed solution without GPS,
// and 'F' among the letters is RTK float.
SolutionType BestGnsSolution(std::string_view modes) {
  if (modes.find_first_of("RP") != std::string_view::npos) return SolutionType::Fixed;
  if (modes.find('F') != std::string_view::npos) return SolutionType::Float;
  return modes.find('D') != std::string_view::npos ? SolutionType::Dgps : SolutionType::Autonomous;
}

// A satellite system that measures is better than one that is reckoned.
PositionOrigin GnsOrigin(std::string_view modes) {
  if (modes.find_first_of("ADPRF") != std::string_view::npos) return PositionOrigin::Measured;
  if (modes.find('E') != std::string_view::npos) return PositionOrigin::Estimated;
  if (modes.find('M') != std::string_view::npos) return PositionOrigin::Entered;
  return modes.find('S') != std::string_view::npos ? PositionOrigin::Simulated
                                                   : PositionOrigin::Measured;
}

bool NoSystemHasAFix(std::string_view modes) {
  return !modes.empty() && modes.find_first_not_of('N') == std::string_view::npos;
}

}  // namespace

SentenceResult ReadGns(std::string_view line, const SentenceContext& context,
                       GnssPositionState& state) {
  FieldCursor fields(line);
  std::string_view field;
  if (!fields.Skip(1) || !fields.Take(field)) return SentenceResult::RanOut;
  if (context.settings.skipEmpty && PositionAndQualityEmpty(fields)) return SentenceResult::Read;
  state.epochMs = MillisecondsOfDay(field);
  if (!TakeLatitudeLongitude(fields, state)) return SentenceResult::RanOut;
  if (!fields.Take(field)) return SentenceResult::RanOut;
  if (context.settings.gnsBestMode && NoSystemHasAFix(field)) return SentenceResult::NoFix;
  state.origin = GnsOrigin(field);
  state.solutionType = context.settings.gnsBestMode
                           ? BestGnsSolution(field)
                           : GnsSolution(field.empty() ? 'N' : field.front());
  if (!TakeSatellitesAndHeight(fields, state)) return SentenceResult::RanOut;
  if (!TakeSeparation(fields, context.traits, state)) return SentenceResult::RanOut;
  const bool ageThere = fields.Take(field);
  state.ageOfCorrections = ageThere && !field.empty() ? NmeaNumber(field) : -1.0;
  return SentenceResult::Position;
}

}  // namespace tarvex
