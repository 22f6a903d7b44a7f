// The addresses of a host. A name server that does not answer would hold the program up for a
// minute: the question is asked on a thread of its own, which is left behind when no caller waits
// for it any more.
#pragma once

#include <netdb.h>

#include <memory>
#include <string>

#include "platform/byte_device.h"

namespace tarvex {

struct FreeAddresses {
  void operator()(addrinfo* first) const { ::freeaddrinfo(first); }
};
using HostAddresses = std::unique_ptr<addrinfo, FreeAddresses>;

/// kUnknownHost when there is no such host, ETIMEDOUT when the answer takes longer than
/// `timeoutMs`, ECANCELED when `stop` said so. A numeric address is never asked for.
DeviceStatus LookUpHost(const std::string& host, const std::string& port, std::uint32_t timeoutMs,
                        const StopAsked& stop, HostAddresses& addresses);

}  // namespace tarvex
