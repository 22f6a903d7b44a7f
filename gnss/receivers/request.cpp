#include "gnss/receivers/request.h"

#include <array>
#include <string>

#include "gnss/port/line_reader.h"

namespace tarvex {
namespace {

constexpr int kSendTimeoutMs = 500;
constexpr int kAnswerTimeoutMs = 1000;
constexpr std::size_t kAnswerCapacity = 256;
constexpr int kMostLines = 500;  // for a clock that does not move

}  // namespace

bool SendCommand(GnssConnection& connection, std::string_view command) {
  return connection.port->Write(std::string(command) + "\r\n", kSendTimeoutMs) == PortError::None;
}

ReplyStatus AwaitReply(GnssConnection& connection, std::string_view wanted, int timeoutMs,
                       std::span<char> buffer, std::string_view& reply) {
  const std::int64_t until = connection.clock.SteadyMilliseconds() + timeoutMs;
  for (int line = 0; line < kMostLines; ++line) {
    const std::int64_t left = until - connection.clock.SteadyMilliseconds();
    if (left <= 0) break;
    const ReadLineResult read = ReadLineHolding(*connection.port, buffer, static_cast<int>(left),
                                                Framing::TextLines, connection.DeadlineBy(until));
    if (read.status == ReadLineStatus::TimedOut) break;
    if (!read.ok()) return ReplyStatus::PortFailed;
    if (!read.whole) continue;
    if (connection.listener != nullptr) connection.listener->OnLine(read.text);
    const std::size_t at = read.text.find(wanted);
    if (at == std::string_view::npos) continue;
    reply = read.text.substr(at);
    return ReplyStatus::Found;
  }
  return ReplyStatus::TimedOut;
}

void TakeAnswer(GnssConnection& connection) {
  std::array<char, kAnswerCapacity> buffer;
  (void)ReadLineHolding(*connection.port, buffer, kAnswerTimeoutMs, Framing::TextLines,
                        connection.DeadlineBy());
}

}  // namespace tarvex
