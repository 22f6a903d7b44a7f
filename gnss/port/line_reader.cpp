#include "gnss/port/line_reader.h"

#include <algorithm>
#include <cstring>

namespace tarvex {
namespace {

constexpr char kStx = 2;
constexpr char kEtx = 3;
constexpr std::size_t kPacketHeader = 4;
constexpr std::size_t kPacketBodyExtra = 3;
constexpr std::size_t kBytesBeforeEtx = 2;
constexpr int kWriteConstantMs = 500;

// What has been read of one line, in the caller's buffer.
class LineBuffer {
 public:
  LineBuffer(std::span<char> buffer, Framing framing)
      : bytes_(buffer.first(buffer.size() - 1)), framing_(framing) {}

  std::span<char> NextByte() { return bytes_.subspan(count_, 1); }
  bool full() const { return count_ == bytes_.size(); }
  bool empty() const { return count_ == 0; }

  /// Counts the byte at NextByte(); true when it ends the line.
  bool Accept() {
    const char byte = bytes_[count_++];
    if (IsPacket()) return PacketComplete();
    if (framing_ == Framing::EtxFrames) return byte == kEtx && count_ > kBytesBeforeEtx;
    if (byte != '\n') return false;
    DropLineEnd();
    return true;
  }

  /// Takes from `held` up to the end of the line, without looking at each byte; text lines only.
  std::size_t AcceptHeld(std::string_view held, bool& complete) {
    const std::string_view room = held.substr(0, bytes_.size() - count_);
    const std::size_t end = room.find('\n');
    complete = end != std::string_view::npos;
    const std::size_t taken = complete ? end + 1 : room.size();
    std::memcpy(bytes_.data() + count_, room.data(), taken);
    count_ += taken;
    if (complete) DropLineEnd();
    return taken;
  }

  void DropCarriageReturn() {
    if (count_ > 0 && bytes_[count_ - 1] == '\r') --count_;
  }

  std::string_view Finish() {
    bytes_.data()[count_] = '\0';
    return {bytes_.data(), count_};
  }

 private:
  bool IsPacket() const { return framing_ == Framing::BinaryPackets && bytes_[0] == kStx; }

  bool PacketComplete() const {
    if (count_ < kPacketHeader) return false;
    const auto body = static_cast<unsigned char>(bytes_[kPacketHeader - 1]) + kPacketBodyExtra;
    return count_ >= kPacketHeader + body;
  }

  void DropLineEnd() {
    --count_;
    DropCarriageReturn();
  }

  std::span<char> bytes_;
  Framing framing_;
  std::size_t count_ = 0;
};

// A failure to report, or Line when the next byte is at NextByte().
ReadLineStatus ReadByte(Port& port, LineBuffer& line) {
  const PortError error = port.Read(line.NextByte(), kKeepTimeouts);
  if (error == PortError::None && port.lastCount() == 1) return ReadLineStatus::Line;
  if (error == PortError::None || error == PortError::FewerBytesRead) {
    return ReadLineStatus::TimedOut;
  }
  return ReadLineStatus::PortFailed;
}

ReadLineResult ReadInto(Port& port, LineBuffer& line, Framing framing,
                        const ReadDeadline& deadline) {
  while (!line.full()) {
    if (framing == Framing::TextLines && !port.Held().empty()) {
      bool complete = false;
      port.Skip(line.AcceptHeld(port.Held(), complete));
      if (complete) return {ReadLineStatus::Line, line.Finish(), true};
      continue;
    }
    const ReadLineStatus status =
        deadline.LongPassed() ? ReadLineStatus::TimedOut : ReadByte(port, line);
    if (status != ReadLineStatus::Line) {
      const bool lastLine = port.end() == PortEnd::RecordingEnded && !line.empty();
      if (lastLine) line.DropCarriageReturn();
      return {lastLine ? ReadLineStatus::Line : status, line.Finish(), false};
    }
    if (line.Accept()) return {ReadLineStatus::Line, line.Finish(), true};
  }
  return {ReadLineStatus::Line, line.Finish(), false};
}

}  // namespace

ReadLineResult ReadLine(Port& port, std::span<char> buffer, int timeoutMs, Framing framing) {
  if (!buffer.empty()) buffer[0] = '\0';
  const PortUse use(port);
  if (!use) return {};
  return ReadLineHolding(port, buffer, timeoutMs, framing);
}

ReadLineResult ReadLineHolding(Port& port, std::span<char> buffer, int timeoutMs, Framing framing,
                               const ReadDeadline& deadline) {
  timeoutMs = deadline.Within(timeoutMs);
  if (!buffer.empty()) buffer[0] = '\0';
  if (buffer.size() < 2) return {.status = ReadLineStatus::NoCapacity};
  if (port.SetReadTimeouts(timeoutMs, timeoutMs, 1) != PortError::None ||
      port.SetWriteTimeouts(kWriteConstantMs, 1) != PortError::None) {
    return {};
  }
  LineBuffer line(buffer, framing);
  return ReadInto(port, line, framing, deadline);
}

}  // namespace tarvex
