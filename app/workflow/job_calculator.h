// The way from WGS84 to the coordinates of a job: its system, datum shift, geoid and localization.
#pragma once

#include <string>

#include "app/workflow/coordinate_systems.h"
#include "app/workflow/job_session.h"

namespace tarvex {

/// False with a sentence in `problem` when the job has no way to its coordinates. A localization
/// that the job has and does not use gives a warning. `systems` is used for as long as the
/// calculator is.
[[nodiscard]] bool MakeJobCalculator(JobSession& session, CoordinateSystems& systems,
                                     CTrgCalculator& calculator, std::string& problem);

}  // namespace tarvex
