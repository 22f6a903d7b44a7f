#include "app/cli/profile_choice.h"

#include "app/workflow/known_settings.h"
#include "app/workflow/profiles.h"

namespace tarvex {
namespace {

// A profile that was named for this command, and yet the job's own setting counts.
void TellOverruled(const std::string& name, const Settings& profile, const Settings& jobSettings,
                   Program& program) {
  for (const auto& [key, value] : profile.Entries()) {
    const auto own = jobSettings.Get(key);
    if (key == "units" || !own || *own == value) continue;
    program.console.PrintError("The job's " + key + "=" + *own +
                               " counts, not that of the profile " + name + " (" + value + ").\n");
  }
}

}  // namespace

Option AddProfileOption(Command& command, std::string& profile, const char* name) {
  return command
      .Add(name, profile,
           "Receiver, antenna, caster and limits that are kept under this name; the\n"
           "command line and the job's settings go before it (tarvex profile --help)")
      .ValueName("NAME");
}

ExitCode SettleProfile(const std::string& profile, const Settings& jobSettings, Program& program,
                       Settings& settings) {
  settings = jobSettings;
  const std::string name = profile.empty() ? jobSettings.GetOr("profile", "") : profile;
  if (name.empty()) return ExitCode::Done;
  std::string problem;
  const auto loaded = LoadProfile(program.files, name, problem);
  if (!loaded) {
    if (!profile.empty()) return program.Misuse(problem);
    return program.Fail("The job works with a profile. " + problem +
                        " (`tarvex settings JOB.crd profile=` works without it.)");
  }
  const auto unit = ParseUnit(jobSettings.GetOr("units", "metres"));
  settings = WithProfile(jobSettings, *loaded, unit.value_or(DistanceUnit::Metres));
  if (!profile.empty()) TellOverruled(name, *loaded, jobSettings, program);
  return ExitCode::Done;
}

ReceiverChoice WithSettings(ReceiverChoice choice, const Settings& settings) {
  if (choice.address.empty()) choice.address = settings.GetOr("receiver", "");
  return choice;
}

CorrectionChoice WithSettings(CorrectionChoice choice, const Settings& settings,
                              const ChosenReceiver& receiver) {
  if (choice.address.empty() && receiver.takesCorrections()) {
    choice.address = settings.GetOr("corrections", "");
  }
  if (choice.authorityFile.empty() && choice.address.starts_with("ntrips")) {
    choice.authorityFile = settings.GetOr("ca_file", "");
  }
  if (choice.ntripVersion == 0 && !choice.address.empty()) {
    choice.ntripVersion = settings.GetOr("ntrip_version", "") == "1"   ? 1
                          : settings.GetOr("ntrip_version", "") == "2" ? 2
                                                                       : 0;
  }
  if (choice.passwordFile.empty() && IsPasswordFor(choice.address, settings)) {
    choice.passwordFile = settings.GetOr("password_file", "");
  }
  return choice;
}

}  // namespace tarvex
