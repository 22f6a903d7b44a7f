#include "app/workflow/job_settings.h"

#include "app/workflow/known_settings.h"
#include "core/raw_data/raw_file.h"
#include "core/raw_data/raw_header.h"

namespace tarvex {

std::vector<std::string> UnknownSettings(const Settings& settings) {
  std::vector<std::string> problems;
  for (const auto& [key, value] : settings.Entries()) {
    if (FindSetting(key) == nullptr) {
      const std::string_view nearest = NearestSetting(key);
      problems.push_back("\"" + key + "=" + value + "\" is not a setting; it is not used" +
                         (nearest.empty() ? "." : " (" + std::string(nearest) + "?)."));
    } else if (!SettingProblem(key, value).empty()) {
      problems.push_back("\"" + key + "=" + value +
                         "\" has a value that makes no sense; it is not used.");
    }
  }
  return problems;
}

std::string UnitProblem(Job& job) {
  const auto mode = ReadRawMode(job);
  if (!mode || !mode->unit || *mode->unit == job.options.unit) return {};
  return "The job's unit is " + std::string(UnitName(job.options.unit)) + ", but its raw file " +
         RawFilePath(job) + " was begun in " + std::string(UnitName(*mode->unit)) +
         ": its settings were lost or changed. `tarvex settings " + job.path +
         " units=" + std::string(UnitKey(*mode->unit)) +
         "` puts it right; until then nothing is stored.";
}

}  // namespace tarvex
