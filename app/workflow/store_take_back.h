// A store of this session that is taken back: the point leaves the job, or is again what it was
// before. Nothing is erased from the raw file; a comment there says what was taken back.
#pragma once

#include "app/workflow/point_unit.h"

namespace tarvex {

enum class [[nodiscard]] TakeBackResult {
  TakenBack,
  Changed,  ///< the point is no longer what was stored; nothing was done
  Failed    ///< told; with work that is kept in the journal as well
};

/// The id is the job's current one afterwards. A point that the store had replaced is written again
/// as it was measured, with its quality, where the raw file and the notes had both; else with its
/// coordinates alone.
TakeBackResult TakeBackStore(JobSession& session, const StoredPoint& stored);

}  // namespace tarvex
