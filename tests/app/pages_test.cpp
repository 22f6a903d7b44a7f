// What the pages for users print can be typed as printed, and gives what they say.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "core/text/text.h"
#include "tests/app/program_run.h"

namespace tarvex {
namespace {

std::string ReadSourceFile(const std::string& name) {
  std::ostringstream bytes;
  bytes
      << std::ifstream(std::string(TARVEX_TEST_DATA) + "/../../" + name, std::ios::binary).rdbuf();
  return bytes.str();
}

struct PrintedCommand {
  std::string line;                   ///< behind "tarvex "
  std::string input;                  ///< of "echo INPUT | tarvex ..."
  std::vector<std::string> expected;  ///< lines that are printed below it
};

// The indented lines of a page: commands, what they print, "..." for what is left out. A line that
// ends in a backslash goes on in the next one. Prose ends what a command prints.
std::vector<PrintedCommand> CommandsOf(std::string_view page) {
  constexpr std::string_view kIndent = "    ";
  constexpr std::string_view kProgram = "tarvex ";
  std::vector<PrintedCommand> commands;
  bool follows = false;
  std::string begun;
  while (const auto line = TakeLine(page)) {
    if (line->empty()) continue;
    if (!line->starts_with(kIndent)) {
      follows = false;
      continue;
    }
    std::string text(line->substr(kIndent.size()));
    if (!begun.empty()) text = begun + " " + std::string(WithoutOuterBlanks(text));
    begun.clear();
    if (text.ends_with('\\')) {
      text.pop_back();
      begun = std::string(WithoutOuterBlanks(text));
      continue;
    }
    const std::size_t pipe = text.find(" | tarvex ");
    if (text.starts_with("echo ") && pipe != std::string::npos) {
      commands.push_back({text.substr(pipe + 10), text.substr(5, pipe - 5) + "\n", {}});
    } else if (text.starts_with(kProgram)) {
      commands.push_back({text.substr(kProgram.size()), "", {}});
    } else {
      if (follows && text != "...") commands.back().expected.push_back(text);
      continue;
    }
    follows = true;
  }
  return commands;
}

void Replace(std::string& text, std::string_view what, std::string_view by) {
  for (std::size_t at = text.find(what); at != std::string::npos; at = text.find(what, at)) {
    text.replace(at, what.size(), by);
    at += by.size();
  }
}

// A page in the program's source, each command run after the other in one folder.
void RunPage(ProgramFolder& folder, const std::string& page,
             const std::vector<std::pair<std::string, std::string>>& standIns) {
  const std::vector<PrintedCommand> commands = CommandsOf(ReadSourceFile(page));
  ASSERT_GT(commands.size(), 5U);
  for (PrintedCommand command : commands) {
    for (const auto& [printed, standIn] : standIns) Replace(command.line, printed, standIn);
    const std::size_t file = command.line.find(" < ");
    if (file != std::string::npos) {
      command.input = folder.Read(command.line.substr(file + 3));
      command.line.resize(file);
    }
    const ProgramResult result = folder.Run(command.line, command.input);
    EXPECT_EQ(result.exitCode, 0) << command.line << "\n" << result.errors;
    const std::string said = "\n" + result.output + "\n" + result.errors;
    for (const std::string& line : command.expected) {
      EXPECT_THAT(said, testing::HasSubstr("\n" + line + "\n")) << command.line;
    }
  }
}

void PutRoad(ProgramFolder& folder, const std::string& into) {
  for (const char* name : {"site.cl", "site.tpl", "site.xml", "rover.nmea"}) {
    folder.Write(into + name, ReadSourceFile(std::string("docs/roads/") + name));
  }
}

TEST(Pages, TheRoadsPageGivesWhatItPrints) {
  ProgramFolder folder;
  std::filesystem::create_directories(folder.Path("docs/roads"));
  PutRoad(folder, "docs/roads/");
  RunPage(folder, "docs/roads.md", {});
}

TEST(Pages, TheDayOfTheGuideCanBeTyped) {
  ProgramFolder folder;
  PutRoad(folder, "");
  folder.Write("road.cl", ReadSourceFile("docs/roads/site.cl"));
  folder.Write("control.csv", "CP1,5184910,520310,1100.3,nail\n");
  folder.Write("positions.txt", "46.8152 9.2674 1100\n46.8153 9.2675\n");
  folder.Write("egm2008.gtx", ReadSourceFile("tests/data/datum/bavaria.gtx"));
  folder.Run("new grid.crd --system \"UTM/UTM WGS84 Zone 32\"");
  RunPage(
      folder, "docs/guide.md",
      {{" --corrections ntrip://user@caster.example:2101/MOUNT", ""},
       {"serial:/dev/ttyUSB0@115200", "simulated"},
       {"tcp:192.168.1.20:9001", "file:rover.nmea"},
       {"--store 11", "--store 11 --store-on-stake"},
       // The simulated receiver is not at the bench mark.
       {"checkin site.crd BM1", "checkin site.crd 100 --tolerance 1 --vertical-tolerance 1"},
       // The recording is of a rover on the system's grid; the guide's job is localized by then.
       {"--elevation 1101.6 --job site.crd", "--elevation 1101.6 --job grid.crd"}});
  EXPECT_THAT(folder.Run("points grid.crd").output, testing::HasSubstr("\n11 "));
  EXPECT_THAT(folder.Run("points site.crd").output, testing::HasSubstr("\n100 "));
}

}  // namespace
}  // namespace tarvex
