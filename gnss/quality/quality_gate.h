// The gate before a point is stored: is the position good enough, and if not, which limit says so?
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "gnss/position/position_state.h"

namespace tarvex {

/// The limits; a limit that is not given is not asked. A position of an epoch that was given before
/// never passes.
struct GateLimits {
  std::optional<SolutionType> solution;  ///< at least this good: fixed, float, DGPS, autonomous
  std::optional<double> hrms;            ///< job's distance unit
  std::optional<double> vrms;            ///< job's distance unit
  std::optional<double> pdop;
  std::optional<int> satellites;  ///< at least so many
  std::optional<double> correctionAgeS;
  std::optional<double> staleS;  ///< since the position was read

  bool operator==(const GateLimits&) const = default;
};

enum class Limit {
  RepeatedEpoch,
  Staleness,
  Solution,
  Satellites,
  Hrms,
  Vrms,
  Pdop,
  CorrectionAge,
};

/// A limit that a position does not keep: what it has and what it should have, as texts for people.
struct GateRefusal {
  Limit limit;
  std::string has;
  std::string wanted;
};

/// The first limit that refuses; nothing when the position passes. A precision, DOP or age that the
/// receiver does not send is refused when there is a limit for it.
std::optional<GateRefusal> CheckGate(const GateLimits& limits, const GnssPositionState& state,
                                     std::int64_t nowMs);

/// The sentence for people and for the journal: "HRMS 0.120 is above the limit of 0.050."
std::string RefusalSentence(const GateRefusal& refusal);

/// One limit by its key: gate_solution (autonomous, dgps, float, fixed), gate_hrms, gate_vrms,
/// gate_pdop, gate_satellites, gate_age and gate_stale in seconds. False when the key is unknown or
/// the value makes no sense.
[[nodiscard]] bool SetGateLimit(std::string_view key, std::string_view value, GateLimits& limits);

}  // namespace tarvex
