#include "coordsys/geoid/geoid_step.h"

namespace tarvex {
namespace {

constexpr int kOutsideGeoid = 4160;
constexpr int kGeoidMissing = 4161;

}  // namespace

StepOutcome GridGeoid::Undulation(double latitude_rad, double longitude_rad,
                                  double& undulation_m) const {
  const auto undulation = grid_.Undulation(latitude_rad, longitude_rad);
  if (!undulation) return {StepStatus::Refused, kOutsideGeoid};
  undulation_m = *undulation;
  return {};
}

StepOutcome MissingGeoid::Undulation(double, double, double&) const {
  return {StepStatus::Refused, kGeoidMissing};
}

}  // namespace tarvex
