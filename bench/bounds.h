// What the benchmarks' jobs are held to: our time over a peer's.
#pragma once

#include <optional>
#include <string_view>

namespace tarvex {

struct Bound {
  double atMost = 0.0;
  double aim = 0.0;  ///< what we would like; the bound again where nothing is better than enough
};

/// Of a job beside a peer; nothing where it only tells.
std::optional<Bound> BoundOf(std::string_view job, std::string_view peer);

}  // namespace tarvex
