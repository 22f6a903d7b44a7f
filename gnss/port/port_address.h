// Where a receiver is, in one text as a person types it:
//   serial:DEVICE[@BAUD]   serial:/dev/ttyUSB0@115200, serial:COM1; also a Bluetooth serial device
//                          (/dev/rfcomm0)
//   tcp:HOST:PORT          tcp:192.168.1.20:9001, tcp:[fe80::1]:9001
//   file:LOG               a recorded log
//   simulated              no hardware at all
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "core/text/outcome.h"
#include "gnss/port/port.h"
#include "platform/clock.h"
#include "platform/file.h"

namespace tarvex {

enum class PortKind { Serial, Tcp, File, Simulated };

struct PortAddress {
  PortKind kind = PortKind::Simulated;
  std::string target;             ///< device, "HOST:PORT" or path; empty for the simulated one
  std::uint32_t baudRate = 9600;  ///< serial only

  bool operator==(const PortAddress&) const = default;
};

/// The problem says what is wrong and how it should look.
OrProblem<PortAddress> ParsePortAddress(std::string_view text);

/// A closed port for the address; nothing for the simulated receiver, which needs none. `stop` ends
/// a connecting or reading that waits.
std::unique_ptr<Port> MakePort(const PortAddress& address, FileSystem& files, Clock& clock,
                               LastErrorRecord& errors, StopAsked stop = {});

}  // namespace tarvex
