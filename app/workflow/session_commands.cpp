#include "app/workflow/session_commands.h"

namespace tarvex {

void SessionCommands::Send(SessionCommand command) {
  const std::lock_guard lock(mutex_);
  if (std::holds_alternative<EndSession>(command)) endSent_ = true;
  commands_.push_back(std::move(command));
}

std::optional<SessionCommand> SessionCommands::Take() {
  const std::lock_guard lock(mutex_);
  if (commands_.empty()) return std::nullopt;
  SessionCommand command = std::move(commands_.front());
  commands_.pop_front();
  return command;
}

}  // namespace tarvex
