#include "coordsys/datum/seven_parameters.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>
#include <random>

#include "coordsys/datum/geocentric_map.h"
#include "tests/coordsys/case_table.h"
#include "tests/support/random_numbers.h"

namespace tarvex {
namespace {

GeocentricMap ForwardMap(const SevenParameters& parameters) {
  return *TakeGeocentricMap([&](Geocentric& p) {
    p = RotateScaleTranslate(ForwardArguments(parameters), p);
    return true;
  });
}

GeocentricMap InverseMap(const SevenParameters& parameters) {
  return *TakeGeocentricMap([&](Geocentric& p) {
    p = TranslateUnrotateScale(InverseArguments(parameters), p);
    return true;
  });
}

// Metres between two positions.
double Apart(const Geodetic& a, const Geodetic& b) {
  const double east = std::remainder(a.longitudeRad - b.longitudeRad, 2 * std::numbers::pi) *
                      std::cos(a.latitudeRad);
  return std::hypot(6.4e6 * (a.latitudeRad - b.latitudeRad), 6.4e6 * east, a.heightM - b.heightM);
}

TEST(SevenParameters, AgreeWithProjOnPublishedSets) {
  for (const CaseRow& row : ReadCaseTable("datum/proj_seven_parameter_cases.tsv")) {
    const auto text = SplitAt(row.Text("towgs84"), ',');
    ASSERT_EQ(text.size(), 7U);
    double v[7];
    for (std::size_t i = 0; i < 7; ++i) v[i] = LeadingDouble(text[i]);
    // The record holds the text's rotations negated.
    const SevenParameters parameters = {v[0], v[1], v[2], -v[3], -v[4], -v[5], v[6]};
    const Ellipsoid local = {row.Number("a"), 1.0 / row.Number("inverse_flattening")};
    const Geodetic in = {row.Radians("lat"), row.Radians("lon"), row.Number("h")};
    const Geodetic expected = {row.Radians("lat_out"), row.Radians("lon_out"), row.Number("h_out")};
    EXPECT_LT(Apart(GeodeticMap(local, kWgs84, ForwardMap(parameters)).Apply(in), expected), 2e-6);
    // Read backwards as well: PROJ's own inverse takes the transposed matrix for the inverse one,
    // which is off by the rotation squared (0.8 mm for the German set); ours is exact.
    EXPECT_LT(Apart(GeodeticMap(kWgs84, local, InverseMap(parameters)).Apply(expected), in), 2e-6)
        << row.Text("towgs84");
  }
}

TEST(SevenParameters, AgreeWithThePublishedGigsTranslations) {
  const SevenParameters parameters = {.dxM = 371, .dyM = -112, .dzM = 434};
  for (const CaseRow& row : ReadCaseTable("datum/gigs_datum_transformations.tsv")) {
    const Ellipsoid from = {row.Number("a_from"), 1.0 / row.Number("invf_from")};
    const Ellipsoid to = {row.Number("a_to"), 1.0 / row.Number("invf_to")};
    Geodetic start = {row.Radians("lat_from"), row.Radians("lon_from"), row.Number("h_from")};
    Geodetic end = {row.Radians("lat_to"), row.Radians("lon_to"), row.Number("h_to")};
    Geodetic made;
    Geodetic expected;
    if (row.Text("direction") == "FORWARD") {
      made = GeodeticMap(from, to, ForwardMap(parameters)).Apply(start);
      expected = end;
    } else {
      made = GeodeticMap(to, from, InverseMap(parameters)).Apply(end);
      expected = start;
    }
    if (row.Text("h_from").empty()) made.heightM = expected.heightM;
    EXPECT_LT(Apart(made, expected), row.Number("tol_m")) << row.Text("id");
  }
}

TEST(SevenParameters, UnitsAreSecondsAndPartsPerMillion) {
  const SevenParameterArguments forward =
      ForwardArguments({.rxArcsec = 3600.0, .ryArcsec = -1.0, .scalePpm = 20.0});
  EXPECT_DOUBLE_EQ(forward.rxRad, std::numbers::pi / 180.0);
  EXPECT_DOUBLE_EQ(forward.ryRad, -std::numbers::pi / 648000.0);
  EXPECT_DOUBLE_EQ(forward.scale, 1.00002);
  const SevenParameterArguments inverse =
      InverseArguments({.dxM = 5.0, .rzArcsec = 2.0, .scalePpm = 20.0});
  EXPECT_EQ(inverse.dxM, -5.0);
  EXPECT_EQ(inverse.rzRad, -2.0 * std::numbers::pi / 648000.0);
  EXPECT_EQ(inverse.scale, 1.0 / 1.00002);
}

// Seventy seconds of rotation, where "transpose and negate" would be off by a metre.
TEST(SevenParameters, InverseIsExactForLargeRotations) {
  const SevenParameters parameters = {300.0, -200.0, 900.0, 70.0, -65.0, 60.0, -25.0};
  const GeodeticMap out(kClarke1866, kWgs84, ForwardMap(parameters));
  const GeodeticMap back(kWgs84, kClarke1866, InverseMap(parameters));
  RandomNumbers random(7);
  std::uniform_real_distribution<double> unit(-1.0, 1.0);
  for (int i = 0; i < 5000; ++i) {
    const Geodetic at = {1.57 * unit(random), std::numbers::pi * unit(random),
                         5000.0 * unit(random)};
    ASSERT_LT(Apart(back.Apply(out.Apply(at)), at), 3e-8);
  }
}

// The arrays go through vector code: the same to the last bit, the odd ends of a block, the poles
// and points that turn far included.
TEST(SevenParameters, ArraysComeOutAsOneByOne) {
  const GeodeticMap map(kWgs84, kClarke1866,
                        InverseMap({300.0, -200.0, 900.0, 70.0, -65.0, 60.0, -25.0}));
  RandomNumbers random(3);
  std::uniform_real_distribution<double> unit(-1.0, 1.0);
  std::vector<double> lat = {std::numbers::pi / 2, -std::numbers::pi / 2, 1.5707, 0.0,
                             std::nan("")};
  std::vector<double> lon = {0.0, 1.0, 3.1, std::numbers::pi, 0.0};
  std::vector<double> height(lat.size(), 100.0);
  while (lat.size() < 150) {
    lat.push_back(1.57 * unit(random));
    lon.push_back(std::numbers::pi * unit(random));
    height.push_back(1e4 * unit(random));
  }
  std::vector<double> madeLat = lat;
  std::vector<double> madeLon = lon;
  std::vector<double> madeHeight = height;
  map.Apply(madeLat, madeLon, madeHeight);
  for (std::size_t i = 0; i < lat.size(); ++i) {
    const Geodetic one = map.Apply({lat[i], lon[i], height[i]});
    if (std::isnan(lat[i])) {
      EXPECT_TRUE(std::isnan(madeLat[i]));
      continue;
    }
    EXPECT_EQ((Geodetic{madeLat[i], madeLon[i], madeHeight[i]}), one) << i;
  }
}

TEST(SevenParameters, AMapThatIsNotLinearIsRefused) {
  const auto bent = [](Geocentric& p) {
    p.xM += 1e-12 * p.yM * p.zM;
    return true;
  };
  EXPECT_FALSE(TakeGeocentricMap(bent).has_value());
  EXPECT_FALSE(TakeGeocentricMap([](Geocentric&) { return false; }).has_value());
}

}  // namespace
}  // namespace tarvex
