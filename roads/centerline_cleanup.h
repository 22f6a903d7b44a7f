// The walk that takes duplicate vertices out of a chain of key points.
#pragma once

#include <vector>

#include "roads/centerline.h"

namespace tarvex {

/// The clean-up walk over a finished chain: duplicate vertices closer than 0.0005 go, ids are
/// handed on; `merged`, when given, takes what went where. `ReadChain` ends with it.
void CleanUpChain(std::vector<CenterlineElement>& chain, bool keepTangentPoints,
                  std::vector<MergedLine>* merged = nullptr);

}  // namespace tarvex
