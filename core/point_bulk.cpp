#include "core/point_bulk.h"

#include <algorithm>
#include <cmath>
#include <numeric>
#include <optional>
#include <vector>

#include "core/coordinate_file.h"
#include "core/coordinate_layout.h"
#include "core/number_text.h"
#include "core/point_id.h"
#include "core/string_table.h"
#include "core/text.h"
#include "platform/memory.h"

namespace tarvex {
namespace {

constexpr int kBulkFailedMessage = 1014;

// A point of the batch with its id as it is stored. `place` is where it stood in the batch, so that
// of equal ids the later one wins.
struct Entry {
  PointIdKey key;
  std::uint32_t place = 0;
};

bool HasFiniteCoordinates(const Point& point) {
  return std::isfinite(point.at.northing) && std::isfinite(point.at.easting) &&
         std::isfinite(point.at.elevation);
}

std::size_t FindBadNumberedPoint(std::span<const Point> points) {
  const auto bad = std::find_if(points.begin(), points.end(), [](const Point& point) {
    const auto number = ParseInteger(point.id.view());
    return !HasFiniteCoordinates(point) || !number || *number < 1 || *number > kHighestPointNumber;
  });
  return static_cast<std::size_t>(bad - points.begin());
}

// `ids` are those of the points, normalised.
std::size_t FindBadNamedPoint(std::span<const Point> points, const std::vector<PointId>& ids) {
  std::size_t i = 0;
  while (i < points.size() && HasFiniteCoordinates(points[i]) && !ids[i].empty()) ++i;
  return i;
}

Description OnOneLine(const Description& description) {
  const std::string_view text = description.view();
  return std::none_of(text.begin(), text.end(), IsControl) ? description
                                                           : Description(OneLine(text));
}

std::vector<PointId> NormalisedIds(std::span<const Point> points) {
  std::vector<PointId> ids;
  ids.reserve(points.size());
  for (const Point& point : points) ids.push_back(NormalisePointId(point.id.view()));
  return ids;
}

// The order of the file where every id has a key; nothing when one has not.
std::optional<std::vector<std::uint32_t>> PlacesByKey(const std::vector<PointId>& ids) {
  std::vector<Entry> entries(ids.size());
  for (std::size_t i = 0; i < ids.size(); ++i) {
    const auto key = MakePointIdKey(ids[i].view());
    if (!key) return std::nullopt;
    entries[i] = {*key, static_cast<std::uint32_t>(i)};
  }
  const auto before = [](const Entry& a, const Entry& b) {
    return a.key != b.key ? a.key < b.key : a.place < b.place;
  };
  if (!std::is_sorted(entries.begin(), entries.end(), before)) {
    std::sort(entries.begin(), entries.end(), before);
  }
  std::vector<std::uint32_t> places;
  places.reserve(entries.size());
  for (std::size_t i = 0; i < entries.size(); ++i) {
    const bool replaced = i + 1 < entries.size() && entries[i + 1].key == entries[i].key;
    if (!replaced) places.push_back(entries[i].place);
  }
  return places;
}

// The same by comparing, for ids with leading zeros.
std::vector<std::uint32_t> PlacesByComparison(const std::vector<PointId>& ids) {
  const auto compare = [&ids](std::uint32_t a, std::uint32_t b) {
    return ComparePointIds(ids[a].view(), ids[b].view());
  };
  std::vector<std::uint32_t> places(ids.size());
  std::iota(places.begin(), places.end(), 0U);
  std::stable_sort(places.begin(), places.end(),
                   [&](std::uint32_t a, std::uint32_t b) { return compare(a, b) < 0; });
  std::vector<std::uint32_t> last_of_equals;
  last_of_equals.reserve(places.size());
  for (std::size_t i = 0; i < places.size(); ++i) {
    const bool replaced = i + 1 < places.size() && compare(places[i], places[i + 1]) == 0;
    if (!replaced) last_of_equals.push_back(places[i]);
  }
  return last_of_equals;
}

// The batch in the order of the file, as indexes into `ids`; of equal ids the last.
std::vector<std::uint32_t> PlacesInFileOrder(const std::vector<PointId>& ids) {
  auto places = PlacesByKey(ids);
  return places ? std::move(*places) : PlacesByComparison(ids);
}

// Merges the batch into the records of an alphanumeric file.
class RecordMerger {
 public:
  RecordMerger(const std::string& old_file, std::span<const Point> points,
               const std::vector<PointId>& ids)
      : old_(old_file), points_(points), ids_(ids) {
    merged_.reserve(old_.size() + points.size() * kSize);
    PreferLargePages(merged_.data(), merged_.capacity());
    merged_.append(old_, 0, alphanumeric_layout::kHeaderSize);
  }

