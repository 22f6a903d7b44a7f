#include "app/cli/json_console.h"

#include <algorithm>
#include <cstdio>

#include "app/cli/json_text.h"
#include "core/text/text.h"

namespace tarvex {
namespace {

const char* EventName(Notice kind) {
  switch (kind) {
    case Notice::Error:
      return "error";
    case Notice::Warning:
      return "warning";
    case Notice::Message:
      break;
  }
  return "message";
}

}  // namespace

// Whoever reads the events acts on them: none waits in a buffer.
void JsonConsole::Print(std::string_view text) {
  console_.Print(text);
  std::fflush(stdout);
}

void JsonConsole::Tell(Notice kind, std::string_view text) {
  while (text.ends_with('\n')) text.remove_suffix(1);
  while (text.starts_with('\n')) text.remove_prefix(1);
  if (text.empty()) return;
  console_.PrintError(JsonLine({{"event", EventName(kind)}, {"text", text}}) + "\n");
}

bool AskForJson(std::span<const std::string> words) {
  const auto end = std::find(words.begin(), words.end(), "--");
  return std::find(words.begin(), end, "--json") != end;
}

}  // namespace tarvex
