// The command line: the commands of the program, the options that they take, and what a person is
// told when the words make no sense. What reads the words is behind command_line.cpp.
#pragma once

#include <functional>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "app/cli/command_description.h"
#include "app/cli/program.h"

namespace CLI {
class App;
class Option;
}  // namespace CLI

namespace tarvex {

/// An option or argument of a command, to say more about it. A handle: copies mean the same option,
/// and each call returns it, so that calls can be chained.
class Option {
 public:
  Option Required() const;
  /// Under a heading of its own in the help.
  Option InGroup(const std::string& heading) const;
  /// The name of the value in the help, in place of TEXT or NUMBER: FILE and JOB.crd are completed
  /// as files, a|b|c as these words.
  Option ValueName(const std::string& name) const;
  Option OneOf(const std::vector<std::string>& words) const;
  Option Between(long long least, long long most) const;
  Option NotNegative() const;
  /// It takes so many values each time.
  Option Values(int least, int most) const;
  Option Values(int count) const { return Values(count, count); }
  /// It takes one value and may be given again; all are kept.
  Option Repeatable() const;
  /// Makes sense only together with the other one.
  Option Needs(Option other) const;
  Option Excludes(Option other) const;

 private:
  friend class Command;
  explicit Option(CLI::Option& option) : option_(&option) {}

  CLI::Option* option_;
};

class Command;

/// A command as it is known before anything of it is needed: its row in a table of commands.
struct CommandRow {
  const char* name;
  const char* summary;
  /// Says what the command takes and what it does; called when the command or its help is wanted.
  void (*declare)(Command& command);
  /// It works, but no help names it.
  bool hidden = false;
};

/// One command while it is declared. It takes options ("--name" or "-n"), arguments (a name without
/// "-", in their order) and runs a function; or it has commands of its own.
class Command {
 public:
  Command(const Command&) = delete;
  Command& operator=(const Command&) = delete;

  /// Makes the options that the words fill in and that `run` then gets.
  template <typename Options>
  Options& Runs(ExitCode (*run)(const Options& options, Program& program)) {
    auto options = std::make_shared<Options>();
    OnRun([options, run](Program& program) { return run(*options, program); });
    return *options;
  }

  /// Commands of its own, one of which has to follow; the table has to last.
  void Commands(std::span<const CommandRow> rows);
  /// Commands of its own beside what it runs itself, when the first word is one of theirs.
  void MayHaveCommands(std::span<const CommandRow> rows);
  /// Describes the whole program when it is called, which the command's function may do.
  std::function<CommandDescription()> DescribesProgram();
  /// Text below the options in the help.
  void Footer(const std::string& text);

  /// An option or argument whose value is kept in `value`, as it is when the option is not given. A
  /// Value is a std::string, int, long long, std::uint32_t, std::size_t or double, a std::optional
  /// of std::string or double, or for several values a std::vector of std::string, std::size_t or
  /// double.
  template <typename Value>
  Option Add(const std::string& name, Value& value, const std::string& help);
  /// An option without a value.
  Option AddFlag(const std::string& name, bool& value, const std::string& help);
  /// One whose text is read by `take`, which returns what is wrong with it ("" when nothing is).
  Option AddRead(const std::string& name, std::function<std::string(const std::string& text)> take,
                 const std::string& help);

 private:
  friend class CommandLine;
  Command(class CommandLine& line, CLI::App& app) : line_(line), app_(app) {}
  void OnRun(std::function<ExitCode(Program&)> run);

  class CommandLine& line_;
  CLI::App& app_;
};

/// What `tarvex --help` begins with and `tarvex --version` prints.
struct ProgramTitle {
  const char* name;
  const char* description;
  std::string version;
};

/// Runs the command that the words (behind the program's name) say, or prints the help or version
/// that they ask for. Words that make no sense are explained, and are wrong use.
ExitCode RunCommandLine(const ProgramTitle& title, std::span<const CommandRow> commands,
                        const std::vector<std::string>& words, Program& program);

}  // namespace tarvex
