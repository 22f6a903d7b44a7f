#include "core/coordinates/record_merge.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <numeric>
#include <optional>
#include <vector>

#include "core/coordinates/coordinate_layout.h"
#include "core/points/point_id.h"
#include "platform/memory.h"

namespace tarvex {
namespace {

constexpr std::size_t kHeaderSize = alphanumeric_layout::kHeaderSize;
constexpr std::size_t kRecordSize = alphanumeric_layout::kRecordSize;

// A point of the batch: the key of its id, and where it stood, so that of equal ids the later wins.
struct Entry {
  PointIdKey key;
  std::uint32_t place = 0;
};

// The batch as a file of its own with this header, in its own order. It is read in any order later,
// which large pages make faster.
std::string EncodeBatch(std::string_view header, std::span<const Point> points) {
  std::string batch;
  batch.reserve(header.size() + points.size() * kRecordSize);
  PreferLargePages(batch.data(), batch.capacity());
  batch += header;
  for (const Point& point : points) {
    alphanumeric_layout::AppendRecord(batch, {.at = point.at,
                                              .description = OnOneLine(point.description),
                                              .id = NormalisePointId(point.id.view())});
  }
  return batch;
}

std::size_t RecordCount(const std::string& file) {
  return (file.size() - kHeaderSize) / kRecordSize;
}

const char* RecordAt(const std::string& file, std::size_t place) {
  return file.data() + kHeaderSize + place * kRecordSize;
}

PointId IdAt(const std::string& file, std::size_t place) {
  return alphanumeric_layout::DecodeId(RecordAt(file, place));
}

std::size_t KeyByte(const PointIdKey& key, unsigned byte) {
  const std::uint64_t half = byte < 8 ? key.low : key.high;
  return static_cast<std::size_t>(half >> (8U * (byte % 8U)) & 0xFFU);
}

// Ascending by key, equal keys in the order of the batch: a counting sort byte for byte from the
// lowest on, which scattered ids need. Bytes that all keys share cost nothing.
void SortByKey(std::vector<Entry>& entries) {
  const auto before = [](const Entry& a, const Entry& b) { return a.key < b.key; };
  if (std::is_sorted(entries.begin(), entries.end(), before)) return;
  std::vector<Entry> sorted(entries.size());
  for (unsigned byte = 0; byte < sizeof(PointIdKey); ++byte) {
    std::array<std::size_t, 257> starts{};
    for (const Entry& entry : entries) ++starts[KeyByte(entry.key, byte) + 1];
    if (std::find(starts.begin(), starts.end(), entries.size()) != starts.end()) continue;
    std::partial_sum(starts.begin(), starts.end(), starts.begin());
    for (const Entry& entry : entries) sorted[starts[KeyByte(entry.key, byte)]++] = entry;
    entries.swap(sorted);
  }
}

// The order of the file where every id has a key; nothing when one has not.
std::optional<std::vector<std::uint32_t>> PlacesByKey(const std::string& batch) {
  std::vector<Entry> entries(RecordCount(batch));
  for (std::size_t i = 0; i < entries.size(); ++i) {
    const auto key = MakePointIdKey(IdAt(batch, i).view());
    if (!key) return std::nullopt;
    entries[i] = {*key, static_cast<std::uint32_t>(i)};
  }
  SortByKey(entries);
  std::vector<std::uint32_t> places;
  places.reserve(entries.size());
  for (std::size_t i = 0; i < entries.size(); ++i) {
    const bool replaced = i + 1 < entries.size() && entries[i + 1].key == entries[i].key;
    if (!replaced) places.push_back(entries[i].place);
  }
  return places;
}

// The same by comparing, for ids with leading zeros.
std::vector<std::uint32_t> PlacesByComparison(const std::string& batch) {
  const auto compare = [&batch](std::uint32_t a, std::uint32_t b) {
    return ComparePointIds(IdAt(batch, a).view(), IdAt(batch, b).view());
  };
  std::vector<std::uint32_t> places(RecordCount(batch));
  std::iota(places.begin(), places.end(), 0U);
  std::stable_sort(places.begin(), places.end(),
                   [&](std::uint32_t a, std::uint32_t b) { return compare(a, b) < 0; });
  std::vector<std::uint32_t> lastOfEquals;
  lastOfEquals.reserve(places.size());
  for (std::size_t i = 0; i < places.size(); ++i) {
    const bool replaced = i + 1 < places.size() && compare(places[i], places[i + 1]) == 0;
    if (!replaced) lastOfEquals.push_back(places[i]);
  }
  return lastOfEquals;
}

// The batch in the order of the file, as places in it; of equal ids the last.
std::vector<std::uint32_t> PlacesInFileOrder(const std::string& batch) {
  auto places = PlacesByKey(batch);
  return places ? std::move(*places) : PlacesByComparison(batch);
}

// Merges the records of the batch into those of the file.
class RecordMerger {
 public:
  RecordMerger(const std::string& oldFile, const std::string& batch)
      : old_(oldFile), batch_(batch) {
    merged_.reserve(old_.size() + batch_.size());
    PreferLargePages(merged_.data(), merged_.capacity());
    merged_.append(old_, 0, at_);
  }

  std::string Merge(const std::vector<std::uint32_t>& places) {
    for (std::size_t i = 0; i < places.size(); ++i) {
      FetchAhead(places, i);
      const char* record = RecordAt(batch_, places[i]);
      if (at_ < end_) CopyBefore(alphanumeric_layout::DecodeId(record));
      merged_.append(record, kRecordSize);
    }
    merged_.append(old_, at_, end_ - at_);
    return std::move(merged_);
  }

 private:
  // A batch in any order is read all over the memory: what comes soon is asked for early.
  void FetchAhead(const std::vector<std::uint32_t>& places, std::size_t i) const {
    constexpr std::size_t kAhead = 24;
    if (i + kAhead >= places.size()) return;
    const char* record = RecordAt(batch_, places[i + kAhead]);
    __builtin_prefetch(record);
    __builtin_prefetch(record + kRecordSize - 1);
  }

  // Copies the old records that order before `id` and drops the one that it replaces.
  void CopyBefore(const PointId& id) {
    const std::size_t from = at_;
    int order = -1;
    while (at_ < end_) {
      order = ComparePointIds(alphanumeric_layout::DecodeId(old_.data() + at_).view(), id.view());
      if (order >= 0) break;
      at_ += kRecordSize;
    }
    merged_.append(old_, from, at_ - from);
    if (order == 0) at_ += kRecordSize;
  }

  const std::string& old_;
  const std::string& batch_;
  std::size_t at_ = kHeaderSize;  // in the old file: what is not yet copied
  std::size_t end_ = old_.size() - (old_.size() - at_) % kRecordSize;
  std::string merged_;
};

}  // namespace

std::string MergeRecords(const std::string& oldFile, std::span<const Point> points) {
  std::string batch = EncodeBatch(std::string_view(oldFile).substr(0, kHeaderSize), points);
  const std::vector<std::uint32_t> places = PlacesInFileOrder(batch);
  const bool inOrder =
      places.size() == points.size() && std::is_sorted(places.begin(), places.end());
  if (inOrder && RecordCount(oldFile) == 0) return batch;  // an import into a new job
  return RecordMerger(oldFile, batch).Merge(places);
}

}  // namespace tarvex
