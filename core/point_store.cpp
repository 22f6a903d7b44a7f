#include "core/point_store.h"

#include <algorithm>
#include <cmath>

#include "core/coordinate_layout.h"
#include "core/file_rewrite.h"
#include "core/number_text.h"
#include "core/point_id.h"
#include "core/string_table.h"
#include "core/text.h"

namespace tarvex {
namespace {

constexpr int kStoreFailedMessage = 1011;
constexpr int kDeleteFailedMessage = 1012;
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

ReadPointResult ReadNumbered(Job& job, long long number, CoordinateFile& stream, Point& point) {
  if (number > job.lastPointNumber) return ReadPointResult::AboveLast;
  if (number < 1) return ReadPointResult::BelowFirst;
  Point read;
  if (!stream.ReadRecord(static_cast<std::uint64_t>(number - 1), read).ok()) {
    return ReadPointResult::NotFound;
  }
  if (IsEmptySlot(read)) return ReadPointResult::EmptySlot;
  point = read;
  return ReadPointResult::Found;
}

// Finds an id as a store normalises it, else as an older program may have left it, with its "-" and
// ",".
FileStatus FindNamed(std::string_view id, CoordinateFile& stream, RecordPosition& position) {
  position = {};
  const PointId key = NormalisePointId(id);
  if (key.empty()) return {};
  if (FileStatus status = stream.Find(key.view(), position); !status.ok()) return status;
  const PointId asTyped(WithoutLeadingBlanks(id));
  if (position.found || ComparePointIds(asTyped.view(), key.view()) == 0) return {};
  return stream.Find(asTyped.view(), position);
}

ReadPointResult ReadNamed(Job& job, std::string_view id, CoordinateFile& stream, Point& point) {
  RecordPosition position;
  Point read;
  if (!FindNamed(id, stream, position).ok() || !position.found) return ReadPointResult::NotFound;
  if (!stream.ReadRecord(position.index, read).ok()) return ReadPointResult::NotFound;
  job.foundRecordPosition = stream.RecordOffset(position.index);
  if (IsEmptySlot(read)) return ReadPointResult::EmptySlot;
  point = read;
  return ReadPointResult::Found;
}

// The number behind which a numeric file holds nothing: that of its header, or of the last record
// where another program or a damaged header left records behind it.
long long HighestNumber(const Job& job, const CoordinateFile& stream) {
  return std::max(job.lastPointNumber, static_cast<long long>(stream.recordCount()));
}

// The start of a numeric header with this count; all of it in a file that has none.
std::string CountBytes(Job& job, const CoordinateFile& stream, long long number) {
  return stream.size() == 0 ? numeric_layout::EncodeHeader(number, job.host.clock().Now())
                            : numeric_layout::EncodeHighestNumber(number);
}

FileStatus StoreInSlot(Job& job, const Point& point, long long number, CoordinateFile& stream) {
  std::string record;
  numeric_layout::AppendRecord(record, point);
  const auto slot = static_cast<std::uint64_t>(number - 1);
  if (number <= job.lastPointNumber) {
    return stream.Change({{.offset = stream.RecordOffset(slot), .bytes = record}}, stream.size());
  }
  const auto last = static_cast<std::uint64_t>(HighestNumber(job, stream));
  const std::uint64_t gap = slot > last ? slot - last : 0;
  const WaitCursor wait(job.host, gap * numeric_layout::kRecordSize >= kNoticeableGapBytes);
  const std::uint64_t newSize = std::max(stream.size(), stream.RecordOffset(slot + 1));
  std::vector<FileWrite> writes;
  writes.push_back({.offset = 0, .bytes = CountBytes(job, stream, number)});
  if (gap > 0) {
    writes.push_back({.offset = stream.RecordOffset(last),
                      .bytes = numeric_layout::FillerRecord(),
                      .repeat = gap});
  }
  writes.push_back({.offset = stream.RecordOffset(slot), .bytes = record});
  return stream.Change(std::move(writes), newSize);
}

// The usual store, one number beyond the last, needs no journal: until the record is there the
// opening of the file lowers the count of the header to the records that exist.
FileStatus StoreNextNumber(const Point& point, long long number, CoordinateFile& stream) {
  std::string record;
  numeric_layout::AppendRecord(record, point);
  FileStatus status = stream.Overwrite(0, numeric_layout::EncodeHighestNumber(number));
  if (status.ok()) status = stream.Append(record);
  if (!status.ok()) {
    (void)stream.Overwrite(0, numeric_layout::EncodeHighestNumber(number - 1));
  }
  return status;
}

FileStatus StoreNumbered(Job& job, const Point& point, long long number, CoordinateFile& stream) {
  const bool next = number == job.lastPointNumber + 1 &&
                    stream.recordCount() == static_cast<std::uint64_t>(job.lastPointNumber);
  const FileStatus status = next && stream.size() > 0 ? StoreNextNumber(point, number, stream)
                                                      : StoreInSlot(job, point, number, stream);
  if (status.done() && number > job.lastPointNumber) {
    job.lastPointNumber = number;
    job.lastPointId = std::to_string(number);
  }
  return status;
}

// Inserting shifts every record from the place of insertion one record towards the end.
FileStatus InsertRecord(const std::string& record, std::uint64_t index, CoordinateFile& stream) {
  const std::uint64_t count = stream.recordCount();
  if (index == count) return stream.Append(record);
  std::string tail;
  if (FileStatus status = stream.ReadRecords(index, count - index, tail); !status.ok()) {
    return status;
  }
  tail.insert(0, record);
  return stream.Change({{.offset = stream.RecordOffset(index), .bytes = std::move(tail)}},
                       stream.RecordOffset(count + 1));
}

FileStatus StoreNamed(Job& job, const Point& point, CoordinateFile& stream) {
  RecordPosition position;
  if (FileStatus status = stream.Find(point.id.view(), position); !status.ok()) return status;
  std::string record;
  alphanumeric_layout::AppendRecord(record, point);
  const FileStatus status =
      position.found
          ? stream.Change({{.offset = stream.RecordOffset(position.index), .bytes = record}},
                          stream.size())
          : InsertRecord(record, position.index, stream);
  if (status.done() && !position.found && position.index + 1 == stream.recordCount()) {
    job.lastPointId = point.id.str();
    job.lastPointNumber = PointIdNumber(job.lastPointId);
  }
  return status;
}

// The number that an id of a numeric file is; 0 for anything else.
long long PointNumber(std::string_view id) {
  return ParseInteger(id).value_or(0);
}

bool IsFinite(const GridPoint& at) {
  return std::isfinite(at.northing) && std::isfinite(at.easting) && std::isfinite(at.elevation);
}

bool MayExist(const Job& job, const CoordinateFile& stream, std::string_view id) {
  if (!job.alphanumeric) return PointNumber(id) <= HighestNumber(job, stream);
  return ComparePointIds(NormalisePointId(id).view(), job.lastPointId) <= 0;
}

bool IsStorable(const Job& job, std::string_view id) {
  if (job.alphanumeric) return !NormalisePointId(id).empty();
  const long long number = PointNumber(id);
  return number >= 1 && number <= kHighestPointNumber &&
         number - job.lastPointNumber <= kLargestGap;
}

// Also a record behind the header's count, which a list shows and a store would write over.
bool Exists(Job& job, CoordinateFile& stream, std::string_view id) {
  Point existing;
  if (ReadPoint(job, id, &stream, existing) == ReadPointResult::Found) return true;
  const long long number = job.alphanumeric ? 0 : PointNumber(id);
  return number > job.lastPointNumber && number <= HighestNumber(job, stream) &&
         stream.ReadRecord(static_cast<std::uint64_t>(number - 1), existing).ok() &&
         !IsEmptySlot(existing);
}

// The id to store under after the person was asked.
StorePointResult SettleId(Job& job, CoordinateFile& stream, std::string& id) {
  if (!MayExist(job, stream, id)) return StorePointResult::Stored;
  const bool exists = Exists(job, stream, id);
  const ExistingPointAnswer answer = job.host.AskExistingPoint(id, exists);
  switch (answer.choice) {
    case ExistingPointAnswer::Choice::Cancel:
      return StorePointResult::Cancelled;
    case ExistingPointAnswer::Choice::Failed:
      return StorePointResult::DialogFailed;
    case ExistingPointAnswer::Choice::UseNextFreeId: {
      const auto free = NextFreePointId(job, stream);
      if (!free) return StorePointResult::DialogFailed;
      id = *free;
      return StorePointResult::Stored;
    }
    case ExistingPointAnswer::Choice::UseOtherId:
      id = answer.otherId;
      return IsStorable(job, id) ? StorePointResult::Stored : StorePointResult::Nothing;
    case ExistingPointAnswer::Choice::Overwrite:
      break;
  }
  return StorePointResult::Stored;
}

FileStatus RemoveRecord(std::uint64_t index, CoordinateFile& stream) {
  const std::uint64_t count = stream.recordCount();
  const std::uint64_t newSize = stream.RecordOffset(count - 1);
  if (index + 1 == count) return stream.Shorten(newSize);
  std::string tail;
  if (FileStatus status = stream.ReadRecords(index + 1, count - index - 1, tail); !status.ok()) {
    return status;
  }
  return stream.Change({{.offset = stream.RecordOffset(index), .bytes = std::move(tail)}}, newSize);
}

FileStatus DeleteStored(Job& job, std::string_view id, CoordinateFile& stream) {
  if (!job.alphanumeric) {
    const auto slot = static_cast<std::uint64_t>(PointNumber(id) - 1);
    return stream.Change(
        {{.offset = stream.RecordOffset(slot), .bytes = numeric_layout::FillerRecord()}},
        stream.size());
  }
  RecordPosition position;
  if (FileStatus status = FindNamed(id, stream, position); !status.ok()) return status;
  const FileStatus status = RemoveRecord(position.index, stream);
  (void)TakeLastPoint(job, stream);
  return status;
}

void TellFailure(Job& job, int message, std::string_view id, const FileStatus& status) {
  job.host.ShowMessage(Strings().Text(MessageOf(message, status), {id, job.path, status.Text()}));
}

}  // namespace

ReadPointResult ReadPoint(Job& job, std::string_view id, CoordinateFile* stream, Point& point) {
  if (stream == nullptr) return ReadPointResult::NoStream;
  if (job.alphanumeric) return ReadNamed(job, id, *stream, point);
  const auto number = ParseInteger(id);
  return number ? ReadNumbered(job, *number, *stream, point) : ReadPointResult::NotFound;
}

StorePointResult StorePoint(Job& job, const GridPoint& at, std::string_view description,
                            bool checkExisting, CoordinateFile* stream) {
  if (stream == nullptr) return StorePointResult::NoStream;
  std::string id = job.currentPointId;
  if (!IsStorable(job, id) || !IsFinite(at)) return StorePointResult::Nothing;
  if (checkExisting) {
    const StorePointResult settled = SettleId(job, *stream, id);
    if (settled != StorePointResult::Stored) return settled;
  }
  Point point{.at = at, .description = Description(OneLine(description)), .id = {}};
  FileStatus status;
  if (job.alphanumeric) {
    point.id = NormalisePointId(id);
    status = StoreNamed(job, point, *stream);
  } else {
    const long long number = PointNumber(id);
    point.id.Assign(std::to_string(number));
    status = StoreNumbered(job, point, number, *stream);
  }
  if (!status.ok()) TellFailure(job, kStoreFailedMessage, id, status);
  if (!status.done()) return StorePointResult::Nothing;
  job.currentPointId = id;
  job.lastStoredPoint = point;
  return status.ok() ? StorePointResult::Stored : StorePointResult::StoredNotDurable;
}

DeletePointResult DeletePoint(Job& job, std::string_view id, CoordinateFile* stream) {
  if (stream == nullptr) return DeletePointResult::NoStream;
  Point existing;
  if (ReadPoint(job, id, stream, existing) != ReadPointResult::Found) {
    return DeletePointResult::NotFound;
  }
  const FileStatus status = DeleteStored(job, id, *stream);
  if (status.ok()) return DeletePointResult::Deleted;
  TellFailure(job, kDeleteFailedMessage, id, status);
  return status.done() ? DeletePointResult::DeletedNotDurable : DeletePointResult::Failed;
}

std::optional<std::string> NextFreePointId(Job& job, CoordinateFile& stream) {
  if (!job.alphanumeric) return std::to_string(HighestNumber(job, stream) + 1);
  PointId id = NormalisePointId(job.currentPointId);
  for (std::uint64_t tried = 0; tried <= stream.recordCount(); ++tried) {
    const PointId next = NormalisePointId(NextPointId(id, job.pointIncrement).view());
    if (ComparePointIds(next.view(), id.view()) <= 0) return std::nullopt;
    RecordPosition position;
    if (!stream.Find(next.view(), position).ok()) return std::nullopt;
    if (!position.found) return next.str();
    id = next;
  }
  return std::nullopt;
}

}  // namespace tarvex
