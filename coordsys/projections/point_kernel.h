// Makes a Projection of a kernel that is computed a point at a time (projection_kernel.h is for the
// others): a small value with its constants and two functions
//
//   ProjectionResult Forward(LatLon position, PlanePoint& point) const noexcept;
//   ProjectionResult Inverse(PlanePoint point, LatLon& position) const noexcept;
//
// and, where the family has one, std::optional<double> PointScale(LatLon position) const noexcept.
// They are asked about finite positions within +-90 degrees of latitude and +-2 pi of longitude,
// and about finite plane points. Both are inlined into the loops over arrays.
#pragma once

#include <cmath>
#include <limits>
#include <memory>
#include <numbers>

#include "coordsys/projection.h"

namespace tarvex {

template <typename Kernel>
class PointKernelProjection final : public Projection {
 public:
  PointKernelProjection(const Kernel& kernel, bool takes_wgs84)
      : kernel_(kernel), takes_wgs84_(takes_wgs84) {}

  ProjectionResult Forward(LatLon position, PlanePoint& point) const noexcept override {
    return ForwardOne(position, point);
  }
  ProjectionResult Inverse(PlanePoint point, LatLon& position) const noexcept override {
    return InverseOne(point, position);
  }

  std::size_t Forward(std::span<const double> latitude_rad, std::span<const double> longitude_rad,
                      std::span<double> northing_m,
                      std::span<double> easting_m) const noexcept override {
    std::size_t refused = 0;
    for (std::size_t i = 0; i < latitude_rad.size(); ++i) {
      PlanePoint point{kNaN, kNaN};
      refused += ForwardOne({latitude_rad[i], longitude_rad[i]}, point) != ProjectionResult::Done;
      northing_m[i] = point.northing_m;
      easting_m[i] = point.easting_m;
    }
    return refused;
  }

  std::size_t Inverse(std::span<const double> northing_m, std::span<const double> easting_m,
                      std::span<double> latitude_rad,
                      std::span<double> longitude_rad) const noexcept override {
    std::size_t refused = 0;
    for (std::size_t i = 0; i < northing_m.size(); ++i) {
      LatLon position{kNaN, kNaN};
      refused += InverseOne({northing_m[i], easting_m[i]}, position) != ProjectionResult::Done;
      latitude_rad[i] = position.latitude_rad;
      longitude_rad[i] = position.longitude_rad;
    }
    return refused;
  }

  bool TakesWgs84() const noexcept override { return takes_wgs84_; }

  std::optional<double> PointScale(LatLon position) const noexcept override {
    if constexpr (requires { kernel_.PointScale(position); }) {
      PlanePoint point;
      if (ForwardOne(position, point) == ProjectionResult::Done)
        return kernel_.PointScale(position);
    }
    return std::nullopt;
  }

 private:
  static constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

  ProjectionResult ForwardOne(LatLon position, PlanePoint& point) const noexcept {
    const bool inside = std::fabs(position.latitude_rad) <= std::numbers::pi / 2.0 &&
                        std::fabs(position.longitude_rad) <= 2.0 * std::numbers::pi;
    if (inside) return kernel_.Forward(position, point);
    const bool numbers = !std::isnan(position.latitude_rad) && !std::isnan(position.longitude_rad);
    return numbers ? ProjectionResult::OutsideDomain : ProjectionResult::NotANumber;
  }

  ProjectionResult InverseOne(PlanePoint point, LatLon& position) const noexcept {
    constexpr double kFarthest_m = 1e9;
    const bool inside =
        std::fabs(point.northing_m) <= kFarthest_m && std::fabs(point.easting_m) <= kFarthest_m;
    if (inside) return kernel_.Inverse(point, position);
    const bool numbers = !std::isnan(point.northing_m) && !std::isnan(point.easting_m);
    return numbers ? ProjectionResult::OutsideDomain : ProjectionResult::NotANumber;
  }

  Kernel kernel_;
  bool takes_wgs84_;
};

template <typename Kernel>
MadeProjection MakeOfPoints(const Kernel& kernel, bool takes_wgs84 = false) {
  return {std::make_unique<PointKernelProjection<Kernel>>(kernel, takes_wgs84),
          ProjectionFault::None};
}

}  // namespace tarvex
