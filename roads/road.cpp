#include "roads/road.h"

#include <cmath>

namespace tarvex {
namespace {

constexpr double kZeroStation = 0.0001;
constexpr double kLimitTolerance = 0.000001;

}  // namespace

double StartStation(const Road& road, double offset) {
  if (!road.centerline || road.centerline->elements.empty()) return 0.0;
  const double station = road.centerline->elements.front().station + offset;
  return std::fabs(station) < kZeroStation ? 0.0 : station;
}

std::optional<StationSpan> StationRange(const Road& road, double endOffset) {
  if (!road.centerline || road.centerline->elements.empty()) return std::nullopt;
  const Centerline& centerline = *road.centerline;
  StationSpan span{.start = centerline.startStation,
                   .end = centerline.elements.back().station - endOffset};
  if (!road.useStationLimits) return span;
  const StationLimits& limits = centerline.limits;
  if (limits.start && *limits.start > span.start + kLimitTolerance) {
    span.start = *limits.start;
    span.startLimited = true;
  }
  if (limits.end && *limits.end < span.end - kLimitTolerance) {
    span.end = *limits.end;
    span.endLimited = true;
  }
  return span;
}

}  // namespace tarvex
