// The check sum of correction messages.
#pragma once

#include <cstdint>
#include <string_view>

namespace tarvex {

/// CRC-24Q of RTCM 3 frames: polynomial 0x1864CFB, start 0.
std::uint32_t Crc24qOf(std::string_view bytes);
/// The same the way it is done where the processor has no carry-less multiplication.
std::uint32_t Crc24qFromTables(std::string_view bytes);

}  // namespace tarvex
