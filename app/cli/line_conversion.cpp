#include "app/cli/line_conversion.h"

#include <algorithm>
#include <cmath>
#include <optional>

#include "app/cli/conversion_text.h"
#include "core/number_text.h"
#include "core/text.h"
#include "core/units.h"

namespace tarvex {
namespace {

constexpr std::string_view kSeparators = " \t,;";
constexpr int kGridDecimals = 4;
constexpr int kDegreeDecimals = 10;

// The two or three numbers of a line; `problem` says what is wrong with it otherwise.
std::optional<LineNumbers> ReadNumbers(std::string_view line, ConversionWay way,
                                       std::string& problem) {
  LineNumbers numbers;
  std::string_view rest = WithoutOuterBlanks(line);
  while (!rest.empty()) {
    const std::size_t end = std::min(rest.find_first_of(kSeparators), rest.size());
    const std::string_view word = rest.substr(0, end);
    const auto value = ParseNumber(word);
    if (!value) {
      problem = "\"" + std::string(word) + "\" is not a number";
      if (way == ConversionWay::ToGrid) problem += " (angles are decimal degrees)";
      return std::nullopt;
    }
    if (numbers.count == 3) {
      problem = "more than three numbers";
      return std::nullopt;
    }
    numbers.values[numbers.count++] = *value;
    rest.remove_prefix(std::min(rest.find_first_not_of(kSeparators, end), rest.size()));
  }
  if (numbers.count >= 2) return numbers;
  problem = "two or three numbers are needed";
  return std::nullopt;
}

bool OnEarth(const LineNumbers& numbers, std::string& problem) {
  const bool latitude = std::fabs(numbers.values[0]) <= 90.0;
  if (latitude && std::fabs(numbers.values[1]) <= 360.0) return true;
  problem = latitude ? "the longitude is beyond 360 degrees" : "the latitude is beyond 90 degrees";
  return false;
}

CalculationResult ToGrid(const CTrgCalculator& calculator, LineNumbers& numbers,
                         CalculationReport& report) {
  const Geodetic wgs84{.latitude_rad = numbers.values[0] * kRadiansPerDegree,
                       .longitude_rad = numbers.values[1] * kRadiansPerDegree,
                       .height_m = numbers.values[2]};
  GridPoint point;
  const CalculationResult result = calculator.ToGrid(wgs84, point, &report);
  numbers.values[0] = point.northing;
  numbers.values[1] = point.easting;
  numbers.values[2] = point.elevation;
  return result;
}

CalculationResult ToWgs84(const CTrgCalculator& calculator, LineNumbers& numbers,
                          CalculationReport& report) {
  Geodetic wgs84;
  const CalculationResult result = calculator.ToWgs84(
      {.northing = numbers.values[0], .easting = numbers.values[1], .elevation = numbers.values[2]},
      wgs84, &report);
  numbers.values[0] = wgs84.latitude_rad * kDegreesPerRadian;
  numbers.values[1] = wgs84.longitude_rad * kDegreesPerRadian;
  numbers.values[2] = wgs84.height_m;
  return result;
}

}  // namespace

ConvertedLine ConvertLine(const CTrgCalculator& calculator, ConversionWay way, bool strict,
                          std::string_view line) {
  ConvertedLine converted;
  const bool to_grid = way == ConversionWay::ToGrid;
  const auto numbers = ReadNumbers(line, way, converted.problem);
  if (!numbers || (to_grid && !OnEarth(*numbers, converted.problem))) return converted;
  converted.numbers = *numbers;
  const CalculationResult result = to_grid
                                       ? ToGrid(calculator, converted.numbers, converted.report)
                                       : ToWgs84(calculator, converted.numbers, converted.report);
  const std::string undone = UndoneText(converted.report);
  const bool in_part = result == CalculationResult::DoneInPart;
  if (in_part) converted.left_undone = undone;
  if ((result != CalculationResult::Done && !in_part) || (in_part && strict)) {
    converted.problem = undone.empty() ? CalculationText(result) : undone;
  }
  return converted;
}

std::string ConvertedText(const ConvertedLine& converted, ConversionWay way, int decimals) {
  const bool to_grid = way == ConversionWay::ToGrid;
  const int length_decimals = to_grid && decimals >= 0 ? decimals : kGridDecimals;
  if (decimals < 0) decimals = to_grid ? kGridDecimals : kDegreeDecimals;
  const LineNumbers& numbers = converted.numbers;
  std::string text = FixedNumber(numbers.values[0], decimals);
  text += ' ' + FixedNumber(numbers.values[1], decimals);
  if (numbers.count == 3) text += ' ' + FixedNumber(numbers.values[2], length_decimals);
  return text;
}

Json ConvertedJson(const ConvertedLine& converted, ConversionWay way, std::size_t line,
                   bool explain) {
  static constexpr const char* kGridNames[] = {"northing", "easting", "elevation"};
  static constexpr const char* kPositionNames[] = {"latitude", "longitude", "height"};
  const auto& names = way == ConversionWay::ToGrid ? kGridNames : kPositionNames;
  Json json = {{"line", line}};
  if (converted.problem.empty()) {
    for (int i = 0; i < converted.numbers.count; ++i) json[names[i]] = converted.numbers.values[i];
  } else {
    json["error"] = converted.problem;
  }
  if (!converted.left_undone.empty()) json["left_undone"] = converted.left_undone;
  if (explain) json["steps"] = ExplanationJson(converted.report);
  return json;
}

}  // namespace tarvex
