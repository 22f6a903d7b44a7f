// The families of NAD27, Great Britain and Hungary, against published values and their own rules.
#include <gtest/gtest.h>

#include <cmath>
#include <random>

#include "coordsys/catalogue/state_plane_zones.h"
#include "coordsys/catalogue/system_catalogue.h"
#include "coordsys/definition/definition_reader.h"
#include "coordsys/projections/alaska27.h"
#include "coordsys/projections/nad27.h"
#include "coordsys/projections/projection.h"
#include "core/units/units.h"
#include "tests/coordsys/modules.h"

namespace tarvex {
namespace {

constexpr double kFootM = kUsFeetToMetres;

MadeProjection Catalogued(std::string_view name) {
  const SystemCatalogue catalogue(SystemFiles(), TARVEX_DATA_FOLDER);
  ProjectionRecord record;
  DefinitionFacts facts;
  ReadDefinition(catalogue.Find(name).value_or(NamedSystem{}).definition, record, facts, nullptr);
  return MakeProjection(record);
}

PlanePoint Forward(const Projection& projection, double latitudeDeg, double longitudeDeg) {
  PlanePoint point;
  EXPECT_EQ(projection.Forward({latitudeDeg * kRadiansPerDegree, longitudeDeg * kRadiansPerDegree},
                               point),
            ProjectionResult::Done);
  return point;
}

LatLon Inverse(const Projection& projection, PlanePoint point) {
  LatLon position;
  EXPECT_EQ(projection.Inverse(point, position), ProjectionResult::Done);
  return position;
}

// Each constant of a zone is taken from its series coefficient, or else from the field that says
// the same in metres and degrees.
TEST(Alaska27, EachConstantMayComeInEitherForm) {
  const auto zone = [](double falseEastingM, double longitudeDeg, double e0Ft, double cmS) {
    ProjectionRecord record = Nad27ZoneOfCode(124)->record;
    record.falseEastingM = falseEastingM;
    record.centralMeridianDeg = record.longitudeOfCenterDeg = longitudeDeg;
    record.coefficients = {e0Ft, cmS, e0Ft};
    return Forward(*MakeProjection(record).value(), 60.0, -150.5);
  };
  const PlanePoint whole = zone(0.0, 0.0, 500000.0, 540000.0);
  for (const PlanePoint& point :
       {zone(152400.3048, -150.0, 0.0, 0.0), zone(152400.3048, 0.0, 0.0, 540000.0),
        zone(0.0, -150.0, 500000.0, 0.0), zone(1.0, 1.0, 500000.0, 540000.0)}) {
    EXPECT_NEAR(point.eastingM, whole.eastingM, 1e-4);
    EXPECT_NEAR(point.northingM, whole.northingM, 1e-4);
  }
}

// Points of the zones computed with the transverse Mercator of PROJ 9.1.1 (k0 0.9999, origin 54 N,
// Clarke 1866): the series is 0.00015 ft from it.
TEST(Alaska27, MeetsTheExactProjectionOverItsZones) {
  struct Case {
    int zoneCode;
    double latitudeDeg;
    double longitudeDeg;
    double northingFt;
    double eastingFt;
  };
  const Case cases[] = {
      {121, 56, -140.5, 733734.86933, 807017.81726},
      {121, 64, -143.9, 3658891.73399, 195032.30017},
      {121, 70.5, -140, 6036512.38623, 744502.52346},
      {124, 56, -152.5, 733734.86933, 807017.81726},
      {124, 64, -155.9, 3658891.73399, 195032.30017},
      {124, 70.5, -152, 6036512.38623, 744502.52346},
      {126, 56, -160.5, 733734.86933, 1007017.81726},
      {126, 64, -163.9, 3658891.73399, 395032.30017},
      {126, 70.5, -160, 6036512.38623, 944502.52346},
      {128, 56, -168.5, 733734.86933, 907017.81726},
      {128, 64, -171.9, 3658891.73399, 295032.30017},
      {128, 70.5, -168, 6036512.38623, 844502.52346},
  };
  for (const Case& c : cases) {
    const auto zone = Nad27ZoneOfCode(c.zoneCode);
    const auto made = MakeProjection(zone->record);
    const PlanePoint point = Forward(**made, c.latitudeDeg, c.longitudeDeg);
    EXPECT_NEAR(point.northingM / kFootM, c.northingFt, 2e-4);
    EXPECT_NEAR(point.eastingM / kFootM, c.eastingFt, 2e-4);
    const LatLon back = Inverse(**made, point);
    EXPECT_NEAR(back.latitudeRad, c.latitudeDeg * kRadiansPerDegree, 1e-14);
    EXPECT_NEAR(back.longitudeRad, c.longitudeDeg * kRadiansPerDegree, 2e-14);
  }
}

TEST(Alaska27, FollowsItsFormula) {
  const auto zone = Nad27ZoneOfCode(121);
  const auto made = MakeProjection(zone->record);
  // On the central meridian the easting is the false easting.
  EXPECT_EQ(Forward(**made, 61.5, -142.0).eastingM, 500000.0 * kFootM);
  // Coefficients win over the record's metres; without them the metres serve.
  ProjectionRecord metres = zone->record;
  metres.coefficients.fill(0.0);
  const PlanePoint a = Forward(**made, 61.5, -140.0);
  const PlanePoint b = Forward(*MakeProjection(metres).value(), 61.5, -140.0);
  EXPECT_NEAR(a.eastingM, b.eastingM, 1e-6);
  EXPECT_NEAR(a.northingM, b.northingM, 1e-9);
  PlanePoint point;
  EXPECT_EQ((*made)->Forward({0.5, -2.5}, point), ProjectionResult::OutsideDomain);
  EXPECT_EQ((*made)->Forward({1.1, 2.5}, point), ProjectionResult::OutsideDomain);
}

// The scale factor takes the longitude argument where the easting would be expected: with a false
// easting of 500,000 feet it is the same at any distance from the central meridian.
TEST(Alaska27, PointScaleTakesTheLongitudeArgument) {
  const auto made = MakeProjection(Nad27ZoneOfCode(121)->record);
  for (const double longitudeDeg : {-142.0, -140.0, -143.9}) {
    const double c = std::cos(61.5 * kRadiansPerDegree);
    const double w = 1.0 + 0.0068147849 * c * c;
    const auto scale =
        (*made)->PointScale({61.5 * kRadiansPerDegree, longitudeDeg * kRadiansPerDegree});
    ASSERT_TRUE(scale);
    EXPECT_NEAR(*scale, 0.9999 * (1.0 + 0.0011343362410670325 * 0.25 * w * w), 1e-8);
  }
  const double exact = AlaskaPointScale(1.0, 2.5, 500000.0);
  const double c = std::cos(1.0);
  const double x = (2.5 - 500000.0) * 0.000001;
  const double w = 1.0 + 0.0068147849 * c * c;
  EXPECT_DOUBLE_EQ(exact, 0.9999 * (1.0 + 0.0011343362410670325 * x * x * w * w));
}

// The scale factors that PROJ 9.1.1 prints, and the lengths of short steps to the north and east.
TEST(TransverseMercator27, GivesItsPointScale) {
  const auto made = Catalogued("USA/NAD27/Illinois East");
  struct Case {
    double latitudeDeg;
    double longitudeDeg;
    double scale;
  };
  for (const Case& c : {Case{41.8, -88.0, 0.999984}, {37.0, -90.0, 1.00025}, {-60, -70, 1.013}}) {
    const LatLon at{c.latitudeDeg * kRadiansPerDegree, c.longitudeDeg * kRadiansPerDegree};
    const auto scale = (*made)->PointScale(at);
    ASSERT_TRUE(scale);
    if (c.latitudeDeg > 0) {
      EXPECT_NEAR(*scale, c.scale, 5e-6);
    }
    constexpr double kStep = 1e-6;
    constexpr double kE2 = 0.006768657997291;  // Clarke 1866
    const double w2 = 1.0 - kE2 * std::sin(at.latitudeRad) * std::sin(at.latitudeRad);
    const double meridianM = 6378206.4 * (1.0 - kE2) / (w2 * std::sqrt(w2));
    const PlanePoint south =
        Forward(**made, c.latitudeDeg - kStep / kRadiansPerDegree, c.longitudeDeg);
    const PlanePoint north =
        Forward(**made, c.latitudeDeg + kStep / kRadiansPerDegree, c.longitudeDeg);
    const double lengthM =
        std::hypot(north.northingM - south.northingM, north.eastingM - south.eastingM);
    EXPECT_NEAR(*scale, lengthM / (2.0 * kStep * meridianM), 2e-9);
  }
  EXPECT_FALSE((*made)->PointScale({0.5, 3.0}));
}

// C&GS Publication 62-4 and NOS NGS 5, both for 58.5 N 135 W; the first prints its constants to 9
// digits, which leaves 4 thousandths of a foot.
TEST(AlaskaZone1, MeetsThePublishedPoint) {
  const PlanePoint nad27 = Forward(*Catalogued("USA/NAD27/Alaska zone 1").value(), 58.5, -135.0);
  EXPECT_NEAR(nad27.eastingM / kFootM, 2430571.0149, 5e-3);
  EXPECT_NEAR(nad27.northingM / kFootM, 2437747.1212, 5e-3);
  const PlanePoint nad83 = Forward(*Catalogued("USA/NAD83/Alaska zone 1").value(), 58.5, -135.0);
  EXPECT_NEAR(nad83.eastingM, 740933.6477, 1e-4);
  EXPECT_NEAR(nad83.northingM, 742902.5217, 1e-4);
}

TEST(Nad27, WorksInUsSurveyFeet) {
  ProjectionRecord record = Nad27ZoneOfCode(0)->record;
  ASSERT_EQ(record.projectionType, 9);
  record.falseEastingM = 0.0;
  record.falseNorthingM = 0.0;
  const auto feet = MakeProjection(record);
  // The same projection written over feet: a point of 1000 m is its point of 3280.833333333.
  record.projectionType = 1;
  record.semiMajorM = 6378206.4;
  const auto metres = MakeProjection(record);
  const LatLon fromFeet = Inverse(**feet, {1000.0, 1000.0});
  const LatLon fromMetres = Inverse(**metres, {3280.833333333 * kFootM, 3280.833333333 * kFootM});
  EXPECT_NEAR(fromFeet.latitudeRad, fromMetres.latitudeRad, 1e-15);
  EXPECT_NEAR(fromFeet.longitudeRad, fromMetres.longitudeRad, 1e-15);

  const DegreesMinutesSeconds latitude{31, 30, 36};
  const DegreesMinutesSeconds longitude{-85, -50, -24};
  EXPECT_NEAR(ToRadians(latitude), 31.51 * kRadiansPerDegree, 1e-15);
  PlanePoint entered;
  ASSERT_EQ(ForwardFromEntry(**feet, latitude, longitude, entered), ProjectionResult::Done);
  const PlanePoint typed = Forward(**feet, 31.51, -85.84);
  EXPECT_NEAR(entered.northingM, typed.northingM, 1e-8);
  EXPECT_NEAR(entered.eastingM, typed.eastingM, 1e-8);
}

TEST(Ostn02, ProjectsOnGrs80) {  // the worked point of the Ordnance Survey's guide
  const auto made = Catalogued("GREAT BRITAIN/OSGB36/National Grid OSTN02");
  ASSERT_TRUE(made);
  const PlanePoint point = Forward(**made, 52.658007833, 1.716073973);
  EXPECT_NEAR(point.eastingM, 651307.003, 2e-3);
  EXPECT_NEAR(point.northingM, 313255.686, 2e-3);
}

// The closed library shifts WGS84 to HD72 itself; with a shift of a millionth of a millimetre the
// values are those of the projection alone, published for HD72 positions.
TEST(Eov, MeetsThePublishedPoints) {
  RequireModules();
  ProjectionRecord record;
  record.semiMajorM = 6378160.0;
  record.flattening = 1.0 / 298.247167427;
  record.projectionType = static_cast<int>(ProjectionType::ObliqueMercatorEov);
  record.shiftDxM = 1e-9;
  const auto made = MakeProjection(record);
  struct Case {
    double latitudeDeg, longitudeDeg, eastingM, northingM;
  };
  for (const Case& c :
       {Case{47.5, 19.04, 649354.2021, 239532.9436}, Case{46.2, 16.4, 445598.9690, 98483.0072},
        Case{48.2, 22.5, 906511.3857, 323030.1092}}) {
    // WGS84 and HD72 ellipsoids differ: the position that stands on the HD72 one.
    const LatLon there = Inverse(**made, {c.northingM, c.eastingM});
    const PlanePoint again = Forward(**made, there.latitudeRad * kDegreesPerRadian,
                                     there.longitudeRad * kDegreesPerRadian);
    EXPECT_NEAR(again.eastingM, c.eastingM, 1e-6);
    EXPECT_NEAR(again.northingM, c.northingM, 1e-6);
    EXPECT_NEAR(there.latitudeRad, c.latitudeDeg * kRadiansPerDegree, 2e-6);
    EXPECT_NEAR(there.longitudeRad, c.longitudeDeg * kRadiansPerDegree, 2e-11);
  }
  const auto official = Catalogued("HUNGARY/HD72/EOV");
  const PlanePoint budapest = Forward(**official, 47.5, 19.04);
  EXPECT_NEAR(budapest.eastingM, 649439.0140, 1e-3);  // PROJ 9.1.1: EPSG 4326 to 23700 by 1448
  EXPECT_NEAR(budapest.northingM, 239562.8270, 1e-3);
}

}  // namespace
}  // namespace tarvex
