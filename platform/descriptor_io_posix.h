// Reading and writing a non-blocking descriptor within time-outs; shared by the serial line and the
// TCP socket of a POSIX system.
#pragma once

#include <vector>

#include "platform/byte_device.h"

namespace tarvex {

/// A read-ahead of one system call in front of a descriptor. Whoever counts or purges what waits
/// must count and purge what is held here as well.
class DescriptorReader {
 public:
  explicit DescriptorReader(std::size_t capacity) : buffer_(capacity) {}

  /// `descriptor` must be non-blocking. With nothing read a hang-up is reported as one.
  DeviceStatus Read(int descriptor, const ReadTimeouts& timeouts, std::span<char> out,
                    std::size_t& got, const StopAsked& stop = {});
  std::string_view held() const { return {buffer_.data() + begin_, end_ - begin_}; }
  void Skip(std::size_t count) { begin_ += count; }
  void Clear() { begin_ = end_ = 0; }

 private:
  std::size_t TakeHeld(std::span<char> out);
  DeviceStatus Refill(int descriptor);

  std::vector<char> buffer_;
  std::size_t begin_ = 0;
  std::size_t end_ = 0;
};

enum class DescriptorKind { Device, Socket };

/// Writes until done or out of time; `written` says how far it came. ECANCELED when `stop` said so
/// while it waited.
DeviceStatus WriteWithin(int descriptor, DescriptorKind kind, const WriteTimeouts& timeouts,
                         std::string_view bytes, std::size_t& written, const StopAsked& stop = {});

/// Waits until `events` (POLLIN, POLLOUT) come or `untilUs` of SteadyMicroseconds has passed;
/// negative waits for ever. `ready` is false when the time ran out. ECANCELED when `stop` said so.
DeviceStatus WaitFor(int descriptor, short events, std::int64_t untilUs, bool& ready,
                     const StopAsked& stop = {});

/// Microseconds since an arbitrary start; never goes back.
std::int64_t SteadyMicroseconds();

}  // namespace tarvex
