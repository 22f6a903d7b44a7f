// Datum shifts by grids over latitude and longitude, and the shifts that take their place where
// there is nothing to shift by.
#pragma once

#include "coordsys/calculation_steps.h"
#include "coordsys/datum/geocentric.h"
#include "coordsys/grids/gr3df97a_grid.h"
#include "coordsys/grids/ntv2_grid.h"

namespace tarvex {

/// An NTv2 grid from the system's datum to WGS84; heights stay. A position outside of the grid is
/// refused.
class Ntv2Shift final : public DatumShift {
 public:
  Ntv2Shift(Ntv2Grid grid, std::string name) : grid_(std::move(grid)), name_(std::move(name)) {}

  StepOutcome ToSystem(Geodetic& position) const override;
  StepOutcome ToWgs84(Geodetic& position) const override;
  void AllToSystem(PositionArrays positions) const override;
  void AllToWgs84(PositionArrays positions) const override;
  std::string Describe() const override;

 private:
  Ntv2Grid grid_;
  std::string name_;
};

/// The French grid of geocentric translations between NTF, on the system's ellipsoid, and RGF93,
/// which is taken for WGS84. A position outside of the grid is refused.
class Gr3df97aShift final : public DatumShift {
 public:
  Gr3df97aShift(Gr3df97aGrid grid, const Ellipsoid& ellipsoid, std::string name)
      : grid_(std::move(grid)), rgf93_(kGrs80), ntf_(ellipsoid), name_(std::move(name)) {}

  StepOutcome ToSystem(Geodetic& position) const override;
  StepOutcome ToWgs84(Geodetic& position) const override;
  std::string Describe() const override;

 private:
  Gr3df97aGrid grid_;
  GeocentricFrame rgf93_;
  GeocentricFrame ntf_;
  std::string name_;
};

/// The user has chosen to take latitude and longitude of WGS84 as the datum's own, as they are.
class ChosenIdentity final : public DatumShift {
 public:
  StepOutcome ToSystem(Geodetic& position) const override;
  StepOutcome ToWgs84(Geodetic& position) const override;
  std::string Describe() const override;
};

/// A grid was asked for and cannot be had: every position is refused.
class MissingShift final : public DatumShift {
 public:
  explicit MissingShift(std::string why) : why_(std::move(why)) {}

  StepOutcome ToSystem(Geodetic& position) const override;
  StepOutcome ToWgs84(Geodetic& position) const override;
  std::string Describe() const override { return why_; }

 private:
  std::string why_;
};

}  // namespace tarvex
