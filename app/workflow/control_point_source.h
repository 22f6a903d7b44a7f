// A new control point of a localization: a position that was typed or that the raw file holds, and
// local coordinates that were typed or are those of a point of the job.
#pragma once

#include <optional>
#include <string>

#include "coordsys/localization/localization_points.h"
#include "core/job/job.h"
#include "core/text/outcome.h"

namespace tarvex {

struct ControlPointSource {
  std::optional<Geodetic> position;  ///< WGS84; without it the last one of `gnssId`
  std::string gnssId;
  std::optional<GridPoint> local;  ///< in the job's unit; without it those of `knownId`
  std::string knownId;
  std::string description;  ///< empty: the id of the point that it was taken from
  double hrms = 0.0;
  double vrms = 0.0;
  bool useHorizontal = true;
  bool useVertical = true;
};

/// The control point, or which point that was named is not there.
OrProblem<LocalizationPoint> ReadControlPoint(const ControlPointSource& source, Job& job);

}  // namespace tarvex
