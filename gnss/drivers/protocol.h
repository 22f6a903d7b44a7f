// How a driver and its instrument talk over a port: what ends a command, and how a reply is framed.
// Protocols are known by name; a new one is a new row.
#pragma once

#include <span>
#include <string>
#include <string_view>

#include "gnss/port/line_reader.h"
#include "gnss/port/port.h"

namespace tarvex {

struct ProtocolRow {
  std::string_view name;
  std::string_view commandEnd;  ///< sent behind each command
  Framing framing;              ///< of a reply
  bool raw;                     ///< a reply is whatever bytes come
};

/// The protocols that the system knows.
std::span<const ProtocolRow> Protocols();

/// A protocol in use: a row and the port that it talks over, neither owned.
class Protocol {
 public:
  explicit Protocol(const ProtocolRow& row) : row_(row) {}

  std::string_view name() const { return row_.name; }
  Port* connection() const { return connection_; }
  void setConnection(Port* connection) { connection_ = connection; }

  /// NothingGiven without a connection.
  PortError Send(std::string_view command, int timeoutMs, LastErrorRecord& errors);
  /// One reply into `buffer`; `reply` is the part of it that was filled. FewerBytesRead when none
  /// came in time.
  PortError Receive(std::span<char> buffer, std::string_view& reply, int timeoutMs,
                    LastErrorRecord& errors);

 private:
  PortError ReceiveRaw(std::span<char> buffer, std::string_view& reply, int timeoutMs,
                       LastErrorRecord& errors);

  const ProtocolRow& row_;
  Port* connection_ = nullptr;
};

/// The protocol of a name, letter by letter; null when there is none.
const ProtocolRow* FindProtocol(std::string_view name);

}  // namespace tarvex
