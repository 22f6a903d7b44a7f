#include "app/workflow/position_checks.h"

#include <algorithm>
#include <cmath>

#include "coordsys/ellipsoids.h"
#include "core/coordinates/point_list.h"
#include "core/text/number_text.h"

namespace tarvex {
namespace {

// The zones of a transverse Mercator are made so that distances are true to a few parts in ten
// thousand; a system for a continent may stretch them by parts in a hundred.
constexpr double kOddStretchOfZone = 0.01;
constexpr double kOddStretch = 0.04;
constexpr double kOddDistanceM = 50000.0;

// The radius of curvature of the meridian on WGS84.
double MeridianRadiusM(double latitudeRad) {
  const double e2 = kWgs84.flattening * (2.0 - kWgs84.flattening);
  const double sine = std::sin(latitudeRad);
  return kWgs84.semiMajorM * (1.0 - e2) / std::pow(1.0 - e2 * sine * sine, 1.5);
}

// How much longer a short line to the north is on the grid than on the ellipsoid, as a ratio.
double Stretch(const CTrgCalculator& calculator, const GnssPositionState& state,
               const GridPoint& at, DistanceUnit unit) {
  constexpr double kStepRad = 1e-5;  // 64 m
  GridPoint north;
  const CalculationResult result =
      calculator.ToGrid({.latitudeRad = state.latitude * kRadiansPerDegree + kStepRad,
                         .longitudeRad = state.longitude * kRadiansPerDegree,
                         .heightM = state.height},
                        north);
  if (result != CalculationResult::Done && result != CalculationResult::DoneInPart) return 1.0;
  const double grid = std::hypot(north.northing - at.northing, north.easting - at.easting);
  return ToMetres(grid, unit) / (kStepRad * MeridianRadiusM(state.latitude * kRadiansPerDegree));
}

double OddStretch(const CTrgCalculator& calculator) {
  const auto type = static_cast<ProjectionType>(calculator.record().projectionType);
  return type == ProjectionType::TransverseMercator || type == ProjectionType::TransverseMercator27
             ? kOddStretchOfZone
             : kOddStretch;
}

// The neighbouring zone makes coordinates that look like any others. The zones of UTM are 6 degrees
// wide, with the exceptions of Norway and Svalbard up to 12; a site may reach over an edge.
std::string ZoneWarning(const CTrgCalculator& calculator, const GnssPositionState& state) {
  constexpr double kUtmScale = 0.9996;
  constexpr double kUtmFalseEastingM = 500000.0;
  constexpr double kExceptionsFromDeg = 56.0;
  const ProjectionRecord& record = calculator.record();
  if (static_cast<ProjectionType>(record.projectionType) != ProjectionType::TransverseMercator ||
      record.scaleFactor != kUtmScale || record.falseEastingM != kUtmFalseEastingM) {
    return {};
  }
  const double offDeg =
      std::fabs(std::remainder(state.longitude - record.centralMeridianDeg, 360.0));
  if (offDeg <= (state.latitude < kExceptionsFromDeg ? 3.5 : 6.5)) return {};
  return "The position is " + FixedNumber(offDeg, 1) +
         " degrees of longitude from the middle of the zone of the job's coordinate system, which "
         "reaches 3. Is it the right one?";
}

// Zones that count from the equator have one false northing north of it and another one south.
std::string HemisphereWarning(const CTrgCalculator& calculator, const GnssPositionState& state) {
  constexpr double kSouthernNorthingM = 1.0e7;
  constexpr double kNearEquatorDeg = 1.0;
  const ProjectionRecord& record = calculator.record();
  if (record.latitudeOfOriginDeg != 0.0 || std::fabs(state.latitude) < kNearEquatorDeg) return {};
  const bool south = record.falseNorthingM == kSouthernNorthingM;
  const bool north = record.falseNorthingM == 0.0 && record.falseEastingM > 0.0;
  if (!(south && state.latitude > 0.0) && !(north && state.latitude < 0.0)) return {};
  return std::string("The position is ") + (south ? "north" : "south") +
         " of the equator, and the job's coordinate system is a zone of the " +
         (south ? "southern" : "northern") + " hemisphere. Is it the right one?";
}

std::string Kilometres(double metres) {
  return FixedNumber(metres / 1000.0, 0) + " km";
}

}  // namespace

std::vector<std::string> SystemWarnings(const CTrgCalculator& calculator) {
  const CalculationSteps& steps = calculator.steps();
  if (steps.geoid || steps.localization) return {};
  return {"Elevations are heights above the ellipsoid: the job has no geoid and no localization."};
}

std::vector<std::string> PlaceWarnings(Job& job, const CTrgCalculator& calculator,
                                       const GnssPositionState& state, const GridPoint& at) {
  std::vector<std::string> warnings;
  const double stretch = Stretch(calculator, state, at, job.options.unit);
  if (!calculator.steps().localization && std::fabs(stretch - 1.0) > OddStretch(calculator)) {
    warnings.push_back(
        "The grid makes distances here " + FixedNumber(std::fabs(stretch - 1.0) * 100.0, 1) +
        (stretch > 1.0 ? " % longer" : " % shorter") +
        " than they are: the position is far outside the zone of the job's coordinate "
        "system. Is it the right one?");
  } else if (std::string zone = ZoneWarning(calculator, state);
             !calculator.steps().localization && !zone.empty()) {
    warnings.push_back(std::move(zone));
  }
  if (std::string hemisphere = HemisphereWarning(calculator, state); !hemisphere.empty()) {
    warnings.push_back(std::move(hemisphere));
  }
  PointList points;
  if (LoadAllPoints(job, points) != LoadPointsResult::Loaded || points.empty()) return warnings;
  const auto distance = [&at](const Point& point) {
    return std::hypot(at.northing - point.at.northing, at.easting - point.at.easting);
  };
  const Point& nearest =
      *std::min_element(points.begin(), points.end(),
                        [&](const Point& a, const Point& b) { return distance(a) < distance(b); });
  const double away = ToMetres(distance(nearest), job.options.unit);
  if (away > kOddDistanceM) {
    warnings.push_back("The position is " + Kilometres(away) + " from point " + nearest.id.str() +
                       " of the job, and no other is nearer. Are the job and its coordinate "
                       "system the right ones?");
  }
  return warnings;
}

}  // namespace tarvex
