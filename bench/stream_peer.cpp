#include "bench/stream_peer.h"

#include <signal.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <utility>

#include "platform/tcp_socket.h"
#include "tests/support/quiet_process.h"

namespace tarvex {
namespace {

double Seconds(const timeval& time) {
  return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
}

}  // namespace

bool StreamToolInstalled() {
  return ::access("/usr/bin/str2str", X_OK) == 0;
}

PeerProcess::PeerProcess(std::vector<std::string> words)
    : process_(StartQuietly(std::move(words))) {}

double PeerProcess::End() {
  if (process_ <= 0) return 0.0;
  ::kill(process_, SIGKILL);
  rusage used{};
  ::wait4(process_, nullptr, 0, &used);
  process_ = -1;
  return Seconds(used.ru_utime) + Seconds(used.ru_stime);
}

void PeerProcess::Wait() {
  if (process_ > 0) ::waitpid(process_, nullptr, 0);
  process_ = -1;
}

int FreePort() {
  DeviceStatus status;
  const auto listener = ListenOnLoopback(0, status);
  return listener ? listener->port() : 0;
}

}  // namespace tarvex
