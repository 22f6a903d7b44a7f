#include "roads/centerline.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace tarvex {
namespace {

constexpr double kZeroStation = 0.0001;
constexpr double kLimitTolerance = 0.000001;

}  // namespace

bool HasId(const CenterlineId& id) {
  return !id.empty() && id.view() != "0";
}

double GridAzimuth(double delta_northing, double delta_easting) {
  const double distance = std::hypot(delta_northing, delta_easting);
  if (!(distance > 0.0) || std::isinf(distance)) return 0.0;
  const double azimuth = std::acos(std::clamp(delta_northing / distance, -1.0, 1.0));
  return delta_easting < 0.0 ? 2.0 * std::numbers::pi - azimuth : azimuth;
}

double StartStation(const Road& road, double offset) {
  if (!road.centerline || road.centerline->elements.empty()) return 0.0;
  const double station = road.centerline->elements.front().station + offset;
  return std::fabs(station) < kZeroStation ? 0.0 : station;
}

std::optional<StationSpan> StationRange(const Road& road, double end_offset) {
  if (!road.centerline || road.centerline->elements.empty()) return std::nullopt;
  const Centerline& centerline = *road.centerline;
  StationSpan span{.start = centerline.start_station,
                   .end = centerline.elements.back().station - end_offset};
  if (!road.use_station_limits) return span;
  const StationLimits& limits = centerline.limits;
  if (limits.start && *limits.start > span.start + kLimitTolerance) {
    span.start = *limits.start;
    span.start_limited = true;
  }
  if (limits.end && *limits.end < span.end - kLimitTolerance) {
    span.end = *limits.end;
    span.end_limited = true;
  }
  return span;
}

}  // namespace tarvex
