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

bool Refuse(std::string& problem, int text, std::string_view given) {
  problem = Strings().Text(text, {given});
  return false;
}

bool ParseSerial(std::string_view target, PortAddress& address, std::string& problem) {
  const std::size_t at = target.rfind('@');
  const std::string_view device = target.substr(0, at);
  if (device.empty()) return Refuse(problem, kTextNoDevice, target);
  address.target = device;
  if (at == std::string_view::npos) return true;
  const auto baud = ParseInteger(target.substr(at + 1));
  if (!baud || *baud < kLowestBaud || *baud > kHighestBaud) {
    return Refuse(problem, kTextBaudRate, target.substr(at + 1));
  }
  address.baudRate = static_cast<std::uint32_t>(*baud);
  return true;
}

bool ParseTcp(std::string_view target, PortAddress& address, std::string& problem) {
  const std::size_t colon = target.rfind(':');
  if (colon == std::string_view::npos || colon == 0) return Refuse(problem, kTextHostPort, target);
  const auto port = ParseInteger(target.substr(colon + 1));
  if (!port || *port < 1 || *port > 65535) return Refuse(problem, kTextHostPort, target);
  address.target = target;
  return true;
}

}  // namespace

bool ParsePortAddress(std::string_view text, PortAddress& address, std::string& problem) {
  PortAddress parsed;
  const std::size_t colon = text.find(':');
  const std::string_view kind = text.substr(0, colon);
  const std::string_view target =
      colon == std::string_view::npos ? std::string_view() : text.substr(colon + 1);
  bool ok = false;
  if (kind == "serial") {
    parsed.kind = PortKind::Serial;
    ok = ParseSerial(target, parsed, problem);
  } else if (kind == "tcp") {
    parsed.kind = PortKind::Tcp;
    ok = ParseTcp(target, parsed, problem);
  } else if (kind == "file") {
    parsed.kind = PortKind::File;
    parsed.target = target;
    ok = !target.empty() || Refuse(problem, kTextNoLog, text);
  } else {
    ok = text == "simulated" || Refuse(problem, kTextAddressForm, text);
  }
  if (ok) address = parsed;
  return ok;
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
