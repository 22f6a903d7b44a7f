#include "app/cli/manual_pages.h"

#include <string_view>

#include "core/text/text.h"

namespace tarvex {
namespace {

// Folders are seen from the program's own, which the page does not know.
constexpr const char* kFiles =
    ".SH FILES\n"
    ".TP\n\\fI~/.local/share/tarvex\\fR\nCoordinate systems, grids and geoids; what came with the "
    "program is copied there.\n\\fBTARVEX_DATA\\fR names another folder.\n"
    ".TP\n\\fI../share/doc/tarvex\\fR (seen from the program)\nThe guide (docs/guide.md), the "
    "pages of receivers and roads,\nJSON output (docs/json.md) and the file formats.\n";

// Text as the formatter takes it: no character commands anything, and a hyphen can be copied.
std::string Escaped(std::string_view text) {
  std::string escaped;
  for (const char c : text) {
    if (c == '\\') {
      escaped += "\\e";
    } else if (c == '-') {
      escaped += "\\-";
    } else if (c == '\n') {
      escaped += ' ';
    } else {
      escaped += c;
    }
  }
  const bool command = escaped.starts_with('.') || escaped.starts_with('\'');
  return (command ? "\\&" : "") + escaped;
}

// A paragraph in lines that are not too long.
std::string Filled(std::string_view text) {
  constexpr std::size_t kWide = 64;
  std::string filled;
  std::string line;
  for (const char c : text) {
    const bool blank = c == ' ' || c == '\n';
    if (blank && line.size() > kWide) {
      filled += Escaped(line) + "\n";
      line.clear();
    } else if (!blank || !line.empty()) {
      line += blank ? ' ' : c;
    }
  }
  return filled + Escaped(line);
}

std::string Bold(std::string_view text) {
  return "\\fB" + Escaped(text) + "\\fR";
}

std::string Italic(std::string_view text) {
  return "\\fI" + Escaped(text) + "\\fR";
}

// "tarvex-road-stake" of "tarvex road stake".
std::string PageName(std::string words) {
  for (char& c : words) {
    if (c == ' ') c = '-';
  }
  return words;
}

std::string Head(const CommandDescription& command, const std::string& version) {
  const std::string name = PageName(command.words);
  const std::string summary = command.summary.substr(0, command.summary.find('\n'));
  return ".TH " + UpperCase(name) + " 1 \"\" \"" + version + "\" \"Tarvex Manual\"\n.SH NAME\n" +
         Escaped(name) + " \\- " + Escaped(summary) + "\n";
}

std::string Synopsis(const CommandDescription& command) {
  std::string text = ".SH SYNOPSIS\n" + Bold(command.words);
  if (!command.options.empty()) text += " [" + Italic("OPTION") + "]...";
  for (const OptionDescription& argument : command.arguments) {
    const std::string name = Italic(argument.names[0]) + (argument.repeated ? "..." : "");
    text += " " + (argument.required ? name : "[" + name + "]");
  }
  if (!command.commands.empty()) text += " " + Italic("COMMAND") + " ...";
  return text + "\n";
}

std::string Entry(const OptionDescription& option, bool argument) {
  std::string tag;
  for (const std::string& name : option.names) {
    tag += (tag.empty() ? "" : ", ") + (argument ? Italic(name) : Bold(name));
  }
  if (!option.value.empty()) tag += " " + Italic(option.value);
  if (option.repeated) tag += " ...";
  return ".TP\n" + tag + "\n" + Filled(option.help + (option.required ? " (needed)" : "")) + "\n";
}

// The options under their headings, in the order in which these first come.
std::string OptionSections(const CommandDescription& command) {
  std::vector<std::string> headings;
  for (const OptionDescription& option : command.options) {
    bool known = false;
    for (const std::string& heading : headings) known = known || heading == option.heading;
    if (!known) headings.push_back(option.heading);
  }
  std::string text;
  for (const std::string& heading : headings) {
    text += headings.size() == 1 || heading == "Options" ? ".SH OPTIONS\n"
                                                         : ".SS " + Escaped(heading) + "\n";
    for (const OptionDescription& option : command.options) {
      if (option.heading == heading) text += Entry(option, false);
    }
  }
  return text;
}

std::string CommandSection(const CommandDescription& command) {
  if (command.commands.empty()) return "";
  std::string text = ".SH COMMANDS\n";
  for (const CommandDescription& own : command.commands) {
    text += ".TP\n" + Bold(PageName(own.words)) + "(1)\n" + Filled(own.summary) + "\n";
  }
  return text;
}

// Its lines are broken as they are in the help.
std::string Notes(std::string_view footer) {
  if (footer.empty()) return "";
  std::string text = ".SH NOTES\n.nf\n";
  while (const auto line = TakeLine(footer)) text += Escaped(*line) + "\n";
  return text + ".fi\n";
}

std::string Foot(const CommandDescription& command) {
  std::string text =
      ".SH EXIT STATUS\n0 when it is done, 1 when something failed or was not stored,\n2 when the "
      "words make no sense.\n";
  const std::size_t last = command.words.rfind(' ');
  if (last == std::string::npos) return text + kFiles;
  return text + ".SH SEE ALSO\n" + Bold(PageName(command.words.substr(0, last))) + "(1)\n";
}

void AddPages(const CommandDescription& command, const std::string& version,
              std::vector<ManualPage>& pages) {
  std::string text = Head(command, version) + Synopsis(command);
  if (const std::size_t second = command.summary.find('\n'); second != std::string::npos) {
    text += ".SH DESCRIPTION\n" + Filled(command.summary.substr(second + 1)) + "\n";
  }
  if (!command.arguments.empty()) text += ".SH ARGUMENTS\n";
  for (const OptionDescription& argument : command.arguments) text += Entry(argument, true);
  text += CommandSection(command) + OptionSections(command) + Notes(command.footer) + Foot(command);
  pages.push_back({PageName(command.words) + ".1", text});
  for (const CommandDescription& own : command.commands) AddPages(own, version, pages);
}

}  // namespace

std::vector<ManualPage> ManualPages(const CommandDescription& program, const std::string& version) {
  std::vector<ManualPage> pages;
  AddPages(program, version, pages);
  return pages;
}

}  // namespace tarvex
