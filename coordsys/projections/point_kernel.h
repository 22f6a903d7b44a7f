// Makes a Projection of a kernel that is computed a point at a time (projection_kernel.h is for the
// others): a small value with its constants and two functions
//
//   ProjectionResult Forward(LatLon position, PlanePoint& point) const noexcept;
//   ProjectionResult Inverse(PlanePoint point, LatLon& position) const noexcept;
//
// and, where the family has one, std::optional<double> PointScale(LatLon position) const noexcept.
// They are asked about what lies within projection_domain.h.
#pragma once

#include <memory>

#include "coordsys/projections/projection.h"
#include "coordsys/projections/projection_domain.h"

namespace tarvex {

template <typename Kernel>
class PointKernelProjection final : public Projection {
 public:
  explicit PointKernelProjection(const Kernel& kernel) : kernel_(kernel) {}

  using Projection::Forward;
  using Projection::Inverse;

  ProjectionResult Forward(LatLon position, PlanePoint& point) const noexcept override {
    if (!OnEarth(position)) return Refusal(position.latitudeRad, position.longitudeRad);
    return kernel_.Forward(position, point);
  }
  ProjectionResult Inverse(PlanePoint point, LatLon& position) const noexcept override {
    if (!OnPlane(point)) return Refusal(point.northingM, point.eastingM);
    return kernel_.Inverse(point, position);
  }

  std::optional<double> PointScale(LatLon position) const noexcept override {
    if constexpr (requires { kernel_.PointScale(position); }) {
      PlanePoint point;
      if (Forward(position, point) == ProjectionResult::Done) return kernel_.PointScale(position);
    }
    return std::nullopt;
  }

 private:
  Kernel kernel_;
};

template <typename Kernel>
MadeProjection MakeOfPoints(const Kernel& kernel) {
  return {std::make_unique<PointKernelProjection<Kernel>>(kernel)};
}

}  // namespace tarvex
