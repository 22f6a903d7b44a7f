#include "coordsys/projections/projection_families.h"

#include <algorithm>
#include <cstddef>
#include <iterator>

#include "coordsys/projections/alaska27.h"
#include "coordsys/projections/closed_projection.h"
#include "coordsys/projections/lambert_conformal_conic.h"
#include "coordsys/projections/nad27.h"
#include "coordsys/projections/oblique_mercator.h"
#include "coordsys/projections/oblique_stereographic.h"
#include "coordsys/projections/stereographic.h"
#include "coordsys/projections/transverse_mercator.h"

namespace tarvex {
namespace {

constexpr std::string_view kLatitudeOfOrigin = "latitude_of_origin|latitude_of_center";
constexpr std::string_view kCentralMeridian = "central_meridian|longitude_of_center";

constexpr std::string_view kOrigin[] = {kLatitudeOfOrigin, kCentralMeridian, "false_easting",
                                        "false_northing"};
constexpr std::string_view kScaledOrigin[] = {kLatitudeOfOrigin, kCentralMeridian, "false_easting",
                                              "false_northing", "scale_factor"};
constexpr std::string_view kTwoParallels[] = {kLatitudeOfOrigin,
                                              kCentralMeridian,
                                              "false_easting",
                                              "false_northing",
                                              "standard_parallel_1|standard_parallel1",
                                              "standard_parallel_2|standard_parallel2"};
constexpr std::string_view kOblique[] = {kLatitudeOfOrigin, kCentralMeridian, "false_easting",
                                         "false_northing",  "azimuth",        "scale_factor"};
constexpr std::string_view kAlaska[] = {"C|T3|L3|false_easting", "CM|T2|L2|central_meridian"};
constexpr std::string_view kDanish[] = {"denmark_area"};

// The series takes its false easting from coefficient 1; definitions carry it as "C" or "T3".
void TakeFalseEastingOfSeries(ProjectionRecord& record) {
  record.coefficients[0] = record.coefficients[2];
}

// Computed on GRS 1980, where positions of WGS84 are taken as they are; the national grid carries
// the plane to the record's datum.
MadeProjection MakeTransverseMercatorOstn02(const ProjectionParameters& parameters) {
  ProjectionParameters onGrs80 = parameters;
  onGrs80.ellipsoid = kGrs80;
  return MakeTransverseMercator(onGrs80);
}

using enum ProjectionType;

// scripts/build_catalogue.py reads the types and names here.
constexpr ProjectionFamily kFamilies[] = {
    {.type = LambertConformalConic2SP,
     .name = "Lambert_Conformal_Conic_2SP",
     .make = MakeLambertConformalConic2SP,
     .scaleFactor = ScaleFactorUse::NotUsed,
     .parameters = kTwoParallels},
    {.type = TransverseMercator,
     .name = "Transverse_Mercator",
     .make = MakeTransverseMercator,
     .parameters = kScaledOrigin},
    {.type = ObliqueStereographic,
     .name = "Oblique_Stereographic",
     .aliases = {"Oblique_Stereographic (Double)", "Double_Stereographic"},
     .make = MakeObliqueStereographic,
     .parameters = kScaledOrigin},
    {.type = LambertConformalConic1SP,
     .name = "Lambert_Conformal_Conic_1SP",
     .make = MakeLambertConformalConic1SP,
     .parameters = kScaledOrigin},
    {.type = ObliqueMercator83,
     .name = "Oblique_Mercator_83",
     .make = MakeObliqueMercatorA,
     .origin = ProjectionOrigin::Centre,
     .parameters = kOblique,
     .parallel2Keyword = "azimuth"},
    {.type = Stereographic,
     .name = "Stereographic",
     .make = MakeStereographic,
     .origin = ProjectionOrigin::Centre,
     .parameters = kScaledOrigin},
    {.type = TransverseMercatorOstn02,
     .name = "Transverse_Mercator_OSTN02",
     .make = MakeTransverseMercatorOstn02,
     .parameters = kScaledOrigin,
     .datum = FamilyDatum::Wgs84,
     .gridUse = NationalGridUse::OwnOrNone,  // without it 100 m off
     .grid = &kBritishGrid},
    {.type = ObliqueStereographicRd2000,
     .name = "Oblique_Stereographic_RD2000",
     .make = MakeObliqueStereographic,
     .parameters = kScaledOrigin,
     .gridUse = NationalGridUse::Own,  // without it 25 cm off
     .grid = &kDutchGrid},
    {.type = ObliqueMercator27,
     .name = "Oblique_Mercator_27",
     .make = MakeObliqueMercator27,
     .origin = ProjectionOrigin::Centre,
     .parameters = kOblique,
     .parallel2Keyword = "azimuth",
     .datum = FamilyDatum::Nad27Zone},
    {.type = TransverseMercator27,
     .name = "Transverse_Mercator_27",
     .make = MakeTransverseMercator27,
     .parameters = kScaledOrigin,
     .datum = FamilyDatum::Nad27Zone},
    {.type = LambertConformalConic27,
     .name = "Lambert_Conformal_Conic_27",
     .make = MakeLambertConformalConic27,
     .scaleFactor = ScaleFactorUse::NotUsed,
     .parameters = kTwoParallels,
     .datum = FamilyDatum::Nad27Zone},
    {.type = TransverseMercatorAlaska27,
     .name = "Transverse_Mercator_Alaska_27",
     .make = MakeTransverseMercatorAlaska27,
     .scaleFactor = ScaleFactorUse::NotUsed,
     .parameters = kAlaska,
     .settle = TakeFalseEastingOfSeries,
     .datum = FamilyDatum::Nad27Zone},
    {.type = TransverseMercator34,
     .name = "Transverse_Mercator_34",
     .makeClosed = MakeTransverseMercator34,
     .scaleFactor = ScaleFactorUse::NotUsed,
     .parameters = kDanish,
     .datum = FamilyDatum::Wgs84,
     .gridUse = NationalGridUse::Never,
     .eastingsGrowWest = true},
    {.type = CassiniSoldner,
     .name = "Cassini_Soldner",
     .makeClosed = MakeClosedCassiniSoldner,
     .scaleFactor = ScaleFactorUse::NotUsed,
     .parameters = kOrigin},
    {.type = ObliqueMercator,
     .name = "Oblique_Mercator",
     .makeClosed = MakeClosedObliqueMercator,
     .origin = ProjectionOrigin::Centre,
     .parameters = kOblique,
     .parallel2Keyword = "azimuth"},
    {.type = ObliqueMercatorEov,
     .name = "Oblique_Mercator_EOV",
     .makeClosed = MakeObliqueMercatorEov,
     .scaleFactor = ScaleFactorUse::NotUsed,
     .parallel2Keyword = "azimuth",
     .datum = FamilyDatum::Wgs84,
     .gridUse = NationalGridUse::OwnIfNamed,
     .grid = &kHungarianGrid},
    {.type = ObliqueStereographicRd2004,
     .name = "Oblique_Stereographic_RD2004",
     .make = MakeObliqueStereographic,
     .parameters = kScaledOrigin,
     .gridUse = NationalGridUse::Own,
     .grid = &kDutchGrid},
};

constexpr bool IsSound(const ProjectionFamily& family, std::size_t row) {
  return static_cast<std::size_t>(family.type) == row && !family.name.empty();
}

static_assert(
    [] {
      for (std::size_t row = 0; row < std::size(kFamilies); ++row) {
        if (!IsSound(kFamilies[row], row)) return false;
      }
      return true;
    }(),
    "a family is in the row of its number, with a name");

constexpr ProjectionFamily kNoFamily = {};

}  // namespace

bool ProjectionFamily::Refuses(const NationalGrid& named) const {
  if (gridUse == NationalGridUse::AnyNamed) return false;
  return grid == nullptr || grid->label != named.label;
}

std::span<const ProjectionFamily> ProjectionFamilies() {
  return kFamilies;
}

const ProjectionFamily& FamilyOf(int projectionType) {
  const bool known = projectionType >= 0 && projectionType < static_cast<int>(std::size(kFamilies));
  return known ? kFamilies[static_cast<std::size_t>(projectionType)] : kNoFamily;
}

std::optional<std::string_view> ProjectionName(int code) {
  const ProjectionFamily& family = FamilyOf(code);
  if (family.name.empty()) return std::nullopt;
  return family.name;
}

std::optional<ProjectionType> ProjectionCode(std::string_view name) {
  if (name.empty()) return std::nullopt;
  for (const ProjectionFamily& family : kFamilies) {
    if (family.name == name || std::ranges::count(family.aliases, name) > 0) return family.type;
  }
  return std::nullopt;
}

}  // namespace tarvex
