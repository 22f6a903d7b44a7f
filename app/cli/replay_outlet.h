// Where a replayed log goes, as a receiver's port would be: a pseudo-terminal or a TCP port of this
// machine. What the reader sends back (commands, corrections) is taken, so that its writes go
// through.
#pragma once

#include <memory>
#include <span>
#include <string>
#include <string_view>

#include "platform/byte_device.h"
#include "platform/clock.h"

namespace tarvex {

class ReplayOutlet {
 public:
  virtual ~ReplayOutlet() = default;

  /// What a reader gives as its receiver: "serial:/dev/pts/3", "tcp:127.0.0.1:40001".
  virtual std::string Name() const = 0;
  /// Waits until a program reads; false when the person ended the waiting.
  virtual bool WaitForReader() = 0;
  virtual DeviceStatus Write(std::string_view bytes, std::size_t& written) = 0;
  /// Takes what the reader has sent, without waiting.
  virtual DeviceStatus TakeInput(std::span<char> out, std::size_t& got) = 0;
};

/// Nothing, with the reason in `status`, when the system gives none.
std::unique_ptr<ReplayOutlet> MakePtyOutlet(Clock& clock, DeviceStatus& status);
/// Port 0 takes a free one.
std::unique_ptr<ReplayOutlet> MakeTcpOutlet(int port, DeviceStatus& status);

}  // namespace tarvex
