// Pictures of a road: its alignment from above, its design section with the ground.
#pragma once

#include <optional>
#include <span>
#include <string>
#include <vector>

#include "core/units/units.h"
#include "roads/alignment_check.h"
#include "roads/catch_point.h"
#include "roads/road_geometry.h"
#include "roads/section.h"

namespace tarvex {

/// A point to show beside the road.
struct PictureMark {
  PlanPoint at;
  std::string label;
};

/// How the picture shows numbers.
struct PictureLook {
  StationStyle stations;
  DistanceUnit unit = DistanceUnit::Metres;  ///< of the scale bar
};

/// North up, key points, station equations and round stations named, tangents dark, arcs blue,
/// spirals green, elements that should not be staked red and dashed. No text lies on another: one
/// that finds no room beside its place is put aside with a thin line, or left out.
std::string AlignmentPicture(const RoadGeometry& road, std::string_view title,
                             const PictureLook& look, std::span<const PictureMark> marks = {});

/// What the picture of a section shows besides the design.
struct SectionSide {
  std::optional<GroundLine> ground;
  std::optional<CatchPoint> caught;
};

std::string SectionPicture(const DesignSection& design, const SectionSide& left,
                           const SectionSide& right, std::string_view title);

}  // namespace tarvex
