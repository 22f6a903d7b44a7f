#include "gnss/receivers/bestpos.h"

#include <charconv>
#include <cmath>

#include "core/text/field_cursor.h"
#include "gnss/nmea/nmea_number.h"
#include "gnss/receivers/crc32.h"

namespace tarvex {
namespace {

struct PositionType {
  SolutionType solution;
  int source = 0;
};

struct NamedType {
  std::string_view name;
  PositionType type;
};

constexpr NamedType kTypes[] = {
    {"SINGLE", {SolutionType::Autonomous}},   {"PSRDIFF", {SolutionType::Float}},
    {"L1_FLOAT", {SolutionType::Float}},      {"IONOFREE_FLOAT", {SolutionType::Float}},
    {"NARROW_FLOAT", {SolutionType::Float}},  {"L1_INT", {SolutionType::Float}},
    {"WIDE_INT", {SolutionType::Float}},      {"NARROW_INT", {SolutionType::Fixed}},
    {"OMNISTAR_HP", {SolutionType::Dgps, 5}}, {"OMNISTAR", {SolutionType::Dgps, 4}},
    {"WAAS", {SolutionType::Dgps, 3}},        {"CDGPS", {SolutionType::Dgps, 8}},
};

// A type that is not in the table says nothing that could be relied on.
PositionType TypeOf(std::string_view name) {
  for (const NamedType& known : kTypes) {
    if (known.name == name) return known.type;
  }
  return {SolutionType::Autonomous};
}

// Seconds of the GPS week (header field 6) as milliseconds of the day.
std::int32_t EpochOf(std::string_view header) {
  constexpr int kSecondsField = 6;
  constexpr double kDaySeconds = 86400.0;
  FieldCursor fields(header);
  std::string_view seconds;
  if (!fields.Skip(kSecondsField) || !fields.Take(seconds)) return kNoEpoch;
  const double ofDay = std::fmod(NmeaNumber(seconds), kDaySeconds);
  return ofDay >= 0.0 ? static_cast<std::int32_t>(std::lround(ofDay * 1000.0)) : kNoEpoch;
}

bool TakeNumber(FieldCursor& fields, double& value) {
  std::string_view field;
  if (!fields.Take(field)) return false;
  value = NmeaNumber(field);
  return true;
}

// The thirteen fields behind status and type.
bool TakeBody(FieldCursor& fields, GnssPositionState& state, Bestpos& bestpos) {
  std::string_view field;
  double sigmaLatitude = 0.0;
  double sigmaLongitude = 0.0;
  double sigmaHeight = 0.0;
  if (!TakeNumber(fields, state.latitude) || !TakeNumber(fields, state.longitude) ||
      !TakeNumber(fields, state.height) || !TakeNumber(fields, bestpos.undulationM) ||
      !fields.Take(field)) {
    return false;
  }
  bestpos.datum.Assign(field);
  if (!TakeNumber(fields, sigmaLatitude) || !TakeNumber(fields, sigmaLongitude) ||
      !TakeNumber(fields, sigmaHeight)) {
    return false;
  }
  state.hrms = ToJobDistance(
      std::sqrt(sigmaLatitude * sigmaLatitude + sigmaLongitude * sigmaLongitude), state.unit);
  state.vrms = ToJobDistance(sigmaHeight, state.unit);
  state.precisionKnown = true;
  if (!fields.Skip(1) || !TakeNumber(fields, state.correctionAge) || !fields.Skip(2) ||
      !fields.Take(field)) {
    return false;
  }
  state.satellites = NmeaInteger(field);
  state.ageOfCorrections = state.correctionAge;
  state.heightKnown = true;
  state.separationKnown = true;
  return true;
}

}  // namespace

GnssReadResult ReadBestpos(std::string_view log, GnssPositionState& state, Bestpos& bestpos) {
  const std::size_t headerEnd = log.find(';');
  if (headerEnd == std::string_view::npos) return GnssReadResult::NoPositionSentence;
  FieldCursor fields(log.substr(headerEnd + 1));
  std::string_view status;
  std::string_view type;
  if (!fields.Take(status) || status != "SOL_COMPUTED") return GnssReadResult::NoFix;
  if (!fields.Take(type)) return GnssReadResult::NoPositionSentence;
  if (type == "NONE") return GnssReadResult::NoFix;
  const PositionType position = TypeOf(type);
  state.solutionType = position.solution;
  state.differentialSource = position.source;
  bestpos.omnistarHp = type == "OMNISTAR_HP";
  if (!TakeBody(fields, state, bestpos)) return GnssReadResult::NoPositionSentence;
  state.geoidSeparation = bestpos.undulationM;
  state.epochMs = EpochOf(log.substr(0, headerEnd));
  state.precisionEpochMs = state.epochMs;
  state.epochScale = TimeScale::Gps;
  return GnssReadResult::Accepted;
}

bool LogCrcHolds(std::string_view log) {
  constexpr std::size_t kDigits = 8;
  const std::size_t star = log.rfind('*');
  if (star == std::string_view::npos || log.size() < star + 1 + kDigits) return true;
  const std::string_view digits = log.substr(star + 1, kDigits);
  std::uint32_t sent = 0;
  const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), sent, 16);
  if (error != std::errc{} || end != digits.data() + kDigits) return false;
  return Crc32Of(log.substr(1, star - 1)) == sent;
}

}  // namespace tarvex
