#include "coordsys/chain/step_preparation.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>

#include "coordsys/datum/datum_route.h"
#include "coordsys/grids/gr3df97a_grid.h"
#include "core/text/string_table.h"
#include "tests/coordsys/case_table.h"
#include "tests/coordsys/scripted_libraries.h"
#include "tests/support/memory_files.h"

namespace tarvex {
namespace {

using testing::HasSubstr;

constexpr Geodetic kBerlin = {0.9163, 0.2338, 84.0};
constexpr Ellipsoid kBessel = {6377397.155, 0.00334277318217};

// What a preparation takes its files from.
struct Sources {
  MemoryFiles files;
  ScriptedLibraries libraries;
  CountedMessages box;
  RunMessages messages{&box};

  PreparedSteps Prepare(const ProjectionRecord& record, const StepChoice& choice) {
    const StepSources sources = {
        .files = files,
        .dataFolder = "/data/",
        .coordSys = std::make_shared<ClosedLibrary>("CoordSys.dll", libraries),
        .nadConverter = std::make_shared<NadConverter>(
            std::make_shared<ClosedLibrary>("nadconv.dll", libraries), "/data/", &messages),
        .messages = &messages};
    return PrepareSteps(record, choice, sources);
  }
};

ProjectionRecord RecordOf(ProjectionType type, const char* datum, const Ellipsoid& ellipsoid,
                          double dx = 0.0) {
  ProjectionRecord record;
  record.projectionType = static_cast<int>(type);
  record.datumName.Assign(datum);
  record.semiMajorM = ellipsoid.semiMajorM;
  record.flattening = ellipsoid.flattening;
  record.shiftDxM = dx;
  return record;
}

TEST(StepPreparation, ChoosesTheDatumShift) {
  struct Case {
    const char* datum;
    Ellipsoid ellipsoid;
    double dx;
    const char* choice;
    const char* says;  // empty: no step
  };
  const Case cases[] = {
      {"WGS_1984", kWgs84, 0, "", ""},
      {"North_American_Datum_1983", kGrs80, 0, "", ""},
      {"North_American_Datum_1927", kClarke1866, 0, "", "nadconv"},
      {"NAD27", kClarke1866, 0, "", "nadconv"},
      {"D_North_American_1927", kClarke1866, -8, "", "seven parameters"},
      {"D_North_American_1927", kClarke1866, -8, "NAD27", "nadconv"},
      {"NAD27", kClarke1866, -8, "TOWGS84", "seven parameters: -8, 0, 0 m"},
      {"NAD27", kClarke1866, 0, "TOWGS84", "gives no TOWGS84"},
      {"North American Datum 1927 (1976)", kClarke1866, 0, "", ""},
      {"North American Datum 1927 (1976)", kClarke1866, 0, "NONE", "none, as chosen"},
      {"Deutsches_Hauptdreiecksnetz", kBessel, 598, "", "seven parameters"},
      {"Some_Datum", kBessel, 0, "", ""},
      {"Some_Datum", kBessel, 0, "TOWGS84=1,-2.5,3", "seven parameters: 1, -2.5, 3 m; 0, 0, 0"},
      {"Some_Datum", kBessel, 5, "TOWGS84= 1, 2,3,4,5,6,7", "1, 2, 3 m; -4, -5, -6\""},
      {"Some_Datum", kBessel, 0, "TOWGS84=1,2", "is not a datum shift: TOWGS84= takes"},
      {"Some_Datum", kBessel, 0, "TOWGS84=1,2,3,4,5,6,7,8", "not a datum shift"},
      {"Some_Datum", kBessel, 0, "TOWGS84=1,2,feet", "not a datum shift"},
      {"Some_Datum", kBessel, 0, "TOWGS84=1,2,30000", "not a datum shift"},
      {"NTF", kBessel, -168, "GR3DF97A", "gr3df97a.bin does not exist"},
      {"NTF", kBessel, -168, "missing.gsb", "/data/missing.gsb does not exist"},
      {"NTF", kBessel, -168, "/elsewhere/m.GSB", "/elsewhere/m.GSB does not exist"},
      {"NTF", kBessel, -168, "anything", "There is no datum shift \"anything\""},
      {"HD72", kBessel, 52, "VITEL", "seven parameters"},
  };
  for (const Case& c : cases) {
    Sources sources;
    const PreparedSteps made =
        sources.Prepare(RecordOf(ProjectionType::TransverseMercator, c.datum, c.ellipsoid, c.dx),
                        {.shift = c.choice, .geoid = ""});
    ASSERT_EQ(made.steps.datumShift != nullptr, *c.says != '\0') << c.datum << c.choice;
    if (!made.steps.datumShift) continue;
    EXPECT_THAT(made.steps.datumShift->Describe(), HasSubstr(c.says));
    const bool wrong = std::string_view(c.says).find("a datum shift") != std::string_view::npos ||
                       std::string_view(c.says).find("no datum shift") != std::string_view::npos ||
                       std::string_view(c.says).find("gives no") != std::string_view::npos;
    EXPECT_EQ(!made.wrongChoice.empty(), wrong) << c.choice;
    const bool missing = std::string_view(c.says).find("not exist") != std::string_view::npos;
    if (!missing) continue;
    EXPECT_EQ(made.problems.size(), 1U);
    Geodetic at = kBerlin;
    EXPECT_EQ(made.steps.datumShift->ToSystem(at).status, StepStatus::Refused);
  }
}

bool KnowsShift(const ProjectionRecord& record, bool definitionGivesShift) {
  return DatumRouteOf(record, definitionGivesShift) != DatumRoute::Unknown;
}

// Zeros in a definition are a shift; no numbers are none. An intermediate frame lies elsewhere than
// its ellipsoid says.
TEST(StepPreparation, KnowsWhichDatumsNeedAChoice) {
  const auto utm = ProjectionType::TransverseMercator;
  EXPECT_TRUE(KnowsShift(RecordOf(utm, "NAD83", kGrs80), false));
  EXPECT_TRUE(KnowsShift(RecordOf(utm, "NAD27", kClarke1866), false));
  EXPECT_TRUE(KnowsShift(RecordOf(utm, "Xian 1980", kBessel), true));
  EXPECT_FALSE(KnowsShift(RecordOf(utm, "Xian 1980", kBessel), false));
  EXPECT_FALSE(KnowsShift(RecordOf(utm, "IG05 Intermediate Datum", kGrs80), false));
  EXPECT_TRUE(KnowsShift(RecordOf(ProjectionType::ObliqueMercatorEov, "HD72", kBessel), false));

  Sources sources;
  // Types 6, 12 and 15 shift inside: the definition's numbers make no step, and a choice, which
  // would do nothing either, is refused.
  for (const auto type :
       {ProjectionType::TransverseMercatorOstn02, ProjectionType::TransverseMercator34,
        ProjectionType::ObliqueMercatorEov}) {
    EXPECT_EQ(sources.Prepare(RecordOf(type, "D", kBessel, 446.0), {}).steps.datumShift, nullptr);
  }
  const auto eov = ProjectionType::ObliqueMercatorEov;
  const PreparedSteps chosen =
      sources.Prepare(RecordOf(eov, "HD72", kBessel), {.shift = "TOWGS84=1,2,3", .geoid = ""});
  EXPECT_THAT(chosen.wrongChoice, HasSubstr("shifts the datum itself"));
  EXPECT_EQ(
      sources.Prepare(RecordOf(eov, "HD72", kBessel), {.shift = "VITEL", .geoid = ""}).wrongChoice,
      "");
  const PreparedSteps zeros =
      sources.Prepare(RecordOf(utm, "Some_Datum", kBessel),
                      {.shift = "", .geoid = "", .definitionGivesShift = true});
  ASSERT_TRUE(zeros.steps.datumShift);
  EXPECT_THAT(zeros.steps.datumShift->Describe(), HasSubstr("seven parameters: 0, 0, 0 m"));
}

// A shift that cannot belong to the system moves points by 100 m and more.
TEST(StepPreparation, RefusesAShiftOfAnotherCountry) {
  using enum ProjectionType;
  struct Case {
    ProjectionType type;
    const char* datum;
    Ellipsoid ellipsoid;
    const char* choice;
    const char* says;
  };
  const Case cases[] = {
      {LambertConformalConic2SP, "RGF93", kGrs80, "GR3DF97A", "as good as WGS84"},
      {TransverseMercator, "WGS_1984", kWgs84, "NAD27", "as good as WGS84"},
      {TransverseMercatorOstn02, "OSGB_1936", kBessel, "VITEL", "another country"},
      {ObliqueMercatorEov, "HD72", kBessel, "NADCON", "another country"},
      {ObliqueStereographicRd2004, "Amersfoort", kBessel, "VITEL", "another country"},
      {ObliqueStereographicRd2004, "Amersfoort", kBessel, "NADCON", ""},
      {LambertConformalConic2SP, "Belge_1972", kBessel, "Belge 1972 - xyGridLb72", ""},
  };
  for (const Case& c : cases) {
    Sources sources;
    const PreparedSteps made = sources.Prepare(RecordOf(c.type, c.datum, c.ellipsoid, 1.0),
                                               {.shift = c.choice, .geoid = ""});
    EXPECT_EQ(made.wrongChoice.empty(), *c.says == '\0') << c.choice << made.wrongChoice;
    EXPECT_THAT(made.wrongChoice, HasSubstr(c.says));
  }
}

TEST(StepPreparation, StatePlaneZonesOf1927TakeTheConverter) {
  Sources sources;
  const ProjectionRecord zone = RecordOf(ProjectionType::LambertConformalConic27,
                                         "North American Datum 1927", kClarke1866, -8);
  EXPECT_THAT(sources.Prepare(zone, {}).steps.datumShift->Describe(), HasSubstr("nadconv"));
  // The grids that are there are named; none at all is a problem that is told.
  EXPECT_EQ(sources.Prepare(zone, {}).problems.size(), 1U);
  for (const char* file : {"alaska.las", "alaska.los", "conus.las"}) {
    sources.files.Put("/data/NADConv/" + std::string(file), "");
  }
  EXPECT_THAT(sources.Prepare(zone, {}).steps.datumShift->Describe(),
              HasSubstr("grids alaska in /data/NADConv/"));
  EXPECT_EQ(sources.Prepare(zone, {}).problems.size(), 0U);
  const ProjectionRecord hawaii =
      RecordOf(ProjectionType::TransverseMercator27, "Old Hawaiian", kClarke1866, 61);
  EXPECT_THAT(sources.Prepare(hawaii, {}).steps.datumShift->Describe(), HasSubstr("seven"));
}

TEST(StepPreparation, NamedGridsAreUsed) {
  Sources sources;
  sources.files.Put("/data/paris.gsb", TestBytes("datum/paris.gsb"));
  std::string packed;
  ASSERT_TRUE(PackGr3df97a(TestBytes("datum/gr3df97a_paris.txt"), "t", packed).ok());
  sources.files.Put("/data/gr3df97a.bin", packed);
  sources.files.Put("/data/bavaria.gtx", TestBytes("datum/bavaria.gtx"));
  const ProjectionRecord ntf = RecordOf(ProjectionType::LambertConformalConic1SP, "NTF",
                                        {6378249.2, 1.0 - 6356515.0 / 6378249.2}, -168);
  const PreparedSteps ntv2 = sources.Prepare(ntf, {.shift = "paris.gsb", .geoid = "bavaria.gtx"});
  const PreparedSteps french = sources.Prepare(ntf, {.shift = "GR3DF97A", .geoid = ""});
  EXPECT_TRUE(ntv2.problems.empty());
  EXPECT_TRUE(french.problems.empty());
  // The published check point, NTF 48 50 40.2441 N, 2 25 32.4187 E.
  const Geodetic ntfPoint = {(48 + 50 / 60.0 + 40.2441 / 3600) * kRadiansPerDegree,
                             (2 + 25 / 60.0 + 32.4187 / 3600) * kRadiansPerDegree, 0.0};
  for (const auto& steps : {ntv2.steps, french.steps}) {
    Geodetic at = ntfPoint;
    ASSERT_EQ(steps.datumShift->ToWgs84(at).status, StepStatus::Done);
    EXPECT_NEAR(at.latitudeRad, (48 + 50 / 60.0 + 40.0050 / 3600) * kRadiansPerDegree, 3e-10);
    EXPECT_NEAR(at.longitudeRad, (2 + 25 / 60.0 + 29.8960 / 3600) * kRadiansPerDegree, 3e-10);
    ASSERT_EQ(steps.datumShift->ToSystem(at).status, StepStatus::Done);
    EXPECT_NEAR(at.latitudeRad, ntfPoint.latitudeRad, 1e-13);
    EXPECT_NEAR(at.longitudeRad, ntfPoint.longitudeRad, 1e-13);
    at = kBerlin;
    EXPECT_EQ(steps.datumShift->ToSystem(at), (StepOutcome{StepStatus::Refused, 4151}));
  }
  double undulation = 0.0;
  EXPECT_EQ(
      ntv2.steps.geoid->Undulation(48.1 * kRadiansPerDegree, 11.5 * kRadiansPerDegree, undulation)
          .status,
      StepStatus::Done);
  EXPECT_NEAR(undulation, 46.6579, 1e-3);
  EXPECT_EQ(ntv2.steps.geoid->Undulation(0.2, 0.2, undulation).status, StepStatus::Refused);
  const PreparedSteps lost = sources.Prepare(ntf, {.shift = "", .geoid = "g.gtx"});
  EXPECT_EQ(lost.steps.geoid->Undulation(0.2, 0.2, undulation),
            (StepOutcome{StepStatus::Refused, 4161}));
  EXPECT_THAT(lost.problems, testing::ElementsAre("The grid file /data/g.gtx does not exist."));
}

// 6 x 6 nodes of 1 km from (100, 200) km with one value.
std::string FlatSurface(const char* value) {
  std::string text = "100000\n200000\n105000\n205000\n5\n5\n";
  for (int i = 0; i < 36; ++i) text += std::string(value) + '\n';
  return text;
}

TEST(StepPreparation, CorrectsProjectedCoordinates) {
  Sources sources;
  sources.files.Put("/data/X2c.grd", FlatSurface("0.25"));
  sources.files.Put("/data/Y2c.grd", FlatSurface("-0.125"));
  sources.files.Put("/data/HungarianEOV_dEast.grd", FlatSurface("0.5"));
  sources.files.Put("/data/HungarianEOV_dNorth.grd", FlatSurface("-1"));
  sources.files.Put("/data/HungarianEOV_dHeight.grd", FlatSurface("2"));
  sources.files.Put("/data/Belgium72_dEast.grd", FlatSurface("999.999"));
  sources.files.Put("/data/Belgium72_dNorth.grd", FlatSurface("1"));
  struct Case {
    ProjectionType type;
    const char* choice;
    GridMetres made;
    int reason;
  };
  using enum ProjectionType;
  const GridMetres plane = {202500, 102500, 10};
  const Case cases[] = {
      {ObliqueStereographicRd2000, "", {202500.125, 102499.75, 10}, 0},
      {ObliqueStereographicRd2004, "", {202500.125, 102499.75, 10}, 0},
      {ObliqueStereographic, "NADCON", {202500.125, 102499.75, 10}, 0},
      {ObliqueMercatorEov, "VITEL", {202499, 102500.5, 12}, 0},
      {LambertConformalConic2SP, "Belge 1972 - xyGridLb72", plane, 4152},
      {TransverseMercatorOstn02, "", plane, 4162},
  };
  for (const Case& c : cases) {
    const PreparedSteps made =
        sources.Prepare(RecordOf(c.type, "D", kBessel, 1.0), {.shift = c.choice, .geoid = ""});
    ASSERT_NE(made.steps.gridCorrection, nullptr);
    GridMetres at = plane;
    const StepOutcome outcome = made.steps.gridCorrection->ToGrid(at);
    EXPECT_EQ(outcome.reason, c.reason);
    EXPECT_EQ(outcome.status, c.reason == 0 ? StepStatus::Done : StepStatus::LeftUndone);
    EXPECT_EQ(at, c.made);
    if (c.reason != 0) continue;
    ASSERT_EQ(made.steps.gridCorrection->ToPlane(at).status, StepStatus::Done);
    EXPECT_NEAR(at.eastingM, plane.eastingM, 1e-7);
    EXPECT_NEAR(at.elevationM, plane.elevationM, 1e-9);
    GridMetres far = {0, 0, 0};
    EXPECT_EQ(made.steps.gridCorrection->ToGrid(far), (StepOutcome{StepStatus::LeftUndone, 4151}));
    EXPECT_EQ(far, GridMetres{});
  }
  EXPECT_EQ(
      sources.Prepare(RecordOf(TransverseMercator, "D", kBessel, 1.0), {}).steps.gridCorrection,
      nullptr);
}

// 5 x 5 km from a corner with one value; a node may hold another.
std::string SurfaceFrom(int east, const std::string& value, int markedNode = -1,
                        const std::string& mark = "") {
  std::string text =
      std::to_string(east) + "\n200000\n" + std::to_string(east + 5000) + "\n205000\n5\n5\n";
  for (int i = 0; i < 36; ++i) text += (i == markedNode ? mark : value) + '\n';
  return text;
}

// A grid without a value gives 0 by itself, which is told; 999.999 ends the whole correction.
TEST(StepPreparation, EachGridTurnsToZeroByItself) {
  struct Case {
    std::string east;
    std::string north;
    std::string height;
    GridMetres made;
    int reason;
  };
  const std::string whole = SurfaceFrom(100000, "0.5");
  const std::string elsewhere = SurfaceFrom(300000, "0.5");
  const std::string noValue = SurfaceFrom(100000, "0.5", 14, "-98765432.1");
  const std::string noValueEither = SurfaceFrom(100000, "0.5", 14, "-765432.1");
  const std::string marked = SurfaceFrom(100000, "0.5", 14, "999.999");
  const GridMetres plane = {202500, 102500, 10};
  const Case cases[] = {
      {whole, whole, whole, {202500.5, 102500.5, 10.5}, 0},
      {whole, whole, elsewhere, {202500.5, 102500.5, 10}, 4174},
      {whole, noValue, whole, {202500, 102500.5, 10.5}, 4172},
      {noValueEither, whole, whole, {202500.5, 102500, 10.5}, 4171},
      {elsewhere, noValue, whole, {202500, 102500, 10.5}, 4173},
      {elsewhere, elsewhere, elsewhere, plane, 4151},
      {noValue, noValue, noValue, plane, 4152},
      {whole, marked, whole, plane, 4152},
      {whole, elsewhere, marked, plane, 4152},
  };
  for (const Case& c : cases) {
    Sources sources;
    sources.files.Put("/data/HungarianEOV_dEast.grd", c.east);
    sources.files.Put("/data/HungarianEOV_dNorth.grd", c.north);
    sources.files.Put("/data/HungarianEOV_dHeight.grd", c.height);
    const PreparedSteps made =
        sources.Prepare(RecordOf(ProjectionType::ObliqueMercatorEov, "HD72", kBessel),
                        {.shift = "VITEL", .geoid = ""});
    GridMetres at = plane;
    const StepOutcome outcome = made.steps.gridCorrection->ToGrid(at);
    EXPECT_EQ(outcome.reason, c.reason);
    EXPECT_EQ(outcome.status, c.reason == 0 ? StepStatus::Done : StepStatus::LeftUndone);
    EXPECT_EQ(at, c.made) << c.reason;
    EXPECT_EQ(made.steps.gridCorrection->ToPlane(at), outcome);
    EXPECT_NEAR(at.northingM, plane.northingM, 1e-7);
    EXPECT_NEAR(at.eastingM, plane.eastingM, 1e-7);
    EXPECT_NEAR(at.elevationM, plane.elevationM, 1e-9);
  }
}

// Damaged nodes: no place on the plane is corrected to this one, and none is made up.
TEST(StepPreparation, AWayBackThatDoesNotCloseIsRefused) {
  Sources sources;
  std::string wild = "100000\n200000\n105000\n205000\n5\n5\n";
  for (int i = 0; i < 36; ++i) wild += i % 2 == 0 ? "3000\n" : "-3000\n";
  sources.files.Put("/data/Belgium72_dEast.grd", wild);
  sources.files.Put("/data/Belgium72_dNorth.grd", SurfaceFrom(100000, "0.5"));
  const PreparedSteps made =
      sources.Prepare(RecordOf(ProjectionType::LambertConformalConic2SP, "D", kBessel, 1.0),
                      {.shift = "Belge 1972 - xyGridLb72", .geoid = ""});
  int refused = 0;
  for (double easting = 102000; easting < 103000; easting += 37) {
    const GridMetres start = {202400, easting, 0};
    GridMetres at = start;
    const StepOutcome outcome = made.steps.gridCorrection->ToPlane(at);
    if (outcome.status == StepStatus::Refused) {
      EXPECT_EQ(outcome.reason, 4177);
      EXPECT_EQ(at, start);
      ++refused;
    } else if (outcome.status == StepStatus::Done) {
      EXPECT_EQ(made.steps.gridCorrection->ToGrid(at).status, StepStatus::Done);
      EXPECT_NEAR(at.eastingM, easting, 1e-5);
    }
  }
  EXPECT_GT(refused, 0);
}

TEST(StepPreparation, MissingHungarianGridsAreToldOnceInTheRun) {
  Sources sources;
  sources.files.Put("/data/HungarianEOV_dEast.grd", FlatSurface("0.5"));
  for (int i = 0; i < 3; ++i) {
    const PreparedSteps made =
        sources.Prepare(RecordOf(ProjectionType::ObliqueMercatorEov, "HD72", kBessel),
                        {.shift = "VITEL", .geoid = ""});
    GridMetres at = {1, 2, 3};
    EXPECT_EQ(made.steps.gridCorrection->ToGrid(at), (StepOutcome{StepStatus::LeftUndone, 1703}));
    EXPECT_EQ(at, (GridMetres{1, 2, 3}));
    EXPECT_THAT(made.problems,
                testing::ElementsAre(HasSubstr("HungarianEOV_dNorth.grd does not exist")));
  }
  EXPECT_THAT(sources.box.texts, testing::ElementsAre(Strings().Text(1703)));
}

TEST(StepPreparation, BritishShiftsComeFromTheTwoParts) {
  Sources sources;
  const auto part = [](int baseMm, int aboveMm) {
    std::string bytes = "OSG2";
    const auto append = [&bytes](auto value) {
      char raw[sizeof value];
      std::memcpy(raw, &value, sizeof value);
      bytes.append(raw, sizeof value);
    };
    append(std::uint32_t{1});
    append(std::uint16_t{3});
    append(std::uint16_t{3});
    append(std::uint32_t{400'000});
    append(std::int32_t{baseMm});
    bytes.append(12, '\0');
    for (int i = 0; i < 9; ++i) append(static_cast<std::uint16_t>(aboveMm));
    return bytes;
  };
  // The worked example of the transformation's guide: ETRS89 651307.003, 313255.686 to the National
  // Grid 651409.792, 313177.448.
  sources.files.Put("/data/ostn02_x.bin", part(86'000, 16'789));
  sources.files.Put("/data/ostn02_y.bin", part(-82'000, 3'762));
  const PreparedSteps made = sources.Prepare(
      RecordOf(ProjectionType::TransverseMercatorOstn02, "OSGB_1936", kBessel, 446), {});
  GridMetres at = {313255.686, 651307.003, 0};
  ASSERT_EQ(made.steps.gridCorrection->ToGrid(at).status, StepStatus::Done);
  EXPECT_NEAR(at.eastingM, 651409.792, 1e-6);
  EXPECT_NEAR(at.northingM, 313177.448, 1e-6);
  ASSERT_EQ(made.steps.gridCorrection->ToPlane(at).status, StepStatus::Done);
  EXPECT_NEAR(at.eastingM, 651307.003, 1e-6);
}

}  // namespace
}  // namespace tarvex
