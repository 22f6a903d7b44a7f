// Whether many of a receiver's sentences come damaged: looked at in stretches of ten seconds, told
// once until a stretch without damage has passed.
#pragma once

#include <cstdint>
#include <optional>

#include "app/workflow/session_events.h"

namespace tarvex {

class DamageWatch {
 public:
  /// `damaged` sentences (a wrong checksum) and `positions` of the session so far, at a time of the
  /// steady clock. Something when many were damaged in the stretch that ends now: three or more,
  /// and one for every four positions or more.
  std::optional<SentencesDamaged> Look(std::uint64_t damaged, std::uint64_t positions,
                                       std::int64_t nowMs);

 private:
  struct Stretch {
    std::int64_t fromMs;
    std::uint64_t damaged;
    std::uint64_t positions;
  };
  std::optional<Stretch> stretch_;  ///< the counts with which it began
  bool told_ = false;
};

}  // namespace tarvex
