// A total station's work on the job's files: setting up over a point, and storing shots. The shots'
// coordinates are computed above; here they are stored and journaled, each as one unit.
#pragma once

#include <string>

#include "core/coordinates/coordinate_file.h"
#include "core/coordinates/point_store.h"
#include "core/job/job.h"
#include "core/raw_data/raw_file.h"
#include "core/raw_data/raw_shot.h"

namespace tarvex {

/// The instrument over a point, sighted to its backsight.
struct SetupEntry {
  std::string occupiedId;
  std::string backsightId = {};  ///< empty for an entered azimuth
  double azimuthDegrees = 0.0;   ///< to the backsight, from north
  double circleDegrees = 0.0;    ///< circle reading on the backsight
  double instrumentHeight = 0.0;
  double rodHeight = 0.0;
};

/// Journals the setup (OC with the coordinates of the occupied point when the file holds it, LS,
/// BK) and remembers it as the job's current setup.
RawFileResult OccupyAndBacksight(Job& job, const SetupEntry& entry);

enum class ShotKind { Sideshot, Traverse };

/// What storing a shot came to: the store's result, and whether the record was written. Nothing is
/// written when the point was not stored.
struct ShotResult {
  StorePointResult stored = StorePointResult::Nothing;
  RawFileResult record = RawFileResult::Dropped;
};

/// Stores the foresight point under the shot's id together with its SS or TR record.
ShotResult StoreShot(Job& job, ShotKind kind, const Shot& shot, const GridPoint& at,
                     bool checkExisting);

}  // namespace tarvex
