#include "app/workflow/caster_connection.h"

#include <string>
#include <utility>

#include "gnss/ntrip/tcp_connection.h"
#include "platform/tcp_socket.h"
#include "tls/tls_device.h"

namespace tarvex {

std::unique_ptr<NtripConnection> MakeCasterConnection(const CasterLogin& caster,
                                                      LastErrorRecord& errors, StopAsked stop) {
  if (!caster.encrypted) return MakeTcpNtripConnection(errors, std::move(stop));
  const auto makeDevice = [authorityFile = caster.authorityFile](std::uint32_t connectTimeoutMs,
                                                                 StopAsked asked) {
    return MakeTlsDevice(MakeTcpDevice(connectTimeoutMs, std::move(asked)), authorityFile,
                         connectTimeoutMs);
  };
  return MakeTcpNtripConnection(errors, std::move(stop), makeDevice);
}

}  // namespace tarvex
