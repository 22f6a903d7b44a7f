#include "core/coordinates/point_list.h"

#include <algorithm>
#include <new>

#include "platform/memory.h"

namespace tarvex {
namespace {

constexpr std::uint64_t kBlockRecords = 8192;
constexpr std::uint64_t kProgressParts = 100;

// Whether the points from `begin` on have the ids of the other list at the same places.
bool AgreesFrom(std::size_t begin, const PointList& points, const PointList& other) {
  if (points.size() > other.size()) return false;
  for (std::size_t i = begin; i < points.size(); ++i) {
    if (!(points[i].id == other[i].id)) return false;
  }
  return true;
}

LoadPointsResult LoadFrom(CoordinateFile& stream, std::uint64_t count, PointList& points,
                          const PointList* verifyAgainst, const ProgressWindow& progress) {
  points.reserve(static_cast<std::size_t>(count));
  PreferLargePages(points.data(), points.capacity() * sizeof(Point));
  std::string block;
  std::uint64_t first = 0;
  for (std::uint64_t part = 1; part <= kProgressParts; ++part) {
    const std::uint64_t end = count * part / kProgressParts;
    if (end == first) continue;
    while (first < end) {
      const std::uint64_t some = std::min(kBlockRecords, end - first);
      if (!stream.ReadRecords(first, some, block).ok()) return LoadPointsResult::CannotOpen;
      const std::size_t before = points.size();
      stream.store().AppendPoints(block, first, points);
      if (verifyAgainst != nullptr && !AgreesFrom(before, points, *verifyAgainst)) {
        return LoadPointsResult::Mismatch;
      }
      first += some;
    }
    if (progress) progress("\n" + std::to_string(part) + "%");
  }
  return LoadPointsResult::Loaded;
}

LoadPointsResult LoadWhole(CoordinateFile& stream, PointList& points,
                           const PointList* verifyAgainst, const ProgressWindow& progress) {
  try {
    PointList loaded;
    const LoadPointsResult result =
        LoadFrom(stream, stream.recordCount(), loaded, verifyAgainst, progress);
    if (result == LoadPointsResult::Loaded) points.swap(loaded);
    return result;
  } catch (const std::bad_alloc&) {
    return LoadPointsResult::OutOfMemory;
  }
}

}  // namespace

LoadPointsResult LoadAllPoints(Job& job, PointList& points, const PointList* verifyAgainst,
                               const ProgressWindow& progress) {
  const auto stream = OpenForReading(job);
  if (!stream) return LoadPointsResult::CannotOpen;
  return LoadWhole(*stream, points, verifyAgainst, progress);
}

LoadPointsResult LoadAllPoints(CoordinateFile& stream, PointList& points) {
  return LoadWhole(stream, points, nullptr, {});
}

}  // namespace tarvex
