// A device that bytes come from and go to: a serial line, a TCP socket, a recorded log. Reading and
// writing wait no longer than the time-outs that are set on the device.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <limits>
#include <span>
#include <string>
#include <string_view>

namespace tarvex {

/// What a device operation came to: 0, the end of a recording, a connection that the far end
/// closed, an unknown host, a far end that is not what it should be, or the system's error number.
struct [[nodiscard]] DeviceStatus {
  static constexpr int kEndOfData = -1;
  static constexpr int kUnknownHost = -2;
  static constexpr int kHungUp = -3;
  static constexpr int kRefused = -4;  ///< by the device itself, which can Explain it

  int code = 0;

  bool ok() const { return code == 0; }
  /// A recording is at its end.
  bool ended() const { return code == kEndOfData; }
  /// Whoever may stop the operation has stopped it.
  bool cancelled() const;
  /// The system's own text for the error ("Permission denied").
  std::string Text() const;

  bool operator==(const DeviceStatus&) const = default;
};

/// How long a read waits, in milliseconds. The total counts from the call: multiplier for each byte
/// asked for, plus constant; both 0 is no total. The interval counts from the first byte of this
/// read and starts anew with each byte; 0 is no interval. An interval of kAtOnce with a total of 0
/// returns at once with what is there. Running out of time is success with fewer bytes.
struct ReadTimeouts {
  static constexpr std::uint32_t kAtOnce = std::numeric_limits<std::uint32_t>::max();

  std::uint32_t intervalMs = 0;
  std::uint32_t multiplierMs = 0;
  std::uint32_t constantMs = 0;

  bool atOnce() const { return intervalMs == kAtOnce && multiplierMs == 0 && constantMs == 0; }
  bool operator==(const ReadTimeouts&) const = default;
};

/// How long a write waits: multiplier for each byte plus constant; both 0 is no limit.
struct WriteTimeouts {
  std::uint32_t multiplierMs = 0;
  std::uint32_t constantMs = 0;

  bool operator==(const WriteTimeouts&) const = default;
};

/// Asked now and then while an operation waits; true ends it with ECANCELED. A device that is
/// written beside its reader asks from both threads.
using StopAsked = std::function<bool()>;

struct DeviceTimeouts {
  ReadTimeouts read = {};
  WriteTimeouts write = {};

  bool operator==(const DeviceTimeouts&) const = default;
};

class ByteDevice {
 public:
  virtual ~ByteDevice() = default;

  virtual DeviceStatus Open(const std::string& name) = 0;
  virtual DeviceStatus Close() = 0;
  virtual bool isOpen() const = 0;
  /// The text of a status, with what the device knows beside the number.
  virtual std::string Explain(const DeviceStatus& status) const { return status.Text(); }
  /// Its data waits for the reader: nothing of it grows old.
  virtual bool isRecording() const { return false; }

  virtual DeviceStatus GetTimeouts(DeviceTimeouts& timeouts) = 0;
  virtual DeviceStatus SetTimeouts(const DeviceTimeouts& timeouts) = 0;

  virtual DeviceStatus Read(std::span<char> out, std::size_t& got) = 0;
  /// Within `timeouts`, whatever the device is set to. May be called while another thread reads.
  virtual DeviceStatus Write(std::string_view bytes, const WriteTimeouts& timeouts,
                             std::size_t& written) = 0;

  virtual DeviceStatus BytesWaiting(std::size_t& count) = 0;
  /// Drops what has come in and was not read yet.
  virtual DeviceStatus PurgeInput() = 0;

  /// Bytes that the device already holds in memory, without waiting or asking the system; a reader
  /// that scans for a line end looks here first. Skip() takes them.
  virtual std::string_view Held() const { return {}; }
  virtual void Skip(std::size_t /*count*/) {}
};

}  // namespace tarvex
