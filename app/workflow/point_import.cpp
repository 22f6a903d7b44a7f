#include "app/workflow/point_import.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>
#include <unordered_map>

#include "app/workflow/entered_number.h"
#include "app/workflow/point_storing.h"
#include "core/coordinate_file.h"
#include "core/job_unit.h"
#include "core/number_text.h"
#include "core/point_bulk.h"
#include "core/point_key.h"
#include "core/point_list.h"
#include "core/point_store.h"
#include "core/raw_records.h"
#include "core/text.h"

namespace tarvex {
namespace {

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

// A field off the front of a line; nothing when the line has no more.
std::optional<std::string_view> TakeField(std::optional<std::string_view>& line) {
  if (!line) return std::nullopt;
  const std::size_t comma = line->find(',');
  const std::string_view field = WithoutOuterBlanks(line->substr(0, comma));
  if (comma == std::string_view::npos) {
    line.reset();
  } else {
    line->remove_prefix(comma + 1);
  }
  return field;
}

// The text of a field that a spreadsheet put into quotes ("nail, ""red""" is nail, "red"); any
// other as it is.
std::string Unquoted(std::string_view field) {
  if (field.size() < 2 || field.front() != '"' || field.back() != '"') return std::string(field);
  std::string text;
  for (std::size_t i = 1; i + 1 < field.size(); ++i) {
    text += field[i];
    const bool doubled = field[i] == '"' && i + 2 < field.size() && field[i + 1] == '"';
    if (doubled) ++i;
  }
  return text;
}

std::string IdProblem(const Job& job, std::string_view id) {
  if (id.size() > kPointIdLength)
    return "the id \"" + OneLine(id) + "\" is longer than 9 characters.";
  return PointIdProblem(job, id);
}

// The lines of a text, one point each.
class ImportReader {
 public:
  explicit ImportReader(const Job& job) : job_(job) {}

  void Take(std::string_view text, std::size_t number) {
    std::string problem = TakePoint(text, number);
    if (!problem.empty()) import_.badLines.push_back({number, std::move(problem)});
  }
  PointImport Finish() { return std::move(import_); }

 private:
  // What is wrong with the line; empty when its point was taken.
  std::string TakePoint(std::string_view text, std::size_t number) {
    std::optional<std::string_view> line = text;
    const auto id = TakeField(line);
    double values[3] = {};
    for (int i = 0; i < 3; ++i) {
      constexpr const char* kNames[] = {"northing", "easting", "elevation"};
      const auto field = TakeField(line);
      if (!field) return "fewer than four fields.";
      const NumberEntry entry = ReadNumberEntry(*field);
      if (!entry.problem.empty())
        return std::string("the ") + kNames[i] + " " + entry.problem + ".";
      values[i] = entry.value;
    }
    if (std::string problem = IdProblem(job_, *id); !problem.empty()) return problem;
    const std::string description = Unquoted(WithoutOuterBlanks(line.value_or("")));
    Point point{.at = {.northing = values[0], .easting = values[1], .elevation = values[2]},
                .description = Description(description),
                .id = {}};
    if (IsEmptySlot(point)) return "a point at 0, 0, 0 without a description counts as no point.";
    point.id = MakePointKey(*id, job_.store.alphanumeric).value_or(PointKey{}).id;
    const auto [before, isNew] = lineOfId_.emplace(point.id.view(), number);
    if (!isNew) {
      return "point " + point.id.str() + " is on line " + std::to_string(before->second) +
             " already.";
    }
    import_.points.push_back(point);
    import_.descriptions.push_back(description);
    return {};
  }

  const Job& job_;
  PointImport import_;
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

PointImport ParsePointImport(const Job& job, std::string_view text) {
  ImportReader reader(job);
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
