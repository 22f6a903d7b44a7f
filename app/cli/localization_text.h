// What a localization came to, for people and for programs.
#pragma once

#include <string>

#include "app/cli/json_text.h"
#include "coordsys/localization/localization_report.h"
#include "core/units/units.h"

namespace tarvex {

/// A table of the points with their residuals, the parameters, and the warnings.
std::string LocalizationReportText(const LocalizationReport& report, DistanceUnit unit);

/// The control points as they are kept, local coordinates in the job's unit.
std::string ControlListText(const LocalizationList& list);
Json ControlListJson(const LocalizationList& list);

/// The report as JSON: metres, degrees and parts per million.
Json LocalizationReportJson(const LocalizationReport& report);

}  // namespace tarvex
