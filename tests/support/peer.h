// Other people's programs as peers of a test, and waiting for what they do.
#pragma once

#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <string>
#include <string_view>
#include <thread>
#include <utility>
#include <vector>

#include "tests/support/quiet_process.h"

namespace tarvex {

/// Along PATH.
inline bool Installed(const std::string& program) {
  const char* const path = std::getenv("PATH");
  std::string_view rest = path != nullptr ? path : "";
  while (!rest.empty()) {
    const std::size_t colon = std::min(rest.find(':'), rest.size());
    if (::access((std::string(rest.substr(0, colon)) + "/" + program).c_str(), X_OK) == 0) {
      return true;
    }
    rest.remove_prefix(std::min(colon + 1, rest.size()));
  }
  return false;
}

/// A program that runs until this goes.
class Peer {
 public:
  explicit Peer(std::vector<std::string> words) : process_(StartQuietly(std::move(words))) {}
  Peer(const Peer&) = delete;
  Peer& operator=(const Peer&) = delete;
  ~Peer() { End(); }

  void End() {
    if (process_ <= 0) return;
    ::kill(process_, SIGTERM);
    for (int i = 0; i < 100 && ::waitpid(process_, nullptr, WNOHANG) == 0; ++i) {
      std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
    if (::waitpid(process_, nullptr, WNOHANG) == 0) {
      ::kill(process_, SIGKILL);
      ::waitpid(process_, nullptr, 0);
    }
    process_ = -1;
  }

 private:
  pid_t process_;
};

template <typename Condition>
bool Eventually(Condition condition, int seconds = 15) {
  for (int i = 0; i < seconds * 50; ++i) {
    if (condition()) return true;
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
  }
  return false;
}

}  // namespace tarvex
