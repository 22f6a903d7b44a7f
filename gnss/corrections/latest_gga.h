// The rover's newest GGA, kept for a caster that wants it: taken from the lines that are read on
// one thread, handed out on another.
#pragma once

#include <mutex>
#include <string>
#include <string_view>

#include "gnss/gnss_connection.h"

namespace tarvex {

class LatestGga final : public LineListener {
 public:
  /// Takes a GGA of any talker that has a position; leaves out everything else.
  void OnLine(std::string_view line) override;

  /// The sentence with CR LF; empty before the first one.
  std::string Get() const;

 private:
  mutable std::mutex mutex_;
  std::string sentence_;
};

/// The same GGA with the talker GP and its checksum made anew: some casters take no other.
std::string WithGpTalker(std::string_view gga);

}  // namespace tarvex
