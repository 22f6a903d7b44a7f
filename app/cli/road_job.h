// The job that road commands take points from and store points into.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "app/cli/road_file.h"
#include "app/workflow/job_session.h"
#include "core/coordinates/point_list.h"

namespace tarvex {

/// Opens a job that exists and has the road's unit; nothing after a message.
std::unique_ptr<JobSession> OpenRoadJob(Program& program, const std::string& path,
                                        const OpenedRoad& road);

/// The points of these ids, or all points without ids; nothing after a message.
std::optional<PointList> PointsOfJob(Program& program, JobSession& session,
                                     const std::vector<std::string>& ids);

}  // namespace tarvex
