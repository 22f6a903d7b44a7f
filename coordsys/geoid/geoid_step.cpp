#include "coordsys/geoid/geoid_step.h"

#include "coordsys/coordsys_texts.h"

namespace tarvex {
namespace {}  // namespace

StepOutcome GridGeoid::Undulation(double latitudeRad, double longitudeRad,
                                  double& undulationM) const {
  const auto undulation = grid_.Undulation(latitudeRad, longitudeRad);
  if (!undulation) return {StepStatus::Refused, kTextOutsideGeoid};
  undulationM = *undulation;
  return {};
}

StepOutcome MissingGeoid::Undulation(double, double, double&) const {
  return {StepStatus::Refused, kTextGeoidMissing};
}

}  // namespace tarvex
