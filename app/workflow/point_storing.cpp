#include "app/workflow/point_storing.h"

#include "core/coordinate_file.h"
#include "core/number_text.h"
#include "core/point_id.h"
#include "core/point_store.h"
#include "core/raw_file.h"
#include "core/raw_records.h"
#include "core/text.h"

namespace tarvex {

ExistingPolicy ParseExistingPolicy(std::string_view name) {
  if (name == "overwrite") return ExistingPolicy::Overwrite;
  if (name == "next") return ExistingPolicy::Next;
  return name == "cancel" ? ExistingPolicy::Cancel : ExistingPolicy::Ask;
}

std::string PointIdProblem(const Job& job, std::string_view id) {
  const std::string shown = "\"" + OneLine(id) + "\"";
  if (job.alphanumeric) return NormalisePointId(id).empty() ? "The point id is empty." : "";
  const auto number = ParseInteger(id);
  if (!number || *number < 1 || *number > kHighestPointNumber) {
    return shown + " is no point number: this job numbers its points 1 to 999999999.";
  }
  if (*number - job.last_point_number <= kLargestGap) return "";
  return "Point " + shown + " would leave " + std::to_string(*number - job.last_point_number - 1) +
         " numbers empty behind point " + job.last_point_id + "; at most " +
         std::to_string(kLargestGap) + " may be jumped over.";
}

bool TakePointId(Program& program, Job& job, std::string_view id) {
  id = WithoutOuterBlanks(id);
  if (const std::string problem = PointIdProblem(job, id); !problem.empty()) {
    (void)program.Misuse(problem);
    return false;
  }
  if (job.alphanumeric && id.size() > kPointIdLength) {
    program.Warn("the id \"" + OneLine(id) + "\" is longer than 9 characters and was cut.");
  }
  job.current_point_id =
      job.alphanumeric ? NormalisePointId(id).str() : std::to_string(*ParseInteger(id));
  return true;
}

ExitCode StoreUnderId(Program& program, JobSession& session, const std::string& id,
                      const GridPoint& at, const std::string& description, Announce announce) {
  Job& job = session.job();
  const auto stream = OpenCoordinateFile(job);
  if (!stream) return ExitCode::Failed;
  if (!TakePointId(program, job, id)) return ExitCode::WrongUse;
  if (IsEmptySlot({.at = at, .description = Description(description), .id = {}})) {
    return program.Misuse(
        "A point at 0, 0, 0 without a description counts as no point; describe it.");
  }
  const StorePointResult result = StorePoint(job, at, description, true, stream.get());
  switch (result) {
    case StorePointResult::Stored:
    case StorePointResult::StoredNotDurable:  // the person was told
      break;
    case StorePointResult::Cancelled:
      return program.Fail("Point " + job.current_point_id +
                          " exists; nothing was stored. (--existing overwrite or next decides.)");
    case StorePointResult::DialogFailed:
      return program.Fail("No free point id was found behind " + job.current_point_id + ".");
    case StorePointResult::Nothing:
    case StorePointResult::NoStream:
      return program.Fail("Point " + job.current_point_id + " was not stored.");
  }
  const std::string told = "Stored point " + job.last_stored_point.id.str() + ".\n";
  if (announce == Announce::OnOutput) {
    program.console.Print(told);
  } else {
    program.console.PrintError(told);
  }
  if (AppendRawRecord(job, StoredPointRecord(job.last_stored_point, description)) ==
      RawFileResult::Written) {
    return result == StorePointResult::Stored ? ExitCode::Done : ExitCode::Failed;
  }
  return program.Fail("The point is stored, but the raw file " + RawFilePath(job) +
                      " could not be written.");
}

}  // namespace tarvex
