// The points that a person wants to set out: named one by one, as a range of ids, or in a list
// file.
#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "app/workflow/stake_report.h"
#include "app/workflow/stake_target.h"
#include "core/coordinates/point_list.h"

namespace tarvex {

/// What there is to choose from.
struct StakeableJob {
  PointList points;
  bool alphanumeric = true;
  StakeReport staked;  ///< what was staked before
};

/// A point of the job as something to set out. An elevation of exactly 0 is none: a point that has
/// no elevation is stored with it.
StakeDesign DesignOf(const Point& point);

/// The point of this id; nothing when there is none.
std::optional<StakeDesign> FindDesign(const StakeableJob& job, std::string_view id);

/// Each of `words` is an id ("12") or a range of ids, both ends included ("1..20"), in the order of
/// ids. The stakes of the job are no part of a range. False with a sentence in `problem` when a
/// point is not there or a range is empty.
[[nodiscard]] bool SelectPoints(const StakeableJob& job, std::span<const std::string> words,
                                std::vector<StakeDesign>& designs, std::string& problem);

/// A list has a line a point: an id or a range of the job's points, or "id,northing,easting", an
/// elevation behind it where there is one. Empty lines and those that begin with "#" are passed
/// over.
[[nodiscard]] bool SelectFromList(const StakeableJob& job, std::string_view text,
                                  std::vector<StakeDesign>& designs, std::string& problem);

/// True when the job has a stake of this design at this place.
bool WasStaked(const StakeableJob& job, const StakeDesign& design);

}  // namespace tarvex
