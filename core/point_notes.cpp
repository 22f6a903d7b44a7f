#include "core/point_notes.h"

#include "core/number_text.h"
#include "core/point_id.h"
#include "core/text.h"

namespace tarvex {
namespace {

constexpr std::string_view kBlockStart = "PT_ID:";
constexpr std::string_view kNoteStart = "NOTE";
constexpr std::uint64_t kLargestFile = std::uint64_t{1} << 32U;

FileStatus ReadNotes(Job& job, std::string& bytes) {
  const FileStatus status =
      ReadWholeFile(job.host.files(), PointNotesPath(job), kLargestFile, bytes);
  return status.not_found() ? FileStatus{} : status;
}

// The next block of `rest`, from its PT_ID line up to the next one; lines before the first block
// make a block of their own, so that nothing is lost.
std::string_view TakeBlock(std::string_view& rest) {
  const std::string next = "\n" + std::string(kBlockStart);
  const std::size_t end = rest.find(next);
  const std::string_view block = rest.substr(0, end == std::string_view::npos ? end : end + 1);
  rest.remove_prefix(block.size());
  return block;
}

bool IsBlockOf(std::string_view block, std::string_view id) {
  if (!block.starts_with(kBlockStart)) return false;
  block.remove_prefix(kBlockStart.size());
  return ComparePointIds(TakeLine(block).value_or(""), id) == 0;
}

// "NOTE3,text" is "text".
std::optional<std::string_view> NoteText(std::string_view line) {
  if (!line.starts_with(kNoteStart)) return std::nullopt;
  const std::size_t comma = line.find(',');
  if (comma == std::string_view::npos) return std::nullopt;
  const std::string_view number = line.substr(kNoteStart.size(), comma - kNoteStart.size());
  return ParseInteger(number) ? std::optional(line.substr(comma + 1)) : std::nullopt;
}

PointNote ParseBlock(std::string_view block) {
  PointNote note;
  note.point_id = TakeLine(block).value_or("").substr(kBlockStart.size());
  while (const auto line = TakeLine(block)) {
    if (const auto text = NoteText(*line)) {
      note.lines.emplace_back(*text);
    } else {
      note.quality_lines.append(*line).append("\n");
    }
  }
  return note;
}

}  // namespace

std::string PointNotesPath(const Job& job) {
  return PathWithExtension(job.path, "not");
}

std::string PointNoteBlock(const PointNote& note) {
  std::string block(kBlockStart);
  block += OneLine(note.point_id) + "\n";
  long long number = 0;
  for (const std::string& lines : note.lines) {
    std::string_view rest = lines;
    do {
      block += kNoteStart;
      AppendInteger(block, ++number);
      block += "," + OneLine(TakeLine(rest).value_or("")) + "\n";
    } while (!rest.empty());
  }
  return block + note.quality_lines;
}

FileStatus WritePointNote(Job& job, const PointNote& note) {
  std::unique_ptr<File> locked;  // until the file is replaced
  if (FileStatus status =
          OpenLocked(job.host.files(), PointNotesPath(job), FileAccess::CreateOrKeep, locked);
      !status.ok()) {
    return status;
  }
  std::string old_file;
  if (FileStatus status = ReadNotes(job, old_file); !status.ok()) return status;
  std::string new_file;
  std::string_view rest = old_file;
  while (!rest.empty()) {
    const std::string_view block = TakeBlock(rest);
    if (!IsBlockOf(block, note.point_id)) new_file += block;
  }
  if (!new_file.empty() && new_file.back() != '\n') new_file += '\n';
  new_file += PointNoteBlock(note);
  return ReplaceWholeFile(job.host.files(), PointNotesPath(job), new_file);
}

std::optional<PointNote> ReadPointNote(Job& job, std::string_view point_id, FileStatus& status) {
  std::string bytes;
  status = ReadNotes(job, bytes);
  std::string_view rest = bytes;
  while (status.ok() && !rest.empty()) {
    const std::string_view block = TakeBlock(rest);
    if (IsBlockOf(block, point_id)) return ParseBlock(block);
  }
  return std::nullopt;
}

}  // namespace tarvex
