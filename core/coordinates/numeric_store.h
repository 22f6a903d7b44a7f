// The numeric layout: the record number is the point id. The count in the header says how far the
// points go.
#pragma once

#include "core/coordinates/layout_store.h"

namespace tarvex {

class NumericStore final : public LayoutStore {
 public:
  NumericStore(Job& job, RecordFile& file) : job_(job), file_(file) {}

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
  // The number behind which the file holds nothing: that of its header, or of the last record where
  // another program or a damaged header left records behind it.
  long long HighestNumber() const;
  std::string CountBytes(long long number) const;
  FileStatus StoreInSlot(const Point& point, long long number);
  FileStatus StoreNextNumber(const Point& point, long long number);

  Job& job_;
  RecordFile& file_;
};

}  // namespace tarvex
