// A point that a person typed or computed, under an id that was given: stored with its record in
// the raw file. What was measured of an earlier point of that id is no longer said of it.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "app/workflow/point_unit.h"

namespace tarvex {

/// "overwrite", "next" and "cancel"; anything else asks.
ExistingPolicy ParseExistingPolicy(std::string_view name);

/// What is wrong with an entered id for this job (opened before), in a sentence; empty when nothing
/// is.
std::string PointIdProblem(const Job& job, std::string_view id);

/// Makes an entered id the job's current one; false with a sentence in `problem`. An id that is cut
/// gives a warning.
[[nodiscard]] bool TakePointId(JobSession& session, std::string_view id, std::string& problem);

/// Makes the id under which work begins the job's current one: `first`, or without it the one
/// behind the last that was used. False with a sentence in `problem`, which is empty when the
/// coordinate file, after a message, cannot be opened.
[[nodiscard]] bool TakeFirstId(JobSession& session, std::string_view first, std::string& problem);

struct TypedPoint {
  std::string id;
  GridPoint at;  ///< job's unit
  std::string description;
  std::vector<std::string> comments = {};  ///< further comment records for the raw file
};

struct TypedPointResult {
  StoredPoint stored;
  /// What the entry has wrong, in a sentence; nothing was stored then.
  std::string problem;
};

/// The session's policy decides what happens to a point that exists; a person who is to be asked is
/// asked before the files are locked.
TypedPointResult StoreTypedPoint(JobSession& session, const TypedPoint& point);

/// The observation record of a typed point, and the end of what was measured of it before.
void AddTypedRecords(JobUnit& unit, const Point& stored, std::string_view description);

}  // namespace tarvex
