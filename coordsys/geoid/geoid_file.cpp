#include "coordsys/geoid/geoid_file.h"

#include <cmath>

#include "coordsys/geoid/isg_header.h"
#include "coordsys/geoid/pgm_header.h"
#include "core/text/number_text.h"
#include "core/text/text.h"

namespace tarvex {
namespace {

constexpr std::size_t kGtxHeader = 40;
constexpr std::size_t kBinHeader = 44;
constexpr double kMostNodes = 4e9;

std::string Ending(const std::string& path) {
  const std::size_t dot = path.rfind('.');
  return dot == std::string::npos ? std::string() : LowerCase(path.substr(dot));
}

class GeoidParser {
 public:
  GeoidParser(FileBytes bytes, const std::string& path)
      : held_(std::move(bytes)), bytes_(held_.view()), path_(path) {}

  GridStatus Parse(GeoidFile& file) {
    GeoidFile made;
    const std::string ending = Ending(path_);
    GridStatus status = Wrong(GridProblem::NotThisFormat, "a geoid is .gtx, .bin, .pgm or .isg");
    if (ending == ".gtx") status = Gtx(made);
    if (ending == ".bin") status = Bin(made);
    if (ending == ".pgm") status = Pgm(made);
    if (ending == ".isg") status = Isg(made);
    if (!status.ok()) return status;
    made.bytes = held_;
    file = std::move(made);
    return {};
  }

 private:
  GridStatus Wrong(GridProblem problem, std::string detail) const {
    return {problem, path_, std::move(detail)};
  }
  GridStatus CheckSize(std::size_t needed) const {
    if (bytes_.size() == needed) return {};
    return Wrong(bytes_.size() < needed ? GridProblem::CutShort : GridProblem::TooLong,
                 std::to_string(bytes_.size()) + " of " + std::to_string(needed) + " bytes");
  }
  double Real(std::size_t at, ByteOrder order) const {
    return NumberAt<double>(bytes_.data() + at, order);
  }
  int Integer(std::size_t at, ByteOrder order) const {
    return NumberAt<std::int32_t>(bytes_.data() + at, order);
  }

  // Takes the bounds; a grid around the earth gets its first column once more at its end.
  static bool SetGeometry(GeoidFile& file, double west, double south, double stepLon,
                          double stepLat, double columns, double rows) {
    const bool around = std::abs(columns * stepLon - 360.0) < 1e-6;
    const auto geometry = MakeGridGeometry(west, south, stepLon, stepLat,
                                           columns + (around ? 1.0 : 0.0), rows, kMostNodes);
    if (!geometry || south < -90.001 || geometry->lastY() > 90.001 || std::abs(west) > 720.0 ||
        geometry->lastX() - west > 360.001) {
      return false;
    }
    file.geometry = *geometry;
    file.aroundEarth = around;
    file.storedColumns = static_cast<int>(columns);
    return true;
  }

  static std::size_t Nodes(const GeoidFile& file) {
    return static_cast<std::size_t>(file.storedColumns) *
           static_cast<std::size_t>(file.geometry.rows());
  }

  // Latitude and longitude of the south-west node, steps, rows, columns.
  GridStatus Gtx(GeoidFile& file) const {
    if (bytes_.size() < kGtxHeader) return Wrong(GridProblem::CutShort, "the header");
    constexpr ByteOrder order = ByteOrder::Big;
    if (!SetGeometry(file, Real(8, order), Real(0, order), Real(24, order), Real(16, order),
                     Integer(36, order), Integer(32, order))) {
      return Wrong(GridProblem::ImpossibleSize, "the header");
    }
    // Old files hold 8-byte values.
    const bool wide = bytes_.size() == kGtxHeader + 8 * Nodes(file);
    const std::size_t size = wide ? 8 : 4;
    file.layout.first = kGtxHeader;
    file.layout.rowStride = static_cast<std::ptrdiff_t>(size) * file.storedColumns;
    file.layout.kind = wide ? GeoidNodeKind::Float64 : GeoidNodeKind::Float32;
    file.layout.order = order;
    return CheckSize(kGtxHeader + size * Nodes(file));
  }

