// The walk that takes duplicate vertices out of a chain of key points.
#pragma once

#include <cstddef>
#include <vector>

#include "roads/centerline.h"

namespace tarvex {

/// Vertices closer than this are one.
inline constexpr double kSamePlace = 0.0005;

/// How many elements the walk moves on by: past the rest of a spiral group, past the end of a
/// curve, or to the next element.
std::size_t WalkStep(const CenterlineElement& element);

/// The clean-up walk over a finished chain: duplicate vertices closer than 0.0005 go, ids are
/// handed on; `merged`, when given, takes what went where. `ReadChain` ends with it.
void CleanUpChain(std::vector<CenterlineElement>& chain, bool keepTangentPoints,
                  std::vector<MergedLine>* merged = nullptr);

}  // namespace tarvex
