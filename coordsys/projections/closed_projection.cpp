#include "coordsys/projections/closed_projection.h"

#include <atomic>
#include <cmath>
#include <cstdint>
#include <limits>
#include <numbers>
#include <utility>

#include "coordsys/coord_sys_interface.h"
#include "coordsys/projections/cassini_soldner.h"
#include "coordsys/projections/oblique_mercator.h"

namespace tarvex {
namespace {

struct EntryNames {
  const char* to_grid;
  const char* to_geodetic;
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
  result.semi_major = parameters.ellipsoid.semi_major_m;
  result.flattening = parameters.ellipsoid.flattening;
  result.latitude_of_origin = parameters.latitude_of_origin_rad;
  result.central_meridian = parameters.central_meridian_rad;
  result.azimuth = parameters.parallel_2_or_azimuth_rad;
  result.rectified_angle = parameters.rectified_angle_rad;
  result.scale_factor = parameters.scale_factor;
  result.false_easting = parameters.false_easting_m;
  result.false_northing = parameters.false_northing_m;
  for (std::size_t i = 0; i < parameters.shift.size(); ++i) result.shift[i] = parameters.shift[i];
  return result;
}

// One entry point, looked up once, and once more after the library was closed.
class Entry {
 public:
  explicit Entry(const char* name) : name_(name) {}

  CoordSysConversion* In(ClosedLibrary& library) const {
    const std::uint64_t generation = library.generation();
    if (found_in_.load(std::memory_order_acquire) == generation) return found_;
    CoordSysConversion* const entry = library.Entry<CoordSysConversion>(name_);
    found_.store(entry, std::memory_order_relaxed);
    found_in_.store(generation, std::memory_order_release);
    return entry;
  }

 private:
  const char* name_;
  mutable std::atomic<CoordSysConversion*> found_ = nullptr;
  mutable std::atomic<std::uint64_t> found_in_ = std::numeric_limits<std::uint64_t>::max();
};

class ClosedProjection final : public Projection {
 public:
  ClosedProjection(std::shared_ptr<ClosedLibrary> library, const EntryNames& names,
                   const ProjectionParameters& parameters, bool takes_wgs84)
      : library_(std::move(library)),
        to_grid_(names.to_grid),
        to_geodetic_(names.to_geodetic),
        parameters_(LibraryParameters(parameters)),
        takes_wgs84_(takes_wgs84) {}

  ProjectionResult Forward(LatLon position, PlanePoint& point) const noexcept override {
    CoordSysConversion* entry = to_grid_.In(*library_);
    if (!entry) return ProjectionResult::LibraryMissing;
    const double latitude = position.latitude_rad;
    const double longitude = position.longitude_rad;
    if (std::isnan(latitude) || std::isnan(longitude)) return ProjectionResult::NotANumber;
    const bool on_earth = std::fabs(latitude) <= std::numbers::pi / 2.0 &&
                          std::fabs(longitude) <= 2.0 * std::numbers::pi;
    PlanePoint out;
    if (!on_earth || !Converts(entry, latitude, longitude, out.northing_m, out.easting_m)) {
      return ProjectionResult::OutsideDomain;
    }
    point = out;
    return ProjectionResult::Done;
  }

  ProjectionResult Inverse(PlanePoint point, LatLon& position) const noexcept override {
    CoordSysConversion* entry = to_geodetic_.In(*library_);
    if (!entry) return ProjectionResult::LibraryMissing;
    if (std::isnan(point.northing_m) || std::isnan(point.easting_m)) {
      return ProjectionResult::NotANumber;
    }
    constexpr double kFarthest_m = 1e9;
    const bool on_plane =
        std::fabs(point.northing_m) <= kFarthest_m && std::fabs(point.easting_m) <= kFarthest_m;
    LatLon out;
    if (!on_plane ||
        !Converts(entry, point.northing_m, point.easting_m, out.latitude_rad, out.longitude_rad)) {
      return ProjectionResult::OutsideDomain;
    }
    position = out;
    return ProjectionResult::Done;
  }

  std::size_t Forward(std::span<const double> latitude_rad, std::span<const double> longitude_rad,
                      std::span<double> northing_m,
                      std::span<double> easting_m) const noexcept override {
    std::size_t refused = 0;
    for (std::size_t i = 0; i < latitude_rad.size(); ++i) {
      PlanePoint point{kNaN, kNaN};
      refused +=
          Forward(LatLon{latitude_rad[i], longitude_rad[i]}, point) != ProjectionResult::Done;
      northing_m[i] = point.northing_m;
      easting_m[i] = point.easting_m;
    }
    return refused;
  }

  std::size_t Inverse(std::span<const double> northing_m, std::span<const double> easting_m,
                      std::span<double> latitude_rad,
                      std::span<double> longitude_rad) const noexcept override {
    std::size_t refused = 0;
    for (std::size_t i = 0; i < northing_m.size(); ++i) {
      LatLon position{kNaN, kNaN};
      refused +=
          Inverse(PlanePoint{northing_m[i], easting_m[i]}, position) != ProjectionResult::Done;
      latitude_rad[i] = position.latitude_rad;
      longitude_rad[i] = position.longitude_rad;
    }
    return refused;
  }

  bool TakesWgs84() const noexcept override { return takes_wgs84_; }

 private:
  static constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

  // What a library of another house answers is a number, or it is no answer.
  bool Converts(CoordSysConversion* entry, double first, double second, double& first_out,
                double& second_out) const noexcept {
    return entry(first, second, &first_out, &second_out, &parameters_) == 1 &&
           std::isfinite(first_out) && std::isfinite(second_out);
  }

  std::shared_ptr<ClosedLibrary> library_;
  Entry to_grid_;
  Entry to_geodetic_;
  CoordSysParameters parameters_;
  bool takes_wgs84_;
};

}  // namespace

MadeProjection MakeTransverseMercator34(const ProjectionParameters& parameters,
                                        const std::shared_ptr<ClosedLibrary>& library) {
  const int area = parameters.denmark_area;
  if (area < 0 || area >= static_cast<int>(std::size(kDanish))) {
    return {nullptr, ProjectionFault::Area};
  }
  const EntryNames& names = kDanish[static_cast<std::size_t>(area)];
  return {std::make_unique<ClosedProjection>(library, names, parameters, true),
          ProjectionFault::None};
}

MadeProjection MakeClosedCassiniSoldner(const ProjectionParameters& parameters,
                                        const std::shared_ptr<ClosedLibrary>& library) {
  const MadeProjection probe = MakeCassiniSoldner(parameters);
  if (!probe.projection) return {nullptr, probe.fault};
  return {std::make_unique<ClosedProjection>(library, kCassini, parameters, false),
          ProjectionFault::None};
}

MadeProjection MakeClosedObliqueMercator(const ProjectionParameters& parameters,
                                         const std::shared_ptr<ClosedLibrary>& library) {
  const MadeProjection probe = MakeObliqueMercatorB(parameters);
  if (!probe.projection) return {nullptr, probe.fault};
  return {std::make_unique<ClosedProjection>(library, kOblique, parameters, false),
          ProjectionFault::None};
}

MadeProjection MakeObliqueMercatorEov(const ProjectionParameters& parameters,
                                      const std::shared_ptr<ClosedLibrary>& library) {
  return {std::make_unique<ClosedProjection>(library, kEov, parameters, true),
          ProjectionFault::None};
}

}  // namespace tarvex
