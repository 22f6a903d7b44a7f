// tarvex: field data collection for land surveyors.
#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdio>
#include <exception>
#include <new>

#include "app/cli/commands/commands.h"
#include "app/cli/program.h"

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

// What was wrong with the words of the command line, with what helps.
std::string Explained(const CLI::App* app, const CLI::Error& error) {
  constexpr const char* kMore = "\nRun with --help for more information.\n";
  const std::vector<std::string> unknown = app->remaining(true);
  const std::string what = error.what();
  if (!unknown.empty() && what == "A subcommand is required") {
    return "ERROR: There is no command \"" + unknown.front() + "\"." + kMore;
  }
  const bool dash = std::any_of(unknown.begin(), unknown.end(), [](const std::string& word) {
    return word.starts_with('-') && !word.starts_with("--");
  });
  return "ERROR: " + what +
         (dash ? "\nValues that begin with \"-\" and are no numbers stand behind \"--\"." : "") +
         kMore;
}

int Run(int argc, char** argv) {
  Program program{.files = SystemFiles(), .clock = SystemClock(), .console = StandardConsole()};
  CLI::App app(
      "Field data collection for land surveyors: jobs, receivers, grid coordinates.\n"
      "Start with: tarvex new site.crd, then tarvex collect site.crd --receiver simulated",
      "tarvex");
  app.set_version_flag("--version", ProgramIdentification());
  app.set_help_all_flag("--help-all", "Help of all commands");
  app.failure_message(Explained);
  app.require_subcommand(1);
  AddCommands(app, program);
  WatchForInterrupt();
  program.files.when_waiting = [&program](const std::string& path) {
    program.console.PrintError("Waiting for another program that works on " + path + " ...\n");
  };
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    return app.exit(error) == 0 ? 0 : static_cast<int>(ExitCode::WrongUse);
  } catch (const std::bad_alloc&) {
    program.exit_code = program.Fail("There is not enough memory for this.");
  }
  if (std::fflush(stdout) != 0 || std::ferror(stdout) != 0) {
    program.exit_code = program.Fail("The output could not be written.");
  }
  return static_cast<int>(program.exit_code);
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
