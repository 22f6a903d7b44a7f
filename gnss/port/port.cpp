#include "gnss/port/port.h"

#include <utility>

namespace tarvex {
namespace {

constexpr int kDefaultReadTotal = 1000;
constexpr int kDefaultWriteTotal = 200;
constexpr int kDefaultMultiplier = 2;
constexpr std::uint32_t kLongReadConstant = 30000;

std::uint32_t Milliseconds(int value) {
  return value > 0 ? static_cast<std::uint32_t>(value) : 0;
}

ReadTimeouts ReadTimeoutsOf(int total, int interval, int multiplier) {
  if (total == kReturnAtOnce) return {.intervalMs = ReadTimeouts::kAtOnce};
  if (total == kLongTimeout) {
    return {.multiplierMs = Milliseconds(multiplier), .constantMs = kLongReadConstant};
  }
  return {.intervalMs = Milliseconds(interval),
          .multiplierMs = Milliseconds(multiplier),
          .constantMs = Milliseconds(total)};
}

}  // namespace

Port::Port(std::string name, std::unique_ptr<ByteDevice> device, LastErrorRecord& errors)
    : name_(std::move(name)), device_(std::move(device)), errors_(errors) {}

PortError Port::Open() {
  lastCount_ = 0;
  readTotalTimeout_ = kKeepTimeouts;
  end_ = PortEnd::None;
  if (const DeviceStatus status = device_->Open(name_); !status.ok()) {
    (void)Report(errors_, PortError::System, {device_->Explain(status)});
    return Report(errors_, PortError::OpenFailed, {name_});
  }
  PortError error = ConfigureOpened();
  if (error == PortError::None) error = SetDefaultTimeouts();
  if (error == PortError::None) error = FinishOpening();
  if (error != PortError::None) {
    (void)Close();
    return error;
  }
  const std::scoped_lock lock(beside_);
  openBeside_ = true;
  return PortError::None;
}

PortError Port::Fail(PortError error, const DeviceStatus& status) {
  if (status.ended()) {
    end_ = PortEnd::RecordingEnded;
  } else if (!status.ok() && !status.cancelled()) {
    end_ = PortEnd::LinkLost;
  }
  return Fail(error);
}

PortError Port::SetDefaultTimeouts() {
  if (const auto error = SetWriteTimeouts(kDefaultWriteTotal, kDefaultMultiplier);
      error != PortError::None) {
    return error;
  }
  return SetReadTimeouts(kDefaultReadTotal, 0, kDefaultMultiplier);
}

PortError Port::Close() {
  if (!isOpen()) return Fail(PortError::NotOpen);
  {
    const std::scoped_lock lock(beside_);
    openBeside_ = false;
    (void)device_->Close();
  }
  lastCount_ = 0;
  readTotalTimeout_ = kKeepTimeouts;
  return PortError::None;
}

PortError Port::ChangeTimeouts(const ReadTimeouts* read, const WriteTimeouts* write) {
  DeviceTimeouts timeouts;
  if (!device_->GetTimeouts(timeouts).ok()) return Fail(PortError::GetTimeoutsFailed);
  if (read != nullptr) timeouts.read = *read;
  if (write != nullptr) timeouts.write = *write;
  if (!device_->SetTimeouts(timeouts).ok()) return Fail(PortError::SetTimeoutsFailed);
  return PortError::None;
}

PortError Port::SetReadTimeouts(int total, int interval, int multiplier) {
  if (!isOpen()) return Fail(PortError::NotOpen);
  if (total == kKeepTimeouts) return PortError::None;
  const ReadTimeouts timeouts = ReadTimeoutsOf(total, interval, multiplier);
  const PortError error = ChangeTimeouts(&timeouts, nullptr);
  if (error == PortError::None) readTotalTimeout_ = total;
  return error;
}

PortError Port::SetWriteTimeouts(int total, int multiplier) {
  if (!isOpen()) return Fail(PortError::NotOpen);
  if (total == kKeepTimeouts) return PortError::None;
  WriteTimeouts timeouts;
  if (total != kNoWriteTimeout) {
    timeouts = {.multiplierMs = Milliseconds(multiplier), .constantMs = Milliseconds(total)};
  }
  const PortError error = ChangeTimeouts(nullptr, &timeouts);
  if (error == PortError::None) writeTimeouts_ = timeouts;
  return error;
}

PortError Port::Read(std::span<char> out, int total, StopRequest* stop) {
  if (!isOpen()) return Fail(PortError::NotOpen);
  lastCount_ = 0;
  if (total != kKeepTimeouts && total != readTotalTimeout_) {
    if (const auto error = SetReadTimeouts(total, 0, kDefaultMultiplier);
        error != PortError::None) {
      return error;
    }
  }
  if (stop != nullptr && stop->StopRequested()) return Fail(PortError::Cancelled);
  std::size_t got = 0;
  const DeviceStatus status = device_->Read(out, got);
  lastCount_ = static_cast<std::uint32_t>(got);
  end_ = PortEnd::None;
  if (!status.ok()) return Fail(PortError::ReadFailed, status);
  const bool totalSet = readTotalTimeout_ != kReturnAtOnce && readTotalTimeout_ != kKeepTimeouts;
  if (!totalSet || got == out.size()) return PortError::None;
  return Report(
      errors_, PortError::FewerBytesRead,
      {std::to_string(got), std::to_string(out.size()), std::to_string(readTotalTimeout_)});
}

PortError Port::Write(std::string_view bytes, int timeout) {
  if (!isOpen()) return Fail(PortError::NotOpen);
  lastCount_ = 0;
  if (const auto error = SetWriteTimeouts(timeout, kDefaultMultiplier); error != PortError::None) {
    return error;
  }
  std::size_t written = 0;
  const DeviceStatus status = device_->Write(bytes, writeTimeouts_, written);
  lastCount_ = static_cast<std::uint32_t>(written);
  if (!status.ok() || written < bytes.size()) return Fail(PortError::WriteFailed, status);
  return PortError::None;
}

PortError Port::WriteBeside(std::string_view bytes, const WriteTimeouts& timeouts,
                            std::size_t& written) {
  written = 0;
  const std::scoped_lock lock(beside_);
  if (!openBeside_) return Fail(PortError::NotOpen);
  return device_->Write(bytes, timeouts, written).ok() ? PortError::None
                                                       : Fail(PortError::WriteFailed);
}

PortError Port::BytesWaiting(std::size_t& count) {
  if (!isOpen()) return Fail(PortError::NotOpen);
  const DeviceStatus status = device_->BytesWaiting(count);
  return status.ok() ? PortError::None : Fail(PortError::BytesWaitingFailed, status);
}

PortError Port::PurgeInput() {
  if (!isOpen()) return Fail(PortError::NotOpen);
  const DeviceStatus status = device_->PurgeInput();
  return status.ok() ? PortError::None : Fail(PortError::PurgeInputFailed, status);
}

}  // namespace tarvex
