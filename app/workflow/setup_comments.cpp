#include "app/workflow/setup_comments.h"

#include "coordsys/datum/seven_parameter_shift.h"

namespace tarvex {
namespace {

constexpr const char* kUnknownAntenna = "unknown";

// The seven parameters by which the calculator shifts the datum; null when it shifts otherwise or
// not at all.
const SevenParameters* ShiftOf(const CTrgCalculator* calculator) {
  if (calculator == nullptr) return nullptr;
  const auto* shift =
      dynamic_cast<const SevenParameterShift*>(calculator->steps().datum_shift.get());
  return shift == nullptr ? nullptr : &shift->parameters();
}

}  // namespace

std::string AntennaOfSettings(const Settings& settings) {
  return settings.GetOr("antenna", "");
}

std::vector<std::string> SetupComments(const SetupFacts& facts) {
  std::vector<std::string> records{CommentRecord(
      "Coordinate System: " + (facts.system_title.empty() ? "none" : facts.system_title))};
  if (const SevenParameters* shift = ShiftOf(facts.calculator)) {
    records.push_back(ShiftParametersRecord({.dx = shift->dx_m,
                                             .dy = shift->dy_m,
                                             .dz = shift->dz_m,
                                             .rotation_x = shift->rx_arcsec,
                                             .rotation_y = shift->ry_arcsec,
                                             .rotation_z = shift->rz_arcsec,
                                             .scale = shift->scale_ppm}));
    // GPS records hold positions as received: the shift is made on the way to the grid only.
    records.push_back(Wgs84ShiftRecord(false));
  }
  records.push_back(ElevationModeRecord(true));
  if (facts.uses_antenna) {
    const std::string& type = facts.antenna_type;
    records.push_back(AntennaRecord(type.empty() ? kUnknownAntenna : type, facts.antenna_height));
  }
  return records;
}

}  // namespace tarvex
