#include "app/cli/replay_outlet.h"

#include <utility>

#include "app/cli/program.h"
#include "platform/pseudo_terminal.h"
#include "platform/tcp_socket.h"

namespace tarvex {
namespace {

constexpr int kPollMs = 50;
constexpr WriteTimeouts kWrite = {.constantMs = 5000};
constexpr DeviceTimeouts kAtOnce = {.read = {.intervalMs = ReadTimeouts::kAtOnce}};

class PtyOutlet final : public ReplayOutlet {
 public:
  PtyOutlet(std::unique_ptr<PseudoTerminal> terminal, Clock& clock)
      : terminal_(std::move(terminal)), clock_(clock) {}

  std::string Name() const override { return "serial:" + terminal_->deviceName(); }

  bool WaitForReader() override {
    while (!InterruptRequested() && !terminal_->HasReader()) clock_.SleepMilliseconds(kPollMs);
    // The reader sets its line up and drops what came before.
    if (!InterruptRequested()) clock_.SleepMilliseconds(4 * kPollMs);
    return !InterruptRequested();
  }
  DeviceStatus Write(std::string_view bytes, std::size_t& written) override {
    return terminal_->Write(bytes, kWrite, written);
  }
  DeviceStatus TakeInput(std::span<char> out, std::size_t& got) override {
    return terminal_->TakeInput(out, got);
  }

 private:
  std::unique_ptr<PseudoTerminal> terminal_;
  Clock& clock_;
};

class TcpOutlet final : public ReplayOutlet {
 public:
  explicit TcpOutlet(std::unique_ptr<TcpListener> listener) : listener_(std::move(listener)) {}

  std::string Name() const override { return "tcp:127.0.0.1:" + std::to_string(listener_->port()); }

  bool WaitForReader() override {
    while (!InterruptRequested() && !device_) {
      if (!listener_->Accept(kPollMs, device_).ok()) return false;
    }
    return device_ != nullptr && device_->SetTimeouts(kAtOnce).ok();
  }
  DeviceStatus Write(std::string_view bytes, std::size_t& written) override {
    return device_->Write(bytes, kWrite, written);
  }
  DeviceStatus TakeInput(std::span<char> out, std::size_t& got) override {
    return device_->Read(out, got);
  }

 private:
  std::unique_ptr<TcpListener> listener_;
  std::unique_ptr<ByteDevice> device_;
};

}  // namespace

std::unique_ptr<ReplayOutlet> MakePtyOutlet(Clock& clock, DeviceStatus& status) {
  auto terminal = MakePseudoTerminal(status);
  return terminal ? std::make_unique<PtyOutlet>(std::move(terminal), clock) : nullptr;
}

std::unique_ptr<ReplayOutlet> MakeTcpOutlet(int port, DeviceStatus& status) {
  auto listener = ListenOnLoopback(port, status);
  return listener ? std::make_unique<TcpOutlet>(std::move(listener)) : nullptr;
}

}  // namespace tarvex
