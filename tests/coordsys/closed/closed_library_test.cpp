#include "coordsys/closed/closed_library.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>
#include <memory>
#include <string>
#include <vector>

#include "coordsys/closed/coord_sys_interface.h"
#include "coordsys/definition/definition_writer.h"
#include "coordsys/projections/projection.h"
#include "core/units/units.h"
#include "tests/coordsys/modules.h"
#include "tests/coordsys/scripted_libraries.h"

namespace tarvex {
namespace {

int Doubled(double first, double second, double* firstOut, double* secondOut,
            const CoordSysParameters*) {
  if (first < 0.0) return 0;
  *firstOut = 2.0 * first;
  *secondOut = 2.0 * second;
  return 1;
}

ProjectionRecord Record(ProjectionType type, int area = 0) {
  ProjectionRecord record;
  record.semiMajorM = 6377397.155;
  record.flattening = 1.0 / 299.1528128;
  record.projectionType = static_cast<int>(type);
  record.latitudeOfOriginDeg = record.latitudeOfCenterDeg = 46.0;
  record.centralMeridianDeg = record.longitudeOfCenterDeg = 10.0;
  record.standardParallel2OrAzimuthDeg = 45.0;
  record.scaleFactor = 1.0;
  record.denmarkArea = area;
  return record;
}

TEST(ClosedLibrary, IsLoadedOnFirstUseAndEachEntryIsLookedUpOnce) {
  ScriptedLibraries libraries;
  libraries.entries["latLong2XY_CassiniSoldner"] = reinterpret_cast<void*>(&Doubled);
  const auto library = std::make_shared<ClosedLibrary>("CoordSys.dll", libraries);
  const auto made = MakeProjection(Record(ProjectionType::CassiniSoldner), library);
  ASSERT_TRUE(made);
  EXPECT_TRUE(libraries.asked.empty());
  PlanePoint point;
  ASSERT_EQ((*made)->Forward({0.5, 0.25}, point), ProjectionResult::Done);
  EXPECT_EQ(point, (PlanePoint{1.0, 0.5}));
  EXPECT_EQ((*made)->Forward({-0.5, 0.25}, point), ProjectionResult::OutsideDomain);
  LatLon position;
  EXPECT_EQ((*made)->Inverse({1.0, 2.0}, position), ProjectionResult::LibraryMissing);
  EXPECT_EQ((*made)->Inverse({1.0, 2.0}, position), ProjectionResult::LibraryMissing);
  EXPECT_THAT(libraries.asked, testing::ElementsAre("CoordSys.dll", "latLong2XY_CassiniSoldner",
                                                    "XY2latLong2_CassiniSoldner"));
}

TEST(ClosedLibrary, AFailedLoadIsRememberedAndToldOnce) {
  ScriptedLibraries libraries;
  libraries.loads = false;
  CountedMessages messages;
  const auto library = std::make_shared<ClosedLibrary>("CoordSys.dll", libraries, &messages);
  for (const ProjectionType type :
       {ProjectionType::TransverseMercator34, ProjectionType::CassiniSoldner,
        ProjectionType::ObliqueMercator, ProjectionType::ObliqueMercatorEov}) {
    const auto made = MakeProjection(Record(type), library);
    ASSERT_TRUE(made);
    PlanePoint point{1.0, 2.0};
    EXPECT_EQ((*made)->Forward({0.8, 0.2}, point), ProjectionResult::LibraryMissing);
    EXPECT_EQ(point, (PlanePoint{1.0, 2.0}));
    libraries.loads = true;
  }
  EXPECT_THAT(libraries.asked, testing::ElementsAre("CoordSys.dll"));
  EXPECT_THAT(messages.texts, testing::ElementsAre(testing::HasSubstr("CoordSys.dll")));
}

int NoNumbers(double, double, double* firstOut, double* secondOut, const CoordSysParameters*) {
  *firstOut = std::numeric_limits<double>::quiet_NaN();
  *secondOut = std::numeric_limits<double>::infinity();
  return 1;
}

TEST(ClosedLibrary, IsLoadedAfreshAfterItWasClosed) {
  ScriptedLibraries libraries;
  libraries.entries["latLong2XY_CassiniSoldner"] = reinterpret_cast<void*>(&Doubled);
  const auto library = std::make_shared<ClosedLibrary>("CoordSys.dll", libraries);
  const auto made = MakeProjection(Record(ProjectionType::CassiniSoldner), library);
  PlanePoint point;
  ASSERT_EQ((*made)->Forward({0.5, 0.25}, point), ProjectionResult::Done);
  library->Close();
  // What the name leads to now is not what it led to before.
  libraries.entries["latLong2XY_CassiniSoldner"] = reinterpret_cast<void*>(&NoNumbers);
  EXPECT_EQ((*made)->Forward({0.5, 0.25}, point), ProjectionResult::OutsideDomain);
  EXPECT_EQ(point, (PlanePoint{1.0, 0.5}));
  EXPECT_THAT(libraries.asked, testing::ElementsAre("CoordSys.dll", "latLong2XY_CassiniSoldner",
                                                    "CoordSys.dll", "latLong2XY_CassiniSoldner"));
}

TEST(ClosedLibrary, AnEntryThatIsMissingIsNamedOnce) {
  ScriptedLibraries libraries;
  CountedMessages messages;
  const auto library = std::make_shared<ClosedLibrary>("CoordSys.dll", libraries, &messages);
  const auto made = MakeProjection(Record(ProjectionType::ObliqueMercator), library);
  PlanePoint point;
  for (int i = 0; i < 3; ++i) {
    EXPECT_EQ((*made)->Forward({0.8, 0.2}, point), ProjectionResult::LibraryMissing);
  }
  EXPECT_THAT(messages.texts, testing::ElementsAre(testing::AllOf(
                                  testing::HasSubstr("CoordSys.dll"),
                                  testing::HasSubstr("no entry \"latLong2XY_ObliqueMercator\""))));
}

TEST(ClosedLibrary, EveryFamilyAsksForItsOwnEntries) {
  struct Case {
    ProjectionType type;
    int area;
    const char* toGrid;
    const char* toGeodetic;
  };
  const Case cases[] = {
      {ProjectionType::TransverseMercator34, 0, "latlongWGS84ToXYSys34Jylland",
       "XYSys34Jylland2latlongWGS84"},
      {ProjectionType::TransverseMercator34, 1, "latlongWGS84ToXYSys34Sjlland",
       "XYSys34Sjlland2latlongWGS84"},
      {ProjectionType::TransverseMercator34, 2, "latlongWGS84ToXYSys45Bornholm",
       "XYSys34Bornholm2latlongWGS84"},
      {ProjectionType::TransverseMercator34, 3, "latlongWGS84ToXYSys34UTM32ED50",
       "XYSys34UTM32ED502latlongWGS84"},
      {ProjectionType::CassiniSoldner, 0, "latLong2XY_CassiniSoldner",
       "XY2latLong2_CassiniSoldner"},
      {ProjectionType::ObliqueMercator, 0, "latLong2XY_ObliqueMercator",
       "XY2latLong_ObliqueMercator"},
      {ProjectionType::ObliqueMercatorEov, 0, "latLongWGS84ToXY_EOV", "EOV_XYToLatLongWGS84"},
  };
  RequireModules();
  for (const Case& c : cases) {
    ScriptedLibraries libraries;
    const auto library = std::make_shared<ClosedLibrary>("CoordSys.dll", libraries);
    const auto made = MakeProjection(Record(c.type, c.area), library);
    PlanePoint point;
    LatLon position;
    EXPECT_EQ((*made)->Forward({0.8, 0.2}, point), ProjectionResult::LibraryMissing);
    EXPECT_EQ((*made)->Inverse({0.8, 0.2}, position), ProjectionResult::LibraryMissing);
    EXPECT_THAT(libraries.asked, testing::ElementsAre("CoordSys.dll", c.toGrid, c.toGeodetic));
    for (const char* name : {c.toGrid, c.toGeodetic}) {  // and our own module has them
      EXPECT_NE(SystemCoordSysLibrary()->Entry<CoordSysConversion>(name), nullptr) << name;
    }
  }
  EXPECT_EQ(MakeProjection(Record(ProjectionType::TransverseMercator34, 4)).failure().code,
            ProjectionFault::Area);
}

// Values of the Danish national survey's polynomials, computed independently of this system.
TEST(CoordSysModule, DanishSystems) {
  struct Case {
    int area;
    double latitudeDeg;
    double longitudeDeg;
    double northingM;
    double eastingM;
  };
  const Case cases[] = {
      {0, 56.2000, 9.5000, 197007.7420, 264324.8428},
      {0, 57.0000, 10.0000, 285802.5845, 232806.7606},
      {0, 55.4000, 8.9000, 108596.5390, 303466.1977},
      {1, 55.6000, 12.1000, 131212.0719, 101288.2211},
      {1, 55.9000, 12.4000, 165111.5842, 83362.4825},
      {1, 55.1000, 11.9000, 75265.1240, 112663.8519},
      {2, 55.1000, 14.9000, 48696.7191, 49315.3561},
      {2, 55.2000, 14.8000, 59833.4235, 55683.7531},
      {3, 56.2000, 9.5000, 6228658.9379, 531103.4769},
      {3, 55.6000, 12.1000, 6166129.3768, 695379.4660},
  };
  RequireModules();
  for (const Case& c : cases) {
    const auto made = MakeProjection(Record(ProjectionType::TransverseMercator34, c.area));
    ASSERT_TRUE(made);
    const LatLon position{c.latitudeDeg * kRadiansPerDegree, c.longitudeDeg * kRadiansPerDegree};
    PlanePoint point;
    ASSERT_EQ((*made)->Forward(position, point), ProjectionResult::Done);
    EXPECT_NEAR(point.northingM, c.northingM, 1e-3);
    EXPECT_NEAR(point.eastingM, c.eastingM, 1e-3);
    LatLon back;
    ASSERT_EQ((*made)->Inverse(point, back), ProjectionResult::Done);
    EXPECT_NEAR(back.latitudeRad, position.latitudeRad, 1e-13);
    EXPECT_NEAR(back.longitudeRad, position.longitudeRad, 1e-13);
    EXPECT_EQ((*made)->Forward({0.8, 0.9}, point), ProjectionResult::OutsideDomain);
  }
}

}  // namespace
}  // namespace tarvex
