// Places at which a grid of any bytes is asked: its corners, its middle, between them and outside.
#pragma once

#include <cmath>
#include <cstdlib>
#include <limits>

#include "coordsys/grids/grid_geometry.h"

namespace tarvex {

template <typename Ask>
void AskAround(const GridGeometry& grid, const Ask& ask) {
  constexpr double kAlong[] = {-0.5, 0.0, 1e-9, 0.31, 0.5, 1.0, 1.5};
  for (const double x : kAlong) {
    for (const double y : kAlong) {
      ask(grid.firstX() + x * (grid.lastX() - grid.firstX()),
          grid.firstY() + y * (grid.lastY() - grid.firstY()));
    }
  }
  ask(std::numeric_limits<double>::quiet_NaN(), 0.0);
  ask(std::numeric_limits<double>::infinity(), 1e300);
}

inline void MustBeFinite(double value) {
  if (!std::isfinite(value)) std::abort();
}

}  // namespace tarvex
