#include "app/cli/result_file.h"

namespace tarvex {

ExitCode WriteResultFile(Program& program, const std::string& path, std::string_view text,
                         bool overwrite) {
  if (!overwrite && program.files.Exists(path)) {
    return program.Fail(path + " exists; nothing was written. (--overwrite replaces it.)");
  }
  const FileStatus status = ReplaceWholeFile(program.files, path, text);
  if (!status.ok()) return program.Fail(path + " cannot be written: " + status.Text() + ".");
  program.console.PrintError("Wrote " + path + ".\n");
  return ExitCode::Done;
}

}  // namespace tarvex
