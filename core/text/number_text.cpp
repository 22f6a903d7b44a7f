#include "core/text/number_text.h"

#include <charconv>
#include <cmath>
#include <cstdint>
#include <limits>
#include <system_error>

#include "core/text/text.h"

namespace tarvex {
namespace {

// Takes a sign off the front of `text`; std::from_chars knows no plus sign.
bool TakeSign(std::string_view& text) {
  if (text.empty() || (text.front() != '-' && text.front() != '+')) return false;
  const bool negative = text.front() == '-';
  text.remove_prefix(1);
  return negative;
}

bool StartsNumber(std::string_view text) {
  if (text.empty()) return false;
  if (IsDigit(text[0])) return true;
  return text[0] == '.' && text.size() > 1 && IsDigit(text[1]);
}

// What a number out of range stands for: a huge one is an infinity, a tiny one is 0.
double OutOfRange(std::string_view number) {
  const std::size_t exponent = number.find_first_of("eE");
  const bool tiny = exponent != std::string_view::npos
                        ? number.substr(exponent + 1).starts_with('-')
                        : number.starts_with("0.") || number.starts_with('.');
  return tiny ? 0.0 : std::numeric_limits<double>::infinity();
}

// Reads an unsigned number at the front of `text`; `length` is how many characters it took, 0 when
// there is none.
double UnsignedDouble(std::string_view text, std::size_t& length) {
  length = 0;
  if (!StartsNumber(text)) return 0.0;
  double value = 0.0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  length = static_cast<std::size_t>(end - text.data());
  return error == std::errc::result_out_of_range ? OutOfRange(text.substr(0, length)) : value;
}

long long SignedInteger(std::string_view text, std::size_t& length) {
  length = 0;
  const std::size_t before = text.size();
  const bool negative = TakeSign(text);
  if (text.empty() || !IsDigit(text[0])) return 0;
  std::uint64_t value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  length = before - text.size() + static_cast<std::size_t>(end - text.data());
  constexpr auto kMax = static_cast<std::uint64_t>(std::numeric_limits<long long>::max());
  if (error == std::errc::result_out_of_range || value > kMax) {
    return negative ? std::numeric_limits<long long>::min() : std::numeric_limits<long long>::max();
  }
  return negative ? -static_cast<long long>(value) : static_cast<long long>(value);
}

constexpr int kMostQuickDecimals = 10;
constexpr double kPowersOfTen[kMostQuickDecimals + 1] = {1.0, 1e1, 1e2, 1e3, 1e4, 1e5,
                                                         1e6, 1e7, 1e8, 1e9, 1e10};

// |value| in units of its last decimal, rounded as "%.Nf" rounds; nothing where that takes more
// than double precision: large numbers, and those a hair from the middle between two decimals.
std::optional<std::uint64_t> QuickUnits(double magnitude, int decimals) {
  constexpr double kMost = 4503599627370496.0;  // 2^52
  if (decimals < 0 || decimals > kMostQuickDecimals) return std::nullopt;
  const double scale = kPowersOfTen[decimals];
  const double product = magnitude * scale;
  if (!(product < kMost)) return std::nullopt;
  // Both halves have 26 bits or fewer and the scale 24 beside its power of two: exact products.
  const double shifted = magnitude * 134217729.0;  // 2^27 + 1
  const double high = shifted - (shifted - magnitude);
  const double low = magnitude - high;
  const auto units = static_cast<std::uint64_t>(std::floor(product + 0.5));
  const double rest = (high * scale - static_cast<double>(units)) + low * scale;
  constexpr double kHair = 1e-6;
  if (std::fabs(std::fabs(rest) - 0.5) < kHair) return std::nullopt;
  if (rest > 0.5) return units + 1;
  return rest < -0.5 ? units - 1 : units;
}

// The digits of `units`, the last `decimals` of them behind a point.
void AppendUnits(std::string& out, std::uint64_t units, int decimals) {
  char buffer[32];
  char* at = buffer + sizeof buffer;
  for (int i = 0; i < decimals; ++i, units /= 10) *--at = static_cast<char>('0' + units % 10);
  if (decimals > 0) *--at = '.';
  do {
    *--at = static_cast<char>('0' + units % 10);
    units /= 10;
  } while (units > 0);
  out.append(at, buffer + sizeof buffer);
}

}  // namespace

double LeadingDouble(std::string_view text) {
  text = WithoutLeadingBlanks(text);
  const bool negative = TakeSign(text);
  std::size_t length = 0;
  const double value = UnsignedDouble(text, length);
  return negative && length > 0 ? -value : value;
}

long long LeadingInteger(std::string_view text) {
  std::size_t length = 0;
  return SignedInteger(WithoutLeadingBlanks(text), length);
}

std::optional<double> ParseNumber(std::string_view text) {
  text = WithoutOuterBlanks(text);
  const bool negative = TakeSign(text);
  std::size_t length = 0;
  const double value = UnsignedDouble(text, length);
  if (length == 0 || length != text.size() || !std::isfinite(value)) return std::nullopt;
  return negative ? -value : value;
}

std::optional<long long> ParseInteger(std::string_view text) {
  text = WithoutOuterBlanks(text);
  std::size_t length = 0;
  const long long value = SignedInteger(text, length);
  if (length == 0 || length != text.size()) return std::nullopt;
  return value;
}

void AppendFixed(std::string& out, double value, int decimals) {
  if (const auto units = QuickUnits(std::fabs(value), decimals)) {
    if (std::signbit(value)) out += '-';
    return AppendUnits(out, *units, decimals);
  }
  char buffer[400];  // the longest double is 309 digits before the point
  const auto [end, error] =
      std::to_chars(buffer, buffer + sizeof buffer, value, std::chars_format::fixed, decimals);
  if (error == std::errc{}) out.append(buffer, end);
}

std::string FixedNumber(double value, int decimals) {
  std::string text;
  AppendFixed(text, value, decimals);
  return text;
}

void AppendInteger(std::string& out, long long value, int width) {
  char buffer[24];
  const auto [end, error] = std::to_chars(buffer, buffer + sizeof buffer, value);
  std::string_view digits(buffer, static_cast<std::size_t>(end - buffer));
  if (value < 0) {
    out += '-';
    digits.remove_prefix(1);
  }
  for (int n = static_cast<int>(digits.size()); n < width; ++n) out += '0';
  out += digits;
}

std::string ShortestNumber(double value) {
  char buffer[32];
  const auto [end, error] = std::to_chars(buffer, buffer + sizeof buffer, value);
  return {buffer, end};
}

}  // namespace tarvex
