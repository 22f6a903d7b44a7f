// Where the nodes of a regular grid lie, and how values between nodes are interpolated. How the
// nodes are stored is the business of each format.
//
// The first coordinate grows with the column, the second with the row; both may be in any unit.
#pragma once

#include <cmath>
#include <optional>

namespace tarvex {

/// A cell by its lowest column and row, and the place in it: 0 to 1 along each coordinate.
struct GridCell {
  int column = 0;
  int row = 0;
  double across = 0.0;
  double up = 0.0;
};

class GridGeometry {
 public:
  GridGeometry() = default;
  /// Steps and counts as MakeGridGeometry accepts them.
  GridGeometry(double firstX, double firstY, double stepX, double stepY, int columns, int rows)
      : firstX_(firstX),
        firstY_(firstY),
        stepX_(stepX),
        stepY_(stepY),
        perX_(1.0 / stepX),
        perY_(1.0 / stepY),
        columns_(columns),
        rows_(rows) {}

  double firstX() const { return firstX_; }
  double firstY() const { return firstY_; }
  double lastX() const { return firstX_ + stepX_ * (columns_ - 1); }
  double lastY() const { return firstY_ + stepY_ * (rows_ - 1); }
  double stepX() const { return stepX_; }
  double stepY() const { return stepY_; }
  int columns() const { return columns_; }
  int rows() const { return rows_; }

  /// The cell that holds the point; the outer edges belong to the grid, and so does a point within
  /// a millionth of a cell of them. Nothing outside and for a NaN.
  std::optional<GridCell> CellAt(double x, double y) const noexcept {
    const double u = (x - firstX_) * perX_;
    const double v = (y - firstY_) * perY_;
    if (!(u >= -kEdge && v >= -kEdge && u <= columns_ - 1 + kEdge && v <= rows_ - 1 + kEdge)) {
      return std::nullopt;
    }
    const int column = CellIndex(u, columns_);
    const int row = CellIndex(v, rows_);
    return GridCell{column, row, u - column, v - row};
  }

  /// The same for a first coordinate that is a longitude: a place that the grid holds one turn
  /// further east or west (grids reach over the 180th meridian) is found too.
  std::optional<GridCell> CellAround(double x, double y, double turn) const noexcept {
    const auto cell = CellAt(x, y);
    if (cell) return cell;
    return CellAt(x < firstX_ ? x + turn : x - turn, y);
  }

  bool operator==(const GridGeometry&) const = default;

 private:
  static constexpr double kEdge = 1e-6;

  static int CellIndex(double along, int nodes) noexcept {
    const int cell = static_cast<int>(along);
    if (cell > nodes - 2) return nodes - 2;
    return cell < 0 ? 0 : cell;
  }

  double firstX_ = 0.0;
  double firstY_ = 0.0;
  double stepX_ = 1.0;
  double stepY_ = 1.0;
  double perX_ = 1.0;
  double perY_ = 1.0;
  int columns_ = 2;
  int rows_ = 2;
};

/// The geometry when it is one that a grid can have: finite bounds, steps above zero, at least two
/// nodes along each coordinate, and at most `mostNodes` of them altogether.
std::optional<GridGeometry> MakeGridGeometry(double firstX, double firstY, double stepX,
                                             double stepY, double columns, double rows,
                                             double mostNodes);

/// The bilinear value at a place in a cell whose corners are given south-west, south-east,
/// north-west, north-east.
constexpr double Bilinear(const GridCell& at, double sw, double se, double nw, double ne) {
  const double south = sw + at.across * (se - sw);
  const double north = nw + at.across * (ne - nw);
  return south + at.up * (north - south);
}

/// Whether a corner (0 south-west, 1 south-east, 2 north-west, 3 north-east) has a part in the
/// bilinear value at a place: on a node the other three have none, nor a rounding's worth.
constexpr bool HasWeight(const GridCell& at, int corner) {
  const double across = (corner & 1) != 0 ? at.across : 1.0 - at.across;
  const double up = (corner & 2) != 0 ? at.up : 1.0 - at.up;
  constexpr double kRounding = 1e-9;
  const double weight = across * up;
  return weight > kRounding || weight < -kRounding;
}

/// The four weights of the cubic convolution (Catmull-Rom) through nodes -1, 0, 1 and 2 at `t`.
struct CubicWeights {
  explicit constexpr CubicWeights(double t)
      : w{t * (-0.5 + t * (1.0 - 0.5 * t)), 1.0 + t * t * (1.5 * t - 2.5),
          t * (0.5 + t * (2.0 - 1.5 * t)), t * t * (0.5 * t - 0.5)} {}
  double w[4];
};

}  // namespace tarvex
