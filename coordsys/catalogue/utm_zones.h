// The UTM zones on WGS84 that need no catalogue file: "UTM/UTM WGS84 Zone 33" in the northern
// hemisphere, "UTM/UTM WGS84 Zone 33 South" in the southern, zones 1 to 60.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace tarvex {

enum class Hemisphere { North, South };

struct UtmZone {
  int number = 1;  ///< 1 to 60; zone 1 lies on 180 to 174 west
  Hemisphere hemisphere = Hemisphere::North;

  bool operator==(const UtmZone&) const = default;
};

std::string UtmName(UtmZone zone);
std::string UtmDefinition(UtmZone zone);

/// The zone of a full name, letter case ignored; nothing for any other name.
std::optional<UtmZone> UtmZoneOf(std::string_view name);

}  // namespace tarvex
