#include "core/coordinates/alphanumeric_store.h"

#include <algorithm>
#include <cerrno>

#include "core/coordinates/coordinate_layout.h"
#include "core/coordinates/record_merge.h"
#include "core/points/point_id.h"
#include "core/text/text.h"

namespace tarvex {
namespace {

// The binary search remembers this many of its upper nodes, and reads the last records in one
// piece.
constexpr std::size_t kRememberedNodes = 4096;
constexpr std::size_t kFirstNodes = 64;
constexpr std::uint64_t kBlockRecords = 256;

}  // namespace

FileStatus AlphanumericStore::TakeLastPoint() {
  StoreState& state = job_.store;
  state.lastPointId = "0";
  state.lastPointNumber = 0;
  if (file_.recordCount() == 0) return {};
  PointId last;
  if (FileStatus status = IdAt(file_.recordCount() - 1, last); !status.ok()) return status;
  state.lastPointId = last.str();
  state.lastPointNumber = PointIdNumber(state.lastPointId);
  return {};
}

FileStatus AlphanumericStore::IdAt(std::uint64_t index, PointId& id) {
  char field[alphanumeric_layout::kIdSize] = {};
  std::size_t got = 0;
  const std::uint64_t offset = file_.RecordOffset(index) + alphanumeric_layout::kIdOffset;
  if (FileStatus status = file_.ReadBytes(offset, field, got); !status.ok()) return status;
  if (got != sizeof field) return {EIO};
  id.TakeField(field);
  return {};
}

FileStatus AlphanumericStore::ProbeAt(std::size_t node, std::uint64_t index, PointId& id) {
  if (node >= kRememberedNodes) return IdAt(index, id);
  // Most files are opened for one store behind the last point, which looks at node 0 alone.
  if (node >= probes_.size()) probes_.resize(node < kFirstNodes ? kFirstNodes : kRememberedNodes);
  Probe& probe = probes_[node];
  if (!probe.known) {
    if (FileStatus status = IdAt(index, probe.id); !status.ok()) return status;
    probe.known = true;
  }
  id = probe.id;
  return {};
}

// The search goes on in memory once the records between `low` and `high` fit into one read.
FileStatus AlphanumericStore::FindInBlock(std::string_view id, std::uint64_t low,
                                          std::uint64_t high, Place& place) {
  const std::uint64_t first = low + 1;
  std::string block;
  if (FileStatus status = file_.ReadRecords(first, high - first, block); !status.ok())
    return status;
  while (high - low > 1) {
    const std::uint64_t middle = (low + high) / 2;
    const char* record = block.data() + (middle - first) * alphanumeric_layout::kRecordSize;
    const int order = ComparePointIds(alphanumeric_layout::DecodeId(record).view(), id);
    if (order == 0) {
      place = {.index = middle, .found = true};
      return {};
    }
    (order < 0 ? low : high) = middle;
  }
  place = {.index = high, .found = false};
  return {};
}

FileStatus AlphanumericStore::Find(std::string_view id, Place& place) {
  const std::uint64_t count = file_.recordCount();
  if (count == 0) {
    place = {};
    return {};
  }
  PointId probe;
  if (FileStatus status = ProbeAt(0, count - 1, probe); !status.ok()) return status;
  int order = ComparePointIds(probe.view(), id);
  if (order <= 0) {
    place = {.index = order == 0 ? count - 1 : count, .found = order == 0};
    return {};
  }
  if (FileStatus status = ProbeAt(1, 0, probe); !status.ok()) return status;
  order = ComparePointIds(probe.view(), id);
  if (order >= 0) {
    place = {.index = 0, .found = order == 0};
    return {};
  }
  std::uint64_t low = 0;
  std::uint64_t high = count - 1;
  // Nodes 0 and 1 are the last and the first record; the tree of the search starts at node 2.
  for (std::size_t node = 2; high - low > kBlockRecords;) {
    const std::uint64_t middle = (low + high) / 2;
    if (FileStatus status = ProbeAt(node, middle, probe); !status.ok()) return status;
    order = ComparePointIds(probe.view(), id);
    if (order == 0) {
      place = {.index = middle, .found = true};
      return {};
    }
    (order < 0 ? low : high) = middle;
    node = node * 2 + (order < 0 ? 1 : 0);
  }
  return FindInBlock(id, low, high, place);
}

// As a store normalises it, else as an older program may have left it.
FileStatus AlphanumericStore::FindKey(const PointKey& key, Place& place) {
  if (FileStatus status = Find(key.id.view(), place); !status.ok()) return status;
  if (place.found || ComparePointIds(key.typed.view(), key.id.view()) == 0) return {};
  return Find(key.typed.view(), place);
}

ReadPointResult AlphanumericStore::Read(const PointKey& key, Point& point) {
  Place place;
  if (!FindKey(key, place).ok() || !place.found) return ReadPointResult::NotFound;
  std::string record;
  if (!file_.ReadRecords(place.index, 1, record).ok()) return ReadPointResult::NotFound;
  Point read;
  alphanumeric_layout::DecodeRecord(record.data(), read);
  job_.store.foundRecordPosition = file_.RecordOffset(place.index);
  if (IsEmptySlot(read)) return ReadPointResult::EmptySlot;
  point = read;
  return ReadPointResult::Found;
}

bool AlphanumericStore::MayExist(const PointKey& key) const {
  return ComparePointIds(key.id.view(), job_.store.lastPointId) <= 0;
}

bool AlphanumericStore::Exists(const PointKey& key) {
  Point existing;
  return Read(key, existing) == ReadPointResult::Found;
}

bool AlphanumericStore::MayStore(const PointKey&) const {
  return true;
}

// Inserting shifts every record from the place of insertion one record towards the end.
FileStatus AlphanumericStore::Insert(const std::string& record, std::uint64_t index) {
  const std::uint64_t count = file_.recordCount();
  if (index == count) return file_.Append(record);
  std::string tail;
  if (FileStatus status = file_.ReadRecords(index, count - index, tail); !status.ok()) {
    return status;
  }
  tail.insert(0, record);
  return file_.Change({{.offset = file_.RecordOffset(index), .bytes = std::move(tail)}},
                      file_.RecordOffset(count + 1));
}

FileStatus AlphanumericStore::Store(const PointKey& key, const Point& point) {
  Place place;
  if (FileStatus status = Find(key.id.view(), place); !status.ok()) return status;
  probes_.clear();
  std::string record;
  alphanumeric_layout::AppendRecord(record, point);
  const FileStatus status =
      place.found ? file_.Change({{.offset = file_.RecordOffset(place.index), .bytes = record}},
                                 file_.size())
                  : Insert(record, place.index);
  if (status.done() && !place.found && place.index + 1 == file_.recordCount()) {
    job_.store.lastPointId = point.id.str();
    job_.store.lastPointNumber = PointIdNumber(job_.store.lastPointId);
  }
  return status;
}

FileStatus AlphanumericStore::Remove(std::uint64_t index) {
  const std::uint64_t count = file_.recordCount();
  const std::uint64_t newSize = file_.RecordOffset(count - 1);
  if (index + 1 == count) return file_.Shorten(newSize);
  std::string tail;
  if (FileStatus status = file_.ReadRecords(index + 1, count - index - 1, tail); !status.ok()) {
    return status;
  }
  return file_.Change({{.offset = file_.RecordOffset(index), .bytes = std::move(tail)}}, newSize);
}

FileStatus AlphanumericStore::Delete(const PointKey& key) {
  Place place;
  if (FileStatus status = FindKey(key, place); !status.ok()) return status;
  probes_.clear();
  const FileStatus status = Remove(place.index);
  (void)TakeLastPoint();
  return status;
}

std::optional<std::string> AlphanumericStore::NextFree(const IdSequence& ids) {
  PointId id = NormalisePointId(ids.current);
  for (std::uint64_t tried = 0; tried <= file_.recordCount(); ++tried) {
    const PointId next = NormalisePointId(NextPointId(id, ids.increment).view());
    if (ComparePointIds(next.view(), id.view()) <= 0) return std::nullopt;
    Place place;
    if (!Find(next.view(), place).ok()) return std::nullopt;
    if (!place.found) return next.str();
    id = next;
  }
  return std::nullopt;
}

std::optional<std::string> AlphanumericStore::NextUnused(const IdSequence& ids) {
  return NextFree(ids);
}

bool AlphanumericStore::TakesInBulk(const PointId& id) const {
  const std::string_view text = id.view();
  return std::any_of(text.begin(), text.end(), [](char c) { return c != ' ' && !IsControl(c); });
}

std::string AlphanumericStore::Merge(std::string file, std::span<const Point> points) {
  probes_.clear();
  return MergeRecords(file, points);
}

void AlphanumericStore::AppendPoints(std::string_view records, std::uint64_t,
                                     std::vector<Point>& points) const {
  constexpr std::size_t kSize = alphanumeric_layout::kRecordSize;
  for (std::size_t at = 0; at + kSize <= records.size(); at += kSize) {
    alphanumeric_layout::DecodeRecord(records.data() + at, points.emplace_back());
    if (IsEmptySlot(points.back())) points.pop_back();
  }
}

void AlphanumericStore::DecodeRecord(const char* record, std::uint64_t, Point& point) const {
  alphanumeric_layout::DecodeRecord(record, point);
}

}  // namespace tarvex
