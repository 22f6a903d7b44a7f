#include "app/workflow/control_point_source.h"

#include <utility>

#include "app/workflow/raw_positions.h"
#include "core/coordinates/coordinate_file.h"
#include "core/coordinates/point_store.h"
#include "core/points/point_id.h"

namespace tarvex {
namespace {

// The position of the mark, and the id that it was taken from.
struct KnownPosition {
  Geodetic gnss;
  std::string description;
};

OrProblem<KnownPosition> PositionOf(const ControlPointSource& source, Job& job) {
  if (source.position) return KnownPosition{*source.position, {}};
  std::string raw;
  std::string problem;
  if (!ReadRawFile(job, raw, problem)) return ProblemOf(std::move(problem));
  const auto found = FindRawPosition(raw, NormalisePointId(source.gnssId).view(), job.options.unit);
  if (!found) {
    return ProblemOf("The raw file holds no GNSS position of point " + source.gnssId + ".");
  }
  return KnownPosition{*found, source.gnssId};
}

// The local coordinates, and the id that they were taken from.
struct KnownCoordinates {
  GridPoint at;
  std::string description;
};

OrProblem<KnownCoordinates> LocalOf(const ControlPointSource& source, Job& job) {
  if (source.local) return KnownCoordinates{*source.local, {}};
  const auto stream = OpenCoordinateFile(job);
  Point known;
  if (!stream || ReadPoint(job, source.knownId, stream.get(), known) != ReadPointResult::Found) {
    return ProblemOf("There is no point " + source.knownId + " in " + job.path + ".");
  }
  return KnownCoordinates{known.at, known.id.str()};
}

}  // namespace

OrProblem<LocalizationPoint> ReadControlPoint(const ControlPointSource& source, Job& job) {
  const auto position = PositionOf(source, job);
  if (!position) return position.failure();
  const auto local = LocalOf(source, job);
  if (!local) return local.failure();
  LocalizationPoint point;
  point.gnss = position->gnss;
  point.localX = local->at.easting;
  point.localY = local->at.northing;
  point.localZ = local->at.elevation;
  point.description = local->description.empty() ? position->description : local->description;
  if (!source.description.empty()) point.description = source.description;
  point.hrms = source.hrms;
  point.vrms = source.vrms;
  point.useHorizontal = source.useHorizontal ? 'Y' : 'N';
  point.useVertical = source.useVertical ? 'Y' : 'N';
  return point;
}

}  // namespace tarvex
