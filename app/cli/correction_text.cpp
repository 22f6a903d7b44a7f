#include "app/cli/correction_text.h"

#include <cmath>

#include "coordsys/datum/geocentric.h"
#include "core/number_text.h"
#include "core/units.h"

namespace tarvex {
namespace {

double DistanceToBaseKm(const BaseStation& base, const GnssPositionState& state) {
  const GeocentricFrame frame(kWgs84);
  const Geocentric rover = frame.ToGeocentric({.latitude_rad = state.latitude * kRadiansPerDegree,
                                               .longitude_rad = state.longitude * kRadiansPerDegree,
                                               .height_m = state.height});
  return std::hypot(rover.x_m - base.position.x_m, rover.y_m - base.position.y_m,
                    rover.z_m - base.position.z_m) /
         1000.0;
}

}  // namespace

std::string CorrectionLine(const CorrectionStatus& status, const GnssPositionState& state) {
  if (status.state != CorrectionState::Receiving || status.age_ms < 0) {
    const std::string sentence = CorrectionSentence(status);
    return status.doing.empty() ? sentence : sentence + " (" + status.doing + ")";
  }
  std::string line =
      "corrections " + FixedNumber(static_cast<double>(status.age_ms) / 1000.0, 1) + " s old";
  if (status.base) {
    line += ", base " + std::to_string(status.base->id);
    if (state.positions > 0) {
      line += " at " + FixedNumber(DistanceToBaseKm(*status.base, state), 1) + " km";
    }
  }
  if (status.base_moved_m > kBaseMovedAlarm) {
    line += ", THE BASE HAS MOVED " + FixedNumber(status.base_moved_m, 2) + " m";
  }
  return line;
}

std::string CorrectionSummary(const CorrectionStatus& status) {
  return "Corrections: " + std::to_string(status.bytes) + " bytes in " +
         std::to_string(status.frames) + " messages over " + std::to_string(status.connections) +
         (status.connections == 1 ? " connection, " : " connections, ") +
         std::to_string(status.bytes_to_receiver) + " bytes to the receiver, " +
         std::to_string(status.bad_crcs) + " damaged messages, " +
         std::to_string(status.ggas_sent) + " positions sent to the caster.";
}

}  // namespace tarvex
