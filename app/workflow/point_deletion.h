// A point that leaves the job: its record and its note go, the raw file keeps what it was.
#pragma once

#include <string>

#include "app/workflow/job_session.h"

namespace tarvex {

enum class [[nodiscard]] DeletionResult {
  Deleted,
  NotFound,
  Failed  ///< told; with work that is kept in the journal as well
};

/// `deleted` is what the point was.
DeletionResult DeleteJobPoint(JobSession& session, const std::string& id, Point& deleted);

}  // namespace tarvex
