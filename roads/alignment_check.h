// Checks an alignment against its own numbers and says which of them is wrong.
//
// The file holds more numbers than the geometry needs: stations, coordinates, centres, angles,
// azimuths. One wrong number leaves a pattern: a wrong station makes its two neighbours miss by the
// same amount in opposite directions; a wrong point spoils its arc's end radius and both
// neighbours; a wrong centre spoils the radii alone.
#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "core/units/station.h"
#include "roads/alignment.h"
#include "roads/road_geometry.h"

namespace tarvex {

enum class FindingKind : int {
  Note,    ///< a number misses by more than rounding; staking is possible
  Refused  ///< the element named should not be staked as it is
};

/// One sentence for people about one place of the alignment.
struct CheckFinding {
  FindingKind kind = FindingKind::Note;
  std::optional<std::size_t> element;
  int line = 0;  ///< of the file, 0 when the finding is about no single line
  std::string text;

  bool operator==(const CheckFinding&) const = default;
};

struct StationStyle {
  StationMode mode = StationMode::Hundreds;
  int decimals = 2;
};

/// Findings in the order of the alignment; those about the whole file first.
std::vector<CheckFinding> CheckAlignment(const RoadGeometry& road, const CheckLimits& limits,
                                         const StationStyle& style);

/// The largest disagreement of an element between coordinates and stations or radii.
struct LargestMismatch {
  double amount = 0.0;
  std::size_t element = 0;
};
LargestMismatch FindLargestMismatch(const Alignment& alignment);

/// "PC", "TS" and so on, as the file names the record of a node.
std::string_view RecordName(const CenterlineElement& node);

}  // namespace tarvex
