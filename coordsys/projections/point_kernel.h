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

#include "coordsys/projections/projection.h"

namespace tarvex {

template <typename Kernel>
class PointKernelProjection final : public Projection {
 public:
  PointKernelProjection(const Kernel& kernel, bool takesWgs84)
      : kernel_(kernel), takesWgs84_(takesWgs84) {}

  ProjectionResult Forward(LatLon position, PlanePoint& point) const noexcept override {
    return ForwardOne(position, point);
  }
  ProjectionResult Inverse(PlanePoint point, LatLon& position) const noexcept override {
    return InverseOne(point, position);
  }

  std::size_t Forward(std::span<const double> latitudeRad, std::span<const double> longitudeRad,
                      std::span<double> northingM,
                      std::span<double> eastingM) const noexcept override {
    std::size_t refused = 0;
    for (std::size_t i = 0; i < latitudeRad.size(); ++i) {
      PlanePoint point{kNaN, kNaN};
      refused += ForwardOne({latitudeRad[i], longitudeRad[i]}, point) != ProjectionResult::Done;
      northingM[i] = point.northingM;
      eastingM[i] = point.eastingM;
    }
    return refused;
  }

  std::size_t Inverse(std::span<const double> northingM, std::span<const double> eastingM,
                      std::span<double> latitudeRad,
                      std::span<double> longitudeRad) const noexcept override {
    std::size_t refused = 0;
    for (std::size_t i = 0; i < northingM.size(); ++i) {
      LatLon position{kNaN, kNaN};
      refused += InverseOne({northingM[i], eastingM[i]}, position) != ProjectionResult::Done;
      latitudeRad[i] = position.latitudeRad;
      longitudeRad[i] = position.longitudeRad;
    }
    return refused;
  }

  bool TakesWgs84() const noexcept override { return takesWgs84_; }

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
    const bool inside = std::fabs(position.latitudeRad) <= std::numbers::pi / 2.0 &&
                        std::fabs(position.longitudeRad) <= 2.0 * std::numbers::pi;
    if (inside) return kernel_.Forward(position, point);
    const bool numbers = !std::isnan(position.latitudeRad) && !std::isnan(position.longitudeRad);
    return numbers ? ProjectionResult::OutsideDomain : ProjectionResult::NotANumber;
  }

  ProjectionResult InverseOne(PlanePoint point, LatLon& position) const noexcept {
    constexpr double kFarthestM = 1e9;
    const bool inside =
        std::fabs(point.northingM) <= kFarthestM && std::fabs(point.eastingM) <= kFarthestM;
    if (inside) return kernel_.Inverse(point, position);
    const bool numbers = !std::isnan(point.northingM) && !std::isnan(point.eastingM);
    return numbers ? ProjectionResult::OutsideDomain : ProjectionResult::NotANumber;
  }

  Kernel kernel_;
  bool takesWgs84_;
};

template <typename Kernel>
MadeProjection MakeOfPoints(const Kernel& kernel, bool takesWgs84 = false) {
  return {std::make_unique<PointKernelProjection<Kernel>>(kernel, takesWgs84),
          ProjectionFault::None};
}

}  // namespace tarvex
