#include "app/workflow/raw_positions.h"

#include "core/raw_data/raw_fields.h"
#include "core/raw_data/raw_file.h"
#include "core/text/number_text.h"
#include "core/text/text.h"
#include "core/units/angle.h"

namespace tarvex {
namespace {

constexpr std::uint64_t kLargestRawFile = std::uint64_t{1} << 32U;

double Angle(std::string_view packed) {
  return PackedToDegrees(LeadingDouble(packed)) * kRadiansPerDegree;
}

// Hands every point with a position to `visit`: its id as the record has it, and the position.
template <typename Visit>
void ForEachPosition(std::string_view rawFile, DistanceUnit unit, Visit visit) {
  double rodM = 0.0;
  while (const auto line = TakeLine(rawFile)) {
    if (line->starts_with("LS,")) {
      if (const auto rod = RawField(*line, "HR")) rodM = ToMetres(LeadingDouble(*rod), unit);
    }
    if (!line->starts_with("GPS,")) continue;
    const auto id = RawField(*line, "PN");
    const auto latitude = RawField(*line, "LA");
    const auto longitude = RawField(*line, "LN");
    const auto height = RawField(*line, "EL");
    if (!id || !latitude || !longitude || !height) continue;
    visit(*id, Geodetic{Angle(*latitude), Angle(*longitude), LeadingDouble(*height) - rodM});
  }
}

}  // namespace

bool ReadRawFile(Job& job, std::string& bytes, std::string& problem) {
  const std::string path = RawFilePath(job);
  const FileStatus status = ReadWholeFile(job.host.files(), path, kLargestRawFile, bytes);
  if (!status.ok()) problem = "The raw file " + path + " cannot be read: " + status.Text() + ".";
  return status.ok();
}

std::optional<Geodetic> FindRawPosition(std::string_view rawFile, std::string_view pointId,
                                        DistanceUnit unit) {
  std::optional<Geodetic> found;
  ForEachPosition(rawFile, unit, [&](std::string_view id, const Geodetic& position) {
    if (EqualsIgnoringCase(id, pointId)) found = position;
  });
  return found;
}

RawPositions AllRawPositions(std::string_view rawFile, DistanceUnit unit) {
  RawPositions positions;
  ForEachPosition(rawFile, unit, [&](std::string_view id, const Geodetic& position) {
    std::string key(id);
    for (char& c : key) c = UpperCase(c);
    positions.insert_or_assign(std::move(key), position);
  });
  return positions;
}

}  // namespace tarvex
