#include "app/workflow/correction_base.h"

#include <cmath>

#include "coordsys/datum/geocentric.h"
#include "core/raw_data/raw_records.h"
#include "core/text/number_text.h"
#include "core/units/units.h"

namespace tarvex {
namespace {

constexpr double kFarM = 100'000.0;
constexpr double kMetresPerKilometre = 1000.0;

}  // namespace

double DistanceToBaseM(const BaseStation& base, const GnssPositionState& rover) {
  const GeocentricFrame frame(kWgs84);
  return Distance(frame.ToGeocentric({.latitudeRad = rover.latitude * kRadiansPerDegree,
                                      .longitudeRad = rover.longitude * kRadiansPerDegree,
                                      .heightM = rover.height}),
                  base.position);
}

std::string BaseWatch::TakeWarning(const GnssPositionState& rover) {
  if (!base_ || warned_ || rover.positions == 0) return {};
  const double distanceM = DistanceToBaseM(*base_, rover);
  if (distanceM <= kFarM) return {};
  warned_ = true;
  return "The base of the corrections is " + FixedNumber(distanceM / kMetresPerKilometre, 0) +
         " km away: is it the right mountpoint?";
}

void BaseWatch::Look(const CorrectionStatus& status) {
  if (!status.base) return;
  if (base_ && base_->id == status.base->id &&
      Distance(base_->position, status.base->position) <= kBaseMovedAlarm) {
    return;
  }
  base_ = status.base;
  warned_ = false;
  const Geodetic at = GeocentricFrame(kWgs84).ToGeodetic(base_->position);
  records_ = {CommentRecord("Corrections: " + status.caster + ", mountpoint " + status.mountpoint +
                            ", base " + std::to_string(base_->id)),
              GnssBaseRecord(at.latitudeRad / kRadiansPerDegree,
                             at.longitudeRad / kRadiansPerDegree, at.heightM)};
}

}  // namespace tarvex
