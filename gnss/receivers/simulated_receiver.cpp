#include "gnss/receivers/simulated_receiver.h"

#include <algorithm>
#include <array>

#include "gnss/nmea/nmea_number.h"
#include "gnss/receivers/gnss_connection.h"

namespace tarvex {
namespace {

constexpr std::int32_t kDayMs = 86'400'000;
constexpr std::int32_t kEpochStepMs = 1000;
constexpr double kStepDegrees = 2e-7;  // about 2 cm
constexpr double kStepHeight = 0.02;
constexpr double kStepPrecision = 0.001;
constexpr std::array kSatellites = {2, 5, 7, 9, 13, 16, 20, 21, 26, 29, 30, 31};

}  // namespace

// SplitMix64 (Steele, Lea, Flood 2014): the same numbers on every platform.
double SimulatedReceiver::Random() {
  random_ += 0x9E3779B97F4A7C15ULL;
  std::uint64_t mixed = random_;
  mixed = (mixed ^ (mixed >> 30)) * 0xBF58476D1CE4E5B9ULL;
  mixed = (mixed ^ (mixed >> 27)) * 0x94D049BB133111EBULL;
  mixed ^= mixed >> 31;
  return static_cast<double>(mixed >> 11) / 4503599627370496.0 - 1.0;
}

void SimulatedReceiver::Begin(const LocalTime& now, GnssPositionState& state) {
  begun_ = true;
  const int seconds = (now.hour * 60 + now.minute) * 60 + now.second;
  random_ = static_cast<std::uint64_t>(((now.year * 12 + now.month) * 31 + now.day)) * 86400U +
            static_cast<std::uint64_t>(seconds);
  state.epochMs = seconds * 1000 - kEpochStepMs;
  if (state.latitude != 0.0 || state.longitude != 0.0) return;
  state.latitude = startLatitude;
  state.longitude = startLongitude;
  state.height = startHeight;
  state.heightKnown = true;
}

void SimulatedReceiver::Step(Clock& clock, GnssPositionState& state) {
  if (!begun_) Begin(clock.Now(), state);
  state.epochMs = (state.epochMs + kEpochStepMs + kDayMs) % kDayMs;
  state.latitude += Random() * kStepDegrees;
  state.longitude += Random() * kStepDegrees;
  state.height += Random() * kStepHeight;
  hrmsM_ = std::clamp(hrmsM_ + Random() * kStepPrecision, 0.005, 0.020);
  vrmsM_ = std::clamp(vrmsM_ + Random() * kStepPrecision, 0.008, 0.035);
  state.hrms = ToJobDistance(hrmsM_, state.unit);
  state.vrms = ToJobDistance(vrmsM_, state.unit);
  state.precisionEpochMs = state.epochMs;
  state.precisionKnown = true;
  state.solutionType = SolutionType::Fixed;
  state.satellites = static_cast<std::int32_t>(kSatellites.size());
  for (std::size_t i = 0; i < kSatellites.size(); ++i) {
    state.usedSatellites[i] = {.prn = kSatellites[i], .inUse = 1};
  }
  state.pdop = 1.4;
  state.hdop = 0.8;
  state.vdop = 1.1;
}

GnssReadResult ReadSimulatedPosition(GnssPositionState& state, GnssConnection& connection,
                                     const ReceiverMake& /*make*/) {
  connection.simulated.Step(connection.clock, state);
  state.sentenceReadAtMs = connection.clock.SteadyMilliseconds();
  return GnssReadResult::Accepted;
}

}  // namespace tarvex
