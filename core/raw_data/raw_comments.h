// Comment lines of computed results: resection and adjustment, tolerance failures of sets, and the
// commands that rotate, translate and scale points.
#pragma once

#include <string>
#include <string_view>

#include "core/points/point.h"

namespace tarvex {

/// "--Ang RMS(Sec):%.4f", "--Dist RMS:%.4f", "--Elev RMS:%.4f".
std::string AngleRmsComment(double seconds);
std::string DistanceRmsComment(double rms);
std::string ElevationRmsComment(double rms);
/// "--StDev:N%.4f,E%.4f".
std::string StandardDeviationComment(double northing, double easting);
/// "--Closure:%.0f": the ratio of a traverse's length to its misclosure.
std::string ClosureComment(double ratio);
/// "--Warning: Distances to backsight differ by %.3lf%s.", the unit behind the number.
std::string BacksightWarning(double difference, std::string_view unit);
/// Any other warning of a set.
std::string WarningComment(std::string_view text);

/// "--Rotated around N%.4lf,E%.4lf by %.4lf": the angle in decimal degrees is written packed.
std::string RotationComment(double northing, double easting, double angleDegrees);
/// "--Translate: dy=%.4lf, dx=%.4lf, dz=%.4lf": northing, easting, elevation.
std::string TranslationComment(const GridPoint& shift);
/// "--Scaled from base N%.4lf,E%.4lf by a factor of %.10lf".
std::string ScaleComment(double northing, double easting, double factor);

}  // namespace tarvex
