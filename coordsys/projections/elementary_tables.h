// Values of the elementary functions at evenly spaced places, from which elementary.h goes the rest
// of the way. Each is the exact value rounded to a double, computed once by the compiler in twice
// the digits of one, so that every machine has the same bits.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace tarvex {

/// Two values that are looked up together.
struct alignas(16) TableRow {
  double first;
  double second;
};

inline constexpr std::size_t kSineSteps = 256;         ///< of a whole turn
inline constexpr std::size_t kLogarithmSteps = 256;    ///< from 1 to 2
inline constexpr std::size_t kExponentialSteps = 128;  ///< from 1 to 2
inline constexpr std::size_t kArcSteps = 128;          ///< of a sine from 0 to 1

// Not for other libraries to replace, so that they are reached without a detour.
#if defined(__GNUC__)
#define TARVEX_OWN_TABLE __attribute__((visibility("hidden")))
#else
#define TARVEX_OWN_TABLE
#endif

/// Sine and cosine of i steps.
TARVEX_OWN_TABLE extern const std::array<TableRow, kSineSteps> kSineTable;
/// Of 1 + i steps the reciprocal and the natural logarithm.
TARVEX_OWN_TABLE extern const std::array<TableRow, kLogarithmSteps> kLogarithmTable;
/// The bits of 2^(i steps) less i steps in the place of the exponent's last bits: adding any number
/// of steps there gives the bits of 2 to their power.
TARVEX_OWN_TABLE extern const std::array<std::uint64_t, kExponentialSteps> kExponentialTable;
/// The cosine and the angle whose sine is i steps, up to a little more than 45 degrees; zeros
/// beyond.
TARVEX_OWN_TABLE extern const std::array<TableRow, kArcSteps> kArcTable;

}  // namespace tarvex
