#include "coordsys/grids/ntv2_grid.h"

#include <cmath>
#include <limits>
#include <numbers>

#include "coordsys/projections/lanes.h"
#include "core/text/printable.h"
#include "core/text/text.h"
#include "core/units/units.h"

namespace tarvex {
namespace {

constexpr std::size_t kRecord = 16;  // an 8-byte keyword and an 8-byte value, and also a node
constexpr std::size_t kHeaderRecords = 11;
constexpr std::size_t kHeader = kRecord * kHeaderRecords;
constexpr double kSecondRad = kRadiansPerDegree / 3600.0;
constexpr double kTurnRad = 2.0 * std::numbers::pi;
constexpr int kMostPasses = 60;
constexpr double kClosedRad = 1e-13;
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr int kMostGrids = 10'000;

// The text of a record's value; whatever it holds goes to people.
std::string Field(const char* record) {
  const std::string_view value(record + 8, 8);
  return PrintableLine(WithoutOuterBlanks(value.substr(0, value.find('\0'))));
}

}  // namespace

// Walks the headers of a file.
class Ntv2Parser {
 public:
  Ntv2Parser(FileBytes bytes, const std::string& path)
      : held_(std::move(bytes)), bytes_(held_.view()), path_(path) {}

  GridStatus Parse(Ntv2Grid& grid) {
    Ntv2Grid made;
    int grids = 0;
    if (GridStatus status = Overview(made, grids); !status.ok()) return status;
    for (int i = 0; i < grids; ++i) {
      if (GridStatus status = SubGrid(made); !status.ok()) return status;
    }
    if (GridStatus status = End(); !status.ok()) return status;
    if (!Nest(made)) return Wrong(GridProblem::BadValue, "PARENT");
    grid = std::move(made);
    return {};
  }

 private:
  GridStatus Wrong(GridProblem problem, std::string detail) const {
    return {problem, path_, std::move(detail)};
  }
  GridStatus CutShort(std::size_t needed) const {
    return Wrong(GridProblem::CutShort, std::to_string(bytes_.size()) + " of at least " +
                                            std::to_string(needed) + " bytes");
  }

  const char* Record(int index) const {
    return bytes_.data() + at_ + kRecord * static_cast<std::size_t>(index);
  }
  std::int32_t Integer(int index) const {
    return NumberAt<std::int32_t>(Record(index) + 8, order_);
  }
  double Real(int index) const { return NumberAt<double>(Record(index) + 8, order_); }
  bool Has(int index, std::string_view keyword) const {
    return WithoutOuterBlanks(std::string_view(Record(index), 8)) == keyword;
  }

  GridStatus Overview(Ntv2Grid& grid, int& grids) {
    if (bytes_.size() < kRecord) return CutShort(kHeader);
    if (!Has(0, "NUM_OREC") || !FindByteOrder())
      return Wrong(GridProblem::NotThisFormat, "NUM_OREC");
    if (bytes_.size() < kHeader) return CutShort(kHeader);
    if (!Has(1, "NUM_SREC") || !Has(2, "NUM_FILE") || !Has(3, "GS_TYPE") ||
        Integer(1) != static_cast<int>(kHeaderRecords)) {
      return Wrong(GridProblem::NotThisFormat, "NUM_SREC");
    }
    grids = Integer(2);
    if (grids < 1 || grids > kMostGrids) return Wrong(GridProblem::ImpossibleSize, "NUM_FILE");
    unitRad_ = Unit(Field(Record(3)));
    if (unitRad_ == 0.0) return Wrong(GridProblem::BadValue, "GS_TYPE");
    grid.fromSystem_ = Field(Record(5));
    grid.toSystem_ = Field(Record(6));
    at_ = kHeader;
    return {};
  }

  bool FindByteOrder() {
    for (const ByteOrder order : {ByteOrder::Little, ByteOrder::Big}) {
      order_ = order;
      if (Integer(0) == static_cast<int>(kHeaderRecords)) return true;
    }
    return false;
  }

  static double Unit(std::string_view name) {
    if (name == "SECONDS") return kSecondRad;
    if (name == "MINUTES") return 60.0 * kSecondRad;
    return name == "DEGREES" ? kRadiansPerDegree : 0.0;
  }

