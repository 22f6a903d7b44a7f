// Numbers of the string table that the roads room uses.
#pragma once

namespace tarvex {

inline constexpr int kTextCenterlineNotOpened = 5223;

// Notes on lines of a centerline file
inline constexpr int kTextLineTooShort = 5000;
inline constexpr int kTextNegativeId = 5001;
inline constexpr int kTextFieldsMissing = 5002;
inline constexpr int kTextUnknownRecordKind = 5003;
inline constexpr int kTextNumberOutOfRange = 5004;
inline constexpr int kTextRadiusLineMissing = 5005;
inline constexpr int kTextNotARadiusLine = 5006;
inline constexpr int kTextCenterlineTooLong = 5007;
inline constexpr int kTextFileTooLarge = 5008;

}  // namespace tarvex
