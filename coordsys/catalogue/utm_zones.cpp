#include "coordsys/catalogue/utm_zones.h"

#include "coordsys/definition/definition_writer.h"
#include "core/text/number_text.h"
#include "core/text/text.h"

namespace tarvex {
namespace {

constexpr std::string_view kNameStart = "UTM/UTM WGS84 Zone ";
constexpr std::string_view kSouth = " South";

ProjectionRecord UtmRecord(UtmZone zone) {
  ProjectionRecord record;
  record.datumName.Assign("WGS_1984");
  record.ellipsoidName.Assign("WGS 84");
  record.semiMajorM = kWgs84.semiMajorM;
  record.flattening = 1.0 / 298.257223563;
  record.projectionType = static_cast<int>(ProjectionType::TransverseMercator);
  record.falseEastingM = 500000.0;
  record.falseNorthingM = zone.hemisphere == Hemisphere::South ? 10000000.0 : 0.0;
  record.centralMeridianDeg = 6.0 * zone.number - 183.0;
  record.longitudeOfCenterDeg = record.centralMeridianDeg;
  record.scaleFactor = 0.9996;
  record.zoneWidthDeg = 6.0;
  return record;
}

}  // namespace

std::string UtmName(UtmZone zone) {
  std::string name(kNameStart);
  AppendInteger(name, zone.number);
  if (zone.hemisphere == Hemisphere::South) name += kSouth;
  return name;
}

std::string UtmDefinition(UtmZone zone) {
  return WriteDefinition(UtmRecord(zone), UtmName(zone).substr(4)).value_or("");
}

std::optional<UtmZone> UtmZoneOf(std::string_view name) {
  if (name.size() <= kNameStart.size()) return std::nullopt;
  if (!EqualsIgnoringCase(name.substr(0, kNameStart.size()), kNameStart)) return std::nullopt;
  const auto number = ParseInteger(name.substr(kNameStart.size(), 2));
  if (!number || *number < 1 || *number > 60) return std::nullopt;
  for (const Hemisphere hemisphere : {Hemisphere::North, Hemisphere::South}) {
    const UtmZone zone{static_cast<int>(*number), hemisphere};
    if (EqualsIgnoringCase(UtmName(zone), name)) return zone;
  }
  return std::nullopt;
}

}  // namespace tarvex
