// tarvex caster: a small caster on this machine, for trials without a network.
#include <cstdlib>

#include "app/cli/command_line.h"
#include "core/text/printable.h"
#include "gnss/caster/loopback_caster.h"
#include "gnss/ntrip/client.h"

namespace tarvex {
namespace {

constexpr std::uint64_t kLargestFile = 256U << 20;
constexpr int kWatchMs = 200;
constexpr const char* kPasswordVariable = "TARVEX_CASTER_PASSWORD";

struct CasterOptions {
  std::string file;
  std::string mountpoint = "TEST";
  std::string user;
  int port = 2101;
  std::uint32_t rate = 1000;
  bool wantsGga = false;
};

ExitCode Content(const CasterOptions& options, Program& program, CasterContent& content) {
  const FileStatus status = ReadWholeFile(program.files, options.file, kLargestFile, content.data);
  if (!status.ok()) {
    return program.Fail("The file " + options.file + " cannot be read: " + status.Text() + ".");
  }
  if (content.data.empty()) return program.Fail("The file " + options.file + " is empty.");
  content.stream.mountpoint.Assign(options.mountpoint);
  if (content.stream.mountpoint.view() != options.mountpoint ||
      !IsMountpointName(options.mountpoint) ||
      options.mountpoint.find_first_of(";/") != std::string::npos) {
    return program.Misuse(
        "A mountpoint has at most 32 characters, no blank, no control character, no ; and no /.");
  }
  content.stream.identifier.Assign("Trial");
  content.stream.format.Assign("RTCM 3.2");
  content.stream.nmea = options.wantsGga;
  content.stream.navSystem.Assign("GPS");
  content.stream.generator.Assign("Tarvex");
  content.stream.compression.Assign("none");
  content.stream.authentication = options.user.empty() ? 'N' : 'B';
  content.bytesPerSecond = options.rate;
  content.user = options.user;
  const char* const password = std::getenv(kPasswordVariable);
  if (!options.user.empty() && password == nullptr) {
    return program.Misuse(
        std::string("With --user the password is taken from the environment: set ") +
        kPasswordVariable + ".");
  }
  if (password != nullptr) content.password = password;
  return ExitCode::Done;
}

ExitCode RunCaster(const CasterOptions& options, Program& program) {
  CasterContent content;
  if (const ExitCode code = Content(options, program, content); code != ExitCode::Done) return code;
  LoopbackCaster caster(std::move(content), program.clock);
  if (const DeviceStatus status = caster.Start(options.port); !status.ok()) {
    return program.Fail("Port " + std::to_string(options.port) +
                        " cannot be listened on: " + status.Text() + ".");
  }
  program.console.Print("Serving ntrip://" + (options.user.empty() ? "" : options.user + "@") +
                        "127.0.0.1:" + std::to_string(caster.port()) + "/" + options.mountpoint +
                        "; Ctrl-C ends it.\n");
  std::fflush(stdout);
  while (!InterruptRequested()) {
    program.clock.SleepMilliseconds(kWatchMs);
    for (const std::string& upload : caster.TakeUploads()) {
      program.console.Print("from a rover: " + PrintableLine(upload) + "\n");
    }
    std::fflush(stdout);
    program.console.ShowProgress(std::to_string(caster.requests()) + " requests, " +
                                 std::to_string(caster.bytesSent()) + " bytes sent");
  }
  program.console.EndProgress();
  program.console.Print("Served " + std::to_string(caster.requests()) + " requests, " +
                        std::to_string(caster.bytesSent()) + " bytes.\n");
  return ExitCode::Done;
}

}  // namespace

void DeclareCasterCommand(Command& command) {
  CasterOptions& options = command.Runs(RunCaster);
  command.Footer(
      "It listens on the loopback address alone: other machines do not reach it. What rovers\n"
      "send up is printed.\n"
      "Example: tarvex caster corrections.rtcm --mountpoint TEST, then in another terminal\n"
      "  tarvex bases 127.0.0.1:2101\n"
      "  tarvex watch serial:/dev/ttyUSB0 --corrections ntrip://127.0.0.1:2101/TEST");
  command.Add("FILE", options.file, "Recorded corrections, sent over and over").Required();
  command.Add("--mountpoint", options.mountpoint, "Name of the stream (default: TEST)")
      .ValueName("NAME");
  command.Add("--port", options.port, "TCP port (default: 2101); 0: a free one").Between(0, 65535);
  command.AddFlag("--wants-gga", options.wantsGga,
                  "Say in the list of streams that this one needs the rover's position");
  command
      .Add("--user", options.user,
           "User that clients must give; password in TARVEX_CASTER_PASSWORD")
      .ValueName("NAME");
  command.Add("--rate", options.rate,
              "Bytes a second (default: 1000); 0: as fast as they are taken");
}

}  // namespace tarvex
