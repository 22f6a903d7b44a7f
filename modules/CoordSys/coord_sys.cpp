// The entry points of "CoordSys.dll" that project (coordsys/closed/coord_sys_interface.h describes
// them).
#include <algorithm>
#include <iterator>
#include <optional>

#include "coordsys/closed/coord_sys_interface.h"
#include "coordsys/projections/cassini_soldner.h"
#include "coordsys/projections/oblique_mercator.h"
#include "modules/CoordSys/eov.h"
#include "modules/CoordSys/system34.h"

namespace tarvex {
namespace {

constexpr int kDone = 1;
constexpr int kNotDone = 0;

int Give(const std::optional<PlanePoint>& point, double* northing, double* easting) {
  if (!point) return kNotDone;
  *northing = point->northingM;
  *easting = point->eastingM;
  return kDone;
}

int Give(const std::optional<LatLon>& position, double* latitude, double* longitude) {
  if (!position) return kNotDone;
  *latitude = position->latitudeRad;
  *longitude = position->longitudeRad;
  return kDone;
}

ProjectionParameters Parameters(const CoordSysParameters& given) {
  ProjectionParameters parameters;
  parameters.ellipsoid = {given.semiMajor, given.flattening};
  parameters.latitudeOfOriginRad = given.latitudeOfOrigin;
  parameters.centralMeridianRad = given.centralMeridian;
  parameters.parallel2OrAzimuthRad = given.azimuth;
  parameters.rectifiedAngleRad = given.rectifiedAngle;
  parameters.scaleFactor = given.scaleFactor;
  parameters.falseEastingM = given.falseEasting;
  parameters.falseNorthingM = given.falseNorthing;
  return parameters;
}

bool Same(const CoordSysParameters& a, const CoordSysParameters& b) {
  return a.semiMajor == b.semiMajor && a.flattening == b.flattening &&
         a.latitudeOfOrigin == b.latitudeOfOrigin && a.centralMeridian == b.centralMeridian &&
         a.azimuth == b.azimuth && a.rectifiedAngle == b.rectifiedAngle &&
         a.scaleFactor == b.scaleFactor && a.falseEasting == b.falseEasting &&
         a.falseNorthing == b.falseNorthing &&
         std::equal(std::begin(a.shift), std::end(a.shift), std::begin(b.shift));
}

// The constants of the parameters that were used last: they are derived once, not once a point.
template <MadeProjection (*make)(const ProjectionParameters&)>
const Projection* ProjectionOf(const CoordSysParameters* given) {
  struct Last {
    CoordSysParameters parameters;
    MadeProjection made;
  };
  thread_local std::optional<Last> last;
  if (!given) return nullptr;
  if (!last || !Same(last->parameters, *given)) {
    last.emplace(Last{*given, make(Parameters(*given))});
  }
  return last->made ? last->made->get() : nullptr;
}

const Eov* EovOf(const CoordSysParameters* given) {
  struct Last {
    CoordSysParameters parameters;
    Eov eov;
  };
  thread_local std::optional<Last> last;
  if (!given) return nullptr;
  if (!last || !Same(last->parameters, *given)) {
    last.emplace(Last{*given, Eov(*given)});
  }
  return &last->eov;
}

template <MadeProjection (*make)(const ProjectionParameters&)>
int ToGrid(double latitude, double longitude, double* northing, double* easting,
           const CoordSysParameters* given) {
  const Projection* projection = ProjectionOf<make>(given);
  PlanePoint point;
  if (!projection || projection->Forward({latitude, longitude}, point) != ProjectionResult::Done) {
    return kNotDone;
  }
  *northing = point.northingM;
  *easting = point.eastingM;
  return kDone;
}

template <MadeProjection (*make)(const ProjectionParameters&)>
int ToGeodetic(double northing, double easting, double* latitude, double* longitude,
               const CoordSysParameters* given) {
  const Projection* projection = ProjectionOf<make>(given);
  LatLon position;
  if (!projection || projection->Inverse({northing, easting}, position) != ProjectionResult::Done) {
    return kNotDone;
  }
  *latitude = position.latitudeRad;
  *longitude = position.longitudeRad;
  return kDone;
}

}  // namespace
}  // namespace tarvex

using namespace tarvex;

