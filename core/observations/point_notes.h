// The job's point-notes file (extension "not"): one block of lines a point, which starts with its
// PT_ID line and holds the user's note lines and the quality of its GNSS position.
#pragma once

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

#include "core/job/job.h"
#include "core/journal/change_journal.h"

namespace tarvex {

struct PointNote {
  std::string pointId;
  std::vector<std::string> lines;  ///< the user's notes, one line each
  std::string qualityLines;  ///< "HRMS,0.012\n..." as the receiver's state gives them; may be empty
};

/// What the file says of a point; nothing when the file or the block does not exist. `status` tells
/// a file that cannot be read.
std::optional<PointNote> ReadPointNote(Job& job, std::string_view pointId, FileStatus& status);

/// What becomes of a point's block.
struct NoteEdit {
  enum class Kind {
    SetQuality,   ///< the quality lines are these; the user's lines stay
    DropQuality,  ///< the point is no longer what was measured: the user's lines stay alone
    Replace,      ///< the block is this note
    Remove
  };
  Kind kind = Kind::Replace;
  PointNote note;  ///< with SetQuality its quality lines, with Replace all of it
};

/// By the key of the point's id.
using NoteEdits = std::map<std::string, NoteEdit>;

/// Equal for ids that name the same point.
std::string NoteKey(std::string_view pointId);

/// How edits change the notes and their index.
struct NotesChange {
  std::optional<FileChange> change;
  std::vector<std::string> added;
  std::vector<std::string> removed;
  std::string end;  ///< of the file after the change, for the index
};

/// Opens and locks the notes for edits; created when an edit writes a block, left null when there
/// is no file and none is needed.
FileStatus OpenNotes(Job& job, const NoteEdits& edits, std::unique_ptr<File>& file);

/// What the edits change in the file. A block of a point that has none yet goes to the end, at a
/// cost that does not grow with the file: the job remembers which points have one.
FileStatus MakeNotesChange(Job& job, File& file, const NoteEdits& edits, NotesChange& change);

/// Brings the job's index up to date after the change was carried out in the file.
void TakeNoteIndex(Job& job, File& file, const NotesChange& change);

/// The keys of the points whose block says how they were measured; `status` tells a file that
/// cannot be read.
std::unordered_set<std::string> MeasuredPoints(Job& job, FileStatus& status);

/// The text of a block, as the file holds it.
std::string PointNoteBlock(const PointNote& note);

std::string PointNotesPath(const Job& job);

}  // namespace tarvex
