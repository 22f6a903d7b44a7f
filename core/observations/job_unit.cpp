#include "core/observations/job_unit.h"

#include <cerrno>

#include "core/raw_data/raw_file.h"
#include "core/text/core_texts.h"
#include "core/text/string_table.h"

namespace tarvex {
namespace {

// Units that may wait in the journal together.
constexpr int kMostUnsettled = 256;
constexpr std::uint64_t kLargestUnsettled = std::uint64_t{1} << 20U;

std::string ReplacementPath(const std::string& path) {
  return path + ".new";
}

// The lock of the coordinate file, where it is free at this moment; EAGAIN where it is not.
FileStatus LockAtOnce(Job& job, std::unique_ptr<File>& locked) {
  std::unique_ptr<File> file;
  const FileStatus status = job.host.files().Open(job.path, FileAccess::ReadWrite, file);
  if (!status.ok()) return status;
  // The lock of a file that was replaced since it was opened protects nothing.
  if (!file->LockAtOnce() || !file->IsNamed(job.path)) return {EAGAIN};
  locked = std::move(file);
  return {};
}

// The journal is only touched under the lock of the coordinate file. A unit of another program
// holds it for a moment; one that holds it longer finds the journal and can finish it.
FileStatus WithLock(Job& job, FileStatus (*work)(FileSystem&, const std::string&, JournalPlace&)) {
  constexpr int kTries = 100;
  constexpr std::int64_t kPauseMs = 10;
  std::unique_ptr<File> locked;
  FileStatus status = LockAtOnce(job, locked);
  for (int i = 1; i < kTries && status.code == EAGAIN; ++i) {
    job.host.clock().SleepMilliseconds(kPauseMs);
    status = LockAtOnce(job, locked);
  }
  if (status.notFound()) return {};
  return status.ok() ? work(job.host.files(), job.path, job.journal) : status;
}

}  // namespace

struct JobUnit::Opened {
  std::unique_ptr<File> raw;
  std::unique_ptr<File> notes;
  std::unique_ptr<File> replacement;  // of the coordinate file
  NotesChange notesChange;
};

std::unique_ptr<JobUnit> JobUnit::Begin(Job& job) {
  auto stream = OpenCoordinateFile(job);
  if (!stream) return nullptr;
  stream->GatherChanges();
  return std::unique_ptr<JobUnit>(new JobUnit(job, std::move(stream)));
}

JobUnit::JobUnit(Job& job, std::unique_ptr<CoordinateFile> stream)
    : job_(job), stream_(std::move(stream)), store_(job.store), ids_(job.ids) {}

JobUnit::~JobUnit() {
  if (!done_) TakeBackJobState();
}

void JobUnit::TakeBackJobState() {
  job_.store = store_;
  job_.ids = ids_;
}

void JobUnit::AppendRaw(std::span<const std::string> records) {
  for (const std::string& record : records) raw_ += record;
}

void JobUnit::EditNote(std::string_view pointId, NoteEdit edit) {
  notes_[NoteKey(pointId)] = std::move(edit);
}

FileStatus JobUnit::GatherRaw(Opened& opened, JobChange& change) {
  if (raw_.empty()) return {};
  std::uint64_t size = 0;
  if (FileStatus status = OpenRawFile(job_, opened.raw, size); !status.ok()) return status;
  const std::string text = RawFileAddition(job_, size, raw_);
  change.push_back({.file = JobFile::Raw,
                    .oldSize = size,
                    .newSize = size + text.size(),
                    .writes = {{.offset = size, .bytes = text}}});
  return {};
}

FileStatus JobUnit::GatherNotes(Opened& opened, JobChange& change) {
  if (notes_.empty()) return {};
  if (FileStatus status = OpenNotes(job_, notes_, opened.notes); !status.ok()) return status;
  if (!opened.notes) return {};  // nothing to take out of a file that does not exist
  FileStatus status = MakeNotesChange(job_, *opened.notes, notes_, opened.notesChange);
  if (status.ok() && opened.notesChange.change) change.push_back(*opened.notesChange.change);
  return status;
}

// The coordinate file's new bytes, durable beside it under another name.
FileStatus JobUnit::PrepareReplacement(Opened& opened) {
  FileSystem& files = job_.host.files();
  const std::string path = ReplacementPath(job_.path);
  // A journal that comes back with the power must find no half-written replacement.
  FileStatus status = CloseJournal(files, job_.path, job_.journal);
  if (status.ok()) status = files.Open(path, FileAccess::CreateOrTruncate, opened.replacement);
  if (status.ok()) status = opened.replacement->Lock();
  if (status.ok()) status = opened.replacement->WriteAt(0, stream_->replacement());
  if (status.ok()) status = opened.replacement->Sync();
  if (status.ok()) status = files.CopyRights(job_.path, path);
  return status.ok() ? files.SyncFolderOf(path) : status;
}

FilesStatus JobUnit::Gather(Opened& opened, JobChange& change) {
  FilesStatus status;
  if (stream_->gathered()) {
    change.push_back(*stream_->gathered());
    if (change.back().replaced) {
      status = {PrepareReplacement(opened), ReplacementPath(job_.path)};
    }
  }
  if (status.ok()) status = {GatherRaw(opened, change), RawFilePath(job_)};
  if (status.ok()) status = {GatherNotes(opened, change), PointNotesPath(job_)};
  return status;
}

FilesStatus JobUnit::MakeDurable(Opened& opened, const JobChange& change) {
  FileSystem& files = job_.host.files();
  if (job_.journal.entries > 1) {
    return {SettleChanges(files, job_.path, job_.journal), job_.path};
  }
  FilesStatus status;
  for (const FileChange& one : change) {
    File* file = one.file == JobFile::Raw     ? opened.raw.get()
                 : one.file == JobFile::Notes ? opened.notes.get()
                                              : &stream_->file();
    if (status.ok()) status = {file->Sync(), JobFilePath(job_.path, one.file)};
  }
  if (status.ok() && job_.journal.newNames) status = {files.SyncFolderOf(job_.path), job_.path};
  if (status.ok()) return {ForgetChanges(files, job_.path, job_.journal), job_.path};
  job_.journal = {};  // as SettleChanges does
  return status;
}

ChangeResult JobUnit::Refuse(const Opened& opened, const FilesStatus& status) {
  if (opened.replacement) (void)job_.host.files().Remove(ReplacementPath(job_.path));
  TakeBackJobState();
  done_ = true;
  job_.host.ShowMessage(Strings().Text(kTextNothingChanged, {job_.path, status.Text()}));
  return ChangeResult::Nothing;
}

ChangeResult JobUnit::Commit(Settling settling) {
  Opened opened;
  JobChange change;
  FileSystem& files = job_.host.files();
  FilesStatus status = Gather(opened, change);
  if (!status.ok()) return Refuse(opened, status);
  if (change.empty()) return done_ = true, ChangeResult::Done;
  const bool replaced = change.front().replaced;
  const ChangeResult result = CarryOut(
      files, job_.path, job_.journal, change,
      {.coordinates = &stream_->file(), .raw = opened.raw.get(), .notes = opened.notes.get()},
      status);
  if (result == ChangeResult::Nothing) return Refuse(opened, status);
  done_ = true;
  if (result == ChangeResult::Done) {
    if (replaced) stream_->Follow(std::move(opened.replacement));
    if (opened.notes) TakeNoteIndex(job_, *opened.notes, opened.notesChange);
    const bool settle = settling == Settling::Now || replaced ||
                        job_.journal.entries >= kMostUnsettled ||
                        job_.journal.end >= kLargestUnsettled;
    status = settle ? MakeDurable(opened, change) : FilesStatus{};
    if (status.ok()) return result;
  }
  job_.host.ShowMessage(Strings().Text(kTextFinishedLater, {job_.path, status.Text()}));
  return ChangeResult::Pending;
}

FinishJobResult FinishJob(Job& job) {
  FileSystem& files = job.host.files();
  const bool interrupted = HasInterruptedChange(files, job.path, job.journal);
  if (interrupted && !OpenCoordinateFile(job)) return FinishJobResult::Failed;
  const std::string left[] = {ReplacementPath(job.path), job.path + ".tmp",
                              JobFilePath(job.path, JobFile::Notes) + ".tmp"};
  for (const std::string& path : left) {
    if (!files.Exists(path)) continue;
    std::unique_ptr<File> locked;  // somebody may be at work on it at this moment
    if (!LockAtOnce(job, locked).ok()) break;
    (void)files.Remove(path);
  }
  return interrupted ? FinishJobResult::Finished : FinishJobResult::Nothing;
}

FileStatus SettleJob(Job& job) {
  return job.journal.entries == 0 ? FileStatus{} : WithLock(job, SettleChanges);
}

FileStatus CloseJob(Job& job) {
  const bool nothing = job.journal.entries == 0 && !HasJournal(job.host.files(), job.path);
  return nothing ? FileStatus{} : WithLock(job, CloseJournal);
}

}  // namespace tarvex
