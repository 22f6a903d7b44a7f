#include "coordsys/localization/vertical_fit.h"

#include <cmath>
#include <vector>

namespace tarvex {
namespace {

constexpr double kThinnest = 0.02;  // spread across the line over spread along it
constexpr double kSteepest = 100e-6;

// A used point about the centroid, and what its elevation lacks.
struct Sample {
  double east;
  double north;
  double dz;
};

struct Spread {
  double ee = 0.0;
  double nn = 0.0;
  double en = 0.0;
  double ez = 0.0;
  double nz = 0.0;
};

// The centroid goes into the plane, the mean of the differences into its shift.
std::vector<Sample> Centre(const ControlPoints& points, VerticalPlane& plane) {
  std::vector<Sample> samples;
  for (const ControlPoint& p : points) {
    if (!p.useVertical) continue;
    samples.push_back({p.grid.eastingM, p.grid.northingM, p.local.elevationM - p.grid.elevationM});
  }
  if (samples.empty()) return samples;
  const Sample first = samples.front();
  double east = 0.0;
  double north = 0.0;
  double dz = 0.0;
  for (const Sample& s : samples) {
    east += s.east - first.east;
    north += s.north - first.north;
    dz += s.dz - first.dz;
  }
  const auto count = static_cast<double>(samples.size());
  plane.gridEastingM = first.east + east / count;
  plane.gridNorthingM = first.north + north / count;
  plane.shiftM = first.dz + dz / count;
  for (Sample& s : samples) {
    s = {s.east - plane.gridEastingM, s.north - plane.gridNorthingM, s.dz - plane.shiftM};
  }
  return samples;
}

Spread SpreadOf(const std::vector<Sample>& samples) {
  Spread m;
  for (const Sample& s : samples) {
    m.ee += s.east * s.east;
    m.nn += s.north * s.north;
    m.en += s.east * s.north;
    m.ez += s.east * s.dz;
    m.nz += s.north * s.dz;
  }
  return m;
}

// By the eigenvalues of the spread of the places.
bool IsOnALine(const Spread& m) {
  const double half = 0.5 * (m.ee + m.nn);
  const double apart = std::hypot(0.5 * (m.ee - m.nn), m.en);
  return half - apart < kThinnest * kThinnest * (half + apart) || half < 1e-6;
}

PlaneFallBack Incline(const std::vector<Sample>& samples, VerticalPlane& plane) {
  if (samples.size() < 3) return PlaneFallBack::TooFewPoints;
  const Spread m = SpreadOf(samples);
  if (IsOnALine(m)) return PlaneFallBack::OnALine;
  const double d = m.ee * m.nn - m.en * m.en;
  const double slopeEast = (m.ez * m.nn - m.nz * m.en) / d;
  const double slopeNorth = (m.nz * m.ee - m.ez * m.en) / d;
  if (std::hypot(slopeEast, slopeNorth) > kSteepest) return PlaneFallBack::TooSteep;
  plane.slopeEast = slopeEast;
  plane.slopeNorth = slopeNorth;
  return PlaneFallBack::None;
}

}  // namespace

VerticalFit FitVertical(const ControlPoints& points, VerticalMethod method) {
  VerticalFit fit;
  const std::vector<Sample> samples = Centre(points, fit.plane);
  fit.points = static_cast<int>(samples.size());
  if (samples.empty()) return fit;
  if (!std::isfinite(fit.plane.shiftM + fit.plane.gridEastingM + fit.plane.gridNorthingM)) {
    fit.result = FitResult::NotANumber;
    return fit;
  }
  if (method == VerticalMethod::InclinedPlane) {
    fit.fallBack = Incline(samples, fit.plane);
    if (fit.fallBack == PlaneFallBack::None) fit.method = VerticalMethod::InclinedPlane;
  }
  fit.unknowns = fit.method == VerticalMethod::InclinedPlane ? 3 : 1;
  fit.result = FitResult::Fitted;
  return fit;
}

}  // namespace tarvex
