#include "coordsys/projections/transverse_mercator.h"

#include <complex>

#include "coordsys/projections/auxiliary_latitude.h"
#include "coordsys/projections/projection_kernel.h"

namespace tarvex {
namespace {

constexpr double kWidestEta = 1.25;
constexpr double kFarthestXi = std::numbers::pi * 110.0 / 180.0;
constexpr double kClosing = 1e-9;  // what an inverse may be over the edge that a forward kept

template <typename Lanes>
struct Complex {
  Lanes re = {};
  Lanes im = {};
};

// sum c_j sin(2 j (xi + i eta)), from the (hyperbolic) sine and cosine of 2 xi and 2 eta. The
// polynomial has real coefficients: it is divided by the square factor whose zeros are its argument
// and the conjugate (Knuth, The Art of Computer Programming 2, 4.6.4).
template <typename Lanes>
inline Complex<Lanes> SumOf(const SinePolynomial& polynomial, Lanes sin2, Lanes cos2, Lanes sinh2,
                            Lanes cosh2) {
  const SineSeries& p = polynomial.coefficients();
  const Lanes re = cos2 * cosh2;
  const Lanes im = sin2 * sinh2;  // of the argument's conjugate
  const Lanes sum = 2.0 * re;
  const Lanes product = re * re + im * im;
  const Lanes b4 = p[4] + p[5] * sum;
  const Lanes b3 = (p[3] - p[5] * product) + sum * b4;
  const Lanes b2 = (p[2] - product * b4) + sum * b3;
  const Lanes b1 = (p[1] - product * b3) + sum * b2;
  const Lanes valueRe = (p[0] - product * b2) + re * b1;
  const Lanes valueIm = -im * b1;
  const Lanes sinRe = sin2 * cosh2;
  const Lanes sinIm = cos2 * sinh2;
  return {sinRe * valueRe - sinIm * valueIm, sinRe * valueIm + sinIm * valueRe};
}

struct Kernel {
  EllipsoidConstants ellipsoid;
  PlaneOrigin origin;
  double radiusM = 0.0;  ///< k0 times the rectifying radius
  double overRadius = 0.0;
  double originXi = 0.0;
  SinePolynomial alpha;  ///< Karney 2011, eq. 35
  SinePolynomial beta;   ///< eq. 36
  SineSeries alphaSeries = {};

  // Karney 2011, eqs. 7 to 14. Everything comes from the conformal latitude chi and lambda by
  // algebra: tanh eta' is v / length with v = cos chi sin lambda, and q2 = length^2 - v^2 the
  // square of cos chi cos lambda and sin chi. Nothing needs chi at length 1.
  template <typename Lanes>
  LaneMask<Lanes> Forward(LanePosition<Lanes> position, LanePoint<Lanes>& point) const noexcept {
    DirectionOf<Lanes> lambda;
    DirectionOf<Lanes> phi;
    Toward(position.longitudeRad - origin.centralMeridianRad, position.latitudeRad, lambda, phi);
    const DirectionOf<Lanes> chi = ellipsoid.ConformalOfAnyLength(phi);
    const Lanes length2 = chi.sin * chi.sin + chi.cos * chi.cos;
    const Lanes length = SquareRootOf(length2);
    const Lanes v = chi.cos * lambda.sin;
    const Lanes forth = chi.cos * lambda.cos;
    const Lanes q2 = chi.sin * chi.sin + forth * forth;
    const Lanes overQ = 1.0 / SquareRootOf(q2);
    const Lanes overQ2 = overQ * overQ;
    // xi' and eta', eq. 10
    const Lanes xi = AngleOf(chi.sin * overQ, forth * overQ);
    const Lanes eta = LogarithmOf((length + v) * overQ);

    // xi - xi' and eta - eta', eq. 11
    const Complex<Lanes> sum =
        SumOf(alpha, 2.0 * chi.sin * forth * overQ2, (forth - chi.sin) * (forth + chi.sin) * overQ2,
              2.0 * v * length * overQ2, (length2 + v * v) * overQ2);
    point.northingM = origin.falseNorthingM + radiusM * (xi - originXi + sum.re);
    point.eastingM = origin.falseEastingM + radiusM * (eta + sum.im);
    return Within(eta, kWidestEta) & Within(xi, kFarthestXi);
  }

