// Storing one point under an id that a person gave, in the coordinate file and the raw file.
#pragma once

#include <string>
#include <string_view>

#include "app/workflow/job_session.h"
#include "core/point.h"

namespace tarvex {

/// "overwrite", "next" and "cancel"; anything else asks.
ExistingPolicy ParseExistingPolicy(std::string_view name);

/// What is wrong with an entered id for this job (opened before), in a sentence; empty when nothing
/// is.
std::string PointIdProblem(const Job& job, std::string_view id);

/// Makes an entered id the job's current one; false after a message. An id that is cut is told.
bool TakePointId(Program& program, Job& job, std::string_view id);

enum class Announce { OnOutput, OnErrors };  ///< the latter beside JSON

/// Stores, journals and tells; coordinates in the job's unit. The session decides what happens to a
/// point that exists.
ExitCode StoreUnderId(Program& program, JobSession& session, const std::string& id,
                      const GridPoint& at, const std::string& description,
                      Announce announce = Announce::OnOutput);

}  // namespace tarvex
