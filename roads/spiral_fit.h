// Transition curves by their chord: curvature changes evenly from `k0` to `k1` (right positive)
// over the length.
#pragma once

#include <optional>

namespace tarvex {

/// Distance between the ends.
double SpiralChord(double k0, double k1, double length);

/// True for a positive length over which the spiral does not wind up.
bool IsSpiralBuildable(double k0, double k1, double length);

/// The length whose chord is `chord`; nothing when no buildable spiral has it.
std::optional<double> SpiralLengthOfChord(double k0, double k1, double chord);

}  // namespace tarvex
