// Runs the built program as a person would, in a folder of its own.
#pragma once

#include <sys/types.h>

#include <string>
#include <vector>

#include "tests/support/scratch_folder.h"

namespace tarvex {

struct ProgramResult {
  int exitCode = -1;  ///< 128 + the signal when one ended it
  std::string output;
  std::string errors;
};

class ProgramFolder {
 public:
  /// Runs `tarvex` with the words of `line` (blanks separate, double quotes hold together) to its
  /// end.
  ProgramResult Run(const std::string& line, const std::string& input = "");
  /// Starts it and goes on; its output goes to the files OUT and ERR of the folder.
  pid_t Start(const std::string& line, const std::string& input = "");
  ProgramResult Finish(pid_t process);

  /// Another `tarvex` than the one that was built.
  void UseProgram(const std::string& path) { program_ = path; }

  std::string Path(const std::string& name) const { return folder_.Path(name); }
  std::string Read(const std::string& name) const;
  void Write(const std::string& name, const std::string& bytes) const;

 private:
  ScratchFolder folder_;
  std::string program_ = TARVEX_PROGRAM;
};

}  // namespace tarvex
