// A port: the one way to every instrument, whether its bytes travel over a serial line, a Bluetooth
// serial line, a TCP socket or come from a recorded log. One port belongs to one driver and is used
// by one thread, but for WriteBeside(); a busy flag keeps a second reader off.
//
// Every operation on a closed port fails with PortError::NotOpen. All times are milliseconds.
#pragma once

#include <atomic>
#include <memory>
#include <mutex>
#include <span>
#include <string>
#include <string_view>

#include "gnss/port/port_error.h"
#include "platform/byte_device.h"

namespace tarvex {

/// Total read time-outs with a meaning of their own.
inline constexpr int kKeepTimeouts = -2;    ///< leave the device as it is
inline constexpr int kLongTimeout = -1;     ///< wait up to 30000 ms
inline constexpr int kReturnAtOnce = 0;     ///< take what is there
inline constexpr int kNoWriteTimeout = -1;  ///< write: wait for ever

/// Asked before a read; says whether it should not be begun.
class StopRequest {
 public:
  virtual ~StopRequest() = default;
  virtual bool StopRequested() = 0;
};

/// Why nothing more comes.
enum class PortEnd {
  None,
  RecordingEnded,
  LinkLost,  ///< the far end closed the connection, or the device is gone: Close, then Open again
};

class Port {
 public:
  /// `name` is what the device is opened by; `errors` receives every failure.
  Port(std::string name, std::unique_ptr<ByteDevice> device, LastErrorRecord& errors);
  virtual ~Port() = default;
  Port(const Port&) = delete;
  Port& operator=(const Port&) = delete;

  /// Opens the device by its name, configures it and sets the time-outs: 200 ms + 2 a byte to
  /// write, 1000 ms + 2 a byte to read. A device that cannot be opened stores System with the
  /// system's text, then OpenFailed with the name.
  PortError Open();
  PortError Close();

  /// See the constants above for `total`; any other value sets constant, interval and multiplier.
  /// The total is remembered.
  PortError SetReadTimeouts(int total, int interval, int multiplier);
  PortError SetWriteTimeouts(int total, int multiplier);

  /// Reads until `out` is full or the time is out; lastCount() says how many bytes came. A total
  /// other than the remembered one is set first (no interval, 2 ms a byte). FewerBytesRead when a
  /// total is set and fewer bytes came, Cancelled when `stop` says so before reading.
  PortError Read(std::span<char> out, int total, StopRequest* stop = nullptr);
  /// WriteFailed when fewer bytes than given went out in time.
  PortError Write(std::string_view bytes, int timeout);

  /// For a second thread while the first one reads, closes or opens the port again; it fails with
  /// NotOpen in between. No two threads may write at once. `written` says how far it came; running
  /// out of time is no failure here.
  PortError WriteBeside(std::string_view bytes, const WriteTimeouts& timeouts,
                        std::size_t& written);

  PortError BytesWaiting(std::size_t& count);
  PortError PurgeInput();

  /// Bytes already in memory, for a reader that looks for a line end; Skip takes them.
  std::string_view Held() const { return device_->Held(); }
  void Skip(std::size_t count) { device_->Skip(count); }

  bool isOpen() const { return device_->isOpen(); }
  bool isRecording() const { return device_->isRecording(); }
  /// What the last operation of the reading side found.
  PortEnd end() const { return end_; }
  const std::string& name() const { return name_; }
  std::uint32_t lastCount() const { return lastCount_; }
  /// The remembered total; kKeepTimeouts while this object has set none.
  int readTotalTimeout() const { return readTotalTimeout_; }
  LastErrorRecord& errors() { return errors_; }

 protected:
  void setName(std::string name) { name_ = std::move(name); }
  /// What an opened device needs before it is used.
  virtual PortError ConfigureOpened() { return PortError::None; }
  /// The last step of opening.
  virtual PortError FinishOpening() { return PortError::None; }
  PortError Fail(PortError error) { return Report(errors_, error); }
  /// The same for a device that failed, which may mean that nothing more comes.
  PortError Fail(PortError error, const DeviceStatus& status);

 private:
  friend class PortUse;

  PortError SetDefaultTimeouts();
  PortError ChangeTimeouts(const ReadTimeouts* read, const WriteTimeouts* write);

  std::string name_;
  std::unique_ptr<ByteDevice> device_;
  LastErrorRecord& errors_;
  std::uint32_t lastCount_ = 0;
  WriteTimeouts writeTimeouts_;
  int readTotalTimeout_ = kKeepTimeouts;
  PortEnd end_ = PortEnd::None;
  std::atomic_flag busy_;
  std::mutex beside_;  // held while a second thread writes and while the device is closed
  bool openBeside_ = false;
};

/// Holds the port's busy flag; false when another reader has it.
class PortUse {
 public:
  explicit PortUse(Port& port) : port_(port), taken_(!port.busy_.test_and_set()) {}
  PortUse(const PortUse&) = delete;
  PortUse& operator=(const PortUse&) = delete;
  ~PortUse() {
    if (taken_) port_.busy_.clear();
  }

  explicit operator bool() const { return taken_; }

 private:
  Port& port_;
  bool taken_;
};

}  // namespace tarvex
