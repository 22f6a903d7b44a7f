#include "core/point_list.h"

#include <algorithm>
#include <new>

#include "core/change_journal.h"
#include "core/coordinate_file.h"
#include "core/coordinate_layout.h"
#include "core/number_text.h"
#include "platform/memory.h"

namespace tarvex {
namespace {

constexpr std::uint64_t kBlockRecords = 8192;
constexpr std::uint64_t kProgressParts = 100;

// Appends the points of a block of records; false when one is not where the other list has it.
class BlockDecoder {
 public:
  BlockDecoder(bool alphanumeric, PointList& points, const PointList* verify_against)
      : alphanumeric_(alphanumeric), points_(points), verify_against_(verify_against) {}

  bool Take(const std::string& block, std::uint64_t first, std::size_t record_size) {
    for (std::size_t at = 0; at + record_size <= block.size(); at += record_size, ++first) {
      Point& point = points_.emplace_back();
      Decode(block.data() + at, first, point);
      if (IsEmptySlot(point)) {
        points_.pop_back();
      } else if (!Verifies(point)) {
        return false;
      }
    }
    return true;
  }

 private:
  void Decode(const char* record, std::uint64_t index, Point& point) const {
    if (alphanumeric_) {
      alphanumeric_layout::DecodeRecord(record, point);
      return;
    }
    numeric_layout::DecodeRecord(record, point);
    id_text_.clear();
    AppendInteger(id_text_, static_cast<long long>(index) + 1);
    point.id.Assign(id_text_);
  }

  bool Verifies(const Point& point) const {
    if (verify_against_ == nullptr) return true;
    const std::size_t place = points_.size() - 1;
    return place < verify_against_->size() && (*verify_against_)[place].id == point.id;
  }

  bool alphanumeric_;
  PointList& points_;
  const PointList* verify_against_;
  mutable std::string id_text_;
};

LoadPointsResult LoadFrom(CoordinateFile& stream, std::uint64_t count, PointList& points,
                          const PointList* verify_against, const ProgressWindow& progress) {
  points.reserve(static_cast<std::size_t>(count));
  PreferLargePages(points.data(), points.capacity() * sizeof(Point));
  BlockDecoder decoder(stream.alphanumeric(), points, verify_against);
  std::string block;
  std::uint64_t first = 0;
  for (std::uint64_t part = 1; part <= kProgressParts; ++part) {
    const std::uint64_t end = count * part / kProgressParts;
    if (end == first) continue;
    while (first < end) {
      const std::uint64_t some = std::min(kBlockRecords, end - first);
      if (!stream.ReadRecords(first, some, block).ok()) return LoadPointsResult::CannotOpen;
      if (!decoder.Take(block, first, static_cast<std::size_t>(stream.record_size()))) {
        return LoadPointsResult::Mismatch;
      }
      first += some;
    }
    if (progress) progress("\n" + std::to_string(part) + "%");
  }
  return LoadPointsResult::Loaded;
}

}  // namespace

LoadPointsResult LoadAllPoints(Job& job, PointList& points, const PointList* verify_against,
                               const ProgressWindow& progress) {
  const auto stream = OpenForReading(job);
  if (!stream) return LoadPointsResult::CannotOpen;
  try {
    PointList loaded;
    const LoadPointsResult result =
        LoadFrom(*stream, stream->record_count(), loaded, verify_against, progress);
    if (result == LoadPointsResult::Loaded) points.swap(loaded);
    return result;
  } catch (const std::bad_alloc&) {
    return LoadPointsResult::OutOfMemory;
  }
}

}  // namespace tarvex
