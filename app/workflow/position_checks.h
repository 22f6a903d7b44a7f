// Whether positions can be where the job is: what a person should hear before the first point is
// stored, because it shows only in the office otherwise.
#pragma once

#include <string>
#include <vector>

#include "coordsys/chain/calculator.h"
#include "core/job/job.h"
#include "gnss/position/position_state.h"

namespace tarvex {

/// What is to be known of the system itself: elevations without a geoid.
std::vector<std::string> SystemWarnings(const CTrgCalculator& calculator);

/// What is odd about the place of a position, in sentences: the grid stretches distances there as
/// it does only far outside its zone, or the job's points are elsewhere. `at` is the position on
/// the job's grid.
std::vector<std::string> PlaceWarnings(Job& job, const CTrgCalculator& calculator,
                                       const GnssPositionState& state, const GridPoint& at);

}  // namespace tarvex
