// tarvex demo: a whole field session on the simulated receiver.
#include <filesystem>

#include "app/cli/commands/commands.h"
#include "app/workflow/collect_session.h"
#include "app/workflow/job_session.h"
#include "core/observations/point_notes.h"
#include "core/raw_data/raw_file.h"

namespace tarvex {
namespace {

struct DemoOptions {
  std::string folder = "demo";
};

// Runs a command of the program as a person would type it, and shows it.
ExitCode RunLine(Program& program, const std::vector<std::string>& words) {
  std::string shown = "$ tarvex";
  for (const std::string& word : words) {
    shown += word.find(' ') == std::string::npos ? " " + word : " \"" + word + "\"";
  }
  program.console.Print(shown + "\n");
  const ExitCode code = RunCommandLine({.name = "tarvex", .description = "", .version = ""},
                                       ProgramCommands(), words, program);
  program.console.Print("\n");
  return code;
}

// A job that does not exist yet: nothing of an earlier demonstration is touched.
std::string FreeJob(Program& program, const std::string& folder) {
  for (int number = 1;; ++number) {
    std::string path = folder + "/demo" + std::to_string(number) + ".crd";
    if (!program.files.Exists(path)) return path;
  }
}

ExitCode RunDemo(const DemoOptions& options, Program& program) {
  std::error_code error;
  std::filesystem::create_directories(options.folder, error);
  if (error)
    return program.Fail("The folder " + options.folder + " cannot be created: " + error.message() +
                        ".");
  const std::string path = FreeJob(program, options.folder);
  const std::vector<std::vector<std::string>> lines = {
      {"new", path, "--system", "UTM/UTM WGS84 Zone 32"},
      {"store", path, "BM1", "5184900", "520300", "1100.25", "bench mark"},
      {"collect", path, "--receiver", "simulated", "--count", "5", "--first", "1", "--description",
       "edge of road", "--antenna-height", "2"},
      {"points", path},
  };
  for (const auto& words : lines) {
    if (const ExitCode code = RunLine(program, words); code != ExitCode::Done) return code;
  }
  JobSession session(program, path);
  program.console.Print("The job's files:\n  coordinates  " + path + "\n  raw data     " +
                        RawFilePath(session.job()) + "\n  point notes  " +
                        PointNotesPath(session.job()) + "\n  settings     " +
                        session.settingsPath() + "\n");
  return ExitCode::Done;
}

}  // namespace

void DeclareDemoCommand(Command& command) {
  DemoOptions& options = command.Runs(RunDemo);
  command.Add("FOLDER", options.folder, "Where its job is created (default: demo)");
}

}  // namespace tarvex
