// One measured position becomes one point of the job: its grid coordinates, its record in the
// coordinate file, what the raw file says of it, and its note. Collecting and staking both store
// through here, so that a point is journaled in the same way wherever it came from.
#pragma once

#include <string>
#include <vector>

#include "app/workflow/collected_point.h"
#include "app/workflow/point_unit.h"
#include "coordsys/chain/calculator.h"

namespace tarvex {

/// A position on the job's grid, and how it came there.
struct GridPosition {
  GridPoint at;  ///< of the mark: the antenna height is taken off
  CalculationResult result = CalculationResult::NoSystem;
  CalculationReport steps;

  bool usable() const {
    return result == CalculationResult::Done || result == CalculationResult::DoneInPart;
  }
};

/// Why a position that is not usable has no grid coordinates, and what to look at.
std::string NoGridText(const GridPosition& position);

/// `antennaHeight` is in the job's unit.
GridPosition PlaceOnGrid(const GnssPositionState& state, const CTrgCalculator& calculator,
                         double antennaHeight, DistanceUnit unit);

struct Observation {
  CollectedPoint point;
  GridPosition position;
  std::string description;
  double antennaHeight = 0.0;  ///< above the point, job's unit
  int makeCode = 0;
  bool expectsPrecision = true;            ///< false for a receiver that is known to send none
  std::vector<std::string> setup = {};     ///< records before the observation
  std::vector<std::string> comments = {};  ///< further comment records behind the observation
};

/// Stores under the job's current point id. What PositionWarnings says goes into the raw file too.
StoredPoint StoreObservation(JobSession& session, const Observation& observation,
                             Settling settling);

/// What a person should know of a stored position: no height, not measured, and no precision where
/// one is expected.
std::vector<std::string> PositionWarnings(const GnssPositionState& state, bool expectsPrecision);

}  // namespace tarvex
