// A centerline made ready for work: its alignment, its station equations, and the decision whether
// the file's stations count through (internal) or jump at the equations (displayed).
//
// Stations of key points are taken as internal. Where the station difference of the very element
// that holds an equation misses its length by ahead minus back, for every equation of the file, the
// stations were displayed ones and are converted.
#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <vector>

#include "roads/alignment.h"
#include "roads/centerline.h"
#include "roads/station_equations.h"

namespace tarvex {

struct RoadGeometry {
  Alignment alignment;
  StationEquations equations;
  std::vector<CenterlineElement> chain;  ///< with internal stations
  bool converted = false;                ///< the file's stations were displayed ones
  /// The equation that falls back or lies outside; then none of them is used.
  std::optional<std::size_t> refusedEquation;
};

Outcome<RoadGeometry, AlignmentFault> MakeRoadGeometry(
    const Centerline& centerline, const std::vector<StationEquation>& equations,
    const CheckLimits& limits = {});

}  // namespace tarvex
