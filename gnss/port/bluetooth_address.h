// A Bluetooth device's address, shown as six hexadecimal bytes with colons between them.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace tarvex {

using BluetoothAddress = std::array<std::uint8_t, 6>;

/// "00:1A:7D:DA:71:13".
std::string BluetoothAddressText(const BluetoothAddress& address);

/// Either letter case; nothing when the text is anything else.
std::optional<BluetoothAddress> ParseBluetoothAddress(std::string_view text);

}  // namespace tarvex
