#include "app/workflow/job_place.h"

#include <cmath>
#include <numbers>

#include "app/workflow/job_calculator.h"
#include "core/coordinates/coordinate_file.h"
#include "core/coordinates/point_store.h"
#include "core/text/text.h"
#include "core/units/no_value.h"

namespace tarvex {
namespace {

WayToPoint WayTo(const Point& point, const GridPoint& from, bool hasElevation) {
  WayToPoint way{.id = point.id.str(),
                 .north = point.at.northing - from.northing,
                 .east = point.at.easting - from.easting,
                 .up = {}};
  way.distance = std::hypot(way.north, way.east);
  way.azimuthRad = std::atan2(way.east, way.north);
  if (way.azimuthRad < 0.0) way.azimuthRad += 2.0 * std::numbers::pi;
  if (hasElevation && !IsNoValue(point.at.elevation)) way.up = point.at.elevation - from.elevation;
  return way;
}

}  // namespace

JobPlaces::JobPlaces(const Workplace& work, const std::string& jobPath)
    : session_(work, jobPath), systems_(work) {}

bool JobPlaces::Open(const std::string& toPoint, std::string& problem) {
  problem.clear();
  if (!session_.LoadExisting()) return false;
  unit_ = session_.job().options.unit;
  if (!MakeJobCalculator(session_, systems_, calculator_, problem)) return false;
  if (toPoint.empty()) return true;
  Job& job = session_.job();
  const auto stream = OpenForReading(job);
  Point point;
  if (!stream) return false;
  if (ReadPoint(job, toPoint, stream.get(), point) != ReadPointResult::Found) {
    problem = job.path + " has no point \"" + OneLine(toPoint) + "\".";
    return false;
  }
  to_ = point;
  return true;
}

JobPlace JobPlaces::Of(const GnssPositionState& state, double antennaHeight) const {
  JobPlace place{.position = PlaceOnGrid(state, calculator_, antennaHeight, unit_),
                 .hasElevation = state.heightKnown,
                 .way = {}};
  if (to_ && place.position.usable()) place.way = WayTo(*to_, place.position.at, state.heightKnown);
  return place;
}

}  // namespace tarvex
