#include "app/workflow/point_import.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>
#include <unordered_map>
#include <utility>

#include "app/workflow/entered_number.h"
#include "app/workflow/point_storing.h"
#include "core/coordinates/coordinate_file.h"
#include "core/coordinates/point_bulk.h"
#include "core/coordinates/point_list.h"
#include "core/coordinates/point_store.h"
#include "core/observations/job_unit.h"
#include "core/points/point_key.h"
#include "core/raw_data/raw_records.h"
#include "core/text/number_text.h"
#include "core/text/text.h"

namespace tarvex {
namespace {

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

std::string IdProblem(const Job& job, std::string_view id) {
  if (id.size() > kPointIdLength)
    return "the id \"" + OneLine(id) + "\" is longer than 9 characters.";
  return PointIdProblem(job, id);
}

// The lines of a text, one point each.
class ImportReader {
 public:
  ImportReader(const Job& job, const ImportColumns& columns) : job_(job), columns_(columns) {}

  void Take(std::string_view text, std::size_t number) {
    std::string problem = TakePoint(text, number);
    if (!problem.empty()) import_.badLines.push_back({number, std::move(problem)});
  }
  PointImport Finish() { return std::move(import_); }

 private:
  // What is wrong with the line; empty when its point was taken.
  std::string TakePoint(std::string_view text, std::size_t number) {
    const bool first = std::exchange(first_, false);
    const auto line = ReadImportLine(text, columns_);
    if (!line) return "fewer than four fields.";
    if (first && IsHeading(*line)) return import_.headingLine = number, "";
    const std::pair<const char*, const std::string*> fields[] = {{"northing", &line->northing},
                                                                 {"easting", &line->easting},
                                                                 {"elevation", &line->elevation}};
    double values[3] = {};
    for (int i = 0; i < 3; ++i) {
      const NumberEntry entry = ReadNumberEntry(*fields[i].second);
      if (!entry.problem.empty())
        return std::string("the ") + fields[i].first + " " + entry.problem + ".";
      values[i] = entry.value;
    }
    if (std::string problem = IdProblem(job_, line->id); !problem.empty()) return problem;
    Point point{.at = {.northing = values[0], .easting = values[1], .elevation = values[2]},
                .description = Description(line->description),
                .id = {}};
    if (IsEmptySlot(point)) return "a point at 0, 0, 0 without a description counts as no point.";
    point.id = MakePointKey(line->id, job_.store.alphanumeric).value_or(PointKey{}).id;
    const auto [before, isNew] = lineOfId_.emplace(point.id.view(), number);
    if (!isNew) {
      return "point " + point.id.str() + " is on line " + std::to_string(before->second) +
             " already.";
    }
    import_.points.push_back(point);
    import_.descriptions.push_back(line->description);
    return {};
  }

  const Job& job_;
  const ImportColumns& columns_;
  PointImport import_;
  bool first_ = true;
  std::unordered_map<std::string, std::size_t> lineOfId_;
};

// The rectangle that points lie in.
struct Extent {
  double northMin = std::numeric_limits<double>::infinity();
  double northMax = -std::numeric_limits<double>::infinity();
  double eastMin = std::numeric_limits<double>::infinity();
  double eastMax = -std::numeric_limits<double>::infinity();

  void Take(const GridPoint& at) {
    northMin = std::min(northMin, at.northing);
    northMax = std::max(northMax, at.northing);
    eastMin = std::min(eastMin, at.easting);
    eastMax = std::max(eastMax, at.easting);
  }
  double DistanceTo(const Extent& other) const {
    const double north = std::max({0.0, other.northMin - northMax, northMin - other.northMax});
    const double east = std::max({0.0, other.eastMin - eastMax, eastMin - other.eastMax});
    return std::hypot(north, east);
  }
};

// The points of the job by their ids.
using PointsById = std::unordered_map<std::string, Point>;

PointsById ById(const PointList& points) {
  PointsById byId;
  byId.reserve(points.size());
  for (const Point& point : points) byId.emplace(NoteKey(point.id.view()), point);
  return byId;
}

}  // namespace

PointImport ParsePointImport(const Job& job, std::string_view text, const ImportColumns& columns) {
  ImportReader reader(job, columns);
  if (text.starts_with(kByteOrderMark)) text.remove_prefix(kByteOrderMark.size());
  for (std::size_t number = 1; const auto line = TakeLine(text); ++number) {
    if (WithoutOuterBlanks(*line).empty() || line->starts_with('#')) continue;
    reader.Take(*line, number);
  }
  return reader.Finish();
}

std::optional<ImportConflicts> FindImportConflicts(JobSession& session, const PointImport& import) {
  PointList points;
  if (LoadAllPoints(session.job(), points) != LoadPointsResult::Loaded) return std::nullopt;
  FileStatus status;
  const std::unordered_set<std::string> measured = MeasuredPoints(session.job(), status);
  if (!status.ok()) {
    session.observer().OnError("The notes " + PointNotesPath(session.job()) +
                               " cannot be read: " + status.Text() + "; nothing was imported.");
    return std::nullopt;
  }
  const PointsById existing = ById(points);
  ImportConflicts conflicts;
  Extent ofJob;
  Extent ofImport;
  for (const auto& [key, point] : existing) ofJob.Take(point.at);
  for (const Point& point : import.points) ofImport.Take(point.at);
  if (!existing.empty() && !import.points.empty()) {
    conflicts.awayM = ToMetres(ofJob.DistanceTo(ofImport), session.job().options.unit);
  }
  for (const Point& point : import.points) {
    const std::string key = NoteKey(point.id.view());
    if (!existing.contains(key)) continue;
    if (conflicts.existing++ == 0) conflicts.example = point.id.str();
    if (measured.contains(key)) ++conflicts.measured;
  }
  return conflicts;
}

ImportResult StorePointImport(JobSession& session, const PointImport& import,
                              ImportExisting existing, const std::string& source) {
  ImportResult result;
  Job& job = session.job();
  if (!session.storingProblem().empty()) {
    session.observer().OnError(session.storingProblem());
    return result;
  }
  const auto unit = JobUnit::Begin(job);
  if (!unit) return result;
  // Under the lock of the unit: what another program stored meanwhile is replaced by name too.
  PointList there;
  if (LoadAllPoints(unit->coordinates(), there) != LoadPointsResult::Loaded) {
    session.observer().OnError("The points of " + job.path + " cannot be read.");
    return result;
  }
  const PointsById before = ById(there);
  unit->AppendRaw(session.RawOpening());
  unit->AppendRaw(CommentRecord("Points imported from " + source));
  std::vector<Point> points;
  points.reserve(import.points.size());
  for (std::size_t i = 0; i < import.points.size(); ++i) {
    const Point& point = import.points[i];
    const auto old = before.find(NoteKey(point.id.view()));
    if (old != before.end() && existing == ImportExisting::Skip) {
      ++result.skipped;
      continue;
    }
    if (old != before.end()) {
      ++result.replaced;
      unit->AppendRaw(ReplacedPointRecord(old->second));
    }
    AddTypedRecords(*unit, point, import.descriptions[i]);
    points.push_back(point);
  }
  if (points.empty()) return result.done = true, result;
  if (StorePoints(job, points, unit->coordinates()) != StorePointsResult::Stored) return result;
  if (unit->Commit() != ChangeResult::Done) return result;
  session.RawIsOpened();
  result.done = true;
  result.stored = points.size();
  return result;
}

}  // namespace tarvex
