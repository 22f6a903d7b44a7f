#include "coordsys/grids/grid_surface.h"

#include <charconv>
#include <cmath>

#include "coordsys/coordsys_texts.h"
#include "core/codec/byte_codec.h"
#include "core/text/number_text.h"
#include "core/text/string_table.h"
#include "core/text/text.h"
#include "core/units/no_value.h"
#include "platform/file_bytes.h"

namespace tarvex {
namespace {

constexpr float kNoCorrection = 999.999F;
constexpr std::size_t kHeaderLines = 6;
constexpr std::size_t kHeaderLineLength = 128;
constexpr std::string_view kBinaryMark = "DSBB";
constexpr std::size_t kBinaryHeader = 56;
constexpr std::size_t kShowEvery = 8192;

bool StartsNumber(std::string_view text) {
  text = WithoutLeadingBlanks(text);
  if (!text.empty() && (text[0] == '-' || text[0] == '+')) text.remove_prefix(1);
  if (!text.empty() && text[0] == '.') text.remove_prefix(1);
  return !text.empty() && IsDigit(text[0]);
}

constexpr bool IsSpace(char c) {
  return c == ' ' || c == '\t' || c == '\n' || c == '\r';
}

// Worst of the marks that a set of nodes holds.
class NodeMarks {
 public:
  void See(float node) {
    if (node == kNoCorrection) noCorrection_ = true;
    if (IsNoValue(static_cast<double>(node))) noValue_ = true;
  }
  SurfaceAnswer answer() const {
    if (noCorrection_) return SurfaceAnswer::NoCorrection;
    return noValue_ ? SurfaceAnswer::NoValue : SurfaceAnswer::Value;
  }

 private:
  bool noCorrection_ = false;
  bool noValue_ = false;
};

}  // namespace

// Reads either form; keeps the place for the error's text.
class GridSurfaceParser {
 public:
  GridSurfaceParser(std::string_view bytes, const std::string& path, LoadProgress* progress)
      : rest_(bytes), path_(path), progress_(progress) {}

  GridStatus Parse(GridSurface& surface) {
    GridSurface made;
    GridStatus status = rest_.starts_with(kBinaryMark) ? ParseBinary(made) : ParseText(made);
    if (status.ok()) surface = std::move(made);
    return status;
  }

 private:
  GridStatus Wrong(GridProblem problem, std::string detail) const {
    return {problem, path_, std::move(detail)};
  }
  std::string Line() const { return "line " + std::to_string(line_); }

  GridStatus ParseText(GridSurface& surface) {
    double header[kHeaderLines];
    for (double& value : header) {
      if (GridStatus status = HeaderLine(value); !status.ok()) return status;
    }
    const double intervalsSecond = header[4];
    const double intervalsFirst = header[5];
    // Every value takes two bytes at least, but for the last one.
    const double most = 0.5 * static_cast<double>(rest_.size() + 1);
    const auto geometry =
        MakeGridGeometry(header[0], header[1], (header[2] - header[0]) / intervalsFirst,
                         (header[3] - header[1]) / intervalsSecond, intervalsFirst + 1.0,
                         intervalsSecond + 1.0, 1e9);
    if (!geometry) return Wrong(GridProblem::ImpossibleSize, "lines 1 to 6");
    surface.geometry_ = *geometry;
    const std::size_t nodes =
        static_cast<std::size_t>(geometry->columns()) * static_cast<std::size_t>(geometry->rows());
    if (static_cast<double>(nodes) > most) return CutShort(0, nodes);
    return Values(surface.nodes_, nodes);
  }

  GridStatus HeaderLine(double& value) {
    ++line_;
    const auto line = TakeLine(rest_);
    if (!line) return Wrong(GridProblem::CutShort, Line());
    const std::string_view text = line->substr(0, kHeaderLineLength);
    if (!StartsNumber(text)) return Wrong(GridProblem::NotThisFormat, Line());
    value = LeadingDouble(text);
    return {};
  }

  GridStatus Values(std::vector<float>& nodes, std::size_t count) {
    nodes.reserve(count);
    ++line_;
    while (nodes.size() < count) {
      SkipSpace();
      if (rest_.empty()) return CutShort(nodes.size(), count);
      double value = 0.0;
      if (!TakeNumber(value)) return Wrong(GridProblem::BadValue, Line());
      nodes.push_back(static_cast<float>(value));
      Show(nodes.size(), count);
    }
    SkipSpace();
    if (!rest_.empty()) return Wrong(GridProblem::TooLong, Line());
    return {};
  }

  void SkipSpace() {
    std::size_t i = 0;
    for (; i < rest_.size() && IsSpace(rest_[i]); ++i) {
      if (rest_[i] == '\n') ++line_;
    }
    rest_.remove_prefix(i);
  }

  bool TakeNumber(double& value) {
    if (rest_.starts_with('+')) rest_.remove_prefix(1);
    const auto [end, error] = std::from_chars(rest_.data(), rest_.data() + rest_.size(), value);
    if (error != std::errc() || !std::isfinite(value)) return false;
    rest_.remove_prefix(static_cast<std::size_t>(end - rest_.data()));
    return rest_.empty() || IsSpace(rest_[0]);
  }

