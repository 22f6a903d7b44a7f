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

std::int64_t Deadline(std::int64_t startUs, std::uint32_t multiplierMs, std::uint32_t constantMs,
                      std::size_t count) {
  if (multiplierMs == 0 && constantMs == 0) return kForEver;
  const auto totalMs = static_cast<std::int64_t>(multiplierMs) * static_cast<std::int64_t>(count) +
                       static_cast<std::int64_t>(constantMs);
  return startUs + totalMs * 1000;
}

std::int64_t Sooner(std::int64_t a, std::int64_t b) {
  if (a == kForEver) return b;
  if (b == kForEver) return a;
  return std::min(a, b);
}

// Rounded up: a wait that is cut short would spin through its last millisecond.
int PollTimeout(std::int64_t untilUs) {
  if (untilUs == kForEver) return -1;
  const std::int64_t leftUs = untilUs - SteadyMicroseconds();
  if (leftUs <= 0) return 0;
  return static_cast<int>(std::min<std::int64_t>((leftUs + 999) / 1000, 1'000'000'000));
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

DeviceStatus WaitFor(int descriptor, short events, std::int64_t untilUs, bool& ready,
                     const StopAsked& stop) {
  ready = false;
  for (;;) {
    if (stop && stop()) return {ECANCELED};
    pollfd wanted{.fd = descriptor, .events = events, .revents = 0};
    const std::int64_t stepUs = stop ? SteadyMicroseconds() + kStopStepUs : kForEver;
    const int timeoutMs = PollTimeout(Sooner(untilUs, stepUs));
    const int count = ::poll(&wanted, 1, timeoutMs);
    if (count < 0 && errno != EINTR) return {errno};
    ready = count > 0;
    if (ready || timeoutMs == 0) return {};
    if (untilUs != kForEver && SteadyMicroseconds() >= untilUs) return {};
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
  const std::int64_t startUs = SteadyMicroseconds();
  const std::int64_t totalUs =
      Deadline(startUs, timeouts.multiplierMs, timeouts.constantMs, out.size());
  const bool intervalSet = timeouts.intervalMs != 0 && timeouts.intervalMs != ReadTimeouts::kAtOnce;
  std::int64_t lastByteUs = startUs;
  for (;;) {
    if (const DeviceStatus status = Refill(descriptor); !status.ok()) {
      return got > 0 ? DeviceStatus{} : status;
    }
    if (const std::size_t count = TakeHeld(out.subspan(got)); count > 0) {
      got += count;
      lastByteUs = SteadyMicroseconds();
      if (got == out.size()) return {};
      continue;
    }
    if (timeouts.atOnce()) return {};
    const std::int64_t intervalUs =
        intervalSet && got > 0 ? lastByteUs + static_cast<std::int64_t>(timeouts.intervalMs) * 1000
                               : kForEver;
    bool ready = false;
    const DeviceStatus status =
        WaitFor(descriptor, POLLIN, Sooner(totalUs, intervalUs), ready, stop);
    if (!status.ok()) return status;
    if (!ready) return {};
  }
}

DeviceStatus WriteWithin(int descriptor, DescriptorKind kind, const WriteTimeouts& timeouts,
                         std::string_view bytes, std::size_t& written, const StopAsked& stop) {
  written = 0;
  const std::int64_t untilUs =
      Deadline(SteadyMicroseconds(), timeouts.multiplierMs, timeouts.constantMs, bytes.size());
  while (written < bytes.size()) {
    const ssize_t n = WriteSome(descriptor, kind, bytes.substr(written));
    if (n > 0) {
      written += static_cast<std::size_t>(n);
      continue;
    }
    if (n < 0 && errno == EINTR) continue;
    if (n < 0 && errno != EAGAIN) return {errno};
    bool ready = false;
    if (const DeviceStatus status = WaitFor(descriptor, POLLOUT, untilUs, ready, stop);
        !status.ok()) {
      return status;
    }
    if (!ready) return {};
  }
  return {};
}

}  // namespace tarvex
