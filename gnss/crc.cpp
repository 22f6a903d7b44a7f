#include "gnss/crc.h"

#include <array>

namespace tarvex {
namespace {

constexpr std::uint32_t kCrc32Polynomial = 0xEDB88320U;
constexpr std::uint32_t kCrc24Polynomial = 0x864CFBU;
constexpr std::size_t kSlices = 16;

using Table = std::array<std::uint32_t, 256>;

constexpr Table MakeCrc32() {
  Table table{};
  for (std::uint32_t i = 0; i < table.size(); ++i) {
    std::uint32_t value = i;
    for (int bit = 0; bit < 8; ++bit) {
      value = (value & 1U) != 0 ? (value >> 1) ^ kCrc32Polynomial : value >> 1;
    }
    table[i] = value;
  }
  return table;
}

// The 24 bits stand at the top of 32, so that a byte is taken with one shift. Table k holds the
// remainder of a byte with k zero bytes behind it, so that sixteen bytes are taken in one step.
constexpr std::array<Table, kSlices> MakeCrc24q() {
  std::array<Table, kSlices> tables{};
  for (std::uint32_t i = 0; i < 256; ++i) {
    std::uint32_t value = i << 24;
    for (int bit = 0; bit < 8; ++bit) {
      value = (value & 0x80000000U) != 0 ? (value << 1) ^ (kCrc24Polynomial << 8) : value << 1;
    }
    tables[0][i] = value;
  }
  for (std::size_t k = 1; k < kSlices; ++k) {
    for (std::size_t i = 0; i < 256; ++i) {
      const std::uint32_t before = tables[k - 1][i];
      tables[k][i] = (before << 8) ^ tables[0][before >> 24];
    }
  }
  return tables;
}

constexpr Table kCrc32 = MakeCrc32();
constexpr std::array<Table, kSlices> kCrc24q = MakeCrc24q();

}  // namespace

std::uint32_t Crc32Of(std::string_view bytes) {
  std::uint32_t crc = 0;
  for (const char byte : bytes) {
    crc = (crc >> 8) ^ kCrc32[(crc ^ static_cast<unsigned char>(byte)) & 0xFFU];
  }
  return crc;
}

std::uint32_t Crc24qOf(std::string_view bytes) {
  std::uint32_t crc = 0;  // in the upper 24 bits
  const auto* at = reinterpret_cast<const unsigned char*>(bytes.data());
  std::size_t left = bytes.size();
  for (; left >= kSlices; left -= kSlices, at += kSlices) {
    const std::uint32_t with_crc = kCrc24q[15][at[0] ^ (crc >> 24)] ^
                                   kCrc24q[14][at[1] ^ ((crc >> 16) & 0xFFU)] ^
                                   kCrc24q[13][at[2] ^ ((crc >> 8) & 0xFFU)];
    const std::uint32_t middle = kCrc24q[12][at[3]] ^ kCrc24q[11][at[4]] ^ kCrc24q[10][at[5]] ^
                                 kCrc24q[9][at[6]] ^ kCrc24q[8][at[7]] ^ kCrc24q[7][at[8]];
    const std::uint32_t rest = kCrc24q[6][at[9]] ^ kCrc24q[5][at[10]] ^ kCrc24q[4][at[11]] ^
                               kCrc24q[3][at[12]] ^ kCrc24q[2][at[13]] ^ kCrc24q[1][at[14]] ^
                               kCrc24q[0][at[15]];
    crc = with_crc ^ middle ^ rest;
  }
  for (; left > 0; --left, ++at) crc = (crc << 8) ^ kCrc24q[0][*at ^ (crc >> 24)];
  return crc >> 8;
}

}  // namespace tarvex
