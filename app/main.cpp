// tarvex: field data collection for land surveyors.
#include <cstdio>
#include <exception>
#include <new>
#include <string>
#include <vector>

#include "app/cli/commands/commands.h"
#include "app/cli/json_console.h"
#include "app/cli/program.h"

namespace tarvex {
namespace {

int Run(int argc, char** argv) {
  const std::vector<std::string> words(argv + 1, argv + argc);
  JsonConsole jsonConsole(StandardConsole());
  Console& console = AskForJson(words) ? jsonConsole : StandardConsole();
  Program program{.files = SystemFiles(), .clock = SystemClock(), .console = console};
  const ProgramTitle title{
      .name = "tarvex",
      .description =
          "Field data collection for land surveyors: jobs, receivers, grid coordinates.\n"
          "Start with: tarvex new site.crd, then tarvex collect site.crd --receiver simulated",
      .version = ProgramIdentification()};
  WatchForInterrupt();
  program.files.whenWaiting = [&program](const std::string& path) {
    program.console.PrintError("Waiting for another program that works on " + path + " ...\n");
  };
  ExitCode code = ExitCode::Done;
  try {
    code = RunCommandLine(title, ProgramCommands(), words, program);
  } catch (const std::bad_alloc&) {
    code = program.Fail("There is not enough memory for this.");
  }
  if (std::fflush(stdout) != 0 || std::ferror(stdout) != 0) {
    code = program.Fail("The output could not be written.");
  }
  return static_cast<int>(code);
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
