// The current position of one receiver and its quality. It lives as long as the connection; each
// reading overwrites only what its sentences carry, so precision and satellite values of earlier
// sentences stay until new ones come. What stayed is marked as carried over.
#pragma once

#include <array>
#include <cstdint>
#include <string>

#include "core/units/units.h"
#include "gnss/position/solution_type.h"

namespace tarvex {

struct UsedSatellite {
  std::int32_t prn = 0;
  std::int32_t inUse = 0;

  bool operator==(const UsedSatellite&) const = default;
};

inline constexpr std::size_t kSatelliteSlots = 12;
inline constexpr std::int32_t kNoEpoch = -1;

/// Where a position comes from, as GGA qualities 6 to 8 and GNS modes E, M and S tell it.
enum class PositionOrigin {
  Measured,
  Estimated,  ///< dead reckoning
  Entered,    ///< typed into the receiver
  Simulated,  ///< by the receiver's own simulator
};

/// What an epoch counts in.
enum class TimeScale { Utc, Gps };

struct GnssPositionState {
  std::int32_t lastResult = 0;  ///< GnssReadResult of the last reading
  std::int32_t reading = 0;     ///< 1 while a reading is in progress
  std::int32_t satellites = 0;
  SolutionType solutionType = SolutionType::Autonomous;
  PositionOrigin origin = PositionOrigin::Measured;
  DistanceUnit unit = DistanceUnit::Metres;  ///< the job's: that of hrms and vrms; never changed
  double hrms = 0.0;                         ///< horizontal precision
  double vrms = 0.0;                         ///< vertical precision
  double pdop = 0.0;
  double vdop = 0.0;
  double hdop = 0.0;
  double tdop = 0.0;
  double latitude = 0.0;           ///< decimal degrees, north positive
  double longitude = 0.0;          ///< decimal degrees, east positive
  double height = 0.0;             ///< above the ellipsoid, metres
  bool heightKnown = false;        ///< the position came with a height; without one it reads as 0
  bool separationKnown = true;     ///< a height above the geoid came with its separation
  double geoidSeparation = 0.0;    ///< as the receiver gave it with the position, metres
  double correctionAge = 0.0;      ///< seconds; of the makes that are read for it
  double ageOfCorrections = -1.0;  ///< seconds, of any make that tells it; negative: not told
  std::int32_t differentialStatus = 0;
  std::int32_t differentialSource = 0;
  std::array<UsedSatellite, kSatelliteSlots> usedSatellites{};

  // How fresh all this is. An epoch is the time of day in milliseconds, UTC but for receivers that
  // tell GPS time alone; kNoEpoch when the sentence carried none.
  TimeScale epochScale = TimeScale::Utc;
  std::int32_t epochMs = kNoEpoch;           ///< of the position
  std::int32_t precisionEpochMs = kNoEpoch;  ///< of hrms and vrms
  bool repeatedEpoch = false;           ///< this reading has the epoch of the one accepted before
  bool precisionKnown = false;          ///< the last precision sentence carried numbers
  bool precisionCarriedOver = false;    ///< hrms and vrms are of another epoch than the position
  bool dopCarriedOver = false;          ///< no satellite sentence since the position before
  std::int64_t positionReadAtMs = 0;    ///< steady clock; 0 before the first position
  std::int64_t positionIntervalMs = 0;  ///< between the last two epochs; 0 before the second
  std::int64_t sentenceReadAtMs = 0;    ///< steady clock, any line at all; 0 before the first
  std::uint64_t positions = 0;          ///< accepted so far
  std::uint64_t badChecksums = 0;       ///< sentences left out because of their checksum
};

/// What was told of precision, DOPs and corrections over one link says nothing of the next: none of
/// it is known until it is told again.
void ForgetQuality(GnssPositionState& state);

/// "12:35:19", "12:35:19.500"; "no time" for kNoEpoch.
std::string ClockText(std::int32_t epochMs);

/// The same with what it counts in: "12:35:19 UTC", "12:35:37 GPS time".
std::string EpochText(const GnssPositionState& state);

/// What a person should know of a position that was not measured; empty when it was.
std::string OriginSentence(PositionOrigin origin);

/// What a person should know of a height that is not one above the ellipsoid; empty when it is.
std::string HeightSentence(const GnssPositionState& state);

}  // namespace tarvex
