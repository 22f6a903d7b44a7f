#include "core/units/station.h"

#include <algorithm>
#include <cmath>

#include "core/text/number_text.h"

namespace tarvex {
namespace {

constexpr double kWholeStationTolerance = 1e-11;
constexpr double kZeroRemainder = 1e-6;

bool IsZero(const std::string& text) {
  return std::all_of(text.begin(), text.end(),
                     [](char c) { return c == '0' || c == '.' || c == '+'; });
}

// The text of a magnitude: the station number, "+", and the remainder padded to `digits` digits
// before its decimal point.
std::string PlusText(double magnitude, double interval, std::size_t digits, int decimals) {
  const double quotient = magnitude / interval;
  const bool whole = std::fabs(quotient - std::ceil(quotient)) < kWholeStationTolerance;
  double number = whole ? std::ceil(quotient) : std::floor(quotient);
  double remainder = magnitude - number * interval;
  if (std::fabs(remainder) < kZeroRemainder) remainder = 0.0;
  std::string rest = FixedNumber(remainder, decimals);
  if (LeadingDouble(rest) >= interval) {  // rounding carries into the station number
    number += 1.0;
    rest = FixedNumber(0.0, decimals);
  }
  const std::size_t beforePoint = std::min(rest.find('.'), rest.size());
  return FixedNumber(number, 0) + "+" + std::string(digits - std::min(digits, beforePoint), '0') +
         rest;
}

}  // namespace

std::string FormatStation(double station, StationMode mode, int decimals) {
  if (!std::isfinite(station)) return {};
  decimals = std::clamp(decimals, 0, 4);
  const double magnitude = std::fabs(station);
  std::string text;
  switch (mode) {
    case StationMode::Plain:
      text = FixedNumber(magnitude, decimals);
      break;
    case StationMode::Thousands:
      text = PlusText(magnitude, 1000.0, 3, decimals);
      break;
    default:
      text = PlusText(magnitude, 100.0, 2, decimals);
      break;
  }
  return station < 0.0 && !IsZero(text) ? "-" + text : text;
}

std::string StationFormatExample(StationMode mode, int decimals) {
  return "(e.g. " + FormatStation(100.0, mode, decimals) + ")";
}

}  // namespace tarvex
