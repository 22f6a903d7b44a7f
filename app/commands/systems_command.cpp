// tarvex systems: the coordinate systems to choose from.
#include "app/commands/command.h"
#include "app/commands/commands.h"
#include "app/json_text.h"
#include "coordsys/system_catalogue.h"

namespace tarvex {
namespace {

struct SystemsOptions {
  std::string part;
  bool json = false;
};

ExitCode RunSystems(const SystemsOptions& options, Program& program) {
  const std::vector<NamedSystem> systems = SystemCatalogue().Search(options.part);
  if (options.json) {
    Json list = Json::array();
    for (const NamedSystem& system : systems) {
      list.push_back({{"name", system.name}, {"definition", system.definition}});
    }
    program.console.Print(JsonText({{"systems", std::move(list)}}));
    return systems.empty() ? ExitCode::Failed : ExitCode::Done;
  }
  for (const NamedSystem& system : systems) program.console.Print(system.name + "\n");
  if (!systems.empty()) return ExitCode::Done;
  return program.Fail("No coordinate system has \"" + options.part + "\" in its name.");
}

}  // namespace

void AddSystemsCommand(CLI::App& app, Program& program) {
  Command<SystemsOptions> command(app, program, "systems", "List coordinate systems", RunSystems);
  command.sub.add_option("TEXT", command.options->part, "Only those with this text in their name");
  command.sub.add_flag("--json", command.options->json, "Print JSON, with the definition texts");
}

}  // namespace tarvex
