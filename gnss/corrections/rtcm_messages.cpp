#include "gnss/corrections/rtcm_messages.h"

#include <cstdint>

namespace tarvex {
namespace {

constexpr double kCoordinateStep = 0.0001;
constexpr std::size_t kBytesOf1005 = 19;
constexpr std::size_t kBytesOf1006 = 21;

// Bits counted from the most significant one of the first byte.
std::uint64_t Bits(std::string_view message, std::size_t first, std::size_t count) {
  std::uint64_t value = 0;
  for (std::size_t bit = first; bit < first + count; ++bit) {
    const auto byte = static_cast<unsigned char>(message[bit / 8]);
    value = value << 1 | (byte >> (7 - bit % 8) & 1U);
  }
  return value;
}

double Coordinate(std::string_view message, std::size_t first) {
  constexpr std::size_t kBits = 38;
  const std::uint64_t raw = Bits(message, first, kBits);
  const bool negative = (raw >> (kBits - 1) & 1U) != 0;
  const auto value =
      static_cast<std::int64_t>(raw) - (negative ? std::int64_t{1} << kBits : std::int64_t{0});
  return static_cast<double>(value) * kCoordinateStep;
}

}  // namespace

int RtcmMessageNumber(std::string_view message) {
  if (message.size() < 2) return 0;
  return static_cast<unsigned char>(message[0]) << 4 | static_cast<unsigned char>(message[1]) >> 4;
}

std::optional<BaseStation> ReadBaseStation(std::string_view message) {
  const int number = RtcmMessageNumber(message);
  const bool withHeight = number == 1006;
  if (number != 1005 && !withHeight) return std::nullopt;
  if (message.size() < (withHeight ? kBytesOf1006 : kBytesOf1005)) return std::nullopt;
  BaseStation station;
  station.id = static_cast<int>(Bits(message, 12, 12));
  station.position = {
      .xM = Coordinate(message, 34), .yM = Coordinate(message, 74), .zM = Coordinate(message, 114)};
  if (withHeight) {
    station.antennaHeightM = static_cast<double>(Bits(message, 152, 16)) * kCoordinateStep;
  }
  return station;
}

}  // namespace tarvex
