#include "app/cli/line_conversion.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <optional>
#include <utility>

#include "app/cli/angle_entry.h"
#include "app/cli/conversion_text.h"
#include "core/text/number_text.h"
#include "core/text/text.h"
#include "core/units/units.h"

namespace tarvex {
namespace {

constexpr std::string_view kSeparators = " \t,;";
constexpr int kGridDecimals = 4;
constexpr int kDegreeDecimals = 10;

// The numbers of a line, at most three; false at a word that is not a number, or at a fourth.
bool ReadPlainNumbers(std::string_view line, LineNumbers& numbers) {
  const char* at = line.data();
  const char* const end = at + line.size();
  const auto separates = [](char c) { return c == ' ' || c == '\t' || c == ',' || c == ';'; };
  while (true) {
    while (at != end && separates(*at)) ++at;
    if (at == end) return true;
    const char* const word = at;
    while (at != end && !separates(*at)) ++at;
    const auto value = ParseNumber({word, static_cast<std::size_t>(at - word)});
    if (!value || numbers.count == 3) return false;
    numbers.values[numbers.count++] = *value;
  }
}

// The first word that is no number.
std::string NoNumber(std::string_view line) {
  while (!line.empty()) {
    const std::string_view word = line.substr(0, line.find_first_of(kSeparators));
    if (!word.empty() && !ParseNumber(word)) return "\"" + std::string(word) + "\" is not a number";
    line.remove_prefix(std::min(word.size() + 1, line.size()));
  }
  return "more than three numbers";
}

// The two or three numbers of a line.
OrProblem<LineNumbers> ReadNumbers(std::string_view line, ConversionWay way) {
  LineNumbers numbers;
  if (ReadPlainNumbers(line, numbers)) {
    if (numbers.count >= 2) return numbers;
    return ProblemOf("two or three numbers are needed");
  }
  if (way == ConversionWay::ToWgs84) return ProblemOf(NoNumber(line));
  const auto angles = ReadAngleEntry(line);
  if (!angles) return angles.failure();
  numbers = {{angles->latitudeDeg, angles->longitudeDeg, angles->heightM.value_or(0.0)},
             angles->heightM ? 3 : 2};
  return numbers;
}

// Letters at the angles say which is which: then they are not swapped.
bool OnEarth(std::string_view line, const LineNumbers& numbers, std::string& problem) {
  const bool latitude = std::fabs(numbers.values[0]) <= 90.0;
  if (latitude && std::fabs(numbers.values[1]) <= 360.0) return true;
  problem = latitude ? "the longitude is beyond 360 degrees" : "the latitude is beyond 90 degrees";
  const bool lettered = line.find_first_of("NSns") != std::string_view::npos;
  const bool swapped = !latitude && !lettered && std::fabs(numbers.values[0]) <= 360.0 &&
                       std::fabs(numbers.values[1]) <= 90.0;
  if (swapped) problem += ": latitude comes first, longitude second, and these look swapped";
  return false;
}

Geodetic PositionOf(const LineNumbers& numbers) {
  return {.latitudeRad = numbers.values[0] * kRadiansPerDegree,
          .longitudeRad = numbers.values[1] * kRadiansPerDegree,
          .heightM = numbers.values[2]};
}

GridPoint PointOf(const LineNumbers& numbers) {
  return {
      .northing = numbers.values[0], .easting = numbers.values[1], .elevation = numbers.values[2]};
}

void Put(const GridPoint& point, LineNumbers& numbers) {
  numbers.values[0] = point.northing;
  numbers.values[1] = point.easting;
  numbers.values[2] = point.elevation;
}

void Put(const Geodetic& position, LineNumbers& numbers) {
  numbers.values[0] = position.latitudeRad * kDegreesPerRadian;
  numbers.values[1] = position.longitudeRad * kDegreesPerRadian;
  numbers.values[2] = position.heightM;
}

CalculationResult Convert(const CTrgCalculator& calculator, ConversionWay way, LineNumbers& numbers,
                          CalculationReport& report) {
  if (way == ConversionWay::ToGrid) {
    GridPoint point;
    const CalculationResult result = calculator.ToGrid(PositionOf(numbers), point, &report);
    Put(point, numbers);
    return result;
  }
  Geodetic wgs84;
  const CalculationResult result = calculator.ToWgs84(PointOf(numbers), wgs84, &report);
  Put(wgs84, numbers);
  return result;
}

// One line's numbers with a report of the steps.
void ConvertReported(const CTrgCalculator& calculator, ConversionWay way, bool strict,
                     ConvertedLine& converted) {
  const CalculationResult result = Convert(calculator, way, converted.numbers, converted.report);
  const std::string undone = UndoneText(converted.report);
  const bool inPart = result == CalculationResult::DoneInPart;
  if (inPart) converted.leftUndone = undone;
  if ((result != CalculationResult::Done && !inPart) || (inPart && strict)) {
    converted.problem = CalculationText(result, converted.report);
  }
}

// Reads a line; false when there is nothing to convert.
bool Read(std::string_view line, ConversionWay way, ConvertedLine& converted) {
  converted = {};
  const auto numbers = ReadNumbers(line, way);
  if (!numbers) {
    converted.problem = numbers.failure().text;
    return false;
  }
  converted.numbers = *numbers;
  return way == ConversionWay::ToWgs84 || OnEarth(line, *numbers, converted.problem);
}

// What goes through the calculator in one piece.
template <typename From, typename To>
struct Batch {
  static constexpr std::size_t kSize = 256;
  std::array<From, kSize> from;
  std::array<To, kSize> to;
  std::array<CalculationResult, kSize> results;
  std::array<ConvertedLine*, kSize> lines;
  std::size_t size = 0;
};

template <typename From, typename To, typename Take, typename Apply>
void ConvertInBatches(const CTrgCalculator& calculator, ConversionWay way, bool strict,
                      std::span<const std::string_view> lines, std::span<ConvertedLine> converted,
                      const Take& take, const Apply& apply) {
  Batch<From, To> batch;
  const auto convert = [&] {
    const std::size_t size = std::exchange(batch.size, 0);
    apply(std::span<const From>(batch.from).first(size), std::span(batch.to).first(size),
          std::span(batch.results).first(size));
    for (std::size_t i = 0; i < size; ++i) {
      if (batch.results[i] == CalculationResult::Done) {
        Put(batch.to[i], batch.lines[i]->numbers);
      } else {
        ConvertReported(calculator, way, strict, *batch.lines[i]);
      }
    }
  };
  for (std::size_t i = 0; i < lines.size(); ++i) {
    if (!Read(lines[i], way, converted[i])) continue;
    batch.from[batch.size] = take(converted[i].numbers);
    batch.lines[batch.size] = &converted[i];
    if (++batch.size == batch.kSize) convert();
  }
  convert();
}

}  // namespace

OrProblem<LineNumbers> ReadPosition(std::string_view text) {
  auto numbers = ReadNumbers(text, ConversionWay::ToGrid);
  std::string problem;
  if (numbers && !OnEarth(text, *numbers, problem)) return ProblemOf(problem);
  return numbers;
}

ConvertedLine ConvertLine(const CTrgCalculator& calculator, ConversionWay way, bool strict,
                          std::string_view line) {
  ConvertedLine converted;
  if (Read(line, way, converted)) ConvertReported(calculator, way, strict, converted);
  return converted;
}

void ConvertLines(const CTrgCalculator& calculator, ConversionWay way, bool strict,
                  std::span<const std::string_view> lines, std::span<ConvertedLine> converted) {
  if (way == ConversionWay::ToGrid) {
    ConvertInBatches<Geodetic, GridPoint>(
        calculator, way, strict, lines, converted, PositionOf,
        [&](auto from, auto to, auto results) { calculator.ToGrid(from, to, results); });
  } else {
    ConvertInBatches<GridPoint, Geodetic>(
        calculator, way, strict, lines, converted, PointOf,
        [&](auto from, auto to, auto results) { calculator.ToWgs84(from, to, results); });
  }
}

void AppendConvertedText(const ConvertedLine& converted, ConversionWay way, int decimals,
                         std::string& text) {
  const bool toGrid = way == ConversionWay::ToGrid;
  const int lengthDecimals = toGrid && decimals >= 0 ? decimals : kGridDecimals;
  if (decimals < 0) decimals = toGrid ? kGridDecimals : kDegreeDecimals;
  const LineNumbers& numbers = converted.numbers;
  AppendFixed(text, numbers.values[0], decimals);
  text += ' ';
  AppendFixed(text, numbers.values[1], decimals);
  if (numbers.count == 3) {
    text += ' ';
    AppendFixed(text, numbers.values[2], lengthDecimals);
  }
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
  if (!converted.leftUndone.empty()) json["left_undone"] = converted.leftUndone;
  if (explain) json["steps"] = ExplanationJson(converted.report);
  return json;
}

}  // namespace tarvex
