// What storing a point came to, in words.
#pragma once

#include "app/cli/program.h"
#include "app/workflow/point_storing.h"

namespace tarvex {

enum class Announce {
  OnOutput,
  OnErrors,  ///< beside JSON
  AsEvent    ///< {"event":"stored", ...} on the output
};

ExitCode TellStored(Program& program, JobSession& session, const TypedPointResult& result,
                    Announce announce = Announce::OnOutput);

/// Says why TakeFirstId gave none: an id that was typed is wrong use.
ExitCode TellNoFirstId(Program& program, const std::string& first, const std::string& problem);

/// The sentence about a point that exists and may not be replaced without an answer.
std::string ExistsSentence(const std::string& id);

}  // namespace tarvex
