#include "core/units/angle.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>

#include "core/job/azimuth.h"
#include "core/text/number_text.h"
#include "core/units/no_value.h"
#include "core/units/units.h"
#include "tests/support/random_numbers.h"

namespace tarvex {
namespace {

constexpr double kNan = std::numeric_limits<double>::quiet_NaN();

TEST(PackedAngle, ReadsDegreesMinutesSeconds) {
  EXPECT_DOUBLE_EQ(PackedToDegrees(12.3030), 12.0 + 30.0 / 60 + 30.0 / 3600);
  EXPECT_DOUBLE_EQ(PackedToDegrees(-12.3030), -(12.0 + 30.0 / 60 + 30.0 / 3600));
  EXPECT_DOUBLE_EQ(PackedToDegrees(12.34567), 12.0 + 34.0 / 60 + 56.7 / 3600);
  EXPECT_DOUBLE_EQ(PackedToDegrees(-0.3000), -0.5);
  // 35.1 is just below 35 degrees 10 minutes in binary; the minutes must not read 9.
  EXPECT_DOUBLE_EQ(PackedToDegrees(35.1), 35.0 + 10.0 / 60);
}

TEST(PackedAngle, HasNoValueBeyondTheMarker) {
  for (const double value : {-765432.2, kNoValue, -kNoValue, 1e300, kNan}) {
    EXPECT_EQ(PackedToDegrees(value), 0.0) << value;
    EXPECT_EQ(DegreesToPackedText(value), "") << value;
    EXPECT_EQ(PackedField(value, 4), "") << value;
    EXPECT_EQ(DegreesToDmsText(value), "") << value;
    EXPECT_EQ(DegreesToPacked(value), 0.0) << value;
  }
}

TEST(PackedAngle, FieldsRoundInSecondsAndCarry) {
  struct Case {
    double degrees;
    int decimals;
    const char* text;
  };
  const double oneSecond = 1.0 / 3600;
  const Case cases[] = {
      {359.0 + 59.0 / 60 + 59.9996 / 3600, 4, "0.0000"},
      {359.0 + 59.0 / 60 + 59.4 / 3600, 4, "359.5959"},
      {12.0 + 59.0 / 60 + 59.6 / 3600, 4, "13.0000"},
      {12.0 + 29.0 / 60 + 59.6 / 3600, 4, "12.3000"},
      {12.0 + 29.0 / 60 + 59.99999999996 / 3600, 12, "12.300000000000"},
      {-12.0 - 29.0 / 60 - 59.6 / 3600, 4, "-12.3000"},
      {-97.5, 12, "-97.300000000000"},
      {-0.1 * oneSecond, 4, "0.0000"},
      {-0.0, 4, "0.0000"},
      {725.0, 4, "5.0000"},
      {10.0 + 59.0 / 60 + 56.0 / 3600, 3, "11.000"},
      {10.0 + 12.0 / 60 + 34.0 / 3600, 3, "10.123"},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(PackedField(c.degrees, c.decimals), c.text) << FixedNumber(c.degrees, 12);
  }
}

// Degrees cut from 12 decimals, minutes from 7: what no double holds exactly stays out of both.
TEST(PackedAngle, TextTakesDegreesAndMinutesThroughDecimals) {
  struct Case {
    double degrees;
    const char* text;
  };
  const Case cases[] = {
      {308.5, "308.3000000000000000"},
      {248.25 + 1.0 / 1024, "248.1503515625000000"},
      {-2501.5, "-2501.3000000000000000"},
      {305.0 + 23.0 / 60, "305.2300000000000000"},  // just below 23 minutes in binary
      {29.999999999999996, "30.0000000000000000"},
      {725.0, "5.0000000000000000"},
      {359.99999999999999, "0.0000000000000000"},
      {-1e-17, "0.0000000000000000"},
  };
  for (const Case& c : cases) EXPECT_EQ(DegreesToPackedText(c.degrees), c.text) << c.degrees;
  // 4e-8 of a minute short of 23 minutes: printed with 7 decimals it is 23, but no seconds are
  // lost.
  const double shortOf = 305.0 + (23.0 - 4e-8) / 60;
  EXPECT_NEAR(PackedToDegrees(DegreesToPacked(shortOf)), shortOf, 1e-11);
}

TEST(PackedAngle, TextReadBackIsThePackedNumber) {
  for (int minute = 0; minute < 360 * 60; ++minute) {
    const double degrees = minute / 60 + (minute % 60) / 60.0;
    const std::string text = DegreesToPackedText(degrees);
    const std::string start = std::to_string(minute / 60) + (minute % 60 < 10 ? ".0" : ".") +
                              std::to_string(minute % 60) + "00";
    ASSERT_EQ(text.substr(0, start.size()), start);
    ASSERT_EQ(LeadingDouble(text), DegreesToPacked(degrees)) << text;
    ASSERT_NEAR(PackedToDegrees(LeadingDouble(text)), degrees, 3e-12) << text;
  }
  RandomNumbers random(1);
  std::uniform_real_distribution<double> angle(-400.0, 400.0);
  for (int i = 0; i < 20000; ++i) {
    const double degrees = angle(random);
    EXPECT_EQ(LeadingDouble(DegreesToPackedText(degrees)), DegreesToPacked(degrees)) << degrees;
  }
}

TEST(PackedAngle, DisplayTextReadsBack) {
  EXPECT_EQ(DegreesToDmsText(12.0 + 34.0 / 60 + 56.7 / 3600), "12\u00B034'56.7\"");
  EXPECT_EQ(DegreesToDmsText(-0.5), "-0\u00B030'00\"");
  EXPECT_DOUBLE_EQ(DegreesToPacked(12.0 + 34.0 / 60 + 56.7 / 3600), 12.34567);
  EXPECT_DOUBLE_EQ(DegreesToPacked(-0.5), -0.3);
  EXPECT_NEAR(LeadingDouble(DegreesToPackedText(48.1173)), 48.070228, 1e-14);
}

TEST(PackedAngle, SurvivesRandomRoundTrips) {
  RandomNumbers random(20081205);
  std::uniform_real_distribution<double> angle(-360.0, 360.0);
  for (int i = 0; i < 20000; ++i) {
    const double degrees = angle(random);
    // 1e-9 seconds of display text is 3e-13 degrees; 8 decimals of the packed seconds are the rest.
    EXPECT_NEAR(PackedToDegrees(DegreesToPacked(degrees)), degrees, 3e-12)
        << FixedNumber(degrees, 15);
    const std::string field = PackedField(degrees, 12);
    EXPECT_LT(field[field.find('.') + 1], '6') << field;
    EXPECT_LT(field[field.find('.') + 3], '6') << field;
  }
}

TEST(Azimuth, IsCorrectedOnceOnly) {
  EXPECT_EQ(NormaliseAzimuth(-170.0), 190.0);
  EXPECT_EQ(NormaliseAzimuth(725.0), 365.0);
  EXPECT_EQ(NormaliseAzimuth(360.0), 0.0);
  EXPECT_EQ(NormaliseAzimuth(12.5), 12.5);
}

TEST(Azimuth, IsClockwiseFromGridNorth) {
  constexpr double kPi = 3.141592653589793;
  EXPECT_EQ(GridAzimuth(5.0, 0.0), 0.0);
  EXPECT_DOUBLE_EQ(GridAzimuth(0.0, 2.0), kPi / 2);
  EXPECT_DOUBLE_EQ(GridAzimuth(-3.0, -3.0), 1.25 * kPi);
  EXPECT_DOUBLE_EQ(GridAzimuth(0.0, -1e-9), 1.5 * kPi);
  EXPECT_EQ(GridAzimuth(0.0, 0.0), 0.0);
  EXPECT_EQ(GridAzimuth(kNan, 1.0), 0.0);
}

TEST(DistanceUnits, UseTheTruncatedFactors) {
  EXPECT_EQ(ToMetres(100.0, DistanceUnit::UsSurveyFeet), 100.0 * 0.30480060960125016);
  EXPECT_NE(ToMetres(100.0, DistanceUnit::UsSurveyFeet), 100.0 * 1200.0 / 3937.0);
  EXPECT_EQ(FromMetres(2.0, DistanceUnit::InternationalFeet), 2.0 * 3.280839895013);
  EXPECT_EQ(FromUsFeet(3.0, DistanceUnit::InternationalFeet),
            3.0 * 0.30480060960125016 * 3.280839895013);
  EXPECT_EQ(FromUsFeet(3.0, DistanceUnit::UsSurveyFeet), 3.0);
}

}  // namespace
}  // namespace tarvex
