#include "app/workflow/stored_coordinates.h"

#include <algorithm>
#include <cmath>

#include "app/workflow/raw_history.h"
#include "app/workflow/raw_positions.h"
#include "core/coordinates/point_list.h"

namespace tarvex {
namespace {

constexpr double kElsewhereM = 0.05;

double MetresApart(const GridPoint& a, const GridPoint& b, DistanceUnit unit) {
  const double apart = std::max({std::abs(a.northing - b.northing), std::abs(a.easting - b.easting),
                                 std::abs(a.elevation - b.elevation)});
  return ToMetres(apart, unit);
}

std::string Count(std::size_t count, const char* ofOne, const char* ofMany) {
  return std::to_string(count) + (count == 1 ? ofOne : ofMany);
}

}  // namespace

std::string StoredCoordinates::Text() const {
  if (points == 0) return {};
  std::string text =
      Count(points, " stored point keeps its coordinates", " stored points keep their coordinates");
  text += positions == 0
              ? ", and the raw file holds no GNSS position that would tell which these are."
              : ".";
  if (elsewhere > 0) {
    text += " By the raw file " + Count(elsewhere, " of them lies", " of them lie") +
            " elsewhere than the job would place it now (" + example +
            (elsewhere > 1 ? " and others)." : ").") + " `tarvex recompute` computes them anew.";
  } else if (positions > 0) {
    text += " By the raw file the " + std::to_string(positions) +
            " with a GNSS position lie where the job would place them now.";
  }
  if (positions > 0 && positions < points) {
    text +=
        " Nothing tells where " + Count(points - positions, " point without a position belongs.",
                                        " points without a position belong.");
  }
  return text;
}

StoredCoordinates CompareStoredCoordinates(Job& job, const CTrgCalculator& now) {
  StoredCoordinates found;
  PointList points;
  if (LoadAllPoints(job, points) != LoadPointsResult::Loaded) return found;
  found.points = points.size();
  std::string raw;
  std::string problem;
  if (points.empty() || !ReadRawFile(job, raw, problem)) return found;
  const RawPositions positions = AllRawPositions(raw, job.options.unit);
  const RawHistory history = ReadRawHistory(raw, job.store.alphanumeric);
  for (const Point& point : points) {
    const auto told = history.points.find(point.id);
    const auto position = positions.find(point.id.str());
    // What was typed over a measured point is not where that was.
    const bool isMeasured =
        told != history.points.end() && told->second.last == PointHistory::Last::Position;
    if (!isMeasured || position == positions.end()) continue;
    ++found.positions;
    GridPoint made;
    const CalculationResult result = now.ToGrid(position->second, made);
    const bool isMade =
        result == CalculationResult::Done || result == CalculationResult::DoneInPart;
    if (isMade && MetresApart(made, point.at, job.options.unit) < kElsewhereM) continue;
    if (found.elsewhere++ == 0) found.example = point.id.str();
  }
  return found;
}

}  // namespace tarvex
