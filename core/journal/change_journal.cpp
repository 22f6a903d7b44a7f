#include "core/journal/change_journal.h"

#include <algorithm>
#include <limits>
#include <optional>
#include <random>

#include "core/codec/byte_codec.h"
#include "core/journal/change_entry.h"

namespace tarvex {
namespace {

constexpr std::uint64_t kLargestJournal = std::uint64_t{1} << 40U;
constexpr std::size_t kChunk = 65520;  // below 65536, whole fillers of 56 bytes
// The journal grows by pieces of this size, so that most entries need no room of the disk.
constexpr std::uint64_t kJournalPiece = std::uint64_t{64} << 10U;
constexpr std::string_view kNoMagic("\0\0\0\0\0\0\0\0", 8);

std::string JournalPath(const std::string& path) {
  return path + ".redo";
}

std::string ReplacementPath(const std::string& path) {
  return path + ".new";
}

// Writes the part of `write` that lies in [from, to).
FileStatus WritePart(File& file, const FileWrite& write, std::uint64_t from, std::uint64_t to) {
  const std::size_t copies =
      std::max<std::size_t>(1, kChunk / std::max<std::size_t>(1, write.bytes.size()));
  std::string block;
  if (write.repeat > 1) {
    for (std::size_t i = 0; i < std::min<std::uint64_t>(copies, write.repeat); ++i)
      block += write.bytes;
  }
  const std::string_view source = write.repeat > 1 ? std::string_view(block) : write.bytes;
  const std::uint64_t end = write.offset + write.bytes.size() * write.repeat;
  for (std::uint64_t at = write.offset; at < end; at += source.size()) {
    const std::uint64_t pieceEnd = std::min<std::uint64_t>(at + source.size(), end);
    const std::uint64_t first = std::max(at, from);
    const std::uint64_t last = std::min(pieceEnd, to);
    if (first >= last) continue;
    const auto part =
        source.substr(static_cast<std::size_t>(first - at), static_cast<std::size_t>(last - first));
    if (FileStatus status = file.WriteAt(first, part); !status.ok()) return status;
  }
  return {};
}

FileStatus WriteParts(File& file, const FileChange& change, std::uint64_t from, std::uint64_t to) {
  for (const FileWrite& write : change.writes) {
    if (FileStatus status = WritePart(file, write, from, to); !status.ok()) return status;
  }
  return {};
}

// Growing needs room on the disk and can fail harmlessly; what is there is overwritten afterwards.
FileStatus Grow(File& file, const FileChange& change) {
  return WriteParts(file, change, change.oldSize, std::numeric_limits<std::uint64_t>::max());
}

FileStatus Overwrite(File& file, const FileChange& change) {
  if (FileStatus status = WriteParts(file, change, 0, change.oldSize); !status.ok()) return status;
  return change.newSize < change.oldSize ? file.Resize(change.newSize) : FileStatus{};
}

// The series of the first entry, and whether there is one.
struct JournalHead {
  FileStatus status = {};  // of reading the journal; one that is missing or empty is read
  bool entry = false;
  bool old = false;
  std::uint64_t series = 0;
};

JournalHead ReadHead(FileSystem& files, const std::string& path) {
  JournalHead head;
  std::unique_ptr<File> journal;
  char bytes[16] = {};
  std::size_t got = 0;
  head.status = files.Open(JournalPath(path), FileAccess::Read, journal);
  if (head.status.ok()) head.status = journal->ReadAt(0, bytes, got);
  if (head.status.notFound()) head.status = {};
  if (got < sizeof bytes) return head;
  const std::string_view text(bytes, sizeof bytes);
  head.old = text.starts_with(kOldChangeMagic);
  head.entry = text.starts_with(kChangeMagic);
  head.series = NumberAt<std::uint64_t>(bytes + kChangeMagic.size());
  return head;
}

// A number that no other program's series has.
std::uint64_t NewSeries() {
  std::random_device random;
  return (std::uint64_t{random()} << 32U | random()) | 1U;
}

// Appends the entry and makes it durable; on failure the journal is as before.
FileStatus AppendEntry(FileSystem& files, const std::string& path, JournalPlace& place,
                       const JobChange& change) {
  const std::string name = JournalPath(path);
  if (place.entries == 0) {
    place.series = NewSeries();
    place.end = 0;
  }
  std::unique_ptr<File> journal;
  std::uint64_t size = 0;
  std::string bytes = EncodeEntry(
      {.series = place.series, .number = std::uint64_t(place.entries), .change = change});
  const std::uint64_t end = place.end + bytes.size();
  FileStatus status = files.Open(name, FileAccess::ReadWrite, journal);
  const bool created = status.notFound();
  if (created) status = MakeBeside(files, path, name, journal);
  if (status.ok()) status = journal->Size(size);
  if (end > size) bytes.resize(bytes.size() + (kJournalPiece - end % kJournalPiece), '\0');
  if (status.ok()) status = journal->WriteAt(place.end, bytes);
  if (status.ok()) status = journal->Sync();
  if (status.ok() && created) status = files.SyncFolderOf(path);
  if (status.ok()) {
    place.end = end;
    ++place.entries;
    return {};
  }
  if (!journal) return status;
  if (journal->WriteAt(place.end, kNoMagic).ok()) (void)journal->Sync();
  if (created) (void)files.Remove(name);
  return status;
}

// Takes the last entry, which begins at `start`, back durably.
bool TakeBackEntry(FileSystem& files, const std::string& path, JournalPlace& place,
                   std::uint64_t start) {
  std::unique_ptr<File> journal;
  if (!files.Open(JournalPath(path), FileAccess::ReadWrite, journal).ok()) return false;
  if (!journal->WriteAt(start, kNoMagic).ok() || !journal->Sync().ok()) return false;
  place.end = start;
  --place.entries;
  return true;
}

FilesStatus GrowAll(const std::string& path, const JobChange& change, const OpenJobFiles& open) {
  for (const FileChange& one : change) {
    if (one.replaced) continue;
    if (FileStatus status = Grow(*open.of(one.file), one); !status.ok()) {
      return {status, JobFilePath(path, one.file)};
    }
  }
  return {};
}

// Durably: once the journal has forgotten the change, nothing shortens the files again.
bool ShrinkAllBack(const JobChange& change, const OpenJobFiles& open) {
  bool all = true;
  for (const FileChange& one : change) {
    std::uint64_t size = 0;
    if (one.replaced) continue;
    File& file = *open.of(one.file);
    if (file.Size(size).ok() && size <= one.oldSize) continue;
    all = file.Resize(one.oldSize).ok() && file.Sync().ok() && all;
  }
  return all;
}

FilesStatus OverwriteAll(FileSystem& files, const std::string& path, const JobChange& change,
                         const OpenJobFiles& open) {
  for (const FileChange& one : change) {
    const std::string name = JobFilePath(path, one.file);
    const FileStatus status = one.replaced ? files.Rename(ReplacementPath(name), name)
                                           : Overwrite(*open.of(one.file), one);
    if (!status.ok()) return {status, name};
  }
  return {};
}

FileStatus SyncIfThere(FileSystem& files, const std::string& path) {
  std::unique_ptr<File> file;
  const FileStatus status = files.Open(path, FileAccess::ReadWrite, file);
  if (status.notFound()) return {};
  return status.ok() ? file->Sync() : status;
}

FileStatus EmptyJournal(FileSystem& files, const std::string& path, bool durable) {
  std::unique_ptr<File> journal;
  FileStatus status = files.Open(JournalPath(path), FileAccess::ReadWrite, journal);
  if (status.notFound()) return {};
  if (status.ok()) status = journal->WriteAt(0, kNoMagic);
  if (status.ok() && durable) status = journal->Sync();
  return status;
}

FileStatus RemoveJournal(FileSystem& files, const std::string& path) {
  // Emptied durably first: should the removal be lost with the power, nothing comes back.
  if (FileStatus status = EmptyJournal(files, path, true); !status.ok()) return status;
  const FileStatus status = files.Remove(JournalPath(path));
  return status.notFound() ? FileStatus{} : status;
}

// All entries of the journal that are whole and belong together.
std::vector<JobChange> ReadEntries(std::string_view bytes) {
  std::vector<JobChange> changes;
  if (bytes.starts_with(kOldChangeMagic)) {
    if (auto change = DecodeOldJournal(bytes)) changes.push_back(std::move(*change));
    return changes;
  }
  std::uint64_t series = 0;
  while (auto entry = TakeEntry(bytes)) {
    if (changes.empty()) series = entry->series;
    if (entry->series != series || entry->number != changes.size()) break;
    changes.push_back(std::move(entry->change));
  }
  return changes;
}

// What the entries say of one file, in their order.
std::vector<const FileChange*> ChangesOf(const std::vector<JobChange>& changes, JobFile file) {
  std::vector<const FileChange*> ofFile;
  for (const JobChange& change : changes) {
    for (const FileChange& one : change) {
      if (one.file == file) ofFile.push_back(&one);
    }
  }
  return ofFile;
}

// The changes belong to the file only while its size is one that they pass through.
bool Belong(const std::vector<const FileChange*>& changes, std::uint64_t size) {
  std::uint64_t least = std::numeric_limits<std::uint64_t>::max();
  std::uint64_t most = 0;
  for (const FileChange* change : changes) {
    least = std::min({least, change->oldSize, change->newSize});
    most = std::max({most, change->oldSize, change->newSize});
  }
  return size >= least && size <= most;
}

// What the changes append to a text file, in one piece; nothing when they do more than that.
std::optional<std::string> Appended(const std::vector<const FileChange*>& changes) {
  std::string appended;
  std::uint64_t end = changes.front()->oldSize;
  for (const FileChange* change : changes) {
    const bool appends = change->oldSize == end && change->writes.size() == 1 &&
                         change->writes[0].offset == end && change->writes[0].repeat == 1;
    if (!appends) return std::nullopt;
    appended += change->writes[0].bytes;
    end += change->writes[0].bytes.size();
  }
  return appended;
}

// Whether somebody else wrote behind the place where the changes append. Their own bytes may have
// been cut short, with zeros for those that did not reach the disk.
FileStatus LookForForeignEnd(File& file, const std::vector<const FileChange*>& changes,
                             std::uint64_t size, bool& foreign) {
  const std::uint64_t begin = changes.front()->oldSize;
  const auto appended = Appended(changes);
  if (!appended || size <= begin) return {};
  std::string end(static_cast<std::size_t>(size - begin), '\0');
  std::size_t got = 0;
  if (FileStatus status = file.ReadAt(begin, end, got); !status.ok()) return status;
  for (std::size_t i = 0; i < std::min(end.size(), appended->size()); ++i) {
    foreign = foreign || (end[i] != (*appended)[i] && end[i] != '\0');
  }
  return {};
}

// A text file that somebody worked on meanwhile: what was to be appended still is, once, in lines
// of its own.
FileStatus AppendWhatIsMissing(File& file, JobFile which,
                               const std::vector<const FileChange*>& changes, std::uint64_t size) {
  std::string bytes(static_cast<std::size_t>(size), '\0');
  std::size_t got = 0;
  if (FileStatus status = file.ReadAt(0, bytes, got); !status.ok()) return status;
  for (const FileChange* change : changes) {
    for (const FileWrite& write : change->writes) {
      if (write.offset != change->oldSize || bytes.find(write.bytes) != std::string::npos) continue;
      const bool cut = which == JobFile::Notes && !bytes.empty() && bytes.back() != '\n';
      const std::string missing = (cut ? "\n" : "") + write.bytes;
      if (FileStatus status = file.WriteAt(bytes.size(), missing); !status.ok()) return status;
      bytes += missing;
    }
  }
  return file.Sync();
}

FileStatus CarryOutAgain(File& file, JobFile which, const std::vector<const FileChange*>& changes) {
  std::uint64_t size = 0;
  if (FileStatus status = file.Size(size); !status.ok()) return status;
  bool foreign = !Belong(changes, size);
  if (which == JobFile::Coordinates) {
    if (foreign) return {};
  } else {
    if (FileStatus status = LookForForeignEnd(file, changes, size, foreign); !status.ok())
      return status;
    if (foreign) return AppendWhatIsMissing(file, which, changes, size);
  }
  for (const FileChange* change : changes) {
    if (FileStatus status = Grow(file, *change); !status.ok()) return status;
    if (FileStatus status = Overwrite(file, *change); !status.ok()) return status;
  }
  if (FileStatus status = file.Size(size); !status.ok()) return status;
  if (size != changes.back()->newSize) {
    if (FileStatus status = file.Resize(changes.back()->newSize); !status.ok()) return status;
  }
  return file.Sync();
}

FileStatus FinishFile(FileSystem& files, const std::string& path, File& coordinates, JobFile which,
                      const std::vector<const FileChange*>& changes) {
  const std::string name = JobFilePath(path, which);
  if (changes.back()->replaced) {
    if (!files.Exists(ReplacementPath(name))) return {};
    return files.Rename(ReplacementPath(name), name);
  }
  if (which == JobFile::Coordinates) return CarryOutAgain(coordinates, which, changes);
  std::unique_ptr<File> file;
  const bool began = changes.front()->oldSize == 0;
  FileStatus status = files.Open(name, FileAccess::ReadWrite, file);
  if (status.notFound() && began) status = MakeBeside(files, path, name, file);
  if (status.notFound()) return {};
  return status.ok() ? CarryOutAgain(*file, which, changes) : status;
}

}  // namespace

File* OpenJobFiles::of(JobFile file) const {
  switch (file) {
    case JobFile::Raw:
      return raw;
    case JobFile::Notes:
      return notes;
    case JobFile::Coordinates:
      break;
  }
  return coordinates;
}

ChangeResult CarryOut(FileSystem& files, const std::string& path, JournalPlace& place,
                      const JobChange& change, const OpenJobFiles& open, FilesStatus& status) {
  const std::uint64_t start = place.entries == 0 ? 0 : place.end;
  status = {AppendEntry(files, path, place, change), JournalPath(path)};
  if (!status.ok()) return ChangeResult::Nothing;
  status = GrowAll(path, change, open);
  if (!status.ok() && ShrinkAllBack(change, open) && TakeBackEntry(files, path, place, start)) {
    return ChangeResult::Nothing;
  }
  if (status.ok()) status = OverwriteAll(files, path, change, open);
  for (const FileChange& one : change) {
    place.newNames = place.newNames || one.replaced || one.oldSize == 0;
  }
  if (status.ok()) return ChangeResult::Done;
  place = {};  // what the journal holds is finished like another program's
  return ChangeResult::Pending;
}

FileStatus SettleChanges(FileSystem& files, const std::string& path, JournalPlace& place) {
  if (place.entries == 0) return {};
  FileStatus status;
  for (const JobFile file : kJobFiles) {
    if (status.ok()) status = SyncIfThere(files, JobFilePath(path, file));
  }
  if (status.ok() && place.newNames) status = files.SyncFolderOf(path);
  if (status.ok()) return ForgetChanges(files, path, place);
  place = {};
  return status;
}

// Whether this is durable does not matter: to carry out what is there already changes nothing, and
// the next change overwrites the entries before it touches a file. Before a replacement is prepared
// the journal is closed, which is durable.
FileStatus ForgetChanges(FileSystem& files, const std::string& path, JournalPlace& place) {
  const JournalHead head = ReadHead(files, path);
  if (!head.entry || head.series != place.series) return place = {}, FileStatus{};
  const FileStatus status = EmptyJournal(files, path, false);
  if (status.ok()) place = {};
  return status;
}

FileStatus CloseJournal(FileSystem& files, const std::string& path, JournalPlace& place) {
  if (!HasJournal(files, path)) return place = {}, FileStatus{};
  if (FileStatus status = SettleChanges(files, path, place); !status.ok()) return status;
  return HasInterruptedChange(files, path) ? FileStatus{} : RemoveJournal(files, path);
}

FileStatus ChangeFile(FileSystem& files, const std::string& path, File& file,
                      const FileChange& change) {
  JournalPlace place;
  FilesStatus carried;
  const ChangeResult result =
      CarryOut(files, path, place, {change}, {.coordinates = &file}, carried);
  FileStatus status = result == ChangeResult::Done ? file.Sync() : carried.status;
  if (!status.ok()) {
    if (result != ChangeResult::Nothing) status.effect = FileEffect::Pending;
    return status;
  }
  // The change is on the disk: a journal that cannot be removed is carried out once more, later.
  (void)RemoveJournal(files, path);
  return {};
}

FilesStatus FinishInterruptedChange(FileSystem& files, const std::string& path, File& file) {
  JournalPlace none;
  return FinishInterruptedChange(files, path, file, none);
}

FilesStatus FinishInterruptedChange(FileSystem& files, const std::string& path, File& file,
                                    JournalPlace& place) {
  const JournalHead head = ReadHead(files, path);
  if (!head.status.ok()) return {head.status, JournalPath(path)};
  if (head.entry && head.series == place.series) return {};
  place = {};
  if (!head.old && !head.entry) return {};
  std::string bytes;
  if (FileStatus status = ReadWholeFile(files, JournalPath(path), kLargestJournal, bytes);
      !status.ok()) {
    return {status, JournalPath(path)};
  }
  const std::vector<JobChange> changes = ReadEntries(bytes);
  for (const JobFile which : kJobFiles) {
    const auto ofFile = ChangesOf(changes, which);
    if (ofFile.empty()) continue;
    if (FileStatus status = FinishFile(files, path, file, which, ofFile); !status.ok()) {
      return {status, JobFilePath(path, which)};
    }
  }
  if (!changes.empty()) {
    if (FileStatus status = files.SyncFolderOf(path); !status.ok()) return {status, path};
  }
  return {RemoveJournal(files, path), JournalPath(path)};
}

bool HasJournal(FileSystem& files, const std::string& path) {
  return files.Exists(JournalPath(path));
}

bool HasInterruptedChange(FileSystem& files, const std::string& path, const JournalPlace& place) {
  const JournalHead head = ReadHead(files, path);
  return !head.status.ok() || head.old || (head.entry && head.series != place.series);
}

}  // namespace tarvex
