// Corrections of projected coordinates by national grids: what a grid gives at a place on the plane
// is added there, or taken off, to reach the official grid. The way back finds the place on the
// plane whose correction leads to the given one, to 1e-7 m.
//
// Each grid is looked up by itself: outside of it, and where it has no value, its part of the
// correction is 0, and the conversion says which parts were left undone. At a node that is marked
// as one without a correction (999.999) none of the parts is applied.
#pragma once

#include <optional>

#include "coordsys/calculation_steps.h"
#include "coordsys/grids/grid_surface.h"
#include "coordsys/grids/ostn02_grid.h"

namespace tarvex {

/// A correction at a place, metres; the reason is 0 where every grid gives its part.
struct PlaneShift {
  double northM = 0.0;
  double eastM = 0.0;
  double upM = 0.0;
  int reason = 0;
};

/// The common part: there and back.
class PlaneCorrection : public GridCorrection {
 public:
  StepOutcome ToGrid(GridMetres& point) const final;
  StepOutcome ToPlane(GridMetres& point) const final;

 protected:
  /// What is added to a place on the plane.
  virtual PlaneShift ShiftAt(double eastingM, double northingM) const = 0;
};

enum class SurfaceSign { Added, TakenOff };
enum class SurfaceCurve { Bilinear, Cubic };

/// Surfaces over easting (first) and northing (second).
class SurfaceCorrection final : public PlaneCorrection {
 public:
  SurfaceCorrection(GridSurface east, GridSurface north, std::optional<GridSurface> height,
                    SurfaceSign sign, SurfaceCurve curve, std::string description)
      : east_(std::move(east)),
        north_(std::move(north)),
        height_(std::move(height)),
        sign_(sign),
        curve_(curve),
        description_(std::move(description)) {}

  std::string Describe() const override { return description_; }

 protected:
  PlaneShift ShiftAt(double eastingM, double northingM) const override;

 private:
  SurfaceValue Value(const GridSurface& surface, double eastingM, double northingM) const;

  GridSurface east_;
  GridSurface north_;
  std::optional<GridSurface> height_;
  SurfaceSign sign_;
  SurfaceCurve curve_;
  std::string description_;
};

/// From the ETRS89 transverse Mercator grid to the National Grid of Great Britain.
class Ostn02Correction final : public PlaneCorrection {
 public:
  Ostn02Correction(Ostn02Part east, Ostn02Part north, std::string description)
      : east_(std::move(east)), north_(std::move(north)), description_(std::move(description)) {}

  std::string Describe() const override { return description_; }

 protected:
  PlaneShift ShiftAt(double eastingM, double northingM) const override;

 private:
  Ostn02Part east_;
  Ostn02Part north_;
  std::string description_;
};

/// The grid of the system cannot be had: no correction is made, and every conversion says so.
class MissingCorrection final : public GridCorrection {
 public:
  MissingCorrection(std::string why, int reason) : why_(std::move(why)), reason_(reason) {}

  StepOutcome ToGrid(GridMetres&) const override { return {StepStatus::LeftUndone, reason_}; }
  StepOutcome ToPlane(GridMetres&) const override { return {StepStatus::LeftUndone, reason_}; }
  std::string Describe() const override { return why_; }

 private:
  std::string why_;
  int reason_;
};

}  // namespace tarvex
