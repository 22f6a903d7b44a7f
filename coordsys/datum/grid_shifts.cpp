#include "coordsys/datum/grid_shifts.h"

#include <cmath>

#include "core/string_table.h"

namespace tarvex {
namespace {

constexpr int kOutside = 4151;
constexpr int kNoCorrection = 4152;
constexpr int kGridMissing = 4153;
constexpr int kTakenAsTheyAre = 4154;

StepOutcome OutcomeOf(GridShiftResult result) {
  switch (result) {
    case GridShiftResult::Done:
      return {};
    case GridShiftResult::NoCorrection:
      return {StepStatus::Refused, kNoCorrection};
    case GridShiftResult::Outside:
      break;
  }
  return {StepStatus::Refused, kOutside};
}

}  // namespace

StepOutcome Ntv2Shift::ToSystem(Geodetic& position) const {
  return OutcomeOf(grid_.Inverse(position));
}

StepOutcome Ntv2Shift::ToWgs84(Geodetic& position) const {
  return OutcomeOf(grid_.Forward(position));
}

void Ntv2Shift::AllToSystem(PositionArrays positions) const {
  (void)grid_.Inverse(positions.latitude_rad, positions.longitude_rad);
}

void Ntv2Shift::AllToWgs84(PositionArrays positions) const {
  (void)grid_.Forward(positions.latitude_rad, positions.longitude_rad);
}

std::string Ntv2Shift::Describe() const {
  return Strings().Text(4157, {name_, grid_.from_system(), grid_.to_system()});
}

StepOutcome Gr3df97aShift::ToSystem(Geodetic& position) const {
  const auto t = grid_.Translation(position.latitude_rad, position.longitude_rad);
  if (!t) return {StepStatus::Refused, kOutside};
  const Geocentric at = rgf93_.ToGeocentric(position);
  position = ntf_.ToGeodetic({at.x_m - t->x_m, at.y_m - t->y_m, at.z_m - t->z_m});
  return {};
}

// The translation belongs to the RGF93 position that it leads to: found by passes from the mean
// one.
StepOutcome Gr3df97aShift::ToWgs84(Geodetic& position) const {
  constexpr int kPasses = 6;
  constexpr double kClosed_m = 1e-7;
  const Geocentric from = ntf_.ToGeocentric(position);
  Geocentric t = {-168.0, -60.0, 320.0};
  for (int pass = 0; pass < kPasses; ++pass) {
    const Geodetic made = rgf93_.ToGeodetic({from.x_m + t.x_m, from.y_m + t.y_m, from.z_m + t.z_m});
    const auto next = grid_.Translation(made.latitude_rad, made.longitude_rad);
    if (!next) return {StepStatus::Refused, kOutside};
    const double change =
        std::abs(next->x_m - t.x_m) + std::abs(next->y_m - t.y_m) + std::abs(next->z_m - t.z_m);
    t = *next;
    if (change < kClosed_m) break;
  }
  position = rgf93_.ToGeodetic({from.x_m + t.x_m, from.y_m + t.y_m, from.z_m + t.z_m});
  return {};
}

std::string Gr3df97aShift::Describe() const {
  return Strings().Text(4158, {name_});
}

StepOutcome ChosenIdentity::ToSystem(Geodetic&) const {
  return {};
}

StepOutcome ChosenIdentity::ToWgs84(Geodetic&) const {
  return {};
}

std::string ChosenIdentity::Describe() const {
  return Strings().Text(kTakenAsTheyAre);
}

StepOutcome MissingShift::ToSystem(Geodetic&) const {
  return {StepStatus::Refused, kGridMissing};
}

StepOutcome MissingShift::ToWgs84(Geodetic&) const {
  return {StepStatus::Refused, kGridMissing};
}

}  // namespace tarvex
