// The serial line as a port: line settings, break, queues and modem lines on top of reading and
// writing. A Bluetooth serial line (RFCOMM device) is opened the same way, by its device name.
#pragma once

#include <memory>

#include "gnss/port/port.h"
#include "platform/clock.h"
#include "platform/serial_device.h"

namespace tarvex {

/// The parity and stop-bit flags of the receiver configuration; any other value is none or one.
inline constexpr std::uint32_t kParityEven = 2;
inline constexpr std::uint32_t kParityOdd = 4;
inline constexpr std::uint32_t kParityMark = 8;
inline constexpr std::uint32_t kParitySpace = 16;
inline constexpr std::uint32_t kStopBitsTwo = 2;
inline constexpr std::uint32_t kStopBitsOneAndHalf = 4;

class SerialPort final : public Port {
 public:
  /// On this machine's own device; `stop` ends a read that waits.
  SerialPort(LastErrorRecord& errors, Clock& clock, StopAsked stop = {});
  SerialPort(std::unique_ptr<SerialDevice> device, LastErrorRecord& errors, Clock& clock);

  /// Names the port by number ("COM%d:") and stores the line; an open port is configured at once.
  PortError SetLine(int portNumber, std::uint32_t baudRate, std::uint32_t dataBits,
                    std::uint32_t parity, std::uint32_t stopBits);
  /// The same by device name ("/dev/ttyUSB0"), as systems without port numbers have them.
  PortError SetLine(std::string_view deviceName, std::uint32_t baudRate, std::uint32_t dataBits,
                    std::uint32_t parity, std::uint32_t stopBits);

  /// Sets the line to the stored settings: no flow control, DTR and RTS on.
  PortError Configure();
  /// 110 to 256000; the line stays as it was otherwise.
  PortError SetBaudRate(std::uint32_t baud);
  PortError GetBaudRate(std::uint32_t& baud);

  /// Holds the break for `durationMs`, at least 10 ms.
  PortError SendBreak(int durationMs);
  PortError ClearErrors();
  PortError PurgeOutput();
  PortError Flush();
  PortError SetQueueSizes(std::uint32_t in, std::uint32_t out);
  /// The DSR line; off as well when the port is closed or has no such line.
  bool DsrOn();

  std::uint32_t baudRate() const { return baudRate_; }
  std::uint32_t dataBits() const { return dataBits_; }
  std::uint32_t parity() const { return parity_; }
  std::uint32_t stopBits() const { return stopBits_; }

 private:
  PortError ConfigureOpened() override { return Configure(); }
  /// Drops what the line still held: it is of the past, and was perhaps sent at another rate.
  PortError FinishOpening() override { return PurgeInput(); }
  SerialPort(SerialDevice* device, LastErrorRecord& errors, Clock& clock);
  SerialLine StoredLine() const;
  PortError Checked(DeviceStatus (SerialDevice::*operation)(), PortError failure);

  SerialDevice* device_;  // owned by Port
  Clock& clock_;
  std::uint32_t baudRate_ = 9600;
  std::uint32_t dataBits_ = 8;
  std::uint32_t parity_ = 0;
  std::uint32_t stopBits_ = 0;
};

}  // namespace tarvex
