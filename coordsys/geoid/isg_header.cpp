#include "coordsys/geoid/isg_header.h"

#include <cmath>
#include <map>
#include <optional>

#include "core/text/number_text.h"
#include "core/text/text.h"

namespace tarvex {
namespace {

using Keys = std::map<std::string, std::string>;

// "26.5", or degrees, minutes and seconds with their signs ("26°30'00"").
std::optional<double> Angle(std::string_view text) {
  if (const auto plain = ParseNumber(text)) return plain;
  const bool negative = text.starts_with('-');
  double degrees = 0.0;
  double unit = 1.0;
  int parts = 0;
  for (std::size_t i = 0; i < text.size() && parts < 3;) {
    if (!IsDigit(text[i])) {
      ++i;
      continue;
    }
    const std::string_view rest = text.substr(i);
    degrees += unit * LeadingDouble(rest);
    const std::size_t end = rest.find_first_not_of("0123456789.");
    i += end == std::string_view::npos ? rest.size() : end;
    unit /= 60.0;
    ++parts;
  }
  if (parts < 2) return std::nullopt;
  return negative ? -degrees : degrees;
}

// Takes the head off `text`; false when it does not end.
bool TakeKeys(std::string_view& text, Keys& keys, bool& begun, int& lines) {
  while (const auto line = TakeLine(text)) {
    ++lines;
    if (line->starts_with("end_of_head")) return true;
    begun = begun || line->starts_with("begin_of_head");
    const std::size_t mark = line->find_first_of(":=");
    if (!begun || mark == std::string_view::npos) continue;
    keys[LowerCase(WithoutOuterBlanks(line->substr(0, mark)))] =
        WithoutOuterBlanks(line->substr(mark + 1));
  }
  return false;
}

// The bounds are those of the nodes or of the cells around them.
double FirstNode(double low, double high, double step, double nodes) {
  const bool cells = std::abs((high - low) / step - nodes) < 0.25;
  return cells ? low + 0.5 * step : low;
}

bool TakeGeometry(Keys& keys, IsgHeader& header) {
  const auto latMin = Angle(keys["lat min"]);
  const auto latMax = Angle(keys["lat max"]);
  const auto lonMin = Angle(keys["lon min"]);
  const auto lonMax = Angle(keys["lon max"]);
  const auto stepLat = Angle(keys["delta lat"]);
  const auto stepLon = Angle(keys["delta lon"]);
  const auto rows = ParseNumber(keys["nrows"]);
  const auto columns = ParseNumber(keys["ncols"]);
  if (!latMin || !latMax || !lonMin || !lonMax || !stepLat || !stepLon || !rows || !columns) {
    return false;
  }
  header.south = FirstNode(*latMin, *latMax, *stepLat, *rows);
  header.west = FirstNode(*lonMin, *lonMax, *stepLon, *columns);
  header.stepLat = *stepLat;
  header.stepLon = *stepLon;
  header.rows = *rows;
  header.columns = *columns;
  return true;
}

}  // namespace

GridStatus ReadIsgHeader(std::string_view text, const std::string& path, IsgHeader& header) {
  Keys keys;
  bool begun = false;
  if (!TakeKeys(text, keys, begun, header.lines)) {
    return {begun ? GridProblem::CutShort : GridProblem::NotThisFormat, path, "no end_of_head"};
  }
  if (!TakeGeometry(keys, header)) return {GridProblem::BadValue, path, "the header"};
  if (keys.contains("nodata")) header.noData = LeadingDouble(keys["nodata"]);
  header.nodes = text;
  return {};
}

}  // namespace tarvex
