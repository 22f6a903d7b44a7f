// Makes a Projection of a family's kernel: a small value with its constants and two functions over
// two points side by side (lanes.h),
//
//   LaneMask Forward(LanePosition position, LanePoint& point) const noexcept;
//   LaneMask Inverse(LanePoint point, LanePosition& position) const noexcept;
//
// each of them a template over TwoPoints or OnePoint (auxiliary_latitude.h) where two of its angles
// can share the lanes of a single point, and
// whose result is true in the lanes that lie in the family's domain; in the others the outputs may
// be anything. Both are inlined into the loops over arrays. A position beyond 90 degrees of
// latitude or 360 of longitude, and a plane point beyond 1e9 m, are refused here.
#pragma once

#include <cmath>
#include <limits>
#include <memory>
#include <numbers>

#include "coordsys/projection.h"
#include "coordsys/projections/auxiliary_latitude.h"
#include "coordsys/projections/lanes.h"

namespace tarvex {

struct LanePosition {
  Lanes latitude_rad;
  Lanes longitude_rad;
};

struct LanePoint {
  Lanes northing_m;
  Lanes easting_m;
};

template <typename Kernel>
class KernelProjection final : public Projection {
 public:
  KernelProjection(const Kernel& kernel, bool takes_wgs84)
      : kernel_(kernel), takes_wgs84_(takes_wgs84) {}

  ProjectionResult Forward(LatLon position, PlanePoint& point) const noexcept override {
    LanePoint both;
    const LanePosition at{Both(position.latitude_rad), Both(position.longitude_rad)};
    if (!ForwardLanes<OnePoint>(at, both)[0])
      return Why(position.latitude_rad, position.longitude_rad);
    point = {both.northing_m[0], both.easting_m[0]};
    return ProjectionResult::Done;
  }

  ProjectionResult Inverse(PlanePoint point, LatLon& position) const noexcept override {
    LanePosition both;
    const LanePoint at{Both(point.northing_m), Both(point.easting_m)};
    if (!InverseLanes<OnePoint>(at, both)[0]) return Why(point.northing_m, point.easting_m);
    position = {both.latitude_rad[0], both.longitude_rad[0]};
    return ProjectionResult::Done;
  }

  std::size_t Forward(std::span<const double> latitude_rad, std::span<const double> longitude_rad,
                      std::span<double> northing_m,
                      std::span<double> easting_m) const noexcept override {
    const auto convert = [this](Lanes latitude, Lanes longitude, Lanes& northing, Lanes& easting) {
      LanePoint point;
      const LaneMask inside = ForwardLanes<TwoPoints>({latitude, longitude}, point);
      northing = point.northing_m;
      easting = point.easting_m;
      return inside;
    };
    return Convert(convert, latitude_rad, longitude_rad, northing_m, easting_m);
  }

  std::size_t Inverse(std::span<const double> northing_m, std::span<const double> easting_m,
                      std::span<double> latitude_rad,
                      std::span<double> longitude_rad) const noexcept override {
    const auto convert = [this](Lanes northing, Lanes easting, Lanes& latitude, Lanes& longitude) {
      LanePosition position;
      const LaneMask inside = InverseLanes<TwoPoints>({northing, easting}, position);
      latitude = position.latitude_rad;
      longitude = position.longitude_rad;
      return inside;
    };
    return Convert(convert, northing_m, easting_m, latitude_rad, longitude_rad);
  }

  bool TakesWgs84() const noexcept override { return takes_wgs84_; }

  std::optional<double> PointScale(LatLon position) const noexcept override {
    if constexpr (requires { kernel_.PointScale(position); }) {
      PlanePoint point;
      if (Forward(position, point) == ProjectionResult::Done) return kernel_.PointScale(position);
    }
    return std::nullopt;
  }

 private:
  static constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

  template <typename Points>
  LaneMask ForwardLanes(LanePosition position, LanePoint& point) const noexcept {
    const LaneMask on_earth = Within(position.latitude_rad, std::numbers::pi / 2.0) &
                              Within(position.longitude_rad, 2.0 * std::numbers::pi);
    if constexpr (requires { kernel_.template Forward<Points>(position, point); }) {
      return on_earth & kernel_.template Forward<Points>(position, point);
    } else {
      return on_earth & kernel_.Forward(position, point);
    }
  }

  template <typename Points>
  LaneMask InverseLanes(LanePoint point, LanePosition& position) const noexcept {
    constexpr double kFarthest_m = 1e9;
    const LaneMask on_plane =
        Within(point.northing_m, kFarthest_m) & Within(point.easting_m, kFarthest_m);
    if constexpr (requires { kernel_.template Inverse<Points>(point, position); }) {
      return on_plane & kernel_.template Inverse<Points>(point, position);
    } else {
      return on_plane & kernel_.Inverse(point, position);
    }
  }

  static ProjectionResult Why(double a, double b) noexcept {
    return std::isnan(a) || std::isnan(b) ? ProjectionResult::NotANumber
                                          : ProjectionResult::OutsideDomain;
  }

  // Two points at a time; an odd last point goes through both lanes.
  template <typename ConvertLanes>
  static std::size_t Convert(const ConvertLanes& convert, std::span<const double> in_a,
                             std::span<const double> in_b, std::span<double> out_a,
                             std::span<double> out_b) noexcept {
    std::size_t refused = 0;
    const std::size_t size = in_a.size();
    for (std::size_t i = 0; i < size; i += 2) {
      const std::size_t next = i + 1 < size ? i + 1 : i;
      Lanes a;
      Lanes b;
      const LaneMask inside = convert(Lanes{in_a[i], in_a[next]}, Lanes{in_b[i], in_b[next]}, a, b);
      a = Select(inside, a, Both(kNaN));
      b = Select(inside, b, Both(kNaN));
      out_a[i] = a[0];
      out_b[i] = b[0];
      out_a[next] = a[1];
      out_b[next] = b[1];
      refused += static_cast<std::size_t>(inside[0] == 0);
      refused += static_cast<std::size_t>(inside[1] == 0 && next != i);
    }
    return refused;
  }

  Kernel kernel_;
  bool takes_wgs84_;
};

template <typename Kernel>
MadeProjection MakeOf(const Kernel& kernel, bool takes_wgs84 = false) {
  return {std::make_unique<KernelProjection<Kernel>>(kernel, takes_wgs84), ProjectionFault::None};
}

}  // namespace tarvex
