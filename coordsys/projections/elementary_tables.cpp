#include "coordsys/projections/elementary_tables.h"

#include <bit>

namespace tarvex {
namespace {

// A number of twice the digits: the sum of a double and of what it lacks (Dekker, "A floating-point
// technique for extending the available precision", Numer. Math. 18 (1971)).
struct Twofold {
  double high = 0.0;
  double low = 0.0;
};

constexpr Twofold SumOf(double a, double b) {
  const double sum = a + b;
  const double part = sum - a;
  return {sum, (a - (sum - part)) + (b - part)};
}

constexpr Twofold operator+(Twofold a, Twofold b) {
  const Twofold sum = SumOf(a.high, b.high);
  return SumOf(sum.high, sum.low + (a.low + b.low));
}
constexpr Twofold operator-(Twofold a) {
  return {-a.high, -a.low};
}

constexpr Twofold ProductOf(double a, double b) {
  constexpr double kSplit = 134217729.0;  // 2^27 + 1
  const double aHigh = kSplit * a - (kSplit * a - a);
  const double bHigh = kSplit * b - (kSplit * b - b);
  const double aLow = a - aHigh;
  const double bLow = b - bHigh;
  const double product = a * b;
  return {product, ((aHigh * bHigh - product) + aHigh * bLow + aLow * bHigh) + aLow * bLow};
}

constexpr Twofold operator*(Twofold a, Twofold b) {
  const Twofold product = ProductOf(a.high, b.high);
  return SumOf(product.high, product.low + (a.high * b.low + a.low * b.high));
}
constexpr Twofold operator/(Twofold a, double b) {
  const double quotient = a.high / b;
  const Twofold rest = a + -ProductOf(quotient, b);
  return SumOf(quotient, rest.high / b);
}

constexpr double kSmallestTerm = 1e-40;

// Sine and cosine by their Taylor series, of angles up to 90 degrees.
struct TwofoldDirection {
  Twofold sin;
  Twofold cos;
};
constexpr TwofoldDirection TowardOf(Twofold angle) {
  TwofoldDirection toward{{}, {}};
  Twofold term{1.0, 0.0};
  for (int i = 0; term.high > kSmallestTerm; ++i) {
    const Twofold signedTerm = i % 4 < 2 ? term : -term;
    Twofold& sum = i % 2 == 0 ? toward.cos : toward.sin;
    sum = sum + signedTerm;
    term = term * angle / (i + 1.0);
  }
  return toward;
}

constexpr Twofold ExponentialOf(Twofold x) {
  Twofold sum;
  Twofold term{1.0, 0.0};
  for (int i = 1; term.high > kSmallestTerm; ++i) {
    sum = sum + term;
    term = term * x / i;
  }
  return sum;
}

// ln((1 + s) / (1 - s)) / 2.
constexpr Twofold AreaTangentOf(Twofold s) {
  Twofold sum;
  Twofold power = s;
  for (int i = 1; power.high > kSmallestTerm; i += 2) {
    sum = sum + power / i;
    power = power * s * s;
  }
  return sum;
}

constexpr Twofold ArcSineOf(double s) {
  Twofold sum;
  Twofold term{s, 0.0};
  for (int i = 1; term.high > kSmallestTerm; i += 2) {
    sum = sum + term / i;
    term = term * ProductOf(s, s) * Twofold{static_cast<double>(i), 0.0} / (i + 1.0);
  }
  return sum;
}

constexpr Twofold kHalfTurn{3.14159265358979311600e+00, 1.22464679914735317723e-16};

constexpr auto MakeSineTable() {
  constexpr std::size_t kQuarter = kSineSteps / 4;
  std::array<TableRow, kSineSteps> table{};
  for (std::size_t i = 0; i < kQuarter; ++i) {
    const Twofold steps{static_cast<double>(2 * i), 0.0};
    const TwofoldDirection at = TowardOf(kHalfTurn * steps / static_cast<double>(kSineSteps));
    table[i] = {at.sin.high, at.cos.high};
    table[i + kQuarter] = {at.cos.high, -at.sin.high};
    table[i + 2 * kQuarter] = {-at.sin.high, -at.cos.high};
    table[i + 3 * kQuarter] = {-at.cos.high, at.sin.high};
  }
  return table;
}

constexpr auto MakeLogarithmTable() {
  constexpr double kSteps = kLogarithmSteps;
  std::array<TableRow, kLogarithmSteps> table{};
  for (std::size_t i = 0; i < kLogarithmSteps; ++i) {
    const double step = static_cast<double>(i);
    const Twofold half = AreaTangentOf(Twofold{step, 0.0} / (2.0 * kSteps + step));
    table[i] = {kSteps / (kSteps + step), (half + half).high};
  }
  return table;
}

constexpr auto MakeExponentialTable() {
  constexpr Twofold kLn2{6.93147180559945286227e-01, 2.31904681384629955842e-17};
  std::array<std::uint64_t, kExponentialSteps> table{};
  for (std::size_t i = 0; i < kExponentialSteps; ++i) {
    const Twofold steps{static_cast<double>(i), 0.0};
    const Twofold power = ExponentialOf(kLn2 * steps / static_cast<double>(kExponentialSteps));
    table[i] = std::bit_cast<std::uint64_t>(power.high) - (std::uint64_t{i} << 45);
  }
  return table;
}

constexpr auto MakeArcTable() {
  constexpr std::size_t kLast = 91;  // of a sine of 0.711
  std::array<TableRow, kArcSteps> table{};
  for (std::size_t i = 0; i <= kLast; ++i) {
    const Twofold angle = ArcSineOf(static_cast<double>(i) / static_cast<double>(kArcSteps));
    table[i] = {TowardOf(angle).cos.high, angle.high};
  }
  return table;
}

}  // namespace

constinit const std::array<TableRow, kSineSteps> kSineTable = MakeSineTable();
constinit const std::array<TableRow, kLogarithmSteps> kLogarithmTable = MakeLogarithmTable();
constinit const std::array<std::uint64_t, kExponentialSteps> kExponentialTable =
    MakeExponentialTable();
constinit const std::array<TableRow, kArcSteps> kArcTable = MakeArcTable();

}  // namespace tarvex
