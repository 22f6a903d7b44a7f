// What a serial line and a TCP socket of a POSIX system have in common: a non-blocking descriptor
// that is read and written within time-outs.
#pragma once

#include <sys/ioctl.h>

#include <cerrno>

#include "platform/descriptor_io_posix.h"

namespace tarvex {

/// `Base` is ByteDevice or an interface made from it. Opening and closing is left to the device.
template <typename Base>
class DescriptorDevice : public Base {
 public:
  bool isOpen() const override { return descriptor_ >= 0; }

  DeviceStatus GetTimeouts(DeviceTimeouts& timeouts) override {
    timeouts = timeouts_;
    return {};
  }
  DeviceStatus SetTimeouts(const DeviceTimeouts& timeouts) override {
    timeouts_ = timeouts;
    return {};
  }

  DeviceStatus Read(std::span<char> out, std::size_t& got) override {
    return reader_.Read(descriptor_, timeouts_.read, out, got, stop_);
  }
  DeviceStatus Write(std::string_view bytes, const WriteTimeouts& timeouts,
                     std::size_t& written) override {
    return WriteWithin(descriptor_, kind_, timeouts, bytes, written, stop_);
  }

  /// What was read ahead waits as well.
  DeviceStatus BytesWaiting(std::size_t& count) override {
    int queued = 0;
    if (::ioctl(descriptor_, FIONREAD, &queued) != 0) return {errno};
    count = reader_.held().size() + static_cast<std::size_t>(queued);
    return {};
  }

  std::string_view Held() const override { return reader_.held(); }
  void Skip(std::size_t count) override { reader_.Skip(count); }

 protected:
  DescriptorDevice(DescriptorKind kind, std::size_t readAhead, StopAsked stop = {})
      : stop_(std::move(stop)), reader_(readAhead), kind_(kind) {}

  int descriptor_ = -1;
  StopAsked stop_;
  DescriptorReader reader_;

 private:
  DescriptorKind kind_;
  DeviceTimeouts timeouts_;
};

}  // namespace tarvex
