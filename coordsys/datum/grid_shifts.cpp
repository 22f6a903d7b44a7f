#include "coordsys/datum/grid_shifts.h"

#include <cmath>

#include "coordsys/coordsys_texts.h"
#include "core/text/string_table.h"

namespace tarvex {
namespace {

StepOutcome OutcomeOf(GridShiftResult result) {
  switch (result) {
    case GridShiftResult::Done:
      return {};
    case GridShiftResult::NoCorrection:
      return {StepStatus::Refused, kTextNoGridValue};
    case GridShiftResult::Outside:
      break;
  }
  return {StepStatus::Refused, kTextOutsideGrid};
}

}  // namespace

StepOutcome Ntv2Shift::ToSystem(Geodetic& position) const {
  return OutcomeOf(grid_.Inverse(position));
}

StepOutcome Ntv2Shift::ToWgs84(Geodetic& position) const {
  return OutcomeOf(grid_.Forward(position));
}

void Ntv2Shift::AllToSystem(PositionArrays positions) const {
  (void)grid_.Inverse(positions.latitudeRad, positions.longitudeRad);
}

void Ntv2Shift::AllToWgs84(PositionArrays positions) const {
  (void)grid_.Forward(positions.latitudeRad, positions.longitudeRad);
}

std::string Ntv2Shift::Describe() const {
  return Strings().Text(kTextNtv2Grid, {name_, grid_.fromSystem(), grid_.toSystem()});
}

StepOutcome Gr3df97aShift::ToSystem(Geodetic& position) const {
  const auto t = grid_.Translation(position.latitudeRad, position.longitudeRad);
  if (!t) return {StepStatus::Refused, kTextOutsideGrid};
  const Geocentric at = rgf93_.ToGeocentric(position);
  position = ntf_.ToGeodetic({at.xM - t->xM, at.yM - t->yM, at.zM - t->zM});
  return {};
}

// The translation belongs to the RGF93 position that it leads to: found by passes from the mean
// one.
StepOutcome Gr3df97aShift::ToWgs84(Geodetic& position) const {
  constexpr int kPasses = 6;
  constexpr double kClosedM = 1e-7;
  const Geocentric from = ntf_.ToGeocentric(position);
  Geocentric t = {-168.0, -60.0, 320.0};
  for (int pass = 0; pass < kPasses; ++pass) {
    const Geodetic made = rgf93_.ToGeodetic({from.xM + t.xM, from.yM + t.yM, from.zM + t.zM});
    const auto next = grid_.Translation(made.latitudeRad, made.longitudeRad);
    if (!next) return {StepStatus::Refused, kTextOutsideGrid};
    const double change =
        std::abs(next->xM - t.xM) + std::abs(next->yM - t.yM) + std::abs(next->zM - t.zM);
    t = *next;
    if (change < kClosedM) break;
  }
  position = rgf93_.ToGeodetic({from.xM + t.xM, from.yM + t.yM, from.zM + t.zM});
  return {};
}

std::string Gr3df97aShift::Describe() const {
  return Strings().Text(kTextTranslationGrid, {name_});
}

StepOutcome ChosenIdentity::ToSystem(Geodetic&) const {
  return {};
}

StepOutcome ChosenIdentity::ToWgs84(Geodetic&) const {
  return {};
}

std::string ChosenIdentity::Describe() const {
  return Strings().Text(kTextTakenAsTheyAre);
}

StepOutcome MissingShift::ToSystem(Geodetic&) const {
  return {StepStatus::Refused, kTextShiftNotMade};
}

StepOutcome MissingShift::ToWgs84(Geodetic&) const {
  return {StepStatus::Refused, kTextShiftNotMade};
}

}  // namespace tarvex
