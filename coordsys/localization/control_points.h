// What a localization is fitted to: control points in metres, once on the system's grid and once in
// local coordinates.
#pragma once

#include <string>
#include <vector>

#include "coordsys/calculation_steps.h"

namespace tarvex {

struct ControlPoint {
  std::string name;
  GridMetres grid;   ///< from the GNSS position; the elevation after datum and geoid
  GridMetres local;  ///< as the site knows it
  bool use_horizontal = true;
  bool use_vertical = true;
};

using ControlPoints = std::vector<ControlPoint>;

}  // namespace tarvex
