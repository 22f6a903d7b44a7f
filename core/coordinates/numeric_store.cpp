#include "core/coordinates/numeric_store.h"

#include <algorithm>

#include "core/coordinates/coordinate_layout.h"
#include "core/text/number_text.h"

namespace tarvex {
namespace {

constexpr std::uint64_t kNoticeableGapBytes = 560;

// Shown while a gap is filled that takes noticeable time.
class WaitCursor {
 public:
  WaitCursor(JobHost& host, bool shown) : host_(host), shown_(shown) {
    if (shown_) host_.ShowWaitCursor(true);
  }
  WaitCursor(const WaitCursor&) = delete;
  WaitCursor& operator=(const WaitCursor&) = delete;
  ~WaitCursor() {
    if (shown_) host_.ShowWaitCursor(false);
  }

 private:
  JobHost& host_;
  bool shown_;
};

bool IsPointNumber(long long number) {
  return number >= 1 && number <= kHighestPointNumber;
}

// The slot of a point number.
std::uint64_t SlotOf(long long number) {
  return static_cast<std::uint64_t>(number - 1);
}

}  // namespace

FileStatus NumericStore::TakeLastPoint() {
  StoreState& state = job_.store;
  state.lastPointId = "0";
  state.lastPointNumber = 0;
  std::string header(numeric_layout::kRecordSize, '\0');
  std::size_t got = 0;
  if (FileStatus status = file_.ReadBytes(0, header, got); !status.ok()) return status;
  const long long claimed = got == 0 ? 0 : numeric_layout::DecodeHighestNumber(header);
  state.lastPointNumber = std::min(claimed, static_cast<long long>(file_.recordCount()));
  state.lastPointId = std::to_string(state.lastPointNumber);
  return {};
}

ReadPointResult NumericStore::Read(const PointKey& key, Point& point) {
  if (key.number > job_.store.lastPointNumber) return ReadPointResult::AboveLast;
  if (key.number < 1) return ReadPointResult::BelowFirst;
  std::string record;
  const std::uint64_t slot = SlotOf(key.number);
  if (!file_.ReadRecords(slot, 1, record).ok()) return ReadPointResult::NotFound;
  Point read;
  DecodeRecord(record.data(), slot, read);
  if (IsEmptySlot(read)) return ReadPointResult::EmptySlot;
  point = read;
  return ReadPointResult::Found;
}

long long NumericStore::HighestNumber() const {
  return std::max(job_.store.lastPointNumber, static_cast<long long>(file_.recordCount()));
}

bool NumericStore::MayExist(const PointKey& key) const {
  return key.number <= HighestNumber();
}

bool NumericStore::Exists(const PointKey& key) {
  if (key.number < 1 || key.number > HighestNumber()) return false;
  std::string record;
  const std::uint64_t slot = SlotOf(key.number);
  if (!file_.ReadRecords(slot, 1, record).ok()) return false;
  Point existing;
  DecodeRecord(record.data(), slot, existing);
  return !IsEmptySlot(existing);
}

bool NumericStore::MayStore(const PointKey& key) const {
  return IsPointNumber(key.number) && key.number - job_.store.lastPointNumber <= kLargestGap;
}

// The start of a header with this count; all of it in a file that has none.
std::string NumericStore::CountBytes(long long number) const {
  return file_.size() == 0 ? numeric_layout::EncodeHeader(number, job_.host.clock().Now())
                           : numeric_layout::EncodeHighestNumber(number);
}

FileStatus NumericStore::StoreInSlot(const Point& point, long long number) {
  std::string record;
  numeric_layout::AppendRecord(record, point);
  const std::uint64_t slot = SlotOf(number);
  if (number <= job_.store.lastPointNumber) {
    return file_.Change({{.offset = file_.RecordOffset(slot), .bytes = record}}, file_.size());
  }
  const auto last = static_cast<std::uint64_t>(HighestNumber());
  const std::uint64_t gap = slot > last ? slot - last : 0;
  const WaitCursor wait(job_.host, gap * numeric_layout::kRecordSize >= kNoticeableGapBytes);
  const std::uint64_t newSize = std::max(file_.size(), file_.RecordOffset(slot + 1));
  std::vector<FileWrite> writes;
  writes.push_back({.offset = 0, .bytes = CountBytes(number)});
  if (gap > 0) {
    writes.push_back({.offset = file_.RecordOffset(last),
                      .bytes = numeric_layout::FillerRecord(),
                      .repeat = gap});
  }
  writes.push_back({.offset = file_.RecordOffset(slot), .bytes = record});
  return file_.Change(std::move(writes), newSize);
}

// The usual store, one number beyond the last, needs no journal: until the record is there the
// opening of the file lowers the count of the header to the records that exist.
FileStatus NumericStore::StoreNextNumber(const Point& point, long long number) {
  std::string record;
  numeric_layout::AppendRecord(record, point);
  FileStatus status = file_.Overwrite(0, numeric_layout::EncodeHighestNumber(number));
  if (status.ok()) status = file_.Append(record);
  if (!status.ok()) (void)file_.Overwrite(0, numeric_layout::EncodeHighestNumber(number - 1));
  return status;
}

FileStatus NumericStore::Store(const PointKey& key, const Point& point) {
  StoreState& state = job_.store;
  const long long number = key.number;
  const bool next = number == state.lastPointNumber + 1 &&
                    file_.recordCount() == static_cast<std::uint64_t>(state.lastPointNumber);
  const FileStatus status =
      next && file_.size() > 0 ? StoreNextNumber(point, number) : StoreInSlot(point, number);
  if (status.done() && number > state.lastPointNumber) {
    state.lastPointNumber = number;
    state.lastPointId = std::to_string(number);
  }
  return status;
}

FileStatus NumericStore::Delete(const PointKey& key) {
  return file_.Change(
      {{.offset = file_.RecordOffset(SlotOf(key.number)), .bytes = numeric_layout::FillerRecord()}},
      file_.size());
}

std::optional<std::string> NumericStore::NextFree(const IdSequence&) {
  return std::to_string(HighestNumber() + 1);
}

std::optional<std::string> NumericStore::NextUnused(const IdSequence& ids) {
  const long long last = ParseInteger(ids.current).value_or(0);
  const long long highest = job_.store.lastPointNumber;
  if (last < 1) return NextFree(ids);
  for (long long number = last + 1; number <= highest; ++number) {
    Point point;
    if (Read({.id = {}, .number = number, .typed = {}}, point) != ReadPointResult::Found) {
      return std::to_string(number);
    }
  }
  return last >= highest ? std::to_string(last + 1) : NextFree(ids);
}

bool NumericStore::TakesInBulk(const PointId& id) const {
  const auto number = ParseInteger(id.view());
  return number && IsPointNumber(*number);
}

std::string NumericStore::Merge(std::string file, std::span<const Point> points) {
  if (file.empty()) file = numeric_layout::EncodeHeader(0, job_.host.clock().Now());
  long long highest = job_.store.lastPointNumber;
  for (const Point& point : points) highest = std::max(highest, LeadingInteger(point.id.view()));
  constexpr std::size_t kSize = numeric_layout::kRecordSize;
  const std::string filler = numeric_layout::FillerRecord();
  file.resize(std::min(file.size(), file.size() / kSize * kSize));
  while (file.size() / kSize - 1 < static_cast<std::size_t>(highest)) file += filler;
  std::string record;
  for (const Point& point : points) {
    record.clear();
    numeric_layout::AppendRecord(
        record, {.at = point.at, .description = OnOneLine(point.description), .id = {}});
    file.replace(static_cast<std::size_t>(LeadingInteger(point.id.view())) * kSize, kSize, record);
  }
  const std::string count = numeric_layout::EncodeHighestNumber(highest);
  return file.replace(0, count.size(), count);
}

void NumericStore::AppendPoints(std::string_view records, std::uint64_t first,
                                std::vector<Point>& points) const {
  constexpr std::size_t kSize = numeric_layout::kRecordSize;
  for (std::size_t at = 0; at + kSize <= records.size(); at += kSize, ++first) {
    DecodeRecord(records.data() + at, first, points.emplace_back());
    if (IsEmptySlot(points.back())) points.pop_back();
  }
}

void NumericStore::DecodeRecord(const char* record, std::uint64_t index, Point& point) const {
  numeric_layout::DecodeRecord(record, point);
  point.id.Assign(std::to_string(index + 1));
}

}  // namespace tarvex
