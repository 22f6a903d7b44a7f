#include "coordsys/datum/seven_parameter_shift.h"

#include "coordsys/closed/seven_parameter_interface.h"
#include "coordsys/coordsys_texts.h"
#include "core/text/number_text.h"
#include "core/text/string_table.h"

namespace tarvex {
namespace {

// The map of one entry point with its arguments; nothing when it is missing or not linear.
std::optional<GeocentricMap> TakeEntry(ClosedLibrary& library, const char* name,
                                       const SevenParameterArguments& a) {
  SevenParameterEntry* const entry = library.Entry<SevenParameterEntry>(name);
  if (entry == nullptr) return std::nullopt;
  return TakeGeocentricMap([entry, &a](Geocentric& p) {
    return entry(a.dxM, a.dyM, a.dzM, a.rxRad, a.ryRad, a.rzRad, a.scale, &p.xM, &p.yM, &p.zM) == 1;
  });
}

}  // namespace

SevenParameterShift::SevenParameterShift(const SevenParameters& parameters,
                                         const Ellipsoid& ellipsoid,
                                         std::shared_ptr<ClosedLibrary> coordSys)
    : parameters_(parameters), ellipsoid_(ellipsoid), coordSys_(std::move(coordSys)) {}

void SevenParameterShift::Prepare() const {
  const auto forward = TakeEntry(*coordSys_, "xform_3D_7Param", ForwardArguments(parameters_));
  const auto inverse = TakeEntry(*coordSys_, "xform3D_Pt", InverseArguments(parameters_));
  if (inverse) toSystem_.emplace(kWgs84, ellipsoid_, *inverse);
  if (forward) toWgs84_.emplace(ellipsoid_, kWgs84, *forward);
}

const GeodeticMap* SevenParameterShift::MapToSystem() const {
  std::call_once(once_, [this] { Prepare(); });
  return toSystem_ ? &*toSystem_ : nullptr;
}

const GeodeticMap* SevenParameterShift::MapToWgs84() const {
  std::call_once(once_, [this] { Prepare(); });
  return toWgs84_ ? &*toWgs84_ : nullptr;
}

StepOutcome SevenParameterShift::ToSystem(Geodetic& position) const {
  const GeodeticMap* const map = MapToSystem();
  if (map == nullptr) return {StepStatus::LibraryMissing, kTextShiftLibraryMissing};
  position = map->Apply(position);
  return {};
}

StepOutcome SevenParameterShift::ToWgs84(Geodetic& position) const {
  const GeodeticMap* const map = MapToWgs84();
  if (map == nullptr) return {StepStatus::LibraryMissing, kTextShiftLibraryMissing};
  position = map->Apply(position);
  return {};
}

void SevenParameterShift::AllToSystem(PositionArrays positions) const {
  const GeodeticMap* const map = MapToSystem();
  if (map == nullptr) return DatumShift::AllToSystem(positions);  // which refuses every one
  map->Apply(positions.latitudeRad, positions.longitudeRad, positions.heightM);
}

void SevenParameterShift::AllToWgs84(PositionArrays positions) const {
  const GeodeticMap* const map = MapToWgs84();
  if (map == nullptr) return DatumShift::AllToWgs84(positions);
  map->Apply(positions.latitudeRad, positions.longitudeRad, positions.heightM);
}

std::string SevenParameterShift::Describe() const {
  const SevenParameters& p = parameters_;
  const auto text = [](double value) { return ShortestNumber(value + 0.0); };  // -0 is 0
  return Strings().Text(kTextSevenParameters,
                        {text(p.dxM), text(p.dyM), text(p.dzM), text(p.rxArcsec), text(p.ryArcsec),
                         text(p.rzArcsec), text(p.scalePpm)});
}

}  // namespace tarvex
