#include "core/observations/next_id.h"

#include <map>

#include "core/raw_data/raw_fields.h"
#include "core/raw_data/raw_file.h"
#include "platform/file_bytes.h"

namespace tarvex {
namespace {

// The last line of `text`, which is taken off it.
std::string_view TakeLastLine(std::string_view& text) {
  const std::size_t start = text.rfind('\n');
  const std::string_view line = start == std::string_view::npos ? text : text.substr(start + 1);
  text = text.substr(0, start == std::string_view::npos ? 0 : start);
  return line;
}

std::optional<std::string> LastUsed(std::string_view rawFile) {
  std::optional<std::string> stored;
  std::map<std::string_view, int> takenBack;  // stores that are still to come, going backwards
  while (!rawFile.empty()) {
    const std::string_view line = TakeLastLine(rawFile);
    if (const auto id = TakenBackPointId(line)) ++takenBack[*id];
    if (stored && !IsMeasured(line)) continue;
    const auto id = StoredPointId(line);
    if (!id || id->empty()) continue;
    if (IsMeasured(line)) {
      const auto back = takenBack.find(*id);
      if (back == takenBack.end()) return std::string(*id);
      if (--back->second == 0) takenBack.erase(back);
      continue;
    }
    stored = std::string(*id);
  }
  return stored;
}

}  // namespace

std::optional<std::string> NextIdToUse(Job& job, CoordinateFile& stream) {
  FileBytes rawFile;
  (void)LoadFileBytes(job.host.files(), RawFilePath(job), rawFile);
  job.ids.current = LastUsed(rawFile.view()).value_or(job.store.lastPointId);
  return stream.store().NextUnused(job.ids);
}

}  // namespace tarvex
