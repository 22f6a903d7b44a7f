// How good a stored point is, as the raw file's note and the point-notes block say it. Pure texts:
// the writer of the files appends them.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "gnss/position/position_state.h"

namespace tarvex {

/// Date and time of a stored point in the form that the job's files use.
struct QualityStamp {
  std::string_view date;
  std::string_view time;
};

/// "\n--HRMS:0.012, VRMS:0.020, STATUS:FIXED, SATS:12, PDOP:1.4", and with a stamp
/// "\n--DT...\n--TM..." behind it. Satellites and PDOP are there only when they are above 0; the
/// make that reports quality instead of RMS says HQ and VQ.
std::string QualityComment(const GnssPositionState& state, bool qualityInsteadOfRms,
                           const std::optional<QualityStamp>& stamp = std::nullopt);

/// The lines of a point-notes block behind its note lines: "HRMS,0.012\nVRMS,0.020\nSTATUS,FIXED\n"
/// "SATS,12\nPDOP,1.4\n", and with a stamp "DATE,...\nTIME,...\n".
std::string QualityBlockLines(const GnssPositionState& state, bool qualityInsteadOfRms,
                              const std::optional<QualityStamp>& stamp = std::nullopt);

/// The lines of a block say that the receiver told no precision: both numbers are 0.000, which no
/// measurement is.
bool TellsNoPrecision(std::string_view blockLines);

}  // namespace tarvex
