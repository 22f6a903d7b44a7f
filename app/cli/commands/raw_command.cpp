// tarvex raw: the raw data file of a job.
#include "app/cli/commands/command.h"
#include "app/cli/commands/commands.h"
#include "app/cli/json_text.h"
#include "app/workflow/job_session.h"
#include "core/raw_file.h"
#include "core/text.h"

namespace tarvex {
namespace {

constexpr std::uint64_t kLargestRawFile = std::uint64_t{1} << 32U;

struct RawOptions {
  std::string job;
  bool json = false;
};

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
  Json records = Json::array();
  std::string_view rest = bytes;
  while (const auto line = TakeLine(rest)) {
    const bool comment = line->starts_with("--");
    records.push_back(
        {{"record", comment ? "--" : line->substr(0, line->find(','))}, {"text", *line}});
  }
  program.console.Print(JsonText({{"raw", path}, {"records", std::move(records)}}));
  return ExitCode::Done;
}

}  // namespace

void AddRawCommand(CLI::App& app, Program& program) {
  Command<RawOptions> command(app, program, "raw", "Print the raw data file of a job", RunRaw);
  command.sub.add_option("JOB.crd", command.options->job, "The job's coordinate file")->required();
  command.sub.add_flag("--json", command.options->json, "Print JSON, a record each line");
  command.sub.footer(
      "Every setup, shot, stored point and receiver position is there, oldest first.\n"
      "Example: tarvex raw site.crd");
}

}  // namespace tarvex
