#include "platform/descriptor_io_posix.h"

#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstring>

namespace tarvex {
namespace {

constexpr std::int64_t kForEver = -1;
constexpr std::int64_t kStopStepUs = 50'000;

std::int64_t Deadline(std::int64_t start_us, std::uint32_t multiplier_ms, std::uint32_t constant_ms,
                      std::size_t count) {
  if (multiplier_ms == 0 && constant_ms == 0) return kForEver;
  const auto total_ms =
      static_cast<std::int64_t>(multiplier_ms) * static_cast<std::int64_t>(count) +
      static_cast<std::int64_t>(constant_ms);
  return start_us + total_ms * 1000;
}

std::int64_t Sooner(std::int64_t a, std::int64_t b) {
  if (a == kForEver) return b;
  if (b == kForEver) return a;
  return std::min(a, b);
}

// Rounded up: a wait that is cut short would spin through its last millisecond.
int PollTimeout(std::int64_t until_us) {
  if (until_us == kForEver) return -1;
  const std::int64_t left_us = until_us - SteadyMicroseconds();
  if (left_us <= 0) return 0;
  return static_cast<int>(std::min<std::int64_t>((left_us + 999) / 1000, 1'000'000'000));
}

// A socket whose far end is gone must fail the call, not end the program with a signal.
ssize_t WriteSome(int descriptor, DescriptorKind kind, std::string_view bytes) {
  return kind == DescriptorKind::Socket
             ? ::send(descriptor, bytes.data(), bytes.size(), MSG_NOSIGNAL)
             : ::write(descriptor, bytes.data(), bytes.size());
}

}  // namespace

std::int64_t SteadyMicroseconds() {
  return std::chrono::duration_cast<std::chrono::microseconds>(
             std::chrono::steady_clock::now().time_since_epoch())
      .count();
}

DeviceStatus WaitFor(int descriptor, short events, std::int64_t until_us, bool& ready,
                     const StopAsked& stop) {
  ready = false;
  for (;;) {
    if (stop && stop()) return {ECANCELED};
    pollfd wanted{.fd = descriptor, .events = events, .revents = 0};
    const std::int64_t step_us = stop ? SteadyMicroseconds() + kStopStepUs : kForEver;
    const int timeout_ms = PollTimeout(Sooner(until_us, step_us));
    const int count = ::poll(&wanted, 1, timeout_ms);
    if (count < 0 && errno != EINTR) return {errno};
    ready = count > 0;
    if (ready || timeout_ms == 0) return {};
    if (until_us != kForEver && SteadyMicroseconds() >= until_us) return {};
  }
}

std::size_t DescriptorReader::TakeHeld(std::span<char> out) {
  const std::size_t count = std::min(out.size(), end_ - begin_);
  std::memcpy(out.data(), buffer_.data() + begin_, count);
  begin_ += count;
  return count;
}

DeviceStatus DescriptorReader::Refill(int descriptor) {
  Clear();
  for (;;) {
    const ssize_t n = ::read(descriptor, buffer_.data(), buffer_.size());
    if (n > 0) {
      end_ = static_cast<std::size_t>(n);
      return {};
    }
    if (n == 0) return {DeviceStatus::kHungUp};
    if (errno == EAGAIN) return {};
    if (errno != EINTR) return {errno};
  }
}

DeviceStatus DescriptorReader::Read(int descriptor, const ReadTimeouts& timeouts,
                                    std::span<char> out, std::size_t& got, const StopAsked& stop) {
  got = TakeHeld(out);
  if (got == out.size()) return {};
  const std::int64_t start_us = SteadyMicroseconds();
  const std::int64_t total_us =
      Deadline(start_us, timeouts.multiplier_ms, timeouts.constant_ms, out.size());
  const bool interval_set =
      timeouts.interval_ms != 0 && timeouts.interval_ms != ReadTimeouts::kAtOnce;
  std::int64_t last_byte_us = start_us;
  for (;;) {
    if (const DeviceStatus status = Refill(descriptor); !status.ok()) {
      return got > 0 ? DeviceStatus{} : status;
    }
    if (const std::size_t count = TakeHeld(out.subspan(got)); count > 0) {
      got += count;
      last_byte_us = SteadyMicroseconds();
      if (got == out.size()) return {};
      continue;
    }
    if (timeouts.at_once()) return {};
    const std::int64_t interval_us =
        interval_set && got > 0
            ? last_byte_us + static_cast<std::int64_t>(timeouts.interval_ms) * 1000
            : kForEver;
    bool ready = false;
    const DeviceStatus status =
        WaitFor(descriptor, POLLIN, Sooner(total_us, interval_us), ready, stop);
    if (!status.ok()) return status;
    if (!ready) return {};
  }
}

DeviceStatus WriteWithin(int descriptor, DescriptorKind kind, const WriteTimeouts& timeouts,
                         std::string_view bytes, std::size_t& written, const StopAsked& stop) {
  written = 0;
  const std::int64_t until_us =
      Deadline(SteadyMicroseconds(), timeouts.multiplier_ms, timeouts.constant_ms, bytes.size());
  while (written < bytes.size()) {
    const ssize_t n = WriteSome(descriptor, kind, bytes.substr(written));
    if (n > 0) {
      written += static_cast<std::size_t>(n);
      continue;
    }
    if (n < 0 && errno == EINTR) continue;
    if (n < 0 && errno != EAGAIN) return {errno};
    bool ready = false;
    if (const DeviceStatus status = WaitFor(descriptor, POLLOUT, until_us, ready, stop);
        !status.ok()) {
      return status;
    }
    if (!ready) return {};
  }
  return {};
}

}  // namespace tarvex
