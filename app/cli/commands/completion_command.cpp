// tarvex completion, tarvex manual: what the package brings for shells and for `man`.
#include <filesystem>

#include "app/cli/command_line.h"
#include "app/cli/manual_pages.h"
#include "app/cli/shell_completion.h"

namespace tarvex {
namespace {

struct CompletionOptions {
  std::string shell;
  std::function<CommandDescription()> describe;
};

struct ManualOptions {
  std::string folder;
  std::function<CommandDescription()> describe;
};

ExitCode RunCompletion(const CompletionOptions& options, Program& program) {
  const CommandDescription described = options.describe();
  program.console.Print(options.shell == "bash"  ? BashCompletion(described)
                        : options.shell == "zsh" ? ZshCompletion(described)
                                                 : FishCompletion(described));
  return ExitCode::Done;
}

ExitCode RunManual(const ManualOptions& options, Program& program) {
  std::error_code error;
  std::filesystem::create_directories(options.folder, error);
  for (const ManualPage& page : ManualPages(options.describe(), ProgramIdentification())) {
    const std::string path = options.folder + "/" + page.file;
    const FileStatus status = ReplaceWholeFile(program.files, path, page.text);
    if (!status.ok()) return program.Fail(path + " cannot be written: " + status.Text() + ".");
  }
  return ExitCode::Done;
}

}  // namespace

void DeclareCompletionCommand(Command& command) {
  CompletionOptions& options = command.Runs(RunCompletion);
  options.describe = command.DescribesProgram();
  command.Add("SHELL", options.shell, "The shell").Required().OneOf({"bash", "zsh", "fish"});
  command.Footer("Prints a script for the shell. In bash: eval \"$(tarvex completion bash)\"");
}

void DeclareManualCommand(Command& command) {
  ManualOptions& options = command.Runs(RunManual);
  options.describe = command.DescribesProgram();
  command.Add("FOLDER", options.folder, "Where the pages are written").Required();
  command.Footer("Writes a manual page for each command, to be read by `man -l`.");
}

}  // namespace tarvex
