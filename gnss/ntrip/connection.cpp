#include "gnss/ntrip/connection.h"

#include <array>

namespace tarvex {

PortError ReceiveText(NtripConnection& connection, std::string& received, std::uint32_t waitMs) {
  std::array<char, 1023> buffer;
  std::size_t count = 0;
  const PortError error = connection.Receive(buffer, count, static_cast<int>(waitMs));
  received.assign(buffer.data(), error == PortError::None ? count : 0);
  return error;
}

}  // namespace tarvex
