#include "coordsys/grids/ntv2_grid.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>

#include "tests/coordsys/case_table.h"

namespace tarvex {
namespace {

Ntv2Grid LoadCut(const std::string& name) {
  Ntv2Grid grid;
  EXPECT_EQ(Ntv2Grid::Parse(FileBytes(TestBytes("datum/" + name)), name, grid).Text(), "");
  return grid;
}

Geodetic At(double latitudeDeg, double longitudeDeg) {
  return {latitudeDeg * kRadiansPerDegree, longitudeDeg * kRadiansPerDegree, 12.0};
}

// Writes NTv2 files for the cases that no public file shows.
class Ntv2Writer {
 public:
  explicit Ntv2Writer(int grids) {
    Integer("NUM_OREC", 11);
    Integer("NUM_SREC", 11);
    Integer("NUM_FILE", grids);
    for (const char* text :
         {"GS_TYPE SECONDS ", "VERSION TEST    ", "SYSTEM_FOLD     ", "SYSTEM_TNEW     "}) {
      bytes += text;
    }
    for (const char* key : {"MAJOR_F ", "MINOR_F ", "MAJOR_T ", "MINOR_T "}) Real(key, 6378137.0);
  }

  // Degrees, east positive; shifts in seconds, that of the north growing by `slope` from node to
  // node.
  void Grid(const std::string& name, const std::string& parent, double south, double north,
            double west, double east, double step, float shiftNorth, float shiftWest,
            float accuracy = 0.1F, float slope = 0.0F) {
    bytes += "SUB_NAME" + Padded(name) + "PARENT  " + Padded(parent) +
             "CREATED         UPDATED         ";
    Real("S_LAT   ", south * 3600);
    Real("N_LAT   ", north * 3600);
    Real("E_LONG  ", -east * 3600);
    Real("W_LONG  ", -west * 3600);
    Real("LAT_INC ", step * 3600);
    Real("LONG_INC", step * 3600);
    const int nodes = static_cast<int>(std::lround((north - south) / step) + 1) *
                      static_cast<int>(std::lround((east - west) / step) + 1);
    Integer("GS_COUNT", nodes);
    for (int i = 0; i < nodes; ++i) {
      const float northHere = shiftNorth + slope * static_cast<float>(i);
      for (const float value : {northHere, shiftWest, accuracy, accuracy}) Raw(value);
    }
  }

  std::string bytes;

