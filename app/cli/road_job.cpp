#include "app/cli/road_job.h"

#include "core/coordinates/coordinate_file.h"
#include "core/coordinates/point_store.h"

namespace tarvex {

std::unique_ptr<JobSession> OpenRoadJob(Program& program, const std::string& path,
                                        const OpenedRoad& road) {
  auto session = std::make_unique<JobSession>(program, path);
  if (!session->LoadExisting()) {
    program.exitCode = ExitCode::Failed;
    return nullptr;
  }
  if (session->job().options.unit == road.unit) return session;
  (void)program.Misuse("The job is in " + std::string(UnitName(session->job().options.unit)) +
                       ", the road in " + std::string(UnitName(road.unit)) + " (--unit).");
  return nullptr;
}

std::optional<PointList> PointsOfJob(Program& program, JobSession& session,
                                     const std::vector<std::string>& ids) {
  Job& job = session.job();
  program.exitCode = ExitCode::Failed;  // until it is done
  PointList points;
  if (ids.empty() && LoadAllPoints(job, points) != LoadPointsResult::Loaded) return std::nullopt;
  const auto stream = ids.empty() ? nullptr : OpenForReading(job);
  if (!ids.empty() && !stream) return std::nullopt;
  for (const std::string& id : ids) {
    Point point;
    if (ReadPoint(job, id, stream.get(), point) != ReadPointResult::Found) {
      (void)program.Fail("There is no point " + id + " in " + job.path + ".");
      return std::nullopt;
    }
    points.push_back(point);
  }
  program.exitCode = ExitCode::Done;
  return points;
}

}  // namespace tarvex
