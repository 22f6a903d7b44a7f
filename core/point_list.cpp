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
  BlockDecoder(bool alphanumeric, PointList& points, const PointList* verifyAgainst)
      : alphanumeric_(alphanumeric), points_(points), verifyAgainst_(verifyAgainst) {}

  bool Take(const std::string& block, std::uint64_t first, std::size_t recordSize) {
    for (std::size_t at = 0; at + recordSize <= block.size(); at += recordSize, ++first) {
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
    idText_.clear();
    AppendInteger(idText_, static_cast<long long>(index) + 1);
    point.id.Assign(idText_);
  }

  bool Verifies(const Point& point) const {
    if (verifyAgainst_ == nullptr) return true;
    const std::size_t place = points_.size() - 1;
    return place < verifyAgainst_->size() && (*verifyAgainst_)[place].id == point.id;
  }

  bool alphanumeric_;
  PointList& points_;
  const PointList* verifyAgainst_;
  mutable std::string idText_;
};

LoadPointsResult LoadFrom(CoordinateFile& stream, std::uint64_t count, PointList& points,
                          const PointList* verifyAgainst, const ProgressWindow& progress) {
  points.reserve(static_cast<std::size_t>(count));
  PreferLargePages(points.data(), points.capacity() * sizeof(Point));
  BlockDecoder decoder(stream.alphanumeric(), points, verifyAgainst);
  std::string block;
  std::uint64_t first = 0;
  for (std::uint64_t part = 1; part <= kProgressParts; ++part) {
    const std::uint64_t end = count * part / kProgressParts;
    if (end == first) continue;
    while (first < end) {
      const std::uint64_t some = std::min(kBlockRecords, end - first);
      if (!stream.ReadRecords(first, some, block).ok()) return LoadPointsResult::CannotOpen;
      if (!decoder.Take(block, first, static_cast<std::size_t>(stream.recordSize()))) {
        return LoadPointsResult::Mismatch;
      }
      first += some;
    }
    if (progress) progress("\n" + std::to_string(part) + "%");
  }
  return LoadPointsResult::Loaded;
}

}  // namespace

LoadPointsResult LoadAllPoints(Job& job, PointList& points, const PointList* verifyAgainst,
                               const ProgressWindow& progress) {
  const auto stream = OpenForReading(job);
  if (!stream) return LoadPointsResult::CannotOpen;
  try {
    PointList loaded;
    const LoadPointsResult result =
        LoadFrom(*stream, stream->recordCount(), loaded, verifyAgainst, progress);
    if (result == LoadPointsResult::Loaded) points.swap(loaded);
    return result;
  } catch (const std::bad_alloc&) {
    return LoadPointsResult::OutOfMemory;
  }
}

}  // namespace tarvex
