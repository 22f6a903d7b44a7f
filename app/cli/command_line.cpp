#include "app/cli/command_line.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdint>
#include <map>
#include <optional>
#include <sstream>
#include <type_traits>
#include <utility>

#include "core/text/edit_distance.h"
#include "core/text/number_text.h"

namespace tarvex {
namespace {

constexpr const char* kSayWhich = "Say which of these commands.";

// The command whose words were read last: `tarvex road` is one, and `tarvex` itself.
const CLI::App& Innermost(const CLI::App& app) {
  const CLI::App* at = &app;
  while (!at->get_subcommands().empty()) at = at->get_subcommands().back();
  return *at;
}

// The help of one command, under the words that it is called by: App::help goes on to what was
// read.
std::string HelpOf(const CLI::App& command) {
  std::string name = command.get_name();
  for (const CLI::App* at = command.get_parent(); at != nullptr; at = at->get_parent()) {
    name = at->get_name() + " " + name;
  }
  return command.get_formatter()->make_help(&command, name, CLI::AppFormatMode::Normal);
}

std::string Joined(const std::vector<std::string>& words, const char* between) {
  std::string text;
  for (const std::string& word : words) text += (text.empty() ? "" : between) + word;
  return text;
}

// " Did you mean collect?" of the name that is nearest to a word, when one is near.
std::string DidYouMean(const std::string& word, const std::vector<std::string>& names) {
  std::string nearest;
  std::size_t least = word.size() / 3 + 2;
  for (const std::string& name : names) {
    const std::size_t distance = EditDistance(word, name);
    if (distance >= least) continue;
    least = distance;
    nearest = name;
  }
  return nearest.empty() ? "" : " Did you mean " + nearest + "?";
}

std::vector<CLI::App*> CommandsOf(CLI::App& app) {
  return app.get_subcommands([](CLI::App*) { return true; });
}

std::vector<std::string> CommandNames(const CLI::App& app) {
  std::vector<std::string> names;
  for (const CLI::App* command : app.get_subcommands([](const CLI::App*) { return true; })) {
    names.push_back(command->get_name());
  }
  return names;
}

CLI::App* FindCommand(CLI::App& app, const std::string& name) {
  for (CLI::App* command : CommandsOf(app)) {
    if (command->get_name() == name) return command;
  }
  return nullptr;
}

std::vector<std::string> OptionNames(const CLI::App& app) {
  std::vector<std::string> names;
  for (const CLI::Option* option : app.get_options()) {
    for (const std::string& name : option->get_lnames()) names.push_back("--" + name);
  }
  return names;
}

// The words that a command does not know, in their order; what follows an unknown option is
// probably its value.
std::string UnknownWords(const CLI::App& command, const std::vector<std::string>& unknown) {
  std::string text;
  bool behindOption = false;
  for (const std::string& word : unknown) {
    const bool value = std::exchange(behindOption, word.starts_with("--"));
    if (value && !word.starts_with('-')) continue;
    text += (text.empty() ? "" : "\n");
    if (word.starts_with("--")) {
      text += "There is no option " + word + "." + DidYouMean(word, OptionNames(command));
      continue;
    }
    text += "\"" + word + "\" is not expected here.";
    if (word.starts_with('-')) {
      text += " A value that begins with \"-\" and is not a number goes after \"--\".";
    }
  }
  return text;
}

// The words that a command is called by, with its arguments: "tarvex store JOB.crd ID ...".
std::string CallOf(const CommandDescription& command) {
  std::string call = command.words;
  for (const OptionDescription& argument : command.arguments) {
    const std::string name = argument.names[0] + (argument.repeated ? " ..." : "");
    call += " " + (argument.required ? name : "[" + name + "]");
  }
  return call;
}

// The option of a message that begins with its name; null when there is none.
const CLI::Option* OptionOf(const CLI::App& command, std::string_view message) {
  const std::string name(message.substr(0, message.find_first_of(": ")));
  return command.get_option_no_throw(name);
}

// The library's messages about options that are known, with what to do.
std::string OptionProblem(const CLI::App& command, const CLI::Error& error) {
  std::string what = error.what();
  const std::string name = what.substr(0, what.find_first_of(": "));
  const std::string last = what.substr(what.rfind(' ') + 1);
  const CLI::Option* const option = OptionOf(command, what);
  if (error.get_name() == "RequiredError" && option != nullptr) {
    if (option->nonpositional()) return name + " " + option->get_type_name() + " is missing.";
    std::string words = command.get_name();
    for (const CLI::App* at = command.get_parent(); at != nullptr; at = at->get_parent()) {
      words = at->get_name() + " " + words;
    }
    CommandDescription described = DescribeCommand(command);
    described.words = words;
    return name + " is missing: " + CallOf(described);
  }
  if (error.get_name() == "ArgumentMismatch" && option != nullptr) {
    const int least = option->get_items_expected_min();
    return name + (least <= 1 ? " needs a value" : " needs " + std::to_string(least) + " values") +
           (option->get_type_name().empty() ? "." : ": " + option->get_type_name() + ".");
  }
  if (error.get_name() == "ExcludesError") {
    return name + " and " + last + " do not go together; give one of them.";
  }
  if (error.get_name() == "RequiresError") return name + " goes with " + last + " only.";
  constexpr std::string_view kConvert = "Could not convert: ";
  if (error.get_name() == "ConversionError" && what.starts_with(kConvert)) {
    const std::size_t equals = what.find(" = ");
    const std::string text = equals == std::string::npos ? last : what.substr(equals + 3);
    return what.substr(kConvert.size(), equals - kConvert.size()) + ": \"" + text + "\" is not a " +
           (ParseNumber(text) ? "whole number." : "number.");
  }
  return what;
}

// What was wrong with the words of the command line.
std::string Explained(const CLI::App* app, const CLI::Error& error) {
  const std::vector<std::string> unknown = app->remaining(true);
  const CLI::App& command = Innermost(*app);
  const std::string what = error.what();
  if (what == "A subcommand is required") {
    if (unknown.empty()) return kSayWhich;
    return "There is no command \"" + unknown.front() + "\"." +
           DidYouMean(unknown.front(), CommandNames(command));
  }
  return unknown.empty() ? OptionProblem(command, error) : UnknownWords(command, unknown);
}

template <typename Value>
struct Held {
  using Type = Value;
};
template <typename Value>
struct Held<std::optional<Value>> : Held<Value> {};
template <typename Value>
struct Held<std::vector<Value>> : Held<Value> {};

// An argument's own name says what it is.
template <typename Value>
const char* ValueNameOf(const std::string& name) {
  if (!name.starts_with('-')) return "";
  return std::is_arithmetic_v<typename Held<Value>::Type> ? "NUMBER" : "TEXT";
}

}  // namespace

Option Option::Required() const {
  option_->required();
  return *this;
}

Option Option::InGroup(const std::string& heading) const {
  option_->group(heading);
  return *this;
}

Option Option::ValueName(const std::string& name) const {
  option_->type_name(name);
  return *this;
}

Option Option::OneOf(const std::vector<std::string>& words) const {
  option_->type_name(Joined(words, "|"));
  option_->check([words](const std::string& word) -> std::string {
    if (std::find(words.begin(), words.end(), word) != words.end()) return "";
    return "\"" + word + "\" is none of " + Joined(words, ", ") + "." + DidYouMean(word, words);
  });
  return *this;
}

Option Option::Between(long long least, long long most) const {
  const std::string range = std::to_string(least) + " to " + std::to_string(most);
  option_->type_name("NUMBER (" + range + ")");
  option_->check([least, most, range](const std::string& text) -> std::string {
    const auto value = ParseNumber(text);
    const bool inside =
        value && *value >= static_cast<double>(least) && *value <= static_cast<double>(most);
    return inside ? "" : "\"" + text + "\" is not a number from " + range + ".";
  });
  return *this;
}

Option Option::NotNegative() const {
  option_->check([](const std::string& text) -> std::string {
    const auto value = ParseNumber(text);
    return value && *value >= 0.0 ? "" : "\"" + text + "\" is not a number of 0 or more.";
  });
  return *this;
}

Option Option::Values(int least, int most) const {
  option_->expected(least, most);
  return *this;
}

Option Option::Repeatable() const {
  option_->expected(1)->take_all();
  return *this;
}

Option Option::Needs(Option other) const {
  option_->needs(other.option_);
  return *this;
}

Option Option::Excludes(Option other) const {
  option_->excludes(other.option_);
  return *this;
}

// The words of one run. Of the thirty commands that there are a run needs one, and each costs time
// before the first word is read: those are added whose names are among the words that are still to
// be read, and declared when their turn comes. All are added when a person has to be told of them.
class CommandLine {
 public:
  CommandLine(const ProgramTitle& title, std::span<const CommandRow> commands,
              const std::vector<std::string>& words, Program& program)
      : app_(title.description, title.name),
        title_(title),
        commands_(commands),
        words_(words),
        program_(program) {
    app_.set_version_flag("-V,--version", title.version, "Show the version");
    app_.set_help_flag("-h,--help", "Show this help");
    app_.set_help_all_flag("--help-all", "Show the help of all commands");
    app_.failure_message(Explained);
    if (IsNamed("help") || IsNamed("version")) left_ = 0;
    AddCommands(app_, commands);
    if (left_ == 0) AddUnnamed();
    left_ = words_.size();
  }

