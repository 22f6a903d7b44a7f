// Sine and cosine, the angle of a direction, logarithm and exponential over lanes (lanes.h),
// without branches and without the C library, so that every machine computes the same bits.
//
// Each looks up the value at the nearest step of a table and goes the rest by a few terms of
// Taylor's series (Gal and Bachelis, "An accurate elementary mathematical library for the IEEE
// floating point standard", ACM TOMS 17 (1991)): that takes half the steps of one polynomial over
// the whole range, and no division. The errors stated are the largest over the ranges stated
// (tests/coordsys/projections/elementary_test.cpp); outside the result is some number, never a
// trap.
#pragma once

#include <numbers>

#include "coordsys/projections/elementary_tables.h"
#include "coordsys/projections/lanes.h"

namespace tarvex {

inline constexpr double kQuarterTurn = std::numbers::pi / 2.0;

template <typename Lanes>
struct LaneRow {
  Lanes first;
  Lanes second;
};

/// The rows of a table that the lanes name.
template <std::size_t N, typename Lanes>
inline LaneRow<Lanes> RowOf(const std::array<TableRow, N>& table, LaneMask<Lanes> index) {
  const auto row = [&](std::size_t lane) {
    return std::bit_cast<TwoLanes>(table[static_cast<std::size_t>(InLane<Lanes>(index, lane))]);
  };
  if constexpr (kLanes<Lanes> == 1) {
    const TableRow& only = table[static_cast<std::size_t>(index)];
    return {only.first, only.second};
  } else if constexpr (kLanes<Lanes> == 4) {
    const Lanes even = __builtin_shufflevector(row(0), row(2), 0, 1, 2, 3);
    const Lanes odd = __builtin_shufflevector(row(1), row(3), 0, 1, 2, 3);
    return {__builtin_shufflevector(even, odd, 0, 4, 2, 6),
            __builtin_shufflevector(even, odd, 1, 5, 3, 7)};
  } else {
    return {__builtin_shufflevector(row(0), row(1), 0, 2),
            __builtin_shufflevector(row(0), row(1), 1, 3)};
  }
}

/// The entries of a table that the lanes name.
template <std::size_t N, typename Lanes>
inline LaneMask<Lanes> EntryOf(const std::array<std::uint64_t, N>& table, LaneMask<Lanes> index) {
  if constexpr (kLanes<Lanes> == 1) {
    return table[static_cast<std::size_t>(index)];
  } else {
    LaneMask<Lanes> entries = {};
    for (std::size_t lane = 0; lane < kLanes<Lanes>; ++lane) {
      entries[lane] = table[static_cast<std::size_t>(InLane<Lanes>(index, lane))];
    }
    return entries;
  }
}

template <typename Lanes>
struct SineCosine {
  Lanes sin;
  Lanes cos;
};

/// Sine and cosine of an angle up to ten turns; error 1.3e-16, and of a small one 3.6e-16 of itself
/// (a cosine within 1e-11 of a pole: 1e-12 of itself).
template <typename Lanes>
inline SineCosine<Lanes> SineCosineOf(Lanes x) {
  constexpr double kStepsPerRad = 128.0 / std::numbers::pi;
  constexpr double kStepHigh = 0x1.921fb54442000p-6;  // 40 bits
  constexpr double kStepLow = 0x1.a308d313198a3p-47;
  const Lanes rounded = x * kStepsPerRad + kRounder;
  const Lanes steps = rounded - kRounder;
  const Lanes r = (x - steps * kStepHigh) - steps * kStepLow;
  const auto [stepSin, stepCos] = RowOf<kSineSteps, Lanes>(kSineTable, BitsOf(rounded) & 255);
  const Lanes r2 = r * r;
  constexpr double kNextTerm = 2.67e-8;  // what the term of r^7 does, best over half a step
  const Lanes sin = r + r * r2 * (r2 * (1.0 / 120.0 - kNextTerm) - 1.0 / 6.0);
  const Lanes cosLess1 = r2 * (r2 * (1.0 / 24.0 - r2 * (1.0 / 720.0)) - 0.5);
  return {stepSin + (stepCos * sin + stepSin * cosLess1),
          stepCos + (stepCos * cosLess1 - stepSin * sin)};
}

/// The angle of a direction of length 1, -pi to pi: atan2(sin, cos); error 5.5e-16, and of a small
/// angle 2.9e-16 of itself. A length that is off by 1e-14 does no harm; the angle of no direction
/// at all, (0, 0), is 0.
template <typename Lanes>
inline Lanes AngleOf(Lanes sin, Lanes cos) {
  if constexpr (kLanes<Lanes> == 1) return AngleOf(TwoLanes{sin, sin}, TwoLanes{cos, cos})[0];
  const Lanes small = LesserOf(Absolute(sin), Absolute(cos));
  const Lanes large = GreaterOf(Absolute(sin), Absolute(cos));
  const Lanes rounded = small * static_cast<double>(kArcSteps) + kRounder;
  const Lanes stepSin = (rounded - kRounder) * (1.0 / kArcSteps);
  const auto [stepCos, step] = RowOf<kArcSteps, Lanes>(kArcTable, BitsOf(rounded) & 127);
  const Lanes s = small * stepCos - large * stepSin;
  const Lanes s2 = s * s;
  const Lanes arc = step + (s + s * s2 * (1.0 / 6.0 + s2 * (3.0 / 40.0)));
  // An eighth of the circle is known; the others follow from where the direction points.
  const LaneMask<Lanes> steep = Less(Absolute(cos), Absolute(sin));
  const LaneMask<Lanes> left = -(BitsOf(cos) >> 63);
  const LaneMask<Lanes> turned = (steep ^ left) & kSignBit;
  const Lanes axis = Select(steep, InAll<Lanes>(kQuarterTurn),
                            FromBits<Lanes>(left & BitsOf(InAll<Lanes>(std::numbers::pi))));
  const Lanes angle = axis + FromBits<Lanes>(BitsOf(arc) ^ turned);
  return FromBits<Lanes>(BitsOf(angle) ^ (BitsOf(sin) & kSignBit));
}

/// Natural logarithm of a positive normal number; error 1.5e-16 from 1/2 to 2 and 3.5e-16 of itself
/// beyond; 0 for 1.
template <typename Lanes>
inline Lanes LogarithmOf(Lanes x) {
  constexpr std::uint64_t kOne = 0x3ff0000000000000;
  constexpr std::uint64_t kExponent = 0xfff0000000000000;
  constexpr std::uint64_t kStepBits = 0x000ff00000000000;
  constexpr std::uint64_t kHalfStep = 0x0000080000000000;
  constexpr std::uint64_t kTwo52 = 0x4330000000000000;
  const LaneMask<Lanes> bits = BitsOf(x);
  const LaneMask<Lanes> rounded = bits + kHalfStep;
  const LaneMask<Lanes> index = (rounded >> 44) & 255;
  const auto [overStep, stepLog] = RowOf<kLogarithmSteps, Lanes>(kLogarithmTable, index);
  const Lanes exponent = FromBits<Lanes>((rounded >> 52) | kTwo52) - (4503599627370496.0 + 1023.0);
  const Lanes step = FromBits<Lanes>((rounded & kStepBits) + kOne);
  const Lanes mantissa = FromBits<Lanes>(bits - (rounded & kExponent) + kOne);
  const Lanes r = (mantissa - step) * overStep;
  const Lanes r2 = r * r;
  const Lanes first = r + r2 * (r * (1.0 / 3.0) - 0.5);
  const Lanes next = r2 * r2 * (r * (1.0 / 5.0) - 0.25);
  return (exponent * std::numbers::ln2 + stepLog) + (first + next);
}

/// exp(x) to 2.2e-16 of itself, of an x between -700 and 700.
template <typename Lanes>
inline Lanes ExponentialOf(Lanes x) {
  constexpr double kStepsPerUnit = 128.0 / std::numbers::ln2;
  constexpr double kStepHigh = 0x1.62e42fefa0000p-8;  // 36 bits
  constexpr double kStepLow = 0x1.cf79abc9e3b3ap-47;
  const Lanes rounded = x * kStepsPerUnit + kRounder;
  const Lanes steps = rounded - kRounder;
  const Lanes r = (x - steps * kStepHigh) - steps * kStepLow;
  const LaneMask<Lanes> index = BitsOf(rounded) & 127;
  const LaneMask<Lanes> power = EntryOf<kExponentialSteps, Lanes>(kExponentialTable, index);
  const Lanes step = FromBits<Lanes>(power + (BitsOf(rounded) << 45));
  const Lanes r2 = r * r;
  const Lanes first = r + r2 * (0.5 + r * (1.0 / 6.0));
  const Lanes next = r2 * r2 * (1.0 / 24.0 + r * (1.0 / 120.0));
  return step + step * (first + next);
}

}  // namespace tarvex
