#include "gnss/nmea/nmea_number.h"
#include "gnss/nmea/position_fields.h"
#include "gnss/nmea/sentences.h"

namespace tarvex {
namespace {

SolutionType GgkSolution(int quality) {
  switch (quality) {
    case 2:
      return SolutionType::Dgps;
    case 3:
      return SolutionType::Fixed;
    default:
      return SolutionType::Autonomous;
  }
}

// The maker's table of $PTNL,GGK: 2 float, 3 fixed, 4 and 5 differential, 6 to 9 network solutions
// (even float, odd fixed), 10 and 11 satellite corrections, 12 location RTK, 13 beacon, 14 global
// corrections, 15 bridged outage.
SolutionType PublishedSolution(int quality) {
  switch (quality) {
    case 3:
    case 7:
    case 9:
      return SolutionType::Fixed;
    case 2:
    case 6:
    case 8:
    case 12:
    case 15:
      return SolutionType::Float;
    case 4:
    case 5:
    case 10:
    case 11:
    case 13:
    case 14:
      return SolutionType::Dgps;
    default:
      return SolutionType::Autonomous;
  }
}

// What the three layouts differ in.
struct Layout {
  int beforeTime;        // fields
  bool dopBeforeHeight;  // or a quality in metres
  bool dopIsPdop;
  bool prefixedHeight;  // letters in front of the number
  SolutionType (*solution)(int quality);
};

SentenceResult ReadLayout(std::string_view line, const Layout& layout, GnssPositionState& state) {
  FieldCursor fields(line);
  std::string_view field;
  if (!fields.Skip(layout.beforeTime) || !fields.Take(field)) return SentenceResult::RanOut;
  state.epochMs = MillisecondsOfDay(field);
  if (!fields.Skip(1) || !TakeLatitudeLongitude(fields, state)) return SentenceResult::RanOut;
  if (!fields.Take(field)) return SentenceResult::RanOut;
  const int quality = NmeaInteger(field);
  if (quality == 0) return SentenceResult::NoFix;
  state.origin = PositionOrigin::Measured;
  state.solutionType = layout.solution(quality);
  if (!fields.Take(field)) return SentenceResult::RanOut;
  state.satellites = NmeaInteger(field);
  if (layout.dopBeforeHeight) {
    if (!fields.Take(field)) return SentenceResult::RanOut;
    if (layout.dopIsPdop) state.pdop = NmeaNumber(field);
  }
  if (!fields.Take(field)) return SentenceResult::RanOut;
  state.height = NmeaNumber(layout.prefixedHeight ? WithoutHeightPrefix(field) : field);
  state.heightKnown = !field.empty();
  state.geoidSeparation = 0.0;
  state.separationKnown = true;  // the height is ellipsoidal
  return SentenceResult::Position;
}

}  // namespace

SentenceResult ReadGgk(std::string_view line, const SentenceContext& context,
                       GnssPositionState& state) {
  const bool published = context.settings.ggkPublishedLayout;
  return ReadLayout(line,
                    {.beforeTime = 1,
                     .dopBeforeHeight = published,
                     .dopIsPdop = true,
                     .prefixedHeight = published,
                     .solution = GgkSolution},
                    state);
}

SentenceResult ReadGgq(std::string_view line, const SentenceContext& context,
                       GnssPositionState& state) {
  const bool published = context.settings.ggkPublishedLayout;
  return ReadLayout(line,
                    {.beforeTime = 1,
                     .dopBeforeHeight = published,
                     .dopIsPdop = false,
                     .prefixedHeight = published,
                     .solution = GgkSolution},
                    state);
}

SentenceResult ReadPtnlGgk(std::string_view line, const SentenceContext& context,
                           GnssPositionState& state) {
  return ReadLayout(
      line,
      {.beforeTime = 2,
       .dopBeforeHeight = true,
       .dopIsPdop = true,
       .prefixedHeight = true,
       .solution = context.settings.ggkPublishedQuality ? PublishedSolution : GgkSolution},
      state);
}

}  // namespace tarvex