extern "C" [[gnu::visibility("default")]] int latlongWGS84ToXYSys34Jylland(
    double first, double second, double* firstOut, double* secondOut, const CoordSysParameters*) {
  return Give(ToDanishSystem(DanishSystem::Jutland, {first, second}), firstOut, secondOut);
}

extern "C" [[gnu::visibility("default")]] int XYSys34Jylland2latlongWGS84(
    double first, double second, double* firstOut, double* secondOut, const CoordSysParameters*) {
  return Give(FromDanishSystem(DanishSystem::Jutland, {first, second}), firstOut, secondOut);
}

extern "C" [[gnu::visibility("default")]] int latlongWGS84ToXYSys34Sjlland(
    double first, double second, double* firstOut, double* secondOut, const CoordSysParameters*) {
  return Give(ToDanishSystem(DanishSystem::Zealand, {first, second}), firstOut, secondOut);
}

extern "C" [[gnu::visibility("default")]] int XYSys34Sjlland2latlongWGS84(
    double first, double second, double* firstOut, double* secondOut, const CoordSysParameters*) {
  return Give(FromDanishSystem(DanishSystem::Zealand, {first, second}), firstOut, secondOut);
}

extern "C" [[gnu::visibility("default")]] int latlongWGS84ToXYSys45Bornholm(
    double first, double second, double* firstOut, double* secondOut, const CoordSysParameters*) {
  return Give(ToDanishSystem(DanishSystem::Bornholm, {first, second}), firstOut, secondOut);
}

extern "C" [[gnu::visibility("default")]] int XYSys34Bornholm2latlongWGS84(
    double first, double second, double* firstOut, double* secondOut, const CoordSysParameters*) {
  return Give(FromDanishSystem(DanishSystem::Bornholm, {first, second}), firstOut, secondOut);
}

extern "C" [[gnu::visibility("default")]] int latlongWGS84ToXYSys34UTM32ED50(
    double first, double second, double* firstOut, double* secondOut, const CoordSysParameters*) {
  return Give(ToDanishSystem(DanishSystem::Utm32, {first, second}), firstOut, secondOut);
}

extern "C" [[gnu::visibility("default")]] int XYSys34UTM32ED502latlongWGS84(
    double first, double second, double* firstOut, double* secondOut, const CoordSysParameters*) {
  return Give(FromDanishSystem(DanishSystem::Utm32, {first, second}), firstOut, secondOut);
}

extern "C" [[gnu::visibility("default")]] int latLong2XY_CassiniSoldner(
    double first, double second, double* firstOut, double* secondOut,
    const CoordSysParameters* parameters) {
  return ToGrid<MakeCassiniSoldner>(first, second, firstOut, secondOut, parameters);
}

extern "C" [[gnu::visibility("default")]] int XY2latLong2_CassiniSoldner(
    double first, double second, double* firstOut, double* secondOut,
    const CoordSysParameters* parameters) {
  return ToGeodetic<MakeCassiniSoldner>(first, second, firstOut, secondOut, parameters);
}

extern "C" [[gnu::visibility("default")]] int latLong2XY_ObliqueMercator(
    double first, double second, double* firstOut, double* secondOut,
    const CoordSysParameters* parameters) {
  return ToGrid<MakeObliqueMercatorB>(first, second, firstOut, secondOut, parameters);
}

extern "C" [[gnu::visibility("default")]] int XY2latLong_ObliqueMercator(
    double first, double second, double* firstOut, double* secondOut,
    const CoordSysParameters* parameters) {
  return ToGeodetic<MakeObliqueMercatorB>(first, second, firstOut, secondOut, parameters);
}

extern "C" [[gnu::visibility("default")]] int latLongWGS84ToXY_EOV(
    double first, double second, double* firstOut, double* secondOut,
    const CoordSysParameters* parameters) {
  const Eov* eov = EovOf(parameters);
  return eov ? Give(eov->FromWgs84({first, second}), firstOut, secondOut) : kNotDone;
}

extern "C" [[gnu::visibility("default")]] int EOV_XYToLatLongWGS84(
    double first, double second, double* firstOut, double* secondOut,
    const CoordSysParameters* parameters) {
  const Eov* eov = EovOf(parameters);
  return eov ? Give(eov->ToWgs84({first, second}), firstOut, secondOut) : kNotDone;
}
