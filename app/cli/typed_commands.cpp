#include "app/cli/typed_commands.h"

#include <poll.h>
#include <unistd.h>

#include <string>

#include "core/text/number_text.h"
#include "core/text/text.h"

namespace tarvex {
namespace {

constexpr int kLookAgainMs = 100;
constexpr std::size_t kLongestLine = 1000;

// A program in the background that reads the terminal would be stopped; what is typed there is for
// another.
bool IsInBackground() {
  const pid_t holder = ::tcgetpgrp(STDIN_FILENO);
  return holder >= 0 && holder != ::getpgrp();
}

}  // namespace

bool TakeTypedCommand(std::string_view line, SessionCommands& commands) {
  line = WithoutOuterBlanks(line);
  const std::string_view rest = line.size() > 1 ? WithoutOuterBlanks(line.substr(1)) : "";
  const bool alone = line.size() == 1;
  if (line.empty() || line == "s" || line == "store") return commands.Send(StoreNow{}), true;
  if (alone && line[0] == 'p') return commands.Send(PauseStoring{}), true;
  if (alone && line[0] == 'c') return commands.Send(ResumeStoring{}), true;
  if (alone && line[0] == 'r') return commands.Send(RetryCorrections{}), true;
  if (alone && line[0] == 'n') return commands.Send(NextTarget{}), true;
  if (alone && line[0] == 'k') return commands.Send(SkipTarget{}), true;
  if (line.starts_with("t ")) return commands.Send(ChooseTarget{std::string(rest)}), true;
  if (alone && line[0] == 'q') return commands.Send(EndSession{}), true;
  if (line.starts_with("d ")) return commands.Send(SetDescription{std::string(rest)}), true;
  if (line.starts_with("h ")) {
    const auto height = ParseNumber(rest);
    if (!height || *height < 0.0 || *height > kHighestAntenna) return false;
    return commands.Send(SetAntennaHeight{*height}), true;
  }
  return false;
}

TypedCommands::TypedCommands(Program& program, SessionCommands& commands)
    : program_(program), commands_(commands), thread_([this] { Read(); }) {}

TypedCommands::~TypedCommands() {
  ends_ = true;
  thread_.join();
}

// Looks at the input itself, without the buffer of the standard streams: a line that waits there
// would not wake the thread.
void TypedCommands::Read() {
  std::string line;
  while (!ends_) {
    pollfd input{.fd = STDIN_FILENO, .events = POLLIN, .revents = 0};
    if (::poll(&input, 1, kLookAgainMs) <= 0) continue;
    if (IsInBackground()) {
      ::poll(nullptr, 0, kLookAgainMs);
      continue;
    }
    char byte = 0;
    const ssize_t got = ::read(STDIN_FILENO, &byte, 1);
    if (got <= 0) return;
    if (byte != '\n') {
      if (line.size() < kLongestLine) line += byte;
      continue;
    }
    if (!TakeTypedCommand(line, commands_)) {
      program_.console.PrintError(
          "\"" + OneLine(line) +
          "\" is not a command: Enter stores, d TEXT, h HEIGHT, p pauses, c continues, r asks for "
          "corrections again, q ends; staking: n the next target, k leaves one out, t NAME takes "
          "one.\n");
    }
    line.clear();
  }
}

}  // namespace tarvex
