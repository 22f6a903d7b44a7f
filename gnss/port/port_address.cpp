#include "gnss/port/port_address.h"

#include <utility>

#include "core/text/number_text.h"
#include "core/text/string_table.h"
#include "gnss/gnss_texts.h"
#include "gnss/port/replay_device.h"
#include "gnss/port/serial_port.h"
#include "platform/tcp_socket.h"

namespace tarvex {
namespace {

constexpr std::uint32_t kLowestBaud = 110;
constexpr std::uint32_t kHighestBaud = 921600;
constexpr std::uint32_t kConnectTimeoutMs = 10000;
constexpr std::uint32_t kDataBits = 8;

Failure<Problem> Refused(int text, std::string_view given) {
  return ProblemOf(Strings().Text(text, {given}));
}

OrProblem<PortAddress> ParseSerial(std::string_view target) {
  const std::size_t at = target.rfind('@');
  PortAddress address{.kind = PortKind::Serial, .target = std::string(target.substr(0, at))};
  if (address.target.empty()) return Refused(kTextNoDevice, target);
  if (at == std::string_view::npos) return address;
  const auto baud = ParseInteger(target.substr(at + 1));
  if (!baud || *baud < kLowestBaud || *baud > kHighestBaud) {
    return Refused(kTextBaudRate, target.substr(at + 1));
  }
  address.baudRate = static_cast<std::uint32_t>(*baud);
  return address;
}

OrProblem<PortAddress> ParseTcp(std::string_view target) {
  const std::size_t colon = target.rfind(':');
  if (colon == std::string_view::npos || colon == 0) return Refused(kTextHostPort, target);
  const auto port = ParseInteger(target.substr(colon + 1));
  if (!port || *port < 1 || *port > 65535) return Refused(kTextHostPort, target);
  return PortAddress{.kind = PortKind::Tcp, .target = std::string(target)};
}

}  // namespace

OrProblem<PortAddress> ParsePortAddress(std::string_view text) {
  if (text == "simulated") return PortAddress{};
  const std::size_t colon = text.find(':');
  const std::string_view kind = text.substr(0, colon);
  const std::string_view target =
      colon == std::string_view::npos ? std::string_view() : text.substr(colon + 1);
  if (kind == "serial") return ParseSerial(target);
  if (kind == "tcp") return ParseTcp(target);
  if (kind != "file") return Refused(kTextAddressForm, text);
  if (target.empty()) return Refused(kTextNoLog, text);
  return PortAddress{.kind = PortKind::File, .target = std::string(target)};
}

std::unique_ptr<Port> MakePort(const PortAddress& address, FileSystem& files, Clock& clock,
                               LastErrorRecord& errors, StopAsked stop) {
  switch (address.kind) {
    case PortKind::Serial: {
      auto port = std::make_unique<SerialPort>(errors, clock, std::move(stop));
      (void)port->SetLine(address.target, address.baudRate, kDataBits, 0, 0);
      return port;
    }
    case PortKind::Tcp:
      return std::make_unique<Port>(address.target,
                                    MakeTcpDevice(kConnectTimeoutMs, std::move(stop)), errors);
    case PortKind::File:
      return std::make_unique<Port>(address.target, MakeReplayDevice(files), errors);
    case PortKind::Simulated:
      break;
  }
  return nullptr;
}

}  // namespace tarvex
