#include "gnss/nmea/nmea_number.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "core/text/number_text.h"
#include "core/text/text.h"

namespace tarvex {
namespace {

// A quotient of two doubles that are both exact is correctly rounded: 15 digits fit a double, and
// so does every power of ten up to 10^22.
constexpr int kExactDigits = 15;
constexpr double kPowersOfTen[] = {1e0, 1e1, 1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                   1e8, 1e9, 1e10, 1e11, 1e12, 1e13, 1e14, 1e15};

constexpr double kMinutesToFraction = 1.6666666666666667;

}  // namespace

double NmeaNumber(std::string_view field) {
  const char* at = field.data();
  const char* const end = at + field.size();
  const bool negative = at != end && *at == '-';
  if (negative) ++at;
  const char* const first = at;
  std::uint64_t digits = 0;
  for (; at != end && IsDigit(*at); ++at) digits = digits * 10 + static_cast<unsigned>(*at - '0');
  auto count = at - first;
  std::ptrdiff_t decimals = 0;
  if (at != end && *at == '.') {
    const char* const point = ++at;
    for (; at != end && IsDigit(*at); ++at) {
      digits = digits * 10 + static_cast<unsigned>(*at - '0');
    }
    decimals = at - point;
    count += decimals;
  }
  const bool plain = at == end || *at == '*';
  if (!plain || count == 0 || count > kExactDigits) return LeadingDouble(field);
  const double value = static_cast<double>(digits) / kPowersOfTen[decimals];
  return negative ? -value : value;
}

int NmeaInteger(std::string_view field) {
  constexpr std::size_t kQuickDigits = 9;
  int quick = 0;
  std::size_t count = 0;
  for (; count < field.size() && count < kQuickDigits && IsDigit(field[count]); ++count) {
    quick = quick * 10 + (field[count] - '0');
  }
  if (count > 0 && (count == field.size() || !IsDigit(field[count]))) return quick;
  const long long value = LeadingInteger(field);
  return static_cast<int>(std::clamp<long long>(value, std::numeric_limits<int>::min(),
                                                std::numeric_limits<int>::max()));
}

double DegreesFromNmea(double value) {
  const double hundredth = value * 0.01;
  const double degrees = std::trunc(hundredth);
  return degrees + (hundredth - degrees) * kMinutesToFraction;
}

std::int32_t MillisecondsOfDay(std::string_view field) {
  constexpr std::size_t kDigits = 6;
  if (field.size() < kDigits || !std::all_of(field.begin(), field.begin() + kDigits, IsDigit)) {
    return -1;
  }
  const auto pair = [field](std::size_t at) {
    return (field[at] - '0') * 10 + (field[at + 1] - '0');
  };
  const int seconds = (pair(0) * 60 + pair(2)) * 60 + pair(4);
  int milliseconds = 0;
  if (field.size() > kDigits && field[kDigits] == '.') {
    int weight = 100;
    for (std::size_t i = kDigits + 1; i < field.size() && IsDigit(field[i]); ++i, weight /= 10) {
      milliseconds += (field[i] - '0') * weight;
    }
  }
  return seconds * 1000 + milliseconds;
}

}  // namespace tarvex