  GridStatus SubGrid(Ntv2Grid& grid) {
    if (bytes_.size() < at_ + kHeader) return CutShort(at_ + kHeader);
    if (!Has(0, "SUB_NAME") || !Has(10, "GS_COUNT"))
      return Wrong(GridProblem::NotThisFormat, "SUB_NAME");
    Ntv2Grid::SubGrid sub;
    sub.name = Field(Record(0));
    sub.parent = Field(Record(1));
    const auto geometry = Geometry();
    if (!geometry) return Wrong(GridProblem::ImpossibleSize, "grid " + sub.name);
    sub.geometry = *geometry;
    sub.firstNode = grid.nodes_.size();
    const std::size_t nodes =
        static_cast<std::size_t>(geometry->columns()) * static_cast<std::size_t>(geometry->rows());
    at_ += kHeader;
    if (bytes_.size() < at_ + kRecord * nodes) return CutShort(at_ + kRecord * nodes);
    grid.grids_.push_back(std::move(sub));
    return Nodes(nodes, grid);
  }

  // Takes the shifts of the nodes at `at_`. A node is a north and a west shift with
  // their accuracies; both shifts 0 with an accuracy below 0 mean no shift.
  GridStatus Nodes(std::size_t count, Ntv2Grid& grid) {
    constexpr float kNone = std::numeric_limits<float>::quiet_NaN();
    grid.nodes_.reserve(grid.nodes_.size() + count);
    for (std::size_t i = 0; i < count; ++i, at_ += kRecord) {
      const char* const node = bytes_.data() + at_;
      const float north = NumberAt<float>(node, order_);
      const float west = NumberAt<float>(node + 4, order_);
      if (!std::isfinite(north) || !std::isfinite(west)) {
        return Wrong(GridProblem::BadValue, "byte " + std::to_string(at_));
      }
      const bool none = north == 0.0F && west == 0.0F && NumberAt<float>(node + 8, order_) < 0.0F;
      grid.nodes_.push_back(none ? Ntv2Grid::Node{kNone, kNone}
                                 : Ntv2Grid::Node{static_cast<float>(north * unitRad_),
                                                  static_cast<float>(west * unitRad_)});
    }
    return {};
  }

  // The bounds of the sub-grid header at `at_`, when they, the steps and the count agree.
  std::optional<GridGeometry> Geometry() const {
    const double south = Real(4);
    const double east = Real(6);
    const double stepLat = Real(8);
    const double stepLon = Real(9);
    const double rows = (Real(5) - south) / stepLat + 1.0;
    const double columns = (Real(7) - east) / stepLon + 1.0;
    const double wholeRows = std::round(rows);
    const double wholeColumns = std::round(columns);
    if (!(std::abs(rows - wholeRows) < 0.01 && std::abs(columns - wholeColumns) < 0.01) ||
        wholeRows * wholeColumns != static_cast<double>(Integer(10))) {
      return std::nullopt;
    }
    return MakeGridGeometry(east * unitRad_, south * unitRad_, stepLon * unitRad_,
                            stepLat * unitRad_, wholeColumns, wholeRows, 2147483647.0);
  }

  // After the last node comes nothing, or a record that begins with "END".
  GridStatus End() const {
    const std::string_view rest = bytes_.substr(at_);
    if (rest.empty()) return {};
    if (rest.size() < kRecord && std::string_view("END ").starts_with(rest.substr(0, 4))) {
      return CutShort(at_ + kRecord);
    }
    if (rest.starts_with("END")) return {};
    return Wrong(GridProblem::TooLong, "after the last grid");
  }

  // Hangs every grid into its parent, which may come before or after it in the file; false when a
  // parent is not there, or grids hold one another in a ring.
  static bool Nest(Ntv2Grid& grid) {
    for (int i = 0; i < static_cast<int>(grid.grids_.size()); ++i) {
      const std::string& parent = grid.grids_[static_cast<std::size_t>(i)].parent;
      if (parent == "NONE" || parent.empty()) {
        grid.roots_.push_back(i);
        continue;
      }
      const int holder = Find(grid, parent);
      if (holder < 0) return false;
      grid.grids_[static_cast<std::size_t>(holder)].children.push_back(i);
    }
    return ReachedFromRoots(grid) == grid.grids_.size();
  }

