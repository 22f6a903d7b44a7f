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
      dynamic_cast<const SevenParameterShift*>(calculator->steps().datumShift.get());
  return shift == nullptr ? nullptr : &shift->parameters();
}

}  // namespace

std::string AntennaOfSettings(const Settings& settings) {
  return settings.GetOr("antenna", "");
}

std::vector<std::string> SetupComments(const SetupFacts& facts) {
  std::vector<std::string> records{CommentRecord(
      "Coordinate System: " + (facts.systemTitle.empty() ? "none" : facts.systemTitle))};
  if (const SevenParameters* shift = ShiftOf(facts.calculator)) {
    records.push_back(ShiftParametersRecord({.dx = shift->dxM,
                                             .dy = shift->dyM,
                                             .dz = shift->dzM,
                                             .rotationX = shift->rxArcsec,
                                             .rotationY = shift->ryArcsec,
                                             .rotationZ = shift->rzArcsec,
                                             .scale = shift->scalePpm}));
    // GPS records hold positions as received: the shift is made on the way to the grid only.
    records.push_back(Wgs84ShiftRecord(false));
  }
  records.push_back(ElevationModeRecord(true));
  if (facts.usesAntenna) {
    const std::string& type = facts.antennaType;
    records.push_back(AntennaRecord(type.empty() ? kUnknownAntenna : type, facts.antennaHeight));
  }
  return records;
}

}  // namespace tarvex
