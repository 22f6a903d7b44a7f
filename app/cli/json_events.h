// A session's events as JSON lines, for a program that reads what happens.
#pragma once

#include <string_view>

#include "app/cli/json_text.h"
#include "app/cli/program.h"
#include "app/workflow/session_events.h"

namespace tarvex {

/// What a receiver said of its position: "latitude" and "longitude" in degrees, "height" in metres
/// above the ellipsoid, "solution", "satellites", precisions in the job's unit. What the receiver
/// did not tell is null.
Json PositionJson(const GnssPositionState& state);

Json CorrectionsJson(const CorrectionStatus& status);

/// Each event is a line {"event": NAME, ...} of the output (docs/json.md); warnings and problems go
/// where the program's errors go.
class JsonEvents final : public SessionListener {
 public:
  explicit JsonEvents(Program& program) : program_(program) {}

  void On(const SessionEvent& event) override;

 private:
  Program& program_;
};

/// Prints {"event": name, ...} with these members.
void PrintEvent(Program& program, std::string_view name, Json members = Json::EmptyObject());

/// How a session ended, as the event "ended" tells it.
std::string_view SessionEndName(SessionEnd end);

}  // namespace tarvex
