// A geoid model as a step of the calculator.
//
// A position outside of the model is refused: an ellipsoid height in the place of an elevation
// would be wrong by tens of metres.
#pragma once

#include "coordsys/calculation_steps.h"
#include "coordsys/geoid/geoid_grid.h"

namespace tarvex {

class GridGeoid final : public GeoidModel {
 public:
  GridGeoid(GeoidGrid grid, std::string name) : grid_(std::move(grid)), name_(std::move(name)) {}

  StepOutcome Undulation(double latitudeRad, double longitudeRad,
                         double& undulationM) const override;
  std::string Describe() const override { return name_; }

 private:
  GeoidGrid grid_;
  std::string name_;
};

/// The model that the job names cannot be had: every position is refused.
class MissingGeoid final : public GeoidModel {
 public:
  explicit MissingGeoid(std::string why) : why_(std::move(why)) {}

  StepOutcome Undulation(double latitudeRad, double longitudeRad,
                         double& undulationM) const override;
  std::string Describe() const override { return why_; }

 private:
  std::string why_;
};

}  // namespace tarvex
