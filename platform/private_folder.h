// A folder for this program's passing files that no other user can reach: made anew with a name
// that cannot be foreseen and for this user alone, removed with what is in it.
#pragma once

#include <string>

namespace tarvex {

class PrivateFolder {
 public:
  /// Made in the system's folder for such files. Where none can be made, path() is one below which
  /// no file can be opened: what needs the folder fails there, the rest goes on.
  PrivateFolder();
  PrivateFolder(const PrivateFolder&) = delete;
  PrivateFolder& operator=(const PrivateFolder&) = delete;
  ~PrivateFolder();

  /// With its separator at the end.
  const std::string& path() const { return path_; }
  bool made() const { return made_; }

 private:
  std::string path_;
  bool made_ = false;
};

}  // namespace tarvex
