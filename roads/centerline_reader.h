// From the text of a centerline file (docs/formats/cl.md) to the chain of its key points: records
// in file order, merges while reading, lead-in vertices, the terminator, the clean-up walk.
//
// Lines that cannot be read are skipped, as the format asks; each leaves a note with its line
// number so that a check can show what was passed over.
#pragma once

#include <string_view>

#include "core/text/outcome.h"
#include "roads/centerline.h"

namespace tarvex {

/// More key points than any road has; a longer file is refused, so that memory stays bounded.
inline constexpr std::size_t kMostCenterlineElements = 100000;

/// A vertex or "TS" this close to the key point before it may take its place while reading.
inline constexpr double kMergeDistance = 0.002;

/// Why a text gives no chain.
enum class ChainFault {
  Nothing,  ///< the text holds no key point
  TooLong   ///< more than kMostCenterlineElements; the line is the place
};

/// What a text gives: at least one element.
struct CenterlineChain {
  std::vector<CenterlineElement> elements;
  std::optional<CenterlineStartPoint> startPoint;
  std::vector<LineNote> notes;
  std::vector<MergedLine> merged;
};

/// `keepTangentPoints` keeps a tangent vertex that lies on a "TS" or "SC".
Outcome<CenterlineChain, ChainFault> ReadChain(std::string_view text, bool keepTangentPoints);

/// The limits of a ".cle" text: lines START_STA=station and END_STA=station.
StationLimits ReadStationLimits(std::string_view text);

}  // namespace tarvex
