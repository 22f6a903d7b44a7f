// Numbers in the bytes of binary grid files, whatever the byte order of this machine and of the
// file.
#pragma once

#include <bit>
#include <cstdint>
#include <cstring>

namespace tarvex {

enum class ByteOrder { Little, Big };

namespace detail {

template <int Size>
struct UnsignedOf;
template <>
struct UnsignedOf<1> {
  using Type = std::uint8_t;
};
template <>
struct UnsignedOf<2> {
  using Type = std::uint16_t;
};
template <>
struct UnsignedOf<4> {
  using Type = std::uint32_t;
};
template <>
struct UnsignedOf<8> {
  using Type = std::uint64_t;
};

template <typename Unsigned>
constexpr Unsigned Swapped(Unsigned value) {
  if constexpr (sizeof value == 8) return __builtin_bswap64(value);
  if constexpr (sizeof value == 4) return __builtin_bswap32(value);
  if constexpr (sizeof value == 2) return __builtin_bswap16(value);
  return value;
}

}  // namespace detail

/// The number whose bytes stand at `at`.
template <typename Number>
Number NumberAt(const char* at, ByteOrder order) noexcept {
  typename detail::UnsignedOf<sizeof(Number)>::Type bits;
  std::memcpy(&bits, at, sizeof bits);
  const bool native = (order == ByteOrder::Little) == (std::endian::native == std::endian::little);
  return std::bit_cast<Number>(native ? bits : detail::Swapped(bits));
}

}  // namespace tarvex
