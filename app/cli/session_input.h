// What a person types while a session runs: single keys where they are seen, else a command a line.
#pragma once

#include <optional>

#include "app/cli/key_commands.h"
#include "app/cli/key_reader.h"
#include "app/cli/program.h"
#include "app/cli/typed_commands.h"

namespace tarvex {

class SessionInput {
 public:
  /// Reads the standard input while it lives, where a person types it, and with `pipeToo` as lines
  /// also where none does; says which keys there are.
  SessionInput(Program& program, SessionCommands& commands, const CodeList& codes, KeyUse use,
               bool pipeToo = false);

  bool takesKeys() const { return keys_.has_value(); }
  bool takesLines() const { return lines_.has_value(); }

 private:
  KeyCommands keyCommands_;
  std::optional<KeyReader> keys_;
  std::optional<TypedCommands> lines_;
};

}  // namespace tarvex
