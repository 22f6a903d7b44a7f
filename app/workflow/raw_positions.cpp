#include "app/workflow/raw_positions.h"

#include "core/angle.h"
#include "core/number_text.h"
#include "core/raw_file.h"
#include "core/text.h"

namespace tarvex {
namespace {

constexpr std::uint64_t kLargestRawFile = std::uint64_t{1} << 32U;

// The text of a field by its two letters; the description, which may hold anything, comes last.
std::optional<std::string_view> Field(std::string_view record, std::string_view letters) {
  record = record.substr(0, record.find(",--"));
  while (!record.empty()) {
    const std::size_t comma = record.find(',');
    const std::string_view field = record.substr(0, comma);
    if (field.starts_with(letters)) return field.substr(letters.size());
    if (comma == std::string_view::npos) break;
    record.remove_prefix(comma + 1);
  }
  return std::nullopt;
}

double Angle(std::string_view packed) {
  return PackedToDegrees(LeadingDouble(packed)) * kRadiansPerDegree;
}

// Hands every point with a position to `visit`: its id as the record has it, and the position.
template <typename Visit>
void ForEachPosition(std::string_view raw_file, DistanceUnit unit, Visit visit) {
  double rod_m = 0.0;
  while (const auto line = TakeLine(raw_file)) {
    if (line->starts_with("LS,")) {
      if (const auto rod = Field(*line, "HR")) rod_m = ToMetres(LeadingDouble(*rod), unit);
    }
    if (!line->starts_with("GPS,")) continue;
    const auto id = Field(*line, "PN");
    const auto latitude = Field(*line, "LA");
    const auto longitude = Field(*line, "LN");
    const auto height = Field(*line, "EL");
    if (!id || !latitude || !longitude || !height) continue;
    visit(*id, Geodetic{Angle(*latitude), Angle(*longitude), LeadingDouble(*height) - rod_m});
  }
}

}  // namespace

bool ReadRawFile(Job& job, std::string& bytes, std::string& problem) {
  const std::string path = RawFilePath(job);
  const FileStatus status = ReadWholeFile(job.host.files(), path, kLargestRawFile, bytes);
  if (!status.ok()) problem = "The raw file " + path + " cannot be read: " + status.Text() + ".";
  return status.ok();
}

std::optional<Geodetic> FindRawPosition(std::string_view raw_file, std::string_view point_id,
                                        DistanceUnit unit) {
  std::optional<Geodetic> found;
  ForEachPosition(raw_file, unit, [&](std::string_view id, const Geodetic& position) {
    if (EqualsIgnoringCase(id, point_id)) found = position;
  });
  return found;
}

RawPositions AllRawPositions(std::string_view raw_file, DistanceUnit unit) {
  RawPositions positions;
  ForEachPosition(raw_file, unit, [&](std::string_view id, const Geodetic& position) {
    std::string key(id);
    for (char& c : key) c = UpperCase(c);
    positions.insert_or_assign(std::move(key), position);
  });
  return positions;
}

}  // namespace tarvex