  ExitCode Run() {
    try {
      app_.parse(std::vector<std::string>(words_.rbegin(), words_.rend()));
    } catch (const CLI::CallForVersion&) {
      program_.console.Print(title_.version + "\n");
    } catch (const CLI::ParseError& error) {
      return Explain(error);
    }
    return program_.exitCode;
  }

  void AddCommands(CLI::App& parent, std::span<const CommandRow> rows) {
    parent.require_subcommand(1);
    bool named = false;
    for (const CommandRow& row : rows) {
      if (!IsNamed(row.name)) continue;
      AddCommand(parent, row);
      named = true;
    }
    if (!named) unnamed_.emplace_back(&parent, rows);
  }

  Program& program() { return program_; }

  // With all commands, whatever the words of this run are.
  CommandDescription DescribeAll() const {
    const std::vector<std::string> none;
    CommandLine all(title_, commands_, none, program_);
    all.AddUnnamed();
    all.DeclareAll(all.app_);
    return DescribeCommand(all.app_);
  }

 private:
  void AddCommand(CLI::App& parent, const CommandRow& row) {
    CLI::App* const app = parent.add_subcommand(row.name, row.summary);
    if (row.hidden) app->group("");
    toDeclare_[app] = &row;
    app->preparse_callback([this, app](std::size_t left) {
      left_ = left;
      Declare(*app);
    });
  }

