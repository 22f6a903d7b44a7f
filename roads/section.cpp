#include "roads/section.h"

#include <algorithm>
#include <cmath>

namespace tarvex {
namespace {

constexpr double kSameGrade = 1e-9;
constexpr double kSameOffset = 1e-6;  // widths are sums of decimals

// How many leading segments are lanes.
std::size_t LaneCount(const std::vector<SurfaceSegment>& segments, const std::string& edge) {
  if (!edge.empty()) {
    for (std::size_t i = 0; i < segments.size(); ++i) {
      if (segments[i].description == edge) return i + 1;
    }
  }
  std::size_t count = 0;
  while (count < segments.size() && segments[count].kind == SlopeKind::Grade &&
         std::fabs(segments[count].value - segments[0].value) < kSameGrade) {
    ++count;
  }
  return count;
}

// The segments of one side with lanes at `lane` percent.
std::vector<SurfaceSegment> Superelevated(const RoadTemplate& section, Side side, double lane,
                                          bool high) {
  std::vector<SurfaceSegment> segments = section.SurfaceOf(side).segments;
  const SuperelevationSettings& super = section.super;
  const std::size_t lanes = LaneCount(segments, high ? super.highPoint : super.lowPoint);
  for (std::size_t i = 0; i < lanes; ++i) {
    if (segments[i].kind == SlopeKind::Grade) segments[i].value = lane;
  }
  for (std::size_t i = lanes; i < segments.size() && segments[i].kind == SlopeKind::Grade; ++i) {
    double& shoulder = segments[i].value;
    shoulder = high ? std::max(shoulder, lane - super.largestDifference) : std::min(shoulder, lane);
  }
  return segments;
}

std::vector<SectionPoint> SidePoints(const Surface& surface,
                                     const std::vector<SurfaceSegment>& segments,
                                     double elevation) {
  std::vector<SectionPoint> points;
  SectionPoint at{surface.offset, elevation + surface.elevation, {}};
  if (surface.offset != 0.0 || surface.elevation != 0.0) points.push_back(at);
  for (const SurfaceSegment& segment : segments) {
    at.offset += segment.width;
    at.elevation += segment.Rise();
    at.description = segment.description;
    points.push_back(at);
  }
  return points;
}

}  // namespace

DesignSection BuildSection(const RoadTemplate& section, double elevation,
                           const std::optional<Superelevation>& superelevation) {
  const auto sidePoints = [&](Side side) {
    const Surface& surface = section.SurfaceOf(side);
    if (!superelevation) return SidePoints(surface, surface.segments, elevation);
    const double own =
        side == Side::Left ? superelevation->leftPercent : superelevation->rightPercent;
    const double other =
        side == Side::Left ? superelevation->rightPercent : superelevation->leftPercent;
    return SidePoints(surface, Superelevated(section, side, own, own > other), elevation);
  };
  DesignSection design;
  design.points = sidePoints(Side::Left);
  std::reverse(design.points.begin(), design.points.end());
  for (SectionPoint& point : design.points) point.offset = -point.offset;
  design.centerline = design.points.size();
  design.points.push_back({0.0, elevation, "CL"});
  const auto right = sidePoints(Side::Right);
  design.points.insert(design.points.end(), right.begin(), right.end());
  return design;
}

std::vector<SectionPoint> DesignSection::Outward(Side side) const {
  const auto center = points.begin() + static_cast<std::ptrdiff_t>(centerline);
  if (side == Side::Right) return {center, points.end()};
  std::vector<SectionPoint> outward(points.begin(), center + 1);
  std::reverse(outward.begin(), outward.end());
  for (SectionPoint& point : outward) point.offset = -point.offset;
  return outward;
}

std::optional<SurfaceHeight> SurfaceAt(const DesignSection& design, double offset) {
  const std::vector<SectionPoint> points = design.Outward(offset < 0.0 ? Side::Left : Side::Right);
  const double outward = std::fabs(offset);
  const auto here = [outward](const SectionPoint& point) {
    return std::fabs(point.offset - outward) <= kSameOffset;
  };
  const auto first = std::find_if(points.begin(), points.end(), here);
  if (first != points.end()) {
    auto last = first;
    while (last + 1 != points.end() && here(*(last + 1))) ++last;
    const bool steps = std::fabs(last->elevation - first->elevation) > kSameOffset;
    return SurfaceHeight{first->elevation, steps ? std::optional(last->elevation) : std::nullopt};
  }
  for (std::size_t i = 1; i < points.size(); ++i) {
    const SectionPoint& a = points[i - 1];
    const SectionPoint& b = points[i];
    if (!(outward > a.offset && outward < b.offset)) continue;
    const double share = (outward - a.offset) / (b.offset - a.offset);
    return SurfaceHeight{a.elevation + (b.elevation - a.elevation) * share, {}};
  }
  return std::nullopt;
}

}  // namespace tarvex
