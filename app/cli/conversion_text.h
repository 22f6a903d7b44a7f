// The steps of a conversion in words.
#pragma once

#include <string>

#include "app/cli/json_text.h"
#include "coordsys/chain/calculator.h"

namespace tarvex {

/// The value after every step, a line each, indented: what the step is, the value, and the
/// parameters, grid or geoid that made it; where a step was not made, why.
std::string ExplanationText(const CalculationReport& report);

/// The same as a list: "step", "status" ("done", "left undone", "refused", "library missing"), the
/// value ("latitude", "longitude" in degrees and "height"; "northing", "easting", "elevation";
/// "undulation"), "point_scale", "by" and "reason", each only where there is one. Metres, but for
/// the last step "job" in the job's unit.
Json ExplanationJson(const CalculationReport& report);

}  // namespace tarvex
