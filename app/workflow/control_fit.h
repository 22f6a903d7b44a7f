// A list of control points fitted for a job, and whether the job can use what came out.
#pragma once

#include <string>
#include <vector>

#include "coordsys/localization/localization.h"

namespace tarvex {

struct ControlFit {
  ControlPoints points;                   ///< those with grid coordinates
  std::vector<UnusableControl> unusable;  ///< those without
  LocalizationFit fit;

  /// No point takes part: there is nothing to use, and nothing is wrong.
  bool empty() const;
  /// A scale more than 1 % from 1: feet for metres, another zone, swapped axes.
  bool isAbsurd() const;
};

/// `calculator` is that of the job's system; a localization that it may hold is left out.
ControlFit FitControl(const CTrgCalculator& calculator, const LocalizationList& list,
                      const LocalizationMethod& method);

/// Why the fit cannot be used, in a sentence; empty when it can, whatever its scale.
std::string FitProblem(const ControlFit& control);

}  // namespace tarvex
