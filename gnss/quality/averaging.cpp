#include "gnss/quality/averaging.h"

#include <algorithm>
#include <cmath>

namespace tarvex {
namespace {

constexpr double kSemiMajor = 6378137.0;  // WGS84
constexpr double kSquaredEccentricity = 0.00669437999014;
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

double Weight(double precision_m) {
  const double bounded = std::max(precision_m, kSmallestPrecision);
  return 1.0 / (bounded * bounded);
}

}  // namespace

bool PositionAverage::Add(const GnssPositionState& state, DistanceUnit unit) {
  if (state.epoch_ms != kNoEpoch &&
      std::find(times_.begin(), times_.end(), state.epoch_ms) != times_.end()) {
    return false;
  }
  if (epochs_.empty()) {
    first_ = worst_ = state;
    const double sine = std::sin(state.latitude * kRadiansPerDegree);
    const double w2 = 1.0 - kSquaredEccentricity * sine * sine;
    const double prime_vertical = kSemiMajor / std::sqrt(w2);
    const double meridian = prime_vertical * (1.0 - kSquaredEccentricity) / w2;
    metres_per_degree_north_ = (meridian + state.height) * kRadiansPerDegree;
    metres_per_degree_east_ = (prime_vertical + state.height) *
                              std::cos(state.latitude * kRadiansPerDegree) * kRadiansPerDegree;
  }
  times_.push_back(state.epoch_ms);
  epochs_.push_back(
      {.north_m = (state.latitude - first_.latitude) * metres_per_degree_north_,
       .east_m = WrappedDegrees(state.longitude - first_.longitude) * metres_per_degree_east_,
       .up_m = state.height - first_.height,
       .hrms_m = ToMetres(state.hrms, unit),
       .vrms_m = ToMetres(state.vrms, unit),
       .precise = state.precision_known && state.hrms > 0.0 && state.vrms > 0.0});
  if (state.origin != PositionOrigin::Measured) worst_.origin = state.origin;
  worst_.solutionType = Worse(worst_.solutionType, state.solutionType);
  worst_.satellites = std::min(worst_.satellites, state.satellites);
  worst_.pdop = std::max(worst_.pdop, state.pdop);
  worst_.height_known = worst_.height_known && state.height_known;
  worst_.separation_known = worst_.separation_known && state.separation_known;
  worst_.precision_carried_over = worst_.precision_carried_over || state.precision_carried_over;
  worst_.epoch_ms = state.epoch_ms;
  if (state.precision_known) {
    ++precise_epochs_;
    square_hrms_ += state.hrms * state.hrms;
    square_vrms_ += state.vrms * state.vrms;
  }
  return true;
}

AveragedPosition PositionAverage::Mean() const {
  AveragedPosition mean{.epochs = epochs_.size(), .precise_epochs = precise_epochs_};
  if (epochs_.empty()) return mean;
  mean.weighted =
      std::all_of(epochs_.begin(), epochs_.end(), [](const Epoch& epoch) { return epoch.precise; });
  double horizontal = 0.0;
  double vertical = 0.0;
  double north = 0.0;
  double east = 0.0;
  double up = 0.0;
  for (const Epoch& epoch : epochs_) {
    const double h = mean.weighted ? Weight(epoch.hrms_m) : 1.0;
    const double v = mean.weighted ? Weight(epoch.vrms_m) : 1.0;
    horizontal += h;
    vertical += v;
    north += h * epoch.north_m;
    east += h * epoch.east_m;
    up += v * epoch.up_m;
  }
  north /= horizontal;
  east /= horizontal;
  up /= vertical;
  for (const Epoch& epoch : epochs_) {
    const double dn = epoch.north_m - north;
    const double de = epoch.east_m - east;
    mean.scatter_north += dn * dn;
    mean.scatter_east += de * de;
    mean.scatter_up += (epoch.up_m - up) * (epoch.up_m - up);
    mean.farthest = std::max(mean.farthest, std::hypot(dn, de));
  }
  const double freedom = epochs_.size() > 1 ? static_cast<double>(epochs_.size() - 1) : 1.0;
  mean.scatter_north = std::sqrt(mean.scatter_north / freedom);
  mean.scatter_east = std::sqrt(mean.scatter_east / freedom);
  mean.scatter_up = std::sqrt(mean.scatter_up / freedom);
  mean.latitude = first_.latitude + north / metres_per_degree_north_;
  mean.longitude = WrappedDegrees(first_.longitude + east / metres_per_degree_east_);
  mean.height = first_.height + up;
  return mean;
}

GnssPositionState PositionAverage::State() const {
  GnssPositionState state = worst_;
  if (epochs_.empty()) return state;
  const AveragedPosition mean = Mean();
  const auto count = static_cast<double>(std::max<std::size_t>(precise_epochs_, 1));
  state.latitude = mean.latitude;
  state.longitude = mean.longitude;
  state.height = mean.height;
  state.hrms = std::sqrt(square_hrms_ / count);
  state.vrms = std::sqrt(square_vrms_ / count);
  state.precision_known = precise_epochs_ > 0;
  state.precision_epoch_ms = state.epoch_ms;
  return state;
}

}  // namespace tarvex
