// Elementary functions over doubles side by side ("lanes"), without branches and without the C
// library: a projection written over lanes converts arrays some points at a time, and a single
// point in all lanes at once, with the same bits whatever the number of lanes.
//
// Two lanes are what every x86-64 and ARM64 has; four are for code that is compiled for a processor
// with 256-bit registers and runs only there (projection_kernel.h). The functions are those of the
// freely distributable math library of Sun Microsystems (fdlibm), good to one unit in the last
// place over the ranges stated; outside them the result is some number, never a trap.
#pragma once

#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdint>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

// A function for processors with AVX2, with all that it calls compiled into it: nothing outside
// may hand over four lanes, because a function for every processor takes them in another way.
#if defined(__x86_64__) && defined(__GNUC__) && !defined(__clang__) && defined(__OPTIMIZE__)
#define TARVEX_FOUR_LANES __attribute__((target("avx2"), flatten))
#endif

namespace tarvex {

using TwoLanes = double __attribute__((vector_size(16)));
using FourLanes = double __attribute__((vector_size(32)));

template <typename Lanes>
inline constexpr std::size_t kLanes = sizeof(Lanes) / sizeof(double);

template <typename Lanes>
struct MaskOfLanes;
template <>
struct MaskOfLanes<TwoLanes> {
  using Type = std::uint64_t __attribute__((vector_size(16)));
};
template <>
struct MaskOfLanes<FourLanes> {
  using Type = std::uint64_t __attribute__((vector_size(32)));
};
/// A truth value per lane, all bits or none; also the bit pattern of the doubles.
template <typename Lanes>
using LaneMask = typename MaskOfLanes<Lanes>::Type;

template <typename Lanes>
inline LaneMask<Lanes> BitsOf(Lanes x) {
  return std::bit_cast<LaneMask<Lanes>>(x);
}
template <typename Lanes>
inline Lanes FromBits(LaneMask<Lanes> bits) {
  return std::bit_cast<Lanes>(bits);
}
/// The same value in all lanes.
template <typename Lanes>
inline Lanes InAll(double x) {
  return x - Lanes{};
}

template <typename Lanes>
inline LaneMask<Lanes> Less(Lanes a, Lanes b) {
  return std::bit_cast<LaneMask<Lanes>>(a < b);
}
template <typename Lanes>
inline LaneMask<Lanes> Less(double a, Lanes b) {
  return Less(InAll<Lanes>(a), b);
}
/// False when either is not a number.
template <typename Lanes>
inline LaneMask<Lanes> AtMost(Lanes a, Lanes b) {
  return std::bit_cast<LaneMask<Lanes>>(a <= b);
}
template <typename Lanes>
inline LaneMask<Lanes> AtMost(Lanes a, double b) {
  return AtMost(a, InAll<Lanes>(b));
}
template <typename Lanes>
inline LaneMask<Lanes> AtMost(double a, Lanes b) {
  return AtMost(InAll<Lanes>(a), b);
}
template <typename Lanes>
inline Lanes Select(LaneMask<Lanes> mask, Lanes a, Lanes b) {
  return FromBits<Lanes>((mask & BitsOf(a)) | (~mask & BitsOf(b)));
}
template <typename Lanes>
inline Lanes Select(LaneMask<Lanes> mask, Lanes a, double b) {
  return Select(mask, a, InAll<Lanes>(b));
}

template <typename Mask>
inline bool AnyOf(Mask mask) {
  bool any = false;
  for (std::size_t i = 0; i < sizeof(Mask) / sizeof(mask[0]); ++i) any = any || mask[i] != 0;
  return any;
}

template <typename Lanes>
inline Lanes SquareRootOf(Lanes x) {
  if constexpr (kLanes<Lanes> == 4) {
    const TwoLanes low = SquareRootOf(TwoLanes{x[0], x[1]});
    const TwoLanes high = SquareRootOf(TwoLanes{x[2], x[3]});
    return Lanes{low[0], low[1], high[0], high[1]};
  } else {
#if defined(__SSE2__)
    return std::bit_cast<Lanes>(_mm_sqrt_pd(std::bit_cast<__m128d>(x)));
#else
    return Lanes{__builtin_sqrt(x[0]), __builtin_sqrt(x[1])};
#endif
  }
}

inline constexpr std::uint64_t kSignBit = std::uint64_t{1} << 63;

template <typename Lanes>
inline Lanes Absolute(Lanes x) {
  return FromBits<Lanes>(BitsOf(x) & ~kSignBit);
}
/// The magnitude of `a` with the sign of `b`.
template <typename Lanes>
inline Lanes WithSignOf(Lanes a, Lanes b) {
  return FromBits<Lanes>((BitsOf(a) & ~kSignBit) | (BitsOf(b) & kSignBit));
}
template <typename Lanes>
inline Lanes Clamped(Lanes x, double low, double high) {
  x = Select(Less(x, InAll<Lanes>(low)), InAll<Lanes>(low), x);
  return Select(Less(high, x), InAll<Lanes>(high), x);
}
template <typename Lanes>
inline LaneMask<Lanes> Within(Lanes x, double limit) {
  return AtMost(Absolute(x), limit);
}

/// Adding it rounds to an integer, whose low bits are then the low bits of the sum.
inline constexpr double kRounder = 6755399441055744.0;  // 1.5 * 2^52

template <typename Lanes>
struct SineCosine {
  Lanes sin;
  Lanes cos;
};

/// Sine and cosine of an angle up to a few turns.
template <typename Lanes>
inline SineCosine<Lanes> SineCosineOf(Lanes x) {
  constexpr double kTwoOverPi = 6.36619772367581382433e-01;
  constexpr double kPart1 = 1.57079632673412561417e+00;  // 33 bits each
  constexpr double kPart2 = 6.07710050630396597660e-11;
  constexpr double kPart3 = 2.02226624871116645580e-21;
  const Lanes rounded = x * kTwoOverPi + kRounder;
  const Lanes k = rounded - kRounder;
  const LaneMask<Lanes> quadrant = BitsOf(rounded);
  const Lanes r = ((x - k * kPart1) - k * kPart2) - k * kPart3;
  const Lanes z = r * r;
  const Lanes w2 = z * z;  // pairs of terms, not one after the other: half the waiting
  const Lanes sineSum = (-1.66666666666666324348e-01 + z * 8.33333333332248946124e-03) +
                        w2 * ((-1.98412698298579493134e-04 + z * 2.75573137070700676789e-06) +
                              w2 * (-2.50507602534068634195e-08 + z * 1.58969099521155010221e-10));
  const Lanes sine = r + r * z * sineSum;
  const Lanes cosineSum = (4.16666666666666019037e-02 - z * 1.38888888888741095749e-03) +
                          w2 * ((2.48015872894767294178e-05 - z * 2.75573143513906633035e-07) +
                                w2 * (2.08757232129817482790e-09 - z * 1.13596475577881948265e-11));
  const Lanes tail = w2 * cosineSum;
  const Lanes half = 0.5 * z;
  const Lanes w = 1.0 - half;
  const Lanes cosine = w + (((1.0 - w) - half) + tail);
  const LaneMask<Lanes> odd = -(quadrant & 1);
  const LaneMask<Lanes> sineSign = (quadrant & 2) << 62;
  const LaneMask<Lanes> cosineSign = ((quadrant + 1) & 2) << 62;
  return {FromBits<Lanes>(BitsOf(Select(odd, cosine, sine)) ^ sineSign),
          FromBits<Lanes>(BitsOf(Select(odd, sine, cosine)) ^ cosineSign)};
}

/// atan2: the angle of the direction (x, y), -pi to pi; 0 for no direction at all.
template <typename Lanes>
inline Lanes AngleOf(Lanes y, Lanes x) {
  constexpr double kTanEighth = 0.41421356237309503;
  constexpr double kPi = 3.14159265358979311600e+00;
  constexpr double kPiLow = 1.22464679914735317723e-16;
  const Lanes ay = Absolute(y);
  const Lanes ax = Absolute(x);
  const LaneMask<Lanes> steep = Less(ax, ay);
  const Lanes small = Select(steep, ax, ay);
  const Lanes large = Select(steep, ay, ax);
  const LaneMask<Lanes> upper = Less(large * kTanEighth, small);  // turned by 45 degrees
  const Lanes numerator = Select(upper, small - large, small);
  const Lanes denominator = Select(upper, small + large, large);
  const Lanes r = numerator / Select(Less(0.0, denominator), denominator, 1.0);
  const Lanes z = r * r;
  const Lanes w = z * z;
  const Lanes even =
      z * (3.33333333333329318027e-01 +
           w * (1.42857142725034663711e-01 +
                w * (9.09088713343650656196e-02 +
                     w * (6.66107313738753120669e-02 +
                          w * (4.97687799461593236017e-02 + w * 1.62858201153657823623e-02)))));
  const Lanes odd =
      w * (-1.99999999998764832476e-01 +
           w * (-1.11111104054623557880e-01 +
                w * (-7.69187620504482999495e-02 +
                     w * (-5.83357013379057348645e-02 + w * -3.65315727442169155270e-02))));
  // What is added to +-(the arc of r): a multiple of 45 degrees, in two parts.
  const Lanes arc = r - r * (even + odd);
  const Lanes eighth = Select(upper, InAll<Lanes>(0.25), 0.0);
  const LaneMask<Lanes> left = -(BitsOf(x) >> 63);
  Lanes multiple = Select(steep, 0.5 - eighth, eighth);
  Lanes signedArc = Select(steep, -arc, arc);
  multiple = Select(left, 1.0 - multiple, multiple);
  signedArc = Select(left, -signedArc, signedArc);
  const Lanes angle = multiple * kPi + (signedArc + multiple * kPiLow);
  return FromBits<Lanes>(BitsOf(angle) ^ (BitsOf(y) & kSignBit));
}

/// Natural logarithm of a positive normal number.
template <typename Lanes>
inline Lanes LogarithmOf(Lanes x) {
  constexpr std::uint64_t kRootHalf = 0x3fe6a09e00000000;
  constexpr std::uint64_t kOne = 0x3ff0000000000000;
  constexpr std::uint64_t kFraction = 0x000fffffffffffff;
  constexpr std::uint64_t kTwo52 = 0x4330000000000000;
  constexpr double kLn2High = 6.93147180369123816490e-01;
  constexpr double kLn2Low = 1.90821492927058770002e-10;
  const LaneMask<Lanes> bits = BitsOf(x) + (kOne - kRootHalf);
  const Lanes k = FromBits<Lanes>(((bits >> 52) & 0x7ff) | kTwo52) - (4503599627370496.0 + 1023.0);
  const Lanes f = FromBits<Lanes>((bits & kFraction) + kRootHalf) - 1.0;
  const Lanes s = f / (2.0 + f);
  const Lanes z = s * s;
  const Lanes w = z * z;
  const Lanes t1 = w * (3.999999999940941908e-01 +
                        w * (2.222219843214978396e-01 + w * 1.531383769920937332e-01));
  const Lanes t2 = z * (6.666666666666735130e-01 +
                        w * (2.857142874366239149e-01 +
                             w * (1.818357216161805012e-01 + w * 1.479819860511658591e-01)));
  const Lanes halfSquare = 0.5 * f * f;
  return s * (halfSquare + (t1 + t2)) + k * kLn2Low - halfSquare + f + k * kLn2High;
}

/// exp(x); x is taken between -700 and 700.
template <typename Lanes>
inline Lanes ExponentialOf(Lanes x) {
  constexpr double kOverLn2 = 1.44269504088896338700e+00;
  constexpr double kLn2High = 6.93147180369123816490e-01;
  constexpr double kLn2Low = 1.90821492927058770002e-10;
  x = Clamped(x, -700.0, 700.0);
  const Lanes rounded = x * kOverLn2 + kRounder;
  const Lanes k = rounded - kRounder;
  const Lanes high = x - k * kLn2High;
  const Lanes low = k * kLn2Low;
  const Lanes r = high - low;
  const Lanes z = r * r;
  const Lanes w = z * z;
  const Lanes sum = (1.66666666666666019037e-01 - z * 2.77777777770155933842e-03) +
                    w * ((6.61375632143793436117e-05 - z * 1.65339022054652515390e-06) +
                         w * 4.13813679705723846039e-08);
  const Lanes c = r - z * sum;
  const Lanes mantissa = 1.0 + (r * c / (2.0 - c) - low + high);
  return mantissa * FromBits<Lanes>((BitsOf(rounded) + 1023) << 52);
}

}  // namespace tarvex
