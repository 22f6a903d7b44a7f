// The design section of a road at one station: the surface that a template gives at a
// finished-grade elevation, turned by superelevation.
//
// Offsets are outward distances from the centerline on one side (>= 0), except in SectionPoint,
// where left is negative. Elevations are absolute, in the job's distance unit. Grades are outward
// percentages.
#pragma once

#include <optional>
#include <span>
#include <string>
#include <vector>

#include "roads/road_template.h"

namespace tarvex {

/// Grades of the lanes, outward, that replace the template's own at this station.
struct Superelevation {
  double leftPercent = 0.0;
  double rightPercent = 0.0;
};

struct SectionPoint {
  double offset = 0.0;
  double elevation = 0.0;
  std::string description;

  bool operator==(const SectionPoint&) const = default;
};

/// Points from the leftmost to the rightmost, the centerline ("CL") among them, in the order in
/// which the template has them: a vertical step is two points at one offset.
struct DesignSection {
  std::vector<SectionPoint> points;
  std::size_t centerline = 0;  ///< index of "CL"

  /// The points of one side outward from the centerline, with outward offsets.
  std::vector<SectionPoint> Outward(Side side) const;
};

/// `elevation` is the finished grade on the centerline. The lanes are the segments up to the point
/// that LOWPT or HIGHPT names (low or high side); without a name the leading segments of one grade.
/// The shoulder behind them, up to the first step or ratio, keeps its grade except that on the low
/// side it is at least as steep as the lane and on the high side the break is at most MAXDIF.
DesignSection BuildSection(const RoadTemplate& section, double elevation,
                           const std::optional<Superelevation>& superelevation = {});

/// The surface of a section at one offset.
struct SurfaceHeight {
  double elevation = 0.0;
  /// At a vertical step: its outer side; `elevation` is that of the side nearer to the centerline.
  std::optional<double> step;
};
/// `offset` is right positive. Nothing beyond the last point of its side.
std::optional<SurfaceHeight> SurfaceAt(const DesignSection& design, double offset);

}  // namespace tarvex
