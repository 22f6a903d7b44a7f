// tarvex: field data collection for land surveyors.
#include <CLI/CLI.hpp>
#include <cstdio>
#include <exception>
#include <new>
#include <string>
#include <utility>
#include <vector>

#include "app/cli/commands/commands.h"
#include "app/cli/program.h"
#include "core/edit_distance.h"

namespace tarvex {
namespace {

void AddCommands(CLI::App& app, Program& program) {
  AddNewCommand(app, program);
  AddCollectCommand(app, program);
  AddWatchCommand(app, program);
  AddBasesCommand(app, program);
  AddStoreCommand(app, program);
  AddImportCommand(app, program);
  AddPointsCommand(app, program);
  AddDeleteCommand(app, program);
  AddCheckCommand(app, program);
  AddRawCommand(app, program);
  AddNoteCommand(app, program);
  AddLocalizeCommand(app, program);
  AddConvertCommand(app, program);
  AddSystemsCommand(app, program);
  AddGridCommand(app, program);
  AddRoadCommand(app, program);
  AddReplayCommand(app, program);
  AddCasterCommand(app, program);
  AddDemoCommand(app, program);
}

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

std::vector<const CLI::App*> CommandsOf(const CLI::App& app) {
  return app.get_subcommands([](const CLI::App*) { return true; });
}

std::vector<std::string> CommandNames(const CLI::App& app) {
  std::vector<std::string> names;
  for (const CLI::App* command : CommandsOf(app)) names.push_back(command->get_name());
  return names;
}

const CLI::App* FindCommand(const CLI::App& app, const std::string& name) {
  for (const CLI::App* command : CommandsOf(app)) {
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

// What was wrong with the words of the command line, with what helps.
std::string Explained(const CLI::App* app, const CLI::Error& error) {
  constexpr const char* kMore = "\nRun with --help for more information.\n";
  const std::vector<std::string> unknown = app->remaining(true);
  const CLI::App& command = Innermost(*app);
  const std::string what = error.what();
  if (what == "A subcommand is required") {
    if (unknown.empty()) return HelpOf(command) + "\nERROR: Say which of these commands.\n";
    return "ERROR: There is no command \"" + unknown.front() + "\"." +
           DidYouMean(unknown.front(), CommandNames(command)) + kMore;
  }
  return "ERROR: " + (unknown.empty() ? what : UnknownWords(command, unknown)) + kMore;
}

// `tarvex help COMMAND`, `tarvex help` and `tarvex version`, as people type them elsewhere.
void AddHelpCommands(CLI::App& app, Program& program) {
  CLI::App* const help = app.add_subcommand("help", "Show the help of a command");
  help->add_option("COMMAND", "The command, as in: tarvex help road stake");
  help->allow_extras()->group("");
  help->callback([&app, &program, help] {
    const CLI::App* of = &app;
    std::vector<std::string> words = help->get_option("COMMAND")->results();
    for (const std::string& word : help->remaining()) words.push_back(word);
    for (const std::string& word : words) {
      const CLI::App* const command = FindCommand(*of, word);
      if (command == nullptr) {
        (void)program.Misuse("There is no command \"" + word + "\"." +
                             DidYouMean(word, CommandNames(*of)));
        return;
      }
      of = command;
    }
    program.console.Print(HelpOf(*of));
  });
  CLI::App* const version = app.add_subcommand("version", "Show the version");
  version->group("");
  version->callback([&program] { program.console.Print(ProgramIdentification() + "\n"); });
}

int Run(int argc, char** argv) {
  Program program{.files = SystemFiles(), .clock = SystemClock(), .console = StandardConsole()};
  CLI::App app(
      "Field data collection for land surveyors: jobs, receivers, grid coordinates.\n"
      "Start with: tarvex new site.crd, then tarvex collect site.crd --receiver simulated",
      "tarvex");
  app.set_version_flag("-V,--version", ProgramIdentification(), "Show the version");
  app.set_help_flag("-h,--help", "Show this help");
  app.set_help_all_flag("--help-all", "Show the help of all commands");
  app.failure_message(Explained);
  app.require_subcommand(1);
  AddCommands(app, program);
  AddHelpCommands(app, program);
  WatchForInterrupt();
  program.files.whenWaiting = [&program](const std::string& path) {
    program.console.PrintError("Waiting for another program that works on " + path + " ...\n");
  };
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    return app.exit(error) == 0 ? 0 : static_cast<int>(ExitCode::WrongUse);
  } catch (const std::bad_alloc&) {
    program.exitCode = program.Fail("There is not enough memory for this.");
  }
  if (std::fflush(stdout) != 0 || std::ferror(stdout) != 0) {
    program.exitCode = program.Fail("The output could not be written.");
  }
  return static_cast<int>(program.exitCode);
}

}  // namespace
}  // namespace tarvex

int main(int argc, char** argv) {
  try {
    return tarvex::Run(argc, argv);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "ERROR: %s\n", error.what());
    return static_cast<int>(tarvex::ExitCode::Failed);
  }
}
