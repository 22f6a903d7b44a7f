// The job's point-notes file (extension "not"): one block of lines a point, which starts with its
// PT_ID line and holds the user's note lines and the quality of its GNSS position.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/job.h"

namespace tarvex {

struct PointNote {
  std::string point_id;
  std::vector<std::string> lines;  ///< the user's notes, one line each
  std::string
      quality_lines;  ///< "HRMS,0.012\n..." as the receiver's state gives them; may be empty
};

/// Writes the point's block at the end of the file, an earlier block of the point removed. The file
/// is replaced in one step: it holds the old blocks or the new ones.
FileStatus WritePointNote(Job& job, const PointNote& note);

/// The block of a point; nothing when the file or the block does not exist. `status` tells a file
/// that cannot be read.
std::optional<PointNote> ReadPointNote(Job& job, std::string_view point_id, FileStatus& status);

/// The text of a block, as the file holds it.
std::string PointNoteBlock(const PointNote& note);

std::string PointNotesPath(const Job& job);

}  // namespace tarvex
