// NADCON, GR3DF97A and OSTN02.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>

#include "coordsys/datum/geocentric.h"
#include "coordsys/grids/gr3df97a_grid.h"
#include "coordsys/grids/nadcon_grid.h"
#include "coordsys/grids/ntv2_grid.h"
#include "coordsys/grids/ostn02_grid.h"
#include "tests/coordsys/case_table.h"
#include "tests/support/british_text.h"

namespace tarvex {
namespace {

NadconGrid Texas() {
  NadconGrid grid;
  EXPECT_EQ(
      NadconGrid::Load(SystemFiles(), std::string(TARVEX_TEST_DATA) + "/datum/texas", grid).Text(),
      "");
  return grid;
}

TEST(Nadcon, AgreesWithProj) {
  const NadconGrid grid = Texas();
  for (const CaseRow& row : ReadCaseTable("datum/nadcon_points.tsv")) {
    const auto nad83 = grid.ToNad83({row.Number("lat_nad27"), row.Number("lon_nad27")});
    ASSERT_TRUE(nad83.has_value());
    EXPECT_NEAR(nad83->latitude, row.Number("lat_nad83"), 1e-9);
    EXPECT_NEAR(nad83->longitude, row.Number("lon_nad83"), 1e-9);
  }
}

TEST(Nadcon, ComesBackAndKnowsItsBounds) {
  const NadconGrid grid = Texas();
  for (double lat = 29.05; lat < 30.45; lat += 0.093) {
    const auto there = grid.ToNad83({lat, -97.123});
    ASSERT_TRUE(there.has_value());
    const auto back = grid.ToNad27(*there);
    ASSERT_TRUE(back.has_value());
    EXPECT_NEAR(back->latitude, lat, 1e-11);
    EXPECT_NEAR(back->longitude, -97.123, 1e-11);
  }
  EXPECT_FALSE(grid.ToNad83({31.0, -97.0}).has_value());
  EXPECT_FALSE(grid.ToNad27({29.5, -90.0}).has_value());
}

// One file of a pair: 24 x 3 nodes from 50 N, 194 W in steps of 3 degrees, all of one value.
std::string NadconFile(float seconds) {
  std::string bytes(56, ' ');
  bytes += "NADGRD  ";
  const auto append = [&bytes](auto value) {
    char raw[sizeof value];
    std::memcpy(raw, &value, sizeof value);
    bytes.append(raw, sizeof value);
  };
  constexpr std::size_t kRecord = 4 * (24 + 1);
  for (const std::int32_t count : {24, 3, 1}) append(count);
  for (const float value : {-194.0F, 3.0F, 50.0F, 3.0F, 0.0F}) append(value);
  bytes.resize(kRecord, ' ');
  for (int row = 0; row < 3; ++row) {
    append(std::int32_t{row});
    for (int column = 0; column < 24; ++column) append(seconds);
  }
  return bytes;
}

// The Aleutians lie west of the 180th meridian: Attu is 173 east and 187 west.
TEST(Nadcon, ReachesOverThe180thMeridian) {
  NadconGrid alaska;
  ASSERT_EQ(
      NadconGrid::Parse(FileBytes(NadconFile(-3.6F)), FileBytes(NadconFile(7.2F)), "alaska", alaska)
          .Text(),
      "");
  for (const double longitude : {173.2, -186.8, -179.9, 180.1, -150.0, 210.0}) {
    const auto there = alaska.ToNad83({52.9, longitude});
    ASSERT_TRUE(there.has_value()) << longitude;
    EXPECT_NEAR(there->latitude, 52.9 - 0.001, 1e-9);
    EXPECT_NEAR(there->longitude, longitude - 0.002, 1e-9);
    const auto back = alaska.ToNad27(*there);
    ASSERT_TRUE(back.has_value());
    EXPECT_NEAR(back->longitude, longitude, 1e-11);
  }
  EXPECT_FALSE(alaska.ToNad83({52.9, 160.0}).has_value());
  EXPECT_FALSE(alaska.ToNad83({52.9, -100.0}).has_value());
}

TEST(Nadcon, DamagedFilesAreNamed) {
  const std::string las = TestBytes("datum/texas.las");
  const std::string los = TestBytes("datum/texas.los");
  NadconGrid grid;
  for (std::size_t length = 0; length < las.size(); ++length) {
    ASSERT_EQ(
        NadconGrid::Parse(FileBytes(las.substr(0, length)), FileBytes(los), "t", grid).problem,
        GridProblem::CutShort);
  }
  EXPECT_EQ(NadconGrid::Parse(FileBytes(std::string(900, 'x')), FileBytes(los), "t", grid).problem,
            GridProblem::NotThisFormat);
  std::string moved = los;
  moved[76] = 1;  // the first longitude of the .los file
  EXPECT_EQ(NadconGrid::Parse(FileBytes(las), FileBytes(moved), "t", grid).problem,
            GridProblem::PartsDiffer);
  std::string huge = las;
  huge[67] = 0x40;  // a thousand million columns
  EXPECT_EQ(NadconGrid::Parse(FileBytes(huge), FileBytes(los), "t", grid).problem,
            GridProblem::ImpossibleSize);
}

Gr3df97aGrid Paris() {
  std::string packed;
  EXPECT_EQ(PackGr3df97a(TestBytes("datum/gr3df97a_paris.txt"), "t", packed).Text(), "");
  Gr3df97aGrid grid;
  EXPECT_EQ(Gr3df97aGrid::Parse(FileBytes(packed), "t", grid).Text(), "");
  return grid;
}

// IGN publishes the same grid twice: as translations and, for other programs, as NTv2.
TEST(Gr3df97a, MeetsTheNtv2FormOfTheSameGrid) {
  const Gr3df97aGrid grid = Paris();
  Ntv2Grid ntv2;
  ASSERT_TRUE(Ntv2Grid::Parse(FileBytes(TestBytes("datum/paris.gsb")), "p", ntv2).ok());
  const GeocentricFrame rgf93(kGrs80);
  const GeocentricFrame ntf({6378249.2, 1.0 - 6356515.0 / 6378249.2});
  // At the nodes the two must agree; between them they interpolate different things, and at the
  // published check point 48 50 40.0050 N 2 25 29.8960 E as well.
  for (const auto& [lat, lon] :
       {std::pair{48.5, 2.5},
        {48.9, 2.3},
        {49.0, 2.8},
        {48.0 + 50 / 60.0 + 40.0050 / 3600, 2 + 25 / 60.0 + 29.8960 / 3600}}) {
    Geodetic at = {lat * kRadiansPerDegree, lon * kRadiansPerDegree, 0.0};
    Geodetic byNtv2 = at;
    ASSERT_EQ(ntv2.Inverse(byNtv2), GridShiftResult::Done);
    Geocentric xyz = rgf93.ToGeocentric(at);
    const auto t = grid.Translation(at.latitudeRad, at.longitudeRad);
    ASSERT_TRUE(t.has_value());
    const Geodetic byTranslation = ntf.ToGeodetic({xyz.xM - t->xM, xyz.yM - t->yM, xyz.zM - t->zM});
    EXPECT_NEAR(byTranslation.latitudeRad * 6.4e6, byNtv2.latitudeRad * 6.4e6, 0.005);
    EXPECT_NEAR(byTranslation.longitudeRad * 6.4e6, byNtv2.longitudeRad * 6.4e6, 0.005);
  }
  EXPECT_FALSE(grid.Translation(0.9, 0.5).has_value());
}

TEST(Gr3df97a, DamagedFilesAreNamed) {
  const std::string text = TestBytes("datum/gr3df97a_paris.txt");
  std::string packed;
  ASSERT_TRUE(PackGr3df97a(text, "t", packed).ok());
  Gr3df97aGrid grid;
  for (std::size_t length = 0; length < packed.size(); ++length) {
    ASSERT_EQ(Gr3df97aGrid::Parse(FileBytes(packed.substr(0, length)), "t", grid).problem,
              GridProblem::CutShort);
  }
  EXPECT_EQ(Gr3df97aGrid::Parse(FileBytes(packed + "x"), "t", grid).problem, GridProblem::TooLong);
  EXPECT_EQ(Gr3df97aGrid::Parse(FileBytes(text), "t", grid).problem, GridProblem::NotThisFormat);

  const std::size_t lastLine = text.rfind('\n', text.size() - 2) + 1;
  EXPECT_EQ(PackGr3df97a(text.substr(0, lastLine), "t", packed).problem, GridProblem::CutShort);
  EXPECT_EQ(PackGr3df97a(text + text.substr(lastLine), "t", packed).problem, GridProblem::BadValue);
  std::string code = text;
  code.replace(code.rfind("  01  "), 6, "  -1  ");
  EXPECT_EQ(PackGr3df97a(code, "t", packed).problem, GridProblem::BadValue);
  EXPECT_EQ(PackGr3df97a("anything\n", "t", packed).problem, GridProblem::NotThisFormat);
}

TEST(Ostn02, PackedGridGivesThePublishedShifts) {
  const std::string text = BritishText();
  std::string x;
  std::string y;
  ASSERT_EQ(PackOstn02(text, "t", nullptr, x, y).Text(), "");
  EXPECT_EQ(x.size(), 1'753'934U);
  Ostn02Part east;
  Ostn02Part north;
  ASSERT_TRUE(Ostn02Part::Parse(FileBytes(x), "x", east).ok());
  ASSERT_TRUE(Ostn02Part::Parse(FileBytes(y), "y", north).ok());
  EXPECT_NEAR(east.At(651'000, 313'000).value, 102.791, 1e-9);
  EXPECT_NEAR(north.At(651'999.999, 313'999.999).value, -78.220, 1e-6);
  EXPECT_NEAR(east.At(651'307.003, 313'255.686).value, 102.804, 5e-4);
  EXPECT_EQ(east.At(650'500, 313'500).answer, SurfaceAnswer::NoCorrection);
  EXPECT_EQ(east.At(700'001, 313'500).answer, SurfaceAnswer::Outside);
  for (const std::size_t length : {0U, 3U, 31U, 32U, 1000U, 1'753'933U}) {
    EXPECT_EQ(Ostn02Part::Parse(FileBytes(x.substr(0, length)), "x", east).problem,
              GridProblem::CutShort);
  }
  EXPECT_EQ(PackOstn02(std::string_view(text).substr(0, 5000), "t", nullptr, x, y).problem,
            GridProblem::BadValue);
  EXPECT_EQ(PackOstn02("1,0,0,1,1,1,0\n", "t", nullptr, x, y).problem, GridProblem::CutShort);
  EXPECT_EQ(PackOstn02("1,0,0,1,1,1,1\n", "t", nullptr, x, y).problem, GridProblem::BadValue);
}

}  // namespace
}  // namespace tarvex
