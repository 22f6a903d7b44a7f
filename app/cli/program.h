// What every command works with: the files, the clock, the terminal and the exit code to come.
#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "app/workflow/identification.h"
#include "app/workflow/workplace.h"

namespace tarvex {

/// Exit codes of the program; bad input is never 0.
enum class ExitCode : int { Done = 0, Failed = 1, WrongUse = 2 };

/// What is told beside the results.
enum class Notice { Error, Warning, Message };

/// Text to the person: results to the standard output, everything else to the standard error. Texts
/// hold names and answers from networks and files: what a terminal would obey is left out of them
/// here (core/text/printable.h), once for all. A thread beside the one that works may print as
/// well.
class Console {
 public:
  virtual ~Console() = default;

  virtual void Print(std::string_view text) = 0;
  virtual void PrintError(std::string_view text) = 0;
  /// One thing told, a sentence or more: "ERROR: ..." on the error output.
  virtual void Tell(Notice kind, std::string_view text);
  /// The bytes of a file as they are; as Print when the standard output is a terminal.
  virtual void PrintBytes(std::string_view bytes) = 0;
  /// Draws on a terminal: `text` is our own, with the sequences that move its cursor.
  virtual void Draw(std::string_view text) = 0;
  /// True when results and remarks both go to a terminal, where a person looks on.
  virtual bool IsWatched() = 0;
  /// Replaces the line at the bottom of the terminal; nothing when no person looks on.
  virtual void ShowProgress(std::string_view line) = 0;
  virtual void EndProgress() = 0;
  /// True when progress is seen; the results may go elsewhere all the same.
  virtual bool ShowsProgress() = 0;
  /// A line at the bottom in which a person types `typed`. It stays there, below what is printed
  /// and in place of all progress, until it ends.
  virtual void ShowPrompt(std::string_view label, std::string_view typed) = 0;
  virtual void EndPrompt() = 0;
  /// One line typed by the person; false when there is no person to ask.
  virtual bool Ask(std::string_view question, std::string& answer) = 0;
  /// True when a person types the standard input.
  virtual bool IsTyped() = 0;
  /// The next line of the standard input, without its line end; false at its end.
  virtual bool ReadLine(std::string& line) = 0;
};

/// Tells a person at the terminal what the workflow has to say.
class ConsoleObserver final : public WorkObserver {
 public:
  explicit ConsoleObserver(Console& console) : console_(console) {}

  void OnError(const std::string& sentence) override;
  void OnWarning(const std::string& sentence) override;
  void OnMessage(std::string_view title, std::string_view text) override;
  void OnProgress(std::string_view line) override { console_.ShowProgress(line); }
  void OnProgressEnd() override { console_.EndProgress(); }
  ExistingPointAnswer AskExistingPoint(const ExistingPointQuestion& question) override;

 private:
  Console& console_;
};

struct Program {
  FileSystem& files;
  Clock& clock;
  Console& console;
  ExitCode exitCode = ExitCode::Done;
  ConsoleObserver observer{console};

  /// The place at which the workflow works for this program.
  operator Workplace() {  // NOLINT(google-explicit-constructor): that is what a command hands on
    return {.files = files, .clock = clock, .observer = observer};
  }

  /// Prints "ERROR: ..." and remembers that something failed.
  ExitCode Fail(std::string_view sentence);
  /// The same for an argument that makes no sense.
  ExitCode Misuse(std::string_view sentence);
  /// Prints "WARNING: ...".
  void Warn(std::string_view sentence);
};

/// The console on this process's standard streams.
Console& StandardConsole();

/// True once the person pressed Ctrl-C (or the system asked the program to end); from any thread.
bool InterruptRequested();
void WatchForInterrupt();

}  // namespace tarvex
