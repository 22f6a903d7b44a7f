#include "coordsys/grids/gr3df97a_grid.h"

#include <array>
#include <cmath>
#include <vector>

#include "core/codec/byte_codec.h"
#include "core/text/number_text.h"
#include "core/text/text.h"
#include "core/units/units.h"

namespace tarvex {
namespace {

// mark, version, nodes along longitude and latitude, first longitude and latitude, steps (degrees);
// then a node at a time, longitude fastest from the south-west: three translations and a code.
constexpr std::string_view kMark = "GR3B";
constexpr std::uint32_t kVersion = 1;
constexpr std::size_t kHeader = 44;
constexpr std::size_t kNode = 3 * sizeof(std::int32_t) + 1;
constexpr double kMetresPerMicrometre = 1e-6;

std::vector<std::string_view> Words(std::string_view line) {
  std::vector<std::string_view> words;
  for (line = WithoutOuterBlanks(line); !line.empty(); line = WithoutLeadingBlanks(line)) {
    const std::size_t end = line.find_first_of(" \t");
    words.push_back(line.substr(0, end));
    if (end == std::string_view::npos) break;
    line.remove_prefix(end);
  }
  return words;
}

// Reads the agency's text.
class Gr3df97aText {
 public:
  Gr3df97aText(std::string_view text, const std::string& path) : rest_(text), path_(path) {}

  GridStatus Pack(std::string& packed) {
    while (const auto line = TakeLine(rest_)) {
      ++line_;
      const auto words = Words(*line);
      if (words.empty()) continue;
      if (words[0] == "GR3D1") {
        if (!Bounds(words)) return Wrong(GridProblem::ImpossibleSize);
      } else if (!words[0].starts_with("GR3D")) {
        if (nodes_.empty()) return Wrong(GridProblem::NotThisFormat);
        if (!Node(words)) return Wrong(GridProblem::BadValue);
      }
    }
    if (nodes_.empty()) return Wrong(GridProblem::NotThisFormat);
    if (seen_ != nodes_.size()) return Wrong(GridProblem::CutShort);
    Write(packed);
    return {};
  }

 private:
  struct NodeValues {
    std::array<std::int32_t, 3> micrometres;
    std::uint8_t code;
    bool seen = false;
  };

  GridStatus Wrong(GridProblem problem) const {
    return {problem, path_, "line " + std::to_string(line_)};
  }

  // GR3D1 lowest and highest longitude, lowest and highest latitude, steps of both.
  bool Bounds(const std::vector<std::string_view>& words) {
    if (words.size() < 7 || !nodes_.empty()) return false;
    double v[6];
    for (std::size_t i = 0; i < 6; ++i) {
      const auto number = ParseNumber(words[i + 1]);
      if (!number) return false;
      v[i] = *number;
    }
    const auto made = MakeGridGeometry(v[0], v[2], v[4], v[5], std::round((v[1] - v[0]) / v[4]) + 1,
                                       std::round((v[3] - v[2]) / v[5]) + 1, 4e6);
    if (!made || made->columns() > 65535 || made->rows() > 65535) return false;
    geometry_ = *made;
    nodes_.resize(static_cast<std::size_t>(geometry_.columns()) *
                  static_cast<std::size_t>(geometry_.rows()));
    return true;
  }

  bool Node(const std::vector<std::string_view>& words) {
    if (words.size() < 7) return false;
    double v[6];
    for (std::size_t i = 0; i < 6; ++i) {
      const auto number = ParseNumber(words[i + 1]);
      if (!number || std::abs(*number) > 2000.0) return false;
      v[i] = *number;
    }
    const auto cell = geometry_.CellAt(v[0], v[1]);
    const bool isCode = v[5] >= 0.0 && v[5] <= 255.0;
    if (!cell || !isCode) return false;
    const auto column = static_cast<std::size_t>(cell->column + std::lround(cell->across));
    const auto row = static_cast<std::size_t>(cell->row + std::lround(cell->up));
    NodeValues& node = nodes_[row * static_cast<std::size_t>(geometry_.columns()) + column];
    if (node.seen) return false;
    for (std::size_t i = 0; i < 3; ++i) {
      node.micrometres[i] = static_cast<std::int32_t>(std::lround(v[2 + i] / kMetresPerMicrometre));
    }
    node.code = static_cast<std::uint8_t>(v[5]);
    node.seen = true;
    ++seen_;
    return true;
  }

