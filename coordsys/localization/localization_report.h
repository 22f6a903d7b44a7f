// How good a localization is: residuals, what every point does to the fit, and warnings in words.
//
// Residuals are local minus fitted, in metres: the way to move the fitted point. Points that do not
// take part have residuals too, as checks.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "coordsys/localization/localization.h"
#include "core/units/units.h"

namespace tarvex {

/// What changes when a point is left out of the fit.
struct LeftOut {
  double missEastM = 0.0;  ///< by what the fit without the point misses it
  double missNorthM = 0.0;
  double scaleChangePpm = 0.0;     ///< of the scale, without minus with
  double rotationChangeRad = 0.0;  ///< counter-clockwise
};

/// Residuals of a part (horizontal, vertical) that was not fitted mean nothing.
struct PointResidual {
  std::string name;
  bool inHorizontal = false;
  bool inVertical = false;
  double eastM = 0.0;
  double northM = 0.0;
  double elevationM = 0.0;
  std::optional<LeftOut> leftOut;           ///< for points of the horizontal fit with redundancy
  std::optional<double> leftOutElevationM;  ///< for points of the vertical fit with redundancy
  /// The residual over its own standard deviation in the fit; empty without redundancy.
  std::optional<double> standardised;

  double horizontalM() const;
};

enum class LocalizationWarning {
  NoHorizontalCheck,  ///< just enough points: nothing shows a blunder
  NoVerticalCheck,
  CollinearControl,
  SmallExtent,     ///< the points lie within 20 m of each other
  FarScale,        ///< beyond 200 ppm from 1 and from what ground distances have here
  LikelyBlunder,   ///< one point misses by far more than the others
  PlaneNotFitted,  ///< a shift takes the place of the plane that was asked for
  OutsideControl,  ///< points of the job lie outside of the control hull
  LargeResidual,   ///< a horizontal residual beyond 5 cm, or a vertical one beyond 10 cm
};

struct WarningText {
  LocalizationWarning warning;
  std::string text;
};

struct LocalizationReport {
  LocalizationFit fit;
  double scalePpm = 0.0;  ///< scale minus 1
  /// What the scale is, less 1, where local distances are those on the ground: the mean of the
  /// points of the horizontal fit.
  std::optional<double> groundPpm;
  double rotationClockwiseRad = 0.0;
  int horizontalRedundancy = 0;
  int verticalRedundancy = 0;
  /// Standard deviation of a coordinate; empty without redundancy.
  std::optional<double> sigmaHorizontalM;
  std::optional<double> sigmaVerticalM;
  double rmsEastM = 0.0;
  double rmsNorthM = 0.0;
  double rmsElevationM = 0.0;
  std::vector<PointResidual> points;
  std::vector<WarningText> warnings;
};

/// The fit of `points` and everything about it. `jobPoints` are places on the grid that the
/// localization is to serve; they may be none. Warnings give lengths in `unit`.
LocalizationReport ReportLocalization(const ControlPoints& points, const LocalizationMethod& method,
                                      const std::vector<PlanePoint>& jobPoints = {},
                                      DistanceUnit unit = DistanceUnit::Metres);

}  // namespace tarvex
