// The built-in state-plane zones, chosen by number.
//
// A group is a state or territory on one datum, named as in the catalogue ("Texas"); its zones are
// numbered from 0 in the order of their FIPS codes. No group has a number above 27. NAD27 zones can
// also be chosen by their zone code, 0 to 129: 0 to 119 are the zones from Alabama East to Wyoming
// West, 120 is Alaska zone 1 (its own oblique Mercator), 129 Alaska zone 10 (its own Lambert), and
// 121 to 128 are the Alaska zones between, by the Alaska transverse Mercator.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "coordsys/projections/projection_record.h"

namespace tarvex {

enum class StatePlaneDatum { Nad27, Nad83 };

/// The highest zone number within a group.
inline constexpr int kLastZone = 27;

struct StatePlaneZone {
  std::string name;  ///< full catalogue name, "USA/NAD83/Texas South Central"
  ProjectionRecord record;
};

/// The groups of a datum, in the order of their FIPS codes.
std::vector<std::string> StatePlaneGroups(StatePlaneDatum datum);

/// The zone of a number in a group, letter case ignored; nothing for a number above 27, one that
/// the group does not have, or an unknown group. The record has projection, ellipsoid and zone
/// width 6; on NAD27 it has no shift to WGS84.
std::optional<StatePlaneZone> ZoneOfGroup(StatePlaneDatum datum, std::string_view group,
                                          int number);

/// The NAD27 zone of a zone code, 0 to 129.
std::optional<StatePlaneZone> Nad27ZoneOfCode(int code);

}  // namespace tarvex
