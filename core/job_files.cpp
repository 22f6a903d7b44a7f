#include "core/job_files.h"

namespace tarvex {

std::string PathWithExtension(const std::string& path, std::string_view extension) {
  const std::size_t folder = path.find_last_of('/');
  const std::size_t dot = path.find_last_of('.');
  const bool has_extension =
      dot != std::string::npos && (folder == std::string::npos || dot > folder + 1);
  return path.substr(0, has_extension ? dot : path.size()) + "." + std::string(extension);
}

std::string JobFilePath(const std::string& coordinate_path, JobFile file) {
  switch (file) {
    case JobFile::Raw:
      return PathWithExtension(coordinate_path, "rw5");
    case JobFile::Notes:
      return PathWithExtension(coordinate_path, "not");
    case JobFile::Coordinates:
      break;
  }
  return coordinate_path;
}

}  // namespace tarvex
