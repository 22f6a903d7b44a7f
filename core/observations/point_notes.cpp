#include "core/observations/point_notes.h"

#include <algorithm>

#include "core/points/point_id.h"
#include "core/text/number_text.h"
#include "core/text/text.h"

namespace tarvex {
namespace {

constexpr std::string_view kBlockStart = "PT_ID:";
constexpr std::string_view kNoteStart = "NOTE";
constexpr std::uint64_t kLargestFile = std::uint64_t{1} << 32U;

// Of the file's end so much is compared to see that the index still fits.
constexpr std::uint64_t kComparedEnd = 64;

FileStatus ReadNotes(Job& job, std::string& bytes) {
  const FileStatus status =
      ReadWholeFile(job.host.files(), PointNotesPath(job), kLargestFile, bytes);
  return status.notFound() ? FileStatus{} : status;
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

// The id of a block; nothing for lines before the first block.
std::optional<std::string_view> BlockId(std::string_view block) {
  if (!block.starts_with(kBlockStart)) return std::nullopt;
  block.remove_prefix(kBlockStart.size());
  return TakeLine(block).value_or("");
}

bool IsBlockOf(std::string_view block, std::string_view id) {
  const auto of = BlockId(block);
  return of && ComparePointIds(*of, id) == 0;
}

bool WritesBlock(const NoteEdit& edit) {
  return edit.kind == NoteEdit::Kind::SetQuality || edit.kind == NoteEdit::Kind::Replace;
}

// The file's end, of as many bytes as are compared.
FileStatus ReadEnd(File& file, std::uint64_t size, std::string& end) {
  const std::uint64_t some = std::min(size, kComparedEnd);
  end.assign(static_cast<std::size_t>(some), '\0');
  std::size_t got = 0;
  return file.ReadAt(size - some, end, got);
}

std::string EndOf(std::string_view bytes) {
  const std::size_t some = std::min<std::size_t>(bytes.size(), kComparedEnd);
  return std::string(bytes.substr(bytes.size() - some));
}

FileStatus ReadAll(File& file, std::uint64_t size, std::string& bytes) {
  bytes.assign(static_cast<std::size_t>(size), '\0');
  std::size_t got = 0;
  return file.ReadAt(0, bytes, got);
}

// Which points have a block, from the file itself unless the index still fits it.
FileStatus RefreshIndex(NoteIndex& index, File& file, std::uint64_t size) {
  std::string end;
  if (FileStatus status = ReadEnd(file, size, end); !status.ok()) return status;
  const FileStamp stamp = file.Stamp();
  if (index.known && index.stamp == stamp && index.size == size && index.end == end) return {};
  std::string bytes;
  if (FileStatus status = ReadAll(file, size, bytes); !status.ok()) return status;
  index = {.known = true, .stamp = stamp, .size = size, .end = end, .ids = {}};
  std::string_view rest = bytes;
  while (!rest.empty()) {
    if (const auto id = BlockId(TakeBlock(rest))) index.ids.insert(NoteKey(*id));
  }
  return {};
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
  note.pointId = TakeLine(block).value_or("").substr(kBlockStart.size());
  while (const auto line = TakeLine(block)) {
    if (const auto text = NoteText(*line)) {
      note.lines.emplace_back(*text);
    } else {
      note.qualityLines.append(*line).append("\n");
    }
  }
  return note;
}

// Another program may have left several blocks of a point: the person's lines of all of them count,
// and the quality of the last.
void TakeBlockInto(std::string_view block, std::optional<PointNote>& note) {
  PointNote later = ParseBlock(block);
  if (!note) {
    note = std::move(later);
    return;
  }
  note->lines.insert(note->lines.end(), later.lines.begin(), later.lines.end());
  if (!later.qualityLines.empty()) note->qualityLines = std::move(later.qualityLines);
}

// The block that an edit leaves, from the one that the point had; nothing when there is none.
std::string EditedBlock(const NoteEdit& edit, const std::optional<PointNote>& old) {
  PointNote note = edit.note;
  switch (edit.kind) {
    case NoteEdit::Kind::Remove:
      return {};
    case NoteEdit::Kind::SetQuality:
      if (old) note.lines = old->lines;
      break;
    case NoteEdit::Kind::DropQuality:
      if (!old || old->lines.empty()) return {};
      note = {.pointId = old->pointId, .lines = old->lines, .qualityLines = ""};
      break;
    case NoteEdit::Kind::Replace:
      break;
  }
  return PointNoteBlock(note);
}

// The whole file after the edits: blocks that they concern leave their place, what remains of them
// comes to the end.
std::string EditedNotes(std::string_view oldFile, const NoteEdits& edits) {
  std::string newFile;
  std::map<std::string, std::optional<PointNote>> taken;
  while (!oldFile.empty()) {
    const std::string_view block = TakeBlock(oldFile);
    const auto id = BlockId(block);
    const std::string key = id ? NoteKey(*id) : std::string();
    if (id && edits.contains(key)) {
      TakeBlockInto(block, taken[key]);
    } else {
      newFile += block;
    }
  }
  if (!newFile.empty() && newFile.back() != '\n') newFile += '\n';
  for (const auto& [key, edit] : edits) newFile += EditedBlock(edit, taken[key]);
  return newFile;
}

// The change from one text to another: what follows their common beginning.
FileChange ChangeBetween(std::string_view oldFile, std::string_view newFile) {
  const std::size_t some = std::min(oldFile.size(), newFile.size());
  const auto differs =
      std::mismatch(oldFile.begin(), oldFile.begin() + std::ptrdiff_t(some), newFile.begin());
  const auto same = static_cast<std::size_t>(differs.first - oldFile.begin());
  return {.file = JobFile::Notes,
          .oldSize = oldFile.size(),
          .newSize = newFile.size(),
          .writes = {{.offset = same, .bytes = std::string(newFile.substr(same))}}};
}

}  // namespace

std::string NoteKey(std::string_view pointId) {
  std::string key(pointId);
  for (char& c : key) c = UpperCase(c);
  return key;
}

FileStatus OpenNotes(Job& job, const NoteEdits& edits, std::unique_ptr<File>& file) {
  const bool writes = std::any_of(edits.begin(), edits.end(),
                                  [](const auto& edit) { return WritesBlock(edit.second); });
  FileSystem& files = job.host.files();
  const std::string path = PointNotesPath(job);
  FileStatus status = OpenLocked(files, path, FileAccess::ReadWrite, file);
  if (!status.notFound()) return status;
  if (!writes) return {};
  std::unique_ptr<File> made;
  status = MakeBeside(files, job.path, path, made);
  return status.ok() ? OpenLocked(files, path, FileAccess::ReadWrite, file) : status;
}

FileStatus MakeNotesChange(Job& job, File& file, const NoteEdits& edits, NotesChange& change) {
  std::uint64_t size = 0;
  if (FileStatus status = file.Size(size); !status.ok()) return status;
  if (FileStatus status = RefreshIndex(job.noted, file, size); !status.ok()) return status;
  bool appends = true;
  std::string text = size > 0 && job.noted.end.back() != '\n' ? "\n" : "";
  for (const auto& [key, edit] : edits) {
    const bool there = job.noted.ids.contains(key);
    appends = appends && !there;
    if (WritesBlock(edit)) change.added.push_back(key);
    if (there && edit.kind == NoteEdit::Kind::Remove) change.removed.push_back(key);
    if (!there) text += EditedBlock(edit, std::nullopt);
  }
  if (appends) {
    if (change.added.empty()) return {};
    change.change = {.file = JobFile::Notes,
                     .oldSize = size,
                     .newSize = size + text.size(),
                     .writes = {{.offset = size, .bytes = text}}};
    change.end = EndOf(job.noted.end + text);
    return {};
  }
  std::string oldFile;
  if (FileStatus status = ReadAll(file, size, oldFile); !status.ok()) return status;
  const std::string newFile = EditedNotes(oldFile, edits);
  if (newFile != oldFile) change.change = ChangeBetween(oldFile, newFile);
  change.end = EndOf(newFile);
  return {};
}

void TakeNoteIndex(Job& job, File& file, const NotesChange& change) {
  if (!change.change) return;
  NoteIndex& index = job.noted;
  for (const std::string& key : change.removed) index.ids.erase(key);
  index.ids.insert(change.added.begin(), change.added.end());
  index.stamp = file.Stamp();
  index.size = change.change->newSize;
  index.end = change.end;
}

std::string PointNotesPath(const Job& job) {
  return PathWithExtension(job.path, "not");
}

std::string PointNoteBlock(const PointNote& note) {
  std::string block(kBlockStart);
  block += OneLine(note.pointId) + "\n";
  long long number = 0;
  for (const std::string& lines : note.lines) {
    std::string_view rest = lines;
    do {
      block += kNoteStart;
      AppendInteger(block, ++number);
      block += "," + OneLine(TakeLine(rest).value_or("")) + "\n";
    } while (!rest.empty());
  }
  return block + note.qualityLines;
}

std::unordered_set<std::string> MeasuredPoints(Job& job, FileStatus& status) {
  std::unordered_set<std::string> measured;
  std::string bytes;
  status = ReadNotes(job, bytes);
  if (!status.ok()) return measured;
  std::string_view rest = bytes;
  while (!rest.empty()) {
    const std::string_view block = TakeBlock(rest);
    const auto id = BlockId(block);
    if (id && block.find("\nSTATUS,") != std::string_view::npos) measured.insert(NoteKey(*id));
  }
  return measured;
}

std::optional<PointNote> ReadPointNote(Job& job, std::string_view pointId, FileStatus& status) {
  std::string bytes;
  status = ReadNotes(job, bytes);
  std::optional<PointNote> note;
  std::string_view rest = bytes;
  while (status.ok() && !rest.empty()) {
    const std::string_view block = TakeBlock(rest);
    if (IsBlockOf(block, pointId)) TakeBlockInto(block, note);
  }
  return note;
}

}  // namespace tarvex
