// What the NTRIP client talks through: a TCP connection, or a receiver that has an NTRIP client of
// its own and does the whole operation itself.
#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <string_view>

#include "gnss/ntrip/progress.h"
#include "gnss/port/port.h"

namespace tarvex {

enum class NtripOperation : int {
  OpenTcp = 106,         ///< host, port
  OpenMountpoint = 112,  ///< host, port, mountpoint, user, password
  FetchTable = 113,      ///< host, port, fileName
};

struct NtripTarget {
  std::string host;
  std::string port;
  std::string mountpoint = {};
  std::string user = {};
  std::string password = {};
  std::string fileName = {};
};

class NtripConnection {
 public:
  virtual ~NtripConnection() = default;

  virtual bool Supports(NtripOperation operation) = 0;
  /// Cancelled when the progress object says so.
  virtual PortError Perform(NtripOperation operation, const NtripTarget& target,
                            NtripProgress& progress) = 0;
  virtual PortError Send(std::string_view bytes, int timeoutMs) = 0;
  /// Waits for the first bytes and takes what came with them. FewerBytesRead when none came in
  /// time, another error when the connection is gone.
  virtual PortError Receive(std::span<char> out, std::size_t& count, int timeoutMs) = 0;
  virtual void Close() = 0;
};

/// One receive of up to 1023 bytes; `received` is empty when it failed.
PortError ReceiveText(NtripConnection& connection, std::string& received, std::uint32_t waitMs);

}  // namespace tarvex
