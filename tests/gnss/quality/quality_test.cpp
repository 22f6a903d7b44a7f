// The gate before a point is stored, and the mean of several epochs.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <random>

#include "gnss/quality/averaging.h"
#include "gnss/quality/quality_gate.h"
#include "tests/support/random_numbers.h"

namespace tarvex {
namespace {

GnssPositionState Good() {
  return {.satellites = 12,
          .solutionType = SolutionType::Fixed,
          .hrms = 0.012,
          .vrms = 0.02,
          .pdop = 1.4,
          .latitude = 46.8,
          .longitude = 9.3,
          .height = 1100.0,
          .ageOfCorrections = 1.0,
          .epochMs = 1000,
          .precisionKnown = true,
          .positionReadAtMs = 5000};
}

TEST(QualityGate, NamesTheLimitThatRefuses) {
  GateLimits limits;
  EXPECT_FALSE(CheckGate(limits, {}, 1'000'000).has_value()) << "no limit, no refusal";
  for (const auto& [key, value] : {std::pair("gate_solution", "fixed"),
                                   {"gate_hrms", "0.05"},
                                   {"gate_vrms", "0.1"},
                                   {"gate_pdop", "4"},
                                   {"gate_satellites", "6"},
                                   {"gate_age", "5"},
                                   {"gate_stale", "2"}}) {
    EXPECT_TRUE(SetGateLimit(key, value, limits)) << key;
  }
  EXPECT_FALSE(CheckGate(limits, Good(), 6000).has_value());
  const std::pair<void (*)(GnssPositionState&), const char*> cases[] = {
      {[](GnssPositionState& s) { s.repeatedEpoch = true; },
       "The receiver repeats its last position."},
      {[](GnssPositionState& s) { s.positionReadAtMs = 2500; },
       "The position is 3.5 s old; the limit is 2.0 s."},
      {[](GnssPositionState& s) { s.solutionType = SolutionType::Float; },
       "The solution is FLOAT; it must be FIXED."},
      {[](GnssPositionState& s) { s.satellites = 5; },
       "There are 5 satellites; there must be 6 or more."},
      {[](GnssPositionState& s) { s.hrms = 0.0501; }, "HRMS is 0.0501; the limit is 0.0500."},
      {[](GnssPositionState& s) { s.pdop = 4.0000001; },
       "PDOP is 4.0000001; the limit is 4.0000000."},
      {[](GnssPositionState& s) { s.precisionKnown = false; },
       "HRMS is unknown; the limit is 0.050."},
      {[](GnssPositionState& s) { s.vrms = std::nan(""); }, "VRMS is nan; the limit is 0.100."},
      {[](GnssPositionState& s) { s.pdop = 0.0; }, "PDOP is unknown; the limit is 4.0."},
      {[](GnssPositionState& s) { s.ageOfCorrections = 6.0; },
       "The age of the corrections is 6.0 s; the limit is 5.0 s."}};
  for (const auto& [spoil, sentence] : cases) {
    GnssPositionState state = Good();
    spoil(state);
    const auto refusal = CheckGate(limits, state, 6000);
    ASSERT_TRUE(refusal.has_value()) << sentence;
    EXPECT_EQ(RefusalSentence(*refusal), sentence);
  }
}

TEST(QualityGate, RefusesLimitsThatMakeNoSense) {
  GateLimits limits;
  EXPECT_FALSE(SetGateLimit("gate_hrms", "-1", limits));
  EXPECT_FALSE(SetGateLimit("gate_hrms", "abc", limits));
  EXPECT_FALSE(SetGateLimit("gate_solution", "best", limits));
  EXPECT_FALSE(SetGateLimit("gate_satellites", "99.5", limits));
  EXPECT_FALSE(SetGateLimit("gate_other", "1", limits));
  EXPECT_EQ(limits, GateLimits{});
}

TEST(PositionAverage, WeighsByPrecision) {
  PositionAverage average;
  GnssPositionState state = Good();
  state.hrms = 0.01;
  state.vrms = 0.01;
  ASSERT_TRUE(average.Add(state));
  state.epochMs = 2000;
  state.hrms = 0.02;
  state.vrms = 0.02;
  state.latitude += 1e-6;
  state.height += 1.0;
  state.solutionType = SolutionType::Float;
  state.satellites = 9;
  state.pdop = 3.5;
  ASSERT_TRUE(average.Add(state));
  EXPECT_FALSE(average.Add(state)) << "an epoch counts once";
  const AveragedPosition mean = average.Mean();
  EXPECT_EQ(mean.epochs, 2U);
  EXPECT_TRUE(mean.weighted);
  EXPECT_NEAR(mean.latitude, 46.8 + 0.2e-6, 1e-12);
  EXPECT_NEAR(mean.height, 1100.2, 1e-9);
  EXPECT_NEAR(mean.farthest, 0.8 * 0.11117, 1e-4);
  const GnssPositionState all = average.State();
  EXPECT_EQ(all.solutionType, SolutionType::Float);
  EXPECT_EQ(all.satellites, 9);
  EXPECT_EQ(all.pdop, 3.5);
  EXPECT_NEAR(all.hrms, std::sqrt((1e-4 + 4e-4) / 2.0), 1e-12);
}

// As a receiver that sends GST behind GGA begins.
TEST(PositionAverage, LeavesEpochsWithoutPrecisionOutOfIt) {
  PositionAverage average;
  GnssPositionState state = Good();
  state.precisionKnown = false;
  state.hrms = state.vrms = 0.0;
  ASSERT_TRUE(average.Add(state));
  EXPECT_FALSE(average.State().precisionKnown);
  for (const int epoch : {2000, 3000}) {
    state.epochMs = epoch;
    state.precisionKnown = true;
    state.precisionCarriedOver = true;
    state.hrms = 0.012;
    state.vrms = 0.015;
    ASSERT_TRUE(average.Add(state));
  }
  const GnssPositionState all = average.State();
  EXPECT_TRUE(all.precisionKnown);
  EXPECT_TRUE(all.precisionCarriedOver);
  EXPECT_NEAR(all.hrms, 0.012, 1e-12);
  EXPECT_NEAR(all.vrms, 0.015, 1e-12);
  EXPECT_EQ(average.Mean().preciseEpochs, 2U);
  EXPECT_FALSE(average.Mean().weighted);
}

TEST(PositionAverage, KeepsTheLongitudeWithinTheCircle) {
  PositionAverage average;
  GnssPositionState state = Good();
  state.longitude = 179.9999999;
  ASSERT_TRUE(average.Add(state));
  state.epochMs += 1000;
  state.longitude = -179.9999997;
  ASSERT_TRUE(average.Add(state));
  EXPECT_NEAR(average.Mean().longitude, -179.9999999, 1e-11);
}

TEST(PositionAverage, FindsTheScatterOfANoisySeriesAcrossTheDateLine) {
  RandomNumbers random(11);
  std::normal_distribution<double> noise(0.0, 1.0);
  PositionAverage average;
  GnssPositionState state = Good();
  state.precisionKnown = false;
  constexpr double kPerDegreeNorth = 111167.0;  // at 46.8 degrees and 1100 m
  constexpr double kPerDegreeEast = 76361.0;
  for (int i = 0; i < 4000; ++i) {
    state.epochMs = i * 1000;
    state.latitude = 46.8 + noise(random) * 0.010 / kPerDegreeNorth;
    state.longitude = std::remainder(180.0 + noise(random) * 0.020 / kPerDegreeEast, 360.0);
    state.height = 1100.0 + noise(random) * 0.030;
    ASSERT_TRUE(average.Add(state));
  }
  const AveragedPosition mean = average.Mean();
  EXPECT_FALSE(mean.weighted);
  EXPECT_NEAR(mean.scatterNorth, 0.010, 0.0005);
  EXPECT_NEAR(mean.scatterEast, 0.020, 0.001);
  EXPECT_NEAR(mean.scatterUp, 0.030, 0.0015);
  EXPECT_NEAR(std::abs(std::remainder(mean.longitude - 180.0, 360.0)) * kPerDegreeEast, 0.0, 0.002);
}

}  // namespace
}  // namespace tarvex
