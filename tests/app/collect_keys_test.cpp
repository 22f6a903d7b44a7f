// Single keys while collect runs: what they send, what the terminal shows, how it is left.
#include <gmock/gmock.h>

#include <csignal>
#include <thread>

#include "app/cli/key_commands.h"
#include "app/cli/key_reader.h"
#include "app/cli/refusal_lines.h"
#include "app/cli/status_line.h"
#include "tests/app/program_run.h"
#include "tests/app/terminal.h"

namespace tarvex {
namespace {

using testing::HasSubstr;
using testing::Not;
using Sentences = std::vector<std::string>;

/// Keeps what is said; the prompt as it is seen.
class SeenConsole final : public Console {
 public:
  void Print(std::string_view text) override { said += text; }
  void PrintError(std::string_view text) override { said += text; }
  void PrintBytes(std::string_view bytes) override { said += bytes; }
  void Draw(std::string_view) override {}
  bool IsWatched() override { return true; }
  void ShowProgress(std::string_view) override {}
  void EndProgress() override {}
  bool ShowsProgress() override { return true; }
  void ShowPrompt(std::string_view label, std::string_view typed) override {
    prompt = std::string(label) + std::string(typed);
  }
  void EndPrompt() override { prompt.clear(); }
  bool Ask(std::string_view, std::string&) override { return false; }
  bool IsTyped() override { return true; }
  bool ReadLine(std::string&) override { return false; }

  std::string said;
  std::string prompt;
};

// "d tree", "h 1.5": what a session gets.
struct Told {
  std::string operator()(StoreNow) const { return "store"; }
  std::string operator()(const SetDescription& set) const { return "d " + set.description; }
  std::string operator()(SetAntennaHeight set) const { return "h " + std::to_string(set.height); }
  std::string operator()(const SetNextId& set) const { return "i " + set.id; }
  std::string operator()(SetAverage set) const { return "a " + std::to_string(set.epochs); }
  std::string operator()(TakeBack) const { return "u"; }
  std::string operator()(PauseStoring) const { return "p"; }
  std::string operator()(ResumeStoring) const { return "c"; }
  std::string operator()(RetryCorrections) const { return "r"; }
  std::string operator()(EndSession) const { return "q"; }
  template <typename Other>
  std::string operator()(const Other&) const {
    return "?";
  }
};

class CollectKeys : public testing::Test {
 protected:
  CollectKeys() {
    std::vector<CodeListProblem> problems;
    codes = CodeList::Parse("TREE Tree, single\nTREFOIL\nEP Edge of pavement\n", problems);
  }

  Sentences Type(std::string_view bytes) {
    for (const char byte : bytes) {
      if (const auto key = decoder.Take(byte)) keys.Take(*key);
    }
    if (const auto key = decoder.Idle()) keys.Take(*key);
    Sentences sent;
    while (const auto command = commands.Take()) sent.push_back(std::visit(Told(), *command));
    return sent;
  }

