#include "coordsys/projections/auxiliary_latitude.h"

namespace tarvex {
namespace {

// A polynomial in n; the first coefficient is that of the given lowest power.
template <std::size_t N>
double Polynomial(double n, int lowestPower, const double (&coefficients)[N]) {
  double sum = 0.0;
  for (std::size_t i = N; i-- > 0;) sum = sum * n + coefficients[i];
  for (int power = 0; power < lowestPower; ++power) sum *= n;
  return sum;
}

PowerSeries ProductOf(const PowerSeries& a, const PowerSeries& b) {
  PowerSeries product = {};
  for (std::size_t i = 0; i < a.size(); ++i) {
    for (std::size_t j = 0; i + j < a.size(); ++j) product[i + j] += a[i] * b[j];
  }
  return product;
}

// With w = e atanh(e sin phi) the conformal latitude has the tangent (sin phi cosh w - sinh w) over
// cos phi. Returned is cosh w - 1 - sinh w / sin phi, in powers of sin^2 phi.
PowerSeries ConformalLessGeodetic(double e2) {
  PowerSeries overSine = {};  // w / sin phi
  double power = 1.0;
  for (std::size_t i = 0; i < overSine.size(); ++i) {
    power *= e2;
    overSine[i] = power / static_cast<double>(2 * i + 1);
  }
  PowerSeries square = {};  // w^2
  const PowerSeries product = ProductOf(overSine, overSine);
  for (std::size_t i = 1; i < square.size(); ++i) square[i] = product[i - 1];
  PowerSeries sum = {};
  PowerSeries odd = overSine;  // the terms of sinh w / sin phi
  PowerSeries even = {1.0};    // and those of cosh w
  for (int term = 1; term < 20; term += 2) {
    even = ProductOf(even, square);
    for (std::size_t i = 0; i < sum.size(); ++i) {
      even[i] /= term * (term + 1.0);
      sum[i] += even[i] - odd[i];
    }
    odd = ProductOf(odd, square);
    for (double& c : odd) c /= (term + 1.0) * (term + 2.0);
  }
  return sum;
}

}  // namespace

bool IsEarthEllipsoid(const Ellipsoid& ellipsoid) {
  return ellipsoid.semiMajorM > 6.3e6 && ellipsoid.semiMajorM < 6.45e6 &&
         ellipsoid.flattening > 1.0 / 1000.0 && ellipsoid.flattening < 1.0 / 150.0;
}

EllipsoidConstants ConstantsOf(const Ellipsoid& ellipsoid) {
  EllipsoidConstants c;
  c.a = ellipsoid.semiMajorM;
  c.f = ellipsoid.flattening;
  c.e2 = c.f * (2.0 - c.f);
  c.e = std::sqrt(c.e2);
  c.ep2 = c.e2 / (1.0 - c.e2);
  c.n = c.f / (2.0 - c.f);
  const double n2 = c.n * c.n;
  c.rectifyingRadius =
      c.a / (1.0 + c.n) * (1.0 + n2 * (1.0 / 4.0 + n2 * (1.0 / 64.0 + n2 / 256.0)));
  c.delta = SinePolynomial(ConformalToGeodetic(c.n));
  c.conformal = ConformalLessGeodetic(c.e2);
  double power = 1.0;
  for (std::size_t i = 0; i < c.eccentric.size(); ++i) {
    power *= c.e2;
    c.eccentric[i] = power / static_cast<double>(2 * i + 1);
  }
  return c;
}

SineSeries ConformalToRectifying(double n) {
  return {
      Polynomial(
          n, 1,
          {1.0 / 2.0, -2.0 / 3.0, 5.0 / 16.0, 41.0 / 180.0, -127.0 / 288.0, 7891.0 / 37800.0}),
      Polynomial(n, 2,
                 {13.0 / 48.0, -3.0 / 5.0, 557.0 / 1440.0, 281.0 / 630.0, -1983433.0 / 1935360.0}),
      Polynomial(n, 3, {61.0 / 240.0, -103.0 / 140.0, 15061.0 / 26880.0, 167603.0 / 181440.0}),
      Polynomial(n, 4, {49561.0 / 161280.0, -179.0 / 168.0, 6601661.0 / 7257600.0}),
      Polynomial(n, 5, {34729.0 / 80640.0, -3418889.0 / 1995840.0}),
      Polynomial(n, 6, {212378941.0 / 319334400.0})};
}

SineSeries RectifyingToConformal(double n) {
  return {
      Polynomial(
          n, 1,
          {1.0 / 2.0, -2.0 / 3.0, 37.0 / 96.0, -1.0 / 360.0, -81.0 / 512.0, 96199.0 / 604800.0}),
      Polynomial(n, 2,
                 {1.0 / 48.0, 1.0 / 15.0, -437.0 / 1440.0, 46.0 / 105.0, -1118711.0 / 3870720.0}),
      Polynomial(n, 3, {17.0 / 480.0, -37.0 / 840.0, -209.0 / 4480.0, 5569.0 / 90720.0}),
      Polynomial(n, 4, {4397.0 / 161280.0, -11.0 / 504.0, -830251.0 / 7257600.0}),
      Polynomial(n, 5, {4583.0 / 161280.0, -108847.0 / 3991680.0}),
      Polynomial(n, 6, {20648693.0 / 638668800.0})};
}

SineSeries ConformalToGeodetic(double n) {
  return {Polynomial(n, 1, {2.0, -2.0 / 3.0, -2.0, 116.0 / 45.0, 26.0 / 45.0, -2854.0 / 675.0}),
          Polynomial(n, 2, {7.0 / 3.0, -8.0 / 5.0, -227.0 / 45.0, 2704.0 / 315.0, 2323.0 / 945.0}),
          Polynomial(n, 3, {56.0 / 15.0, -136.0 / 35.0, -1262.0 / 105.0, 73814.0 / 2835.0}),
          Polynomial(n, 4, {4279.0 / 630.0, -332.0 / 35.0, -399572.0 / 14175.0}),
          Polynomial(n, 5, {4174.0 / 315.0, -144838.0 / 6237.0}),
          Polynomial(n, 6, {601676.0 / 22275.0})};
}

SineSeries GeodeticToRectifying(double n) {
  return {Polynomial(n, 1, {-3.0 / 2.0, 0.0, 9.0 / 16.0, 0.0, -3.0 / 32.0}),
          Polynomial(n, 2, {15.0 / 16.0, 0.0, -15.0 / 32.0, 0.0, 135.0 / 2048.0}),
          Polynomial(n, 3, {-35.0 / 48.0, 0.0, 105.0 / 256.0}),
          Polynomial(n, 4, {315.0 / 512.0, 0.0, -189.0 / 512.0}),
          Polynomial(n, 5, {-693.0 / 1280.0}),
          Polynomial(n, 6, {1001.0 / 2048.0})};
}

SineSeries RectifyingToGeodetic(double n) {
  return {Polynomial(n, 1, {3.0 / 2.0, 0.0, -27.0 / 32.0, 0.0, 269.0 / 512.0}),
          Polynomial(n, 2, {21.0 / 16.0, 0.0, -55.0 / 32.0, 0.0, 6759.0 / 4096.0}),
          Polynomial(n, 3, {151.0 / 96.0, 0.0, -417.0 / 128.0}),
          Polynomial(n, 4, {1097.0 / 512.0, 0.0, -15543.0 / 2560.0}),
          Polynomial(n, 5, {8011.0 / 2560.0}),
          Polynomial(n, 6, {293393.0 / 61440.0})};
}

}  // namespace tarvex
