#include "app/workflow/data_folder.h"

#include <cstdlib>
#include <filesystem>

namespace tarvex {
namespace {

namespace fs = std::filesystem;

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

// What came with the program stands in ../share/tarvex, seen from the program itself.
fs::path InstalledFolder() {
  std::error_code error;
  const fs::path program = fs::read_symlink("/proc/self/exe", error);
  return program.parent_path().parent_path() / "share" / "tarvex";
}

// Copies what the folder lacks, and a predefined catalogue that is older than the program's; the
// user's own files are never touched.
void Seed(const fs::path& folder, Program& program) {
  std::error_code error;
  fs::create_directories(folder, error);
  const fs::path installed = InstalledFolder();
  if (!error && fs::exists(installed)) {
    fs::copy(installed, folder, fs::copy_options::recursive | fs::copy_options::update_existing,
             error);
  }
  if (!error) return;
  program.console.PrintError("WARNING: the data folder " + folder.string() +
                             " could not be filled: " + error.message() + ".\n");
}

}  // namespace

std::string DataFolder(Program& program) {
  const fs::path folder = ChosenFolder();
  const fs::path mark = folder / "Predef1.csl";
  const fs::path installed = InstalledFolder() / "Predef1.csl";
  std::error_code error;
  const bool seeded = fs::exists(mark, error) &&
                      (!fs::exists(installed, error) ||
                       fs::last_write_time(mark, error) >= fs::last_write_time(installed, error));
  if (!seeded) Seed(folder, program);
  return folder.string() + "/";
}

}  // namespace tarvex
