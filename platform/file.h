// Files behind a small interface, so that everything that stores data can be tested with a disk
// that fills, a process that dies at any write, and no disk at all.
//
// Positions are absolute byte offsets. Nothing here buffers: a write that returned has reached the
// system, and after Sync() it has reached the disk.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <string>
#include <string_view>

namespace tarvex {

/// What an operation that failed did to the file all the same.
enum class FileEffect {
  None,        ///< the file is as before
  NotDurable,  ///< the change was made, but a loss of power may undo it
  Pending      ///< the change is completed from its journal when the file is opened again
};

/// What a file operation came to: 0, or the system's error number.
struct [[nodiscard]] FileStatus {
  int code = 0;
  FileEffect effect = FileEffect::None;

  bool ok() const { return code == 0; }
  /// True when the change was made, be it without being durable.
  bool done() const { return ok() || effect == FileEffect::NotDurable; }
  bool notFound() const;
  /// The system's own text for the error ("No space left on device").
  std::string Text() const;

  bool operator==(const FileStatus&) const = default;
};

/// Which file it is and when it was changed last, as far as the system tells: as long as it stays
/// the same nobody has written to the file, but within the few milliseconds (seconds on some memory
/// cards) that the system's clock of files takes for one tick.
struct FileStamp {
  std::uint64_t file = 0;
  std::int64_t changedNs = 0;

  bool operator==(const FileStamp&) const = default;
};

/// An open file; closed when destroyed.
class File {
 public:
  virtual ~File() = default;

  /// Reads up to `out.size()` bytes at `offset`; `got` is less only at the end of the file.
  virtual FileStatus ReadAt(std::uint64_t offset, std::span<char> out, std::size_t& got) = 0;
  /// Writes all bytes at `offset`, or fails.
  virtual FileStatus WriteAt(std::uint64_t offset, std::string_view bytes) = 0;
  virtual FileStatus Resize(std::uint64_t size) = 0;
  /// Returns when what was written is on the disk.
  virtual FileStatus Sync() = 0;
  virtual FileStatus Size(std::uint64_t& size) = 0;
  virtual FileStamp Stamp() { return {}; }
  /// Waits until no other program holds the lock of this file; given up when the file is closed. A
  /// signal that the program handles ends the waiting (EINTR).
  virtual FileStatus Lock() = 0;
  /// Lock() that does not wait: false while another program holds the lock.
  virtual bool LockAtOnce() { return Lock().ok(); }
  /// True when `path` still names this file (and not one that replaced it meanwhile).
  virtual bool IsNamed(const std::string& path) = 0;
};

enum class FileAccess {
  Read,              ///< must exist
  ReadWrite,         ///< must exist
  CreateNew,         ///< must not exist
  CreateOrTruncate,  ///< empty afterwards
  CreateOrKeep,      ///< created when missing, else as it is
};

class FileSystem {
 public:
  virtual ~FileSystem() = default;

  virtual FileStatus Open(const std::string& path, FileAccess access,
                          std::unique_ptr<File>& file) = 0;
  virtual bool Exists(const std::string& path) = 0;
  virtual FileStatus Remove(const std::string& path) = 0;
  /// Replaces `to` in one step: afterwards `to` is the old file or the new one, never a mixture.
  virtual FileStatus Rename(const std::string& from, const std::string& to) = 0;
  /// Rename() that replaces nothing: EEXIST when `to` exists.
  virtual FileStatus RenameToNew(const std::string& from, const std::string& to) = 0;
  /// Makes the names in the folder of `path` durable (a file created, renamed or removed there).
  virtual FileStatus SyncFolderOf(const std::string& path) = 0;
  /// Gives `path` the owner, group and access rights of `model`, as far as this user may; a group
  /// that cannot be kept gets the rights of everybody else.
  virtual FileStatus CopyRights(const std::string& model, const std::string& path) = 0;
  /// True when a new file can take the place of `path` unnoticed: this user may give it
  /// the same owner and group, the old one has no other name (hard link) and no access list.
  virtual bool IsReplaceable(const std::string& path) = 0;

  /// Called with the path before OpenLocked waits for another program.
  std::function<void(const std::string& path)> whenWaiting;
};

/// Opens and locks. Another program may have replaced the file while we waited for its lock: then
/// the new one is opened.
FileStatus OpenLocked(FileSystem& files, const std::string& path, FileAccess access,
                      std::unique_ptr<File>& file);

/// Makes `path`, which is missing and belongs beside `model`, and opens it: it gets the owner,
/// group and rights of `model`, as far as this user may give them, so that who works on the one can
/// work on the other.
FileStatus MakeBeside(FileSystem& files, const std::string& model, const std::string& path,
                      std::unique_ptr<File>& file);

/// The files of this machine.
FileSystem& SystemFiles();

/// The whole file as bytes, at most `limit` of them (a larger file is an error, EFBIG).
FileStatus ReadWholeFile(FileSystem& files, const std::string& path, std::uint64_t limit,
                         std::string& bytes);

/// Replaces the whole file durably: the new bytes go to PATH.tmp, which is synced and renamed over
/// it. After a failure or a crash at any point `path` holds the old bytes or the new ones. When
/// only the folder could not be made durable, the status says NotDurable: the new bytes have the
/// name.
FileStatus ReplaceWholeFile(FileSystem& files, const std::string& path, std::string_view bytes);

/// The same for an open file: as soon as the new one has taken the name, `file` is the new one,
/// which was locked before.
FileStatus ReplaceWholeFile(FileSystem& files, const std::string& path, std::string_view bytes,
                            std::unique_ptr<File>& file);

/// Makes a new file in the same way; EEXIST when there is one already. Of several programs that
/// make a file of one name, exactly one succeeds.
FileStatus CreateWholeFile(FileSystem& files, const std::string& path, std::string_view bytes);

}  // namespace tarvex
