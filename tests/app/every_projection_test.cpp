// A job on each kind of projection: what a receiver sends is stored as a point and found again, and
// the libraries that compute the special ones can be taken away and put back.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <filesystem>
#include <optional>

#include "coordsys/projections/projection_families.h"
#include "tests/app/json_reading.h"
#include "tests/app/program_run.h"
#include "tests/support/british_text.h"

namespace tarvex {
namespace {

using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

constexpr double kHeightM = 200.0;

struct Place {
  double latitude = 0.0;
  double longitude = 0.0;
};

// The grid coordinates by PROJ 9.1.1 with the same parameters; none where it has no such system.
struct Grid {
  double northing = 0.0;
  double easting = 0.0;
};

struct Site {
  ProjectionType type;
  const char* system;
  Place place;
  std::optional<Grid> grid;
  const char* datumShift = "";
};

void PrintTo(const Site& site, std::ostream* out) {
  *out << site.system;
}

using enum ProjectionType;

const Site kSites[] = {
    {LambertConformalConic2SP,
     "FRANCE/RGF93/Lambert-93",
     {48.85, 2.35},
     {{6861302.7259, 652301.5648}}},
    {TransverseMercator, "UTM/UTM WGS84 Zone 32", {47.28, 8.56}, {{5236374.1302, 466723.9302}}},
    {ObliqueStereographic,
     "NETHERLANDS/Amersfoort/RD New",
     {52.1, 5.4},
     {{456861.6152, 155876.8139}}},
    {LambertConformalConic1SP,
     "FRANCE/NTF (Paris)/Lambert zone II",
     {46.8, 2.4},
     {{2200007.6061, 604844.4194}}},
    {ObliqueMercator83, "USA/NAD83/Alaska zone 1", {57.2, -133.9}, {{597391.8930, 804574.1167}}},
    {Stereographic,
     "ANTARCTICA/WGS 84/Antarctic Polar Stereographic",
     {-77.85, 166.67},
     {{-1289201.5377, 305467.1627}}},
    {TransverseMercatorOstn02,
     "GREAT BRITAIN/OSGB36/National Grid OSTN02",
     {52.658007833, 1.716073973},
     {{313177.458, 651409.807}}},
    {ObliqueStereographicRd2000,
     "NETHERLANDS/Amersfoort/RD2000",
     {52.1, 5.4},
     {{456861.6242 + 0.25, 155876.8124 - 0.125}}},
    {ObliqueMercator27,
     "USA/NAD27/Alaska zone 1",
     {57.2, -133.9},
     {{597558.3875, 804579.7765}},
     "TOWGS84"},
    {TransverseMercator27, "USA/NAD27/Illinois East", {41.8, -88.0}, {}},
    {LambertConformalConic27, "USA/NAD27/Texas South Central", {29.76, -95.37}, {}},
    {TransverseMercatorAlaska27,
     "USA/NAD27/Alaska zone 4",
     {61.2, -149.9},
     {{801863.3215, 157895.8647}},
     "TOWGS84"},
    {TransverseMercator34, "DENMARK/ED50/System34 Jutland", {56.2, 9.5}, {}},
    {CassiniSoldner, "GERMANY/DHDN/Soldner Berlin", {52.52, 13.4}, {{21457.5653, 24698.7406}}},
    {ObliqueMercator, "EUROPE/CH1903+/LV95", {47.0, 7.5}, {{1205439.9555, 2604667.4741}}},
    {ObliqueMercatorEov, "HUNGARY/HD72/EOV", {47.5, 19.04}, {{239562.8270, 649439.0140}}},
    {ObliqueStereographicRd2004,
     "NETHERLANDS/Amersfoort/RD2004",
     {52.1, 5.4},
     {{456861.6151 + 0.25, 155876.8088 - 0.125}}},
};

TEST(EveryProjectionFamily, HasASite) {
  EXPECT_EQ(std::size(kSites), ProjectionFamilies().size());
}

// An epoch of a receiver that stands at the place, 200 m above the ellipsoid.
std::string Epoch(Place place) {
  const auto angle = [](double degrees, int digits) {
    const double whole = std::floor(std::fabs(degrees));
    char text[40];
    std::snprintf(text, sizeof text, "%0*.0f%012.9f", digits, whole,
                  (std::fabs(degrees) - whole) * 60.0);
    return std::string(text);
  };
  return "$GPGST,123519.00,,,,,0.03,0.04,0.06\r\n$GPGGA,123519.00," + angle(place.latitude, 2) +
         (place.latitude < 0 ? ",S," : ",N,") + angle(place.longitude, 3) +
         (place.longitude < 0 ? ",W," : ",E,") + "4,12,0.9,152.0,M,48.0,M,1.0,0001\r\n";
}

// The national grids that the types 6, 7 and 16 need: the British one around its tower, the Dutch
// one the same everywhere.
void WriteNationalGrids(ProgramFolder& folder, ProjectionType type) {
  ASSERT_EQ(folder.Run("systems rd2000").exitCode, 0);  // makes the data folder
  if (type == TransverseMercatorOstn02) {
    folder.Write("OSTN.txt", BritishText());
    ASSERT_EQ(folder.Run("grid pack OSTN.txt").exitCode, 0);
  }
  for (const auto& [name, value] : {std::pair{"X2c", "0.125\n"}, {"Y2c", "-0.250\n"}}) {
    std::string grid = "100000\n400000\n200000\n500000\n10\n10\n";
    for (int node = 0; node < 121; ++node) grid += value;
    folder.Write("data/" + std::string(name) + ".grd", grid);
  }
}

std::string Quoted(const std::string& text) {
  return '"' + text + '"';
}

// Three numbers with every digit.
std::string Line(double a, double b, double c) {
  char text[120];
  std::snprintf(text, sizeof text, "%.17g %.17g %.17g\n", a, b, c);
  return text;
}

class EveryProjection : public testing::TestWithParam<Site> {};

TEST_P(EveryProjection, StoresAPointAndGivesItBack) {
  const Site& site = GetParam();
  ProgramFolder folder;
  WriteNationalGrids(folder, site.type);
  std::string made = "new site.crd --system " + Quoted(site.system);
  if (*site.datumShift != '\0') made += " --datum-shift " + std::string(site.datumShift);
  ASSERT_EQ(folder.Run(made).exitCode, 0);
  folder.Write("still.log", Epoch(site.place));
  const ProgramResult collected =
      folder.Run("collect site.crd --receiver file:still.log --make nmea --first P1");
  ASSERT_EQ(collected.exitCode, 0) << collected.errors;
  // Only what is true of every one of these jobs.
  const std::string noGeoid =
      "WARNING: Elevations are heights above the ellipsoid: the job has no geoid and no "
      "localization.\n";
  EXPECT_THAT(collected.errors, testing::AnyOf("", noGeoid));

  const auto point = JsonReading(folder.Run("points site.crd --json").output)["points"][0];
  const double northing = point["northing"].number();
  const double easting = point["easting"].number();
  if (site.grid) {
    EXPECT_NEAR(northing, site.grid->northing, 0.0006);
    EXPECT_NEAR(easting, site.grid->easting, 0.0006);
  }
  const auto back = JsonReading(folder
                                    .Run("convert --inverse --strict --json --job site.crd",
                                         Line(northing, easting, point["elevation"].number()))
                                    .output);
  // 1e-9 degree is 0.1 mm.
  EXPECT_NEAR(back["latitude"].number(), site.place.latitude, 1e-9);
  EXPECT_NEAR(back["longitude"].number(), site.place.longitude, 1e-9);
  EXPECT_NEAR(back["height"].number(), kHeightM, 1e-4);
}

INSTANTIATE_TEST_SUITE_P(Types, EveryProjection, testing::ValuesIn(kSites), [](const auto& site) {
  return std::string(*ProjectionName(static_cast<int>(site.param.type)));
});

// A copy of the program with its modules and data, from which modules can be taken.
class Installation {
 public:
  explicit Installation(ProgramFolder& folder) : folder_(folder) {
    namespace fs = std::filesystem;
    const fs::path program = TARVEX_PROGRAM;
    fs::create_directories(folder.Path("bin"));
    fs::create_directories(folder.Path("away"));
    fs::copy(program.parent_path().parent_path() / "share", folder.Path("share"),
             fs::copy_options::recursive);
    fs::copy_file(program, folder.Path("bin/tarvex"));
    for (const char* module : {"CoordSys.so", "nadconv.so"}) {
      fs::copy_file(program.parent_path() / module, folder.Path("bin/") + module);
    }
    folder.UseProgram(folder.Path("bin/tarvex"));
  }

