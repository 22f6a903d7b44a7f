#include "core/coordinates/point_bulk.h"

#include <algorithm>

#include "core/journal/file_rewrite.h"
#include "core/text/core_texts.h"
#include "core/text/string_table.h"

namespace tarvex {
StorePointsResult StorePoints(Job& job, std::span<const Point> points, std::size_t* badPoint) {
  const auto stream = OpenCoordinateFile(job);
  if (!stream) return StorePointsResult::NoStream;
  return StorePoints(job, points, *stream, badPoint);
}

StorePointsResult StorePoints(Job& job, std::span<const Point> points, CoordinateFile& stream,
                              std::size_t* badPoint) {
  const auto refused = std::find_if_not(points.begin(), points.end(), [&](const Point& point) {
    return IsFinite(point.at) && stream.store().TakesInBulk(point.id);
  });
  const auto bad = static_cast<std::size_t>(refused - points.begin());
  if (bad < points.size()) {
    if (badPoint != nullptr) *badPoint = bad;
    return StorePointsResult::BadPoint;
  }
  if (points.empty()) return StorePointsResult::Stored;
  std::string oldFile(static_cast<std::size_t>(stream.size()), '\0');
  std::size_t got = 0;
  FileStatus status = stream.ReadBytes(0, oldFile, got);
  oldFile.resize(got);
  if (status.ok()) {
    status = stream.ReplaceWith(stream.store().Merge(std::move(oldFile), points));
  }
  if (!status.ok()) {
    const int message = MessageOf(kTextPointsNotStored, status);
    job.host.ShowMessage(Strings().Text(message, {job.path, status.Text()}));
  }
  if (!status.done()) return StorePointsResult::Nothing;
  job.store.lastStoredPoint = points.back();
  if (!stream.store().TakeLastPoint().ok()) return StorePointsResult::NoStream;
  return status.ok() ? StorePointsResult::Stored : StorePointsResult::StoredNotDurable;
}

}  // namespace tarvex
