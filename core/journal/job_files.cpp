#include "core/journal/job_files.h"

namespace tarvex {

std::string PathWithExtension(const std::string& path, std::string_view extension) {
  const std::size_t folder = path.find_last_of('/');
  const std::size_t dot = path.find_last_of('.');
  const bool hasExtension =
      dot != std::string::npos && (folder == std::string::npos || dot > folder + 1);
  return path.substr(0, hasExtension ? dot : path.size()) + "." + std::string(extension);
}

std::string JobFilePath(const std::string& coordinatePath, JobFile file) {
  switch (file) {
    case JobFile::Raw:
      return PathWithExtension(coordinatePath, "rw5");
    case JobFile::Notes:
      return PathWithExtension(coordinatePath, "not");
    case JobFile::Coordinates:
      break;
  }
  return coordinatePath;
}

}  // namespace tarvex
