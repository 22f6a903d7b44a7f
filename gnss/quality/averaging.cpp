#include "gnss/quality/averaging.h"

#include <algorithm>
#include <cmath>

#include "coordsys/ellipsoids.h"

namespace tarvex {
namespace {

constexpr double kSquaredEccentricity = kWgs84.flattening * (2.0 - kWgs84.flattening);
constexpr double kSmallestPrecision = 0.001;  // a receiver that says less knows less

double WrappedDegrees(double degrees) {
  return std::remainder(degrees, 360.0);
}

SolutionType Worse(SolutionType a, SolutionType b) {
  for (const SolutionType type :
       {SolutionType::Autonomous, SolutionType::Dgps, SolutionType::Float}) {
    if (a == type || b == type) return type;
  }
  return SolutionType::Fixed;
}

double Weight(double precisionM) {
  const double bounded = std::max(precisionM, kSmallestPrecision);
  return 1.0 / (bounded * bounded);
}

}  // namespace

bool PositionAverage::Add(const GnssPositionState& state) {
  if (state.epochMs != kNoEpoch &&
      std::find(times_.begin(), times_.end(), state.epochMs) != times_.end()) {
    return false;
  }
  if (epochs_.empty()) {
    first_ = worst_ = state;
    const double sine = std::sin(state.latitude * kRadiansPerDegree);
    const double w2 = 1.0 - kSquaredEccentricity * sine * sine;
    const double primeVertical = kWgs84.semiMajorM / std::sqrt(w2);
    const double meridian = primeVertical * (1.0 - kSquaredEccentricity) / w2;
    metresPerDegreeNorth_ = (meridian + state.height) * kRadiansPerDegree;
    metresPerDegreeEast_ = (primeVertical + state.height) *
                           std::cos(state.latitude * kRadiansPerDegree) * kRadiansPerDegree;
  }
  times_.push_back(state.epochMs);
  epochs_.push_back(
      {.northM = (state.latitude - first_.latitude) * metresPerDegreeNorth_,
       .eastM = WrappedDegrees(state.longitude - first_.longitude) * metresPerDegreeEast_,
       .upM = state.height - first_.height,
       .hrmsM = ToMetres(state.hrms, state.unit),
       .vrmsM = ToMetres(state.vrms, state.unit),
       .precise = state.precisionKnown && state.hrms > 0.0 && state.vrms > 0.0});
  if (state.origin != PositionOrigin::Measured) worst_.origin = state.origin;
  worst_.solutionType = Worse(worst_.solutionType, state.solutionType);
  worst_.satellites = std::min(worst_.satellites, state.satellites);
  worst_.pdop = std::max(worst_.pdop, state.pdop);
  worst_.heightKnown = worst_.heightKnown && state.heightKnown;
  worst_.separationKnown = worst_.separationKnown && state.separationKnown;
  worst_.precisionCarriedOver = worst_.precisionCarriedOver || state.precisionCarriedOver;
  worst_.epochMs = state.epochMs;
  if (state.precisionKnown) {
    ++preciseEpochs_;
    squareHrms_ += state.hrms * state.hrms;
    squareVrms_ += state.vrms * state.vrms;
  }
  return true;
}

AveragedPosition PositionAverage::Mean() const {
  AveragedPosition mean{.epochs = epochs_.size(), .preciseEpochs = preciseEpochs_};
  if (epochs_.empty()) return mean;
  mean.weighted =
      std::all_of(epochs_.begin(), epochs_.end(), [](const Epoch& epoch) { return epoch.precise; });
  double horizontal = 0.0;
  double vertical = 0.0;
  double north = 0.0;
  double east = 0.0;
  double up = 0.0;
  for (const Epoch& epoch : epochs_) {
    const double h = mean.weighted ? Weight(epoch.hrmsM) : 1.0;
    const double v = mean.weighted ? Weight(epoch.vrmsM) : 1.0;
    horizontal += h;
    vertical += v;
    north += h * epoch.northM;
    east += h * epoch.eastM;
    up += v * epoch.upM;
  }
  north /= horizontal;
  east /= horizontal;
  up /= vertical;
  for (const Epoch& epoch : epochs_) {
    const double dn = epoch.northM - north;
    const double de = epoch.eastM - east;
    mean.scatterNorth += dn * dn;
    mean.scatterEast += de * de;
    mean.scatterUp += (epoch.upM - up) * (epoch.upM - up);
    mean.farthest = std::max(mean.farthest, std::hypot(dn, de));
  }
  const double freedom = epochs_.size() > 1 ? static_cast<double>(epochs_.size() - 1) : 1.0;
  mean.scatterNorth = std::sqrt(mean.scatterNorth / freedom);
  mean.scatterEast = std::sqrt(mean.scatterEast / freedom);
  mean.scatterUp = std::sqrt(mean.scatterUp / freedom);
  mean.latitude = first_.latitude + north / metresPerDegreeNorth_;
  mean.longitude = WrappedDegrees(first_.longitude + east / metresPerDegreeEast_);
  mean.height = first_.height + up;
  return mean;
}

GnssPositionState PositionAverage::State() const {
  GnssPositionState state = worst_;
  if (epochs_.empty()) return state;
  const AveragedPosition mean = Mean();
  const auto count = static_cast<double>(std::max<std::size_t>(preciseEpochs_, 1));
  state.latitude = mean.latitude;
  state.longitude = mean.longitude;
  state.height = mean.height;
  state.hrms = std::sqrt(squareHrms_ / count);
  state.vrms = std::sqrt(squareVrms_ / count);
  state.precisionKnown = preciseEpochs_ > 0;
  state.precisionEpochMs = state.epochMs;
  return state;
}

}  // namespace tarvex
