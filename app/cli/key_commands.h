// What a person says by single keys while a session runs: most are a command at once, some ask for
// a line at the bottom of the terminal first.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "app/cli/keys.h"
#include "app/cli/program.h"
#include "app/workflow/session_commands.h"
#include "core/codes/code_list.h"

namespace tarvex {

/// The keys in one line.
inline constexpr std::string_view kKeysLine =
    "Enter stores; d text, h antenna, i id, a mean, u undo, p/c pause, r retry, q end";

inline constexpr std::string_view kStakeKeysLine =
    "Enter stores; n next, k leave out, t take a target; d text, h antenna, i id, a mean, u undo, "
    "p/c pause, r retry, q end";

enum class KeyUse { Collecting, Staking };

class KeyCommands {
 public:
  /// Talks through the console and sends to `commands`; both last longer, as the list of codes.
  KeyCommands(Console& console, SessionCommands& commands, const CodeList& codes,
              KeyUse use = KeyUse::Collecting)
      : console_(console), commands_(commands), codes_(codes), use_(use) {}
  /// A prompt that nobody answered is gone.
  ~KeyCommands() {
    if (prompt_) console_.EndPrompt();
  }
  KeyCommands(const KeyCommands&) = delete;
  KeyCommands& operator=(const KeyCommands&) = delete;

  void Take(const Key& key);
  /// The keys that there are, in one line.
  std::string_view keysLine() const { return use_ == KeyUse::Staking ? kStakeKeysLine : kKeysLine; }

 private:
  enum class Wanted { Text, AntennaHeight, NextId, Average, Target };
  struct Prompt {
    Wanted wanted = Wanted::Text;
    std::string text;
  };

  void TakeCommand(char letter);
  bool TakeStakeCommand(char letter);
  void Store();
  void Ask(Wanted wanted);
  void TakeInPrompt(const Key& key);
  void Complete();
  void ListCodes(std::string_view start);
  void TakeAnswer(Wanted wanted, std::string_view text);
  void TakeDescription(std::string_view text);
  void Show();
  void Say(const std::string& sentence) { console_.PrintError(sentence + "\n"); }

  Console& console_;
  SessionCommands& commands_;
  const CodeList& codes_;
  KeyUse use_;
  std::optional<Prompt> prompt_;
  bool paused_ = false;
};

}  // namespace tarvex
