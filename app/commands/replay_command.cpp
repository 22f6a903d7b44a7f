// tarvex replay: a recorded log as a receiver that other programs can read.
#include <cmath>
#include <cstdio>

#include "app/commands/command.h"
#include "app/commands/commands.h"
#include "gnss/nmea_number.h"
#include "gnss/sentences/sentence.h"
#include "gnss/text_fields.h"
#include "platform/pseudo_terminal.h"
#include "platform/tcp_socket.h"

namespace tarvex {
namespace {

constexpr std::uint64_t kLargestLog = 1U << 30;
constexpr std::int64_t kPollMs = 50;
constexpr std::int64_t kLongestPauseMs = 10'000;
constexpr WriteTimeouts kWrite = {.constant_ms = 5000};

struct ReplayOptions {
  std::string log;
  std::string to = "pty";
  double speed = 1.0;
  int port = 0;
};

// Where the log goes; both wait until somebody reads.
class Outlet {
 public:
  virtual ~Outlet() = default;
  virtual std::string Name() const = 0;
  virtual bool WaitForReader() = 0;
  virtual DeviceStatus Write(std::string_view bytes, std::size_t& written) = 0;
};

class PtyOutlet final : public Outlet {
 public:
  PtyOutlet(std::unique_ptr<PseudoTerminal> terminal, Clock& clock)
      : terminal_(std::move(terminal)), clock_(clock) {}
  std::string Name() const override { return "serial:" + terminal_->device_name(); }
  bool WaitForReader() override {
    while (!InterruptRequested() && !terminal_->HasReader()) clock_.SleepMilliseconds(kPollMs);
    // The reader sets its line up and drops what came before.
    if (!InterruptRequested()) clock_.SleepMilliseconds(4 * kPollMs);
    return !InterruptRequested();
  }
  DeviceStatus Write(std::string_view bytes, std::size_t& written) override {
    return terminal_->Write(bytes, kWrite, written);
  }

 private:
  std::unique_ptr<PseudoTerminal> terminal_;
  Clock& clock_;
};

class TcpOutlet final : public Outlet {
 public:
  explicit TcpOutlet(std::unique_ptr<TcpListener> listener) : listener_(std::move(listener)) {}
  std::string Name() const override { return "tcp:127.0.0.1:" + std::to_string(listener_->port()); }
  bool WaitForReader() override {
    while (!InterruptRequested() && !device_) {
      if (!listener_->Accept(kPollMs, device_).ok()) return false;
    }
    return device_ != nullptr;
  }
  DeviceStatus Write(std::string_view bytes, std::size_t& written) override {
    return device_->Write(bytes, kWrite, written);
  }

 private:
  std::unique_ptr<TcpListener> listener_;
  std::unique_ptr<ByteDevice> device_;
};

std::unique_ptr<Outlet> MakeOutlet(const ReplayOptions& options, Program& program,
                                   DeviceStatus& status) {
  if (options.to == "tcp") {
    auto listener = ListenOnLoopback(options.port, status);
    return listener ? std::make_unique<TcpOutlet>(std::move(listener)) : nullptr;
  }
  auto terminal = MakePseudoTerminal(status);
  return terminal ? std::make_unique<PtyOutlet>(std::move(terminal), program.clock) : nullptr;
}

// The time of day of a position sentence; kNoEpoch for every other line.
std::int32_t EpochOf(std::string_view line) {
  switch (KindOf(line, true)) {
    case SentenceKind::Gga:
    case SentenceKind::Gns:
    case SentenceKind::Ggk:
    case SentenceKind::Ggq:
      return MillisecondsOfDay(FirstField(SkipFields(line, ',', 1), ','));
    case SentenceKind::PtnlGgk:
      return MillisecondsOfDay(FirstField(SkipFields(line, ',', 2), ','));
    case SentenceKind::Gll:
      return MillisecondsOfDay(FirstField(SkipFields(line, ',', 5), ','));
    default:
      return kNoEpoch;
  }
}

// Waits between epochs as long as the receiver did.
class Pace {
 public:
  Pace(double speed, Clock& clock) : speed_(speed), clock_(clock) {}

