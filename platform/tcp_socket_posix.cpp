// TCP connections of a POSIX system.
#include <fcntl.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <utility>

#include "platform/descriptor_device_posix.h"
#include "platform/host_lookup_posix.h"
#include "platform/tcp_socket.h"

namespace tarvex {
namespace {

constexpr std::size_t kReadAhead = 65536;

struct HostPort {
  std::string host;
  std::string port;
};

HostPort SplitHostPort(std::string_view name) {
  const std::size_t colon = name.rfind(':');
  if (colon == std::string_view::npos) return {std::string(name), {}};
  std::string_view host = name.substr(0, colon);
  if (host.size() >= 2 && host.front() == '[' && host.back() == ']') {
    host = host.substr(1, host.size() - 2);
  }
  return {std::string(host), std::string(name.substr(colon + 1))};
}

DeviceStatus Connect(const addrinfo& address, std::uint32_t timeoutMs, const StopAsked& stop,
                     int& descriptor) {
  descriptor =
      ::socket(address.ai_family, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, address.ai_protocol);
  if (descriptor < 0) return {errno};
  DeviceStatus status;
  if (::connect(descriptor, address.ai_addr, address.ai_addrlen) != 0) {
    if (errno != EINPROGRESS) {
      status = {errno};
    } else {
      bool ready = false;
      const std::int64_t untilUs = SteadyMicroseconds() + std::int64_t{timeoutMs} * 1000;
      status = WaitFor(descriptor, POLLOUT, untilUs, ready, stop);
      int error = 0;
      socklen_t size = sizeof error;
      if (status.ok() && !ready) status = {ETIMEDOUT};
      if (status.ok() && ::getsockopt(descriptor, SOL_SOCKET, SO_ERROR, &error, &size) == 0) {
        status = {error};
      }
    }
  }
  if (!status.ok()) {
    ::close(descriptor);
    descriptor = -1;
  }
  return status;
}

void SendWithoutDelay(int descriptor) {
  const int on = 1;
  (void)::setsockopt(descriptor, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
}

// A far end that vanished without a word (no power, out of radio range) is found out within half a
// minute, not after hours.
void AskWhetherItLives(int descriptor) {
  constexpr int kOn = 1;
  constexpr int kSilentS = 15;
  constexpr int kBetweenS = 5;
  constexpr int kTimes = 3;
  (void)::setsockopt(descriptor, SOL_SOCKET, SO_KEEPALIVE, &kOn, sizeof kOn);
  (void)::setsockopt(descriptor, IPPROTO_TCP, TCP_KEEPIDLE, &kSilentS, sizeof kSilentS);
  (void)::setsockopt(descriptor, IPPROTO_TCP, TCP_KEEPINTVL, &kBetweenS, sizeof kBetweenS);
  (void)::setsockopt(descriptor, IPPROTO_TCP, TCP_KEEPCNT, &kTimes, sizeof kTimes);
}

class TcpDevice final : public DescriptorDevice<ByteDevice> {
 public:
  TcpDevice(std::uint32_t connectTimeoutMs, StopAsked stop, int descriptor = -1)
      : DescriptorDevice(DescriptorKind::Socket, kReadAhead, std::move(stop)),
        connectTimeoutMs_(connectTimeoutMs) {
    descriptor_ = descriptor;
  }
  TcpDevice(const TcpDevice&) = delete;
  TcpDevice& operator=(const TcpDevice&) = delete;
  ~TcpDevice() override { (void)CloseSocket(); }

  DeviceStatus Open(const std::string& name) override {
    (void)CloseSocket();
    const HostPort target = SplitHostPort(name);
    HostAddresses addresses;
    DeviceStatus status = LookUpHost(target.host, target.port, connectTimeoutMs_, stop_, addresses);
    for (const addrinfo* at = addresses.get(); at != nullptr; at = at->ai_next) {
      status = Connect(*at, connectTimeoutMs_, stop_, descriptor_);
      if (status.ok()) SendWithoutDelay(descriptor_);
      if (status.ok()) AskWhetherItLives(descriptor_);
      if (status.ok() || status.code == ECANCELED) break;
    }
    return status;
  }

  DeviceStatus Close() override { return CloseSocket(); }
  // Drops what had come in when it was called; a sender that floods is not followed for ever.
  DeviceStatus PurgeInput() override {
    std::size_t left = 0;
    if (const DeviceStatus status = BytesWaiting(left); !status.ok()) return status;
    reader_.Clear();
    char dropped[4096];
    while (left > 0) {
      const ssize_t n = ::read(descriptor_, dropped, std::min(left, sizeof dropped));
      if (n <= 0) break;
      left -= static_cast<std::size_t>(n);
    }
    return {};
  }

 private:
  DeviceStatus CloseSocket() {
    reader_.Clear();
    if (descriptor_ < 0) return {};
    ::close(descriptor_);
    descriptor_ = -1;
    return {};
  }

  std::uint32_t connectTimeoutMs_;
};

class LoopbackListener final : public TcpListener {
 public:
  LoopbackListener(int descriptor, int port) : descriptor_(descriptor), port_(port) {}
  LoopbackListener(const LoopbackListener&) = delete;
  LoopbackListener& operator=(const LoopbackListener&) = delete;
  ~LoopbackListener() override { ::close(descriptor_); }

  int port() const override { return port_; }

  DeviceStatus Accept(int timeoutMs, std::unique_ptr<ByteDevice>& connection) override {
    bool ready = false;
    const std::int64_t untilUs = SteadyMicroseconds() + std::int64_t{timeoutMs} * 1000;
    const DeviceStatus status = WaitFor(descriptor_, POLLIN, untilUs, ready);
    if (!status.ok() || !ready) return status;
    const int accepted = ::accept4(descriptor_, nullptr, nullptr, SOCK_NONBLOCK | SOCK_CLOEXEC);
    if (accepted < 0) return {errno == EAGAIN ? 0 : errno};
    SendWithoutDelay(accepted);
    connection = std::make_unique<TcpDevice>(0, StopAsked(), accepted);
    return {};
  }

 private:
  int descriptor_;
  int port_;
};

}  // namespace

std::unique_ptr<TcpListener> ListenOnLoopback(int port, DeviceStatus& status) {
  const int descriptor = ::socket(AF_INET, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0);
  if (descriptor < 0) {
    status = {errno};
    return nullptr;
  }
  const int on = 1;
  (void)::setsockopt(descriptor, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_port = htons(static_cast<std::uint16_t>(port));
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  socklen_t size = sizeof address;
  auto* const generic = reinterpret_cast<sockaddr*>(&address);
  if (::bind(descriptor, generic, size) != 0 || ::listen(descriptor, SOMAXCONN) != 0 ||
      ::getsockname(descriptor, generic, &size) != 0) {
    status = {errno};
    ::close(descriptor);
    return nullptr;
  }
  status = {};
  return std::make_unique<LoopbackListener>(descriptor, ntohs(address.sin_port));
}

std::unique_ptr<ByteDevice> MakeTcpDevice(std::uint32_t connectTimeoutMs, StopAsked stop) {
  return std::make_unique<TcpDevice>(connectTimeoutMs, std::move(stop));
}

}  // namespace tarvex
