// The comment lines with which work on a job begins in its raw file: what was in force when the
// records that follow were made.
#pragma once

#include <string>
#include <vector>

#include "coordsys/chain/calculator.h"
#include "core/job/settings.h"
#include "core/raw_data/raw_records.h"

namespace tarvex {

/// What the command that begins the work knows; what it does not know gets no line.
struct SetupFacts {
  std::string systemTitle;                     ///< empty: the job has no coordinate system
  const CTrgCalculator* calculator = nullptr;  ///< with the job's steps; null without a system
  bool usesAntenna = false;
  std::string antennaType = {};  ///< as the job's settings name it; empty: not known
  HeightKind antennaHeight = HeightKind::Vertical;
};

/// The antenna that a job's settings name (`antenna`).
std::string AntennaOfSettings(const Settings& settings);

/// "--Coordinate System: ...", "--dX: ..." with "--WGS84 raw positions ..." where seven parameters
/// shift the datum, "--Elevation: 3D", "--Antenna Type: ..., Vertical", as raw records.
std::vector<std::string> SetupComments(const SetupFacts& facts);

}  // namespace tarvex
