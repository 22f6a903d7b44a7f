// Under which id the next point goes when none is named.
#pragma once

#include <optional>
#include <string>

#include "core/coordinates/coordinate_file.h"
#include "core/job/job.h"

namespace tarvex {

/// The id after the one that was used last, under which no point is yet. Last used is the last
/// point that was measured (its GPS, SS or TR record is the last in the raw file); where none was,
/// the last that was stored (SP); where there is no raw file, the last of the coordinate file. So
/// work goes on behind 104 however many control points with other ids were entered. A store that
/// was taken back counts as not made. Nothing when the ids are exhausted. Sets the job's current
/// point id to the last used.
std::optional<std::string> NextIdToUse(Job& job, CoordinateFile& stream);

}  // namespace tarvex
