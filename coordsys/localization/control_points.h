// What a localization is fitted to: control points in metres, once on the system's grid and once in
// local coordinates.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "coordsys/calculation_steps.h"

namespace tarvex {

struct ControlPoint {
  std::string name;
  GridMetres grid;   ///< from the GNSS position; the elevation after datum and geoid
  GridMetres local;  ///< as the site knows it
  /// How much longer a distance is on the ground than on the grid, from the projection's scale and
  /// the height at the point; nothing where the projection gives no scale.
  std::optional<double> groundScale = std::nullopt;
  bool useHorizontal = true;
  bool useVertical = true;
};

using ControlPoints = std::vector<ControlPoint>;

}  // namespace tarvex
