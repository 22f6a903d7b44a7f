#include "coordsys/geoid/geoid_grid.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>

#include "tests/coordsys/case_table.h"

namespace tarvex {
namespace {

GeoidGrid Parsed(const std::string& bytes, const std::string& name) {
  GeoidGrid grid;
  EXPECT_EQ(GeoidGrid::Parse(FileBytes(bytes), name, grid).Text(), "");
  return grid;
}

double At(const GeoidGrid& grid, double latitude, double longitude) {
  return grid.Undulation(latitude * kRadiansPerDegree, longitude * kRadiansPerDegree)
      .value_or(std::nan(""));
}

template <typename Number>
void Append(std::string& bytes, Number value, bool big) {
  char raw[sizeof value];
  std::memcpy(raw, &value, sizeof value);
  if (big) std::reverse(std::begin(raw), std::end(raw));
  bytes.append(raw, sizeof value);
}

// The undulation that the synthetic files hold.
double Surface(double latitude, double longitude) {
  return 20.0 + 10.0 * std::sin(latitude * kRadiansPerDegree) +
         5.0 * std::cos(longitude * kRadiansPerDegree);
}

// A .gtx of the whole earth, or the same nodes as .bin in either byte order.
std::string Earth(bool bin, bool big) {
  std::string bytes;
  for (const double value : {-90.0, 0.0, 5.0, 5.0}) Append(bytes, value, big);
  Append(bytes, std::int32_t{37}, big);
  Append(bytes, std::int32_t{72}, big);
  if (bin) Append(bytes, std::int32_t{1}, big);
  for (int j = 0; j < 37; ++j) {
    for (int i = 0; i < 72; ++i) {
      Append(bytes, static_cast<float>(Surface(-90 + 5 * j, 5 * i)), big);
    }
  }
  return bytes;
}

TEST(Geoid, GtxAgreesWithProj) {
  const GeoidGrid grid = Parsed(TestBytes("datum/bavaria.gtx"), "bavaria.gtx");
  int rows = 0;
  for (const CaseRow& row : ReadCaseTable("datum/proj_grid_cases.tsv")) {
    if (row.Text("grid") != "bavaria.gtx") continue;
    ++rows;
    EXPECT_NEAR(At(grid, row.Number("lat"), row.Number("lon")), -row.Number("h_out"), 2e-6);
  }
  EXPECT_EQ(rows, 6);
  EXPECT_TRUE(std::isnan(At(grid, 40, 11)));
  EXPECT_TRUE(std::isnan(At(grid, 48, -169)));
}

TEST(Geoid, AGridAroundTheEarthHasNoSeam) {
  const GeoidGrid grid = Parsed(Earth(false, true), "earth.gtx");
  EXPECT_NEAR(At(grid, 45, 0), Surface(45, 0), 1e-5);
  EXPECT_NEAR(At(grid, 45, 357.5), 0.5 * (Surface(45, 355) + Surface(45, 0)), 1e-5);
  EXPECT_EQ(At(grid, 45, -2.5), At(grid, 45, 357.5));
  EXPECT_NEAR(At(grid, -90, 12), Surface(-90, 12), 0.05);
  EXPECT_TRUE(std::isnan(At(grid, 90.1, 12)));
}

TEST(Geoid, OnTheLastGoodColumnTheVoidBesideItCostsNothing) {
  std::string bytes = Earth(false, true);
  std::string none;
  Append(none, -88.8888F, true);
  for (std::size_t row = 0; row < 37; ++row) bytes.replace(40 + 4 * (72 * row + 3), 4, none);
  const GeoidGrid grid = Parsed(bytes, "earth.gtx");
  EXPECT_NEAR(At(grid, 45, 10), Surface(45, 10), 1e-5);
  EXPECT_TRUE(std::isnan(At(grid, 45, 10.5)));
  EXPECT_TRUE(std::isnan(At(grid, 45, 15)));
}

TEST(Geoid, BinIsReadInBothByteOrdersAndQuadratic) {
  const GeoidGrid little = Parsed(Earth(true, false), "earth.bin");
  const GeoidGrid big = Parsed(Earth(true, true), "earth.bin");
  const GeoidGrid bilinear = Parsed(Earth(false, true), "earth.gtx");
  const double exact = Surface(42.4, 12.6);
  EXPECT_EQ(At(little, 42.4, 12.6), At(big, 42.4, 12.6));
  EXPECT_NEAR(At(little, 42.4, 12.6), exact, 1e-3);
  EXPECT_GT(std::abs(At(bilinear, 42.4, 12.6) - exact), 5e-3);
}

TEST(Geoid, PgmIsCubicFromTheNorth) {
  std::string bytes = "P5\n# Offset -108\n# Scale 0.003\n# Origin 90N 0E\n72 37\n65535\n";
  for (int j = 0; j < 37; ++j) {
    for (int i = 0; i < 72; ++i) {
      Append(bytes,
             static_cast<std::uint16_t>(std::lround((Surface(90 - 5 * j, 5 * i) + 108) / 0.003)),
             true);
    }
  }
  const GeoidGrid grid = Parsed(bytes, "earth.pgm");
  EXPECT_NEAR(At(grid, 42.4, 12.6), Surface(42.4, 12.6), 4e-3);
  EXPECT_NEAR(At(grid, 42.4, -1.3), Surface(42.4, -1.3), 4e-3);
  // Next to a pole the block reaches over it.
  EXPECT_NEAR(At(grid, 88.7, 91.2), Surface(88.7, 91.2), 0.1);
  for (std::size_t length = 0; length < bytes.size(); length += length < 80 ? 1 : 97) {
    GeoidGrid none;
    ASSERT_FALSE(GeoidGrid::Parse(FileBytes(bytes.substr(0, length)), "earth.pgm", none).ok());
  }
}

// The cubic is a fit, so that one raised pixel is not met: the weights are those of the least
// squares in which the four nodes of the cell count twice, worked out in fractions.
TEST(Geoid, TheCubicWeighsTheCellsOwnNodesTwice) {
  constexpr int kRow = 9;  // 45 degrees north
  constexpr int kColumn = 2;
  std::string bytes = "P5\n# Offset 0\n# Scale 0.003\n# Origin 90N 0E\n72 37\n65535\n";
  for (int j = 0; j < 37; ++j) {
    for (int i = 0; i < 72; ++i) {
      Append(bytes, std::uint16_t(j == kRow && i == kColumn ? 1000 : 0), true);
    }
  }
  const GeoidGrid grid = Parsed(bytes, "spike.pgm");
  EXPECT_NEAR(At(grid, 45.0, 10.0), 3.0 * 31 / 40, 1e-9);
  EXPECT_NEAR(At(grid, 43.75, 11.25), 3.0 * 3 / 5, 1e-9);
  EXPECT_NEAR(At(grid, 43.75, 13.75), 3.0 * 93 / 320, 1e-9);
}

// A slope across the pole, level in the plane that touches it there: what reaches over the pole has
// to be taken from the other side of the earth.
TEST(Geoid, ReachesOverThePoleToItsOtherSide) {
  const auto slope = [](double latitude, double longitude) {
    return 60.0 * std::cos(latitude * kRadiansPerDegree) * std::cos(longitude * kRadiansPerDegree);
  };
  std::string bytes = "P5\n# Offset -108\n# Scale 0.003\n# Origin 90N 0E\n72 37\n65535\n";
  for (int j = 0; j < 37; ++j) {
    for (int i = 0; i < 72; ++i) {
      const double value = slope(90 - 5 * j, 5 * i);
      Append(bytes, static_cast<std::uint16_t>(std::lround((value + 108) / 0.003)), true);
    }
  }
  const GeoidGrid grid = Parsed(bytes, "earth.pgm");
  for (const double longitude : {0.0, 61.0, 180.0}) {
    EXPECT_NEAR(At(grid, 88.0, longitude), slope(88.0, longitude), 0.02) << longitude;
    EXPECT_NEAR(At(grid, -88.0, longitude), slope(-88.0, longitude), 0.02) << longitude;
  }
}

// A scale that makes no geoid gives no undulation.
TEST(Geoid, PixelsBeyondAnyGeoidAreNone) {
  std::string bytes = "P5\n# Offset -108\n# Scale 0.3\n4 3\n65535\n";
  for (int i = 0; i < 12; ++i) bytes += i == 6 ? std::string("\x10\x10") : std::string("\x01\x10");
  const GeoidGrid grid = Parsed(bytes, "x.pgm");
  EXPECT_FALSE(grid.Undulation(0.0, 3.0).has_value());
  const std::string fine = "P5\n# Offset -108\n# Scale 0.003\n4 3\n65535\n" + bytes.substr(39);
  EXPECT_NEAR(At(Parsed(fine, "x.pgm"), -60.0, 1.0), -107.0, 5.0);
}

TEST(Geoid, IsgTextGivesRowsFromTheNorth) {
  const std::string head =
      "a model\nbegin_of_head ====\nmodel name : X\nlat min = 46.0\nlat max = 47.0\nlon min = 8.0\n"
      "lon max = 9.0\ndelta lat = 0.5\ndelta lon = 0.5\nnrows = 3\nncols = 3\nnodata = -9999.0\n"
      "end_of_head ====\n";
  const GeoidGrid grid = Parsed(head + "47 48 49\n50 51 52\n53 54 -9999\n", "x.isg");
  EXPECT_NEAR(At(grid, 47, 8), 47, 1e-5);
  EXPECT_NEAR(At(grid, 46.25, 8.25), 52, 1e-5);
  EXPECT_TRUE(std::isnan(At(grid, 46.25, 8.75)));
  struct Case {
    std::string text;
    GridProblem problem;
  };
  for (const Case& c : {Case{head + "1 2 3 4 5 6 7 8", GridProblem::CutShort},
                        Case{head + "1 2 3 4 5 6 7 8 9 10", GridProblem::TooLong},
                        Case{head + "1 2 3 4 5 x 7 8 9", GridProblem::BadValue},
                        Case{"garbage", GridProblem::NotThisFormat},
                        Case{head.substr(0, 60), GridProblem::CutShort}}) {
    GeoidGrid none;
    EXPECT_EQ(GeoidGrid::Parse(FileBytes(c.text), "x.isg", none).problem, c.problem) << c.text;
  }
}

TEST(Geoid, DamagedFilesAreNamed) {
  const std::string gtx = TestBytes("datum/bavaria.gtx");
  for (std::size_t length = 0; length < gtx.size(); ++length) {
    GeoidGrid grid;
    ASSERT_EQ(GeoidGrid::Parse(FileBytes(gtx.substr(0, length)), "b.gtx", grid).problem,
              GridProblem::CutShort);
  }
  const std::string bin = Earth(true, false);
  for (std::size_t length = 0; length < bin.size(); length += 101) {
    GeoidGrid grid;
    ASSERT_EQ(GeoidGrid::Parse(FileBytes(bin.substr(0, length)), "b.bin", grid).problem,
              GridProblem::CutShort);
  }
  GeoidGrid grid;
  EXPECT_EQ(GeoidGrid::Parse(FileBytes(gtx + "x"), "b.gtx", grid).problem, GridProblem::TooLong);
  EXPECT_EQ(GeoidGrid::Parse(FileBytes(gtx), "b.dat", grid).problem, GridProblem::NotThisFormat);
  EXPECT_EQ(GeoidGrid::Parse(FileBytes(std::string(300, 'x')), "b.gtx", grid).problem,
            GridProblem::ImpossibleSize);
  EXPECT_EQ(GeoidGrid::Parse(FileBytes(std::string(300, 'x')), "b.bin", grid).problem,
            GridProblem::NotThisFormat);
}

}  // namespace
}  // namespace tarvex
