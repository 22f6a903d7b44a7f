// Writing a whole file of a job anew, so that it holds the old bytes or the new ones whatever
// interrupts it, and stays the file that it is for everybody who shares it.
#pragma once

#include <string>
#include <string_view>

#include "platform/file.h"

namespace tarvex {

/// Replaces the file by a new one (platform/file.h) where that goes unnoticed. A file that belongs
/// to somebody else, has further names or an access list is changed in place instead, through a
/// journal PATH.redo (core/journal/change_journal.h). A missing file is made.
FileStatus RewriteWholeFile(FileSystem& files, const std::string& path, std::string_view bytes);

/// Completes what RewriteWholeFile left half done; to be called before the file is read.
FileStatus FinishRewrite(FileSystem& files, const std::string& path);

/// The text that tells a failed change: `message` where the file is as before, 10 and 20 behind it
/// where the change was made without being durable and where it is pending
/// (core/text/string_table.h).
constexpr int MessageOf(int message, const FileStatus& status) {
  return message + 10 * static_cast<int>(status.effect);
}

}  // namespace tarvex
