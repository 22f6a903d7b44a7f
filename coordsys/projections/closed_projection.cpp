#include "coordsys/projections/closed_projection.h"

#include <atomic>
#include <cmath>
#include <cstdint>
#include <limits>
#include <utility>

#include "coordsys/closed/coord_sys_interface.h"
#include "coordsys/projections/cassini_soldner.h"
#include "coordsys/projections/oblique_mercator.h"
#include "coordsys/projections/projection_domain.h"

namespace tarvex {
namespace {

struct EntryNames {
  const char* toGrid;
  const char* toGeodetic;
};

// By Denmark area. The spellings are the library's own.
constexpr EntryNames kDanish[] = {
    {"latlongWGS84ToXYSys34Jylland", "XYSys34Jylland2latlongWGS84"},
    {"latlongWGS84ToXYSys34Sjlland", "XYSys34Sjlland2latlongWGS84"},
    {"latlongWGS84ToXYSys45Bornholm", "XYSys34Bornholm2latlongWGS84"},
    {"latlongWGS84ToXYSys34UTM32ED50", "XYSys34UTM32ED502latlongWGS84"},
};
constexpr EntryNames kCassini = {"latLong2XY_CassiniSoldner", "XY2latLong2_CassiniSoldner"};
constexpr EntryNames kOblique = {"latLong2XY_ObliqueMercator", "XY2latLong_ObliqueMercator"};
constexpr EntryNames kEov = {"latLongWGS84ToXY_EOV", "EOV_XYToLatLongWGS84"};

CoordSysParameters LibraryParameters(const ProjectionParameters& parameters) {
  CoordSysParameters result{};
  result.semiMajor = parameters.ellipsoid.semiMajorM;
  result.flattening = parameters.ellipsoid.flattening;
  result.latitudeOfOrigin = parameters.latitudeOfOriginRad;
  result.centralMeridian = parameters.centralMeridianRad;
  result.azimuth = parameters.parallel2OrAzimuthRad;
  result.rectifiedAngle = parameters.rectifiedAngleRad;
  result.scaleFactor = parameters.scaleFactor;
  result.falseEasting = parameters.falseEastingM;
  result.falseNorthing = parameters.falseNorthingM;
  for (std::size_t i = 0; i < parameters.shift.size(); ++i) result.shift[i] = parameters.shift[i];
  return result;
}

// One entry point, looked up once, and once more after the library was closed.
class Entry {
 public:
  explicit Entry(const char* name) : name_(name) {}

  CoordSysConversion* In(ClosedLibrary& library) const {
    const std::uint64_t generation = library.generation();
    if (foundIn_.load(std::memory_order_acquire) == generation) return found_;
    CoordSysConversion* const entry = library.Entry<CoordSysConversion>(name_);
    found_.store(entry, std::memory_order_relaxed);
    foundIn_.store(generation, std::memory_order_release);
    return entry;
  }

 private:
  const char* name_;
  mutable std::atomic<CoordSysConversion*> found_ = nullptr;
  mutable std::atomic<std::uint64_t> foundIn_ = std::numeric_limits<std::uint64_t>::max();
};

class ClosedProjection final : public Projection {
 public:
  ClosedProjection(std::shared_ptr<ClosedLibrary> library, const EntryNames& names,
                   const ProjectionParameters& parameters)
      : library_(std::move(library)),
        toGrid_(names.toGrid),
        toGeodetic_(names.toGeodetic),
        parameters_(LibraryParameters(parameters)) {}

  using Projection::Forward;
  using Projection::Inverse;

  ProjectionResult Forward(LatLon position, PlanePoint& point) const noexcept override {
    CoordSysConversion* entry = toGrid_.In(*library_);
    if (!entry) return ProjectionResult::LibraryMissing;
    PlanePoint out;
    if (!OnEarth(position) || !Converts(entry, position.latitudeRad, position.longitudeRad,
                                        out.northingM, out.eastingM)) {
      return Refusal(position.latitudeRad, position.longitudeRad);
    }
    point = out;
    return ProjectionResult::Done;
  }

  ProjectionResult Inverse(PlanePoint point, LatLon& position) const noexcept override {
    CoordSysConversion* entry = toGeodetic_.In(*library_);
    if (!entry) return ProjectionResult::LibraryMissing;
    LatLon out;
    if (!OnPlane(point) ||
        !Converts(entry, point.northingM, point.eastingM, out.latitudeRad, out.longitudeRad)) {
      return Refusal(point.northingM, point.eastingM);
    }
    position = out;
    return ProjectionResult::Done;
  }

 private:
  // What a library of another house answers is a number, or it is no answer.
  bool Converts(CoordSysConversion* entry, double first, double second, double& firstOut,
                double& secondOut) const noexcept {
    return entry(first, second, &firstOut, &secondOut, &parameters_) == 1 &&
           std::isfinite(firstOut) && std::isfinite(secondOut);
  }

  std::shared_ptr<ClosedLibrary> library_;
  Entry toGrid_;
  Entry toGeodetic_;
  CoordSysParameters parameters_;
};

}  // namespace

MadeProjection MakeTransverseMercator34(const ProjectionParameters& parameters,
                                        const std::shared_ptr<ClosedLibrary>& library) {
  const int area = parameters.denmarkArea;
  if (area < 0 || area >= static_cast<int>(std::size(kDanish))) {
    return NotMade(ProjectionFault::Area);
  }
  const EntryNames& names = kDanish[static_cast<std::size_t>(area)];
  return {std::make_unique<ClosedProjection>(library, names, parameters)};
}

MadeProjection MakeClosedCassiniSoldner(const ProjectionParameters& parameters,
                                        const std::shared_ptr<ClosedLibrary>& library) {
  const MadeProjection probe = MakeCassiniSoldner(parameters);
  if (!probe) return probe.failure();
  return {std::make_unique<ClosedProjection>(library, kCassini, parameters)};
}

MadeProjection MakeClosedObliqueMercator(const ProjectionParameters& parameters,
                                         const std::shared_ptr<ClosedLibrary>& library) {
  const MadeProjection probe = MakeObliqueMercatorB(parameters);
  if (!probe) return probe.failure();
  return {std::make_unique<ClosedProjection>(library, kOblique, parameters)};
}

MadeProjection MakeObliqueMercatorEov(const ProjectionParameters& parameters,
                                      const std::shared_ptr<ClosedLibrary>& library) {
  return {std::make_unique<ClosedProjection>(library, kEov, parameters)};
}

}  // namespace tarvex
