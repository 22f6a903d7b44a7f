#include "app/cli/program.h"

#include <csignal>

#include "app/version.h"

namespace tarvex {
namespace {

volatile std::sig_atomic_t interrupt_requested = 0;

void NoteInterrupt(int) {
  interrupt_requested = 1;
}

}  // namespace

ExitCode Program::Fail(std::string_view sentence) {
  console.EndProgress();
  console.PrintError("ERROR: " + std::string(sentence) + "\n");
  return exit_code = ExitCode::Failed;
}

ExitCode Program::Misuse(std::string_view sentence) {
  (void)Fail(sentence);
  return exit_code = ExitCode::WrongUse;
}

void Program::Warn(std::string_view sentence) {
  console.PrintError("WARNING: " + std::string(sentence) + "\n");
}

bool InterruptRequested() {
  return interrupt_requested != 0;
}

void WatchForInterrupt() {
  struct sigaction action {};
  action.sa_handler = NoteInterrupt;  // without SA_RESTART, so that waiting for a lock ends
  ::sigaction(SIGINT, &action, nullptr);
  ::sigaction(SIGTERM, &action, nullptr);
}

std::string ProgramIdentification() {
  return std::string("Tarvex ") + kVersion;
}

}  // namespace tarvex