  void Write(std::string& packed) const {
    packed.assign(kMark);
    AppendNumber(packed, kVersion);
    AppendNumber(packed, static_cast<std::uint16_t>(geometry_.columns()));
    AppendNumber(packed, static_cast<std::uint16_t>(geometry_.rows()));
    for (const double value :
         {geometry_.firstX(), geometry_.firstY(), geometry_.stepX(), geometry_.stepY()}) {
      AppendNumber(packed, value);
    }
    for (const NodeValues& node : nodes_) {
      for (const std::int32_t value : node.micrometres) AppendNumber(packed, value);
      AppendNumber(packed, node.code);
    }
  }

  std::string_view rest_;
  const std::string& path_;
  int line_ = 0;
  GridGeometry geometry_;
  std::vector<NodeValues> nodes_;
  std::size_t seen_ = 0;
};

}  // namespace

GridStatus PackGr3df97a(std::string_view text, const std::string& path, std::string& packed) {
  return Gr3df97aText(text, path).Pack(packed);
}

GridStatus Gr3df97aGrid::Load(FileSystem& files, const std::string& path, Gr3df97aGrid& grid) {
  FileBytes bytes;
  if (FileStatus status = LoadFileBytes(files, path, bytes); !status.ok()) {
    return FromFileStatus(status, path);
  }
  return Parse(std::move(bytes), path, grid);
}

GridStatus Gr3df97aGrid::Parse(FileBytes bytes, const std::string& path, Gr3df97aGrid& grid) {
  const std::string_view view = bytes.view();
  if (!view.starts_with(kMark)) {
    return {kMark.starts_with(view) ? GridProblem::CutShort : GridProblem::NotThisFormat, path,
            "no \"GR3B\" at the start"};
  }
  if (view.size() < kHeader) return {GridProblem::CutShort, path, "the header"};
  const char* at = view.data();
  if (NumberAt<std::uint32_t>(at + 4, ByteOrder::Little) != kVersion) {
    return {GridProblem::NotThisFormat, path, "version"};
  }
  const auto real = [at](int i) { return NumberAt<double>(at + 12 + 8 * i, ByteOrder::Little); };
  const auto geometry = MakeGridGeometry(real(0), real(1), real(2), real(3),
                                         NumberAt<std::uint16_t>(at + 8, ByteOrder::Little),
                                         NumberAt<std::uint16_t>(at + 10, ByteOrder::Little), 1e9);
  if (!geometry) return {GridProblem::ImpossibleSize, path, "the header"};
  const std::size_t needed = kHeader + kNode * static_cast<std::size_t>(geometry->columns()) *
                                           static_cast<std::size_t>(geometry->rows());
  if (view.size() != needed) {
    return {view.size() < needed ? GridProblem::CutShort : GridProblem::TooLong, path,
            std::to_string(view.size()) + " of " + std::to_string(needed) + " bytes"};
  }
  grid.bytes_ = std::move(bytes);
  grid.geometry_ = *geometry;
  return {};
}

double Gr3df97aGrid::Micrometres(int column, int row, int axis) const noexcept {
  const std::size_t node =
      static_cast<std::size_t>(row) * static_cast<std::size_t>(geometry_.columns()) +
      static_cast<std::size_t>(column);
  return NumberAt<std::int32_t>(bytes_.view().data() + kHeader + kNode * node + 4 * axis,
                                ByteOrder::Little);
}

std::optional<Geocentric> Gr3df97aGrid::Translation(double latitudeRad,
                                                    double longitudeRad) const noexcept {
  if (bytes_.view().empty()) return std::nullopt;
  const auto cell =
      geometry_.CellAt(longitudeRad * kDegreesPerRadian, latitudeRad * kDegreesPerRadian);
  if (!cell) return std::nullopt;
  double t[3];
  for (int axis = 0; axis < 3; ++axis) {
    t[axis] = kMetresPerMicrometre * Bilinear(*cell, Micrometres(cell->column, cell->row, axis),
                                              Micrometres(cell->column + 1, cell->row, axis),
                                              Micrometres(cell->column, cell->row + 1, axis),
                                              Micrometres(cell->column + 1, cell->row + 1, axis));
  }
  return Geocentric{t[0], t[1], t[2]};
}

}  // namespace tarvex
