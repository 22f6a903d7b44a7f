#include "gnss/receivers/crc32.h"

#include <array>

namespace tarvex {
namespace {

constexpr std::uint32_t kCrc32Polynomial = 0xEDB88320U;

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

constexpr Table kCrc32 = MakeCrc32();

}  // namespace

std::uint32_t Crc32Of(std::string_view bytes) {
  std::uint32_t crc = 0;
  for (const char byte : bytes) {
    crc = (crc >> 8) ^ kCrc32[(crc ^ static_cast<unsigned char>(byte)) & 0xFFU];
  }
  return crc;
}

}  // namespace tarvex