  // Behind "--" there are no commands.
  bool IsNamed(std::string_view name) const {
    const auto end = std::find(words_.begin(), words_.end(), "--");
    const auto from = words_.end() - static_cast<std::ptrdiff_t>(std::min(left_, words_.size()));
    return from < end && std::find(from, end, name) != end;
  }

  // The commands of those that none was named of.
  void AddUnnamed() {
    for (const auto& [parent, rows] : std::exchange(unnamed_, {})) {
      for (const CommandRow& row : rows) AddCommand(*parent, row);
      if (parent == &app_) AddHelpCommands();
    }
  }

  void Declare(CLI::App& app) {
    const auto row = toDeclare_.find(&app);
    if (row == toDeclare_.end()) return;
    const CommandRow& declared = *row->second;
    toDeclare_.erase(row);
    Command command(*this, app);
    declared.declare(command);
  }

  void DeclareAll(CLI::App& app) {
    Declare(app);
    AddUnnamed();
    for (CLI::App* command : CommandsOf(app)) DeclareAll(*command);
  }

  // Help that was asked for, or what is wrong with the words.
  ExitCode Explain(const CLI::ParseError& error) {
    left_ = 0;
    AddUnnamed();
    if (dynamic_cast<const CLI::CallForAllHelp*>(&error) != nullptr) DeclareAll(app_);
    std::ostringstream output;
    std::ostringstream errors;
    const bool answered = app_.exit(error, output, errors) == 0;
    program_.console.Print(output.str());
    if (answered) return ExitCode::Done;
    const bool which = errors.str() == kSayWhich;
    if (which) program_.console.PrintError(HelpOf(Innermost(app_)) + "\n");
    (void)program_.Misuse(errors.str());
    if (!which) program_.console.PrintError("Run with --help for more information.\n");
    return ExitCode::WrongUse;
  }

