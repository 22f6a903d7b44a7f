#include "gnss/drivers/protocol.h"

#include <array>

namespace tarvex {
namespace {

constexpr std::array kProtocols = {
    ProtocolRow{"SimpleProtocol", "\r\n", Framing::TextLines, false},
    ProtocolRow{"Pass Thru", "", Framing::TextLines, true},
    ProtocolRow{"Socket Port", "", Framing::TextLines, true},
    ProtocolRow{"Modem Protocol", "\r", Framing::TextLines, false},
    ProtocolRow{"TrimbleGPS Protocol", "", Framing::BinaryPackets, false},
    ProtocolRow{"Topcon GRIL Protocol", "\r\n", Framing::TextLines, false},
    ProtocolRow{"NavCom Protocol", "", Framing::EtxFrames, false},
    ProtocolRow{"Septentrio Protocol", "\r\n", Framing::TextLines, false},
    ProtocolRow{"Satel Protocol", "\r", Framing::TextLines, false},
    ProtocolRow{"PacificCrest Protocol", "", Framing::EtxFrames, false},
    ProtocolRow{"Futaba Protocol", "\r\n", Framing::TextLines, false},
    ProtocolRow{"ARWest Protocol", "\r\n", Framing::TextLines, false},
    ProtocolRow{"DataGrid Protocol", "\r\n", Framing::TextLines, false},
    ProtocolRow{"SokkiaSDL Protocol", "\r\n", Framing::TextLines, false},
    ProtocolRow{"SokkiaGSM Protocol", "\r\n", Framing::TextLines, false},
};

}  // namespace

std::span<const ProtocolRow> Protocols() {
  return kProtocols;
}

const ProtocolRow* FindProtocol(std::string_view name) {
  for (const ProtocolRow& row : kProtocols) {
    if (row.name == name) return &row;
  }
  return nullptr;
}

PortError Protocol::Send(std::string_view command, int timeoutMs, LastErrorRecord& errors) {
  if (connection_ == nullptr) return Report(errors, PortError::NothingGiven);
  return connection_->Write(std::string(command) + std::string(row_.commandEnd), timeoutMs);
}

PortError Protocol::Receive(std::span<char> buffer, std::string_view& reply, int timeoutMs,
                            LastErrorRecord& errors) {
  reply = {};
  if (connection_ == nullptr) return Report(errors, PortError::NothingGiven);
  if (row_.raw) return ReceiveRaw(buffer, reply, timeoutMs, errors);
  const ReadLineResult read = ReadLine(*connection_, buffer, timeoutMs, row_.framing);
  reply = read.text;
  if (read.ok()) return PortError::None;
  return read.status == ReadLineStatus::TimedOut ? PortError::FewerBytesRead
                                                 : Report(errors, PortError::ReadFailed);
}

PortError Protocol::ReceiveRaw(std::span<char> buffer, std::string_view& reply, int timeoutMs,
                               LastErrorRecord& errors) {
  const PortUse use(*connection_);
  if (!use || buffer.empty()) return Report(errors, PortError::ReadFailed);
  if (const PortError error = connection_->Read(buffer.first(1), timeoutMs);
      error != PortError::None) {
    return error;
  }
  std::size_t count = connection_->lastCount();
  if (count == 1) {
    (void)connection_->Read(buffer.subspan(1), kReturnAtOnce);
    count += connection_->lastCount();
  }
  reply = {buffer.data(), count};
  return count > 0 ? PortError::None : PortError::FewerBytesRead;
}

}  // namespace tarvex
