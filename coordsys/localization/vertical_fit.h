// The surface between elevations on the system's grid (ellipsoid heights, or heights above a geoid
// model) and local elevations, and its least-squares fit.
//
//   z = elevation + c0 + cE (E - mE) + cN (N - mN)
//
// in metres over grid coordinates about the centroid of the points; a plain shift has no slopes.
#pragma once

#include "coordsys/localization/horizontal_fit.h"

namespace tarvex {

struct VerticalPlane {
  double gridEastingM = 0.0;
  double gridNorthingM = 0.0;
  double shiftM = 0.0;      ///< c0, at the centroid
  double slopeEast = 0.0;   ///< cE, metres a metre
  double slopeNorth = 0.0;  ///< cN

  /// What is added to an elevation at a place on the grid.
  double At(const PlanePoint& grid) const noexcept {
    return shiftM + slopeEast * (grid.eastingM - gridEastingM) +
           slopeNorth * (grid.northingM - gridNorthingM);
  }
};

enum class VerticalMethod {
  Shift,          ///< a constant: one point at least
  InclinedPlane,  ///< three points at least that are not on a line
};

/// Why a plain shift was fitted where a plane was asked for.
enum class PlaneFallBack {
  None,
  TooFewPoints,
  OnALine,   ///< the points hardly spread across their line: the tilt across it is not known
  TooSteep,  ///< beyond 100 ppm: a blunder, or heights of another kind
};

struct VerticalFit {
  FitResult result = FitResult::NoPoints;
  VerticalMethod method = VerticalMethod::Shift;  ///< the one that was fitted
  PlaneFallBack fallBack = PlaneFallBack::None;
  VerticalPlane plane;
  int points = 0;
  int unknowns = 0;

  int redundancy() const { return points - unknowns; }
};

/// The fit to the points that are flagged for vertical use.
VerticalFit FitVertical(const ControlPoints& points, VerticalMethod method);

}  // namespace tarvex
