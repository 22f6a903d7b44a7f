// tarvex delete: removes points.
#include "app/cli/command_line.h"
#include "app/cli/json_events.h"
#include "app/workflow/job_session.h"
#include "app/workflow/point_deletion.h"

namespace tarvex {
namespace {

struct DeleteOptions {
  std::string job;
  std::vector<std::string> ids;
  bool json = false;
};

bool DeleteOne(Program& program, JobSession& session, const std::string& id, bool json) {
  Point deleted;
  switch (DeleteJobPoint(session, id, deleted)) {
    case DeletionResult::Deleted:
      if (json) {
        PrintEvent(program, "deleted", {{"point", PointJson(deleted)}});
        return true;
      }
      program.console.Print("Deleted point " + deleted.id.str() + ".\n");
      return true;
    case DeletionResult::NotFound:
      (void)program.Fail("There is no point " + id + " in " + session.job().path + ".");
      return false;
    case DeletionResult::Failed:
      break;
  }
  return false;
}

ExitCode RunDelete(const DeleteOptions& options, Program& program) {
  JobSession session(program, options.job);
  if (!session.LoadExisting()) return ExitCode::Failed;
  bool all = true;
  for (const std::string& id : options.ids)
    all = DeleteOne(program, session, id, options.json) && all;
  return all ? ExitCode::Done : ExitCode::Failed;
}

}  // namespace

void DeclareDeleteCommand(Command& command) {
  DeleteOptions& options = command.Runs(RunDelete);
  command.Add("JOB.crd", options.job, "The job's coordinate file").Required();
  command.Add("ID", options.ids, "The points to delete").Required();
  command.AddFlag("--json", options.json, "Print a line of JSON for each deleted point");
  command.Footer("The raw file keeps what each point was. Example: tarvex delete site.crd 104 105");
}

}  // namespace tarvex