  // `tarvex help COMMAND`, `tarvex help` and `tarvex version`, as people type them elsewhere.
  void AddHelpCommands() {
    CLI::App* const help = app_.add_subcommand("help", "Show the help of a command");
    help->add_option("COMMAND", "The command, as in: tarvex help road stake");
    help->allow_extras()->group("");
    help->callback([this, help] {
      std::vector<std::string> words = help->get_option("COMMAND")->results();
      for (const std::string& word : help->remaining()) words.push_back(word);
      PrintHelp(words);
    });
    CLI::App* const version = app_.add_subcommand("version", "Show the version");
    version->group("");
    version->callback([this] { program_.console.Print(title_.version + "\n"); });
  }

  void PrintHelp(const std::vector<std::string>& words) {
    left_ = 0;
    CLI::App* of = &app_;
    for (const std::string& word : words) {
      CLI::App* const command = FindCommand(*of, word);
      if (command == nullptr) {
        (void)program_.Misuse("There is no command \"" + word + "\"." +
                              DidYouMean(word, CommandNames(*of)));
        return;
      }
      Declare(*command);
      AddUnnamed();
      of = command;
    }
    program_.console.Print(HelpOf(*of));
  }

  CLI::App app_;
  const ProgramTitle& title_;
  std::span<const CommandRow> commands_;
  const std::vector<std::string>& words_;
  std::size_t left_ = words_.size();  // words that are still to be read
  Program& program_;
  std::map<CLI::App*, const CommandRow*> toDeclare_;
  std::vector<std::pair<CLI::App*, std::span<const CommandRow>>> unnamed_;
};

void Command::Commands(std::span<const CommandRow> rows) {
  line_.AddCommands(app_, rows);
}

void Command::MayHaveCommands(std::span<const CommandRow> rows) {
  line_.AddCommands(app_, rows);
  app_.require_subcommand(0, 1);
}

std::function<CommandDescription()> Command::DescribesProgram() {
  return [&line = line_] { return line.DescribeAll(); };
}

void Command::Footer(const std::string& text) {
  app_.footer(text);
}

template <typename Value>
Option Command::Add(const std::string& name, Value& value, const std::string& help) {
  CLI::Option& option = *app_.add_option(name, value, help);
  option.type_name(ValueNameOf<Value>(name));
  return Option(option);
}

template Option Command::Add(const std::string&, std::string&, const std::string&);
template Option Command::Add(const std::string&, int&, const std::string&);
template Option Command::Add(const std::string&, long long&, const std::string&);
template Option Command::Add(const std::string&, std::uint32_t&, const std::string&);
template Option Command::Add(const std::string&, std::size_t&, const std::string&);
template Option Command::Add(const std::string&, double&, const std::string&);
template Option Command::Add(const std::string&, std::optional<double>&, const std::string&);
template Option Command::Add(const std::string&, std::optional<std::string>&, const std::string&);
template Option Command::Add(const std::string&, std::vector<std::string>&, const std::string&);
template Option Command::Add(const std::string&, std::vector<std::size_t>&, const std::string&);
template Option Command::Add(const std::string&, std::vector<double>&, const std::string&);

Option Command::AddFlag(const std::string& name, bool& value, const std::string& help) {
  return Option(*app_.add_flag(name, value, help));
}

Option Command::AddRead(const std::string& name,
                        std::function<std::string(const std::string& text)> take,
                        const std::string& help) {
  const auto read = [name, take = std::move(take)](const std::string& text) {
    const std::string problem = take(text);
    if (!problem.empty()) throw CLI::ValidationError(name, problem);
  };
  CLI::Option& option = *app_.add_option_function<std::string>(name, read, help);
  option.type_name(ValueNameOf<std::string>(name));
  return Option(option);
}

void Command::OnRun(std::function<ExitCode(Program&)> run) {
  app_.callback([&app = app_, &program = line_.program(), run = std::move(run)] {
    if (app.get_subcommands().empty()) program.exitCode = run(program);
  });
}

ExitCode RunCommandLine(const ProgramTitle& title, std::span<const CommandRow> commands,
                        const std::vector<std::string>& words, Program& program) {
  if (words.size() == 1 && (words[0] == "--version" || words[0] == "-V")) {
    program.console.Print(title.version + "\n");  // needs no parser
    return ExitCode::Done;
  }
  return CommandLine(title, commands, words, program).Run();
}

}  // namespace tarvex
