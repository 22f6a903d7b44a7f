// The keys of the terminal while a session runs, one by one as they are pressed, read on a thread
// of its own. Ctrl-C and Ctrl-Z do what they always do.
#pragma once

#include <atomic>
#include <thread>

#include "app/cli/key_commands.h"

namespace tarvex {

/// A person sits at both ends: keys are typed, and a prompt is seen.
bool HasKeysAndScreen(Console& console);

/// Reads the standard input while it lives. The terminal, which shows what is typed and waits for
/// Enter, is told not to; it is as before when this ends, when the program is stopped, and when a
/// signal kills the program (but for the one that cannot be caught).
class KeyReader {
 public:
  explicit KeyReader(KeyCommands& keys);
  ~KeyReader();
  KeyReader(const KeyReader&) = delete;
  KeyReader& operator=(const KeyReader&) = delete;

 private:
  void Read();

  KeyCommands& keys_;
  std::atomic<bool> ends_ = false;
  std::thread thread_;
};

}  // namespace tarvex
