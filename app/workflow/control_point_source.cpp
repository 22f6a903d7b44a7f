#include "app/workflow/control_point_source.h"

#include "app/workflow/raw_positions.h"
#include "core/coordinates/coordinate_file.h"
#include "core/coordinates/point_store.h"
#include "core/points/point_id.h"

namespace tarvex {
namespace {

bool TakePosition(const ControlPointSource& source, Job& job, LocalizationPoint& point,
                  std::string& problem) {
  if (source.position) {
    point.gnss = *source.position;
    return true;
  }
  std::string raw;
  if (!ReadRawFile(job, raw, problem)) return false;
  const auto found = FindRawPosition(raw, NormalisePointId(source.gnssId).view(), job.options.unit);
  if (!found) {
    problem = "The raw file holds no GNSS position of point " + source.gnssId + ".";
    return false;
  }
  point.gnss = *found;
  point.description = source.gnssId;
  return true;
}

bool TakeLocal(const ControlPointSource& source, Job& job, LocalizationPoint& point,
               std::string& problem) {
  GridPoint at;
  if (source.local) {
    at = *source.local;
  } else {
    const auto stream = OpenCoordinateFile(job);
    Point known;
    if (!stream || ReadPoint(job, source.knownId, stream.get(), known) != ReadPointResult::Found) {
      problem = "There is no point " + source.knownId + " in " + job.path + ".";
      return false;
    }
    at = known.at;
    point.description = known.id.str();
  }
  point.localX = at.easting;
  point.localY = at.northing;
  point.localZ = at.elevation;
  return true;
}

}  // namespace

bool ReadControlPoint(const ControlPointSource& source, Job& job, LocalizationPoint& point,
                      std::string& problem) {
  LocalizationPoint made;
  if (!TakePosition(source, job, made, problem) || !TakeLocal(source, job, made, problem)) {
    return false;
  }
  made.hrms = source.hrms;
  made.vrms = source.vrms;
  made.useHorizontal = source.useHorizontal ? 'Y' : 'N';
  made.useVertical = source.useVertical ? 'Y' : 'N';
  if (!source.description.empty()) made.description = source.description;
  point = std::move(made);
  return true;
}

}  // namespace tarvex
