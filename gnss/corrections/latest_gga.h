// The rover's newest GGA, kept for a caster that wants it: taken from the lines that are read on
// one thread, handed out on another.
#pragma once

#include <atomic>
#include <cstdint>
#include <mutex>
#include <string>
#include <string_view>

#include "gnss/receivers/gnss_connection.h"

namespace tarvex {

class LatestGga final : public LineListener {
 public:
  /// Takes a GGA of any talker that has a position; one that has none ends what was kept. Leaves
  /// out everything else.
  void OnLine(std::string_view line) override;

  /// The sentence with CR LF; empty while the receiver has no position.
  std::string Get() const;
  /// How many positions were taken: a caller that sees it grow knows how old the newest one is.
  std::uint64_t taken() const { return taken_; }

 private:
  mutable std::mutex mutex_;
  std::string sentence_;
  std::atomic<std::uint64_t> taken_ = 0;
};

/// The same GGA with the talker GP and its checksum made anew: some casters take no other.
std::string WithGpTalker(std::string_view gga);

}  // namespace tarvex
