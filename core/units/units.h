// Distance units of a job. The factors are deliberately these truncated values: every file ever
// written by the system was computed with them.
#pragma once

#include <string_view>

namespace tarvex {

/// The job's distance-unit index, as settings hold it (the raw file's UN code is 2 minus it).
enum class DistanceUnit : int { UsSurveyFeet = 0, Metres = 1, InternationalFeet = 2 };

inline constexpr double kUsFeetToMetres = 0.30480060960125016;
inline constexpr double kMetresToUsFeet = 3.280833333333;
inline constexpr double kInternationalFeetToMetres = 0.30480000000001145;
inline constexpr double kMetresToInternationalFeet = 3.280839895013;

inline constexpr double kRadiansPerDegree = 0.017453292519943295;
inline constexpr double kDegreesPerRadian = 57.29577951308232;

constexpr double ToMetres(double value, DistanceUnit unit) {
  switch (unit) {
    case DistanceUnit::UsSurveyFeet:
      return value * kUsFeetToMetres;
    case DistanceUnit::InternationalFeet:
      return value * kInternationalFeetToMetres;
    case DistanceUnit::Metres:
      break;
  }
  return value;
}

constexpr double FromMetres(double valueM, DistanceUnit unit) {
  switch (unit) {
    case DistanceUnit::UsSurveyFeet:
      return valueM * kMetresToUsFeet;
    case DistanceUnit::InternationalFeet:
      return valueM * kMetresToInternationalFeet;
    case DistanceUnit::Metres:
      break;
  }
  return valueM;
}

constexpr double FromUsFeet(double valueUsFeet, DistanceUnit unit) {
  switch (unit) {
    case DistanceUnit::Metres:
      return valueUsFeet * kUsFeetToMetres;
    case DistanceUnit::InternationalFeet:
      return valueUsFeet * kUsFeetToMetres * kMetresToInternationalFeet;
    case DistanceUnit::UsSurveyFeet:
      break;
  }
  return valueUsFeet;
}

/// "Feet", "Meters" or "Intl Feet".
constexpr std::string_view UnitName(DistanceUnit unit) {
  switch (unit) {
    case DistanceUnit::UsSurveyFeet:
      return "Feet";
    case DistanceUnit::InternationalFeet:
      return "Intl Feet";
    case DistanceUnit::Metres:
      break;
  }
  return "Meters";
}

}  // namespace tarvex