  void Before(std::string_view line) {
    const std::int32_t epoch = EpochOf(line);
    if (speed_ <= 0.0 || epoch == kNoEpoch || epoch == last_) return;
    if (last_ != kNoEpoch && epoch > last_) {
      const auto pause = static_cast<std::int64_t>(std::lround((epoch - last_) / speed_));
      Sleep(std::min(pause, kLongestPauseMs));
    }
    last_ = epoch;
  }

 private:
  void Sleep(std::int64_t pause_ms) {
    const std::int64_t until = clock_.SteadyMilliseconds() + pause_ms;
    for (std::int64_t left = pause_ms; left > 0 && !InterruptRequested();
         left = until - clock_.SteadyMilliseconds()) {
      clock_.SleepMilliseconds(std::min<std::int64_t>(left, kPollMs));
    }
  }

  double speed_;
  Clock& clock_;
  std::int32_t last_ = kNoEpoch;
};

ExitCode Send(std::string_view log, const ReplayOptions& options, Outlet& outlet,
              Program& program) {
  Pace pace(options.speed, program.clock);
  std::uint64_t sent = 0;
  while (!log.empty() && !InterruptRequested()) {
    const std::size_t end = std::min(log.find('\n'), log.size() - 1) + 1;
    const std::string_view line = log.substr(0, end);
    log.remove_prefix(end);
    pace.Before(line);
    std::size_t written = 0;
    if (!outlet.Write(line, written).ok() || written < line.size()) {
      return program.Fail("The reader has gone after " + std::to_string(sent + written) +
                          " bytes.");
    }
    sent += line.size();
    program.console.ShowProgress(std::to_string(sent) + " bytes sent");
  }
  // What the reader has not taken yet is lost when the device closes.
  program.clock.SleepMilliseconds(10 * kPollMs);
  program.console.Print("Sent " + std::to_string(sent) + " bytes.\n");
  return InterruptRequested() ? ExitCode::Failed : ExitCode::Done;
}

ExitCode RunReplay(const ReplayOptions& options, Program& program) {
  std::string log;
  const FileStatus read = ReadWholeFile(program.files, options.log, kLargestLog, log);
  if (!read.ok()) {
    return program.Fail("The log " + options.log + " cannot be read: " + read.Text() + ".");
  }
  DeviceStatus status;
  const std::unique_ptr<Outlet> outlet = MakeOutlet(options, program, status);
  if (!outlet) return program.Fail("The log cannot be offered: " + status.Text() + ".");
  program.console.Print("Read it with --receiver " + outlet->Name() + "\n");
  std::fflush(stdout);
  if (!outlet->WaitForReader()) return ExitCode::Failed;
  return Send(log, options, *outlet, program);
}

}  // namespace

void AddReplayCommand(CLI::App& app, Program& program) {
  Command<ReplayOptions> command(app, program, "replay", "Send a recorded log as a receiver would",
                                 RunReplay);
  ReplayOptions& options = *command.options;
  command.sub.footer(
      "It waits until a program opens the device or the TCP port, then sends the log at the\n"
      "times of its positions. Example: tarvex replay site.nmea --to pty --speed 10");
  command.sub.add_option("LOG", options.log, "The recorded log")->required();
  command.sub.add_option("--to", options.to, "pty: a serial device; tcp: a loopback port")
      ->check(CLI::IsMember({"pty", "tcp"}));
  command.sub
      .add_option("--speed", options.speed,
                  "How many times faster than recorded (default: 1); 0: at once")
      ->check(CLI::NonNegativeNumber);
  command.sub.add_option("--port", options.port, "TCP port (default: a free one)")
      ->check(CLI::Range(0, 65535));
}

}  // namespace tarvex
