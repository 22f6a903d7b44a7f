#include "core/next_id.h"

#include "core/number_text.h"
#include "core/point_store.h"
#include "core/raw_fields.h"
#include "core/raw_file.h"
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
  while (!rawFile.empty()) {
    const std::string_view line = TakeLastLine(rawFile);
    if (stored && !IsMeasured(line)) continue;
    const auto id = StoredPointId(line);
    if (!id || id->empty()) continue;
    if (IsMeasured(line)) return std::string(*id);
    stored = std::string(*id);
  }
  return stored;
}

std::optional<std::string> NextNumber(Job& job, CoordinateFile& stream) {
  const long long last = ParseInteger(job.currentPointId).value_or(0);
  if (last < 1) return NextFreePointId(job, stream);
  for (long long number = last + 1; number <= job.lastPointNumber; ++number) {
    Point point;
    if (ReadPoint(job, std::to_string(number), &stream, point) != ReadPointResult::Found) {
      return std::to_string(number);
    }
  }
  return last >= job.lastPointNumber ? std::to_string(last + 1) : NextFreePointId(job, stream);
}

}  // namespace

std::optional<std::string> NextIdToUse(Job& job, CoordinateFile& stream) {
  FileBytes rawFile;
  (void)LoadFileBytes(job.host.files(), RawFilePath(job), rawFile);
  job.currentPointId = LastUsed(rawFile.view()).value_or(job.lastPointId);
  return job.alphanumeric ? NextFreePointId(job, stream) : NextNumber(job, stream);
}

}  // namespace tarvex
