#include "coordsys/geoid/geoid_grid.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "core/units/units.h"

namespace tarvex {
namespace {

constexpr int kTerms = 10;  // of a cubic in two variables
constexpr int kNodes = 12;  // of the four-by-four block without its corners

constexpr std::array<std::array<int, 2>, kNodes> kBlock = {{{0, -1},
                                                            {1, -1},
                                                            {-1, 0},
                                                            {0, 0},
                                                            {1, 0},
                                                            {2, 0},
                                                            {-1, 1},
                                                            {0, 1},
                                                            {1, 1},
                                                            {2, 1},
                                                            {0, 2},
                                                            {1, 2}}};

using TermRow = std::array<double, kTerms>;
using CubicMatrix = std::array<std::array<double, kNodes>, kTerms>;

TermRow Terms(double x, double y) {
  return {1, x, y, x * x, x * y, y * y, x * x * x, x * x * y, x * y * y, y * y * y};
}

// The weighted least-squares fit of a cubic to the twelve nodes, as the matrix that makes its terms
// from the nodes: the normal equations solved once for every node by elimination.
CubicMatrix FitCubic() {
  double normal[kTerms][kTerms + kNodes] = {};
  for (int k = 0; k < kNodes; ++k) {
    const auto [i, j] = kBlock[static_cast<std::size_t>(k)];
    const bool inner = (i == 0 || i == 1) && (j == 0 || j == 1);
    const double weight = inner ? 2.0 : 1.0;
    const TermRow row = Terms(i, j);
    for (std::size_t r = 0; r < kTerms; ++r) {
      for (std::size_t c = 0; c < kTerms; ++c) normal[r][c] += weight * row[r] * row[c];
      normal[r][kTerms + k] = weight * row[r];
    }
  }
  for (int pivot = 0; pivot < kTerms; ++pivot) {
    int best = pivot;
    for (int r = pivot; r < kTerms; ++r) {
      if (std::abs(normal[r][pivot]) > std::abs(normal[best][pivot])) best = r;
    }
    std::swap_ranges(std::begin(normal[pivot]), std::end(normal[pivot]), std::begin(normal[best]));
    const double scale = 1.0 / normal[pivot][pivot];
    for (double& value : normal[pivot]) value *= scale;
    for (int r = 0; r < kTerms; ++r) {
      if (r == pivot) continue;
      const double factor = normal[r][pivot];
      for (int c = 0; c < kTerms + kNodes; ++c) normal[r][c] -= factor * normal[pivot][c];
    }
  }
  CubicMatrix matrix;
  for (std::size_t r = 0; r < kTerms; ++r) {
    for (std::size_t k = 0; k < kNodes; ++k) matrix[r][k] = normal[r][kTerms + k];
  }
  return matrix;
}

const CubicMatrix& CubicFit() {
  static const CubicMatrix matrix = FitCubic();
  return matrix;
}

// The three weights of the parabola through nodes -1, 0 and 1 at `t`.
std::array<double, 3> ParabolaWeights(double t) {
  return {0.5 * t * (t - 1.0), 1.0 - t * t, 0.5 * t * (t + 1.0)};
}

// No geoid is further from its ellipsoid than 200 m; a NaN is not an undulation either.
bool IsUndulation(double value) {
  return std::abs(value) < 200.0;
}

}  // namespace

GridStatus GeoidGrid::Load(FileSystem& files, const std::string& path, GeoidGrid& grid) {
  FileBytes bytes;
  if (FileStatus status = LoadFileBytes(files, path, bytes); !status.ok()) {
    return FromFileStatus(status, path);
  }
  return Parse(std::move(bytes), path, grid);
}

GridStatus GeoidGrid::Parse(FileBytes bytes, const std::string& path, GeoidGrid& grid) {
  return ParseGeoidFile(std::move(bytes), path, grid.file_);
}

double GeoidGrid::Node(int column, int row) const noexcept {
  if (file_.aroundEarth) {
    // Beyond a pole the row is the same one on the other side of the earth.
    if (row < 0 || row >= file_.geometry.rows()) {
      row = row < 0 ? -row : 2 * (file_.geometry.rows() - 1) - row;
      column += file_.storedColumns / 2;
    }
    column = (column % file_.storedColumns + file_.storedColumns) % file_.storedColumns;
  }
  const std::size_t size = file_.layout.kind == GeoidNodeKind::Float64   ? 8
                           : file_.layout.kind == GeoidNodeKind::Float32 ? 4
                                                                         : 2;
  const char* const at = file_.bytes.view().data() + file_.layout.first +
                         file_.layout.rowStride * row + static_cast<std::ptrdiff_t>(size) * column;
  double value = 0.0;
  switch (file_.layout.kind) {
    case GeoidNodeKind::Float32:
      value = static_cast<double>(NumberAt<float>(at, file_.layout.order));
      break;
    case GeoidNodeKind::Float64:
      value = NumberAt<double>(at, file_.layout.order);
      break;
    case GeoidNodeKind::Pixel16:
      value = file_.layout.offsetM +
              file_.layout.scaleM * NumberAt<std::uint16_t>(at, file_.layout.order);
      break;
  }
  const bool marked =
      file_.layout.kind != GeoidNodeKind::Pixel16 && std::abs(value - file_.layout.noData) <= 1e-3;
  const bool hasValue = IsUndulation(value) && !marked;
  return hasValue ? value : std::numeric_limits<double>::quiet_NaN();
}

double GeoidGrid::BilinearAt(const GridCell& cell) const noexcept {
  double nodes[4];
  for (int corner = 0; corner < 4; ++corner) {
    nodes[corner] = Node(cell.column + corner % 2, cell.row + corner / 2);
  }
  const double value = Bilinear(cell, nodes[0], nodes[1], nodes[2], nodes[3]);
  if (!std::isnan(value)) return value;
  // A node without a value makes the sum a NaN, also one that has no part in it.
  for (int corner = 0; corner < 4; ++corner) {
    if (!HasWeight(cell, corner)) nodes[corner] = 0.0;
  }
  return Bilinear(cell, nodes[0], nodes[1], nodes[2], nodes[3]);
}

double GeoidGrid::BiquadraticAt(double column, double row) const noexcept {
  const int middleColumn =
      std::clamp(static_cast<int>(std::lround(column)), 1, file_.geometry.columns() - 2);
  const int middleRow =
      std::clamp(static_cast<int>(std::lround(row)), 1, file_.geometry.rows() - 2);
  const auto across = ParabolaWeights(column - middleColumn);
  const auto up = ParabolaWeights(row - middleRow);
  double value = 0.0;
  for (int j = 0; j < 3; ++j) {
    for (int i = 0; i < 3; ++i) {
      value += up[static_cast<std::size_t>(j)] * across[static_cast<std::size_t>(i)] *
               Node(middleColumn - 1 + i, middleRow - 1 + j);
    }
  }
  return value;
}

double GeoidGrid::CubicAt(const GridCell& cell) const noexcept {
  const TermRow terms = Terms(cell.across, cell.up);
  const CubicMatrix& fit = CubicFit();
  double value = 0.0;
  for (std::size_t k = 0; k < kNodes; ++k) {
    double weight = 0.0;
    for (std::size_t r = 0; r < kTerms; ++r) weight += terms[r] * fit[r][k];
    value += weight * Node(cell.column + kBlock[k][0], cell.row + kBlock[k][1]);
  }
  return value;
}

std::optional<double> GeoidGrid::Undulation(double latitudeRad,
                                            double longitudeRad) const noexcept {
  if (file_.bytes.view().empty() || !std::isfinite(longitudeRad)) return std::nullopt;
  const double latitude = latitudeRad * kDegreesPerRadian;
  // Whole turns are added until the longitude is right of the first column.
  double longitude = longitudeRad * kDegreesPerRadian - file_.geometry.firstX();
  longitude -= 360.0 * std::floor((longitude + 1e-9) / 360.0);
  longitude += file_.geometry.firstX();
  const auto cell = file_.geometry.CellAt(longitude, latitude);
  if (!cell) return std::nullopt;
  double undulation = 0.0;
  switch (file_.layout.between) {
    case GeoidInterpolation::Bilinear:
      undulation = BilinearAt(*cell);
      break;
    case GeoidInterpolation::Biquadratic:
      undulation = BiquadraticAt(cell->column + cell->across, cell->row + cell->up);
      break;
    case GeoidInterpolation::Cubic12:
      undulation = CubicAt(*cell);
      break;
  }
  if (!std::isfinite(undulation)) return std::nullopt;
  return undulation;
}

}  // namespace tarvex
