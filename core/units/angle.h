// Packed sexagesimal angles: one double of the form DDD.MMSSsss (12°34'56.7" is 12.34567), as files
// and entry fields hold them. Inside the system angles are radians or decimal degrees.
//
// No text ever reads 60 minutes or 60 seconds; a field is rounded in seconds before it is packed.
// Positive angles of a full circle or more come out below 360; a negative angle keeps its
// sign, a negative zero does not.
#pragma once

#include <string>

namespace tarvex {

/// Decimal degrees of a packed angle, taken apart through decimal text so that binary fractions do
/// not leak into the minutes. 0 for no value (core/units/no_value.h).
double PackedToDegrees(double packed);

/// The packed angle as text with 12 decimals of the seconds; empty for no value. Degrees and
/// minutes are taken through decimal text (12 and 7 decimals), so that 305 degrees 23 minutes,
/// which no double holds exactly, is "305.23..." and not "305.2259...".
std::string DegreesToPackedText(double degrees);

/// The packed angle as a record field with `decimals` (3 to 12) decimals: 4 are whole seconds, 3
/// are tens of seconds. Empty for no value.
std::string PackedField(double degrees, int decimals);

/// The packed angle as a double: DegreesToPackedText read back, which is DegreesToDmsText with all
/// its decimals, without its marks. 0 for no value.
double DegreesToPacked(double degrees);

/// The most decimals of the seconds that a text has.
inline constexpr int kSecondDecimals = 12;

/// Display text 12°34'56.7" (UTF-8); at most `secondDecimals` decimals of the seconds, trailing
/// zeros dropped. Rounded in seconds; with kSecondDecimals the digits are those of
/// DegreesToPackedText. Empty for no value.
std::string DegreesToDmsText(double degrees, int secondDecimals = 9);

}  // namespace tarvex