  std::string Merge(const std::vector<std::uint32_t>& places) {
    std::size_t at = alphanumeric_layout::kHeaderSize;
    for (std::size_t i = 0; i < places.size(); ++i) {
      FetchAhead(places, i);
      const std::uint32_t place = places[i];
      const PointId& id = ids_[place];
      CopyBefore(id, at);
      const Point& point = points_[place];
      alphanumeric_layout::AppendRecord(
          merged_, {.at = point.at, .description = OnOneLine(point.description), .id = id});
    }
    merged_.append(old_, at, WholeEnd() - at);
    return std::move(merged_);
  }

 private:
  static constexpr std::size_t kSize = alphanumeric_layout::kRecordSize;

  std::size_t WholeEnd() const {
    return old_.size() - (old_.size() - alphanumeric_layout::kHeaderSize) % kSize;
  }

  // A batch in any order is read all over the memory: what comes soon is asked for early.
  void FetchAhead(const std::vector<std::uint32_t>& places, std::size_t i) const {
    constexpr std::size_t kAhead = 24;
    if (i + kAhead >= places.size()) return;
    const std::uint32_t place = places[i + kAhead];
    __builtin_prefetch(&points_[place]);
    __builtin_prefetch(&points_[place].id);
    __builtin_prefetch(&ids_[place]);
  }

  // Copies the old records that order before `id` and drops the one that it replaces.
  void CopyBefore(const PointId& id, std::size_t& at) {
    const std::size_t end = WholeEnd();
    const std::size_t from = at;
    int order = -1;
    while (at < end) {
      order = ComparePointIds(alphanumeric_layout::DecodeId(old_.data() + at).view(), id.view());
      if (order >= 0) break;
      at += kSize;
    }
    merged_.append(old_, from, at - from);
    if (at < end && order == 0) at += kSize;
  }

  const std::string& old_;
  std::span<const Point> points_;
  const std::vector<PointId>& ids_;
  std::string merged_;
};

std::string MergeNumbered(std::string file, std::span<const Point> points, long long last_number,
                          const LocalTime& now) {
  if (file.empty()) file = numeric_layout::EncodeHeader(0, now);
  long long highest = last_number;
  for (const Point& point : points) highest = std::max(highest, LeadingInteger(point.id.view()));
  constexpr std::size_t kSize = numeric_layout::kRecordSize;
  const std::string filler = numeric_layout::FillerRecord();
  file.resize(std::min(file.size(), file.size() / kSize * kSize));
  while (file.size() / kSize - 1 < static_cast<std::size_t>(highest)) file += filler;
  std::string record;
  for (const Point& point : points) {
    record.clear();
    numeric_layout::AppendRecord(record, point.at, OnOneLine(point.description));
    file.replace(static_cast<std::size_t>(LeadingInteger(point.id.view())) * kSize, kSize, record);
  }
  const std::string count = numeric_layout::EncodeHighestNumber(highest);
  return file.replace(0, count.size(), count);
}

}  // namespace

StorePointsResult StorePoints(Job& job, std::span<const Point> points, std::size_t* bad_point) {
  auto stream = OpenCoordinateFile(job);
  if (!stream) return StorePointsResult::NoStream;
  const std::vector<PointId> ids =
      job.alphanumeric ? NormalisedIds(points) : std::vector<PointId>();
  const std::size_t bad =
      job.alphanumeric ? FindBadNamedPoint(points, ids) : FindBadNumberedPoint(points);
  if (bad < points.size()) {
    if (bad_point != nullptr) *bad_point = bad;
    return StorePointsResult::BadPoint;
  }
  if (points.empty()) return StorePointsResult::Stored;
  FileSystem& files = job.host.files();
  std::string old_file;
  FileStatus status = ReadWholeFile(files, job.path, stream->size(), old_file);
  if (status.ok()) {
    const std::string merged =
        job.alphanumeric ? RecordMerger(old_file, points, ids).Merge(PlacesInFileOrder(ids))
                         : MergeNumbered(std::move(old_file), points, job.last_point_number,
                                         job.host.clock().Now());
    status = ReplaceWholeFile(files, job.path, merged);
  }
  if (!status.ok()) {
    job.host.ShowMessage(Strings().Text(kBulkFailedMessage, {job.path, status.Text()}));
    return StorePointsResult::Nothing;
  }
  job.last_stored_point = points.back();
  stream.reset();
  stream = OpenCoordinateFile(job);
  return stream ? StorePointsResult::Stored : StorePointsResult::NoStream;
}

}  // namespace tarvex
