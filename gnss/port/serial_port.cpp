#include "gnss/port/serial_port.h"

#include <algorithm>
#include <utility>

namespace tarvex {
namespace {

constexpr std::uint32_t kLowestBaud = 110;
constexpr std::uint32_t kAboveHighestBaud = 256001;
constexpr int kShortestBreakMs = 10;

SerialParity ParityOf(std::uint32_t flag) {
  switch (flag) {
    case kParityEven:
      return SerialParity::Even;
    case kParityOdd:
      return SerialParity::Odd;
    case kParityMark:
      return SerialParity::Mark;
    case kParitySpace:
      return SerialParity::Space;
    default:
      return SerialParity::None;
  }
}

SerialStopBits StopBitsOf(std::uint32_t flag) {
  switch (flag) {
    case kStopBitsTwo:
      return SerialStopBits::Two;
    case kStopBitsOneAndHalf:
      return SerialStopBits::OneAndHalf;
    default:
      return SerialStopBits::One;
  }
}

}  // namespace

SerialPort::SerialPort(LastErrorRecord& errors, Clock& clock, StopAsked stop)
    : SerialPort(MakeSerialDevice(std::move(stop)), errors, clock) {}

SerialPort::SerialPort(std::unique_ptr<SerialDevice> device, LastErrorRecord& errors, Clock& clock)
    : SerialPort(device.release(), errors, clock) {}

SerialPort::SerialPort(SerialDevice* device, LastErrorRecord& errors, Clock& clock)
    : Port({}, std::unique_ptr<ByteDevice>(device), errors), device_(device), clock_(clock) {}

PortError SerialPort::SetLine(int portNumber, std::uint32_t baudRate, std::uint32_t dataBits,
                              std::uint32_t parity, std::uint32_t stopBits) {
  return SetLine("COM" + std::to_string(portNumber) + ":", baudRate, dataBits, parity, stopBits);
}

PortError SerialPort::SetLine(std::string_view deviceName, std::uint32_t baudRate,
                              std::uint32_t dataBits, std::uint32_t parity,
                              std::uint32_t stopBits) {
  setName(std::string(deviceName));
  baudRate_ = baudRate;
  dataBits_ = dataBits;
  parity_ = parity;
  stopBits_ = stopBits;
  return isOpen() ? Configure() : PortError::None;
}

SerialLine SerialPort::StoredLine() const {
  return {.baudRate = baudRate_,
          .dataBits = dataBits_,
          .parity = ParityOf(parity_),
          .stopBits = StopBitsOf(stopBits_)};
}

PortError SerialPort::Configure() {
  if (!isOpen()) return Fail(PortError::NotOpen);
  SerialLine line;
  if (!device_->GetLine(line).ok()) return Fail(PortError::ConfigureFailed);
  if (!device_->SetLine(StoredLine()).ok()) {
    (void)Report(errors(), PortError::System, {"SetCommState failed"});
    return Fail(PortError::ConfigureFailed);
  }
  return PortError::None;
}

PortError SerialPort::SetBaudRate(std::uint32_t baud) {
  if (!isOpen()) return Fail(PortError::NotOpen);
  if (baud < kLowestBaud || baud >= kAboveHighestBaud) return Fail(PortError::ConfigureFailed);
  SerialLine line;
  if (!device_->GetLine(line).ok()) return Fail(PortError::ConfigureFailed);
  line.baudRate = baud;
  if (!device_->SetLine(line).ok()) return Fail(PortError::ConfigureFailed);
  baudRate_ = baud;
  return PortError::None;
}

PortError SerialPort::GetBaudRate(std::uint32_t& baud) {
  if (!isOpen()) return Fail(PortError::NotOpen);
  SerialLine line;
  if (!device_->GetLine(line).ok()) return Fail(PortError::ConfigureFailed);
  baud = line.baudRate;
  return PortError::None;
}

PortError SerialPort::SendBreak(int durationMs) {
  if (!isOpen()) return Fail(PortError::NotOpen);
  if (!device_->SetBreak().ok()) return Fail(PortError::BreakFailed);
  clock_.SleepMilliseconds(std::max(durationMs, kShortestBreakMs));
  return device_->ClearBreak().ok() ? PortError::None : Fail(PortError::BreakFailed);
}

PortError SerialPort::Checked(DeviceStatus (SerialDevice::*operation)(), PortError failure) {
  if (!isOpen()) return Fail(PortError::NotOpen);
  return (device_->*operation)().ok() ? PortError::None : Fail(failure);
}

PortError SerialPort::ClearErrors() {
  return Checked(&SerialDevice::ClearErrors, PortError::ClearErrorsFailed);
}

PortError SerialPort::PurgeOutput() {
  return Checked(&SerialDevice::PurgeOutput, PortError::PurgeOutputFailed);
}

PortError SerialPort::Flush() {
  return Checked(&SerialDevice::Flush, PortError::FlushFailed);
}

PortError SerialPort::SetQueueSizes(std::uint32_t in, std::uint32_t out) {
  if (!isOpen()) return Fail(PortError::NotOpen);
  return device_->SetQueueSizes(in, out).ok() ? PortError::None : Fail(PortError::QueueSizesFailed);
}

bool SerialPort::DsrOn() {
  bool on = false;
  return isOpen() && device_->GetDsr(on).ok() && on;
}

}  // namespace tarvex
