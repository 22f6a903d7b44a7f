#include "coordsys/grids/nadcon_grid.h"

#include <cmath>

#include "core/codec/byte_codec.h"

namespace tarvex {
namespace {

constexpr std::string_view kMark = "NADGRD";
constexpr std::size_t kMarkAt = 56;
constexpr std::size_t kHeader = 96;
constexpr double kDegreesPerSecond = 1.0 / 3600.0;
constexpr double kClosedDegrees = 1e-12;
constexpr int kMostPasses = 20;

// Records are as long as a row of the grid and one number more.
std::size_t RecordLength(const GridGeometry& geometry) {
  return sizeof(float) * (static_cast<std::size_t>(geometry.columns()) + 1);
}

GridStatus ParseOne(std::string_view bytes, const std::string& path, GridGeometry& geometry) {
  if (bytes.size() < kHeader) return {GridProblem::CutShort, path, "the header"};
  if (bytes.substr(kMarkAt, kMark.size()) != kMark) {
    return {GridProblem::NotThisFormat, path, "no \"NADGRD\" at byte 56"};
  }
  const char* at = bytes.data() + kMarkAt + 8;
  const auto integer = [at](int i) {
    return NumberAt<std::int32_t>(at + 4 * i, ByteOrder::Little);
  };
  const auto real = [at](int i) {
    return static_cast<double>(NumberAt<float>(at + 4 * i, ByteOrder::Little));
  };
  const auto made =
      MakeGridGeometry(real(3), real(5), real(4), real(6), integer(0), integer(1), 1e9);
  // The header is the first record, so that a record is at least as long.
  if (!made || RecordLength(*made) < kHeader)
    return {GridProblem::ImpossibleSize, path, "the header"};
  const std::size_t needed = RecordLength(*made) * (static_cast<std::size_t>(made->rows()) + 1);
  if (bytes.size() < needed) {
    return {GridProblem::CutShort, path,
            std::to_string(bytes.size()) + " of " + std::to_string(needed) + " bytes"};
  }
  geometry = *made;
  return {};
}

}  // namespace

GridStatus NadconGrid::Load(FileSystem& files, const std::string& base, NadconGrid& grid) {
  FileBytes las;
  FileBytes los;
  if (FileStatus status = LoadFileBytes(files, base + ".las", las); !status.ok()) {
    return FromFileStatus(status, base + ".las");
  }
  if (FileStatus status = LoadFileBytes(files, base + ".los", los); !status.ok()) {
    return FromFileStatus(status, base + ".los");
  }
  return Parse(std::move(las), std::move(los), base, grid);
}

GridStatus NadconGrid::Parse(FileBytes las, FileBytes los, const std::string& base,
                             NadconGrid& grid) {
  NadconGrid made;
  GridGeometry ofLos;
  if (GridStatus status = ParseOne(las.view(), base + ".las", made.geometry_); !status.ok()) {
    return status;
  }
  if (GridStatus status = ParseOne(los.view(), base + ".los", ofLos); !status.ok()) return status;
  if (!(made.geometry_ == ofLos)) return {GridProblem::PartsDiffer, base + ".los", base + ".las"};
  made.las_ = std::move(las);
  made.los_ = std::move(los);
  grid = std::move(made);
  return {};
}

double NadconGrid::Node(const FileBytes& bytes, int column, int row) const noexcept {
  const std::size_t at = RecordLength(geometry_) * (static_cast<std::size_t>(row) + 1) +
                         sizeof(float) * (static_cast<std::size_t>(column) + 1);
  return NumberAt<float>(bytes.view().data() + at, ByteOrder::Little);
}

double NadconGrid::Value(const FileBytes& bytes, const GridCell& cell) const noexcept {
  return Bilinear(cell, Node(bytes, cell.column, cell.row), Node(bytes, cell.column + 1, cell.row),
                  Node(bytes, cell.column, cell.row + 1),
                  Node(bytes, cell.column + 1, cell.row + 1));
}

std::optional<DegreePosition> NadconGrid::Shift(const DegreePosition& nad27) const noexcept {
  if (las_.view().empty()) return std::nullopt;
  const auto cell = geometry_.CellAround(nad27.longitude, nad27.latitude, 360.0);
  if (!cell) return std::nullopt;
  const DegreePosition shift = {.latitude = Value(las_, *cell) * kDegreesPerSecond,
                                .longitude = -Value(los_, *cell) * kDegreesPerSecond};
  // Damaged nodes: a shift larger than anywhere in North America is no shift.
  if (!(std::abs(shift.latitude) < 1.0 && std::abs(shift.longitude) < 1.0)) return std::nullopt;
  return shift;
}

std::optional<DegreePosition> NadconGrid::ToNad83(const DegreePosition& nad27) const noexcept {
  const auto shift = Shift(nad27);
  if (!shift) return std::nullopt;
  return DegreePosition{nad27.latitude + shift->latitude, nad27.longitude + shift->longitude};
}

std::optional<DegreePosition> NadconGrid::ToNad27(const DegreePosition& nad83) const noexcept {
  DegreePosition nad27 = nad83;
  for (int pass = 0; pass < kMostPasses; ++pass) {
    const auto shift = Shift(nad27);
    if (!shift) return std::nullopt;
    const double offLatitude = nad83.latitude - shift->latitude - nad27.latitude;
    const double offLongitude = nad83.longitude - shift->longitude - nad27.longitude;
    nad27.latitude += offLatitude;
    nad27.longitude += offLongitude;
    if (std::abs(offLatitude) + std::abs(offLongitude) < kClosedDegrees) return nad27;
  }
  return std::nullopt;
}

}  // namespace tarvex
