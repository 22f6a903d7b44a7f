// The alphanumeric layout: records in ascending order of id, without two of one id. A lookup is a
// binary search; a store in front of others shifts them.
#pragma once

#include "core/coordinates/layout_store.h"

namespace tarvex {

class AlphanumericStore final : public LayoutStore {
 public:
  AlphanumericStore(Job& job, RecordFile& file) : job_(job), file_(file) {}

  FileStatus TakeLastPoint() override;
  ReadPointResult Read(const PointKey& key, Point& point) override;
  bool MayExist(const PointKey& key) const override;
  bool Exists(const PointKey& key) override;
  bool MayStore(const PointKey& key) const override;
  FileStatus Store(const PointKey& key, const Point& point) override;
  FileStatus Delete(const PointKey& key) override;
  std::optional<std::string> NextFree(const IdSequence& ids) override;
  std::optional<std::string> NextUnused(const IdSequence& ids) override;
  bool TakesInBulk(const PointId& id) const override;
  std::string Merge(std::string file, std::span<const Point> points) override;
  void AppendPoints(std::string_view records, std::uint64_t first,
                    std::vector<Point>& points) const override;
  void DecodeRecord(const char* record, std::uint64_t index, Point& point) const override;

 private:
  struct Probe {
    bool known = false;
    PointId id;
  };

  /// Where an id is, or where it would be inserted.
  struct Place {
    std::uint64_t index = 0;
    bool found = false;
  };

  FileStatus IdAt(std::uint64_t index, PointId& id);
  FileStatus ProbeAt(std::size_t node, std::uint64_t index, PointId& id);
  FileStatus FindInBlock(std::string_view id, std::uint64_t low, std::uint64_t high, Place& place);
  // Finds a normalised id: the last record, the first, then a binary search.
  FileStatus Find(std::string_view id, Place& place);
  FileStatus FindKey(const PointKey& key, Place& place);
  FileStatus Insert(const std::string& record, std::uint64_t index);
  FileStatus Remove(std::uint64_t index);

  Job& job_;
  RecordFile& file_;
  std::vector<Probe> probes_;  // ids at the upper nodes of the binary search, for the next lookups
};

}  // namespace tarvex
