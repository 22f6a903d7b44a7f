// The files of a POSIX system.
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <vector>

#include "platform/file.h"

namespace tarvex {
namespace {

FileStatus LastStatus() {
  return {errno};
}

class PosixFile final : public File {
 public:
  explicit PosixFile(int descriptor) : descriptor_(descriptor) {}
  PosixFile(const PosixFile&) = delete;
  PosixFile& operator=(const PosixFile&) = delete;
  ~PosixFile() override { ::close(descriptor_); }

  FileStatus ReadAt(std::uint64_t offset, std::span<char> out, std::size_t& got) override {
    std::size_t done = 0;
    while (done < out.size()) {
      const ssize_t n = ::pread(descriptor_, out.data() + done, out.size() - done,
                                static_cast<off_t>(offset + done));
      if (n < 0 && errno == EINTR) continue;
      if (n < 0) return LastStatus();
      if (n == 0) break;
      done += static_cast<std::size_t>(n);
    }
    got = done;
    return {};
  }

  FileStatus WriteAt(std::uint64_t offset, std::string_view bytes) override {
    while (!bytes.empty()) {
      const std::size_t piece = std::min(bytes.size(), kLargePiece);
      const ssize_t n = ::pwrite(descriptor_, bytes.data(), piece, static_cast<off_t>(offset));
      if (n < 0 && errno == EINTR) continue;
      if (n < 0) return LastStatus();
      if (n == 0) return {ENOSPC};
      if (piece == kLargePiece) StartWriting(offset, n);
      bytes.remove_prefix(static_cast<std::size_t>(n));
      offset += static_cast<std::uint64_t>(n);
    }
    return {};
  }

  FileStatus Resize(std::uint64_t size) override {
    return ::ftruncate(descriptor_, static_cast<off_t>(size)) == 0 ? FileStatus{} : LastStatus();
  }

  FileStatus Sync() override { return ::fdatasync(descriptor_) == 0 ? FileStatus{} : LastStatus(); }

  FileStatus Size(std::uint64_t& size) override {
    struct stat info{};
    if (::fstat(descriptor_, &info) != 0) return LastStatus();
    size = static_cast<std::uint64_t>(info.st_size);
    return {};
  }

  FileStamp Stamp() override {
    struct stat info{};
    if (::fstat(descriptor_, &info) != 0) return {};
    constexpr std::int64_t kNanoseconds = 1'000'000'000;
    return {.file = static_cast<std::uint64_t>(info.st_ino),
            .changedNs = std::int64_t{info.st_ctim.tv_sec} * kNanoseconds + info.st_ctim.tv_nsec};
  }

  bool LockAtOnce() override { return ::flock(descriptor_, LOCK_EX | LOCK_NB) == 0; }

  FileStatus Lock() override {
    return ::flock(descriptor_, LOCK_EX) == 0 ? FileStatus{} : LastStatus();
  }

  bool IsNamed(const std::string& path) override {
    struct stat mine{};
    struct stat named{};
    return ::fstat(descriptor_, &mine) == 0 && ::stat(path.c_str(), &named) == 0 &&
           mine.st_dev == named.st_dev && mine.st_ino == named.st_ino;
  }

 private:
  // Lets the disk begin with a large piece while the next is copied; Sync() then waits less.
  void StartWriting(std::uint64_t offset, ssize_t size) const {
#ifdef SYNC_FILE_RANGE_WRITE
    (void)::sync_file_range(descriptor_, static_cast<off_t>(offset), size, SYNC_FILE_RANGE_WRITE);
#else
    (void)offset;
    (void)size;
#endif
  }

  static constexpr std::size_t kLargePiece = std::size_t{4} << 20U;

