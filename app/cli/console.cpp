// The console on the standard streams of the process.
#include <sys/ioctl.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <mutex>
#include <optional>

#include "app/cli/program.h"
#include "core/text/printable.h"

namespace tarvex {
namespace {

void Write(std::string_view text, std::FILE* stream) {
  std::fwrite(text.data(), 1, text.size(), stream);
}

void WriteShown(std::string_view text, std::FILE* stream) {
  if (IsPlainText(text)) return Write(text, stream);
  Write(PrintableText(text), stream);
}

// Bytes 0x80 to 0xBF go on with a character.
bool BeginsCharacter(char c) {
  return (static_cast<unsigned char>(c) & 0xC0U) != 0x80;
}

// How many columns a line may have so that the terminal stays in it.
std::size_t FreeColumns(int stream) {
  winsize size{};
  const bool known = ::ioctl(stream, TIOCGWINSZ, &size) == 0 && size.ws_col >= 2;
  return known ? size.ws_col - 1U : std::string::npos;
}

// A line that reaches the last column makes the terminal go on in the next one, and what is there
// stays behind: the line is cut before that.
std::string FittedLine(std::string line, int stream) {
  const std::size_t wide = FreeColumns(stream);
  std::size_t columns = 0;
  for (std::size_t i = 0; i < line.size(); ++i) {
    if (BeginsCharacter(line[i]) && columns++ == wide) {
      line.resize(i);
      break;
    }
  }
  return line;
}

// The end of a text that has so many columns before it: what is typed is seen.
std::string FittedEnd(std::string text, std::size_t before, int stream) {
  const std::size_t wide = FreeColumns(stream);
  std::size_t room = wide > before ? wide - before : 1;
  std::size_t start = text.size();
  while (start > 0 && room > 0) {
    if (BeginsCharacter(text[--start])) --room;
  }
  return text.substr(start);
}

// Beside the thread that works, the one that reads typed commands says what it does not understand.
class StandardStreams final : public Console {
 public:
  StandardStreams() : progressShown_(::isatty(STDERR_FILENO) != 0) {}

  void Print(std::string_view text) override {
    const std::lock_guard lock(mutex_);
    RemoveProgress();
    WriteShown(text, stdout);
    RestorePrompt();
  }

  void PrintBytes(std::string_view bytes) override {
    if (::isatty(STDOUT_FILENO) != 0) return Print(bytes);
    const std::lock_guard lock(mutex_);
    RemoveProgress();
    Write(bytes, stdout);
    RestorePrompt();
  }

  void Draw(std::string_view text) override {
    const std::lock_guard lock(mutex_);
    RemoveProgress();
    Write(text, stdout);
    RestorePrompt();
    std::fflush(stdout);
  }

  void PrintError(std::string_view text) override {
    const std::lock_guard lock(mutex_);
    RemoveProgress();
    std::fflush(stdout);
    WriteShown(text, stderr);
    RestorePrompt();
  }

  void ShowProgress(std::string_view line) override {
    if (!progressShown_) return;
    const std::lock_guard lock(mutex_);
    if (!prompt_) ShowAtBottom(FittedLine(PrintableLine(line), STDERR_FILENO));
  }

  bool ShowsProgress() override { return progressShown_; }

  void ShowPrompt(std::string_view label, std::string_view typed) override {
    const std::lock_guard lock(mutex_);
    prompt_ = PrintableLine(label) + FittedEnd(PrintableLine(typed), label.size(), STDERR_FILENO);
    RestorePrompt();
  }

  void EndPrompt() override {
    const std::lock_guard lock(mutex_);
    prompt_.reset();
    RemoveProgress();
  }

  void EndProgress() override {
    const std::lock_guard lock(mutex_);
    RemoveProgress();
  }

  bool Ask(std::string_view question, std::string& answer) override {
    if (::isatty(STDIN_FILENO) == 0 || ::isatty(STDERR_FILENO) == 0) return false;
    PrintError(question);
    if (ReadLine(answer)) return true;
    PrintError("\n");  // Ctrl-C or Ctrl-D: what follows begins on a line of its own
    return false;
  }

  bool IsWatched() override { return progressShown_ && ::isatty(STDOUT_FILENO) != 0; }

  bool IsTyped() override { return ::isatty(STDIN_FILENO) != 0; }

  bool ReadLine(std::string& line) override {
    line.clear();
    int c = std::getc(stdin);
    if (c == EOF) return false;
    for (; c != EOF && c != '\n'; c = std::getc(stdin)) line += static_cast<char>(c);
    if (line.ends_with('\r')) line.pop_back();
    return true;
  }

 private:
  void ShowAtBottom(const std::string& line) {
    std::fflush(stdout);
    std::fputs("\r\x1b[K", stderr);
    Write(line, stderr);
    std::fflush(stderr);
    progressOpen_ = true;
  }

  void RestorePrompt() {
    if (prompt_) ShowAtBottom(*prompt_);
  }

  void RemoveProgress() {
    if (!progressOpen_) return;
    std::fputs("\r\x1b[K", stderr);
    std::fflush(stderr);
    progressOpen_ = false;
  }

  std::mutex mutex_;
  const bool progressShown_;
  bool progressOpen_ = false;
  std::optional<std::string> prompt_;
};

}  // namespace

Console& StandardConsole() {
  static StandardStreams console;
  return console;
}

}  // namespace tarvex
