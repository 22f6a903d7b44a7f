// Grid azimuths: from grid north, clockwise.
#pragma once

#include "core/job/job.h"

namespace tarvex {

/// 360 subtracted once from a value of 360 or more, added once to a negative value.
constexpr double NormaliseAzimuth(double degrees) {
  if (degrees >= 360.0) return degrees - 360.0;
  return degrees < 0.0 ? degrees + 360.0 : degrees;
}

/// The azimuth in degrees as the job's files carry it: counted from south where the job says so.
constexpr double RecordedAzimuth(const Job& job, double degrees) {
  return job.options.azimuthsFromSouth ? NormaliseAzimuth(degrees - 180.0) : degrees;
}

/// Azimuth in radians from one point to another by its cosine, 0 to 2 pi; 0 for coincident points.
/// Rounding costs up to 1.2e-8 radians near north and south: geometry uses the arctangent instead.
double GridAzimuth(double deltaNorthing, double deltaEasting);

}  // namespace tarvex
