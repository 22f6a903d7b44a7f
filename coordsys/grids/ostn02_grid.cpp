#include "coordsys/grids/ostn02_grid.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include "coordsys/coordsys_texts.h"
#include "core/codec/byte_codec.h"
#include "core/text/number_text.h"
#include "core/text/string_table.h"
#include "core/text/text.h"

namespace tarvex {
namespace {

// mark, version, columns, rows, metres between nodes, base in millimetres, 12 zero bytes; then a
// 16-bit number of millimetres above the base a node, easting fastest from the south-west.
constexpr std::string_view kMark = "OSG2";
constexpr std::uint32_t kVersion = 1;
constexpr std::size_t kHeader = 32;
constexpr std::uint16_t kNoData = 65535;
constexpr double kMetresPerMillimetre = 0.001;
constexpr std::size_t kShowEvery = 8192;

constexpr std::uint16_t kColumns = 701;
constexpr std::uint16_t kRows = 1251;
constexpr std::uint32_t kCell = 1000;
constexpr std::int32_t kBaseEast = 86000;
constexpr std::int32_t kBaseNorth = -82000;

std::string Packed(std::int32_t base, const std::vector<std::uint16_t>& nodes) {
  std::string out(kMark);
  out.reserve(kHeader + 2 * nodes.size());
  AppendNumber(out, kVersion);
  AppendNumber(out, kColumns);
  AppendNumber(out, kRows);
  AppendNumber(out, kCell);
  AppendNumber(out, base);
  out.append(kHeader - out.size(), '\0');
  for (const std::uint16_t node : nodes) AppendNumber(out, node);
  return out;
}

// The columns of a data line; nothing when one is missing or no number.
bool Columns(std::string_view line, double (&columns)[7]) {
  for (double& column : columns) {
    const std::size_t comma = line.find(',');
    const auto number = ParseNumber(line.substr(0, comma));
    if (!number) return false;
    column = *number;
    line = comma == std::string_view::npos ? std::string_view() : line.substr(comma + 1);
  }
  return true;
}

bool Encode(double shiftM, std::int32_t base, std::uint16_t& node) {
  const double above = std::round(shiftM / kMetresPerMillimetre) - base;
  if (!(above >= 0.0 && above < kNoData)) return false;
  node = static_cast<std::uint16_t>(above);
  return true;
}

bool IsNode(double coordinate, int nodes) {
  return coordinate >= 0.0 && coordinate <= static_cast<double>(kCell) * (nodes - 1) &&
         std::fmod(coordinate, kCell) == 0.0;
}

}  // namespace

GridStatus PackOstn02(std::string_view text, const std::string& path, LoadProgress* progress,
                      std::string& packedX, std::string& packedY) {
  const std::size_t nodes = static_cast<std::size_t>(kColumns) * kRows;
  std::vector<std::uint16_t> east(nodes, kNoData);
  std::vector<std::uint16_t> north(nodes, kNoData);
  std::size_t lineNumber = 0;
  std::size_t seen = 0;
  const auto wrong = [&](GridProblem problem) {
    return GridStatus{problem, path, "line " + std::to_string(lineNumber)};
  };
  while (const auto line = TakeLine(text)) {
    ++lineNumber;
    double c[7];
    if (!Columns(*line, c)) {
      if (lineNumber == 1 || WithoutOuterBlanks(*line).empty()) continue;  // a heading, the end
      return wrong(GridProblem::BadValue);
    }
    if (!IsNode(c[1], kColumns) || !IsNode(c[2], kRows)) return wrong(GridProblem::BadValue);
    ++seen;
    if (progress && seen % kShowEvery == 0) {
      progress->Show(Strings().Text(kTextPackingGrid), std::min(seen, nodes), nodes);
    }
    if (c[6] == 0.0) continue;
    const auto at =
        static_cast<std::size_t>(c[2] / kCell) * kColumns + static_cast<std::size_t>(c[1] / kCell);
    if (!Encode(c[3], kBaseEast, east[at]) || !Encode(c[4], kBaseNorth, north[at])) {
      return wrong(GridProblem::BadValue);
    }
  }
  if (seen == 0) return wrong(GridProblem::NotThisFormat);
  if (seen != nodes) return wrong(seen < nodes ? GridProblem::CutShort : GridProblem::TooLong);
  packedX = Packed(kBaseEast, east);
  packedY = Packed(kBaseNorth, north);
  return {};
}

GridStatus Ostn02Part::Load(FileSystem& files, const std::string& path, Ostn02Part& part) {
  FileBytes bytes;
  if (FileStatus status = LoadFileBytes(files, path, bytes); !status.ok()) {
    return FromFileStatus(status, path);
  }
  return Parse(std::move(bytes), path, part);
}

GridStatus Ostn02Part::Parse(FileBytes bytes, const std::string& path, Ostn02Part& part) {
  const std::string_view view = bytes.view();
  if (!view.starts_with(kMark)) {
    return {kMark.starts_with(view) ? GridProblem::CutShort : GridProblem::NotThisFormat, path,
            "no \"OSG2\" at the start"};
  }
  if (view.size() < kHeader) return {GridProblem::CutShort, path, "the header"};
  const char* at = view.data();
  if (NumberAt<std::uint32_t>(at + 4, ByteOrder::Little) != kVersion) {
    return {GridProblem::NotThisFormat, path, "version"};
  }
  const double cell = NumberAt<std::uint32_t>(at + 12, ByteOrder::Little);
  const auto geometry =
      MakeGridGeometry(0.0, 0.0, cell, cell, NumberAt<std::uint16_t>(at + 8, ByteOrder::Little),
                       NumberAt<std::uint16_t>(at + 10, ByteOrder::Little), 1e9);
  if (!geometry) return {GridProblem::ImpossibleSize, path, "the header"};
  const std::size_t needed = kHeader + 2 * static_cast<std::size_t>(geometry->columns()) *
                                           static_cast<std::size_t>(geometry->rows());
  if (view.size() != needed) {
    return {view.size() < needed ? GridProblem::CutShort : GridProblem::TooLong, path,
            std::to_string(view.size()) + " of " + std::to_string(needed) + " bytes"};
  }
  part.baseMm_ = NumberAt<std::int32_t>(at + 16, ByteOrder::Little);
  part.geometry_ = *geometry;
  part.bytes_ = std::move(bytes);
  return {};
}

std::uint16_t Ostn02Part::Node(int column, int row) const noexcept {
  const std::size_t node =
      static_cast<std::size_t>(row) * static_cast<std::size_t>(geometry_.columns()) +
      static_cast<std::size_t>(column);
  return NumberAt<std::uint16_t>(bytes_.view().data() + kHeader + 2 * node, ByteOrder::Little);
}

SurfaceValue Ostn02Part::At(double eastingM, double northingM) const noexcept {
  if (bytes_.view().empty()) return {};
  const auto cell = geometry_.CellAt(eastingM, northingM);
  if (!cell) return {};
  std::uint16_t nodes[4] = {};
  for (int corner = 0; corner < 4; ++corner) {
    if (!HasWeight(*cell, corner)) continue;
    nodes[corner] = Node(cell->column + corner % 2, cell->row + corner / 2);
    if (nodes[corner] == kNoData) return {SurfaceAnswer::NoCorrection, 0.0};
  }
  const double mm = Bilinear(*cell, nodes[0], nodes[1], nodes[2], nodes[3]) + baseMm_;
  return {SurfaceAnswer::Value, mm * kMetresPerMillimetre};
}

}  // namespace tarvex
