// Measured points of a job computed anew from their positions in the raw file, after its
// localization or coordinate system has changed. What was typed, shot or edited is never touched.
#pragma once

#include <string>
#include <vector>

#include "app/workflow/job_session.h"
#include "coordsys/chain/calculator.h"

namespace tarvex {

struct RecomputedPoint {
  Point stored;
  GridPoint now;
};

/// Why a point keeps its coordinates.
enum class RecomputeReason {
  Typed,         ///< or shot with a total station
  NoPosition,    ///< the raw file holds none
  Edited,        ///< its coordinates are not those of its observation
  NotConverted,  ///< its position has no grid coordinates now
  NotFound       ///< the job has no such point
};

struct PointLeft {
  std::string id;
  RecomputeReason reason;
};

struct RecomputePlan {
  std::vector<RecomputedPoint> moved;  ///< by a tenth of a millimetre or more
  std::size_t unmoved = 0;
  std::vector<PointLeft> left;
};

/// What would become of these points, or of all without `ids`. Nothing after a message when the
/// files cannot be read.
std::optional<RecomputePlan> PlanRecompute(JobSession& session, const CTrgCalculator& calculator,
                                           const std::vector<std::string>& ids);

/// Stores all that moved as one unit, with what each was in the raw file. False after a message;
/// the job is then as before.
[[nodiscard]] bool Recompute(JobSession& session, const RecomputePlan& plan);

}  // namespace tarvex
