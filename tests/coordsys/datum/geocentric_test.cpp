#include "coordsys/datum/geocentric.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>
#include <random>

#include "tests/coordsys/case_table.h"
#include "tests/support/random_numbers.h"

namespace tarvex {
namespace {

// Metres on the ground for a difference of latitude and longitude.
double Apart(const Geodetic& a, const Geodetic& b) {
  const double north = (a.latitudeRad - b.latitudeRad) * 6.4e6;
  const double east = std::remainder(a.longitudeRad - b.longitudeRad, 2 * std::numbers::pi) *
                      6.4e6 * std::cos(a.latitudeRad);
  return std::hypot(north, east, a.heightM - b.heightM);
}

TEST(Geocentric, AgreesWithThePublishedGigsPoints) {
  const GeocentricFrame frame(kWgs84);
  for (const CaseRow& row : ReadCaseTable("datum/gigs_5201_geocentric.tsv")) {
    const Geocentric xyz = {row.Number("X"), row.Number("Y"), row.Number("Z")};
    const Geodetic position = {row.Radians("lat"), row.Radians("lon"), row.Number("h")};
    const double tolerance = row.Number("tol_m");
    if (row.Text("direction") == "FORWARD") {
      EXPECT_LT(Apart(frame.ToGeodetic(xyz), position), tolerance) << row.Text("id");
    } else {
      const Geocentric made = frame.ToGeocentric(position);
      EXPECT_NEAR(made.xM, xyz.xM, tolerance) << row.Text("id");
      EXPECT_NEAR(made.yM, xyz.yM, tolerance) << row.Text("id");
      EXPECT_NEAR(made.zM, xyz.zM, tolerance) << row.Text("id");
    }
  }
}

// The stated accuracy, over latitudes and heights; the forward way, whose formula is exact, is the
// judge.
TEST(Geocentric, ComesBackToTheStatedAccuracy) {
  struct Band {
    double lowM;
    double highM;
    double toleranceM;
  };
  const Band bands[] = {{-11e3, 100e3, 6e-9}, {100e3, 20'000e3, 3e-7}};
  RandomNumbers random(20261121);
  for (const Ellipsoid& ellipsoid : {kWgs84, kClarke1866, Ellipsoid{6378137.0, 0.0034}}) {
    const GeocentricFrame frame(ellipsoid);
    for (const Band& band : bands) {
      for (int i = 0; i < 20'000; ++i) {
        std::uniform_real_distribution<double> unit(-1.0, 1.0);
        const Geodetic at = {unit(random) * std::numbers::pi / 2, unit(random) * std::numbers::pi,
                             band.lowM + (band.highM - band.lowM) * 0.5 * (unit(random) + 1)};
        ASSERT_LT(Apart(frame.ToGeodetic(frame.ToGeocentric(at)), at), band.toleranceM)
            << at.latitudeRad << ' ' << at.heightM;
      }
    }
  }
}

TEST(Geocentric, PolesAndEquatorAreOrdinaryPlaces) {
  const GeocentricFrame frame(kWgs84);
  const double b = 6378137.0 * (1.0 - kWgs84.flattening);
  EXPECT_EQ(frame.ToGeodetic({0, 0, b}).latitudeRad, std::numbers::pi / 2);
  EXPECT_NEAR(frame.ToGeodetic({0, 0, -b - 7}).heightM, 7.0, 1e-8);
  EXPECT_EQ(frame.ToGeodetic({-6378137.0, 0, 0}).latitudeRad, 0.0);
  EXPECT_NEAR(frame.ToGeodetic({0, 6378137.0, 0}).heightM, 0.0, 1e-8);
}

}  // namespace
}  // namespace tarvex
