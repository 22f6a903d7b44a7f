// How points are found in an open coordinate file, and how they get in and out: one interface, and
// a store for each of the two layouts (core/coordinates/numeric_store.h,
// core/coordinates/alphanumeric_store.h). It keeps the job's StoreState true to the file. Every
// change is whole or not at all, as RecordFile makes it.
#pragma once

#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "core/coordinates/point_results.h"
#include "core/coordinates/record_file.h"
#include "core/job/job.h"
#include "core/points/point.h"
#include "core/points/point_key.h"

namespace tarvex {

class LayoutStore {
 public:
  virtual ~LayoutStore() = default;

  /// Sets the job's last point id and number from the file as it is now.
  virtual FileStatus TakeLastPoint() = 0;

  /// `point` is written only when found.
  virtual ReadPointResult Read(const PointKey& key, Point& point) = 0;
  /// Not beyond the last point, so that there may be one.
  virtual bool MayExist(const PointKey& key) const = 0;
  /// A point that a list shows and a store would write over.
  virtual bool Exists(const PointKey& key) = 0;
  /// False for a number that no point can have, or that leaves a gap beyond kLargestGap.
  virtual bool MayStore(const PointKey& key) const = 0;
  /// Over the point that is there, if one is.
  virtual FileStatus Store(const PointKey& key, const Point& point) = 0;
  /// A point that Read has found.
  virtual FileStatus Delete(const PointKey& key) = 0;

  /// A free id for a point that may not overwrite another: behind the last number, or the next in
  /// the sequence under which no point is. Nothing when the ids are exhausted.
  virtual std::optional<std::string> NextFree(const IdSequence& ids) = 0;
  /// The first id behind the current one under which no point is.
  virtual std::optional<std::string> NextUnused(const IdSequence& ids) = 0;

  /// True when a point may be among many that are stored in one go.
  virtual bool TakesInBulk(const PointId& id) const = 0;
  /// The bytes of this file with the points stored one after the other.
  virtual std::string Merge(std::string file, std::span<const Point> points) = 0;

  /// Appends the points of whole records, the first of which is record `first`; empty slots are
  /// skipped.
  virtual void AppendPoints(std::string_view records, std::uint64_t first,
                            std::vector<Point>& points) const = 0;
  /// Decodes the bytes of one record, an empty slot too.
  virtual void DecodeRecord(const char* record, std::uint64_t index, Point& point) const = 0;
};

/// The store of a layout over the job's open file.
std::unique_ptr<LayoutStore> MakeLayoutStore(Job& job, RecordFile& file, bool alphanumeric);

}  // namespace tarvex
