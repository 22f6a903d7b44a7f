#include "app/workflow/settings_change.h"

#include <algorithm>
#include <optional>
#include <set>

#include "app/workflow/coordinate_systems.h"
#include "app/workflow/job_calculator.h"
#include "app/workflow/profiles.h"
#include "app/workflow/setup_comments.h"
#include "app/workflow/stored_coordinates.h"
#include "core/observations/job_unit.h"
#include "core/raw_data/raw_file.h"
#include "core/raw_data/raw_header.h"
#include "core/raw_data/raw_records.h"

namespace tarvex {
namespace {

using Entry = Settings::Entry;

constexpr std::uint64_t kLargestSettings = 1 << 20;

class SettingsChange {
 public:
  SettingsChange(const Workplace& work, JobSession& session)
      : work_(work), session_(session), systems_(work), before_(session.settings()) {}

  SettingsOutcome Run(const std::vector<Entry>& entries) {
    for (const Entry& entry : entries) {
      if (std::string why = Problem(entry); !why.empty()) outcome_.problems.push_back(why);
    }
    if (outcome_.problems.empty()) ChangeSystem(entries);
    if (!outcome_.problems.empty()) return Ended(SettingsResult::BadEntry);
    for (const Entry& entry : entries) Take(entry);
    if (session_.settings().Text() == before_.Text() && IsKept()) return outcome_;
    if (!session_.Save() || !Journal(entries)) return PutBack(), Ended(SettingsResult::Failed);
    if (calculator_) TellStoredPoints();
    return outcome_;
  }

 private:
  // The job is as it was.
  SettingsOutcome Ended(SettingsResult result) {
    session_.settings() = before_;
    outcome_.result = result;
    return outcome_;
  }

  // A file that took the new settings, though not for sure, gets the old ones again.
  void PutBack() {
    session_.settings() = before_;
    std::string text;
    const FileStatus status =
        ReadWholeFile(work_.files, session_.settingsPath(), kLargestSettings, text);
    if (status.ok() && text != before_.Text()) (void)session_.Save();
  }

  bool IsKept() const { return work_.files.Exists(session_.settingsPath()); }

  // Why an entry cannot be taken, in a sentence.
  std::string Problem(const Entry& entry) {
    const KnownSetting* const setting = FindSetting(entry.key);
    const bool removes = entry.value.empty();
    if (setting == nullptr && removes && before_.Get(entry.key)) return {};
    if (setting == nullptr || !removes) {
      if (std::string why = SettingProblem(entry.key, entry.value); !why.empty()) return why;
    }
    if (!seen_.insert(entry.key).second) return entry.key + " is given twice.";
    switch (setting->use) {
      case SettingUse::Header:
        return HeaderProblem(entry);
      case SettingUse::Localization:
        return entry.key + " is changed by `tarvex localize " + session_.job().path + "`.";
      case SettingUse::System:
        return SystemProblem(entry);
      case SettingUse::Job:
        if (entry.key == "profile" && !removes) return ProfileProblem(entry.value);
        break;
      case SettingUse::Session:
        if (entry.key == "password_file" && !removes) return PasswordFileProblem(entry.value);
        break;
    }
    return {};
  }

  // The raw file says what the numbers of the job are: they cannot become others.
  std::string HeaderProblem(const Entry& entry) const {
    Job& job = session_.job();
    const std::string fixed = entry.key == "ids" ? LayoutOfFile() : HeaderValue(entry.key);
    if (entry.value == fixed || (fixed.empty() && !IsKept())) return {};
    if (fixed.empty() && entry.value == before_.GetOr(entry.key, "")) return {};
    return entry.key + " cannot be changed" +
           (fixed.empty() ? "." : ": the job was begun with " + entry.key + "=" + fixed + ".") +
           " Its coordinates and observations would be taken for others. `tarvex new` makes a job "
           "with other " +
           entry.key + ", `tarvex import` takes points into it; " + job.path + " stays as it is.";
  }

  std::string LayoutOfFile() const {
    const auto stream = OpenForReading(session_.job());
    if (!stream) return {};
    return session_.job().store.alphanumeric ? "alphanumeric" : "numeric";
  }

