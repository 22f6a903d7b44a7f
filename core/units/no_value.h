// The no-value marker of files and entry fields: a magnitude of 765432.1 or more stands for a value
// that was not given. It lives at that boundary alone; inside the system a value that is missing is
// an empty std::optional.
#pragma once

namespace tarvex {

inline constexpr double kNoValue = 765432.1;

/// True for the marker, for anything of a greater magnitude, and for a value that is not a number.
constexpr bool IsNoValue(double value) {
  return !(value < kNoValue && value > -kNoValue);
}

}  // namespace tarvex
