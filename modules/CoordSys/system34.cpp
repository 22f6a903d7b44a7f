#include "modules/CoordSys/system34.h"

#include <cmath>
#include <span>

#include "coordsys/datum/geocentric.h"
#include "coordsys/datum/seven_parameters.h"
#include "coordsys/projections/transverse_mercator.h"
#include "core/units/units.h"
#include "modules/CoordSys/system34_tables.h"

namespace tarvex {
namespace {

constexpr Ellipsoid kInternational = {6378388.0, 1.0 / 297.0};
constexpr SevenParameters kEd50 = {-81.0703, -89.3603, -115.7526, -0.48488,
                                   -0.02436, -0.41321, -0.540645};
constexpr int kMostPasses = 6;
constexpr double kClosedM = 1e-7;

// The polynomials of one system and the part of TC32 that they hold in.
struct Area {
  const System34Polynomial& toSystem;
  const System34Polynomial& fromSystem;
  std::span<const GridVertex> polygon;
};

const Projection& Tc32() {
  static const MadeProjection made = [] {
    ProjectionParameters parameters;
    parameters.ellipsoid = kInternational;
    parameters.centralMeridianRad = 9.0 * kRadiansPerDegree;
    parameters.scaleFactor = 0.9996;
    parameters.falseEastingM = 500000.0;
    return MakeTransverseMercator(parameters);
  }();
  return **made;
}

// sum_i outer^i sum_j c[i][j] inner^j, both from the highest power down.
double Sum(int degree, const double* coefficients, double outer, double inner) {
  int end = (degree + 1) * (degree + 2) / 2;
  double sum = 0.0;
  for (int i = degree; i >= 0; --i) {
    const int count = degree + 1 - i;
    double row = 0.0;
    for (int j = 1; j <= count; ++j) row = row * inner + coefficients[end - j];
    end -= count;
    sum = sum * outer + row;
  }
  return sum;
}

PlanePoint Apply(const System34Polynomial& polynomial, PlanePoint at) {
  const double n = at.northingM - polynomial.originNorth;
  const double e = at.eastingM - polynomial.originEast;
  return {Sum(polynomial.degree, polynomial.north, e, n),
          Sum(polynomial.degree, polynomial.east, n, e)};
}

bool Holds(std::span<const GridVertex> polygon, PlanePoint at) {
  bool inside = false;
  for (std::size_t i = 0, j = polygon.size() - 1; i < polygon.size(); j = i++) {
    const GridVertex& a = polygon[i];
    const GridVertex& b = polygon[j];
    if ((a.north > at.northingM) == (b.north > at.northingM)) continue;
    const double crossing =
        a.east + (at.northingM - a.north) / (b.north - a.north) * (b.east - a.east);
    if (at.eastingM < crossing) inside = !inside;
  }
  return inside;
}

// UTM 32 has one polynomial for the land west of the Sound and another for Bornholm.
constexpr double kWestOfBornholm = 775000.0;

Area AreaOf(DanishSystem system, double eastingM) {
  switch (system) {
    case DanishSystem::Jutland:
      return {kToJutland, kFromJutland, kJutlandArea};
    case DanishSystem::Zealand:
      return {kToZealand, kFromZealand, kZealandArea};
    case DanishSystem::Bornholm:
      return {kToBornholm, kFromBornholm, kBornholmArea};
    case DanishSystem::Utm32:
      break;
  }
  if (eastingM < kWestOfBornholm) return {kToUtm32Land, kFromUtm32Land, kLandArea};
  return {kToUtm32Bornholm, kFromUtm32Bornholm, kBornholmArea};
}

LatLon Wgs84ToEd50(LatLon wgs84) {
  static const GeocentricFrame toEarth(kGrs80);
  static const GeocentricFrame toEd50(kInternational);
  const Geocentric earth = toEarth.ToGeocentric({wgs84.latitudeRad, wgs84.longitudeRad, 0.0});
  const Geodetic ed50 = toEd50.ToGeodetic(TranslateUnrotateScale(InverseArguments(kEd50), earth));
  return {ed50.latitudeRad, ed50.longitudeRad};
}

// The WGS84 position of height 0 of this ED50 latitude and longitude.
LatLon Ed50ToWgs84(LatLon ed50) {
  static const GeocentricFrame toEarth(kGrs80);
  static const GeocentricFrame toEd50(kInternational);
  Geodetic onEd50{ed50.latitudeRad, ed50.longitudeRad, 0.0};
  Geodetic wgs84;
  for (int pass = 0; pass < 3; ++pass) {
    wgs84 = toEarth.ToGeodetic(
        RotateScaleTranslate(ForwardArguments(kEd50), toEd50.ToGeocentric(onEd50)));
    onEd50.heightM -= wgs84.heightM;
  }
  return {wgs84.latitudeRad, wgs84.longitudeRad};
}

}  // namespace

std::optional<PlanePoint> ToDanishSystem(DanishSystem system, LatLon wgs84) {
  PlanePoint tc32;
  if (Tc32().Forward(Wgs84ToEd50(wgs84), tc32) != ProjectionResult::Done) return std::nullopt;
  const Area area = AreaOf(system, tc32.eastingM);
  if (!Holds(area.polygon, tc32)) return std::nullopt;
  return Apply(area.toSystem, tc32);
}

std::optional<LatLon> FromDanishSystem(DanishSystem system, PlanePoint point) {
  const Area area = AreaOf(system, point.eastingM);
  PlanePoint tc32 = Apply(area.fromSystem, point);
  for (int pass = 0; pass < kMostPasses; ++pass) {
    if (!Holds(area.polygon, tc32)) return std::nullopt;
    const PlanePoint reached = Apply(area.toSystem, tc32);
    if (std::hypot(reached.northingM - point.northingM, reached.eastingM - point.eastingM) <
        kClosedM) {
      LatLon ed50;
      if (Tc32().Inverse(tc32, ed50) != ProjectionResult::Done) return std::nullopt;
      return Ed50ToWgs84(ed50);
    }
    const PlanePoint wanted = Apply(area.fromSystem, point);
    const PlanePoint given = Apply(area.fromSystem, reached);
    tc32.northingM += wanted.northingM - given.northingM;
    tc32.eastingM += wanted.eastingM - given.eastingM;
  }
  return std::nullopt;
}

}  // namespace tarvex
