#include "app/workflow/data_folder.h"

#include <cstdlib>
#include <filesystem>
#include <memory>
#include <vector>

namespace tarvex {
namespace {

namespace fs = std::filesystem;

constexpr const char* kCatalogue = "Predef1.csl";

std::string Environment(const char* name) {
  const char* value = std::getenv(name);
  return value == nullptr ? std::string() : value;
}

fs::path ChosenFolder() {
  if (const std::string own = Environment("TARVEX_DATA"); !own.empty()) return own;
  if (const std::string data = Environment("XDG_DATA_HOME"); !data.empty())
    return fs::path(data) / "tarvex";
  const std::string home = Environment("HOME");
  return fs::path(home.empty() ? "." : home) / ".local" / "share" / "tarvex";
}

// What came with the program is in ../share/tarvex, seen from the program itself.
fs::path InstalledFolder() {
  std::error_code error;
  const fs::path program = fs::read_symlink("/proc/self/exe", error);
  return program.parent_path().parent_path() / "share" / "tarvex";
}

// The predefined catalogue ends in this line: a copy without it was cut short.
bool IsWholeCatalogue(FileSystem& files, const fs::path& path) {
  constexpr std::string_view kLastLine = "\n# end\n";
  std::unique_ptr<File> file;
  std::uint64_t size = 0;
  if (!files.Open(path.string(), FileAccess::Read, file).ok() || !file->Size(size).ok()) {
    return false;
  }
  char end[kLastLine.size()];
  std::size_t got = 0;
  return size >= sizeof(end) && file->ReadAt(size - sizeof(end), end, got).ok() &&
         std::string_view(end, got) == kLastLine;
}

bool IsOlder(const fs::path& copy, const fs::path& original) {
  std::error_code error;
  return fs::last_write_time(copy, error) < fs::last_write_time(original, error);
}

// One file, whole and durable or not at all: the copy takes its name when it is complete.
FileStatus CopyFile(FileSystem& files, const fs::path& from, const fs::path& to) {
  constexpr std::uint64_t kLargest = 1u << 30;
  std::string bytes;
  const FileStatus status = ReadWholeFile(files, from.string(), kLargest, bytes);
  return status.ok() ? ReplaceWholeFile(files, to.string(), bytes) : status;
}

// What came with the program, the predefined catalogue last: where it is, the rest is too.
std::vector<fs::path> InstalledFiles(const fs::path& installed) {
  std::vector<fs::path> paths;
  std::error_code error;
  for (auto at = fs::recursive_directory_iterator(installed, error);
       !error && at != fs::recursive_directory_iterator(); at.increment(error)) {
    std::error_code unknown;
    if (!at->is_regular_file(unknown)) continue;
    const fs::path path = at->path().lexically_relative(installed);
    if (path != kCatalogue) paths.push_back(path);
  }
  paths.emplace_back(kCatalogue);
  return paths;
}

// Copies what the folder lacks, and what is older than the program's; the user's own files are
// never touched. Returns what went wrong, in words.
std::string Seed(const fs::path& folder, const fs::path& installed, FileSystem& files) {
  for (const fs::path& path : InstalledFiles(installed)) {
    const fs::path to = folder / path;
    const bool whole = path != kCatalogue || IsWholeCatalogue(files, to);
    if (whole && files.Exists(to.string()) && !IsOlder(to, installed / path)) continue;
    std::error_code error;
    fs::create_directories(to.parent_path(), error);
    if (error) return to.parent_path().string() + ": " + error.message();
    const FileStatus status = CopyFile(files, installed / path, to);
    if (!status.ok()) return to.string() + ": " + status.Text();
  }
  return "";
}

}  // namespace

std::string DataFolder(const Workplace& work) {
  const fs::path folder = ChosenFolder();
  const fs::path mark = folder / kCatalogue;
  const fs::path installed = InstalledFolder();
  std::error_code error;
  if (!fs::exists(installed / kCatalogue, error)) return folder.string() + "/";
  if (IsWholeCatalogue(work.files, mark) && !IsOlder(mark, installed / kCatalogue)) {
    return folder.string() + "/";
  }
  // Two programs that start at once fill the folder one after the other.
  std::unique_ptr<File> lock;
  fs::create_directories(folder, error);
  const std::string lockPath = (folder / ".filling").string();
  const bool locked = OpenLocked(work.files, lockPath, FileAccess::CreateOrKeep, lock).ok();
  const std::string problem = Seed(folder, installed, work.files);
  if (locked) (void)work.files.Remove(lockPath);
  if (!problem.empty()) {
    work.observer.OnWarning("the data folder " + folder.string() + " could not be filled (" +
                            problem + "); the next start tries again.\n");
  }
  return folder.string() + "/";
}

}  // namespace tarvex
