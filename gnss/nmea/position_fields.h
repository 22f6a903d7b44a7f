// What position sentences have in common: latitude and longitude, satellites and height.
#pragma once

#include <string_view>

#include "core/text/field_cursor.h"
#include "gnss/nmea/nmea_settings.h"
#include "gnss/position/position_state.h"

namespace tarvex {

/// Takes latitude, N/S, longitude, E/W into the state; false when the fields ran out, with those
/// before the end taken.
[[nodiscard]] bool TakeLatitudeLongitude(FieldCursor& fields, GnssPositionState& state);

/// Takes satellites, HDOP and height; false when the fields ran out.
[[nodiscard]] bool TakeSatellitesAndHeight(FieldCursor& fields, GnssPositionState& state);

/// Takes the geoid separation and puts the height on the ellipsoid; false when the fields ran out.
[[nodiscard]] bool TakeSeparation(FieldCursor& fields, const NmeaTraits& traits,
                                  GnssPositionState& state);

/// True when the five fields from `fields` on (position and quality) are all empty, as receivers
/// send them for a satellite system that has no part in the solution.
bool PositionAndQualityEmpty(FieldCursor fields);

/// A height of the published GGK layouts without the letters in front of it ("EHT371.467").
std::string_view WithoutHeightPrefix(std::string_view field);

}  // namespace tarvex
