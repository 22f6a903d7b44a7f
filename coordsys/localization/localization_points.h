// The control points of a localization: each known both as a WGS84 position and in the job's local
// coordinates.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "coordsys/coordinates.h"

namespace tarvex {

struct LocalizationPoint {
  Geodetic gnss;         ///< WGS84
  double local_x = 0.0;  ///< local easting, in the job's distance unit, as y and z
  double local_y = 0.0;  ///< local northing
  double local_z = 0.0;  ///< local elevation
  double hrms = 0.0;     ///< of the GNSS position, in the unit it was observed in
  double vrms = 0.0;
  char use_horizontal = 'Y';  ///< 'Y': takes part in the horizontal fit; anything else does not
  char use_vertical = 'Y';
  std::string description;

  bool operator==(const LocalizationPoint&) const = default;
};

/// In order; a slot may be empty.
using LocalizationList = std::vector<std::optional<LocalizationPoint>>;

}  // namespace tarvex