  // Every grid has one parent, so that each is reached once, and those of a ring never.
  static std::size_t ReachedFromRoots(const Ntv2Grid& grid) {
    std::vector<int> reached = grid.roots_;
    for (std::size_t i = 0; i < reached.size(); ++i) {
      const auto& children = grid.grids_[static_cast<std::size_t>(reached[i])].children;
      reached.insert(reached.end(), children.begin(), children.end());
    }
    return reached.size();
  }

  static int Find(const Ntv2Grid& grid, const std::string& name) {
    for (std::size_t i = 0; i < grid.grids_.size(); ++i) {
      if (grid.grids_[i].name == name) return static_cast<int>(i);
    }
    return -1;
  }

  FileBytes held_;
  std::string_view bytes_;
  const std::string& path_;
  ByteOrder order_ = ByteOrder::Little;
  double unitRad_ = 0.0;
  std::size_t at_ = 0;
};

GridStatus Ntv2Grid::Load(FileSystem& files, const std::string& path, Ntv2Grid& grid) {
  FileBytes bytes;
  if (FileStatus status = LoadFileBytes(files, path, bytes); !status.ok()) {
    return FromFileStatus(status, path);
  }
  return Parse(std::move(bytes), path, grid);
}

GridStatus Ntv2Grid::Parse(FileBytes bytes, const std::string& path, Ntv2Grid& grid) {
  return Ntv2Parser(std::move(bytes), path).Parse(grid);
}

Ntv2Part Ntv2Grid::Part(std::size_t index) const {
  const SubGrid& grid = grids_[index];
  const GridGeometry& west = grid.geometry;
  return {.name = grid.name,
          .parent = grid.parent == "NONE" ? "" : grid.parent,
          .geometry = {-west.lastX() * kDegreesPerRadian, west.firstY() * kDegreesPerRadian,
                       west.stepX() * kDegreesPerRadian, west.stepY() * kDegreesPerRadian,
                       west.columns(), west.rows()}};
}

const Ntv2Grid::SubGrid* Ntv2Grid::Densest(double latitude, double west,
                                           GridCell& cell) const noexcept {
  const SubGrid* found = nullptr;
  const std::vector<int>* candidates = &roots_;
  while (candidates != nullptr) {
    const std::vector<int>* inside = nullptr;
    for (const int index : *candidates) {
      const SubGrid& grid = grids_[static_cast<std::size_t>(index)];
      const auto at = grid.geometry.CellAround(west, latitude, kTurnRad);
      if (!at) continue;
      found = &grid;
      cell = *at;
      inside = &grid.children;
      break;
    }
    candidates = inside;
  }
  return found;
}

// Most files hold one grid, and most places lie in it as they are spelt.
inline bool Ntv2Grid::FindAround(double latitude, double west, Around& around) const noexcept {
  const SubGrid* grid = grids_.size() == 1 ? grids_.data() : nullptr;
  const auto inOnlyOne = grid ? grid->geometry.CellAt(west, latitude) : std::nullopt;
  if (inOnlyOne) {
    around.cell = *inOnlyOne;
  } else {
    grid = Densest(latitude, west, around.cell);
    if (grid == nullptr) return false;
  }
  const auto columns = static_cast<std::size_t>(grid->geometry.columns());
  around.south = nodes_.data() + grid->firstNode +
                 static_cast<std::size_t>(around.cell.row) * columns +
                 static_cast<std::size_t>(around.cell.column);
  around.north = around.south + columns;
  return true;
}

// Both shifts side by side, in the order of Bilinear.
inline Ntv2Grid::Shift Ntv2Grid::Interpolate(const GridCell& cell, const Node& se, const Node& sw,
                                             const Node& ne, const Node& nw) noexcept {
  const auto lanes = [](const Node& node) { return TwoLanes{node.north, node.west}; };
  const double across = cell.across;
  const TwoLanes south = lanes(se) + across * (lanes(sw) - lanes(se));
  const TwoLanes north = lanes(ne) + across * (lanes(nw) - lanes(ne));
  const TwoLanes shift = south + cell.up * (north - south);
  return {.northRad = shift[0], .westRad = shift[1]};
}

// A node without a shift makes the sum a NaN, also one that has no part in it.
Ntv2Grid::Shift Ntv2Grid::InterpolateBesideNone(const Around& around) noexcept {
  Node nodes[4] = {around.south[0], around.south[1], around.north[0], around.north[1]};
  for (int corner = 0; corner < 4; ++corner) {
    if (!HasWeight(around.cell, corner)) nodes[corner] = {0.0F, 0.0F};
  }
  return Interpolate(around.cell, nodes[0], nodes[1], nodes[2], nodes[3]);
}

inline GridShiftResult Ntv2Grid::ShiftAt(double latitude, double west,
                                         Shift& shift) const noexcept {
  Around around;
  if (!FindAround(latitude, west, around)) return GridShiftResult::Outside;
  shift =
      Interpolate(around.cell, around.south[0], around.south[1], around.north[0], around.north[1]);
  if (!std::isnan(shift.northRad)) return GridShiftResult::Done;
  shift = InterpolateBesideNone(around);
  return std::isnan(shift.northRad) ? GridShiftResult::NoCorrection : GridShiftResult::Done;
}

// Each pass takes the shift at the place that the last one led to. Shifts change slowly: a change
// of the place shrinks by the same small factor every pass, which tells when the next would be
// nothing.
inline GridShiftResult Ntv2Grid::InverseAt(double& latitude, double& west) const noexcept {
  double fromLatitude = latitude;
  double fromWest = west;
  double lastChange = 0.0;
  for (int pass = 0; pass < kMostPasses; ++pass) {
    Shift shift;
    const GridShiftResult result = ShiftAt(fromLatitude, fromWest, shift);
    if (result != GridShiftResult::Done) return result;
    const double offLatitude = latitude - shift.northRad - fromLatitude;
    const double offWest = west - shift.westRad - fromWest;
    fromLatitude += offLatitude;
    fromWest += offWest;
    const double change = std::abs(offLatitude) + std::abs(offWest);
    if (change < kClosedRad || change * change < kClosedRad * lastChange) {
      latitude = fromLatitude;
      west = fromWest;
      return GridShiftResult::Done;
    }
    lastChange = change;
  }
  return GridShiftResult::Outside;
}

GridShiftResult Ntv2Grid::Forward(Geodetic& position) const noexcept {
  Shift shift;
  const GridShiftResult result = ShiftAt(position.latitudeRad, -position.longitudeRad, shift);
  if (result != GridShiftResult::Done) return result;
  position.latitudeRad += shift.northRad;
  position.longitudeRad -= shift.westRad;
  return result;
}

GridShiftResult Ntv2Grid::Inverse(Geodetic& position) const noexcept {
  double latitude = position.latitudeRad;
  double west = -position.longitudeRad;
  const GridShiftResult result = InverseAt(latitude, west);
  if (result != GridShiftResult::Done) return result;
  position.latitudeRad = latitude;
  position.longitudeRad = -west;
  return result;
}

std::size_t Ntv2Grid::Forward(std::span<double> latitudeRad,
                              std::span<double> longitudeRad) const noexcept {
  std::size_t refused = 0;
  for (std::size_t i = 0; i < latitudeRad.size(); ++i) {
    Shift shift;
    if (ShiftAt(latitudeRad[i], -longitudeRad[i], shift) != GridShiftResult::Done) {
      shift = {kNaN, kNaN};
      ++refused;
    }
    latitudeRad[i] += shift.northRad;
    longitudeRad[i] -= shift.westRad;
  }
  return refused;
}

std::size_t Ntv2Grid::Inverse(std::span<double> latitudeRad,
                              std::span<double> longitudeRad) const noexcept {
  std::size_t refused = 0;
  for (std::size_t i = 0; i < latitudeRad.size(); ++i) {
    double latitude = latitudeRad[i];
    double west = -longitudeRad[i];
    if (InverseAt(latitude, west) != GridShiftResult::Done) {
      latitude = west = kNaN;
      ++refused;
    }
    latitudeRad[i] = latitude;
    longitudeRad[i] = -west;
  }
  return refused;
}

}  // namespace tarvex
