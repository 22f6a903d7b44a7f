// The convex hull of control points: inside it a localization interpolates, outside it guesses.
#pragma once

#include <vector>

#include "coordsys/localization/control_points.h"

namespace tarvex {

class ControlHull {
 public:
  ControlHull() = default;
  explicit ControlHull(std::vector<PlanePoint> points);

  /// The corners, counter-clockwise; two for points on a line, one for a single place.
  const std::vector<PlanePoint>& corners() const { return corners_; }

  /// Metres from the hull; 0 inside it, on its edge, and when there is no hull.
  double MetresOutside(const PlanePoint& point) const;

  /// The largest distance between two corners.
  double ExtentM() const;

 private:
  std::vector<PlanePoint> corners_;
};

}  // namespace tarvex
