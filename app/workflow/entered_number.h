// Numbers that a person types, or that a file of somebody else holds.
#pragma once

#include <string>
#include <string_view>

namespace tarvex {

/// No coordinate, station or height on the earth lies beyond this, in any unit.
inline constexpr double kLargestEntry = 1e9;

/// An entered number, or what is wrong with it: `"1,5" is not a number`.
struct NumberEntry {
  double value = 0.0;
  std::string problem;  ///< empty when the number is good
};
NumberEntry ReadNumberEntry(std::string_view text);

}  // namespace tarvex
