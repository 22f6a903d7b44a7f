#include "coordsys/geoid/geoid_step.h"

namespace tarvex {
namespace {

constexpr int kOutsideGeoid = 4160;
constexpr int kGeoidMissing = 4161;

}  // namespace

StepOutcome GridGeoid::Undulation(double latitudeRad, double longitudeRad,
                                  double& undulationM) const {
  const auto undulation = grid_.Undulation(latitudeRad, longitudeRad);
  if (!undulation) return {StepStatus::Refused, kOutsideGeoid};
  undulationM = *undulation;
  return {};
}

StepOutcome MissingGeoid::Undulation(double, double, double&) const {
  return {StepStatus::Refused, kGeoidMissing};
}

}  // namespace tarvex