  SeenConsole console;
  SessionCommands commands;
  CodeList codes;
  KeyDecoder decoder;
  KeyCommands keys{console, commands, codes};
};

TEST_F(CollectKeys, AreCommandsAtOnceOrAskForALine) {
  const struct {
    const char* typed;
    Sentences sent;
  } cases[] = {
      {"\n ", {"store", "store"}},
      {"uUrq", {"u", "u", "r", "q"}},
      {"p\n c\n", {"p", "c", "store"}},  // while it is paused nothing waits to be stored
      {"dEP1 B\n\n", {"d EP1 B", "store"}},
      {"d  old tree \n", {"d old tree"}},
      {"d\nh\ni\na\n", {}},  // nothing typed leaves it as it is
      {"d-\n", {"d "}},
      {"dq\x7f\x7f\x7fx\n", {"d x"}},
      {"dB\xC3\xB6\x7f\xC3\xA4\n", {"d B\xC3\xA4"}},
      {"dabc\x15xyz\n", {"d xyz"}},
      {"dabc\x1b", {}},               // Escape gives up,
      {"d\x1b[A\x1bOPx\n", {"d x"}},  // arrows and function keys do not
      {"\x1b[A\x1b[15~q", {"q"}},
      {"dtref\t\n", {"d TREFOIL"}},
      {"dtr\t\tx\n", {"d TREx"}},
      {"dTREE t\t\n", {"d TREE t"}},
      {"h1.85\nh 0\n", {"h 1.850000", "h 0.000000"}},
      {"h1,85\nh-1\nh1001\n", {}},
      {"iA7\n", {"i A7"}},
      {"a10\na0\nax\na100001\n", {"a 10"}},
      {"x\xC3\xA4\x01", {}},
  };
  for (const auto& [typed, sent] : cases) {
    EXPECT_EQ(Type(typed), sent) << typed;
    EXPECT_EQ(console.prompt, "") << typed;
  }
  EXPECT_THAT(console.said, HasSubstr("TREE     Tree, single\nTREFOIL\n"));
  EXPECT_THAT(console.said, HasSubstr("\"x\" is not in the job's list of codes. It is taken all"));
  EXPECT_THAT(console.said,
              HasSubstr("\"1,85\" is not an antenna height: a number from 0 to 1000."));
  EXPECT_THAT(console.said, HasSubstr("\"x\" is not a key here; ? shows them."));
  EXPECT_THAT(console.said, HasSubstr("Storing is paused; c goes on."));
  (void)Type("dEP1 ");
  EXPECT_EQ(console.prompt, "Description (- for none): EP1 ");
}

TEST(StakeKeys, TakeTheTargetsToo) {
  SeenConsole console;
  SessionCommands commands;
  const CodeList codes;
  KeyCommands keys(console, commands, codes, KeyUse::Staking);
  KeyDecoder decoder;
  for (const char byte : std::string_view("nktA5\n")) {
    if (const auto key = decoder.Take(byte)) keys.Take(*key);
  }
  EXPECT_TRUE(std::holds_alternative<NextTarget>(*commands.Take()));
  EXPECT_TRUE(std::holds_alternative<SkipTarget>(*commands.Take()));
  EXPECT_EQ(std::get<ChooseTarget>(*commands.Take()).name, "A5");
  EXPECT_FALSE(commands.Take());
}

// A receiver at the edge of a limit, ten epochs a second for a minute: two lines.
TEST(RefusalLines, AreTwoHoweverOftenALimitIsCrossed) {
  RefusalLines lines;
  Sentences told;
  const auto tell = [&](const std::optional<std::string>& line) {
    if (line) told.push_back(*line);
  };
  const GateRefusal refusal{.limit = Limit::Hrms, .has = "0.051", .wanted = "0.050"};
  for (int epoch = 0; epoch < 600; ++epoch) {
    const bool refused = epoch % 2 == 0;
    tell(lines.Take(refused ? LimitRefuses{refusal} : LimitRefuses{}, epoch * 100));
    tell(lines.Look(epoch * 100));
  }
  for (int epoch = 600; epoch < 700; ++epoch) tell(lines.Look(epoch * 100));
  ASSERT_EQ(told.size(), 2U);
  EXPECT_THAT(told[0], HasSubstr("Not stored: HRMS is 0.051"));
  EXPECT_EQ(told[1], "The limits are kept again, after 59 s.");
}

TEST(StatusLine, SaysFirstWhatMattersMost) {
  PositionSeen seen;
  seen.state.solutionType = SolutionType::Float;
  seen.state.satellites = 14;
  seen.state.unit = DistanceUnit::Metres;
  seen.state.hrms = 0.12;
  seen.state.vrms = 0.2;
  seen.state.precisionKnown = true;
  seen.state.correctionAge = 1.0;
  seen.refusal = GateRefusal{.limit = Limit::Hrms, .has = "0.120", .wanted = "0.050"};
  seen.refusedForMs = 185'000;
  seen.nextId = "13";
  seen.description = "EP1";
  seen.lastId = "12";
  seen.fromLast = 3.2144;
  seen.stored = 5;
  EXPECT_EQ(
      StatusLine(seen),
      "not stored for 3 min 05 s: " +
          RefusalSentence(*seen.refusal).substr(0, RefusalSentence(*seen.refusal).size() - 1) +
          "; FLOAT, 14 sat, HRMS 0.120, VRMS 0.200, age 1.0 s; 3.214 m from "
          "12; next 13 EP1; 5 stored");
  seen.refusal.reset();
  seen.epochs = 10;
  seen.epoch = 3;
  EXPECT_THAT(StatusLine(seen), testing::StartsWith("epoch 3 of 10; FLOAT, "));
}

// What a person types is not torn apart, and nothing of it is left behind at the terminal's width.
TEST(Prompt, StaysBelowWhatIsPrintedAndInPlaceOfProgress) {
  Terminal terminal;
  terminal.SetWidth(20);
  Console& console = StandardConsole();
  console.ShowProgress(std::string(30, 's'));
  console.ShowPrompt("Id: ", "7");
  console.ShowProgress("status");
  console.PrintError("Point 6\n");
  console.ShowPrompt("Id: ", "0123456789abcdefghij");
  console.EndPrompt();
  console.ShowProgress("after");
  console.EndProgress();
  terminal.Look();
  const std::string clear = "\r\x1b[K";
  EXPECT_EQ(terminal.shown, clear + std::string(19, 's') + clear + "Id: 7" + clear + "Point 6\r\n" +
                                clear + "Id: 7" + clear + "Id: 56789abcdefghij" + clear + clear +
                                "after" + clear);
}

/// `tarvex collect` on a terminal of its own, with the simulated receiver.
class CollectAtATerminal : public testing::Test {
 protected:
  void Start(const std::string& options) {
    const std::string command = "cd " + folder.Path("") +
                                " && echo $$ > PID && TARVEX_DATA=data exec " TARVEX_PROGRAM
                                " collect site.crd --receiver simulated " +
                                options + " > OUT";
    process = std::jthread([this, command] { status = std::system(command.c_str()); });
    ASSERT_TRUE(terminal.WaitFor("Enter stores; "));
    ASSERT_TRUE(terminal.WaitFor(" sat, "));
  }
  int Finish() {
    process.join();
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  }
  pid_t Pid() const { return std::atoi(folder.Read("PID").c_str()); }

