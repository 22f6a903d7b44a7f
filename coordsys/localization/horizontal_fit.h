// The plane similarity between the system's grid and local coordinates, and its least-squares fit.
//
// Metres on both sides; x is local east, y local north:
//
//   x = mx + a (E - mE) - b (N - mN)        scale = hypot(a, b)
//   y = my + b (E - mE) + a (N - mN)        rotation = atan2(b, a), counter-clockwise
//
// about the centroids of the points, so that coordinates of 1e7 m keep their last digits. Every way
// of fitting is the exact least-squares optimum of its unknowns (for a given scale the rotation
// that maximises the covariance of the two point sets), unweighted. Source: P. R. Wolf and C. D.
// Ghilani, Elements of Photogrammetry / Adjustment Computations, the two-dimensional conformal
// transformation.
#pragma once

#include <string>

#include "coordsys/localization/control_points.h"

namespace tarvex {

struct PlaneSimilarity {
  double gridEastingM = 0.0;  ///< mE
  double gridNorthingM = 0.0;
  double localXM = 0.0;  ///< mx
  double localYM = 0.0;
  double a = 1.0;
  double b = 0.0;

  double scale() const;
  /// Counter-clockwise from grid to local; an azimuth grows by its negative.
  double rotationRad() const;

  PlanePoint ToLocal(const PlanePoint& grid) const noexcept;
  PlanePoint ToGrid(const PlanePoint& local) const noexcept;
};

enum class HorizontalMethod {
  Similarity,    ///< scale, rotation and translation: two points at least
  FixedScale,    ///< rotation and translation at a given scale: two points at least
  RotationOnly,  ///< rotation and translation at scale 1: two points at least
  Translation,   ///< translation alone at a given scale: one point at least
};

enum class FitResult {
  Fitted,
  NoPoints,  ///< no point takes part: the step is not made
  Coincide,  ///< all points are within a millimetre: nothing but a translation could be fitted
  Mirrored,  ///< the points lie mirrored on the two sides: no rotation leads one to the other
  NotANumber,
};

struct HorizontalFit {
  FitResult result = FitResult::NoPoints;
  HorizontalMethod method = HorizontalMethod::Similarity;  ///< the one that was fitted
  PlaneSimilarity similarity;
  int points = 0;
  int unknowns = 0;

  int redundancy() const { return 2 * points - unknowns; }
};

/// The fit to the points that are flagged for horizontal use; with one point, and whatever the
/// method, a translation. `givenScale` is for FixedScale and Translation; the others, when one
/// point leaves nothing but a translation, keep the scale at 1.
HorizontalFit FitHorizontal(const ControlPoints& points, HorizontalMethod method,
                            double givenScale = 1.0);

}  // namespace tarvex
