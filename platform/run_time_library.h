// Closed libraries that are loaded at run time and bound by name. Code names a library as it is
// known everywhere ("CoordSys.dll"); here that name becomes this platform's file beside the
// program.
#pragma once

#include <memory>
#include <string>

namespace tarvex {

/// A loaded library; unloaded when destroyed.
class RunTimeLibrary {
 public:
  virtual ~RunTimeLibrary() = default;
  /// The address of an entry point; null when the library has none of that name.
  virtual void* Find(const char* entryName) = 0;
};

class RunTimeLibraries {
 public:
  virtual ~RunTimeLibraries() = default;
  /// Null when the library cannot be loaded; `why` then says so in the system's words.
  virtual std::unique_ptr<RunTimeLibrary> Load(const std::string& name, std::string& why) = 0;
};

/// The libraries of this machine. "X.dll" is looked for as X.so and libX.so: in the folders added
/// with AddRunTimeLibraryFolder, in the program's own folder and in its modules folder.
RunTimeLibraries& SystemRunTimeLibraries();

/// Adds a folder that is looked in before the program's own.
void AddRunTimeLibraryFolder(const std::string& folder);

}  // namespace tarvex
