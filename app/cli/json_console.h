// The console of a program that was asked for JSON: what goes to the error output is JSON as well,
// a line for each thing told, and nobody is asked anything.
#pragma once

#include <span>
#include <string>

#include "app/cli/program.h"

namespace tarvex {

/// Results go through as they are, each at once. Errors, warnings and messages become lines of the
/// error output: {"event":"error","text":"There is no point 7 in site.crd."}.
class JsonConsole final : public Console {
 public:
  explicit JsonConsole(Console& console) : console_(console) {}

  void Print(std::string_view text) override;
  void PrintError(std::string_view text) override { Tell(Notice::Message, text); }
  void Tell(Notice kind, std::string_view text) override;
  void PrintBytes(std::string_view bytes) override { console_.PrintBytes(bytes); }
  void Draw(std::string_view text) override { console_.Draw(text); }
  bool IsWatched() override { return false; }
  void ShowProgress(std::string_view) override {}
  void EndProgress() override {}
  bool ShowsProgress() override { return false; }
  void ShowPrompt(std::string_view, std::string_view) override {}
  void EndPrompt() override {}
  bool Ask(std::string_view, std::string&) override { return false; }
  bool IsTyped() override { return console_.IsTyped(); }
  bool ReadLine(std::string& line) override { return console_.ReadLine(line); }

 private:
  Console& console_;
};

/// True when the words of the command line have --json among their options.
bool AskForJson(std::span<const std::string> words);

}  // namespace tarvex
