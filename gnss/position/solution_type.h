// What kind of solution a position is; the texts are the ones shown and stored.
#pragma once

#include <string_view>

namespace tarvex {

enum class SolutionType : int { Autonomous = 0, Fixed = 1, Float = 2, Dgps = 3 };

/// "AUTONOMOUS", "FIXED", "FLOAT" or "DGPS"; any unknown code is "AUTONOMOUS".
constexpr std::string_view SolutionText(SolutionType type) {
  switch (type) {
    case SolutionType::Fixed:
      return "FIXED";
    case SolutionType::Float:
      return "FLOAT";
    case SolutionType::Dgps:
      return "DGPS";
    case SolutionType::Autonomous:
      break;
  }
  return "AUTONOMOUS";
}

}  // namespace tarvex