  CollectAtATerminal() {
    EXPECT_EQ(folder.Run("new site.crd --system \"UTM/UTM WGS84 Zone 32\"").exitCode, 0);
    folder.Write("site.codes", "EP Edge of pavement\n");
  }

  ProgramFolder folder;
  Terminal terminal;
  int status = -1;
  std::jthread process;
};

TEST_F(CollectAtATerminal, StoresAndTakesBackByKeys) {
  Start("");
  EXPECT_FALSE(terminal.IsAsAShellWants());
  terminal.Type("de");
  ASSERT_TRUE(terminal.WaitFor("Description (- for none): e"));
  const std::size_t typing = terminal.shown.size();
  ::poll(nullptr, 0, 1500);  // an epoch comes
  terminal.Look();
  EXPECT_THAT(terminal.shown.substr(typing), Not(HasSubstr(" sat, ")));
  terminal.Type("\t1 B\n\n");
  ASSERT_TRUE(terminal.WaitFor("The next points are \"EP1 B\"."));
  ASSERT_TRUE(terminal.WaitFor("from 1; next 2 EP1; 1 stored"));
  terminal.Type("u");
  ASSERT_TRUE(terminal.WaitFor("Point 1 is taken back."));
  ASSERT_TRUE(terminal.WaitFor("next 1 EP1 B; 0 stored"));  // its line is still to begin
  terminal.Type(" ");
  ASSERT_TRUE(terminal.WaitFor("next 2 EP1; 1 stored"));
  terminal.Type("q");
  EXPECT_EQ(Finish(), 0);
  EXPECT_TRUE(terminal.IsAsAShellWants());
  EXPECT_THAT(folder.Run("points site.crd").output, HasSubstr("  EP1 B\n1 point, Meters\n"));
  EXPECT_EQ(folder.Run("check site.crd").exitCode, 0);
}

TEST_F(CollectAtATerminal, LeavesTheTerminalAsItWasWhenASignalEndsIt) {
  for (const int signal : {SIGTERM, SIGINT, SIGHUP, SIGQUIT, SIGABRT}) {
    ASSERT_NO_FATAL_FAILURE(Start("--every 5"));
    terminal.Type("h1");
    ASSERT_TRUE(terminal.WaitFor("Antenna height: 1"));
    EXPECT_FALSE(terminal.IsAsAShellWants());
    ::kill(Pid(), signal);
    (void)Finish();
    EXPECT_TRUE(terminal.IsAsAShellWants()) << signal;
    terminal.Look();
  }
}

}  // namespace
}  // namespace tarvex
