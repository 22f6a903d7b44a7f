// How long to wait before a lost receiver is opened again: a cable that was pulled comes back in a
// moment, a receiver that is switched off does not.
#pragma once

#include <algorithm>
#include <cstdint>

namespace tarvex {

class LinkRetry {
 public:
  static constexpr std::int64_t kShortestMs = 1000;
  static constexpr std::int64_t kLongestMs = 30'000;

  /// The next wait: 1 s, doubling to 30 s.
  std::int64_t NextMs() {
    const std::int64_t due = dueMs_;
    dueMs_ = std::min(dueMs_ * 2, kLongestMs);
    return due;
  }

 private:
  std::int64_t dueMs_ = kShortestMs;
};

}  // namespace tarvex
