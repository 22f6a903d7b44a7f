// Numbers in text, both ways, independent of the process locale: a decimal comma set anywhere in
// the program never reaches a file.
//
// Reading follows the leading-number rule of the system's files: leading blanks are skipped, a sign
// and as many characters as make a number are read, the rest is ignored, and a field without a
// number reads as 0. Entries that a person types go through the strict ParseNumber instead.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace tarvex {

/// "12.5abc" is 12.5, "" and "abc" are 0; a number beyond the range of a double is an infinity.
double LeadingDouble(std::string_view text);

/// "12abc" is 12, "" and "abc" are 0; saturates at the ends of long long.
long long LeadingInteger(std::string_view text);

/// The whole text as one finite number, blanks around it allowed; nothing when it is anything else.
std::optional<double> ParseNumber(std::string_view text);

/// The whole text as one integer, blanks around it allowed.
std::optional<long long> ParseInteger(std::string_view text);

/// Appends `value` with exactly `decimals` decimals, digit for digit as "%.Nf" in the C locale.
void AppendFixed(std::string& out, double value, int decimals);
std::string FixedNumber(double value, int decimals);

/// Appends an integer, padded with zeros on the left to at least `width` digits.
void AppendInteger(std::string& out, long long value, int width = 0);

/// The shortest text that reads back to the same double.
std::string ShortestNumber(double value);

}  // namespace tarvex
