#include "coordsys/catalogue/state_plane_zones.h"

#include <cstddef>
#include <iterator>

#include "coordsys/catalogue/state_plane_table.h"
#include "coordsys/projections/projection_families.h"
#include "core/text/text.h"

namespace tarvex {
namespace {

// FIPS codes of the NAD27 zone codes 0 to 119; the Alaska zones follow.
constexpr int kNad27Codes[] = {
    101,  102,  201,  202,  203,  301,  302,  401,  402,  403,  404,  405,  406,  407,  501,
    502,  503,  600,  700,  901,  902,  903,  1001, 1002, 5101, 5102, 5103, 5104, 5105, 1101,
    1102, 1103, 1201, 1202, 1301, 1302, 1401, 1402, 1501, 1502, 1601, 1602, 1701, 1702, 1703,
    1801, 1802, 1900, 2001, 2002, 2101, 2102, 2103, 2111, 2112, 2113, 2201, 2202, 2203, 2301,
    2302, 2401, 2402, 2403, 2501, 2502, 2503, 2601, 2602, 2701, 2702, 2703, 2800, 2900, 3001,
    3002, 3003, 3101, 3102, 3103, 3104, 3200, 3301, 3302, 3401, 3402, 3501, 3502, 3601, 3602,
    3701, 3702, 3800, 3901, 3902, 4001, 4002, 4100, 4201, 4202, 4203, 4204, 4205, 4301, 4302,
    4303, 4400, 4501, 4502, 4601, 4602, 4701, 4702, 4801, 4802, 4803, 4901, 4902, 4903, 4904,
};
static_assert(std::size(kNad27Codes) == 120);
constexpr int kFirstAlaskaCode = 120;
constexpr int kLastAlaskaCode = 129;
constexpr int kFirstAlaskaFips = 5001;

std::span<const StatePlaneRow> RowsOf(StatePlaneDatum datum) {
  return datum == StatePlaneDatum::Nad83 ? kNad83StatePlane : kNad27StatePlane;
}

StatePlaneZone ZoneOf(StatePlaneDatum datum, const StatePlaneRow& row) {
  const bool nad83 = datum == StatePlaneDatum::Nad83;
  StatePlaneZone zone;
  zone.name = std::string("USA/") + (nad83 ? "NAD83/" : "NAD27/") + row.name;
  ProjectionRecord& record = zone.record;
  record.datumName.Assign(nad83 ? "North_American_Datum_1983" : "North_American_Datum_1927");
  record.ellipsoidName.Assign(nad83 ? "GRS 1980" : "Clarke 1866");
  record.semiMajorM = nad83 ? 6378137.0 : 6378206.4;
  record.flattening = nad83 ? 1.0 / 298.257222101 : 1.0 / 294.978698213898;
  record.projectionType = row.projectionType;
  record.projectionName.Assign(FamilyOf(row.projectionType).name);
  record.latitudeOfOriginDeg = record.latitudeOfCenterDeg = row.latitudeOfOriginDeg;
  record.centralMeridianDeg = record.longitudeOfCenterDeg = row.centralMeridianDeg;
  record.standardParallel1Deg = row.standardParallel1Deg;
  record.standardParallel2OrAzimuthDeg = row.standardParallel2OrAzimuthDeg;
  record.rectifiedGridAngleDeg = row.rectifiedGridAngleDeg;
  record.scaleFactor = row.scaleFactor;
  record.falseEastingM = row.falseEastingM;
  record.falseNorthingM = row.falseNorthingM;
  record.zoneWidthDeg = 6.0;
  record.coefficients[0] = record.coefficients[2] = row.seriesFalseEastingFt;
  record.coefficients[1] = row.seriesCentralMeridianArcsec;
  return zone;
}

}  // namespace

std::vector<std::string> StatePlaneGroups(StatePlaneDatum datum) {
  std::vector<std::string> groups;
  for (const StatePlaneRow& row : RowsOf(datum)) {
    if (groups.empty() || groups.back() != row.state) groups.emplace_back(row.state);
  }
  return groups;
}

std::optional<StatePlaneZone> ZoneOfGroup(StatePlaneDatum datum, std::string_view group,
                                          int number) {
  if (number < 0 || number > kLastZone) return std::nullopt;
  for (const StatePlaneRow& row : RowsOf(datum)) {
    if (EqualsIgnoringCase(row.state, group) && number-- == 0) return ZoneOf(datum, row);
  }
  return std::nullopt;
}

std::optional<StatePlaneZone> Nad27ZoneOfCode(int code) {
  if (code < 0 || code > kLastAlaskaCode) return std::nullopt;
  const int fips = code < kFirstAlaskaCode ? kNad27Codes[static_cast<std::size_t>(code)]
                                           : kFirstAlaskaFips + code - kFirstAlaskaCode;
  for (const StatePlaneRow& row : kNad27StatePlane) {
    if (row.fips == fips) return ZoneOf(StatePlaneDatum::Nad27, row);
  }
  return std::nullopt;
}

}  // namespace tarvex
