// What the header of a raw data file says of its job: it was written when the job was made, and
// tells when the job's settings were lost or changed since.
#pragma once

#include <optional>
#include <string_view>

#include "core/job/job.h"

namespace tarvex {

/// The mode record, MO; a value that makes no sense is not there.
struct RawMode {
  std::optional<bool> azimuthsFromSouth;
  std::optional<DistanceUnit> unit;
  std::optional<double> scaleFactor;
};

/// The mode record among these lines; nothing when there is none.
std::optional<RawMode> ParseRawMode(std::string_view text);

/// That of the job's raw file, of which only the beginning is read; nothing when there is no raw
/// file, or it cannot be read.
std::optional<RawMode> ReadRawMode(Job& job);

}  // namespace tarvex
