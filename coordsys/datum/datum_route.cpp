#include "coordsys/datum/datum_route.h"

#include <string>
#include <string_view>

#include "coordsys/datum/coincident_datums.h"
#include "coordsys/projections/projection_families.h"
#include "core/text/text.h"

namespace tarvex {
namespace {

// The names under which definitions of every origin carry the North American Datum of 1927; its
// Canadian readjustments ("NAD27(76)", "... (CGQ77)") are other datums.
bool IsNad27(const ProjectionRecord& record) {
  std::string name;
  for (const char c : record.datumName.view()) {
    if (c != '_' && c != ' ') name += UpperCase(c);
  }
  for (const std::string_view known :
       {"NAD27", "NAD1927", "NORTHAMERICANDATUM1927", "NORTHAMERICAN1927", "DNORTHAMERICAN1927",
        "DNORTHAMERICANDATUM1927"}) {
    if (name == known) return true;
  }
  return false;
}

}  // namespace

DatumRoute DatumRouteOf(const ProjectionRecord& record, bool definitionGivesShift) {
  const FamilyDatum familyDatum = FamilyOf(record.projectionType).datum;
  if (familyDatum == FamilyDatum::Wgs84) return DatumRoute::WithinProjection;
  const bool hasShift = HasDatumShift(record);
  if (IsNad27(record) && (familyDatum == FamilyDatum::Nad27Zone || !hasShift)) {
    return DatumRoute::NadConverter;
  }
  if (hasShift) return DatumRoute::SevenParameters;
  if (CoincidesWithWgs84(record)) return DatumRoute::Coincident;
  return definitionGivesShift ? DatumRoute::SevenParameters : DatumRoute::Unknown;
}

}  // namespace tarvex
