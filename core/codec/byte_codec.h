// Numbers and texts as the bytes of binary files: little or big endian, whatever the byte order of
// this machine.
//
// A fixed record says its layout once, as a function that walks its fields in the order of the
// file; ByteWriter, ByteReader and ByteCounter walk it to make the bytes, to read them and to count
// them:
//
//   template <typename Walker, typename Record>
//   constexpr void WalkCorner(Walker& walker, Record& corner) {
//     walker.Number(corner.x);
//     walker.Number(corner.y);
//     walker.Text(corner.name);
//   }
//   static_assert(ByteCount([](auto& walker) { Corner c; WalkCorner(walker, c); }) == 26);
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>

#include "core/text/fixed_text.h"

namespace tarvex {

enum class ByteOrder { Little, Big };

namespace detail {

template <std::size_t Size>
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

// To the order of the file from that of this machine, or back.
template <typename Unsigned>
constexpr Unsigned InOrder(Unsigned value, ByteOrder order) {
  const bool native = (order == ByteOrder::Little) == (std::endian::native == std::endian::little);
  return native ? value : Swapped(value);
}

}  // namespace detail

/// The integer or floating-point number whose bytes are at `at`.
template <typename Number>
Number NumberAt(const char* at, ByteOrder order = ByteOrder::Little) noexcept {
  typename detail::UnsignedOf<sizeof(Number)>::Type bits;
  std::memcpy(&bits, at, sizeof bits);
  return std::bit_cast<Number>(detail::InOrder(bits, order));
}

template <typename Number>
void AppendNumber(std::string& bytes, Number value, ByteOrder order = ByteOrder::Little) {
  using Unsigned = typename detail::UnsignedOf<sizeof(Number)>::Type;
  const Unsigned bits = detail::InOrder(std::bit_cast<Unsigned>(value), order);
  char field[sizeof bits];
  std::memcpy(field, &bits, sizeof bits);
  bytes.append(field, sizeof field);
}

/// Appends fields to bytes.
class ByteWriter {
 public:
  explicit ByteWriter(std::string& bytes, ByteOrder order = ByteOrder::Little)
      : bytes_(bytes), order_(order) {}

  template <typename T>
  void Number(T value) {
    AppendNumber(bytes_, value, order_);
  }
  /// A field of N + 1 bytes, the text and NULs behind it.
  template <std::size_t N>
  void Text(const FixedText<N>& text) {
    const std::string_view view = text.view();
    bytes_ += view;
    Zeros(N + 1 - view.size());
  }
  void Zeros(std::size_t count) { bytes_.append(count, '\0'); }

 private:
  std::string& bytes_;
  ByteOrder order_;
};

/// Takes fields off the front of bytes. Where they end too early nothing more is taken, which ok()
/// tells.
class ByteReader {
 public:
  explicit ByteReader(std::string_view bytes, ByteOrder order = ByteOrder::Little)
      : rest_(bytes), order_(order) {}

  template <typename T>
  void Number(T& value) {
    if (Has(sizeof value)) value = NumberAt<T>(Take(sizeof value), order_);
  }
  template <std::size_t N>
  void Text(FixedText<N>& text) {
    if (Has(N + 1)) text.TakeField(Take(N + 1));
  }
  void Zeros(std::size_t count) {
    if (Has(count)) Take(count);
  }
  std::string_view Bytes(std::uint64_t count) {
    if (!Has(count)) return {};
    const auto size = static_cast<std::size_t>(count);
    return {Take(size), size};
  }

  bool ok() const { return ok_; }
  std::string_view rest() const { return rest_; }

 private:
  bool Has(std::uint64_t count) { return ok_ = ok_ && count <= rest_.size(); }
  const char* Take(std::size_t count) {
    const char* at = rest_.data();
    rest_.remove_prefix(count);
    return at;
  }

  std::string_view rest_;
  ByteOrder order_;
  bool ok_ = true;
};

/// Counts the bytes of fields.
class ByteCounter {
 public:
  template <typename T>
  constexpr void Number(const T&) {
    count_ += sizeof(T);
  }
  template <std::size_t N>
  constexpr void Text(const FixedText<N>&) {
    count_ += N + 1;
  }
  constexpr void Zeros(std::size_t count) { count_ += count; }

  constexpr std::size_t count() const { return count_; }

 private:
  std::size_t count_ = 0;
};

/// How many bytes the fields take that `walk(walker)` walks.
template <typename Walk>
constexpr std::size_t ByteCount(const Walk& walk) {
  ByteCounter counter;
  walk(counter);
  return counter.count();
}

}  // namespace tarvex
