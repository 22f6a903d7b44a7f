// Latitude and longitude as people and receivers write them, on one line: "46°30'15.5"N 9°20'30"E",
// "N46 30 15.5 E9 20 30", "46:30:15.5 9:20:30", "46-30-15.5 9-20-30", "46d30.25' -9d20'30"",
// "46 30 15.5 9 20 30 1100".
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "core/text/outcome.h"

namespace tarvex {

struct AngleEntry {
  double latitudeDeg = 0.0;
  double longitudeDeg = 0.0;
  std::optional<double> heightM;
};

/// Reads a line in degrees, minutes and seconds; seconds may be missing, and the last part of an
/// angle may have decimals. N, S, E and W are before or behind their angle and may come in either
/// order; without them latitude comes first, and a minus sign is south or west. The problem of a
/// line that is not two angles is a part of a sentence.
OrProblem<AngleEntry> ReadAngleEntry(std::string_view line);

}  // namespace tarvex
