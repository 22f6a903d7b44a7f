// tarvex raw: the raw data file of a job.
#include <utility>

#include "app/cli/command_line.h"
#include "app/cli/json_text.h"
#include "app/workflow/job_session.h"
#include "core/raw_data/raw_file.h"
#include "core/text/text.h"

namespace tarvex {
namespace {

constexpr std::uint64_t kLargestRawFile = std::uint64_t{1} << 32U;

struct RawOptions {
  std::string job;
  bool json = false;
};

// Each record is on a line of its own, so that line tools can be used on it as well.
std::string RawJson(const std::string& path, std::string_view bytes) {
  std::string text = "{\"raw\": " + JsonLine(path) + ",\n\"records\": [";
  bool first = true;
  while (const auto line = TakeLine(bytes)) {
    const bool comment = line->starts_with("--");
    text += std::exchange(first, false) ? "\n" : ",\n";
    text +=
        JsonLine({{"record", comment ? "--" : line->substr(0, line->find(','))}, {"text", *line}});
  }
  return text + "\n]}\n";
}

ExitCode RunRaw(const RawOptions& options, Program& program) {
  JobSession session(program, options.job);
  if (!session.LoadExisting()) return ExitCode::Failed;
  const std::string path = RawFilePath(session.job());
  std::string bytes;
  const FileStatus status = ReadWholeFile(program.files, path, kLargestRawFile, bytes);
  if (!status.ok())
    return program.Fail("The raw file " + path + " cannot be read: " + status.Text() + ".");
  if (!options.json) {
    program.console.PrintBytes(bytes + "\n");
    return ExitCode::Done;
  }
  program.console.Print(RawJson(path, bytes));
  return ExitCode::Done;
}

}  // namespace

void DeclareRawCommand(Command& command) {
  RawOptions& options = command.Runs(RunRaw);
  command.Add("JOB.crd", options.job, "The job's coordinate file").Required();
  command.AddFlag("--json", options.json, "Print JSON, each record on a line of its own");
  command.Footer(
      "Every setup, observation, stored and deleted point and comment, oldest first.\n"
      "Example: tarvex raw site.crd");
}

}  // namespace tarvex
