#include "app/workflow/recovered_settings.h"

#include "app/workflow/known_settings.h"
#include "app/workflow/raw_positions.h"
#include "core/coordinates/coordinate_file.h"
#include "core/raw_data/raw_header.h"
#include "core/text/number_text.h"
#include "core/text/text.h"

namespace tarvex {
namespace {

constexpr std::string_view kSystem = "--Coordinate System: ";
constexpr std::string_view kShift = ", datum shift ";
constexpr std::string_view kLocalization = "--Localization: ";

// The last of the comments with this beginning; empty when there is none.
std::string_view LastOf(std::string_view rawFile, std::string_view beginning) {
  std::string_view last;
  while (const auto line = TakeLine(rawFile)) {
    if (line->starts_with(beginning)) last = line->substr(beginning.size());
  }
  return last;
}

bool HoldsPoints(Job& job) {
  const auto stream = OpenForReading(job);
  return stream && stream->recordCount() > 0;
}

void TakeSystem(std::string_view title, Settings& settings) {
  if (title.empty() || title == "none") return;
  const std::size_t shift = title.find(kShift);
  settings.Set("system", title.substr(0, shift));
  if (shift != std::string_view::npos) {
    settings.Set("datum_shift", title.substr(shift + kShift.size()));
  }
}

}  // namespace

RecoveredSettings RecoverSettings(Job& job) {
  RecoveredSettings found;
  std::string raw;
  std::string problem;
  const bool isRead = ReadRawFile(job, raw, problem);
  const auto mode = isRead ? ParseRawMode(raw) : std::nullopt;
  const std::string settingsCommand = "`tarvex settings " + job.path;
  if (!mode || !mode->unit) {
    found.taken = "metres, azimuths from north and no coordinate system are assumed.";
    if (HoldsPoints(job)) {
      found.storingProblem = "No raw file says in which unit the points of " + job.path +
                             " are. Nothing is stored until it is known: " + settingsCommand +
                             " units=metres` (or us-feet, intl-feet) makes new settings.";
    }
    return found;
  }
  Settings& settings = found.settings;
  settings.Set("units", UnitKey(*mode->unit));
  if (mode->azimuthsFromSouth)
    settings.Set("azimuths", *mode->azimuthsFromSouth ? "south" : "north");
  if (mode->scaleFactor && *mode->scaleFactor > 0.0) {
    settings.Set("scale_factor", ShortestNumber(*mode->scaleFactor));
  }
  TakeSystem(LastOf(raw, kSystem), settings);
  found.taken = "unit (" + std::string(UnitName(*mode->unit)) +
                "), azimuths and coordinate system (" + settings.GetOr("system", "none") +
                ") are taken from the raw file; limits and " + "receiver settings are gone. " +
                settingsCommand + " units=" + std::string(UnitKey(*mode->unit)) +
                "` writes them down again.";
  const std::string_view localization = LastOf(raw, kLocalization);
  if (!localization.empty() && localization != "off") {
    const std::string file = PathWithExtension(job.path, "loc");
    settings.Set("localization", file.substr(file.rfind('/') + 1));
    settings.Set("localization_on", "1");
    found.storingProblem =
        "By its raw file the job used a localization, whose method was lost with the settings. "
        "Nothing is stored until you say what holds: `tarvex localize " +
        job.path + "` shows the fit of " + file + ", `--method` and `--heights` choose another, " +
        settingsCommand + " units=" + std::string(UnitKey(*mode->unit)) +
        "` takes it as it is, `tarvex localize " + job.path + " --off` works without it.";
  }
  return found;
}

}  // namespace tarvex
