// A TCP connection of this machine to a host and port.
#pragma once

#include <memory>

#include "platform/byte_device.h"

namespace tarvex {

/// A TCP client as a byte device. Open takes "HOST:PORT" (an IPv6 host in brackets) and waits at
/// most `connect_timeout_ms` for each address of the host.
std::unique_ptr<ByteDevice> MakeTcpDevice(std::uint32_t connect_timeout_ms);

}  // namespace tarvex
