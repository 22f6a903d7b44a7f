// The localization of a job: its file beside the job, how it is to be fitted, and the calculator's
// last step made of it.
//
// Settings: `localization` is the file's name, from the job's folder; without it, or with
// `localization_on` 0, the job has none. `localization_method` is similarity, fixed-scale, rotation
// or translation, `localization_scale` the scale that is given, `localization_heights` shift or
// plane.
#pragma once

#include <string>

#include "coordsys/localization/localization_file.h"
#include "coordsys/localization/localization_report.h"
#include "core/job/job.h"
#include "core/job/settings.h"
#include "core/text/outcome.h"

namespace tarvex {

struct JobLocalization {
  std::string path;  ///< of the ".loc" file; empty when the job names none
  bool on = false;
  LocalizationMethod method;
};

/// Reads the settings, or says which value makes no sense.
OrProblem<JobLocalization> ReadJobLocalization(const Settings& settings,
                                               const std::string& jobPath);
void PutJobLocalization(const JobLocalization& localization, const std::string& jobPath,
                        Settings& settings);

/// The names of the methods in settings and options; empty optionals for unknown ones.
std::optional<HorizontalMethod> ParseHorizontalMethod(std::string_view name);
std::string_view HorizontalMethodKey(HorizontalMethod method);
std::optional<VerticalMethod> ParseVerticalMethod(std::string_view name);
std::string_view VerticalMethodKey(VerticalMethod method);

/// Gives the calculator the localization that the job has on; nothing is done for a job without
/// one. False with a sentence in `problem` when the file cannot be used: the job must not go on
/// without its localization.
[[nodiscard]] bool ApplyJobLocalization(Job& job, const Settings& settings,
                                        CTrgCalculator& calculator, std::string& problem);

/// What must be said where coordinates are made for a job that has control points and whose
/// localization is off, in a sentence; empty for any other job.
std::string LocalizationOffNotice(Job& job, const Settings& settings);

}  // namespace tarvex
