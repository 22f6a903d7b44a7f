// The control points of a localization: each known both as a WGS84 position and in the job's local
// coordinates.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "coordsys/coordinates.h"

namespace tarvex {

struct LocalizationPoint {
  Geodetic gnss;        ///< WGS84
  double localX = 0.0;  ///< local easting, in the job's distance unit, as y and z
  double localY = 0.0;  ///< local northing
  double localZ = 0.0;  ///< local elevation
  double hrms = 0.0;    ///< of the GNSS position, in the unit it was observed in
  double vrms = 0.0;
  char useHorizontal = 'Y';  ///< 'Y': takes part in the horizontal fit; anything else does not
  char useVertical = 'Y';
  std::string description;

  bool operator==(const LocalizationPoint&) const = default;
};

/// In order; a slot may be empty.
using LocalizationList = std::vector<std::optional<LocalizationPoint>>;

}  // namespace tarvex
