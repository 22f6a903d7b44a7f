// What is shown while a large grid loads; given by the program above.
#pragma once

#include <cstddef>
#include <string_view>

namespace tarvex {

class LoadProgress {
 public:
  virtual ~LoadProgress() = default;
  /// `done` of `total` nodes; called now and then, the last time with done == total.
  virtual void Show(std::string_view text, std::size_t done, std::size_t total) = 0;
};

/// A grid of more nodes than this shows its progress.
inline constexpr std::size_t kNodesWithoutProgress = 36'000;

}  // namespace tarvex
