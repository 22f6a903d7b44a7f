// CRC-24Q, sixteen bytes a step: from tables anywhere, by carry-less multiplication where the
// processor has it.
#include <array>

#include "gnss/corrections/crc24q.h"

#if defined(__x86_64__)
#include <immintrin.h>
#endif

namespace tarvex {
namespace {

// The 24 bits are at the top of 32, so that a byte is taken with one shift.
constexpr std::uint32_t kPolynomial = 0x864CFB00U;
constexpr std::size_t kBlock = 16;

using Table = std::array<std::uint32_t, 256>;

constexpr std::uint32_t TimesX(std::uint32_t value) {
  return (value & 0x80000000U) != 0 ? (value << 1) ^ kPolynomial : value << 1;
}

// Table k holds the remainder of a byte with k zero bytes behind it.
constexpr std::array<Table, kBlock> MakeTables() {
  std::array<Table, kBlock> tables{};
  for (std::uint32_t i = 0; i < 256; ++i) {
    std::uint32_t value = i << 24;
    for (int bit = 0; bit < 8; ++bit) value = TimesX(value);
    tables[0][i] = value;
  }
  for (std::size_t k = 1; k < kBlock; ++k) {
    for (std::size_t i = 0; i < 256; ++i) {
      const std::uint32_t before = tables[k - 1][i];
      tables[k][i] = (before << 8) ^ tables[0][before >> 24];
    }
  }
  return tables;
}

constexpr std::array<Table, kBlock> kTables = MakeTables();

std::uint32_t TakeBlock(std::uint32_t crc, const unsigned char* at) {
  const std::uint32_t withCrc = kTables[15][at[0] ^ (crc >> 24)] ^
                                kTables[14][at[1] ^ ((crc >> 16) & 0xFFU)] ^
                                kTables[13][at[2] ^ ((crc >> 8) & 0xFFU)];
  const std::uint32_t middle = kTables[12][at[3]] ^ kTables[11][at[4]] ^ kTables[10][at[5]] ^
                               kTables[9][at[6]] ^ kTables[8][at[7]] ^ kTables[7][at[8]];
  const std::uint32_t rest = kTables[6][at[9]] ^ kTables[5][at[10]] ^ kTables[4][at[11]] ^
                             kTables[3][at[12]] ^ kTables[2][at[13]] ^ kTables[1][at[14]] ^
                             kTables[0][at[15]];
  return withCrc ^ middle ^ rest;
}

std::uint32_t FromTables(const unsigned char* at, std::size_t left) {
  std::uint32_t crc = 0;
  for (; left >= kBlock; left -= kBlock, at += kBlock) crc = TakeBlock(crc, at);
  for (; left > 0; --left, ++at) crc = (crc << 8) ^ kTables[0][*at ^ (crc >> 24)];
  return crc;
}

#if defined(__x86_64__)

// x to the power of `exponent`, modulo the polynomial.
constexpr long long PowerOfX(int exponent) {
  std::uint32_t value = 1;
  for (int i = 0; i < exponent; ++i) value = TimesX(value);
  return value;
}

// Sixteen bytes as a polynomial, the first byte's bits the highest.
[[gnu::target("pclmul,ssse3")]] __m128i Load(const unsigned char* at) {
  const __m128i reversed = _mm_set_epi8(0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15);
  return _mm_shuffle_epi8(_mm_loadu_si128(reinterpret_cast<const __m128i*>(at)), reversed);
}

// The first `count` bytes with zeros in front of them, which change no remainder.
[[gnu::target("pclmul,ssse3")]] __m128i LoadFirst(const unsigned char* at, std::size_t count) {
  alignas(16) static constexpr signed char kShift[32] = {-1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1,
                                                         -1, -1, -1, -1, -1, 0,  1,  2,  3,  4,  5,
                                                         6,  7,  8,  9,  10, 11, 12, 13, 14, 15};
  const __m128i shift = _mm_loadu_si128(reinterpret_cast<const __m128i*>(kShift + count));
  const __m128i reversed = _mm_set_epi8(0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15);
  const __m128i bytes = _mm_loadu_si128(reinterpret_cast<const __m128i*>(at));
  return _mm_shuffle_epi8(_mm_shuffle_epi8(bytes, shift), reversed);
}

// `folded` with what `powers` moves it by, and the block that is there.
[[gnu::target("pclmul,ssse3")]] __m128i Fold(__m128i folded, __m128i powers, __m128i block) {
  const __m128i high = _mm_clmulepi64_si128(folded, powers, 0x11);
  const __m128i low = _mm_clmulepi64_si128(folded, powers, 0x00);
  return _mm_xor_si128(_mm_xor_si128(high, low), block);
}

// Folding (Gopal and others, "Fast CRC computation for generic polynomials using PCLMULQDQ",
// Intel 2009); `size` is at least one block. The 128 bits that are left have the same remainder.
[[gnu::target("pclmul,ssse3")]] std::uint32_t ByFolding(const unsigned char* at, std::size_t size) {
  const __m128i byOne = _mm_set_epi64x(PowerOfX(128 + 64), PowerOfX(128));
  const __m128i byFour = _mm_set_epi64x(PowerOfX(512 + 64), PowerOfX(512));
  const std::size_t first = size % kBlock;
  __m128i folded = LoadFirst(at, first);
  at += first;
  std::size_t blocks = size / kBlock;
  if (blocks >= 8) {
    __m128i lanes[4] = {Fold(folded, byOne, Load(at)), Load(at + 16), Load(at + 32), Load(at + 48)};
    for (at += 64, blocks -= 4; blocks >= 4; at += 64, blocks -= 4) {
      for (std::size_t i = 0; i < 4; ++i) lanes[i] = Fold(lanes[i], byFour, Load(at + 16 * i));
    }
    folded = lanes[0];
    for (std::size_t i = 1; i < 4; ++i) folded = Fold(folded, byOne, lanes[i]);
  }
  for (; blocks > 0; --blocks, at += kBlock) folded = Fold(folded, byOne, Load(at));
  alignas(16) unsigned char left[kBlock];
  const __m128i reversed = _mm_set_epi8(0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15);
  _mm_store_si128(reinterpret_cast<__m128i*>(left), _mm_shuffle_epi8(folded, reversed));
  return TakeBlock(0, left);
}

bool HasCarryLess() {
  return __builtin_cpu_supports("pclmul") != 0 && __builtin_cpu_supports("ssse3") != 0;
}

std::uint32_t Remainder(const unsigned char* at, std::size_t size) {
  static const bool carryLess = HasCarryLess();
  return carryLess && size >= kBlock ? ByFolding(at, size) : FromTables(at, size);
}

#else

std::uint32_t Remainder(const unsigned char* at, std::size_t size) {
  return FromTables(at, size);
}

#endif

}  // namespace

std::uint32_t Crc24qFromTables(std::string_view bytes) {
  return FromTables(reinterpret_cast<const unsigned char*>(bytes.data()), bytes.size()) >> 8;
}

std::uint32_t Crc24qOf(std::string_view bytes) {
  return Remainder(reinterpret_cast<const unsigned char*>(bytes.data()), bytes.size()) >> 8;
}

}  // namespace tarvex
