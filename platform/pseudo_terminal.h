// A pseudo-terminal: what one program writes into it another one reads from a serial device.
#pragma once

#include <memory>
#include <string>

#include "platform/byte_device.h"

namespace tarvex {

class PseudoTerminal {
 public:
  virtual ~PseudoTerminal() = default;

  /// The device that the other program opens; it passes raw bytes from the start.
  virtual const std::string& deviceName() const = 0;
  /// Whether a program has the device open.
  virtual bool HasReader() = 0;
  /// Writes within `timeouts`; `written` says how far it came.
  virtual DeviceStatus Write(std::string_view bytes, const WriteTimeouts& timeouts,
                             std::size_t& written) = 0;
  /// Takes what the other program has written, without waiting. Whoever never takes it makes the
  /// other program's writes fail after some 20 kB.
  virtual DeviceStatus TakeInput(std::span<char> out, std::size_t& got) = 0;
};

/// Nothing, with the reason in `status`, when the system gives none.
std::unique_ptr<PseudoTerminal> MakePseudoTerminal(DeviceStatus& status);

}  // namespace tarvex