  // Karney 2011, eqs. 15 to 22, the geodetic latitude by its own series of the conformal one.
  template <typename Lanes>
  LaneMask<Lanes> Inverse(LanePoint<Lanes> point, LanePosition<Lanes>& position) const noexcept {
    const Lanes xi = (point.northingM - origin.falseNorthingM) * overRadius + originXi;
    const Lanes eta = (point.eastingM - origin.falseEastingM) * overRadius;
    const LaneMask<Lanes> inReach = Within(eta, kWidestEta + 0.01) & Within(xi, kFarthestXi + 0.01);
    const DirectionOf<Lanes> at = Toward(xi);
    const Lanes expEta = ExponentialOf(eta);
    const Lanes exp2eta = expEta * expEta;
    const Lanes overExpEta = 1.0 / expEta;
    const Lanes overExp2eta = overExpEta * overExpEta;
    const Complex<Lanes> sum = SumOf(beta, at.Sin2(), at.Cos2(), 0.5 * (exp2eta - overExp2eta),
                                     0.5 * (exp2eta + overExp2eta));
    const Lanes etaC = eta - sum.im;

    const DirectionOf<Lanes> xiC = at.Turned(-sum.re);
    const Lanes expEtaC = expEta + expEta * SmallExpm1(-sum.im);
    const Lanes overExpEtaC = overExpEta + overExpEta * SmallExpm1(sum.im);
    const Lanes sinhEta = 0.5 * (expEtaC - overExpEtaC);
    const Lanes forth2 = sinhEta * sinhEta + xiC.cos * xiC.cos;
    const Lanes forth = SquareRootOf(forth2);
    const Lanes overForth = OverLength(forth);
    const Lanes overLength = 2.0 / (expEtaC + overExpEtaC);  // 1 / cosh eta, of all three legs
    const Lanes norm2 = overLength * overLength;
    const Lanes sin2chi = 2.0 * xiC.sin * forth * norm2;
    const Lanes cos2chi = (forth2 - xiC.sin * xiC.sin) * norm2;
    Lanes chi;
    Lanes lambda;
    AnglesOf(DirectionOf<Lanes>{xiC.sin * overLength, forth * overLength},
             {sinhEta * overForth, xiC.cos * overForth}, chi, lambda);
    position.latitudeRad = chi + ellipsoid.delta.Sum(sin2chi, cos2chi);
    position.longitudeRad = WrappedLongitude(origin.centralMeridianRad + lambda);
    return inReach & Within(etaC, kWidestEta + kClosing) &
           Within(xi - sum.re, kFarthestXi + kClosing);
  }

  // Karney 2011, eq. 25: the scale of the sphere's projection times that of the series.
  double PointScale(LatLon position) const noexcept {
    const Direction phi = Toward(position.latitudeRad);
    const Direction chi = ellipsoid.Conformal(position.latitudeRad);
    const Direction lambda = Toward(position.longitudeRad - origin.centralMeridianRad);
    const double forth = chi.cos * lambda.cos;
    const std::complex<double> zeta(std::atan2(chi.sin, forth), std::atanh(chi.cos * lambda.sin));
    std::complex<double> derivative = 1.0;
    for (std::size_t j = 0; j < alphaSeries.size(); ++j) {
      const double twice = 2.0 * static_cast<double>(j + 1);
      derivative += twice * alphaSeries[j] * std::cos(twice * zeta);
    }
    const double onSphere = chi.cos / (phi.cos * std::hypot(chi.sin, forth));
    return radiusM / ellipsoid.a * std::abs(derivative) * onSphere *
           std::sqrt(1.0 - ellipsoid.e2 * phi.sin * phi.sin);
  }
};

}  // namespace

MadeProjection MakeTransverseMercator(const ProjectionParameters& parameters) {
  if (!(std::fabs(parameters.latitudeOfOriginRad) <= std::numbers::pi / 2.0)) {
    return NotMade(ProjectionFault::LatitudeOfOrigin);
  }
  const EllipsoidConstants c = ConstantsOf(parameters.ellipsoid);
  Kernel kernel;
  kernel.ellipsoid = c;
  kernel.origin = PlaneOriginOf(parameters);
  kernel.radiusM = parameters.scaleFactor * c.rectifyingRadius;
  kernel.overRadius = 1.0 / kernel.radiusM;
  const double phi0 = parameters.latitudeOfOriginRad;
  kernel.originXi =
      phi0 +
      SinePolynomial(GeodeticToRectifying(c.n)).Sum(std::sin(2.0 * phi0), std::cos(2.0 * phi0));
  kernel.alphaSeries = ConformalToRectifying(c.n);
  kernel.alpha = SinePolynomial(kernel.alphaSeries);
  kernel.beta = SinePolynomial(RectifyingToConformal(c.n));
  return MakeOf(kernel);
}

}  // namespace tarvex
