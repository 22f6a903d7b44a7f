#include "roads/road_geometry.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace tarvex {
namespace {

// The first element from `from` on whose stations jump by the equation instead of counting through.
std::optional<std::size_t> JumpingElement(const Alignment& alignment,
                                          const StationEquation& equation, std::size_t from,
                                          double tolerance) {
  const auto& elements = alignment.elements();
  const double jump = equation.ahead - equation.back;
  if (std::fabs(jump) <= tolerance) return std::nullopt;
  for (std::size_t i = from; i < elements.size(); ++i) {
    const AlignmentElement& e = elements[i];
    const bool spans =
        equation.back >= e.stationStart - tolerance && equation.ahead <= e.stationEnd + tolerance;
    if (spans && std::fabs(e.StationLength() - e.length - jump) <= tolerance) return i;
  }
  return std::nullopt;
}

// The chain with displayed stations turned into internal ones; nothing when they are internal.
std::optional<std::vector<CenterlineElement>> WithInternalStations(
    const Alignment& alignment, std::vector<CenterlineElement> chain,
    const std::vector<StationEquation>& equations, double tolerance) {
  std::size_t element = 0;
  for (const StationEquation& equation : equations) {
    const auto found = JumpingElement(alignment, equation, element, tolerance);
    if (!found) return std::nullopt;
    const double jump = equation.ahead - equation.back;
    for (std::size_t node = alignment.elements()[*found].toNode; node < chain.size(); ++node) {
      chain[node].station -= jump;
    }
    element = *found + 1;
  }
  if (equations.empty()) return std::nullopt;
  return chain;
}

}  // namespace

Outcome<RoadGeometry, AlignmentFault> MakeRoadGeometry(
    const Centerline& centerline, const std::vector<StationEquation>& equations,
    const CheckLimits& limits) {
  auto alignment = Alignment::FromChain(centerline.elements, limits);
  if (!alignment) return alignment.failure();
  RoadGeometry geometry{*std::move(alignment), {}, centerline.elements, false, {}};
  auto internal =
      WithInternalStations(geometry.alignment, geometry.chain, equations, limits.refuse);
  if (internal) {
    auto counted = Alignment::FromChain(*internal, limits);
    if (!counted) return counted.failure();
    geometry.alignment = *std::move(counted);
    geometry.chain = *std::move(internal);
    geometry.converted = true;
  }
  std::size_t refused = 0;
  auto made = StationEquations::Make(equations, geometry.alignment.startStation(),
                                     geometry.alignment.endStation(), &refused);
  if (made) {
    geometry.equations = *std::move(made);
  } else {
    geometry.refusedEquation = refused;
  }
  return geometry;
}

}  // namespace tarvex
