// Numbers of the string table that the core room uses.
#pragma once

namespace tarvex {

// Opening the coordinate file
inline constexpr int kTextCannotOpen = 1001;
inline constexpr int kTextCannotCreate = 1002;
inline constexpr int kTextNotACoordinateFile = 1003;
inline constexpr int kTextCannotConvert = 1004;
inline constexpr int kTextCannotFinish = 1005;
inline constexpr int kTextCannotRead = 1006;
inline constexpr int kTextCreatedNotDurable = 1007;
inline constexpr int kTextInterruptedNotWritable = 1008;

// A change that could not be made; 10 behind it the text of one that is not durable, 20 behind it
// of one that is pending (MessageOf in core/journal/file_rewrite.h)
inline constexpr int kTextNotStored = 1011;
inline constexpr int kTextNotDeleted = 1012;
inline constexpr int kTextPointsNotStored = 1014;

// A unit of a job
inline constexpr int kTextNothingChanged = 1015;
inline constexpr int kTextFinishedLater = 1016;

}  // namespace tarvex
