#include <cstdlib>
#include <filesystem>
#include <system_error>

#include "platform/private_folder.h"

namespace tarvex {
namespace {

constexpr const char* kNowhere = "/dev/null/";  // a file: nothing is below it
constexpr const char* kUsual = "/tmp";

}  // namespace

// mkdtemp makes the folder or fails, whatever else has the name, and leaves it to its owner alone.
PrivateFolder::PrivateFolder() : path_(kNowhere) {
  std::error_code error;
  const std::filesystem::path told = std::filesystem::temp_directory_path(error);
  for (const std::filesystem::path& parent :
       {error ? std::filesystem::path(kUsual) : told, std::filesystem::path(kUsual)}) {
    std::string name = (parent / "tarvex-XXXXXX").string();
    if (::mkdtemp(name.data()) == nullptr) continue;
    path_ = name + "/";
    made_ = true;
    return;
  }
}

PrivateFolder::~PrivateFolder() {
  if (!made_) return;
  std::error_code error;  // what cannot be removed is the user's own, and of no harm
  std::filesystem::remove_all(path_, error);
}

}  // namespace tarvex
