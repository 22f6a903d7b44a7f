#include "app/workflow/point_storing.h"

#include "core/coordinates/coordinate_file.h"
#include "core/coordinates/point_store.h"
#include "core/observations/next_id.h"
#include "core/points/point_key.h"
#include "core/raw_data/raw_records.h"
#include "core/text/text.h"

namespace tarvex {
namespace {

// Decides with the person what happens to a point that exists, without a lock on the files.
void AskAboutExisting(JobSession& session, const TypedPoint& point) {
  if (session.policy() != ExistingPolicy::Ask) return;
  Job& job = session.job();
  Point existing;
  {
    const auto stream = OpenForReading(job);
    if (ReadPoint(job, job.ids.current, stream.get(), existing) != ReadPointResult::Found) {
      return;
    }
  }
  const ExistingPointAnswer answer = session.observer().AskExistingPoint(
      {.id = job.ids.current, .existing = existing, .wanted = point.at});
  switch (answer.choice) {
    case ExistingPointAnswer::Choice::Overwrite:
      return session.setPolicy(ExistingPolicy::Overwrite);
    case ExistingPointAnswer::Choice::UseNextFreeId:
      return session.setPolicy(ExistingPolicy::Next);
    default:
      return session.setPolicy(ExistingPolicy::Cancel);
  }
}

}  // namespace

ExistingPolicy ParseExistingPolicy(std::string_view name) {
  if (name == "overwrite") return ExistingPolicy::Overwrite;
  if (name == "next") return ExistingPolicy::Next;
  return name == "cancel" ? ExistingPolicy::Cancel : ExistingPolicy::Ask;
}

std::string PointIdProblem(const Job& job, std::string_view id) {
  const std::string shown = "\"" + OneLine(id) + "\"";
  const auto key = MakePointKey(id, job.store.alphanumeric);
  if (job.store.alphanumeric) return key ? "" : "The point id is empty.";
  if (!key || key->number < 1 || key->number > kHighestPointNumber) {
    return shown + " is not a point number: this job numbers its points 1 to 999999999.";
  }
  const long long beyond = key->number - job.store.lastPointNumber;
  if (beyond <= kLargestGap) return "";
  return "Point " + shown + " would leave " + std::to_string(beyond - 1) +
         " numbers empty behind point " + job.store.lastPointId + "; at most " +
         std::to_string(kLargestGap) + " may be jumped over.";
}

bool TakePointId(JobSession& session, std::string_view id, std::string& problem) {
  Job& job = session.job();
  id = WithoutOuterBlanks(id);
  problem = PointIdProblem(job, id);
  if (!problem.empty()) return false;
  if (job.store.alphanumeric && id.size() > kPointIdLength) {
    session.observer().OnWarning("the id \"" + OneLine(id) +
                                 "\" is longer than 9 characters and was cut.");
  }
  job.ids.current = MakePointKey(id, job.store.alphanumeric).value_or(PointKey{}).id.str();
  return true;
}

bool TakeFirstId(JobSession& session, std::string_view first, std::string& problem) {
  Job& job = session.job();
  const auto stream = OpenCoordinateFile(job);
  if (!stream) return false;
  if (!first.empty()) return TakePointId(session, first, problem);
  const auto next = NextIdToUse(job, *stream);
  if (next) job.ids.current = *next;
  if (!next) problem = "No free point id was found behind " + job.ids.current + ".";
  return next.has_value();
}

void AddTypedRecords(JobUnit& unit, const Point& stored, std::string_view description) {
  unit.AppendRaw(StoredPointRecord(stored, description));
  unit.EditNote(stored.id.view(), {.kind = NoteEdit::Kind::DropQuality, .note = {}});
}

TypedPointResult StoreTypedPoint(JobSession& session, const TypedPoint& point) {
  TypedPointResult result;
  if (!OpenForReading(session.job())) return result;  // tells what ids the job has
  if (!TakePointId(session, point.id, result.problem)) return result;
  if (IsEmptySlot({.at = point.at, .description = Description(point.description), .id = {}})) {
    result.problem = "A point at 0, 0, 0 without a description counts as no point; describe it.";
    return result;
  }
  if (const std::string cut = DescriptionWarning(point.description); !cut.empty()) {
    session.observer().OnWarning(cut);
  }
  AskAboutExisting(session, point);
  result.stored = StorePointUnit(session, point.at, point.description, Settling::Now,
                                 [&point](JobUnit& unit, const Point& stored) {
                                   AddTypedRecords(unit, stored, point.description);
                                   unit.AppendRaw(point.comments);
                                 });
  return result;
}

}  // namespace tarvex
