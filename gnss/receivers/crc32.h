// The check sum of a receiver's ASCII log.
#pragma once

#include <cstdint>
#include <string_view>

namespace tarvex {

/// CRC-32 of a receiver's ASCII log: polynomial 0xEDB88320 reflected, start 0, no final inversion.
std::uint32_t Crc32Of(std::string_view bytes);

}  // namespace tarvex
