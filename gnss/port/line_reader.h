// Lines and frames from a port, read within a time-out into a buffer of the caller: the first layer
// over the bytes. A text line ends at LF; a CR before it is dropped, and so is the LF.
#pragma once

#include <algorithm>
#include <cstdint>
#include <span>
#include <string_view>

#include "gnss/port/port.h"
#include "platform/clock.h"

namespace tarvex {

/// How a receiver make frames its data.
enum class Framing {
  TextLines,
  EtxFrames,      ///< a frame ends at an ETX (byte 3) that follows at least two bytes
  BinaryPackets,  ///< byte 2 begins a packet of 4 header bytes and (fourth byte + 3) more; else
                  ///< text
};

enum class [[nodiscard]] ReadLineStatus : int {
  Line = 1,
  PortFailed = -1,  ///< also when another reader has the port
  TimedOut = -2,    ///< no byte within the time-out
  NoCapacity = -3,  ///< the buffer holds fewer than 2 characters
};

struct [[nodiscard]] ReadLineResult {
  ReadLineStatus status = ReadLineStatus::PortFailed;
  /// What was read, without line end; also the start of a line that did not come whole.
  std::string_view text = {};
  /// False when its line end did not come: a piece of a line longer than the buffer, or the last
  /// line of a recording.
  bool whole = false;

  bool ok() const { return status == ReadLineStatus::Line; }
};

/// When reading has to come back, though bytes may still drip in.
class ReadDeadline {
 public:
  /// None.
  ReadDeadline() = default;
  /// `atMs` is of the steady clock.
  ReadDeadline(Clock& clock, std::int64_t atMs) : clock_(&clock), atMs_(atMs) {}

  /// Whether nothing should be begun any more.
  bool Passed() const { return clock_ != nullptr && clock_->SteadyMilliseconds() >= atMs_; }
  /// Whether a line that was begun in time should not be waited for either.
  bool LongPassed() const {
    constexpr std::int64_t kLineMs = 500;
    return clock_ != nullptr && clock_->SteadyMilliseconds() >= atMs_ + kLineMs;
  }
  /// A time-out that keeps the deadline, and leaves the bytes of a line time to follow each other.
  int Within(int timeoutMs) const {
    constexpr std::int64_t kShortestMs = 100;
    if (clock_ == nullptr) return timeoutMs;
    const std::int64_t left = std::max(atMs_ - clock_->SteadyMilliseconds(), kShortestMs);
    return static_cast<int>(std::min<std::int64_t>(left, timeoutMs));
  }

 private:
  Clock* clock_ = nullptr;
  std::int64_t atMs_ = 0;
};

/// Reads one line or frame of at most buffer.size() - 1 characters; a longer one is handed out in
/// pieces of that size. The buffer always ends with a NUL. The time-out starts anew with each byte.
/// The last line of a recording may lack its line end; what a lost link cut off is no line.
ReadLineResult ReadLine(Port& port, std::span<char> buffer, int timeoutMs,
                        Framing framing = Framing::TextLines);

/// The same for a caller that already holds the port's busy flag. A line that has not ended half a
/// second behind the deadline counts as timed out.
ReadLineResult ReadLineHolding(Port& port, std::span<char> buffer, int timeoutMs,
                               Framing framing = Framing::TextLines,
                               const ReadDeadline& deadline = {});

}  // namespace tarvex
