#include "gnss/quality/quality_gate.h"

#include <array>
#include <cmath>

#include "core/text/number_text.h"
#include "core/text/string_table.h"
#include "core/text/text.h"
#include "gnss/gnss_texts.h"

namespace tarvex {
namespace {

constexpr int kPrecisionDecimals = 3;
constexpr int kOtherDecimals = 1;
constexpr int kMostDecimals = 12;

// How good a solution is; the numbers of the types are not in this order.
int Rank(SolutionType type) {
  switch (type) {
    case SolutionType::Fixed:
      return 3;
    case SolutionType::Float:
      return 2;
    case SolutionType::Dgps:
      return 1;
    case SolutionType::Autonomous:
      break;
  }
  return 0;
}

std::string Unknown() {
  return Strings().Text(kTextUnknownValue);
}

// Written so that a value that is not a number is refused.
std::optional<GateRefusal> Above(Limit limit, bool known, double has, std::optional<double> most,
                                 int decimals) {
  if (!most || (known && has <= *most)) return std::nullopt;
  if (!known) return GateRefusal{limit, Unknown(), FixedNumber(*most, decimals)};
  // Rounded as usual both may read the same: as many decimals as it takes to see why it is refused.
  while (FixedNumber(has, decimals) == FixedNumber(*most, decimals) && decimals < kMostDecimals) {
    ++decimals;
  }
  return GateRefusal{limit, FixedNumber(has, decimals), FixedNumber(*most, decimals)};
}

std::optional<GateRefusal> CheckSolution(const GateLimits& limits, const GnssPositionState& state) {
  if (!limits.solution || Rank(state.solutionType) >= Rank(*limits.solution)) return std::nullopt;
  return GateRefusal{Limit::Solution, std::string(SolutionText(state.solutionType)),
                     std::string(SolutionText(*limits.solution))};
}

std::optional<GateRefusal> CheckSatellites(const GateLimits& limits,
                                           const GnssPositionState& state) {
  if (!limits.satellites || state.satellites >= *limits.satellites) return std::nullopt;
  return GateRefusal{Limit::Satellites, std::to_string(state.satellites),
                     std::to_string(*limits.satellites)};
}

struct NumberLimit {
  std::string_view key;
  std::optional<double> GateLimits::* field;
};

constexpr std::array kNumbers = {
    NumberLimit{"gate_hrms", &GateLimits::hrms},
    NumberLimit{"gate_vrms", &GateLimits::vrms},
    NumberLimit{"gate_pdop", &GateLimits::pdop},
    NumberLimit{"gate_age", &GateLimits::correctionAgeS},
    NumberLimit{"gate_stale", &GateLimits::staleS},
};

bool SetSolution(std::string_view value, GateLimits& limits) {
  for (const SolutionType type :
       {SolutionType::Autonomous, SolutionType::Fixed, SolutionType::Float, SolutionType::Dgps}) {
    if (!EqualsIgnoringCase(WithoutOuterBlanks(value), SolutionText(type))) continue;
    limits.solution = type;
    return true;
  }
  return false;
}

}  // namespace

std::optional<GateRefusal> CheckGate(const GateLimits& limits, const GnssPositionState& state,
                                     std::int64_t nowMs) {
  if (state.repeatedEpoch) return GateRefusal{Limit::RepeatedEpoch, {}, {}};
  const double staleS = static_cast<double>(nowMs - state.positionReadAtMs) / 1000.0;
  const bool precise = state.precisionKnown;
  const std::optional<GateRefusal> checks[] = {
      Above(Limit::Staleness, true, staleS, limits.staleS, kOtherDecimals),
      CheckSolution(limits, state),
      CheckSatellites(limits, state),
      Above(Limit::Hrms, precise, state.hrms, limits.hrms, kPrecisionDecimals),
      Above(Limit::Vrms, precise, state.vrms, limits.vrms, kPrecisionDecimals),
      Above(Limit::Pdop, state.pdop > 0.0, state.pdop, limits.pdop, kOtherDecimals),
      Above(Limit::CorrectionAge, state.ageOfCorrections >= 0.0, state.ageOfCorrections,
            limits.correctionAgeS, kOtherDecimals),
  };
  for (const auto& refusal : checks) {
    if (refusal) return refusal;
  }
  return std::nullopt;
}

std::string RefusalSentence(const GateRefusal& refusal) {
  // There is no solution better than FIXED.
  const bool best =
      refusal.limit == Limit::Solution && refusal.wanted == SolutionText(SolutionType::Fixed);
  if (best) return Strings().Text(kTextSolutionMustBe, {refusal.has, refusal.wanted});
  static_assert(kTextFirstLimit + static_cast<int>(Limit::CorrectionAge) == kTextLastLimit);
  return Strings().Text(kTextFirstLimit + static_cast<int>(refusal.limit),
                        {refusal.has, refusal.wanted});
}

bool SetGateLimit(std::string_view key, std::string_view value, GateLimits& limits) {
  if (key == "gate_solution") return SetSolution(value, limits);
  const auto number = ParseNumber(value);
  if (!number || *number < 0.0) return false;
  if (key == "gate_satellites") {
    constexpr double kMost = 1000.0;
    if (*number > kMost || *number != std::floor(*number)) return false;
    limits.satellites = static_cast<int>(*number);
    return true;
  }
  for (const NumberLimit& limit : kNumbers) {
    if (limit.key != key) continue;
    limits.*limit.field = *number;
    return true;
  }
  return false;
}

}  // namespace tarvex
