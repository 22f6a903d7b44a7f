#include "coordsys/utm_zones.h"

#include "coordsys/definition_writer.h"
#include "core/number_text.h"
#include "core/text.h"

namespace tarvex {
namespace {

constexpr std::string_view kNameStart = "UTM/UTM WGS84 Zone ";
constexpr std::string_view kSouth = " South";

ProjectionRecord UtmRecord(UtmZone zone) {
  ProjectionRecord record;
  record.datum_name.Assign("WGS_1984");
  record.ellipsoid_name.Assign("WGS 84");
  record.semi_major_m = kWgs84.semi_major_m;
  record.flattening = 1.0 / 298.257223563;
  record.projection_type = static_cast<int>(ProjectionType::TransverseMercator);
  record.false_easting = 500000.0;
  record.false_northing = zone.hemisphere == Hemisphere::South ? 10000000.0 : 0.0;
  record.central_meridian = 6.0 * zone.number - 183.0;
  record.longitude_of_center = record.central_meridian;
  record.scale_factor = 0.9996;
  record.zone_width = 6.0;
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
