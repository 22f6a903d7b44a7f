#include "core/units/angle.h"

#include <cmath>
#include <cstdint>
#include <limits>
#include <optional>
#include <string_view>

#include "core/text/number_text.h"
#include "core/text/text.h"
#include "core/units/no_value.h"

namespace tarvex {
namespace {

constexpr double kDegreesPerMinute = 0.016666666666666666;
constexpr double kDegreesPerSecond = 0.0002777777777777778;
constexpr int kDegreeTextDecimals = 12;
constexpr int kMinuteTextDecimals = 7;
constexpr std::string_view kDegreeMark = "\u00B0";

constexpr std::int64_t PowerOfTen(int exponent) {
  std::int64_t power = 1;
  for (int i = 0; i < exponent; ++i) power *= 10;
  return power;
}

// An angle in whole degrees, minutes, seconds and a fraction of `decimals` digits; every part
// already carried.
struct Sexagesimal {
  bool negative = false;
  std::int64_t degrees = 0;
  std::int64_t minutes = 0;
  std::int64_t seconds = 0;
  std::int64_t fraction = 0;
};

// Whole degrees, and the rest counted in units of the last digit, so that rounding carries into the
// minutes and degrees. `decimals` of the seconds; -1 rounds to tens of seconds.
std::optional<Sexagesimal> Split(double degrees, int decimals) {
  if (IsNoValue(degrees)) return std::nullopt;
  const double circle = degrees >= 360.0 ? std::fmod(degrees, 360.0) : degrees;
  const std::int64_t perSecond = PowerOfTen(decimals < 0 ? 0 : decimals);
  const std::int64_t step = decimals < 0 ? 10 : 1;
  double whole = 0.0;
  const double fraction = std::modf(std::fabs(circle), &whole);
  const double scaled = fraction * 3600.0 * static_cast<double>(perSecond);
  const std::int64_t units = std::llround(scaled / static_cast<double>(step)) * step;
  const std::int64_t seconds = units / perSecond;
  std::int64_t wholeDegrees = static_cast<std::int64_t>(whole) + seconds / 3600;
  if (circle >= 0.0 && wholeDegrees >= 360) wholeDegrees -= 360;
  return Sexagesimal{.negative = circle < 0.0 && (units > 0 || wholeDegrees > 0),
                     .degrees = wholeDegrees,
                     .minutes = seconds / 60 % 60,
                     .seconds = seconds % 60,
                     .fraction = units % perSecond};
}

// The number of `text` up to its decimal point.
double CutAtPoint(const std::string& text) {
  return LeadingDouble(std::string_view(text).substr(0, text.find('.')));
}

// What is left of the angle once the degrees and minutes, taken through text, are subtracted. Less
// than nothing is left when they were rounded up: that is the binary error of the angle, or else
// seconds that belong to the minute before.
double SecondsLeft(double magnitude, double wholeDegrees, double& minutes) {
  const double seconds = (magnitude - wholeDegrees - minutes * kDegreesPerMinute) * 3600.0;
  const double binaryError = magnitude * std::numeric_limits<double>::epsilon() * 3600.0;
  if (seconds >= 0.0) return seconds;
  if (seconds >= -binaryError || minutes == 0.0) return 0.0;
  minutes -= 1.0;
  return seconds + 60.0;
}

// The same parts as the system's files have always had them: degrees and minutes cut from decimal
// text, 12 decimals of the seconds.
std::optional<Sexagesimal> SplitThroughText(double degrees) {
  if (IsNoValue(degrees)) return std::nullopt;
  const double magnitude = std::fabs(degrees >= 360.0 ? std::fmod(degrees, 360.0) : degrees);
  double wholeDegrees = CutAtPoint(FixedNumber(magnitude, kDegreeTextDecimals));
  double minutes = CutAtPoint(FixedNumber((magnitude - wholeDegrees) * 60.0, kMinuteTextDecimals));
  const std::string seconds =
      FixedNumber(SecondsLeft(magnitude, wholeDegrees, minutes), kSecondDecimals);
  const std::size_t point = seconds.find('.');
  Sexagesimal angle{.negative = false,
                    .degrees = static_cast<std::int64_t>(wholeDegrees),
                    .minutes = static_cast<std::int64_t>(minutes),
                    .seconds = LeadingInteger(seconds),
                    .fraction = LeadingInteger(std::string_view(seconds).substr(point + 1))};
  if (angle.seconds == 60) angle.seconds = 0, angle.fraction = 0, ++angle.minutes;
  if (angle.minutes == 60) angle.minutes = 0, ++angle.degrees;
  if (degrees >= 0.0 && angle.degrees >= 360) angle.degrees -= 360;
  angle.negative =
      degrees < 0.0 && (angle.degrees + angle.minutes + angle.seconds + angle.fraction > 0);
  return angle;
}

std::string PackedDigits(const Sexagesimal& angle, int secondDecimals) {
  std::string text;
  if (angle.negative) text += '-';
  AppendInteger(text, angle.degrees);
  text += '.';
  AppendInteger(text, angle.minutes, 2);
  AppendInteger(text, angle.seconds, 2);
  if (secondDecimals > 0) AppendInteger(text, angle.fraction, secondDecimals);
  return text;
}

}  // namespace

double PackedToDegrees(double packed) {
  if (IsNoValue(packed)) return 0.0;
  const double degrees = CutAtPoint(FixedNumber(packed, 12));
  const double minutesAndRest = (packed - degrees) * 100.0;
  const double minutes = CutAtPoint(FixedNumber(minutesAndRest, 10));
  const double seconds = LeadingDouble(FixedNumber((minutesAndRest - minutes) * 100.0, 8));
  return seconds * kDegreesPerSecond + (minutes * kDegreesPerMinute + degrees);
}

std::string DegreesToPackedText(double degrees) {
  const auto angle = SplitThroughText(degrees);
  return angle ? PackedDigits(*angle, kSecondDecimals) : std::string();
}

std::string PackedField(double degrees, int decimals) {
  const auto angle = Split(degrees, decimals - 4);
  if (!angle) return {};
  std::string text = PackedDigits(*angle, decimals - 4);
  if (decimals < 4) text.pop_back();  // the seconds are tens: their last digit is 0
  return text;
}

double DegreesToPacked(double degrees) {
  const std::string display = DegreesToDmsText(degrees, kSecondDecimals);
  std::string packed = display.substr(0, display.find(kDegreeMark));
  if (packed.size() == display.size()) return 0.0;  // no value, no text
  packed += '.';
  for (const char c : std::string_view(display).substr(packed.size() - 1 + kDegreeMark.size())) {
    if (IsDigit(c)) packed += c;
  }
  return LeadingDouble(packed);
}

std::string DegreesToDmsText(double degrees, int secondDecimals) {
  const auto angle =
      secondDecimals < kSecondDecimals ? Split(degrees, secondDecimals) : SplitThroughText(degrees);
  if (!angle) return {};
  std::string text = angle->negative ? "-" : "";
  AppendInteger(text, angle->degrees);
  text += kDegreeMark;
  AppendInteger(text, angle->minutes, 2);
  text += '\'';
  AppendInteger(text, angle->seconds, 2);
  if (angle->fraction > 0) {
    text += '.';
    AppendInteger(text, angle->fraction, secondDecimals);
    while (text.back() == '0') text.pop_back();
  }
  return text + '"';
}

}  // namespace tarvex
