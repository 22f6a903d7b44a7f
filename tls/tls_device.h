// A connection by TLS as a byte device, over another device that carries its bytes.
#pragma once

#include <memory>
#include <string>

#include "platform/byte_device.h"

namespace tarvex {

/// Open takes what the carrier's takes, "HOST:PORT" (an IPv6 host in brackets). It opens the
/// carrier, then shakes hands within `handshakeTimeoutMs` and checks that the certificate is HOST's
/// and signed by an authority: one of those in `authorityFile` (PEM) and no other, or one of the
/// system's when that is empty. When any of it fails the device is closed, nothing was sent in the
/// clear, the status is DeviceStatus::kRefused and Explain says why.
///
/// The protocol is in the run-time library "tls" (tls_interface.h), which is loaded here and not
/// before. Waits end as those of the carrier do.
std::unique_ptr<ByteDevice> MakeTlsDevice(std::unique_ptr<ByteDevice> carrier,
                                          std::string authorityFile,
                                          std::uint32_t handshakeTimeoutMs);

}  // namespace tarvex
