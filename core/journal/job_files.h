// The three files that every observation of a job is kept in.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_set>

#include "platform/file.h"

namespace tarvex {

enum class JobFile : std::uint8_t {
  Coordinates = 0,  ///< NAME.crd
  Raw = 1,          ///< NAME.rw5
  Notes = 2         ///< NAME.not
};

inline constexpr JobFile kJobFiles[] = {JobFile::Coordinates, JobFile::Raw, JobFile::Notes};

/// The path with its extension replaced ("site.crd" and "rw5" give "site.rw5").
std::string PathWithExtension(const std::string& path, std::string_view extension);

/// The path of a job's file beside its coordinate file.
std::string JobFilePath(const std::string& coordinatePath, JobFile file);

/// Where the entries end that this program has in a job's journal: which series of entries is its
/// own, and where the next one goes.
struct JournalPlace {
  std::uint64_t series = 0;  ///< 0: none
  std::uint64_t end = 0;     ///< bytes
  int entries = 0;           ///< not yet settled
  bool newNames = false;     ///< a file was created since the folder was last made durable
};

/// The points that have a block in the notes, as of a file of this stamp and size with this end.
struct NoteIndex {
  bool known = false;
  FileStamp stamp;
  std::uint64_t size = 0;
  std::string end;
  std::unordered_set<std::string> ids;  ///< upper case
};

}  // namespace tarvex
