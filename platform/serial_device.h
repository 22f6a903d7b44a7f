// A serial line of this machine, opened for one program alone.
#pragma once

#include <memory>

#include "platform/byte_device.h"

namespace tarvex {

enum class SerialParity { None, Even, Odd, Mark, Space };
enum class SerialStopBits { One, OneAndHalf, Two };

struct SerialLine {
  std::uint32_t baudRate = 9600;
  std::uint32_t dataBits = 8;
  SerialParity parity = SerialParity::None;
  SerialStopBits stopBits = SerialStopBits::One;

  bool operator==(const SerialLine&) const = default;
};

class SerialDevice : public ByteDevice {
 public:
  /// What the line is set to now.
  virtual DeviceStatus GetLine(SerialLine& line) = 0;
  /// Sets the line: raw bytes both ways, no flow control, DTR and RTS on. A setting that the device
  /// cannot keep is an error, and the line stays as it was.
  virtual DeviceStatus SetLine(const SerialLine& line) = 0;

  virtual DeviceStatus SetBreak() = 0;
  virtual DeviceStatus ClearBreak() = 0;
  virtual DeviceStatus ClearErrors() = 0;
  virtual DeviceStatus PurgeOutput() = 0;
  /// Returns when everything written has left the machine.
  virtual DeviceStatus Flush() = 0;
  virtual DeviceStatus SetQueueSizes(std::uint32_t in, std::uint32_t out) = 0;
  virtual DeviceStatus GetDsr(bool& on) = 0;
};

/// The serial devices of this machine, by name: "/dev/ttyUSB0", a Bluetooth "/dev/rfcomm0"; by
/// number "COM1:", which is the machine's first own line (/dev/ttyS0).
/// `stop` ends the waits of Read.
std::unique_ptr<SerialDevice> MakeSerialDevice(StopAsked stop = {});

}  // namespace tarvex
