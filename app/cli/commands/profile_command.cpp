// tarvex profile: what a person works with on every job.
#include "app/cli/command_line.h"
#include "app/cli/json_text.h"
#include "app/cli/setting_words.h"
#include "app/cli/table_text.h"
#include "app/workflow/known_settings.h"
#include "app/workflow/profiles.h"

namespace tarvex {
namespace {

struct ProfileOptions {
  std::string name;
  std::vector<std::string> words;
  bool json = false;
};

ExitCode RunList(const ProfileOptions& options, Program& program) {
  const std::vector<std::string> names = ProfileNames();
  if (options.json) {
    program.console.Print(JsonText({{"folder", ProfileFolder()}, {"profiles", Json(names)}}));
    return ExitCode::Done;
  }
  for (const std::string& name : names) program.console.Print(name + "\n");
  if (names.empty()) {
    program.console.PrintError("There is no profile in " + ProfileFolder() +
                               " yet; `tarvex profile save NAME KEY=VALUE ...` makes one.\n");
  }
  return ExitCode::Done;
}

ExitCode RunShow(const ProfileOptions& options, Program& program) {
  std::string problem;
  const auto profile = LoadProfile(program.files, options.name, problem);
  if (!profile) return program.Fail(problem);
  constexpr std::size_t kEntryWidth = 50;
  Json json = Json::EmptyObject();
  for (const auto& [key, value] : profile->Entries()) {
    if (options.json) {
      json[key] = value;
      continue;
    }
    const KnownSetting* const known = FindSetting(key);
    program.console.Print(Left(key + "=" + value, kEntryWidth) +
                          (key == "units" ? std::string("Unit of the profile's lengths")
                                          : std::string(known->meaning)) +
                          "\n");
  }
  if (options.json) {
    program.console.Print(JsonText({{"profile", options.name}, {"settings", std::move(json)}}));
  }
  return ExitCode::Done;
}

ExitCode RunSave(const ProfileOptions& options, Program& program) {
  std::vector<Settings::Entry> entries;
  std::string problem;
  if (!ReadSettingWords(options.words, entries, problem)) return program.Misuse(problem);
  if (entries.empty()) {
    return program.Misuse("Say what the profile holds, as in: tarvex profile save " + options.name +
                          " receiver=serial:/dev/ttyUSB0@115200 antenna_height=2.");
  }
  const std::vector<std::string> problems = SaveProfile(program.files, options.name, entries);
  for (const std::string& sentence : problems) (void)program.Misuse(sentence);
  if (!problems.empty()) {
    program.console.PrintError("The profile was not changed.\n");
    return ExitCode::WrongUse;
  }
  program.console.Print("Saved " + ProfilePath(options.name) + ".\n");
  return ExitCode::Done;
}

ExitCode RunDelete(const ProfileOptions& options, Program& program) {
  std::string problem;
  if (!DeleteProfile(program.files, options.name, problem)) return program.Fail(problem);
  program.console.Print("Deleted the profile " + options.name + ".\n");
  return ExitCode::Done;
}

void DeclareList(Command& command) {
  ProfileOptions& options = command.Runs(RunList);
  command.AddFlag("--json", options.json, "Print JSON");
}

void DeclareShow(Command& command) {
  ProfileOptions& options = command.Runs(RunShow);
  command.Add("NAME", options.name, "The profile").Required();
  command.AddFlag("--json", options.json, "Print JSON");
}

void DeclareSave(Command& command) {
  ProfileOptions& options = command.Runs(RunSave);
  command.Add("NAME", options.name, "The profile; it is made when there is none").Required();
  command.Add("KEY=VALUE", options.words, "Settings of it; KEY= removes one");
  command.Footer(
      "Keys: receiver, receiver_make, antenna, antenna_height, average, corrections,\n"
      "password_file, gate_solution, gate_hrms and the other limits, settings of the receiver\n"
      "(docs/receivers.md); units says in which unit antenna_height, gate_hrms and gate_vrms\n"
      "are (default: metres).\n"
      "Example: tarvex profile save rover receiver=serial:/dev/ttyUSB0@115200 antenna_height=2 \\\n"
      "             corrections=ntrip://me@caster.example/MOUNT password_file=~/.ntrip-password");
}

void DeclareDelete(Command& command) {
  ProfileOptions& options = command.Runs(RunDelete);
  command.Add("NAME", options.name, "The profile").Required();
}

constexpr CommandRow kProfileCommands[] = {
    {"list", "List the profiles", DeclareList},
    {"show", "Show what a profile holds", DeclareShow},
    {"save", "Make a profile, or change settings of one", DeclareSave},
    {"delete", "Delete a profile", DeclareDelete},
};

}  // namespace

void DeclareProfileCommand(Command& command) {
  command.Footer(
      "A profile keeps receiver, antenna, caster and limits under a name, for every job, as in\n"
      "tarvex collect site.crd --profile rover.\n"
      "What the command line says goes before the job's settings, and these before the profile.");
  command.Commands(kProfileCommands);
}

}  // namespace tarvex
