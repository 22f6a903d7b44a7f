#include "app/cli/session_input.h"

#include <string>

namespace tarvex {

SessionInput::SessionInput(Program& program, SessionCommands& commands, const CodeList& codes,
                           KeyUse use, bool pipeToo)
    : keyCommands_(program.console, commands, codes, use) {
  if (HasKeysAndScreen(program.console)) {
    program.console.PrintError(std::string(keyCommands_.keysLine()) + "\n");
    keys_.emplace(keyCommands_);
  } else if (pipeToo || program.console.IsTyped()) {
    lines_.emplace(program, commands);
  }
}

}  // namespace tarvex
