// The serial line as a port: line settings, break, queues and modem lines on top of reading and
// writing. A Bluetooth serial line (RFCOMM device) is opened the same way, by its device name.
#pragma once

#include <memory>

#include "gnss/port.h"
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
  /// On this machine's own device.
  SerialPort(LastErrorRecord& errors, Clock& clock);
  SerialPort(std::unique_ptr<SerialDevice> device, LastErrorRecord& errors, Clock& clock);

  /// Names the port by number ("COM%d:") and stores the line; an open port is configured at once.
  PortError SetLine(int port_number, std::uint32_t baud_rate, std::uint32_t data_bits,
                    std::uint32_t parity, std::uint32_t stop_bits);
  /// The same by device name ("/dev/ttyUSB0"), as systems without port numbers have them.
  PortError SetLine(std::string_view device_name, std::uint32_t baud_rate, std::uint32_t data_bits,
                    std::uint32_t parity, std::uint32_t stop_bits);

  /// Sets the line to the stored settings: no flow control, DTR and RTS on.
  PortError Configure();
  /// 110 to 256000; the line stays as it was otherwise.
  PortError SetBaudRate(std::uint32_t baud);
  PortError GetBaudRate(std::uint32_t& baud);

  /// Holds the break for `duration_ms`, at least 10 ms.
  PortError SendBreak(int duration_ms);
  PortError ClearErrors();
  PortError PurgeOutput();
  PortError Flush();
  PortError SetQueueSizes(std::uint32_t in, std::uint32_t out);
  /// The DSR line; off as well when the port is closed or has no such line.
  bool DsrOn();

  std::uint32_t baud_rate() const { return baud_rate_; }
  std::uint32_t data_bits() const { return data_bits_; }
  std::uint32_t parity() const { return parity_; }
  std::uint32_t stop_bits() const { return stop_bits_; }

 private:
  PortError ConfigureOpened() override { return Configure(); }
  SerialPort(SerialDevice* device, LastErrorRecord& errors, Clock& clock);
  SerialLine StoredLine() const;
  PortError Checked(DeviceStatus (SerialDevice::*operation)(), PortError failure);

  SerialDevice* device_;  // owned by Port
  Clock& clock_;
  std::uint32_t baud_rate_ = 9600;
  std::uint32_t data_bits_ = 8;
  std::uint32_t parity_ = 0;
  std::uint32_t stop_bits_ = 0;
};

}  // namespace tarvex
