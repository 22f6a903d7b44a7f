#include "coordsys/geoid/pgm_header.h"

#include <cmath>
#include <optional>

#include "core/text/number_text.h"
#include "core/text/text.h"

namespace tarvex {
namespace {

constexpr double kDeepestPixel = 65535.0;

class PgmHeaderReader {
 public:
  PgmHeaderReader(std::string_view bytes, const std::string& path)
      : bytes_(bytes), rest_(bytes), path_(path) {}

  GridStatus Read(PgmHeader& header) {
    const auto mark = Line();
    if (!mark) return Wrong(GridProblem::CutShort);
    if (*mark != "P5") return Wrong(GridProblem::NotThisFormat);
    const auto size = LineAfterRemarks();
    if (!size) return Wrong(GridProblem::CutShort);
    if (!TakeSize(*size, header)) return Wrong(GridProblem::BadValue);
    const auto depth = LineAfterRemarks();
    if (!depth) return Wrong(GridProblem::CutShort);
    if (LeadingDouble(*depth) != kDeepestPixel) return Wrong(GridProblem::BadValue);
    if (!offsetM_ || !scaleM_) {
      return {GridProblem::NotThisFormat, path_, "no Offset or Scale"};
    }
    header.offsetM = *offsetM_;
    header.scaleM = *scaleM_;
    header.pixelsAt = bytes_.size() - rest_.size();
    return {};
  }

 private:
  GridStatus Wrong(GridProblem problem) const {
    return {problem, path_, "line " + std::to_string(line_)};
  }

  std::optional<std::string_view> Line() {
    ++line_;
    return TakeLine(rest_);
  }

  std::optional<std::string_view> LineAfterRemarks() {
    auto line = Line();
    for (; line && line->starts_with('#'); line = Line()) TakeRemark(line->substr(1));
    return line;
  }

  void TakeRemark(std::string_view remark) {
    constexpr std::string_view kOffset = "Offset ";
    constexpr std::string_view kScale = "Scale ";
    remark = WithoutLeadingBlanks(remark);
    if (remark.starts_with(kOffset)) offsetM_ = LeadingDouble(remark.substr(kOffset.size()));
    if (remark.starts_with(kScale)) scaleM_ = LeadingDouble(remark.substr(kScale.size()));
  }

  // "width height"
  static bool TakeSize(std::string_view line, PgmHeader& header) {
    line = WithoutLeadingBlanks(line);
    const std::size_t blank = line.find(' ');
    if (blank == std::string_view::npos) return false;
    header.columns = LeadingDouble(line);
    header.rows = LeadingDouble(line.substr(blank));
    return true;
  }

  std::string_view bytes_;
  std::string_view rest_;
  const std::string& path_;
  int line_ = 0;
  std::optional<double> offsetM_;
  std::optional<double> scaleM_;
};

}  // namespace

GridStatus ReadPgmHeader(std::string_view bytes, const std::string& path, PgmHeader& header) {
  return PgmHeaderReader(bytes, path).Read(header);
}

}  // namespace tarvex
