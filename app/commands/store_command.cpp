// tarvex store: a point from entered coordinates.
#include <cmath>

#include "app/commands/command.h"
#include "app/commands/commands.h"
#include "app/job_session.h"
#include "core/coordinate_file.h"
#include "core/no_value.h"
#include "core/number_text.h"
#include "core/point_id.h"
#include "core/point_store.h"
#include "core/raw_file.h"
#include "core/raw_records.h"

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
};

ExistingPolicy PolicyOf(const std::string& name) {
  if (name == "overwrite") return ExistingPolicy::Overwrite;
  if (name == "next") return ExistingPolicy::Next;
  return name == "cancel" ? ExistingPolicy::Cancel : ExistingPolicy::Ask;
}

// An entered coordinate; nothing after a message that names it.
std::optional<double> Coordinate(Program& program, const char* name, const std::string& text) {
  const auto value = ParseNumber(text);
  if (!value) {
    program.exit_code = program.Misuse(std::string(name) + " \"" + text + "\" is not a number.");
    return std::nullopt;
  }
  return value;
}

ExitCode StoreAt(Program& program, JobSession& session, const GridPoint& at,
                 const StoreOptions& options) {
  Job& job = session.job();
  const auto stream = OpenCoordinateFile(job);
  if (!stream) return ExitCode::Failed;
  const auto number = ParseInteger(options.id);
  if (!job.alphanumeric && (!number || *number < 1 || *number > kHighestPointNumber)) {
    return program.Misuse("\"" + options.id +
                          "\" is no point number: this job numbers its points 1 to 999999999.");
  }
  if (job.alphanumeric && NormalisePointId(options.id).empty()) {
    return program.Misuse("The point id is empty.");
  }
  job.current_point_id = job.alphanumeric ? options.id : std::to_string(*number);
  switch (StorePoint(job, at, options.description, true, stream.get())) {
    case StorePointResult::Stored:
      break;
    case StorePointResult::Cancelled:
      return program.Fail("Point " + job.current_point_id +
                          " exists; nothing was stored. (--existing overwrite or next decides.)");
    case StorePointResult::DialogFailed:
      return program.Fail("No free point id was found behind " + job.current_point_id + ".");
    case StorePointResult::Nothing:
    case StorePointResult::NoStream:
      return program.Fail("Point " + job.current_point_id + " was not stored.");
  }
  program.console.Print("Stored point " + job.last_stored_point.id.str() + ".\n");
  if (AppendRawRecord(job, StoredPointRecord(job.last_stored_point)) == RawFileResult::Written) {
    return ExitCode::Done;
  }
  return program.Fail("The point is stored, but the raw file " + RawFilePath(job) +
                      " could not be written.");
}

ExitCode RunStore(const StoreOptions& options, Program& program) {
  const auto northing = Coordinate(program, "The northing", options.northing);
  const auto easting = Coordinate(program, "The easting", options.easting);
  const auto elevation = Coordinate(program, "The elevation", options.elevation);
  if (!northing || !easting || !elevation) return ExitCode::WrongUse;
  JobSession session(program, options.job);
  if (!session.LoadExisting()) return ExitCode::Failed;
  session.set_policy(PolicyOf(options.existing));
  return StoreAt(program, session,
                 {.northing = *northing, .easting = *easting, .elevation = *elevation}, options);
}

}  // namespace

void AddStoreCommand(CLI::App& app, Program& program) {
  Command<StoreOptions> command(app, program, "store", "Store a point from entered coordinates",
                                RunStore);
  StoreOptions& options = *command.options;
  command.sub.add_option("JOB.crd", options.job, "The job's coordinate file")->required();
  command.sub
      .add_option("ID", options.id, "Point id, at most 9 characters (a number in a numeric job)")
      ->required();
  command.sub.add_option("NORTHING", options.northing, "In the job's unit")->required();
  command.sub.add_option("EASTING", options.easting, "In the job's unit")->required();
  command.sub.add_option("ELEVATION", options.elevation, "In the job's unit")->required();
  command.sub.add_option("DESCRIPTION", options.description,
                         "Free text, 31 bytes are kept in the coordinate file");
  command.sub
      .add_option("--existing", options.existing,
                  "When the point exists: overwrite it, store under the next free id, or cancel "
                  "(default: ask)")
      ->check(CLI::IsMember({"ask", "overwrite", "next", "cancel"}));
}

}  // namespace tarvex
