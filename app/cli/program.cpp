#include "app/cli/program.h"

#include <atomic>
#include <csignal>

#include "core/text/number_text.h"
#include "core/text/text.h"

namespace tarvex {
namespace {

// Set by the signal's handler on any thread, asked by all of them.
std::atomic<bool> interruptRequested = false;
static_assert(std::atomic<bool>::is_always_lock_free);

std::string PlaceText(const GridPoint& at) {
  constexpr int kDecimals = 4;
  return "N " + FixedNumber(at.northing, kDecimals) + " E " + FixedNumber(at.easting, kDecimals) +
         " EL " + FixedNumber(at.elevation, kDecimals);
}

void NoteInterrupt(int) {
  interruptRequested = true;
}

}  // namespace

void Console::Tell(Notice kind, std::string_view text) {
  const char* const mark = kind == Notice::Error     ? "ERROR: "
                           : kind == Notice::Warning ? "WARNING: "
                                                     : "";
  PrintError(mark + std::string(text) + "\n");
}

void ConsoleObserver::OnError(const std::string& sentence) {
  console_.EndProgress();
  console_.Tell(Notice::Error, sentence);
}

void ConsoleObserver::OnWarning(const std::string& sentence) {
  console_.Tell(Notice::Warning, sentence);
}

void ConsoleObserver::OnMessage(std::string_view title, std::string_view text) {
  console_.Tell(Notice::Message, std::string(title) + ": " + std::string(text));
}

ExistingPointAnswer ConsoleObserver::AskExistingPoint(const ExistingPointQuestion& question) {
  using Choice = ExistingPointAnswer::Choice;
  std::string text = "Point " + question.id + " exists at " + PlaceText(question.existing.at);
  if (question.wanted) text += "; the new one is at " + PlaceText(*question.wanted);
  std::string answer;
  const bool answered = console_.Ask(
      text + ".\nOverwrite it, store under the next free id, or cancel? [o/n/C] ", answer);
  if (!answered || answer.empty()) return {.choice = Choice::Cancel};
  if (LowerCase(answer[0]) == 'o') return {.choice = Choice::Overwrite};
  if (LowerCase(answer[0]) == 'n') return {.choice = Choice::UseNextFreeId};
  return {.choice = Choice::Cancel};
}

ExitCode Program::Fail(std::string_view sentence) {
  observer.OnError(std::string(sentence));
  return exitCode = ExitCode::Failed;
}

ExitCode Program::Misuse(std::string_view sentence) {
  (void)Fail(sentence);
  return exitCode = ExitCode::WrongUse;
}

void Program::Warn(std::string_view sentence) {
  observer.OnWarning(std::string(sentence));
}

bool InterruptRequested() {
  return interruptRequested;
}

void WatchForInterrupt() {
  struct sigaction action{};
  action.sa_handler = NoteInterrupt;  // without SA_RESTART, so that waiting for a lock ends
  ::sigaction(SIGINT, &action, nullptr);
  ::sigaction(SIGTERM, &action, nullptr);
  ::sigaction(SIGHUP, &action, nullptr);  // the terminal was closed
}

}  // namespace tarvex
