// How good a localization is: residuals, what every point does to the fit, and warnings in words.
//
// Residuals are local minus fitted, in metres: the way to move the fitted point. Points that do not
// take part have residuals too, as checks.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "coordsys/localization/localization.h"
#include "core/units.h"

namespace tarvex {

/// What changes when a point is left out of the fit.
struct LeftOut {
  double miss_east_m = 0.0;  ///< by what the fit without the point misses it
  double miss_north_m = 0.0;
  double scale_change_ppm = 0.0;     ///< of the scale, without minus with
  double rotation_change_rad = 0.0;  ///< counter-clockwise
};

/// Residuals of a part (horizontal, vertical) that was not fitted mean nothing.
struct PointResidual {
  std::string name;
  bool in_horizontal = false;
  bool in_vertical = false;
  double east_m = 0.0;
  double north_m = 0.0;
  double elevation_m = 0.0;
  std::optional<LeftOut> left_out;             ///< for points of the horizontal fit with redundancy
  std::optional<double> left_out_elevation_m;  ///< for points of the vertical fit with redundancy
  /// The residual over its own standard deviation in the fit; empty without redundancy.
  std::optional<double> standardised;

  double horizontal_m() const;
};

enum class LocalizationWarning {
  NoHorizontalCheck,  ///< just enough points: nothing shows a blunder
  NoVerticalCheck,
  CollinearControl,
  SmallExtent,     ///< the points lie within 20 m of each other
  FarScale,        ///< beyond 200 ppm from 1 and from what ground distances have here
  LikelyBlunder,   ///< one point misses by far more than the others
  PlaneNotFitted,  ///< a shift stands in for the plane that was asked for
  OutsideControl,  ///< points of the job lie outside of the control hull
  LargeResidual,   ///< a horizontal residual beyond 5 cm, or a vertical one beyond 10 cm
};

struct WarningText {
  LocalizationWarning warning;
  std::string text;
};

struct LocalizationReport {
  LocalizationFit fit;
  double scale_ppm = 0.0;  ///< scale minus 1
  /// What the scale is, less 1, where local distances are those on the ground: the mean of the
  /// points of the horizontal fit.
  std::optional<double> ground_ppm;
  double rotation_clockwise_rad = 0.0;
  int horizontal_redundancy = 0;
  int vertical_redundancy = 0;
  /// Standard deviation of a coordinate; empty without redundancy.
  std::optional<double> sigma_horizontal_m;
  std::optional<double> sigma_vertical_m;
  double rms_east_m = 0.0;
  double rms_north_m = 0.0;
  double rms_elevation_m = 0.0;
  std::vector<PointResidual> points;
  std::vector<WarningText> warnings;
};

/// The fit of `points` and everything about it. `job_points` are places on the grid that the
/// localization is to serve; they may be none. Warnings give lengths in `unit`.
LocalizationReport ReportLocalization(const ControlPoints& points, const LocalizationMethod& method,
                                      const std::vector<PlanePoint>& job_points = {},
                                      DistanceUnit unit = DistanceUnit::Metres);

}  // namespace tarvex
