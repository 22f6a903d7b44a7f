// Grids of agencies into their place, and what a grid file says about itself.
#include "coordsys/grids/packed_grid.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "coordsys/catalogue/grid_file_info.h"
#include "coordsys/national_grids.h"
#include "tests/coordsys/case_table.h"
#include "tests/support/memory_files.h"

namespace tarvex {
namespace {

// Whatever goes wrong at whichever step, an old part never stands beside a new one.
TEST(PackedGrid, PartsOfTwoEditionsNeverStandTogether) {
  const std::vector<PackedFile> before = {{"/d/ostn02_x.bin", "old x"}, {"/d/ostn02_y.bin", "old"}};
  const std::vector<PackedFile> after = {{"/d/ostn02_x.bin", "new x"}, {"/d/ostn02_y.bin", "new"}};
  for (const Mishap mishap : {Mishap::Fails, Mishap::DiskFull, Mishap::Killed, Mishap::PowerLoss}) {
    for (int step = 1;; ++step) {
      MemoryFiles files;
      ASSERT_TRUE(PutInPlace(files, before).ok());
      ASSERT_EQ(files.Paths().size(), 2U);
      files.Restart(0);
      files.Expect(mishap, step);
      const bool done = PutInPlace(files, after).ok();
      if (!files.happened()) break;
      files.Restart(static_cast<unsigned>(step));
      const std::string x = files.Bytes("/d/ostn02_x.bin");
      if (files.Exists("/d/ostn02_y.bin")) {
        EXPECT_EQ(x + files.Bytes("/d/ostn02_y.bin"), x == "old x" ? "old xold" : "new xnew");
      }
      EXPECT_THAT(x, testing::AnyOf("old x", "new x")) << step;
      if (done) {
        EXPECT_EQ(x, "new x");
      }
      ASSERT_LT(step, 50);
    }
  }
}

TEST(PackedGrid, AWrongTextGivesNoFile) {
  std::vector<PackedFile> packed;
  EXPECT_EQ(PackGrid("", "t", "/d/", nullptr, packed).problem, GridProblem::NotThisFormat);
  EXPECT_EQ(PackGrid("GR3D1 wrong\n", "t", "/d/", nullptr, packed).problem,
            GridProblem::ImpossibleSize);
  const std::string french = TestBytes("datum/gr3df97a_paris.txt");
  ASSERT_TRUE(PackGrid(french, "t", "/d/", nullptr, packed).ok());
  ASSERT_EQ(packed.size(), 1U);
  EXPECT_EQ(packed[0].path, "/d/gr3df97a.bin");
}

GridFileInfo InfoOf(const std::string& name) {
  GridFileInfo info;
  EXPECT_EQ(ReadGridFileInfo(SystemFiles(), std::string(TARVEX_TEST_DATA) + "/datum/" + name,
                             nullptr, info)
                .Text(),
            "");
  return info;
}

TEST(GridFileInfo, SaysWhatEveryKindCovers) {
  const GridFileInfo paris = InfoOf("paris.gsb");
  EXPECT_EQ(paris.kind, GridFileKind::Ntv2);
  EXPECT_EQ(paris.toSystem, "RGF93");
  ASSERT_EQ(paris.parts.size(), 1U);
  EXPECT_EQ(paris.parts[0].parent, "");
  const GridGeometry& g = paris.parts[0].geometry;  // 2 to 3 east, 48 to 49.5 north
  EXPECT_NEAR(g.firstX(), 2.0, 1e-9);
  EXPECT_NEAR(g.lastX(), 3.0, 1e-9);
  EXPECT_NEAR(g.firstY(), 48.0, 1e-9);
  EXPECT_EQ(g.rows(), 16);

  const GridFileInfo texas = InfoOf("texas.los");
  EXPECT_EQ(texas.kind, GridFileKind::Nadcon);
  EXPECT_EQ(texas.parts[0].geometry.lastX(), -94.0);
  const GridFileInfo bavaria = InfoOf("bavaria.gtx");
  EXPECT_EQ(bavaria.kind, GridFileKind::Geoid);
  EXPECT_NEAR(bavaria.parts[0].geometry.firstY(), 46.0, 1.0);

  MemoryFiles files;
  std::vector<PackedFile> packed;
  ASSERT_TRUE(PackGrid(TestBytes("datum/gr3df97a_paris.txt"), "t", "/", nullptr, packed).ok());
  files.Put("/a.bin", packed[0].bytes);  // told by its first bytes, though geoids end in .bin too
  files.Put("/b.grd", "0\n0\n2000\n1000\n1\n2\n1 2 3 4 5 6\n");
  files.Put("/c.grd", "0\n0\n2000\n1000\n1\n2\n1 2 3 4 5\n");
  files.Put("/d.txt", "1,2,3\n");
  GridFileInfo info;
  EXPECT_TRUE(ReadGridFileInfo(files, "/a.bin", nullptr, info).ok());
  EXPECT_EQ(info.kind, GridFileKind::French);
  EXPECT_TRUE(ReadGridFileInfo(files, "/b.grd", nullptr, info).ok());
  EXPECT_EQ(info.parts[0].geometry, GridGeometry(0, 0, 1000, 1000, 3, 2));
  EXPECT_FALSE(info.inDegrees());
  EXPECT_EQ(ReadGridFileInfo(files, "/c.grd", nullptr, info).problem, GridProblem::CutShort);
  EXPECT_EQ(ReadGridFileInfo(files, "/d.txt", nullptr, info).problem, GridProblem::NotThisFormat);
  EXPECT_EQ(ReadGridFileInfo(files, "/e.gsb", nullptr, info).problem, GridProblem::Missing);
}

TEST(NationalGrids, AreKnownByTheirFiles) {
  EXPECT_EQ(NationalGridOfFile("X2c.grd")->label, "NADCON");
  EXPECT_EQ(NationalGridOfFile("HungarianEOV_dHeight.grd")->label, "VITEL");
  EXPECT_EQ(NationalGridOfFile("x2c.grd"), nullptr);
  EXPECT_EQ(NationalGridOfFile(""), nullptr);
}

}  // namespace
}  // namespace tarvex
