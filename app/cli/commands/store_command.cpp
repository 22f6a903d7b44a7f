// tarvex store: a point from entered coordinates.
#include "app/cli/command_line.h"
#include "app/cli/number_entry.h"
#include "app/cli/storing_text.h"
#include "app/workflow/job_session.h"
#include "app/workflow/point_storing.h"

namespace tarvex {
namespace {

struct StoreOptions {
  std::string job;
  std::string id;
  std::string northing;
  std::string easting;
  std::string elevation;
  std::string description;
  std::string existing = "ask";
  bool json = false;
};

ExitCode RunStore(const StoreOptions& options, Program& program) {
  const auto northing = EnteredNumber(program, "The northing", options.northing);
  const auto easting = EnteredNumber(program, "The easting", options.easting);
  const auto elevation = EnteredNumber(program, "The elevation", options.elevation);
  if (!northing || !easting || !elevation) return ExitCode::WrongUse;
  JobSession session(program, options.job);
  if (!session.LoadExisting()) return ExitCode::Failed;
  session.setPolicy(ParseExistingPolicy(options.existing));
  return TellStored(
      program, session,
      StoreTypedPoint(session,
                      {.id = options.id,
                       .at = {.northing = *northing, .easting = *easting, .elevation = *elevation},
                       .description = options.description}),
      options.json ? Announce::AsEvent : Announce::OnOutput);
}

}  // namespace

void DeclareStoreCommand(Command& command) {
  StoreOptions& options = command.Runs(RunStore);
  command.Add("JOB.crd", options.job, "The job's coordinate file").Required();
  command.Add("ID", options.id, "Point id, at most 9 characters (a number in a numeric job)")
      .Required();
  command.Add("NORTHING", options.northing, "In the job's unit").Required();
  command.Add("EASTING", options.easting, "In the job's unit").Required();
  command.Add("ELEVATION", options.elevation, "In the job's unit").Required();
  command.Add("DESCRIPTION", options.description,
              "Free text, 31 bytes are kept in the coordinate file");
  command
      .Add("--existing", options.existing,
           "When the point exists: overwrite it, store under the next free id, or cancel "
           "(default: ask)")
      .OneOf({"ask", "overwrite", "next", "cancel"});
  command.AddFlag("--json", options.json, "Print a line of JSON: the point as it was stored");
  command.Footer(
      "Ids are kept in upper case, with \"-\" and \",\" made \"_\". The point is journaled as SP.\n"
      "Example: tarvex store site.crd BM1 5184900 520300 1100.25 \"bench mark\"");
}

}  // namespace tarvex
