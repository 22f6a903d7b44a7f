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
inline constexpr int kTextTerminatorMissing = 5009;

// Notes on lines of a template
inline constexpr int kTextUnknownSection = 5030;
inline constexpr int kTextUnknownKey = 5031;

// Where a design elevation comes from, or why there is none
inline constexpr int kTextElevationCenterline = 5040;
inline constexpr int kTextElevationTemplate = 5041;
inline constexpr int kTextElevationLevel = 5042;
inline constexpr int kTextElevationEntered = 5043;
inline constexpr int kTextNoFinishedGrade = 5044;
inline constexpr int kTextOutsideProfile = 5045;
inline constexpr int kTextOffsetWithoutTemplate = 5046;
inline constexpr int kTextOutsideSurface = 5047;

// Findings of a check
inline constexpr int kTextStationsConverted = 5010;
inline constexpr int kTextEquationRefused = 5011;
inline constexpr int kTextStationsAllSame = 5012;
inline constexpr int kTextStationSuspect = 5013;
inline constexpr int kTextPointSuspect = 5014;
inline constexpr int kTextCentreSuspect = 5015;
inline constexpr int kTextLengthMismatch = 5016;
inline constexpr int kTextStationFalls = 5017;
inline constexpr int kTextAngleMismatch = 5018;
inline constexpr int kTextTurnAgainstSign = 5019;
inline constexpr int kTextAzimuthFieldSuspect = 5020;
inline constexpr int kTextJoinBroken = 5021;
inline constexpr int kTextNoCentre = 5022;
inline constexpr int kTextBrokenGroup = 5023;
inline constexpr int kTextSpiralUnknown = 5024;
inline constexpr int kTextSpiralTooTight = 5025;

// Words in findings
inline constexpr int kTextLarge = 5050;
inline constexpr int kTextSmall = 5051;
inline constexpr int kTextLonger = 5052;
inline constexpr int kTextShorter = 5053;
inline constexpr int kTextRight = 5054;
inline constexpr int kTextLeft = 5055;

}  // namespace tarvex
