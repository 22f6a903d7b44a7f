// A socket that listens on a free port of the loopback address, for tests that play the far end.
#pragma once

#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <string>

namespace tarvex {

class LoopbackListener {
 public:
  explicit LoopbackListener(int backlog = 1)
      : descriptor_(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof address;
    auto* const name = reinterpret_cast<sockaddr*>(&address);
    const bool listens = ::bind(descriptor_, name, size) == 0 &&
                         ::listen(descriptor_, backlog) == 0 &&
                         ::getsockname(descriptor_, name, &size) == 0;
    if (listens) port_ = ntohs(address.sin_port);
  }
  ~LoopbackListener() { ::close(descriptor_); }
  LoopbackListener(const LoopbackListener&) = delete;
  LoopbackListener& operator=(const LoopbackListener&) = delete;

  int descriptor() const { return descriptor_; }
  /// "127.0.0.1:PORT"; the port is 0 when it does not listen, which nobody can connect to.
  std::string target() const { return "127.0.0.1:" + std::to_string(port_); }
  int Accept() const { return ::accept4(descriptor_, nullptr, nullptr, SOCK_CLOEXEC); }
  /// Ends the waiting of another thread in Accept.
  void Leave() const { ::shutdown(descriptor_, SHUT_RDWR); }

 private:
  int descriptor_;
  int port_ = 0;
};

}  // namespace tarvex
