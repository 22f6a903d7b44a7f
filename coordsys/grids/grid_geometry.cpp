#include "coordsys/grids/grid_geometry.h"

namespace tarvex {

std::optional<GridGeometry> MakeGridGeometry(double first_x, double first_y, double step_x,
                                             double step_y, double columns, double rows,
                                             double most_nodes) {
  const bool counts_fit = columns >= 2.0 && rows >= 2.0 && columns == std::floor(columns) &&
                          rows == std::floor(rows) && columns <= 1e6 && rows <= 1e6 &&
                          columns * rows <= most_nodes;
  const bool steps_fit =
      step_x > 0.0 && step_y > 0.0 && std::isfinite(1.0 / step_x) && std::isfinite(1.0 / step_y);
  if (!counts_fit || !steps_fit) return std::nullopt;
  const GridGeometry geometry(first_x, first_y, step_x, step_y, static_cast<int>(columns),
                              static_cast<int>(rows));
  if (!std::isfinite(first_x) || !std::isfinite(first_y) || !std::isfinite(geometry.last_x()) ||
      !std::isfinite(geometry.last_y())) {
    return std::nullopt;
  }
  return geometry;
}

}  // namespace tarvex
