// tarvex replay: a recorded log as a receiver that other programs can read.
#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <memory>
#include <utility>

#include "app/cli/command_line.h"
#include "app/cli/replay_outlet.h"
#include "gnss/nmea/sentences.h"

namespace tarvex {
namespace {

constexpr std::uint64_t kLargestLog = 1U << 30;
constexpr std::int64_t kPollMs = 50;
constexpr std::int64_t kLongestPauseMs = 10'000;
constexpr std::int64_t kLastPauseMs = 500;

struct ReplayOptions {
  std::string log;
  std::string to = "pty";
  double speed = 1.0;
  int port = 0;
  std::string keepInput;
};

// What the reader sends while it is read to: counted, and kept in a file when one is asked for.
class ReaderInput {
 public:
  ReaderInput(ReplayOutlet& outlet, Program& program) : outlet_(outlet), program_(program) {}

  bool KeepIn(const std::string& path) {
    const FileStatus status = program_.files.Open(path, FileAccess::CreateNew, file_);
    if (status.ok()) return true;
    (void)program_.Fail("The file " + path + " cannot be created: " + status.Text() + ".");
    return false;
  }

  /// False, after a message, when it could not be kept.
  bool Take() {
    std::array<char, 4096> bytes;
    std::size_t got = 0;
    while (outlet_.TakeInput(bytes, got).ok() && got > 0) {
      if (file_) {
        const FileStatus status = file_->WriteAt(count_, {bytes.data(), got});
        if (!status.ok()) {
          (void)program_.Fail("What the reader sends cannot be kept: " + status.Text() + ".");
          return false;
        }
      }
      count_ += got;
    }
    return true;
  }

  std::uint64_t count() const { return count_; }

 private:
  ReplayOutlet& outlet_;
  Program& program_;
  std::unique_ptr<File> file_;
  std::uint64_t count_ = 0;
};

// Sends the log's lines, waiting between epochs as long as the receiver did.
class Replay {
 public:
  Replay(const ReplayOptions& options, ReplayOutlet& outlet, Program& program)
      : speed_(options.speed), outlet_(outlet), program_(program), input_(outlet, program) {}

  ExitCode Run(std::string_view log, const std::string& keepInput) {
    if (!keepInput.empty() && !input_.KeepIn(keepInput)) return ExitCode::Failed;
    while (!log.empty() && !InterruptRequested()) {
      const std::size_t end = std::min(log.find('\n'), log.size() - 1) + 1;
      if (!SendLine(log.substr(0, end))) return ExitCode::Failed;
      log.remove_prefix(end);
    }
    // What the reader has not taken yet is lost when the device closes.
    if (!Pause(kLastPauseMs)) return ExitCode::Failed;
    program_.console.Print("Sent " + std::to_string(sent_) + " bytes, " +
                           std::to_string(input_.count()) + " came back.\n");
    return InterruptRequested() ? ExitCode::Failed : ExitCode::Done;
  }

 private:
  bool SendLine(std::string_view line) {
    if (!WaitForEpoch(EpochOfPosition(line)) || !input_.Take()) return false;
    std::size_t written = 0;
    if (!outlet_.Write(line, written).ok() || written < line.size()) {
      (void)program_.Fail("The reader has gone after " + std::to_string(sent_ + written) +
                          " bytes.");
      return false;
    }
    sent_ += line.size();
    program_.console.ShowProgress(std::to_string(sent_) + " bytes sent, " +
                                  std::to_string(input_.count()) + " came back");
    return true;
  }

  bool WaitForEpoch(std::int32_t epoch) {
    if (speed_ <= 0.0 || epoch == kNoEpoch || epoch == lastEpoch_) return true;
    const std::int32_t before = std::exchange(lastEpoch_, epoch);
    if (before == kNoEpoch || epoch < before) return true;
    const auto pause = static_cast<std::int64_t>(std::lround((epoch - before) / speed_));
    return Pause(std::min(pause, kLongestPauseMs));
  }

  bool Pause(std::int64_t pauseMs) {
    const std::int64_t until = program_.clock.SteadyMilliseconds() + pauseMs;
    for (std::int64_t left = pauseMs; left > 0 && !InterruptRequested();
         left = until - program_.clock.SteadyMilliseconds()) {
      if (!input_.Take()) return false;
      program_.clock.SleepMilliseconds(std::min<std::int64_t>(left, kPollMs));
    }
    return input_.Take();
  }

  double speed_;
  ReplayOutlet& outlet_;
  Program& program_;
  ReaderInput input_;
  std::int32_t lastEpoch_ = kNoEpoch;
  std::uint64_t sent_ = 0;
};

ExitCode RunReplay(const ReplayOptions& options, Program& program) {
  std::string log;
  const FileStatus read = ReadWholeFile(program.files, options.log, kLargestLog, log);
  if (!read.ok()) {
    return program.Fail("The log " + options.log + " cannot be read: " + read.Text() + ".");
  }
  DeviceStatus status;
  const std::unique_ptr<ReplayOutlet> outlet = options.to == "tcp"
                                                   ? MakeTcpOutlet(options.port, status)
                                                   : MakePtyOutlet(program.clock, status);
  if (!outlet) return program.Fail("The log cannot be offered: " + status.Text() + ".");
  program.console.Print("Read it with --receiver " + outlet->Name() + "\n");
  std::fflush(stdout);
  if (!outlet->WaitForReader()) return ExitCode::Failed;
  return Replay(options, *outlet, program).Run(log, options.keepInput);
}

}  // namespace

void DeclareReplayCommand(Command& command) {
  ReplayOptions& options = command.Runs(RunReplay);
  command.Footer(
      "It waits until a program opens the device or the TCP port, then sends the log at the\n"
      "times of its positions. Example: tarvex replay site.nmea --to pty --speed 10");
  command.Add("LOG", options.log, "The recorded log").Required();
  command.Add("--to", options.to, "pty: a serial device (default); tcp: a loopback port")
      .OneOf({"pty", "tcp"});
  command
      .Add("--speed", options.speed, "How many times faster than recorded (default: 1); 0: at once")
      .NotNegative();
  command.Add("--port", options.port, "TCP port (default: a free one)").Between(0, 65535);
  command
      .Add("--keep-input", options.keepInput,
           "Keep what the reader sends (commands, corrections) in a new file")
      .ValueName("FILE");
}

}  // namespace tarvex
