// A new control point of a localization from what the person gave: a position typed or of the raw
// file, local coordinates typed or of a point of the job.
#pragma once

#include "app/cli/commands/localize_options.h"
#include "app/cli/program.h"
#include "coordsys/localization/localization_points.h"
#include "core/job.h"

namespace tarvex {

/// Anything but Done was told.
ExitCode ReadControlPoint(const LocalizeOptions& options, Job& job, Program& program,
                          LocalizationPoint& point);

}  // namespace tarvex
