#include "gnss/port/bluetooth_address.h"

#include <charconv>

namespace tarvex {
namespace {

constexpr std::size_t kPerByte = 3;  // two digits and a colon

}  // namespace

std::string BluetoothAddressText(const BluetoothAddress& address) {
  constexpr std::string_view kHex = "0123456789ABCDEF";
  std::string text;
  for (const std::uint8_t byte : address) {
    if (!text.empty()) text += ':';
    text += kHex[byte >> 4];
    text += kHex[byte & 15];
  }
  return text;
}

std::optional<BluetoothAddress> ParseBluetoothAddress(std::string_view text) {
  BluetoothAddress address{};
  if (text.size() != address.size() * kPerByte - 1) return std::nullopt;
  for (std::size_t i = 0; i < address.size(); ++i) {
    const char* const first = text.data() + i * kPerByte;
    const auto [end, error] = std::from_chars(first, first + 2, address[i], 16);
    if (error != std::errc{} || end != first + 2) return std::nullopt;
    if (i + 1 < address.size() && *end != ':') return std::nullopt;
  }
  return address;
}

}  // namespace tarvex
