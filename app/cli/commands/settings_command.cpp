// tarvex settings: what a job is set to, and changing it.
#include "app/cli/command_line.h"
#include "app/cli/json_text.h"
#include "app/cli/setting_words.h"
#include "app/cli/table_text.h"
#include "app/workflow/profiles.h"
#include "app/workflow/settings_change.h"
#include "core/coordinates/coordinate_file.h"

namespace tarvex {
namespace {

struct SettingsOptions {
  std::string job;
  std::vector<std::string> words;
  bool json = false;
};

// A setting as it holds: of the job, of its profile, or what is assumed without either.
struct Shown {
  std::string key;
  std::string value;
  const char* source = "";
};

class SettingsView {
 public:
  SettingsView(const Settings& job, Settings merged) : job_(job), merged_(std::move(merged)) {}

  std::vector<Shown> All() const {
    std::vector<Shown> shown;
    for (const KnownSetting& known : KnownSettings()) {
      if (known.key == "COM1") {
        for (const auto& [key, value] : merged_.Entries()) {
          if (FindSetting(key) == &known) shown.push_back(Of(key));
        }
      } else {
        shown.push_back(Of(known.key));
      }
    }
    return shown;
  }

  Shown Of(std::string_view key) const {
    const KnownSetting* const known = FindSetting(key);
    const auto value = merged_.Get(key);
    if (!value) {
      return {std::string(key), std::string(known == nullptr ? "" : known->byDefault), "default"};
    }
    return {std::string(key), *value, job_.Get(key) ? "job" : "profile"};
  }

 private:
  const Settings& job_;
  Settings merged_;
};

Json SettingJson(const Shown& shown) {
  const KnownSetting* const known = FindSetting(shown.key);
  return {{"key", shown.key},
          {"value", shown.value},
          {"source", shown.source},
          {"meaning", std::string(known->meaning)},
          {"values", known->Values()}};
}

// A definition text is long, and its beginning says what it is.
std::string Shortened(const std::string& value) {
  constexpr std::size_t kLongest = 40;
  return Columns(value) <= kLongest ? value : value.substr(0, kLongest - 3) + "...";
}

// What the receiver is told only where somebody said so: the rest is as its make has it.
bool IsListed(const Shown& shown) {
  const KnownSetting* const known = FindSetting(shown.key);
  return !shown.value.empty() || !known->values.empty();
}

void PrintTable(const std::vector<Shown>& settings, Console& console) {
  constexpr std::size_t kKeyWidth = 22;
  constexpr std::size_t kValueWidth = 42;
  constexpr std::size_t kSourceWidth = 9;
  std::size_t left = 0;
  for (const Shown& shown : settings) {
    if (!IsListed(shown)) {
      ++left;
      continue;
    }
    const std::string value = shown.value.empty() ? "-" : Shortened(shown.value);
    console.Print(Left(shown.key, kKeyWidth) + Left(value, kValueWidth) +
                  Left(shown.source, kSourceWidth) + std::string(FindSetting(shown.key)->meaning) +
                  "\n");
  }
  if (left > 0) {
    console.Print(std::to_string(left) +
                  " settings of how the receiver is read are as its make has them "
                  "(docs/receivers.md).\n");
  }
}

ExitCode ShowSome(const SettingsOptions& options, const SettingsView& view, Program& program) {
  Json list = Json::EmptyList();
  for (const std::string& key : options.words) {
    if (FindSetting(key) == nullptr) {
      return program.Misuse(SettingProblem(key, "") + " `tarvex settings " + options.job +
                            "` lists them.");
    }
    const Shown shown = view.Of(key);
    list.Add(SettingJson(shown));
    if (options.json) continue;
    const KnownSetting& known = *FindSetting(key);
    program.console.Print(key + "=" + shown.value + "\n  " + std::string(known.meaning) +
                          (known.isLength ? ", in the job's unit" : "") + "; takes " +
                          known.Values() + ". Source: " + shown.source + ".\n");
  }
  if (options.json) program.console.Print(JsonText({{"settings", std::move(list)}}));
  return ExitCode::Done;
}

ExitCode Show(const SettingsOptions& options, JobSession& session, Program& program) {
  Settings merged = session.settings();
  std::string problem;
  if (const auto name = merged.Get("profile"); name && !name->empty()) {
    const auto profile = LoadProfile(program.files, *name, problem);
    if (!profile) program.Warn(problem);
    if (profile) merged = WithProfile(merged, *profile, session.job().options.unit);
  }
  const SettingsView view(session.settings(), merged);
  if (!options.words.empty()) return ShowSome(options, view, program);
  const std::vector<Shown> all = view.All();
  if (!options.json) {
    PrintTable(all, program.console);
    return ExitCode::Done;
  }
  Json list = Json::EmptyList();
  for (const Shown& shown : all) list.Add(SettingJson(shown));
  program.console.Print(JsonText({{"job", options.job}, {"settings", std::move(list)}}));
  return ExitCode::Done;
}

ExitCode Change(const std::vector<Settings::Entry>& entries, JobSession& session,
                Program& program) {
  const SettingsOutcome outcome = ChangeSettings(program, session, entries);
  for (const std::string& problem : outcome.problems) (void)program.Misuse(problem);
  if (outcome.result == SettingsResult::BadEntry) {
    program.console.PrintError("Nothing was changed.\n");
    return ExitCode::WrongUse;
  }
  if (outcome.result == SettingsResult::Failed) return program.exitCode = ExitCode::Failed;
  for (const auto& [key, value] : entries) {
    const std::string now = session.settings().GetOr(key, "");
    program.console.Print(now.empty() ? key + " is removed.\n" : key + "=" + now + "\n");
  }
  return ExitCode::Done;
}

ExitCode RunSettings(const SettingsOptions& options, Program& program) {
  JobSession session(program, options.job);
  if (!session.LoadExisting()) return ExitCode::Failed;
  std::vector<Settings::Entry> entries;
  std::string problem;
  if (!ReadSettingWords(options.words, entries, problem)) return program.Misuse(problem);
  return entries.empty() ? Show(options, session, program) : Change(entries, session, program);
}

}  // namespace

void DeclareSettingsCommand(Command& command) {
  SettingsOptions& options = command.Runs(RunSettings);
  command.Add("JOB.crd", options.job, "The job's coordinate file").Required();
  command.Add("KEY[=VALUE]", options.words,
              "Show this setting; with a value set it (KEY= removes it)");
  command.AddFlag("--json", options.json, "Print JSON");
  command.Footer(
      "Without KEY all settings are listed: where each value comes from (the job, its profile, or\n"
      "what is assumed), and what it is. Several are set together or not at all; what changes\n"
      "measuring is told in the raw file.\n"
      "Example: tarvex settings site.crd gate_solution=fixed gate_hrms=0.02 antenna_height=2\n"
      "         tarvex settings site.crd receiver=serial:/dev/ttyUSB0@115200\n"
      "         tarvex settings site.crd system=EPSG:25832,GEOID=egm2008.gtx");
}

}  // namespace tarvex
