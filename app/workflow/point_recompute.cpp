#include "app/workflow/point_recompute.h"

#include <algorithm>
#include <cmath>

#include "app/workflow/raw_history.h"
#include "app/workflow/raw_positions.h"
#include "core/coordinates/point_bulk.h"
#include "core/coordinates/point_list.h"
#include "core/coordinates/point_store.h"
#include "core/observations/job_unit.h"
#include "core/raw_data/raw_records.h"
#include "core/text/number_text.h"
#include "core/text/text.h"

namespace tarvex {
namespace {

constexpr double kMovedM = 0.0001;
constexpr double kPrinted = 0.00006;  // of what the raw file prints, job's unit

double Apart(const GridPoint& a, const GridPoint& b) {
  return std::max({std::fabs(a.northing - b.northing), std::fabs(a.easting - b.easting),
                   std::fabs(a.elevation - b.elevation)});
}

// The coordinates are those that were computed from the observation.
bool IsAsObserved(const Point& point, const PointHistory& history) {
  return history.hasCoordinates &&
         Apart(point.at,
               {LeadingDouble(history.coordinates[0]), LeadingDouble(history.coordinates[1]),
                LeadingDouble(history.coordinates[2])}) < kPrinted;
}

class Planner {
 public:
  Planner(Job& job, const CTrgCalculator& calculator, std::string_view raw)
      : job_(job),
        calculator_(calculator),
        history_(ReadRawHistory(raw, job.store.alphanumeric)),
        positions_(AllRawPositions(raw, job.options.unit)) {}

  void Take(const Point& point) {
    const auto history = history_.points.find(point.id);
    const auto position = positions_.find(UpperCase(point.id.view()));
    if (history == history_.points.end()) return Leave(point, RecomputeReason::NoPosition);
    if (history->second.last != PointHistory::Last::Position) {
      return Leave(point, RecomputeReason::Typed);
    }
    if (position == positions_.end()) return Leave(point, RecomputeReason::NoPosition);
    if (!IsAsObserved(point, history->second)) return Leave(point, RecomputeReason::Edited);
    GridPoint now;
    if (calculator_.ToGrid(position->second, now) != CalculationResult::Done) {
      return Leave(point, RecomputeReason::NotConverted);
    }
    if (ToMetres(Apart(point.at, now), job_.options.unit) < kMovedM) {
      ++plan.unmoved;
    } else {
      plan.moved.push_back({point, now});
    }
  }

  void Leave(const Point& point, RecomputeReason reason) {
    plan.left.push_back({point.id.str(), reason});
  }

  RecomputePlan plan;

 private:
  Job& job_;
  const CTrgCalculator& calculator_;
  RawHistory history_;
  RawPositions positions_;
};

}  // namespace

std::optional<RecomputePlan> PlanRecompute(JobSession& session, const CTrgCalculator& calculator,
                                           const std::vector<std::string>& ids) {
  Job& job = session.job();
  PointList points;
  if (LoadAllPoints(job, points) != LoadPointsResult::Loaded) return std::nullopt;
  std::string raw;
  std::string problem;
  if (!ReadRawFile(job, raw, problem)) {
    session.observer().OnError(problem);
    return std::nullopt;
  }
  Planner planner(job, calculator, raw);
  if (ids.empty()) {
    for (const Point& point : points) planner.Take(point);
  }
  for (const std::string& id : ids) {
    const PointId wanted = HistoryKey(id, job.store.alphanumeric);
    const auto found = std::find_if(points.begin(), points.end(),
                                    [&](const Point& point) { return point.id == wanted; });
    if (found == points.end()) {
      planner.plan.left.push_back({id, RecomputeReason::NotFound});
    } else {
      planner.Take(*found);
    }
  }
  return std::move(planner.plan);
}

bool Recompute(JobSession& session, const RecomputePlan& plan) {
  if (!session.storingProblem().empty()) {
    session.observer().OnError(session.storingProblem());
    return false;
  }
  Job& job = session.job();
  const auto unit = JobUnit::Begin(job);
  if (!unit) return false;
  unit->AppendRaw(session.RawOpening());
  unit->AppendRaw(CommentRecord("Recomputed " + std::to_string(plan.moved.size()) +
                                (plan.moved.size() == 1 ? " point" : " points")));
  PointList made;
  for (const auto& [stored, now] : plan.moved) {
    Point present;
    const bool isThere =
        ReadPoint(job, stored.id.view(), &unit->coordinates(), present) == ReadPointResult::Found;
    if (!isThere || present != stored) {
      session.observer().OnError("Point " + stored.id.str() +
                                 " was changed meanwhile; nothing was computed anew.");
      return false;
    }
    made.push_back(stored);
    made.back().at = now;
    unit->AppendRaw(RecomputedPointRecord(stored));
    unit->AppendRaw(GnssGridRecord(made.back(), stored.description.view()));
  }
  if (StorePoints(job, made, unit->coordinates()) != StorePointsResult::Stored ||
      unit->Commit() == ChangeResult::Nothing) {
    return false;
  }
  session.RawIsOpened();
  return true;
}

}  // namespace tarvex
