#include "app/workflow/job_settings.h"

#include <algorithm>
#include <array>

#include "app/workflow/job_session.h"
#include "core/raw_data/raw_file.h"
#include "core/raw_data/raw_header.h"
#include "core/text/edit_distance.h"
#include "core/text/text.h"
#include "gnss/quality/quality_gate.h"
#include "gnss/receivers/receiver_settings.h"

namespace tarvex {
namespace {

// Every key that some room reads, beside those of the receiver (SettingKeys); docs/formats/job.md
// and docs/receivers.md say what they mean.
constexpr auto kOwnKeys = std::to_array<std::string_view>(
    {"ids", "units", "azimuths", "scale_factor", "curvature_correction", "name", "system",
     "definition", "datum_shift", "localization", "localization_on", "localization_method",
     "localization_scale", "localization_heights", "receiver_make", "antenna", "codes"});
constexpr auto kGateKeys =
    std::to_array<std::string_view>({"gate_solution", "gate_hrms", "gate_vrms", "gate_pdop",
                                     "gate_satellites", "gate_age", "gate_stale"});

template <typename Keys>
bool Holds(const Keys& keys, std::string_view key) {
  return std::find(keys.begin(), keys.end(), key) != keys.end();
}

// COM3=/dev/rfcomm0 names the device of a numbered port.
bool IsPortName(std::string_view key) {
  return key.starts_with("COM") && key.size() > 3 &&
         std::all_of(key.begin() + 3, key.end(), IsDigit);
}

bool IsUsable(const Settings::Entry& entry) {
  if (Holds(kGateKeys, entry.key)) {
    GateLimits limits;
    return SetGateLimit(entry.key, entry.value, limits);
  }
  ReceiverSettings settings;
  return SetReceiverSetting(entry.key, entry.value, settings) != SettingResult::NotAValue;
}

bool IsKnown(std::string_view key) {
  return Holds(kOwnKeys, key) || Holds(kGateKeys, key) || Holds(SettingKeys(), key) ||
         IsPortName(key);
}

// The key that was probably meant; empty when none is near.
std::string_view NearestKey(std::string_view key) {
  constexpr std::size_t kNear = 2;
  std::string_view nearest;
  std::size_t least = kNear + 1;
  const auto look = [&](const auto& keys) {
    for (const std::string_view known : keys) {
      if (const std::size_t distance = EditDistance(key, known); distance < least) {
        least = distance;
        nearest = known;
      }
    }
  };
  look(kOwnKeys);
  look(kGateKeys);
  look(SettingKeys());
  return nearest;
}

}  // namespace

std::vector<std::string> UnknownSettings(const Settings& settings) {
  std::vector<std::string> problems;
  for (const Settings::Entry& entry : settings.Entries()) {
    const std::string line = entry.key + "=" + entry.value;
    if (IsKnown(entry.key)) {
      if (!IsUsable(entry)) {
        problems.push_back("\"" + line + "\" has a value that makes no sense; it is not used.");
      }
      continue;
    }
    const std::string_view nearest = NearestKey(entry.key);
    problems.push_back("\"" + line + "\" is not a setting; it is not used" +
                       (nearest.empty() ? "." : " (" + std::string(nearest) + "?)."));
  }
  return problems;
}

std::string UnitProblem(Job& job) {
  const auto mode = ReadRawMode(job);
  if (!mode || !mode->unit || *mode->unit == job.options.unit) return {};
  return "The job's unit is " + std::string(UnitName(job.options.unit)) + ", but its raw file " +
         RawFilePath(job) + " was begun in " + std::string(UnitName(*mode->unit)) +
         ": its settings were lost or changed. Put units=" + std::string(UnitKey(*mode->unit)) +
         " back into " + PathWithExtension(job.path, "job") + "; until then nothing is stored.";
}

}  // namespace tarvex
