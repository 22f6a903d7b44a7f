#include "coordsys/datum/seven_parameter_shift.h"

#include "coordsys/datum/seven_parameter_interface.h"
#include "core/number_text.h"
#include "core/string_table.h"

namespace tarvex {
namespace {

constexpr int kLibraryMissing = 4150;

// The map of one entry point with its arguments; nothing when it is missing or not linear.
std::optional<GeocentricMap> TakeEntry(ClosedLibrary& library, const char* name,
                                       const SevenParameterArguments& a) {
  SevenParameterEntry* const entry = library.Entry<SevenParameterEntry>(name);
  if (entry == nullptr) return std::nullopt;
  return TakeGeocentricMap([entry, &a](Geocentric& p) {
    return entry(a.dx_m, a.dy_m, a.dz_m, a.rx_rad, a.ry_rad, a.rz_rad, a.scale, &p.x_m, &p.y_m,
                 &p.z_m) == 1;
  });
}

}  // namespace

SevenParameterShift::SevenParameterShift(const SevenParameters& parameters,
                                         const Ellipsoid& ellipsoid,
                                         std::shared_ptr<ClosedLibrary> coord_sys)
    : parameters_(parameters), ellipsoid_(ellipsoid), coord_sys_(std::move(coord_sys)) {}

void SevenParameterShift::Prepare() const {
  const auto forward = TakeEntry(*coord_sys_, "xform_3D_7Param", ForwardArguments(parameters_));
  const auto inverse = TakeEntry(*coord_sys_, "xform3D_Pt", InverseArguments(parameters_));
  if (inverse) to_system_.emplace(kWgs84, ellipsoid_, *inverse);
  if (forward) to_wgs84_.emplace(ellipsoid_, kWgs84, *forward);
}

const GeodeticMap* SevenParameterShift::MapToSystem() const {
  std::call_once(once_, [this] { Prepare(); });
  return to_system_ ? &*to_system_ : nullptr;
}

const GeodeticMap* SevenParameterShift::MapToWgs84() const {
  std::call_once(once_, [this] { Prepare(); });
  return to_wgs84_ ? &*to_wgs84_ : nullptr;
}

StepOutcome SevenParameterShift::ToSystem(Geodetic& position) const {
  const GeodeticMap* const map = MapToSystem();
  if (map == nullptr) return {StepStatus::LibraryMissing, kLibraryMissing};
  position = map->Apply(position);
  return {};
}

StepOutcome SevenParameterShift::ToWgs84(Geodetic& position) const {
  const GeodeticMap* const map = MapToWgs84();
  if (map == nullptr) return {StepStatus::LibraryMissing, kLibraryMissing};
  position = map->Apply(position);
  return {};
}

void SevenParameterShift::AllToSystem(PositionArrays positions) const {
  const GeodeticMap* const map = MapToSystem();
  if (map == nullptr) return DatumShift::AllToSystem(positions);  // which refuses every one
  map->Apply(positions.latitude_rad, positions.longitude_rad, positions.height_m);
}

void SevenParameterShift::AllToWgs84(PositionArrays positions) const {
  const GeodeticMap* const map = MapToWgs84();
  if (map == nullptr) return DatumShift::AllToWgs84(positions);
  map->Apply(positions.latitude_rad, positions.longitude_rad, positions.height_m);
}

std::string SevenParameterShift::Describe() const {
  const SevenParameters& p = parameters_;
  const auto text = [](double value) { return ShortestNumber(value + 0.0); };  // -0 is 0
  return Strings().Text(4155, {text(p.dx_m), text(p.dy_m), text(p.dz_m), text(p.rx_arcsec),
                               text(p.ry_arcsec), text(p.rz_arcsec), text(p.scale_ppm)});
}

}  // namespace tarvex