  std::string HeaderValue(std::string_view key) const {
    const auto mode = ReadRawMode(session_.job());
    if (!mode) return {};
    if (key == "units") return mode->unit ? std::string(UnitKey(*mode->unit)) : "";
    return mode->azimuthsFromSouth ? (*mode->azimuthsFromSouth ? "south" : "north") : "";
  }

  std::string SystemProblem(const Entry& entry) const {
    if (entry.key == "definition") {
      return "A definition text comes into a job when it is made (tarvex new --definition FILE), "
             "or by its name: `tarvex systems --add NAME --definition FILE` and system=NAME.";
    }
    if (entry.key == "system" && entry.value.empty()) {
      return "A system can be replaced (system=NAME), not taken away.";
    }
    return {};
  }

  std::string ProfileProblem(const std::string& name) const {
    std::string problem;
    (void)LoadProfile(work_.files, name, problem);
    return problem;
  }

  // The system and how it is reached are tried before they are taken.
  void ChangeSystem(const std::vector<Entry>& entries) {
    SystemSource source = SystemOfSettings(before_);
    bool changed = false;
    std::string problem;
    for (const Entry& entry : entries) {
      if (entry.key == "datum_shift") {
        source.datumShift = entry.value;
        changed = true;
      }
      if (entry.key != "system") continue;
      changed = true;
      if (!systems_.ReadOptions(entry.value, "", source, problem)) break;
    }
    if (!changed) return;
    calculator_.emplace();
    if (problem.empty() && systems_.SettleGeoid("", source, problem)) {
      PutSystemIntoSettings(source, session_.settings());
      if (source.datumShift.empty()) session_.settings().Remove("datum_shift");
      (void)MakeJobCalculator(session_, systems_, *calculator_, problem);
    }
    if (!problem.empty()) outcome_.problems.push_back(problem);
  }

  void Take(const Entry& entry) {
    if (entry.key == "system" || entry.key == "datum_shift") return;
    if (entry.value.empty()) {
      session_.settings().Remove(entry.key);
    } else {
      session_.settings().Set(entry.key,
                              IsPathFromRoot(entry.key) ? WholePath(entry.value) : entry.value);
    }
  }

  // False after a message.
  bool Journal(const std::vector<Entry>& entries) {
    std::vector<std::string> records;
    for (const Entry& entry : entries) {
      const std::string record = Record(entry);
      if (!record.empty()) records.push_back(record);
    }
    if (records.empty()) return true;
    if (calculator_) {
      const SystemSource source = SystemOfSettings(session_.settings());
      for (std::string& record :
           SetupComments({.systemTitle = CoordinateSystems::SetupTitle(source, *calculator_),
                          .calculator = &*calculator_})) {
        records.push_back(std::move(record));
      }
    }
    const auto unit = JobUnit::Begin(session_.job());
    if (unit) unit->AppendRaw(session_.RawOpening());
    if (unit) unit->AppendRaw(records);
    if (!unit || unit->Commit() == ChangeResult::Nothing) return false;
    session_.RawIsOpened();
    return true;
  }

  // What the raw file says of one change; empty when it says nothing.
  std::string Record(const Entry& entry) const {
    const KnownSetting* const setting = FindSetting(entry.key);
    if (setting == nullptr || !setting->journaled) return {};
    const auto was = before_.Get(entry.key);
    const auto is = session_.settings().Get(entry.key);
    if (was == is) return {};
    return CommentRecord("Setting: " + entry.key + (is ? "=" + *is : " removed") +
                         (was ? ", was " + *was : ""));
  }

  void TellStoredPoints() const {
    const StoredCoordinates stored = CompareStoredCoordinates(session_.job(), *calculator_);
    if (stored.elsewhere > 0) work_.observer.OnWarning(stored.Text());
  }

  Workplace work_;
  JobSession& session_;
  CoordinateSystems systems_;
  Settings before_;
  std::optional<CTrgCalculator> calculator_;  // with the new system
  std::set<std::string> seen_;
  SettingsOutcome outcome_;
};

}  // namespace

SettingsOutcome ChangeSettings(const Workplace& work, JobSession& session,
                               const std::vector<Settings::Entry>& entries) {
  return SettingsChange(work, session).Run(entries);
}

}  // namespace tarvex
