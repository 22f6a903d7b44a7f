// tarvex store: a point from entered coordinates.
#include <cmath>

#include "app/commands/command.h"
#include "app/commands/commands.h"
#include "app/job_session.h"
#include "app/point_storing.h"
#include "core/no_value.h"
#include "core/number_text.h"

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

// An entered coordinate; nothing after a message that names it.
std::optional<double> Coordinate(Program& program, const char* name, const std::string& text) {
  const auto value = ParseNumber(text);
  if (!value) {
    program.exit_code = program.Misuse(std::string(name) + " \"" + text + "\" is not a number.");
    return std::nullopt;
  }
  return value;
}

ExitCode RunStore(const StoreOptions& options, Program& program) {
  const auto northing = Coordinate(program, "The northing", options.northing);
  const auto easting = Coordinate(program, "The easting", options.easting);
  const auto elevation = Coordinate(program, "The elevation", options.elevation);
  if (!northing || !easting || !elevation) return ExitCode::WrongUse;
  JobSession session(program, options.job);
  if (!session.LoadExisting()) return ExitCode::Failed;
  session.set_policy(ParseExistingPolicy(options.existing));
  return StoreUnderId(program, session, options.id,
                      {.northing = *northing, .easting = *easting, .elevation = *elevation},
                      options.description);
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