  int descriptor_;
};

int OpenFlags(FileAccess access) {
  switch (access) {
    case FileAccess::Read:
      return O_RDONLY;
    case FileAccess::ReadWrite:
      return O_RDWR;
    case FileAccess::CreateNew:
      return O_RDWR | O_CREAT | O_EXCL;
    case FileAccess::CreateOrTruncate:
      return O_RDWR | O_CREAT | O_TRUNC;
    case FileAccess::CreateOrKeep:
      return O_RDWR | O_CREAT;
  }
  return O_RDONLY;
}

class PosixFileSystem final : public FileSystem {
 public:
  FileStatus Open(const std::string& path, FileAccess access,
                  std::unique_ptr<File>& file) override {
    const int descriptor = ::open(path.c_str(), OpenFlags(access) | O_CLOEXEC, 0666);
    if (descriptor < 0) return LastStatus();
    if (access == FileAccess::Read && IsFolder(descriptor)) {  // the system refuses the others
      ::close(descriptor);
      return {EISDIR};
    }
    file = std::make_unique<PosixFile>(descriptor);
    return {};
  }

  bool Exists(const std::string& path) override { return ::access(path.c_str(), F_OK) == 0; }

  FileStatus Remove(const std::string& path) override {
    return ::unlink(path.c_str()) == 0 ? FileStatus{} : LastStatus();
  }

  FileStatus Rename(const std::string& from, const std::string& to) override {
    return std::rename(from.c_str(), to.c_str()) == 0 ? FileStatus{} : LastStatus();
  }

  FileStatus RenameToNew(const std::string& from, const std::string& to) override {
    if (::renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE) == 0) return {};
    if (errno != EINVAL && errno != ENOSYS) return LastStatus();
    // A file system that cannot do that can link.
    if (::link(from.c_str(), to.c_str()) != 0) return LastStatus();
    return Remove(from);
  }

  FileStatus SyncFolderOf(const std::string& path) override {
    std::string folder = std::filesystem::path(path).parent_path().string();
    if (folder.empty()) folder = ".";
    const int descriptor = ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (descriptor < 0 && errno != EACCES) return LastStatus();
    if (descriptor < 0) {  // a folder that may be written but not read: everything goes to the disk
      ::sync();
      return {};
    }
    const FileStatus status = ::fsync(descriptor) == 0 ? FileStatus{} : LastStatus();
    ::close(descriptor);
    return status;
  }

  FileStatus CopyRights(const std::string& model, const std::string& path) override {
    struct stat info{};
    if (::stat(model.c_str(), &info) != 0) return LastStatus();
    mode_t rights = info.st_mode & 07777;
    if (::chown(path.c_str(), info.st_uid, info.st_gid) != 0 &&
        ::chown(path.c_str(), kSameOwner, info.st_gid) != 0) {
      rights = (rights & ~mode_t{070}) | (rights & 07) << 3U;
    }
    return ::chmod(path.c_str(), rights) == 0 ? FileStatus{} : LastStatus();
  }

  bool IsReplaceable(const std::string& path) override {
    struct stat info{};
    if (::stat(path.c_str(), &info) != 0) return true;
    const bool privileged = ::geteuid() == 0;
    return info.st_nlink == 1 && (privileged || info.st_uid == ::geteuid()) &&
           (privileged || IsOurGroup(info.st_gid)) && !HasAccessList(path);
  }

 private:
  static constexpr uid_t kSameOwner = static_cast<uid_t>(-1);

  static bool IsFolder(int descriptor) {
    struct stat info{};
    return ::fstat(descriptor, &info) == 0 && S_ISDIR(info.st_mode);
  }

  static bool IsOurGroup(gid_t group) {
    if (group == ::getegid()) return true;
    const int count = ::getgroups(0, nullptr);
    std::vector<gid_t> groups(static_cast<std::size_t>(std::max(count, 0)));
    return ::getgroups(count, groups.data()) >= 0 &&
           std::find(groups.begin(), groups.end(), group) != groups.end();
  }

  static bool HasAccessList(const std::string& path) {
    return ::getxattr(path.c_str(), "system.posix_acl_access", nullptr, 0) > 0;
  }
};

}  // namespace

FileSystem& SystemFiles() {
  static PosixFileSystem files;
  return files;
}

}  // namespace tarvex
