#include "core/raw_data/raw_header.h"

#include "core/raw_data/raw_fields.h"
#include "core/raw_data/raw_file.h"
#include "core/text/number_text.h"
#include "core/text/text.h"

namespace tarvex {
namespace {

constexpr std::size_t kHeaderBytes = 4096;

RawMode TakeMode(std::string_view record) {
  RawMode mode;
  const auto number = [record](std::string_view tag) -> std::optional<double> {
    const auto field = RawField(record, tag);
    return field ? ParseNumber(*field) : std::nullopt;
  };
  const auto direction = number("AD");
  if (direction == 0.0 || direction == 1.0) mode.azimuthsFromSouth = *direction == 1.0;
  const auto unit = number("UN");
  if (unit == 0.0 || unit == 1.0 || unit == 2.0) {
    mode.unit = static_cast<DistanceUnit>(2 - static_cast<int>(*unit));
  }
  mode.scaleFactor = number("SF");
  return mode;
}

}  // namespace

std::optional<RawMode> ParseRawMode(std::string_view text) {
  while (const auto line = TakeLine(text)) {
    if (RawCode(*line) == "MO") return TakeMode(*line);
  }
  return std::nullopt;
}

std::optional<RawMode> ReadRawMode(Job& job) {
  std::unique_ptr<File> file;
  if (!job.host.files().Open(RawFilePath(job), FileAccess::Read, file).ok()) return std::nullopt;
  std::string bytes(kHeaderBytes, '\0');
  std::size_t got = 0;
  if (!file->ReadAt(0, bytes, got).ok()) return std::nullopt;
  return ParseRawMode(std::string_view(bytes).substr(0, got));
}

}  // namespace tarvex
