// A line of positions or grid coordinates through a calculator: what `tarvex convert` does to each
// line of its input.
#pragma once

#include <span>
#include <string>
#include <string_view>

#include "app/cli/json_text.h"
#include "coordsys/chain/calculator.h"
#include "core/text/outcome.h"

namespace tarvex {

enum class ConversionWay { ToGrid, ToWgs84 };

/// Latitude, longitude (decimal degrees) and height, or northing, easting and elevation.
struct LineNumbers {
  double values[3] = {0.0, 0.0, 0.0};
  int count = 0;  ///< 2 or 3; without a third number 0 is taken for it
};

struct ConvertedLine {
  LineNumbers numbers;  ///< of the other kind than the line's
  CalculationReport report;
  std::string problem;     ///< why there are no numbers, in a sentence; empty when there are
  std::string leftUndone;  ///< which step they lack, in a sentence
};

/// Latitude, longitude and height if there is one, as a line of positions has them: in decimal
/// degrees or in degrees, minutes and seconds. Nothing, with the reason, when that is no place.
OrProblem<LineNumbers> ReadPosition(std::string_view text);

/// Two or three numbers, separated by blanks, commas or semicolons; on the way to the grid also
/// degrees, minutes and seconds (app/cli/angle_entry.h). With `strict` a line whose conversion
/// leaves a step undone is a problem.
ConvertedLine ConvertLine(const CTrgCalculator& calculator, ConversionWay way, bool strict,
                          std::string_view line);

/// The same for many lines at a fraction of the time; only lines that lack something have a report.
/// `converted` is as long as `lines`.
void ConvertLines(const CTrgCalculator& calculator, ConversionWay way, bool strict,
                  std::span<const std::string_view> lines, std::span<ConvertedLine> converted);

/// Appends the numbers as they are printed; `decimals` below 0 takes 4 for lengths and 10 for
/// degrees.
void AppendConvertedText(const ConvertedLine& converted, ConversionWay way, int decimals,
                         std::string& text);

/// On one line: "line", the numbers by name, and "left_undone" or "error" where there is one; with
/// `explain` the steps (app/conversion_text.h). Numbers are not rounded.
Json ConvertedJson(const ConvertedLine& converted, ConversionWay way, std::size_t line,
                   bool explain);

}  // namespace tarvex
