#include "coordsys/grids/grid_surface.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>

#include "tests/coordsys/case_table.h"

namespace tarvex {
namespace {

// Three columns (first coordinate 100, 110, 120) and two rows (second 50, 55); 10 a column and 1000
// a row.
const std::string kSmall = "100\n50\n120\n55\n1\n2\n0 10 20\n1000 1010 1020\n";

GridSurface Parsed(const std::string& text) {
  GridSurface surface;
  EXPECT_EQ(GridSurface::Parse(text, "x.grd", nullptr, surface).Text(), "");
  return surface;
}

TEST(GridSurface, NodesRunAlongTheFirstCoordinateFromTheLowestCorner) {
  const GridSurface surface = Parsed(kSmall);
  EXPECT_EQ(surface.geometry().columns(), 3);
  EXPECT_EQ(surface.geometry().rows(), 2);
  EXPECT_DOUBLE_EQ(surface.At(110, 50).value, 10.0);
  EXPECT_DOUBLE_EQ(surface.At(120, 55).value, 1020.0);
  EXPECT_DOUBLE_EQ(surface.At(112.5, 52).value, 12.5 + 400.0);
}

TEST(GridSurface, SaysWhyThereIsNoValue) {
  const GridSurface surface = Parsed("0\n0\n3\n1\n1\n3\n0 999.999 1 2\n0 1 2 -98765432.1\n");
  EXPECT_EQ(surface.At(-0.1, 0.5).answer, SurfaceAnswer::Outside);
  EXPECT_EQ(surface.At(0.5, std::nan("")).answer, SurfaceAnswer::Outside);
  EXPECT_EQ(surface.At(0.5, 0.5).answer, SurfaceAnswer::NoCorrection);
  EXPECT_EQ(surface.At(2.5, 0.5).answer, SurfaceAnswer::NoValue);
  EXPECT_EQ(surface.At(2.5, 0.5).value, 0.0);
  // A node that has no part in the value does not take it away.
  EXPECT_EQ(surface.At(0, 0).answer, SurfaceAnswer::Value);
  EXPECT_EQ(surface.At(2, 0.5).value, 1.5);
  EXPECT_EQ(surface.At(3, 0).value, 2.0);
  EXPECT_EQ(surface.At(1, 0).answer, SurfaceAnswer::NoCorrection);
}

TEST(GridSurface, CubicNeedsSixteenNodesAndMeetsACubic) {
  std::string text = "0\n0\n5\n5\n5\n5\n";
  for (int j = 0; j < 6; ++j) {
    for (int i = 0; i < 6; ++i) text += std::to_string(i * i - 2 * i * j + 3 * j * j) + ' ';
  }
  const GridSurface surface = Parsed(text);
  // Cubic convolution reproduces second-degree surfaces.
  EXPECT_NEAR(surface.CubicAt(2.3, 3.6).value, 2.3 * 2.3 - 2 * 2.3 * 3.6 + 3 * 3.6 * 3.6, 1e-5);
  EXPECT_EQ(surface.CubicAt(0.5, 2.5).answer, SurfaceAnswer::Outside);
  EXPECT_EQ(surface.CubicAt(2.5, 4.5).answer, SurfaceAnswer::Outside);
}

TEST(GridSurface, DamagedTextIsNamedWithItsPlace) {
  struct Case {
    const char* text;
    GridProblem problem;
    const char* detail;
  };
  const Case cases[] = {
      {"", GridProblem::CutShort, "line 1"},
      {"1\n2\n3\n", GridProblem::CutShort, "line 4"},
      {"hello\n", GridProblem::NotThisFormat, "line 1"},
      {"0\n0\n1\n1\n1\n1\n1 2 3.25\n", GridProblem::CutShort, "3 of 4 nodes"},
      {"0\n0\n1\n1\n1\n1\n1 2\n3 4\n5\n", GridProblem::TooLong, "line 9"},
      {"0\n0\n1\n1\n1\n1\n1 2\nx 4\n", GridProblem::BadValue, "line 8"},
      {"0\n0\n1\n1\n1\n1\n1 2\n3,4 4\n", GridProblem::BadValue, "line 8"},
      {"0\n0\n1\n1\n1\n1\n1 2\nnan 4\n", GridProblem::BadValue, "line 8"},
      {"0\n0\n1\n1\n0\n1\n1 2\n", GridProblem::ImpossibleSize, "lines 1 to 6"},
      {"0\n0\n1\n1\n1.5\n1\n1 2\n", GridProblem::ImpossibleSize, "lines 1 to 6"},
      {"1\n0\n0\n1\n1\n1\n1 2 3 4\n", GridProblem::ImpossibleSize, "lines 1 to 6"},
      {"0\n0\n1\n1\n30000\n30000\n1 2 3 4\n", GridProblem::CutShort, "0 of 900060001 nodes"},
  };
  for (const Case& c : cases) {
    GridSurface surface;
    const GridStatus status = GridSurface::Parse(c.text, "x.grd", nullptr, surface);
    EXPECT_EQ(status.problem, c.problem) << c.text;
    EXPECT_EQ(status.detail, c.detail) << c.text;
    EXPECT_NE(status.Text().find("x.grd"), std::string::npos);
  }
}

TEST(GridSurface, EveryCutOfAFileIsAnErrorAndKeepsTheOldGrid) {
  GridSurface surface = Parsed("0\n0\n1\n1\n1\n1\n7 7 7 7\n");
  for (std::size_t length = 0; length + 5 < kSmall.size(); ++length) {
    EXPECT_FALSE(
        GridSurface::Parse(std::string_view(kSmall).substr(0, length), "x.grd", nullptr, surface)
            .ok())
        << length;
  }
  EXPECT_EQ(surface.At(0.5, 0.5).value, 7.0);
}

std::string BinarySurface() {
  std::string bytes = "DSBB";
  const auto append = [&bytes](auto value) {
    char raw[sizeof value];
    std::memcpy(raw, &value, sizeof value);
    bytes.append(raw, sizeof value);
  };
  append(std::int16_t{3});
  append(std::int16_t{2});
  for (const double value : {100.0, 120.0, 50.0, 55.0, 0.0, 1020.0}) append(value);
  for (const float value : {0.0F, 10.0F, 20.0F, 1000.0F, 1010.0F, 1.70141e38F}) append(value);
  return bytes;
}

TEST(GridSurface, BinaryFormGivesTheSameSurface) {
  const GridSurface surface = Parsed(BinarySurface());
  EXPECT_DOUBLE_EQ(surface.At(105, 52.5).value, 505.0);
  EXPECT_EQ(surface.At(115, 52.5).answer, SurfaceAnswer::NoValue);
  const std::string bytes = BinarySurface();
  for (std::size_t length = 4; length < bytes.size(); ++length) {
    GridSurface none;
    EXPECT_EQ(GridSurface::Parse(bytes.substr(0, length), "x.grd", nullptr, none).problem,
              GridProblem::CutShort);
  }
}

TEST(GridSurface, OnlyALargeGridShowsItsProgress) {
  class Seen : public LoadProgress {
   public:
    void Show(std::string_view text, std::size_t done, std::size_t total) override {
      EXPECT_FALSE(text.empty());
      EXPECT_GE(done, last);
      last = done;
      of = total;
    }
    std::size_t last = 0;
    std::size_t of = 0;
  };
  const auto load = [](int columns, Seen& seen) {
    std::string text = "0\n0\n1\n1\n199\n" + std::to_string(columns - 1) + "\n";
    for (int i = 0; i < columns * 200; ++i) text += "0 ";
    GridSurface surface;
    EXPECT_TRUE(GridSurface::Parse(text, "x.grd", &seen, surface).ok());
  };
  Seen small;
  load(180, small);  // 36,000 nodes
  EXPECT_EQ(small.of, 0U);
  Seen large;
  load(181, large);
  EXPECT_EQ(large.last, 36'200U);
  EXPECT_EQ(large.of, 36'200U);
}

TEST(GridSurface, AMissingFileIsNamed) {
  GridSurface surface;
  const GridStatus status = GridSurface::Load(SystemFiles(), "/nowhere/x.grd", nullptr, surface);
  EXPECT_EQ(status.problem, GridProblem::Missing);
  EXPECT_EQ(status.Text(), "The grid file /nowhere/x.grd does not exist.");
}

}  // namespace
}  // namespace tarvex
