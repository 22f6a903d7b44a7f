// Tells in lines that a limit refuses, once when it begins and once when it is over, however often
// a receiver at the edge of a limit crosses it meanwhile. The line at the bottom has the present
// state.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "app/workflow/session_events.h"

namespace tarvex {

class RefusalLines {
 public:
  /// The line to print, if there is one. Times are of the steady clock.
  std::optional<std::string> Take(const LimitRefuses& what, std::int64_t nowMs);
  /// To be asked at every epoch.
  std::optional<std::string> Look(std::int64_t nowMs);

 private:
  bool told_ = false;
  std::int64_t beganMs_ = 0;
  std::optional<std::int64_t> keptSinceMs_;
};

}  // namespace tarvex
