// The check sums of receiver and correction messages.
#pragma once

#include <cstdint>
#include <string_view>

namespace tarvex {

/// CRC-32 of a receiver's ASCII log: polynomial 0xEDB88320 reflected, start 0, no final inversion.
std::uint32_t Crc32Of(std::string_view bytes);

/// CRC-24Q of RTCM 3 frames: polynomial 0x1864CFB, start 0.
std::uint32_t Crc24qOf(std::string_view bytes);
/// The same the way it is done where the processor has no carry-less multiplication.
std::uint32_t Crc24qFromTables(std::string_view bytes);

}  // namespace tarvex
