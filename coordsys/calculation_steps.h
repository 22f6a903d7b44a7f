// The seams of the calculator's chain. CTrgCalculator itself owns the projection and the job's
// unit; each of the other steps is an object given to it, and a step that is not given is not made:
//
//   WGS84 -> DatumShift -> projection -> GridCorrection -> SiteLocalization -> job unit
//                                 elevation = WGS84 height minus GeoidModel
//
// Both directions of a step close on each other to better than 1e-5 m. Objects are const after
// construction, so that one calculator can be used from any thread.
//
// Shifts and geoids take whole arrays too, bit for bit as point by point; a point for which the
// single call is not Done comes out as not-a-number. What they do not do faster in one piece they
// need not write: the arrays go through the single call then.
#pragma once

#include <optional>
#include <span>
#include <string>

#include "coordsys/coordinates.h"

namespace tarvex {

/// A point on the plane of projection, metres.
struct PlanePoint {
  double northingM = 0.0;
  double eastingM = 0.0;

  bool operator==(const PlanePoint&) const = default;
};

/// A plane point with its elevation, metres.
struct GridMetres {
  double northingM = 0.0;
  double eastingM = 0.0;
  double elevationM = 0.0;

  bool operator==(const GridMetres&) const = default;
};

enum class [[nodiscard]] StepStatus : int {
  Done,
  LeftUndone,      ///< the step was not made, or only in part; the conversion goes on and says so
  Refused,         ///< no value; the conversion ends here
  LibraryMissing,  ///< no value, because a closed library cannot be loaded
};

/// What one step came to; `reason` is the number of its text in the string table, 0 when done.
struct [[nodiscard]] StepOutcome {
  StepStatus status = StepStatus::Done;
  int reason = 0;

  bool operator==(const StepOutcome&) const = default;
};

/// Positions in arrays of one length, changed in place.
struct PositionArrays {
  std::span<double> latitudeRad;
  std::span<double> longitudeRad;
  std::span<double> heightM;
};

/// Between WGS84 and the system's datum. Positions are changed in place, and only when Done.
class DatumShift {
 public:
  virtual ~DatumShift() = default;
  virtual StepOutcome ToSystem(Geodetic& position) const = 0;
  virtual StepOutcome ToWgs84(Geodetic& position) const = 0;
  virtual void AllToSystem(PositionArrays positions) const;
  virtual void AllToWgs84(PositionArrays positions) const;
  /// One line for people: method and parameters or file.
  virtual std::string Describe() const = 0;
};

/// Between the projected plane and the system's official grid (a national shift grid).
class GridCorrection {
 public:
  virtual ~GridCorrection() = default;
  virtual StepOutcome ToGrid(GridMetres& point) const = 0;
  virtual StepOutcome ToPlane(GridMetres& point) const = 0;
  virtual std::string Describe() const = 0;
};

/// Heights of the geoid above the ellipsoid.
class GeoidModel {
 public:
  virtual ~GeoidModel() = default;
  /// The undulation in metres at a WGS84 position.
  virtual StepOutcome Undulation(double latitudeRad, double longitudeRad,
                                 double& undulationM) const = 0;
  virtual void Undulations(std::span<const double> latitudeRad,
                           std::span<const double> longitudeRad,
                           std::span<double> undulationM) const;
  virtual std::string Describe() const = 0;
};

/// Between the system's grid and the site's local coordinates, metres on both sides.
class SiteLocalization {
 public:
  virtual ~SiteLocalization() = default;
  virtual StepOutcome ToLocal(GridMetres& point) const = 0;
  virtual StepOutcome ToGrid(GridMetres& point) const = 0;
  virtual std::string Describe() const = 0;
};

}  // namespace tarvex
