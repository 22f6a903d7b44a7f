// The elementary functions of the projections against those of the C library in extended precision:
// the errors that elementary.h states.
#include "coordsys/projections/elementary.h"
#include "tests/support/random_numbers.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>
#include <random>
#include <vector>

namespace tarvex {
namespace {

using Extended = long double;

constexpr double kTurn = 2.0 * std::numbers::pi;

// Evenly spread arguments, the steps of a table, the places half way between them, where the next
// step is taken, and the neighbours of all these.
std::vector<double> ArgumentsBetween(double low, double high, double step) {
  RandomNumbers random(41);
  std::uniform_real_distribution<double> anywhere(low, high);
  std::vector<double> arguments{low, high};
  for (int i = 0; i < 200'000; ++i) arguments.push_back(anywhere(random));
  for (double at = std::ceil(low / step) * step; at <= high; at += 0.5 * step) {
    arguments.insert(arguments.end(), {at, std::nextafter(at, low), std::nextafter(at, high)});
  }
  return arguments;
}

// The greatest error of what is added, and the greatest one over its result.
class Errors {
 public:
  void Add(double got, Extended exact) {
    const double error = static_cast<double>(std::fabs(static_cast<Extended>(got) - exact));
    absolute_ = std::max(absolute_, error);
    if (exact != 0.0L) {
      relative_ = std::max(relative_, error / static_cast<double>(std::fabs(exact)));
    }
  }
  double absolute() const { return absolute_; }
  double relative() const { return relative_; }

 private:
  double absolute_ = 0.0;
  double relative_ = 0.0;
};

class Elementary : public testing::Test {
 protected:
  void SetUp() override {
    if (std::numeric_limits<Extended>::digits < 64) GTEST_SKIP() << "no extended precision here";
  }
};

TEST_F(Elementary, SineAndCosine) {
  Errors errors;
  for (const double x : ArgumentsBetween(-10.0 * kTurn, 10.0 * kTurn, kTurn / 256.0)) {
    const auto [sin, cos] = SineCosineOf(InAll<TwoLanes>(x));
    errors.Add(sin[0], std::sin(Extended{x}));
    errors.Add(cos[0], std::cos(Extended{x}));
  }
  EXPECT_LT(errors.absolute(), 1.3e-16);
}

TEST_F(Elementary, SmallSinesAndCosinesKeepTheirDigits) {
  Errors errors;
  for (const double x : ArgumentsBetween(-0.012, 0.012, 0.001)) {
    const double pole = std::copysign(std::numbers::pi / 2.0, x) - x;
    errors.Add(SineCosineOf(InAll<TwoLanes>(x)).sin[0], std::sin(Extended{x}));
    if (std::fabs(x) < 1e-11) continue;  // the last 0.1 mm to the pole
    errors.Add(SineCosineOf(InAll<TwoLanes>(pole)).cos[0], std::cos(Extended{pole}));
  }
  EXPECT_LT(errors.relative(), 3.6e-16);
}

TEST_F(Elementary, AngleOfADirection) {
  Errors whole;
  Errors small;
  for (const double x : ArgumentsBetween(-std::numbers::pi, std::numbers::pi, 1.0 / 128.0)) {
    const double sin = std::sin(x);
    const double cos = std::cos(x);
    const double angle = AngleOf(InAll<TwoLanes>(sin), InAll<TwoLanes>(cos))[0];
    (std::fabs(x) < 1.0 / 256.0 ? small : whole)
        .Add(angle, std::atan2(Extended{sin}, Extended{cos}));
  }
  EXPECT_LT(whole.absolute(), 5.5e-16);
  EXPECT_LT(small.relative(), 2.9e-16);
}

TEST_F(Elementary, AnglesOfTheAxesAndOfNoDirection) {
  const auto angle = [](double sin, double cos) {
    return AngleOf(InAll<TwoLanes>(sin), InAll<TwoLanes>(cos))[0];
  };
  EXPECT_EQ(angle(0.0, 1.0), 0.0);
  EXPECT_EQ(angle(1.0, 0.0), std::numbers::pi / 2.0);
  EXPECT_EQ(angle(-1.0, 0.0), -std::numbers::pi / 2.0);
  EXPECT_EQ(angle(0.0, -1.0), std::numbers::pi);
  EXPECT_EQ(angle(-0.0, -1.0), -std::numbers::pi);
  EXPECT_EQ(angle(0.0, 0.0), 0.0);
}

TEST_F(Elementary, Logarithm) {
  Errors small;
  Errors large;
  for (const double x : ArgumentsBetween(1.0 / 16.0, 16.0, 1.0 / 128.0)) {
    const double log = LogarithmOf(InAll<TwoLanes>(x))[0];
    (x > 0.5 && x < 2.0 ? small : large).Add(log, std::log(Extended{x}));
  }
  EXPECT_LT(small.absolute(), 1.5e-16);
  EXPECT_LT(large.relative(), 3.5e-16);
  EXPECT_EQ(LogarithmOf(TwoLanes{1.0, 1.0})[0], 0.0);
}

TEST_F(Elementary, Exponential) {
  Errors errors;
  for (const double x : ArgumentsBetween(-40.0, 40.0, std::numbers::ln2 / 128.0)) {
    errors.Add(ExponentialOf(InAll<TwoLanes>(x))[0], std::exp(Extended{x}));
  }
  EXPECT_LT(errors.relative(), 2.2e-16);
  EXPECT_EQ(ExponentialOf(TwoLanes{0.0, 0.0})[0], 1.0);
}

}  // namespace
}  // namespace tarvex
