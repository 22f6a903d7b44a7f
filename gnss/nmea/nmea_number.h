// Numbers of receiver sentences: the leading-number rule of core/text/number_text.h, made quick for
// the short plain decimals that receivers send (the same value, bit for bit), and what sentences
// make of numbers: angles, times of day, distances of the job.
#pragma once

#include <cstdint>
#include <string_view>

#include "core/units/units.h"

namespace tarvex {

/// LeadingDouble, quick for up to 15 digits without exponent.
double NmeaNumber(std::string_view field);

/// LeadingInteger, limited to the range of int.
int NmeaInteger(std::string_view field);

/// ddmm.mmmm or dddmm.mmmm to decimal degrees: a hundredth of the value, its fraction times 5/3.
double DegreesFromNmea(double value);

/// "hhmmss.sss" as milliseconds of the day; -1 when the field holds no time.
std::int32_t MillisecondsOfDay(std::string_view field);

/// Metres in the job's distance unit.
constexpr double ToJobDistance(double metres, DistanceUnit unit) {
  return FromMetres(metres, unit);
}

}  // namespace tarvex