  void Take(const std::string& module) { Move("bin/" + module, "away/" + module); }
  void PutBack(const std::string& module) { Move("away/" + module, "bin/" + module); }

 private:
  void Move(const std::string& from, const std::string& to) {
    std::filesystem::rename(folder_.Path(from), folder_.Path(to));
  }

  ProgramFolder& folder_;
};

// A job on Soldner Berlin with one point, the library away for the second and back for the third.
TEST(Modules, CanBeTakenAwayInTheMiddleOfAJob) {
  ProgramFolder folder;
  Installation installation(folder);
  const Place berlin{52.52, 13.4};
  folder.Write("still.log", Epoch(berlin));
  ASSERT_EQ(folder.Run("new site.crd --system \"GERMANY/DHDN/Soldner Berlin\"").exitCode, 0);
  const std::string collect = "collect site.crd --receiver file:still.log --make nmea";
  ASSERT_EQ(folder.Run(collect).exitCode, 0);
  const std::string points = folder.Run("points site.crd").output;

  installation.Take("CoordSys.so");
  const ProgramResult refused = folder.Run(collect);
  EXPECT_EQ(refused.exitCode, 1);
  EXPECT_THAT(refused.errors, HasSubstr("The library CoordSys.dll cannot be loaded"));
  EXPECT_EQ(folder.Run("points site.crd").output, points);
  const ProgramResult line = folder.Run("convert --job site.crd", "52.52 13.4 200\n52.5 13.4 1\n");
  EXPECT_EQ(line.exitCode, 1);
  EXPECT_THAT(line.output, HasSubstr("ERROR: line 1: The library"));
  EXPECT_THAT(line.output, HasSubstr("ERROR: line 2: The library"));
  EXPECT_THAT(line.errors, HasSubstr("The library CoordSys.dll cannot be loaded"));
  EXPECT_EQ(folder.Run("convert --inverse --job site.crd", "21457 24698 0\n").exitCode, 1);
  // A localization cannot be fitted either, and says why.
  const ProgramResult fit =
      folder.Run("localize site.crd --wgs84 52.52 13.4 200 --local 1000 1000 100");
  EXPECT_EQ(fit.exitCode, 1);
  EXPECT_THAT(fit.errors, HasSubstr("Control point 1 has no grid coordinates"));
  // What needs no library goes on.
  EXPECT_EQ(
      folder.Run("convert --system \"UTM/UTM WGS84 Zone 32\" --decimals 1", "47.28 8.56\n").output,
      "5236374.1 466723.9\n");

  // Another library under this name, and a file that is none.
  std::filesystem::copy_file(folder.Path("bin/nadconv.so"), folder.Path("bin/CoordSys.so"));
  EXPECT_THAT(folder.Run("convert --job site.crd", "52.52 13.4 200\n").output,
              HasSubstr("ERROR: line 1: The library"));
  folder.Write("bin/CoordSys.so", "no library");
  const ProgramResult damaged = folder.Run("convert --job site.crd", "52.52 13.4 200\n");
  EXPECT_EQ(damaged.exitCode, 1);
  EXPECT_THAT(damaged.errors, HasSubstr("CoordSys.dll"));

  installation.PutBack("CoordSys.so");
  EXPECT_EQ(folder.Run("convert --job site.crd --decimals 3", "52.52 13.4 200\n").output,
            "21457.565 24698.741 159.125\n");
}

TEST(Modules, WithoutTheNadConverterItsZonesAreRefused) {
  ProgramFolder folder;
  Installation installation(folder);
  const std::string texas = "convert --system \"USA/NAD27/Texas South Central\"";
  const std::string houston = "29.76 -95.37 200\n";
  const std::string with = folder.Run(texas, houston).output;
  ASSERT_THAT(with, HasSubstr(" 960620."));
  EXPECT_EQ(folder.Run(texas, "29.76 264.63 200\n").output, with);  // the same meridian
  installation.Take("nadconv.so");
  const ProgramResult without = folder.Run(texas, houston);
  EXPECT_EQ(without.exitCode, 1);
  EXPECT_THAT(without.output, HasSubstr("ERROR: line 1: The library that shifts the datum"));
  EXPECT_THAT(without.errors, HasSubstr("The library nadconv.dll cannot be loaded"));
  installation.PutBack("nadconv.so");
  EXPECT_EQ(folder.Run(texas, houston).output, with);
  // Its grids gone: the library is there, the shift is not.
  std::filesystem::rename(folder.Path("data/NADConv"), folder.Path("away/NADConv"));
  const ProgramResult noGrids = folder.Run(texas, houston);
  EXPECT_EQ(noGrids.exitCode, 1);
  EXPECT_THAT(noGrids.output, HasSubstr("ERROR: line 1: "));
  EXPECT_THAT(noGrids.output, Not(HasSubstr("960620")));
}

}  // namespace
}  // namespace tarvex
