#include "coordsys/ellipsoids.h"

#include <gtest/gtest.h>

#include <cmath>

namespace tarvex {
namespace {

Ellipsoid LookUp(int code) {
  Ellipsoid found{1.0, 2.0};
  LookUpEllipsoid(code, found.semiMajorM, found.flattening);
  return found;
}

TEST(Ellipsoids, CodesOutsideTheTableAreWgs84AndTheUsersOwnIsLeftAlone) {
  EXPECT_EQ(LookUp(13), LookUp(2));
  for (const int code : {15, 16, -1, 998, 1000}) EXPECT_EQ(LookUp(code), kWgs84) << code;
  EXPECT_EQ(LookUp(kUserEllipsoid), (Ellipsoid{1.0, 2.0}));
}

// The published defining ratios of ellipsoids whose inverse flattening or axes are exact.
TEST(Ellipsoids, TableAgreesWithPublishedDefinitions) {
  struct Case {
    int code;
    double semiMajorM;
    double inverseFlattening;
  };
  const Case cases[] = {
      {0, 6377563.396, 299.3249646}, {1, 6377340.189, 299.3249646},
      {2, 6378160.0, 298.25},        {13, 6378160.0, 298.25},
      {3, 6377397.155, 299.1528128}, {4, 6378206.4, 294.978698213898},
      {5, 6378249.145, 293.465},     {6, 6377276.345, 300.8017},
      {7, 6377298.556, 300.8017},    {8, 6377304.063, 300.8017},
      {9, 6378137.0, 298.257222101}, {10, 6378200.0, 298.3},
      {11, 6378270.0, 297.0},        {12, 6378388.0, 297.0},
      {14, 6378135.0, 298.26},       {20, 6378137.0, 298.257223563},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(LookUp(c.code).semiMajorM, c.semiMajorM) << c.code;
    EXPECT_NEAR(LookUp(c.code).flattening, 1.0 / c.inverseFlattening, 1.5e-12) << c.code;
  }
}

}  // namespace
}  // namespace tarvex
