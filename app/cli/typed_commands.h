// What a person types while a session runs: one command a line, read on a thread of its own.
//
//   (nothing), s   store the next position that the limits let through
//   d TEXT         description of the next points
//   h HEIGHT       antenna height of the next points
//   p, c           pause storing, continue
//   n, k, t NAME   staking: the next target, leave the present one out, take the one of this name
//   r              ask the caster for corrections again
//   q              end the session
#pragma once

#include <atomic>
#include <string_view>
#include <thread>

#include "app/cli/program.h"
#include "app/workflow/session_commands.h"

namespace tarvex {

/// Hands on what a line says; false for a line that is no command.
bool TakeTypedCommand(std::string_view line, SessionCommands& commands);

/// Reads the standard input while it lives.
class TypedCommands {
 public:
  TypedCommands(Program& program, SessionCommands& commands);
  ~TypedCommands();
  TypedCommands(const TypedCommands&) = delete;
  TypedCommands& operator=(const TypedCommands&) = delete;

 private:
  void Read();

  Program& program_;
  SessionCommands& commands_;
  std::atomic<bool> ends_ = false;
  std::thread thread_;
};

}  // namespace tarvex
