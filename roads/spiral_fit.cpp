#include "roads/spiral_fit.h"

#include <cmath>
#include <utility>

#include "roads/curve_piece.h"

namespace tarvex {

double SpiralChord(double k0, double k1, double length) {
  const LocalFrame end = SpiralEnd(k0, k1, length);
  return std::hypot(end.x, end.y);
}

bool IsSpiralBuildable(double k0, double k1, double length) {
  return length > 0.0 && std::isfinite(length) && std::isfinite((k1 - k0) / length) &&
         AbsoluteSweep(k0, k1, length) <= kLargestSpiralSweep;
}

// The chord grows with the length until the spiral winds up, so the secant method starts at the
// chord itself.
std::optional<double> SpiralLengthOfChord(double k0, double k1, double chord) {
  double before = chord;
  double length = chord * 1.001;
  if (!IsSpiralBuildable(k0, k1, length)) return std::nullopt;
  double missedBefore = SpiralChord(k0, k1, before) - chord;
  for (int step = 0; step < 50; ++step) {
    const double missed = SpiralChord(k0, k1, length) - chord;
    if (std::fabs(missed) < 1e-12 * chord || missed == missedBefore) return length;
    const double next = length - missed * (length - before) / (missed - missedBefore);
    if (!IsSpiralBuildable(k0, k1, next) || next > 10.0 * chord) return std::nullopt;
    before = std::exchange(length, next);
    missedBefore = missed;
  }
  return std::nullopt;
}

}  // namespace tarvex
