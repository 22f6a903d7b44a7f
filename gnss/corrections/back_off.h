// How long to wait before a caster is asked again: doubling from a floor to a ceiling, with a
// little chance in it so that rovers which lost the same caster do not come back all at once.
#pragma once

#include <algorithm>
#include <cstdint>

namespace tarvex {

class BackOff {
 public:
  explicit BackOff(std::uint64_t seed) : random_(seed) {}

  static constexpr std::int64_t kFloorMs = 10'000;
  static constexpr std::int64_t kCeilingMs = 300'000;

  /// The next wait: at least the floor, at most a quarter above what is due.
  std::int64_t Next() {
    const std::int64_t due = dueMs_;
    dueMs_ = std::min(dueMs_ * 2, kCeilingMs);
    random_ = random_ * 6364136223846793005ULL + 1442695040888963407ULL;  // Knuth's MMIX
    return due + static_cast<std::int64_t>(random_ >> 33) % (due / 4 + 1);
  }
  void Reset() { dueMs_ = kFloorMs; }

 private:
  std::int64_t dueMs_ = kFloorMs;
  std::uint64_t random_;
};

}  // namespace tarvex
