// The console on the standard streams of the process.
#include <unistd.h>

#include <cstdio>
#include <cstdlib>

#include "app/cli/program.h"

namespace tarvex {
namespace {

class StandardStreams final : public Console {
 public:
  StandardStreams() : progress_shown_(::isatty(STDERR_FILENO) != 0) {}

  void Print(std::string_view text) override {
    EndProgress();
    std::fwrite(text.data(), 1, text.size(), stdout);
  }

  void PrintError(std::string_view text) override {
    EndProgress();
    std::fflush(stdout);
    std::fwrite(text.data(), 1, text.size(), stderr);
  }

  void ShowProgress(std::string_view line) override {
    if (!progress_shown_) return;
    std::fflush(stdout);
    std::fprintf(stderr, "\r\x1b[K%.*s", static_cast<int>(line.size()), line.data());
    std::fflush(stderr);
    progress_open_ = true;
  }

  void EndProgress() override {
    if (!progress_open_) return;
    std::fputs("\r\x1b[K", stderr);
    std::fflush(stderr);
    progress_open_ = false;
  }

  bool Ask(std::string_view question, std::string& answer) override {
    if (::isatty(STDIN_FILENO) == 0 || ::isatty(STDERR_FILENO) == 0) return false;
    PrintError(question);
    return ReadLine(answer);
  }

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
  bool progress_shown_;
  bool progress_open_ = false;
};

}  // namespace

Console& StandardConsole() {
  static StandardStreams console;
  return console;
}

}  // namespace tarvex
