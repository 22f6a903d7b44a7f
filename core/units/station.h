// Stations along an alignment in the surveyor's plus notation: 12+34.50, 12+345.678.
#pragma once

#include <string>

namespace tarvex {

enum class StationMode : int {
  Hundreds = 0,   ///< 0+00.00
  Thousands = 1,  ///< 0+000.00
  Plain = 2       ///< 0.00
};

/// `decimals` 0 to 4. A station that rounds to zero has no sign; one that is not a number has no
/// text.
std::string FormatStation(double station, StationMode mode, int decimals);

/// The station style and decimals by example, as the choice is shown: "(e.g. 1+00.0)".
std::string StationFormatExample(StationMode mode, int decimals);

}  // namespace tarvex
