#include "app/cli/key_commands.h"

#include <algorithm>
#include <utility>

#include "core/codes/line_work.h"
#include "core/points/point.h"
#include "core/text/number_text.h"
#include "core/text/text.h"

namespace tarvex {
namespace {

constexpr std::size_t kLongestLine = 1000;
constexpr long long kMostEpochs = 100000;

// The last character goes, with all bytes that it has in UTF-8.
void DropCharacter(std::string& text) {
  while (!text.empty() && (static_cast<unsigned char>(text.back()) & 0xC0U) == 0x80) {
    text.pop_back();
  }
  if (!text.empty()) text.pop_back();
}

// How far all the codes begin alike, in the letters of the first.
std::string CommonStart(const std::vector<const FieldCode*>& codes) {
  std::string common = codes.front()->code;
  for (const FieldCode* code : codes) {
    std::size_t same = 0;
    while (same < std::min(common.size(), code->code.size()) &&
           UpperCase(common[same]) == UpperCase(code->code[same])) {
      ++same;
    }
    common = CutAtCharacter(common, same);
  }
  return common;
}

}  // namespace

void KeyCommands::Take(const Key& key) {
  if (prompt_) return TakeInPrompt(key);
  if (key.kind == Key::Kind::Enter) return Store();
  if (key.kind == Key::Kind::Byte) TakeCommand(key.byte);
}

// False for a letter that means nothing more while something is staked.
bool KeyCommands::TakeStakeCommand(char letter) {
  if (use_ != KeyUse::Staking) return false;
  switch (LowerCase(letter)) {
    case 'n':
      return commands_.Send(NextTarget{}), true;
    case 'k':
      return commands_.Send(SkipTarget{}), true;
    case 't':
      return Ask(Wanted::Target), true;
    default:
      return false;
  }
}

void KeyCommands::TakeCommand(char letter) {
  if (TakeStakeCommand(letter)) return;
  switch (LowerCase(letter)) {
    case ' ':
      return Store();
    case 'd':
      return Ask(Wanted::Text);
    case 'h':
      return Ask(Wanted::AntennaHeight);
    case 'i':
      return Ask(Wanted::NextId);
    case 'a':
      return Ask(Wanted::Average);
    case 'u':
      return commands_.Send(TakeBack{});
    case 'p':
      paused_ = true;
      return commands_.Send(PauseStoring{});
    case 'c':
      paused_ = false;
      return commands_.Send(ResumeStoring{});
    case 'r':
      return commands_.Send(RetryCorrections{});
    case 'q':
      return commands_.Send(EndSession{});
    case '?':
      return Say(std::string(keysLine()));
    default:
      // Only once for a character of several bytes.
      if ((static_cast<unsigned char>(letter) & 0x80U) != 0) return;
      Say(std::string("\"") + letter + "\" is not a key here; ? shows them.");
  }
}

void KeyCommands::Store() {
  if (paused_) return Say("Storing is paused; c goes on.");
  commands_.Send(StoreNow{});
}

void KeyCommands::Ask(Wanted wanted) {
  prompt_ = Prompt{wanted, {}};
  Show();
}

void KeyCommands::Show() {
  const auto label = [](Wanted wanted) -> std::string {
    switch (wanted) {
      case Wanted::Text:
        return "Description (- for none): ";
      case Wanted::AntennaHeight:
        return "Antenna height: ";
      case Wanted::NextId:
        return "Next point id: ";
      case Wanted::Target:
        return "Target: ";
      case Wanted::Average:
        break;
    }
    return "Epochs that make a point: ";
  };
  console_.ShowPrompt(label(prompt_->wanted), prompt_->text);
}

void KeyCommands::TakeInPrompt(const Key& key) {
  switch (key.kind) {
    case Key::Kind::Enter: {
      const Prompt answered = *std::exchange(prompt_, std::nullopt);
      console_.EndPrompt();
      return TakeAnswer(answered.wanted, WithoutOuterBlanks(answered.text));
    }
    case Key::Kind::Escape:
      prompt_.reset();
      return console_.EndPrompt();
    case Key::Kind::Byte:
      if (prompt_->text.size() < kLongestLine) prompt_->text += key.byte;
      break;
    case Key::Kind::Backspace:
      DropCharacter(prompt_->text);
      break;
    case Key::Kind::ClearLine:
      prompt_->text.clear();
      break;
    case Key::Kind::Tab:
      if (prompt_->wanted == Wanted::Text) Complete();
      break;
    case Key::Kind::Other:
      break;
  }
  Show();
}

// The code under the cursor, which is the first word.
void KeyCommands::Complete() {
  std::string& text = prompt_->text;
  if (text.find(' ') != std::string::npos) return;
  const auto fitting = codes_.StartingWith(text);
  if (fitting.empty()) return;
  const std::string common = CommonStart(fitting);
  if (common.size() > text.size()) {
    text = common;
  } else {
    ListCodes(text);
  }
}

void KeyCommands::ListCodes(std::string_view start) {
  constexpr std::size_t kMostShown = 20;
  const auto fitting = codes_.StartingWith(start);
  std::size_t width = 0;
  for (const FieldCode* code : fitting) width = std::max(width, code->code.size());
  std::string list;
  for (std::size_t i = 0; i < std::min(kMostShown, fitting.size()); ++i) {
    const FieldCode& code = *fitting[i];
    list += code.code;
    if (!code.title.empty()) list += std::string(width + 2 - code.code.size(), ' ') + code.title;
    list += '\n';
  }
  if (fitting.size() > kMostShown) {
    list += "and " + std::to_string(fitting.size() - kMostShown) + " more\n";
  }
  console_.PrintError(list);
}

// Nothing typed leaves everything as it is.
void KeyCommands::TakeAnswer(Wanted wanted, std::string_view text) {
  if (text.empty()) return;
  const std::string typed = "\"" + std::string(text) + "\"";
  switch (wanted) {
    case Wanted::Text:
      return TakeDescription(text);
    case Wanted::Target:
      return commands_.Send(ChooseTarget{std::string(text)});
    case Wanted::NextId:
      return commands_.Send(SetNextId{std::string(text)});
    case Wanted::AntennaHeight: {
      const auto height = ParseNumber(text);
      if (!height || *height < 0.0 || *height > kHighestAntenna) {
        return Say(typed + " is not an antenna height: a number from 0 to 1000.");
      }
      return commands_.Send(SetAntennaHeight{*height});
    }
    case Wanted::Average: {
      const auto epochs = ParseInteger(text);
      if (!epochs || *epochs < 1 || *epochs > kMostEpochs) {
        return Say(typed + " is not a count of epochs: a whole number from 1 to 100000.");
      }
      return commands_.Send(SetAverage{static_cast<std::size_t>(*epochs)});
    }
  }
}

void KeyCommands::TakeDescription(std::string_view text) {
  const std::string description = text == "-" ? std::string() : std::string(text);
  if (const std::string warning = UnknownCodeWarning(description, codes_); !warning.empty()) {
    Say(warning + " It is taken all the same.");
  }
  commands_.Send(SetDescription{description});
}

}  // namespace tarvex