 private:
  static std::string Padded(std::string text) {
    text.resize(8, ' ');
    return text;
  }
  template <typename Number>
  void Raw(Number value) {
    char raw[sizeof value];
    std::memcpy(raw, &value, sizeof value);
    bytes.append(raw, sizeof value);
  }
  void Integer(const char* key, std::int32_t value) {
    bytes += key;
    Raw(value);
    Raw(std::int32_t{0});
  }
  void Real(const char* key, double value) {
    bytes += key;
    Raw(value);
  }
};

TEST(Ntv2, BothByteOrdersAgreeWithProj) {
  for (const char* name : {"test_hgrid_little_endian.gsb", "test_hgrid_big_endian.gsb"}) {
    const Ntv2Grid grid = LoadCut(name);
    for (const CaseRow& row : ReadCaseTable("datum/test_hgrid_points.tsv")) {
      Geodetic at = At(row.Number("lat_in"), row.Number("lon_in"));
      ASSERT_EQ(grid.Forward(at), GridShiftResult::Done);
      EXPECT_NEAR(at.latitudeRad * kDegreesPerRadian, row.Number("lat_out"), 1e-9);
      EXPECT_NEAR(at.longitudeRad * kDegreesPerRadian, row.Number("lon_out"), 1e-9);
      EXPECT_EQ(at.heightM, 12.0);
    }
  }
}

TEST(Ntv2, RealGridAgreesWithProjBothWays) {
  const Ntv2Grid grid = LoadCut("paris.gsb");
  EXPECT_EQ(grid.fromSystem(), "NTF");
  EXPECT_EQ(grid.toSystem(), "RGF93");
  int rows = 0;
  for (const CaseRow& row : ReadCaseTable("datum/proj_grid_cases.tsv")) {
    if (row.Text("grid") != "paris.gsb") continue;
    ++rows;
    Geodetic at = At(row.Number("lat"), row.Number("lon"));
    const bool forward = row.Text("direction") == "forward";
    ASSERT_EQ(forward ? grid.Forward(at) : grid.Inverse(at), GridShiftResult::Done);
    EXPECT_NEAR(at.latitudeRad * kDegreesPerRadian, row.Number("lat_out"), 2e-11);
    EXPECT_NEAR(at.longitudeRad * kDegreesPerRadian, row.Number("lon_out"), 2e-11);
  }
  EXPECT_EQ(rows, 12);
}

// Shifts up to 15 minutes that change by 6 from row to row: a hundred times steeper than any real
// grid.
TEST(Ntv2, InverseClosesEvenWhereShiftsAreSteep) {
  Ntv2Writer file(1);
  file.Grid("STEEP", "NONE", 40, 51, 0, 10, 1, -1900, 700, 0.1F, 35);
  Ntv2Grid grid;
  ASSERT_EQ(Ntv2Grid::Parse(FileBytes(file.bytes), "x.gsb", grid).Text(), "");
  for (double lat = 41.05; lat < 50.0; lat += 0.317) {
    for (double lon = 1.05; lon < 9.0; lon += 0.193) {
      const Geodetic start = At(lat, lon);
      Geodetic at = start;
      ASSERT_EQ(grid.Forward(at), GridShiftResult::Done);
      ASSERT_EQ(grid.Inverse(at), GridShiftResult::Done);
      EXPECT_NEAR(at.latitudeRad, start.latitudeRad, 2e-13);
      EXPECT_NEAR(at.longitudeRad, start.longitudeRad, 2e-13);
    }
  }
}

TEST(Ntv2, TheDensestGridThatHoldsThePointIsUsed) {
  Ntv2Writer file(4);
  file.Grid("WIDE", "NONE", 40, 50, -10, 0, 1, 1, 10);
  file.Grid("DENSE", "WIDE", 44, 46, -6, -4, 0.5, 2, 20);
  file.Grid("DENSEST", "DENSE", 44.5, 45, -5.5, -5, 0.25, 3, 30);
  file.Grid("OTHER", "NONE", 40, 50, 10, 20, 1, 4, 40);
  Ntv2Grid grid;
  ASSERT_TRUE(Ntv2Grid::Parse(FileBytes(file.bytes), "x.gsb", grid).ok());
  EXPECT_EQ(grid.gridCount(), 4U);
  struct Case {
    double latitude;
    double longitude;
    double secondsNorth;
  };
  for (const Case& c :
       {Case{41, -9, 1}, Case{44.2, -4.5, 2}, Case{44.7, -5.2, 3}, Case{45, 15, 4}}) {
    Geodetic at = At(c.latitude, c.longitude);
    ASSERT_EQ(grid.Forward(at), GridShiftResult::Done);
    EXPECT_NEAR(at.latitudeRad * kDegreesPerRadian, c.latitude + c.secondsNorth / 3600, 1e-9);
    EXPECT_NEAR(at.longitudeRad * kDegreesPerRadian, c.longitude - c.secondsNorth / 360, 1e-9);
    ASSERT_EQ(grid.Inverse(at), GridShiftResult::Done);
    EXPECT_NEAR(at.latitudeRad * kDegreesPerRadian, c.latitude, 1e-12);
  }
  Geodetic outside = At(45, 5);
  EXPECT_EQ(grid.Forward(outside), GridShiftResult::Outside);
  EXPECT_EQ(outside, At(45, 5));
}

TEST(Ntv2, NodesMarkedAsEmptyGiveNoCorrection) {
  Ntv2Writer file(1);
  file.Grid("EMPTY", "NONE", 40, 41, 0, 1, 1, 0, 0, -1);
  Ntv2Grid grid;
  ASSERT_TRUE(Ntv2Grid::Parse(FileBytes(file.bytes), "x.gsb", grid).ok());
  Geodetic at = At(40.5, 0.5);
  EXPECT_EQ(grid.Forward(at), GridShiftResult::NoCorrection);
  EXPECT_EQ(grid.Inverse(at), GridShiftResult::NoCorrection);
}

// On a good node its neighbour without a shift has no part in the sum.
TEST(Ntv2, AnEmptyNodeCountsOnlyWhereItHasAPart) {
  Ntv2Writer file(1);
  file.Grid("ONE", "NONE", 40, 42, 0, 2, 1, 3, 5);
  std::string bytes = file.bytes;
  const float empty[4] = {0.0F, 0.0F, -1.0F, -1.0F};
  std::memcpy(bytes.data() + bytes.size() - 16, empty, 16);  // the north-west corner
  Ntv2Grid grid;
  ASSERT_EQ(Ntv2Grid::Parse(FileBytes(bytes), "x.gsb", grid).Text(), "");
  Geodetic beside = At(41.5, 0.5);
  EXPECT_EQ(grid.Forward(beside), GridShiftResult::NoCorrection);
  Geodetic node = At(41, 1);
  ASSERT_EQ(grid.Forward(node), GridShiftResult::Done);
  EXPECT_NEAR(node.latitudeRad * kDegreesPerRadian, 41 + 3.0 / 3600, 1e-9);
}

TEST(Ntv2, ArraysComeOutAsOneByOne) {
  Ntv2Writer nested(2);
  nested.Grid("WIDE", "NONE", 40, 50, -10, 0, 1, 1, 10, 0.1F, 0.01F);
  nested.Grid("DENSE", "WIDE", 44, 46, -6, -4, 0.5, 2, 20, 0.1F, 0.01F);
  Ntv2Grid two;
  ASSERT_TRUE(Ntv2Grid::Parse(FileBytes(nested.bytes), "x.gsb", two).ok());
  const Ntv2Grid paris = LoadCut("paris.gsb");
  for (const Ntv2Grid* grid : {static_cast<const Ntv2Grid*>(&two), &paris}) {
    const bool isTwo = grid == &two;
    for (const bool forward : {true, false}) {
      std::vector<double> latitude;
      std::vector<double> longitude;
      for (int i = 0; i < 501; ++i) {
        latitude.push_back((isTwo ? 39.5 + 0.022 * i : 47.9 + 0.0034 * i) * kRadiansPerDegree);
        longitude.push_back((isTwo ? -10.5 + 0.0217 * i : 1.9 + 0.0024 * i) * kRadiansPerDegree);
      }
      latitude[7] = std::nan("");
      const std::vector<double> fromLatitude = latitude;
      const std::vector<double> fromLongitude = longitude;
      const std::size_t refused =
          forward ? grid->Forward(latitude, longitude) : grid->Inverse(latitude, longitude);
      std::size_t expected = 0;
      for (std::size_t i = 0; i < latitude.size(); ++i) {
        Geodetic at = {fromLatitude[i], fromLongitude[i], 0.0};
        if ((forward ? grid->Forward(at) : grid->Inverse(at)) == GridShiftResult::Done) {
          EXPECT_EQ(latitude[i], at.latitudeRad);
          EXPECT_EQ(longitude[i], at.longitudeRad);
        } else {
          EXPECT_TRUE(std::isnan(latitude[i]) && std::isnan(longitude[i]));
          ++expected;
        }
      }
      EXPECT_EQ(refused, expected);
      EXPECT_GT(refused, 1U);
      EXPECT_LT(refused, 200U);
    }
  }
}

TEST(Ntv2, EveryCutOfAFileIsNamed) {
  const std::string bytes = TestBytes("datum/paris.gsb");
  for (std::size_t length = 0; length < bytes.size() - 16; ++length) {
    Ntv2Grid grid;
    const GridStatus status = Ntv2Grid::Parse(FileBytes(bytes.substr(0, length)), "p.gsb", grid);
    ASSERT_EQ(status.problem, GridProblem::CutShort) << length;
  }
  Ntv2Grid withoutEnd;
  EXPECT_TRUE(Ntv2Grid::Parse(FileBytes(bytes.substr(0, bytes.size() - 16)), "p", withoutEnd).ok());
}

// Every header value set to a few hostile ones: an error or a grid, never a crash.
TEST(Ntv2, HostileHeadersAreNamed) {
  const std::string bytes = TestBytes("datum/paris.gsb");
  for (std::size_t record = 0; record < 22; ++record) {
    for (const double value : {0.0, -1.0, 1e300, std::nan(""), 4e-320}) {
      std::string damaged = bytes;
      std::memcpy(damaged.data() + 16 * record + 8, &value, 8);
      Ntv2Grid grid;
      const bool opened = Ntv2Grid::Parse(FileBytes(damaged), "p.gsb", grid).ok();
      Geodetic at = At(48.8, 2.4);
      if (opened) (void)grid.Inverse(at);
      const bool isSize = record >= 15 || record == 2;
      EXPECT_FALSE(opened && isSize) << record << ' ' << value;
    }
  }
  Ntv2Grid grid;
  EXPECT_EQ(Ntv2Grid::Parse(FileBytes(std::string(5000, 'x')), "x", grid).problem,
            GridProblem::NotThisFormat);
  EXPECT_EQ(Ntv2Grid::Parse(FileBytes(bytes + "more"), "x", grid).problem, GridProblem::None);
  EXPECT_EQ(Ntv2Grid::Parse(FileBytes(bytes.substr(0, bytes.size() - 16) + "more and more bytes"),
                            "x", grid)
                .problem,
            GridProblem::TooLong);
}

TEST(Ntv2, AGridInsideAnUnknownOneOrARingIsRefused) {
  Ntv2Writer ring(3);
  ring.Grid("ROOT", "NONE", 40, 41, 0, 1, 1, 0, 0);
  ring.Grid("A", "B", 40, 41, 0, 1, 1, 0, 0);
  ring.Grid("B", "A", 40, 41, 0, 1, 1, 0, 0);
  Ntv2Writer unknown(1);
  unknown.Grid("A", "B", 40, 41, 0, 1, 1, 0, 0);
  for (const std::string& bytes : {ring.bytes, unknown.bytes}) {
    Ntv2Grid grid;
    EXPECT_EQ(Ntv2Grid::Parse(FileBytes(bytes), "x.gsb", grid).problem, GridProblem::BadValue);
  }
}

TEST(Ntv2, AGridMayComeBeforeItsParent) {
  Ntv2Writer file(2);
  file.Grid("DENSE", "WIDE", 44, 46, -6, -4, 0.5, 2, 20);
  file.Grid("WIDE", "NONE", 40, 50, -10, 0, 1, 1, 10);
  Ntv2Grid grid;
  ASSERT_EQ(Ntv2Grid::Parse(FileBytes(file.bytes), "x.gsb", grid).Text(), "");
  for (const auto& [latitude, seconds] : {std::pair{45.0, 2.0}, {47.0, 1.0}}) {
    Geodetic at = At(latitude, -5);
    ASSERT_EQ(grid.Forward(at), GridShiftResult::Done);
    EXPECT_NEAR(at.latitudeRad * kDegreesPerRadian, latitude + seconds / 3600, 1e-9);
  }
}

// A grid of Fiji, 175 to 185 degrees, with a denser one across the 180th meridian.
TEST(Ntv2, ReachesOverThe180thMeridian) {
  Ntv2Writer file(2);
  file.Grid("FIJI", "NONE", -20, -10, 175, 185, 1, 3, 5, 0.1F, 0.25F);
  file.Grid("DENSE", "FIJI", -18, -16, 179, 182, 0.5, 7, 9, 0.1F, 0.125F);
  Ntv2Grid grid;
  ASSERT_EQ(Ntv2Grid::Parse(FileBytes(file.bytes), "fiji.gsb", grid).Text(), "");
  for (const double east : {175.5, 179.9, 180.0, 180.1, 181.75, 184.0, 185.0}) {
    Geodetic asStored = At(-17.3, east);
    ASSERT_EQ(grid.Forward(asStored), GridShiftResult::Done);
    for (const double turn : {-360.0, 360.0}) {
      const Geodetic start = At(-17.3, east + turn);
      Geodetic at = start;
      ASSERT_EQ(grid.Forward(at), GridShiftResult::Done) << east + turn;
      EXPECT_NEAR(at.latitudeRad, asStored.latitudeRad, 1e-15);
      EXPECT_NEAR(at.longitudeRad, asStored.longitudeRad + turn * kRadiansPerDegree, 2e-15);
      ASSERT_EQ(grid.Inverse(at), GridShiftResult::Done);
      EXPECT_NEAR(at.latitudeRad, start.latitudeRad, 2e-13);
      EXPECT_NEAR(at.longitudeRad, start.longitudeRad, 2e-13);
    }
  }
  for (const double east : {-174.0, 174.0, 0.0, 534.0}) {
    Geodetic outside = At(-17.3, east);
    EXPECT_EQ(grid.Forward(outside), GridShiftResult::Outside) << east;
  }
}

}  // namespace
}  // namespace tarvex
