// A TCP connection of this machine to a host and port.
#pragma once

#include <memory>

#include "platform/byte_device.h"

namespace tarvex {

/// A TCP client as a byte device. Open takes "HOST:PORT" (an IPv6 host in brackets) and waits at
/// most `connectTimeoutMs` for the host's addresses and again for each of them to answer. `stop`
/// ends these waits and those of Read.
std::unique_ptr<ByteDevice> MakeTcpDevice(std::uint32_t connectTimeoutMs, StopAsked stop = {});

/// Waits for connections to a port of this machine.
class TcpListener {
 public:
  virtual ~TcpListener() = default;

  /// The port that was taken.
  virtual int port() const = 0;
  /// The next connection; none, with an ok status, when the time ran out.
  virtual DeviceStatus Accept(int timeoutMs, std::unique_ptr<ByteDevice>& connection) = 0;
};

/// Listens on the loopback address alone; port 0 takes a free one. Nothing, with the reason in
/// `status`, when the port is taken.
std::unique_ptr<TcpListener> ListenOnLoopback(int port, DeviceStatus& status);

}  // namespace tarvex
