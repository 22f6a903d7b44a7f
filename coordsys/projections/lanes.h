// Doubles side by side ("lanes"): a projection written over lanes converts arrays some points at a
// time and a single point in one lane, without branches and with the same bits whatever the number
// of lanes.
//
// One lane is a double. Two are what every x86-64 and ARM64 has; four are for code that is compiled
// for a processor with 256-bit registers and runs only there (projection_kernel.h). The elementary
// functions of lanes are in elementary.h.
#pragma once

#include <bit>
#include <cmath>
#include <concepts>
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

using OneLane = double;
using TwoLanes = double __attribute__((vector_size(16)));
using FourLanes = double __attribute__((vector_size(32)));

/// False on a processor without 256-bit registers, where two lanes do all.
bool HasFourLanes() noexcept;
/// Makes HasFourLanes false: projections made from then on are what they are on such a processor.
void WithoutFourLanes(bool without) noexcept;

template <typename Lanes>
inline constexpr std::size_t kLanes = sizeof(Lanes) / sizeof(double);

/// More than one lane, where an operation with a plain double means that double in every lane.
template <typename Lanes>
concept SeveralLanes = kLanes<Lanes> > 1;

template <typename Lanes>
struct MaskOfLanes;
template <>
struct MaskOfLanes<OneLane> {
  using Type = std::uint64_t;
};
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
  if constexpr (kLanes<Lanes> == 1) {
    return -std::uint64_t{a < b};
  } else {
    return std::bit_cast<LaneMask<Lanes>>(a < b);
  }
}
template <SeveralLanes Lanes>
inline LaneMask<Lanes> Less(double a, Lanes b) {
  return Less(InAll<Lanes>(a), b);
}
/// False when either is not a number.
template <typename Lanes>
inline LaneMask<Lanes> AtMost(Lanes a, Lanes b) {
  if constexpr (kLanes<Lanes> == 1) {
    return -std::uint64_t{a <= b};
  } else {
    return std::bit_cast<LaneMask<Lanes>>(a <= b);
  }
}
template <SeveralLanes Lanes>
inline LaneMask<Lanes> AtMost(Lanes a, double b) {
  return AtMost(a, InAll<Lanes>(b));
}
template <SeveralLanes Lanes>
inline LaneMask<Lanes> AtMost(double a, Lanes b) {
  return AtMost(InAll<Lanes>(a), b);
}
template <typename Lanes>
inline Lanes Select(LaneMask<Lanes> mask, Lanes a, Lanes b) {
  return FromBits<Lanes>((mask & BitsOf(a)) | (~mask & BitsOf(b)));
}
template <SeveralLanes Lanes>
inline Lanes Select(LaneMask<Lanes> mask, Lanes a, double b) {
  return Select(mask, a, InAll<Lanes>(b));
}

/// The truth value or the bits of one of the lanes.
template <typename Lanes>
inline std::uint64_t InLane(LaneMask<Lanes> mask, std::size_t lane) {
  if constexpr (kLanes<Lanes> == 1) {
    return mask;
  } else {
#if defined(__SSE2__) && defined(__x86_64__)
    // What the compiler takes instead waits for whatever was in the register before.
    if constexpr (kLanes<Lanes> == 2) {
      const auto upper = _mm_shuffle_epi32(std::bit_cast<__m128i>(mask), 0xEE);
      if (lane == 1) return static_cast<std::uint64_t>(_mm_cvtsi128_si64(upper));
    }
#endif
    return mask[lane];
  }
}
template <typename Lanes>
inline bool AnyOf(LaneMask<Lanes> mask) {
#if defined(__SSE2__)
  const auto signs = [](auto two) { return _mm_movemask_pd(std::bit_cast<__m128d>(two)); };
  if constexpr (kLanes<Lanes> == 2) return signs(mask) != 0;
  if constexpr (kLanes<Lanes> == 4) {
    return signs(__builtin_shufflevector(mask, mask, 0, 1) |
                 __builtin_shufflevector(mask, mask, 2, 3)) != 0;
  }
#endif
  bool any = false;
  for (std::size_t i = 0; i < kLanes<Lanes>; ++i) any = any || InLane<Lanes>(mask, i) != 0;
  return any;
}

template <typename Lanes>
inline Lanes SquareRootOf(Lanes x) {
  if constexpr (kLanes<Lanes> == 4) {
    const TwoLanes low = SquareRootOf(TwoLanes{x[0], x[1]});
    const TwoLanes high = SquareRootOf(TwoLanes{x[2], x[3]});
    return Lanes{low[0], low[1], high[0], high[1]};
  } else if constexpr (kLanes<Lanes> == 1) {
    return SquareRootOf(TwoLanes{x, x})[0];
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
  if constexpr (kLanes<Lanes> == 1) {
    return std::fabs(x);
  } else {
    return FromBits<Lanes>(BitsOf(x) & ~kSignBit);
  }
}
/// The magnitude of `a` with the sign of `b`.
template <typename Lanes>
inline Lanes WithSignOf(Lanes a, Lanes b) {
  if constexpr (kLanes<Lanes> == 1) {
    return std::copysign(a, b);
  } else {
    return FromBits<Lanes>((BitsOf(a) & ~kSignBit) | (BitsOf(b) & kSignBit));
  }
}
/// The lesser; `b` where either is not a number.
template <typename Lanes>
inline Lanes LesserOf(Lanes a, Lanes b) {
  return a < b ? a : b;
}
/// The greater; `b` where either is not a number.
template <typename Lanes>
inline Lanes GreaterOf(Lanes a, Lanes b) {
  return b < a ? a : b;
}
template <typename Lanes>
inline Lanes Clamped(Lanes x, double low, double high) {
  return LesserOf(InAll<Lanes>(high), GreaterOf(InAll<Lanes>(low), x));
}
template <typename Lanes>
inline LaneMask<Lanes> Within(Lanes x, double limit) {
  return AtMost(Absolute(x), limit);
}

/// Adding it rounds to an integer, whose low bits are then the low bits of the sum.
inline constexpr double kRounder = 6755399441055744.0;  // 1.5 * 2^52

}  // namespace tarvex
