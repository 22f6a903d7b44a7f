// The datum shift by the record's seven parameters, through the closed library "CoordSys.dll".
//
// The library is loaded when the first position comes; from then on the transformation is a matrix
// of its own, multiplied out once from what the library's entry points do. XYZ are formed on WGS84
// towards WGS84's side and on the system's ellipsoid towards the system's.
#pragma once

#include <memory>
#include <mutex>
#include <optional>

#include "coordsys/calculation_steps.h"
#include "coordsys/closed/closed_library.h"
#include "coordsys/datum/geocentric_map.h"
#include "coordsys/datum/seven_parameters.h"

namespace tarvex {

class SevenParameterShift final : public DatumShift {
 public:
  SevenParameterShift(const SevenParameters& parameters, const Ellipsoid& ellipsoid,
                      std::shared_ptr<ClosedLibrary> coordSys);

  StepOutcome ToSystem(Geodetic& position) const override;
  StepOutcome ToWgs84(Geodetic& position) const override;
  void AllToSystem(PositionArrays positions) const override;
  void AllToWgs84(PositionArrays positions) const override;
  std::string Describe() const override;

  const SevenParameters& parameters() const { return parameters_; }

  /// The prepared maps, for whole arrays; null when the library, or its entry point for this
  /// direction, cannot be had. Each direction goes by its own entry point.
  const GeodeticMap* MapToSystem() const;
  const GeodeticMap* MapToWgs84() const;

 private:
  void Prepare() const;

  SevenParameters parameters_;
  Ellipsoid ellipsoid_;
  std::shared_ptr<ClosedLibrary> coordSys_;
  mutable std::once_flag once_;
  mutable std::optional<GeodeticMap> toSystem_;
  mutable std::optional<GeodeticMap> toWgs84_;
};

}  // namespace tarvex
