// Numbers of the string table that the gnss room uses. A run of texts that a number is counted into
// is marked, and the count is checked where it is done.
#pragma once

namespace tarvex {

/// Run: and the error number of a port or a caster, which is fixed for the system.
inline constexpr int kTextFirstPortError = 3000;

// What is wrong with the address of a port
inline constexpr int kTextAddressForm = 3300;
inline constexpr int kTextNoDevice = 3301;
inline constexpr int kTextBaudRate = 3302;
inline constexpr int kTextHostPort = 3303;
inline constexpr int kTextNoLog = 3304;

// What the caster is asked for
inline constexpr int kTextConnecting = 3310;
inline constexpr int kTextConnectingToBroadcaster = 3311;
inline constexpr int kTextLoadingBases = 3312;

// Where the corrections are
inline constexpr int kTextFirstCorrectionState = 3320;  ///< run: in the order of CorrectionState
inline constexpr int kTextLastCorrectionState = 3328;
inline constexpr int kTextCasterNotReached = 3329;
inline constexpr int kTextUnknownMountpointOfThese = 3330;
inline constexpr int kTextSilentWithoutPosition = 3331;
inline constexpr int kTextCasterClosed = 3332;
inline constexpr int kTextNoCorrectionsCame = 3333;
inline constexpr int kTextCorrectionsBrokeOff = 3334;
inline constexpr int kTextItHas = 3335;

// Readings
inline constexpr int kTextFirstReadResult = 3400;  ///< run: minus the result of a reading
inline constexpr int kTextEllipsoidHeightsSet = 3410;
inline constexpr int kTextLinkLost = 3411;
inline constexpr int kTextRecordingEnded = 3412;
inline constexpr int kTextPositionAccepted = 3420;
inline constexpr int kTextFirstOrigin = 3430;  ///< run: in the order of PositionOrigin; the first,
                                               ///< which is measured, needs none
inline constexpr int kTextLastOrigin = 3433;
inline constexpr int kTextNoHeight = 3434;
inline constexpr int kTextNoSeparation = 3435;

// Limits that a position does not keep
inline constexpr int kTextFirstLimit = 3440;  ///< run: in the order of Limit
inline constexpr int kTextLastLimit = 3447;
inline constexpr int kTextSolutionMustBe = 3448;
inline constexpr int kTextUnknownValue = 3450;

}  // namespace tarvex
