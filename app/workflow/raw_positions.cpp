#include "app/workflow/raw_positions.h"

#include <utility>
#include <vector>

#include "app/workflow/put_back_records.h"
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

// Hands every point with a position to `visit`: its id as the record has it, the position, and
// whether it is only put back. The ids of stores that were taken back go to `takeBack`.
template <typename Visit, typename TakeBack>
void ForEachPosition(std::string_view rawFile, DistanceUnit unit, Visit visit, TakeBack takeBack) {
  double rodM = 0.0;
  PutBackRecords putBack;
  while (const auto line = TakeLine(rawFile)) {
    if (line->starts_with("LS,")) {
      if (const auto rod = RawField(*line, "HR")) rodM = ToMetres(LeadingDouble(*rod), unit);
    }
    if (const auto id = TakenBackPointId(*line)) takeBack(*id);
    const bool again = putBack.Take(*line);
    if (!line->starts_with("GPS,")) continue;
    const auto id = RawField(*line, "PN");
    const auto latitude = RawField(*line, "LA");
    const auto longitude = RawField(*line, "LN");
    const auto height = RawField(*line, "EL");
    if (!id || !latitude || !longitude || !height) continue;
    visit(*id, Geodetic{Angle(*latitude), Angle(*longitude), LeadingDouble(*height) - rodM}, again);
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
  std::vector<Geodetic> found;
  ForEachPosition(
      rawFile, unit,
      [&](std::string_view id, const Geodetic& position, bool again) {
        if (!EqualsIgnoringCase(id, pointId)) return;
        if (again && !found.empty()) found.pop_back();
        found.push_back(position);
      },
      [&](std::string_view id) {
        if (EqualsIgnoringCase(id, pointId) && !found.empty()) found.pop_back();
      });
  return found.empty() ? std::nullopt : std::optional(found.back());
}

RawPositions AllRawPositions(std::string_view rawFile, DistanceUnit unit) {
  RawPositions positions;
  std::unordered_map<std::string, std::vector<Geodetic>> earlier;
  ForEachPosition(
      rawFile, unit,
      [&](std::string_view id, const Geodetic& position, bool again) {
        const auto [at, isNew] = positions.try_emplace(UpperCase(id), position);
        const Geodetic before = std::exchange(at->second, position);
        if (!isNew && !again) earlier[at->first].push_back(before);
      },
      [&](std::string_view id) {
        const auto at = positions.find(UpperCase(id));
        if (at == positions.end()) return;
        std::vector<Geodetic>& before = earlier[at->first];
        if (before.empty()) {
          positions.erase(at);
          return;
        }
        at->second = before.back();
        before.pop_back();
      });
  return positions;
}

}  // namespace tarvex
