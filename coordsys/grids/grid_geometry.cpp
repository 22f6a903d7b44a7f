#include "coordsys/grids/grid_geometry.h"

namespace tarvex {

std::optional<GridGeometry> MakeGridGeometry(double firstX, double firstY, double stepX,
                                             double stepY, double columns, double rows,
                                             double mostNodes) {
  const bool countsFit = columns >= 2.0 && rows >= 2.0 && columns == std::floor(columns) &&
                         rows == std::floor(rows) && columns <= 1e6 && rows <= 1e6 &&
                         columns * rows <= mostNodes;
  const bool stepsFit =
      stepX > 0.0 && stepY > 0.0 && std::isfinite(1.0 / stepX) && std::isfinite(1.0 / stepY);
  if (!countsFit || !stepsFit) return std::nullopt;
  const GridGeometry geometry(firstX, firstY, stepX, stepY, static_cast<int>(columns),
                              static_cast<int>(rows));
  if (!std::isfinite(firstX) || !std::isfinite(firstY) || !std::isfinite(geometry.lastX()) ||
      !std::isfinite(geometry.lastY())) {
    return std::nullopt;
  }
  return geometry;
}

}  // namespace tarvex
