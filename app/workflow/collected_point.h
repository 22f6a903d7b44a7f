// What became of a receiver's epochs before they are stored as one point, and how the raw file
// tells it.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "coordsys/chain/calculator.h"
#include "gnss/corrections/rtcm_messages.h"
#include "gnss/position/position_state.h"
#include "gnss/quality/averaging.h"

namespace tarvex {

struct CollectedPoint {
  GnssPositionState state;               ///< one epoch, or the mean of several
  std::optional<AveragedPosition> mean;  ///< of several
  std::optional<BaseStation> base;       ///< of the corrections that came lately
  std::string overridden;                ///< the limit that was not kept and overridden
};

/// The comment records behind the quality of a stored point: its epoch, the age and the base of its
/// corrections, how the receiver's height became the
/// elevation, the scatter of an average, a limit that was overridden. `antennaHeight` and
/// `elevation` are in the job's unit; `steps` are the calculator's.
std::vector<std::string> CollectionRecords(const CollectedPoint& point,
                                           const CalculationReport& steps, double antennaHeight,
                                           double elevation, DistanceUnit unit);

}  // namespace tarvex
