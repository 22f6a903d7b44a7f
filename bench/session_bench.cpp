// From the last byte of a receiver's epoch to the position on the screen: the program itself on a
// pseudo-terminal, as it reads a serial line. The bound is 5 ms.
#include <benchmark/benchmark.h>
#include <poll.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <cstdio>
#include <memory>
#include <string>
#include <string_view>
#include <thread>

#include "platform/pseudo_terminal.h"

namespace tarvex {
namespace {

using SteadyClock = std::chrono::steady_clock;

std::string WithChecksum(const std::string& body) {
  unsigned sum = 0;
  for (const char c : body) sum ^= static_cast<unsigned char>(c);
  std::array<char, 8> end{};
  std::snprintf(end.data(), end.size(), "*%02X\r\n", sum);
  return "$" + body + end.data();
}

// Ten epochs a second; their precision comes before the position.
std::string Epoch(int tenths) {
  std::array<char, 16> clock{};
  std::snprintf(clock.data(), clock.size(), "%02d%02d%02d.%d0", tenths / 36000 % 24,
                tenths / 600 % 60, tenths / 10 % 60, tenths % 10);
  return WithChecksum("GNGST," + std::string(clock.data()) + ",0.9,,,,0.010,0.010,0.020") +
         WithChecksum("GNGGA," + std::string(clock.data()) +
                      ",4717.11200000,N,00915.91200000,E,4,12,0.8,499.600,M,48.000,M,1.0,0001");
}

// `tarvex watch` on a device, its lines read from a pipe.
class Watch {
 public:
  explicit Watch(const std::string& device) {
    std::array<int, 2> ends{};
    if (::pipe(ends.data()) != 0) return;
    process_ = ::fork();
    if (process_ == 0) {
      ::dup2(ends[1], STDOUT_FILENO);
      ::execl(TARVEX_PROGRAM, TARVEX_PROGRAM, "watch", ("serial:" + device).c_str(), nullptr);
      ::_exit(127);
    }
    ::close(ends[1]);
    output_ = ends[0];
  }
  Watch(const Watch&) = delete;
  Watch& operator=(const Watch&) = delete;
  ~Watch() {
    if (process_ > 0) ::kill(process_, SIGTERM);
    if (process_ > 0) ::waitpid(process_, nullptr, 0);
    ::close(output_);
  }

  /// Takes what was said until now.
  void Drain() const {
    std::array<char, 4096> bytes;
    pollfd ready{.fd = output_, .events = POLLIN, .revents = 0};
    while (::poll(&ready, 1, 0) > 0 && ::read(output_, bytes.data(), bytes.size()) > 0) {
    }
  }

  /// Waits for the end of a line; false when the program has ended.
  bool ReadLine() const {
    std::array<char, 4096> bytes;
    for (;;) {
      const ssize_t count = ::read(output_, bytes.data(), bytes.size());
      if (count <= 0) return false;
      if (bytes[static_cast<std::size_t>(count) - 1] == '\n') return true;
    }
  }

 private:
  pid_t process_ = -1;
  int output_ = -1;
};

bool Send(PseudoTerminal& far, std::string_view bytes) {
  std::size_t written = 0;
  return far.Write(bytes, {.constantMs = 1000}, written).ok() && written == bytes.size();
}

void ShowPosition(benchmark::State& state) {
  DeviceStatus status;
  const auto far = MakePseudoTerminal(status);
  if (!far) return state.SkipWithError("no pseudo-terminal");
  const Watch watch(far->deviceName());
  for (int i = 0; i < 500 && !far->HasReader(); ++i) {
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
  }
  // The line is emptied when it is opened.
  std::this_thread::sleep_for(std::chrono::milliseconds(300));
  int tenths = 2;
  if (!Send(*far, Epoch(1) + Epoch(tenths)) || !watch.ReadLine()) {
    return state.SkipWithError("no position");
  }
  std::this_thread::sleep_for(std::chrono::milliseconds(300));
  for (auto _ : state) {
    const std::string epoch = Epoch(++tenths);
    if (!Send(*far, std::string_view(epoch).substr(0, epoch.size() - 1))) break;
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
    watch.Drain();
    const SteadyClock::time_point sent = SteadyClock::now();
    if (!Send(*far, "\n") || !watch.ReadLine()) return state.SkipWithError("no position");
    state.SetIterationTime(std::chrono::duration<double>(SteadyClock::now() - sent).count());
  }
}
BENCHMARK(ShowPosition)
    ->Name("receiver's last byte to shown position/tarvex")
    ->UseManualTime()
    ->Iterations(200)
    ->Unit(benchmark::kMicrosecond);

}  // namespace
}  // namespace tarvex