  // The same with the number 1 for "32-bit floats" behind, which also tells the byte order.
  GridStatus Bin(GeoidFile& file) const {
    if (bytes_.size() < kBinHeader) return Wrong(GridProblem::CutShort, "the header");
    ByteOrder order = ByteOrder::Little;
    if (Integer(40, order) != 1) order = ByteOrder::Big;
    if (Integer(40, order) != 1)
      return Wrong(GridProblem::NotThisFormat, "the number at byte 40 is not 1");
    if (!SetGeometry(file, Real(8, order), Real(0, order), Real(24, order), Real(16, order),
                     Integer(36, order), Integer(32, order))) {
      return Wrong(GridProblem::ImpossibleSize, "the header");
    }
    file.layout.first = kBinHeader;
    file.layout.rowStride = std::ptrdiff_t{4} * file.storedColumns;
    file.layout.order = order;
    const bool hasNine = file.geometry.columns() >= 3 && file.geometry.rows() >= 3;
    file.layout.between = hasNine ? GeoidInterpolation::Biquadratic : GeoidInterpolation::Bilinear;
    return CheckSize(kBinHeader + 4 * Nodes(file));
  }

  GridStatus Pgm(GeoidFile& file) const {
    PgmHeader header;
    if (GridStatus status = ReadPgmHeader(bytes_, path_, header); !status.ok()) return status;
    const double columns = header.columns;
    const double rows = header.rows;
    if (!(columns >= 4 && rows >= 3 && std::fmod(columns, 2) == 0.0) ||
        !SetGeometry(file, 0.0, -90.0, 360.0 / columns, 180.0 / (rows - 1), columns, rows)) {
      return Wrong(GridProblem::ImpossibleSize, "the header");
    }
    const std::size_t row = 2 * static_cast<std::size_t>(file.storedColumns);
    file.layout.first = header.pixelsAt + row * static_cast<std::size_t>(file.geometry.rows() - 1);
    file.layout.rowStride = -static_cast<std::ptrdiff_t>(row);
    file.layout.kind = GeoidNodeKind::Pixel16;
    file.layout.order = ByteOrder::Big;
    file.layout.offsetM = header.offsetM;
    file.layout.scaleM = header.scaleM;
    file.layout.between = GeoidInterpolation::Cubic12;
    return CheckSize(header.pixelsAt + 2 * Nodes(file));
  }

  GridStatus Isg(GeoidFile& file) {
    IsgHeader header;
    if (GridStatus status = ReadIsgHeader(bytes_, path_, header); !status.ok()) return status;
    if (!SetGeometry(file, header.west, header.south, header.stepLon, header.stepLat,
                     header.columns, header.rows)) {
      return Wrong(GridProblem::ImpossibleSize, "the header");
    }
    // Every value takes two bytes at least, but for the last one.
    if (2 * Nodes(file) > header.nodes.size() + 1) {
      return Wrong(GridProblem::CutShort, "the nodes");
    }
    file.layout.noData = header.noData;
    return IsgNodes(file, header.nodes, header.lines);
  }

  // The text's numbers become little-endian floats, which are held in place of the text.
  GridStatus IsgNodes(GeoidFile& file, std::string_view rest, int lineNumber) {
    const std::size_t nodes = Nodes(file);
    std::string packed;
    packed.reserve(4 * nodes);
    std::size_t seen = 0;
    while (const auto line = TakeLine(rest)) {
      ++lineNumber;
      for (std::string_view words = WithoutOuterBlanks(*line); !words.empty();
           words = WithoutLeadingBlanks(words)) {
        const std::size_t end = std::min(words.find_first_of(" \t"), words.size());
        const auto value = ParseNumber(words.substr(0, end));
        if (!value) return Wrong(GridProblem::BadValue, "line " + std::to_string(lineNumber));
        if (++seen > nodes)
          return Wrong(GridProblem::TooLong, "line " + std::to_string(lineNumber));
        AppendNumber(packed, static_cast<float>(*value));
        words.remove_prefix(end);
      }
    }
    if (seen < nodes) {
      return Wrong(GridProblem::CutShort,
                   std::to_string(seen) + " of " + std::to_string(nodes) + " nodes");
    }
    const std::size_t row = 4 * static_cast<std::size_t>(file.storedColumns);
    file.layout.first = row * static_cast<std::size_t>(file.geometry.rows() - 1);
    file.layout.rowStride = -static_cast<std::ptrdiff_t>(row);
    held_ = FileBytes(std::move(packed));
    return {};
  }

  FileBytes held_;
  std::string_view bytes_;
  const std::string& path_;
};

}  // namespace

GridStatus ParseGeoidFile(FileBytes bytes, const std::string& path, GeoidFile& file) {
  return GeoidParser(std::move(bytes), path).Parse(file);
}

}  // namespace tarvex