  GridStatus CutShort(std::size_t got, std::size_t wanted) const {
    return Wrong(GridProblem::CutShort,
                 std::to_string(got) + " of " + std::to_string(wanted) + " nodes");
  }

  void Show(std::size_t done, std::size_t total) const {
    if (progress_ == nullptr || total <= kNodesWithoutProgress) return;
    if (done % kShowEvery == 0 || done == total) {
      progress_->Show(Strings().Text(kTextLoadingGrid), done, total);
    }
  }

  GridStatus ParseBinary(GridSurface& surface) {
    if (rest_.size() < kBinaryHeader) return Wrong(GridProblem::CutShort, "the header");
    const char* at = rest_.data();
    const int columns = NumberAt<std::int16_t>(at + 4, ByteOrder::Little);
    const int rows = NumberAt<std::int16_t>(at + 6, ByteOrder::Little);
    double bounds[4];  // xmin, xmax, ymin, ymax
    for (int i = 0; i < 4; ++i) bounds[i] = NumberAt<double>(at + 8 + 8 * i, ByteOrder::Little);
    const auto geometry =
        MakeGridGeometry(bounds[0], bounds[2], (bounds[1] - bounds[0]) / (columns - 1),
                         (bounds[3] - bounds[2]) / (rows - 1), columns, rows, 1e9);
    if (!geometry) return Wrong(GridProblem::ImpossibleSize, "the header");
    surface.geometry_ = *geometry;
    const std::size_t nodes = static_cast<std::size_t>(columns) * static_cast<std::size_t>(rows);
    const std::size_t have = (rest_.size() - kBinaryHeader) / sizeof(float);
    if (have < nodes) return CutShort(have, nodes);
    if (rest_.size() != kBinaryHeader + nodes * sizeof(float)) {
      return Wrong(GridProblem::TooLong, "after the last node");
    }
    return BinaryValues(surface.nodes_, nodes);
  }

  GridStatus BinaryValues(std::vector<float>& nodes, std::size_t count) {
    const char* at = rest_.data() + kBinaryHeader;
    nodes.resize(count);
    for (std::size_t i = 0; i < count; ++i) {
      nodes[i] = NumberAt<float>(at + i * sizeof(float), ByteOrder::Little);
      if (!std::isfinite(nodes[i])) {
        return Wrong(GridProblem::BadValue, "node " + std::to_string(i + 1));
      }
      Show(i + 1, count);
    }
    return {};
  }

  std::string_view rest_;
  const std::string& path_;
  LoadProgress* progress_;
  int line_ = 0;
};

GridStatus GridSurface::Load(FileSystem& files, const std::string& path, LoadProgress* progress,
                             GridSurface& surface) {
  FileBytes bytes;
  if (FileStatus status = LoadFileBytes(files, path, bytes); !status.ok()) {
    return FromFileStatus(status, path);
  }
  return Parse(bytes.view(), path, progress, surface);
}

GridStatus GridSurface::Parse(std::string_view bytes, const std::string& path,
                              LoadProgress* progress, GridSurface& surface) {
  return GridSurfaceParser(bytes, path, progress).Parse(surface);
}

SurfaceValue GridSurface::At(double first, double second) const noexcept {
  if (nodes_.empty()) return {};
  const auto cell = geometry_.CellAt(first, second);
  if (!cell) return {};
  float nodes[4];
  NodeMarks marks;
  for (int corner = 0; corner < 4; ++corner) {
    nodes[corner] = 0.0F;
    if (!HasWeight(*cell, corner)) continue;
    nodes[corner] = Node(cell->column + corner % 2, cell->row + corner / 2);
    marks.See(nodes[corner]);
  }
  if (marks.answer() != SurfaceAnswer::Value) return {marks.answer(), 0.0};
  return {SurfaceAnswer::Value, Bilinear(*cell, nodes[0], nodes[1], nodes[2], nodes[3])};
}

SurfaceValue GridSurface::CubicAt(double first, double second) const noexcept {
  if (nodes_.empty()) return {};
  const auto cell = geometry_.CellAt(first, second);
  if (!cell || cell->column < 1 || cell->row < 1 || cell->column + 2 >= geometry_.columns() ||
      cell->row + 2 >= geometry_.rows()) {
    return {};
  }
  const CubicWeights across(cell->across);
  const CubicWeights up(cell->up);
  NodeMarks marks;
  double value = 0.0;
  for (int j = 0; j < 4; ++j) {
    double along = 0.0;
    for (int i = 0; i < 4; ++i) {
      if (across.w[i] * up.w[j] == 0.0) continue;
      const float node = Node(cell->column - 1 + i, cell->row - 1 + j);
      marks.See(node);
      along += across.w[i] * static_cast<double>(node);
    }
    value += up.w[j] * along;
  }
  if (marks.answer() != SurfaceAnswer::Value) return {marks.answer(), 0.0};
  return {SurfaceAnswer::Value, value};
}

}  // namespace tarvex
