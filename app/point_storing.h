// Storing one point under an id that a person gave, in the coordinate file and the raw file.
#pragma once

#include <string>
#include <string_view>

#include "app/job_session.h"
#include "core/point.h"

namespace tarvex {

/// "overwrite", "next" and "cancel"; anything else asks.
ExistingPolicy ParseExistingPolicy(std::string_view name);

/// Stores, journals and tells; coordinates in the job's unit. The session decides what happens to a
/// point that exists.
ExitCode StoreUnderId(Program& program, JobSession& session, const std::string& id,
                      const GridPoint& at, const std::string& description);

}  // namespace tarvex
