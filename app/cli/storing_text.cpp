#include "app/cli/storing_text.h"

#include <utility>

#include "app/cli/json_events.h"

namespace tarvex {

std::string ExistsSentence(const std::string& id) {
  return "Point " + id + " exists; nothing was stored. (--existing overwrite or next decides.)";
}

ExitCode TellNoFirstId(Program& program, const std::string& first, const std::string& problem) {
  if (problem.empty()) return ExitCode::Failed;
  return first.empty() ? program.Fail(problem) : program.Misuse(problem);
}

ExitCode TellStored(Program& program, JobSession& session, const TypedPointResult& result,
                    Announce announce) {
  if (!result.problem.empty()) return program.Misuse(result.problem);
  const std::string& wanted = session.job().ids.current;
  switch (result.stored.result) {
    case StoringResult::Stored:
    case StoringResult::StoredLater:
      break;
    case StoringResult::Exists:
      return program.Fail(ExistsSentence(wanted));
    case StoringResult::NoFreeId:
      return program.Fail("No free point id was found behind " + wanted + ".");
    case StoringResult::Failed:
      return program.Fail(wanted.empty() ? "Nothing was stored."
                                         : "Point " + wanted + " was not stored.");
  }
  if (announce == Announce::AsEvent) {
    Json json = {{"point", PointJson(result.stored.point)}};
    if (result.stored.replaced) json["replaced"] = PointJson(*result.stored.replaced);
    PrintEvent(program, "stored", std::move(json));
    return result.stored.result == StoringResult::Stored ? ExitCode::Done : ExitCode::Failed;
  }
  const std::string told = "Stored point " + result.stored.point.id.str() +
                           (result.stored.replaced ? " over the one that existed.\n" : ".\n");
  if (announce == Announce::OnOutput) {
    program.console.Print(told);
  } else {
    program.console.PrintError(told);
  }
  return result.stored.result == StoringResult::Stored ? ExitCode::Done : ExitCode::Failed;
}

}  // namespace tarvex
