// tarvex delete: removes points.
#include "app/cli/commands/command.h"
#include "app/cli/commands/commands.h"
#include "app/workflow/job_session.h"
#include "core/point_store.h"
#include "core/raw_file.h"
#include "core/raw_records.h"

namespace tarvex {
namespace {

struct DeleteOptions {
  std::string job;
  std::vector<std::string> ids;
};

bool DeleteOne(Program& program, Job& job, const std::string& id) {
  const auto stream = OpenCoordinateFile(job);
  if (!stream) return false;
  Point point;
  if (ReadPoint(job, id, stream.get(), point) != ReadPointResult::Found) {
    (void)program.Fail("There is no point " + id + " in " + job.path + ".");
    return false;
  }
  const DeletePointResult result = DeletePoint(job, id, stream.get());
  if (result != DeletePointResult::Deleted && result != DeletePointResult::DeletedNotDurable) {
    return false;  // the person was told why
  }
  program.console.Print("Deleted point " + point.id.str() + ".\n");
  // The journal keeps what the point was.
  if (AppendRawRecord(
          job, CommentRecord("Deleted point:" +
                             StoredPointRecord(point, point.description.view()).substr(1))) ==
      RawFileResult::Written) {
    return result == DeletePointResult::Deleted;
  }
  (void)program.Fail("The point is deleted, but the raw file " + RawFilePath(job) +
                     " could not be written.");
  return false;
}

ExitCode RunDelete(const DeleteOptions& options, Program& program) {
  JobSession session(program, options.job);
  if (!session.LoadExisting()) return ExitCode::Failed;
  bool all = true;
  for (const std::string& id : options.ids) all = DeleteOne(program, session.job(), id) && all;
  return all ? ExitCode::Done : ExitCode::Failed;
}

}  // namespace

void AddDeleteCommand(CLI::App& app, Program& program) {
  Command<DeleteOptions> command(app, program, "delete", "Delete points of a job", RunDelete);
  command.sub.add_option("JOB.crd", command.options->job, "The job's coordinate file")->required();
  command.sub.add_option("ID", command.options->ids, "The points to delete")->required();
  command.sub.footer(
      "The raw file keeps what each point was. Example: tarvex delete site.crd 104 105");
}

}  // namespace tarvex
