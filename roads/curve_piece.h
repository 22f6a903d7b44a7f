// One element of an alignment as pure geometry: a curve in the plane whose curvature changes
// linearly with its length. Tangent (curvature 0), circular arc (constant) and clothoid are one
// form.
//
// Local frame: x along the tangent at the start, y to its right; angles and curvature are positive
// to the right. Lengths in any one unit, angles in radians.
//
// Tangents and arcs are in closed form, stable for a curvature near 0. A clothoid is cut into
// panels that turn at most 0.5 radians; on a panel the tangent direction exp(i*theta) is a Taylor
// series about the middle, whose coefficients follow from f' = i*(k + sigma*t)*f, and the position
// is its integral term by term. Truncation stays below 1e-14 of a panel's length.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "roads/plan_point.h"

namespace tarvex {

/// Position and unit tangent in a local frame.
struct LocalFrame {
  double x = 0.0;
  double y = 0.0;
  double tangentX = 1.0;
  double tangentY = 0.0;
};

struct SpiralPanel {
  static constexpr std::size_t kTerms = 15;

  double middle = 0.0;  ///< distance from the start of the piece
  double half = 0.0;
  LocalFrame from;    ///< at the panel's start
  LocalFrame center;  ///< at its middle
  /// Coefficients of the direction in powers of (s - middle) / half.
  std::array<double, kTerms> directionX{};
  std::array<double, kTerms> directionY{};
};

/// More than a full turn is no transition curve that anybody builds.
inline constexpr double kLargestSpiralSweep = 6.3;

/// Appends the panels of a clothoid with curvature `k0` at its start and `k1` after `length`;
/// returns its end. The whole sweep must be at most kLargestSpiralSweep.
LocalFrame AppendSpiralPanels(double k0, double k1, double length,
                              std::vector<SpiralPanel>& panels);

/// The end of a clothoid alone.
LocalFrame SpiralEnd(double k0, double k1, double length);

/// The total turning, left and right, of a piece.
double AbsoluteSweep(double k0, double k1, double length);

/// A perpendicular from a point, or the end nearest to it.
struct NearestOnPiece {
  double distanceAlong = 0.0;
  double offset = 0.0;  ///< right positive; at an end the plain distance, unsigned
  bool perpendicular = false;
};

struct CurvePiece {
  PlanPoint start;
  double cosAzimuth = 1.0;
  double sinAzimuth = 0.0;
  double curvature = 0.0;  ///< at the start
  /// At the end, as the piece was made with: start and sharpness give it only to rounding, and a
  /// spiral that runs into a straight line ends at exactly 0.
  double curvatureEnd = 0.0;
  double sharpness = 0.0;  ///< change of curvature per length; 0 for tangents and arcs
  double length = 0.0;
  LocalFrame end;
  std::uint32_t firstPanel = 0;
  std::uint32_t panelCount = 0;  ///< 0 for tangents and arcs

  double CurvatureAt(double s) const { return curvature + sharpness * s; }
  LocalFrame ToLocal(const PlanPoint& point) const;
  PlanPoint ToGrid(double x, double y) const;
  /// Direction (cos, sin of the azimuth as x, y) of a local tangent.
  LocalFrame DirectionToGrid(const LocalFrame& at) const;

  /// `panels` is the list that the piece was made with.
  LocalFrame At(double s, std::span<const SpiralPanel> panels) const;

  NearestOnPiece Nearest(const PlanPoint& point, std::span<const SpiralPanel> panels) const;
  /// Appends every perpendicular that is a local minimum of the distance.
  void AppendFeet(const PlanPoint& point, std::span<const SpiralPanel> panels,
                  std::vector<NearestOnPiece>& feet) const;
};

/// A foot this far outside a piece still counts as on it.
inline constexpr double kFootTolerance = 1e-9;

/// Tangent or arc from its start; `curvature` 0 for a tangent.
CurvePiece MakeArcPiece(const PlanPoint& start, double azimuth, double curvature, double length);
/// Clothoid from its start; its panels are appended to `panels`.
CurvePiece MakeSpiralPiece(const PlanPoint& start, double azimuth, double k0, double k1,
                           double length, std::vector<SpiralPanel>& panels);

}  // namespace tarvex
