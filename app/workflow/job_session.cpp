#include "app/workflow/job_session.h"

#include <algorithm>
#include <filesystem>
#include <span>
#include <vector>

#include "app/workflow/identification.h"
#include "app/workflow/job_settings.h"
#include "app/workflow/recovered_settings.h"
#include "core/journal/file_rewrite.h"
#include "core/observations/job_unit.h"
#include "core/text/number_text.h"
#include "core/text/text.h"

namespace tarvex {
namespace {

constexpr std::uint64_t kLargestSettings = 1 << 20;

// The job's name is the name of its coordinate file.
std::string JobName(const std::string& path) {
  const std::string without = PathWithExtension(path, "");
  const std::size_t folder = without.find_last_of('/');
  std::string name = without.substr(folder == std::string::npos ? 0 : folder + 1);
  name.pop_back();  // the dot
  return name;
}

// "north or south", "metres, us-feet or intl-feet".
std::string Listed(std::span<const std::string_view> words) {
  std::string text;
  for (std::size_t i = 0; i < words.size(); ++i) {
    if (i > 0) text += i + 1 == words.size() ? " or " : ", ";
    text += words[i];
  }
  return text;
}

// A link leads to the file itself, so that the job's other files are beside it and a file that is
// replaced stays where it is.
std::string WithoutLink(const std::string& path) {
  std::error_code error;
  if (!std::filesystem::is_symlink(path, error)) return path;
  const std::filesystem::path target = std::filesystem::canonical(path, error);
  return error ? path : target.string();
}

}  // namespace

JobSession::JobSession(const Workplace& work, const std::string& path) : work_(work), job_(*this) {
  job_.path = WithoutLink(path);
  job_.name = JobName(path);
  job_.options.collector = ProgramIdentification();
}

JobSession::~JobSession() {
  const FileStatus status = CloseJob(job_);
  if (status.ok()) return;
  work_.observer.OnWarning("The last work on " + job_.path + " is still in " + job_.path +
                           ".redo: " + status.Text() +
                           ". It is finished when the job is opened again.");
}

std::string JobSession::settingsPath() const {
  return PathWithExtension(job_.path, "job");
}

bool JobSession::Load() {
  std::string text;
  FileStatus status = FinishRewrite(files(), settingsPath());
  if (status.ok()) status = ReadWholeFile(files(), settingsPath(), kLargestSettings, text);
  if (!status.ok() && !status.notFound()) {
    ShowMessage("The job's settings " + settingsPath() + " cannot be read: " + status.Text() + ".");
    return false;
  }
  settings_ = Settings(text);
  return TakeSettings();
}

bool JobSession::LoadExisting() {
  if (files().Exists(job_.path)) {
    const bool lost = !files().Exists(settingsPath());
    const FinishJobResult finished = FinishJob(job_);
    if (finished == FinishJobResult::Failed) return false;
    if (lost ? !TakeRecovered() : !Load()) return false;
    wasInterrupted_ = finished == FinishJobResult::Finished;
    for (const std::string& sentence : UnknownSettings(settings_)) {
      work_.observer.OnWarning(settingsPath() + ": " + sentence);
    }
    if (!lost) storingProblem_ = UnitProblem(job_);
    if (!storingProblem_.empty()) work_.observer.OnWarning(storingProblem_);
    return true;
  }
  const std::string completed = job_.path + ".crd";
  if (!job_.path.ends_with(".crd") && files().Exists(completed)) {
    ShowMessage("There is no job " + job_.path + "; there is " + completed + ".");
    return false;
  }
  ShowMessage("There is no job " + job_.path + "; `tarvex new " + job_.path + "` creates it.");
  return false;
}

// The settings file is gone: what the raw file tells of it takes its place.
bool JobSession::TakeRecovered() {
  const RecoveredSettings recovered = RecoverSettings(job_);
  settings_ = recovered.settings;
  storingProblem_ = recovered.storingProblem;
  work_.observer.OnWarning("The job's settings " + settingsPath() +
                           " are missing: " + recovered.taken);
  return TakeSettings();
}

bool JobSession::TakeSettings() {
  const auto refuse = [this](std::string_view key, std::string_view value,
                             std::string_view wanted) {
    ShowMessage(settingsPath() + ": " + std::string(key) + "=" + std::string(value) +
                " makes no sense (" + std::string(wanted) + "); the job was not opened.");
    return false;
  };
  struct Choice {
    const char* key;
    const char* fallback;
    std::vector<std::string_view> values;
  };
  const Choice choices[] = {{"ids", "alphanumeric", {"alphanumeric", "numeric"}},
                            {"units", "metres", {"metres", "us-feet", "intl-feet"}},
                            {"azimuths", "north", {"north", "south"}},
                            {"curvature_correction", "0", {"0", "1"}}};
  for (const Choice& choice : choices) {
    const std::string value = settings_.GetOr(choice.key, choice.fallback);
    if (std::find(choice.values.begin(), choice.values.end(), value) == choice.values.end()) {
      return refuse(choice.key, value, Listed(choice.values));
    }
  }
  const std::string scaleText = settings_.GetOr("scale_factor", "1");
  const auto scale = ParseNumber(scaleText);
  if (!scale || *scale <= 0.0) return refuse("scale_factor", scaleText, "a number above 0");
  job_.options.unit = *ParseUnit(settings_.GetOr("units", "metres"));
  job_.options.scaleFactor = *scale;
  job_.name = settings_.GetOr("name", job_.name);
  job_.options.alphanumericNewFiles = settings_.GetOr("ids", "alphanumeric") != "numeric";
  job_.options.azimuthsFromSouth = settings_.GetOr("azimuths", "north") == "south";
  job_.options.curvatureCorrection = settings_.GetOr("curvature_correction", "0") == "1";
  return true;
}

bool JobSession::Save() {
  const FileStatus status = RewriteWholeFile(files(), settingsPath(), settings_.Text());
  if (status.ok()) return true;
  ShowMessage("The job's settings " + settingsPath() + " cannot be written: " + status.Text() +
              ".");
  return false;
}

ExistingPointAnswer JobSession::AskExistingPoint(const std::string&, bool exists) {
  if (!exists) return {.choice = ExistingPointAnswer::Choice::Overwrite};
  switch (policy_) {
    case ExistingPolicy::Overwrite:
      return {.choice = ExistingPointAnswer::Choice::Overwrite};
    case ExistingPolicy::Next:
      return {.choice = ExistingPointAnswer::Choice::UseNextFreeId};
    case ExistingPolicy::Ask:  // a person is asked before the file is locked (point_storing.h)
    case ExistingPolicy::Cancel:
      break;
  }
  return {.choice = ExistingPointAnswer::Choice::Cancel};
}

void JobSession::ShowMessage(const std::string& text) {
  work_.observer.OnError(text);
}

void JobSession::ShowWaitCursor(bool shown) {
  if (shown) {
    work_.observer.OnProgress("Filling the point numbers in between ...");
  } else {
    work_.observer.OnProgressEnd();
  }
}

}  // namespace tarvex
