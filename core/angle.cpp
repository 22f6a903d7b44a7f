#include "core/angle.h"

#include <cmath>
#include <cstdint>
#include <optional>
#include <string_view>

#include "core/no_value.h"
#include "core/number_text.h"
#include "core/text.h"

namespace tarvex {
namespace {

constexpr double kDegreesPerMinute = 0.016666666666666666;
constexpr double kDegreesPerSecond = 0.0002777777777777778;
constexpr int kMaximumSecondDecimals = 12;
constexpr int kDisplayDecimals = 9;
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
  const std::int64_t per_second = PowerOfTen(decimals < 0 ? 0 : decimals);
  const std::int64_t step = decimals < 0 ? 10 : 1;
  double whole = 0.0;
  const double fraction = std::modf(std::fabs(circle), &whole);
  const double scaled = fraction * 3600.0 * static_cast<double>(per_second);
  const std::int64_t units = std::llround(scaled / static_cast<double>(step)) * step;
  const std::int64_t seconds = units / per_second;
  std::int64_t whole_degrees = static_cast<std::int64_t>(whole) + seconds / 3600;
  if (circle >= 0.0 && whole_degrees >= 360) whole_degrees -= 360;
  return Sexagesimal{.negative = circle < 0.0 && (units > 0 || whole_degrees > 0),
                     .degrees = whole_degrees,
                     .minutes = seconds / 60 % 60,
                     .seconds = seconds % 60,
                     .fraction = units % per_second};
}

// The number of `text` up to its decimal point.
double CutAtPoint(const std::string& text) {
  return LeadingDouble(std::string_view(text).substr(0, text.find('.')));
}

std::string PackedDigits(const Sexagesimal& angle, int second_decimals) {
  std::string text;
  if (angle.negative) text += '-';
  AppendInteger(text, angle.degrees);
  text += '.';
  AppendInteger(text, angle.minutes, 2);
  AppendInteger(text, angle.seconds, 2);
  if (second_decimals > 0) AppendInteger(text, angle.fraction, second_decimals);
  return text;
}

}  // namespace

double PackedToDegrees(double packed) {
  if (IsNoValue(packed)) return 0.0;
  const double degrees = CutAtPoint(FixedNumber(packed, 12));
  const double minutes_and_rest = (packed - degrees) * 100.0;
  const double minutes = CutAtPoint(FixedNumber(minutes_and_rest, 10));
  const double seconds = LeadingDouble(FixedNumber((minutes_and_rest - minutes) * 100.0, 8));
  return seconds * kDegreesPerSecond + (minutes * kDegreesPerMinute + degrees);
}

std::string DegreesToPackedText(double degrees) {
  const auto angle = Split(degrees, kMaximumSecondDecimals);
  return angle ? PackedDigits(*angle, kMaximumSecondDecimals) : std::string();
}

std::string PackedField(double degrees, int decimals) {
  const auto angle = Split(degrees, decimals - 4);
  if (!angle) return {};
  std::string text = PackedDigits(*angle, decimals - 4);
  if (decimals < 4) text.pop_back();  // the seconds are tens: their last digit is 0
  return text;
}

double DegreesToPacked(double degrees) {
  const std::string display = DegreesToDmsText(degrees);
  std::string packed = display.substr(0, display.find(kDegreeMark));
  if (packed.size() == display.size()) return 0.0;  // no value, no text
  packed += '.';
  for (const char c : std::string_view(display).substr(packed.size() - 1 + kDegreeMark.size())) {
    if (IsDigit(c)) packed += c;
  }
  return LeadingDouble(packed);
}

std::string DegreesToDmsText(double degrees) {
  const auto angle = Split(degrees, kDisplayDecimals);
  if (!angle) return {};
  std::string text = angle->negative ? "-" : "";
  AppendInteger(text, angle->degrees);
  text += kDegreeMark;
  AppendInteger(text, angle->minutes, 2);
  text += '\'';
  AppendInteger(text, angle->seconds, 2);
  if (angle->fraction > 0) {
    text += '.';
    AppendInteger(text, angle->fraction, kDisplayDecimals);
    while (text.back() == '0') text.pop_back();
  }
  return text + '"';
}

}  // namespace tarvex
