#include "gnss/receivers/ashtech_sentences.h"

#include <array>

#include "gnss/nmea/nmea_number.h"

namespace tarvex {
namespace {

constexpr std::size_t kMostTokens = 32;
constexpr int kModelWithVelocity = 6;  // its reply has no empty field that collapses

// The tokens of a sentence by their number, 1 the first.
class Tokens {
 public:
  explicit Tokens(std::string_view sentence) {
    TokenCursor cursor(sentence);
    while (count_ < kMostTokens && cursor.Take(tokens_[count_])) ++count_;
  }

  std::size_t count() const { return count_; }
  std::string_view operator[](std::size_t number) const {
    return number >= 1 && number <= count_ ? tokens_[number - 1] : std::string_view();
  }
  double Number(std::size_t number) const { return NmeaNumber((*this)[number]); }

 private:
  std::array<std::string_view, kMostTokens> tokens_;
  std::size_t count_ = 0;
};

SolutionType PosSolution(int mode) {
  switch (mode) {
    case 0:
      return SolutionType::Autonomous;
    case 1:
      return SolutionType::Dgps;
    case 2:
      return SolutionType::Float;
    default:
      return SolutionType::Fixed;
  }
}

void TakeAngles(const Tokens& tokens, std::size_t first, GnssPositionState& state) {
  state.latitude = DegreesFromNmea(tokens.Number(first));
  if (tokens[first + 1].starts_with('S')) state.latitude = -state.latitude;
  state.longitude = DegreesFromNmea(tokens.Number(first + 2));
  if (tokens[first + 3].starts_with('W')) state.longitude = -state.longitude;
}

double HeightInMetres(const Tokens& tokens, std::size_t number, DistanceUnit unit) {
  const double height = tokens.Number(number);
  return tokens[number + 1].starts_with('M') ? height : ToMetres(height, unit);
}

// False when there is no fix; a quality that has no meaning leaves the type as it was.
bool TakeGgaQuality(int quality, GnssPositionState& state) {
  if (quality == 0) return false;
  if (quality == 1) state.solutionType = SolutionType::Autonomous;
  if (quality == 2) state.solutionType = SolutionType::Float;
  if (quality == 3) state.solutionType = SolutionType::Fixed;
  return true;
}

}  // namespace

GnssReadResult ReadPashrPos(std::string_view line, int model, GnssPositionState& state) {
  constexpr std::size_t kTokensToHeight = 10;
  if (!line.starts_with('$')) {
    state.latitude = state.longitude = state.height = 0.0;
    return GnssReadResult::NoPositionSentence;
  }
  const Tokens tokens(line);
  if (tokens.count() < kTokensToHeight) return GnssReadResult::NoPositionSentence;
  state.solutionType = PosSolution(NmeaInteger(tokens[3]));
  state.satellites = NmeaInteger(tokens[4]);
  state.epochMs = MillisecondsOfDay(tokens[5]);
  TakeAngles(tokens, 6, state);
  state.height = tokens.Number(10);
  state.heightKnown = true;
  state.separationKnown = true;
  state.geoidSeparation = 0.0;
  const std::size_t dop = model == kModelWithVelocity ? 15 : 14;
  if (tokens.count() >= dop + 2) {
    state.pdop = tokens.Number(dop);
    state.hdop = tokens.Number(dop + 1);
    state.vdop = tokens.Number(dop + 2);
    state.dopCarriedOver = false;
  }
  return GnssReadResult::Accepted;
}

GnssReadResult ReadAshtechGga(std::string_view line, bool ellipsoidHeight,
                              GnssPositionState& state) {
  constexpr std::size_t kTokens = 13;
  const Tokens tokens(line);
  if (tokens.count() < kTokens) return GnssReadResult::NoPositionSentence;
  if (!TakeGgaQuality(NmeaInteger(tokens[7]), state)) return GnssReadResult::NoPositionSentence;
  state.epochMs = MillisecondsOfDay(tokens[2]);
  TakeAngles(tokens, 3, state);
  state.satellites = NmeaInteger(tokens[8]);
  state.hdop = tokens.Number(9);
  state.height = HeightInMetres(tokens, 10, state.unit);
  state.heightKnown = true;
  state.separationKnown = true;
  state.geoidSeparation = HeightInMetres(tokens, 12, state.unit);
  if (!ellipsoidHeight) state.height += state.geoidSeparation;
  return GnssReadResult::Accepted;
}

}  // namespace tarvex
