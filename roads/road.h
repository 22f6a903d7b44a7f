// The road that is open: its alignment as loaded, its template, its usable stations.
#pragma once

#include <optional>

#include "roads/centerline.h"
#include "roads/road_template.h"

namespace tarvex {

struct Road {
  bool useStationLimits = false;
  std::optional<Centerline> centerline;
  std::optional<RoadTemplate> section;
};

/// Station of the first element plus `offset`; exactly 0 when its magnitude is below 0.0001, and
/// without a centerline.
double StartStation(const Road& road, double offset = 0.0);

struct StationSpan {
  double start = 0.0;
  double end = 0.0;
  bool startLimited = false;
  bool endLimited = false;

  bool operator==(const StationSpan&) const = default;
};

/// The usable stations: from the start station to the last element's station less `endOffset`,
/// narrowed (never widened) by the station limits when the road uses them. Nothing without a
/// centerline.
std::optional<StationSpan> StationRange(const Road& road, double endOffset = 0.0);

}  // namespace tarvex
