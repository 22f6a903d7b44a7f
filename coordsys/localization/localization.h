// A localization fitted to control points: the last step of the chain, from the system's grid to
// the site's local coordinates and back.
#pragma once

#include "coordsys/chain/calculator.h"
#include "coordsys/localization/control_hull.h"
#include "coordsys/localization/horizontal_fit.h"
#include "coordsys/localization/localization_points.h"
#include "coordsys/localization/vertical_fit.h"

namespace tarvex {

/// How a localization is to be fitted.
struct LocalizationMethod {
  HorizontalMethod horizontal = HorizontalMethod::Similarity;
  double givenScale = 1.0;  ///< for FixedScale and Translation
  VerticalMethod vertical = VerticalMethod::Shift;

  bool operator==(const LocalizationMethod&) const = default;
};

struct LocalizationFit {
  HorizontalFit horizontal;
  VerticalFit vertical;

  /// True when the fit can be used: something was fitted, and nothing failed.
  bool usable() const;
};

/// "1 point", "4 points".
std::string PointCount(int points);

LocalizationFit FitLocalization(const ControlPoints& points, const LocalizationMethod& method);

/// The fit as a step of the calculator. A part that had no points leaves its coordinates alone.
class FittedLocalization final : public SiteLocalization {
 public:
  explicit FittedLocalization(const LocalizationFit& fit) : fit_(fit) {}

  StepOutcome ToLocal(GridMetres& point) const override;
  StepOutcome ToGrid(GridMetres& point) const override;
  std::string Describe() const override;

  const LocalizationFit& fit() const { return fit_; }

 private:
  LocalizationFit fit_;
};

/// A point of the list that the calculator could not project.
struct UnusableControl {
  std::size_t position = 0;  ///< from 0
  CalculationResult result = CalculationResult::Done;
  std::string why;  ///< a sentence: of the step that could not be made, or of the result
};

/// Projects the list through `calculator` without the localization that it may hold: names are the
/// descriptions, or "Point N" without one. Points that cannot be projected, or only in part, are
/// left out and named in `unusable`.
ControlPoints ProjectControl(const CTrgCalculator& calculator, const LocalizationList& list,
                             std::vector<UnusableControl>& unusable);

/// The hull of the points that are flagged for horizontal use, on the grid.
ControlHull HullOf(const ControlPoints& points);

}  // namespace tarvex
