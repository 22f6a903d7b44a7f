// A point stored as one unit with what else is written of it.
#pragma once

#include <functional>
#include <string>

#include "app/workflow/job_session.h"
#include "core/observations/job_unit.h"

namespace tarvex {

enum class [[nodiscard]] StoringResult {
  Stored,
  Exists,      ///< and it was decided that it stays
  NoFreeId,    ///< behind the one that was wanted
  Failed,      ///< the files could not be written; reported
  StoredLater  ///< durable in the journal; reported, and work should not go on
};

struct StoredPoint {
  StoringResult result = StoringResult::Failed;
  Point point = {};
  std::optional<Point> replaced = {};  ///< the point of this id that there was
  std::string replacedQuality = {};    ///< the quality lines of its note
};

/// Adds to the unit what the raw file and the notes say of the stored point.
using PointRecords = std::function<void(JobUnit& unit, const Point& stored)>;

/// That the coordinate file keeps the beginning of a long description alone; empty for a short one.
std::string DescriptionWarning(std::string_view description);

/// Stores under the job's current point id, which the session's policy may change. A point that is
/// replaced is kept in the raw file as a comment.
StoredPoint StorePointUnit(JobSession& session, const GridPoint& at, const std::string& description,
                           Settling settling, const PointRecords& records);

}  // namespace tarvex
