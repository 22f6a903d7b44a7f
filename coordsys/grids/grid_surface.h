// One value a node over a regular grid: the ".grd" shift grids (docs/formats/grids.md).
//
// Two forms are read. The text form has six header lines (lowest first and second coordinate,
// highest first and second, intervals along the second, intervals along the first) and then the
// node values, first coordinate fastest, from the lowest corner. The binary form is the public
// "DSBB" surface grid of little-endian floats. Values are kept as 32-bit floats: a shift of 100 m
// to 4e-6 m.
#pragma once

#include <string>
#include <vector>

#include "coordsys/grids/grid_geometry.h"
#include "coordsys/grids/grid_status.h"
#include "coordsys/grids/load_progress.h"

namespace tarvex {

enum class SurfaceAnswer {
  Value,
  NoCorrection,  ///< a node used here holds 999.999: no correction is to be applied
  NoValue,       ///< a node used here holds no value
  Outside,       ///< the point is outside of the grid
};

struct SurfaceValue {
  SurfaceAnswer answer = SurfaceAnswer::Outside;
  double value = 0.0;  ///< 0 unless the answer is Value
};

class GridSurface {
 public:
  static GridStatus Load(FileSystem& files, const std::string& path, LoadProgress* progress,
                         GridSurface& surface);
  /// `path` is only for the error's text.
  static GridStatus Parse(std::string_view bytes, const std::string& path, LoadProgress* progress,
                          GridSurface& surface);

  const GridGeometry& geometry() const { return geometry_; }

  /// Bilinear between the four nodes around the point.
  SurfaceValue At(double first, double second) const noexcept;
  /// Cubic convolution over the sixteen nodes around the point; Outside where they do not all
  /// exist.
  SurfaceValue CubicAt(double first, double second) const noexcept;

 private:
  friend class GridSurfaceParser;

  float Node(int column, int row) const noexcept {
    return nodes_[static_cast<std::size_t>(row) * static_cast<std::size_t>(geometry_.columns()) +
                  static_cast<std::size_t>(column)];
  }

  GridGeometry geometry_;
  std::vector<float> nodes_;
};

}  // namespace tarvex
