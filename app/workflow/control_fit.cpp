#include "app/workflow/control_fit.h"

#include <cmath>

namespace tarvex {
namespace {

constexpr double kAbsurdScale = 0.01;

}  // namespace

bool ControlFit::empty() const {
  return unusable.empty() && fit.horizontal.result == FitResult::NoPoints &&
         fit.vertical.result == FitResult::NoPoints;
}

bool ControlFit::isAbsurd() const {
  return fit.horizontal.result == FitResult::Fitted &&
         std::abs(fit.horizontal.similarity.scale() - 1.0) > kAbsurdScale;
}

ControlFit FitControl(const CTrgCalculator& calculator, const LocalizationList& list,
                      const LocalizationMethod& method) {
  ControlFit control;
  control.points = ProjectControl(calculator, list, control.unusable);
  control.fit = FitLocalization(control.points, method);
  return control;
}

std::string FitProblem(const ControlFit& control) {
  if (!control.unusable.empty()) {
    const UnusableControl& first = control.unusable.front();
    return "Control point " + std::to_string(first.position + 1) +
           " has no grid coordinates: " + first.why;
  }
  for (const FitResult result : {control.fit.horizontal.result, control.fit.vertical.result}) {
    switch (result) {
      case FitResult::Coincide:
        return "The control points lie in one place, so that no rotation can be fitted.";
      case FitResult::Mirrored:
        return "The local coordinates are mirrored: northing and easting may have been swapped.";
      case FitResult::NotANumber:
        return "A coordinate or the scale makes no sense.";
      case FitResult::Fitted:
      case FitResult::NoPoints:
        break;
    }
  }
  return control.fit.usable() ? "" : "No control point takes part in the fit.";
}

}  // namespace tarvex
