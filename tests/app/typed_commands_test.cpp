// What a person types beside a session, read on a thread of its own from a real terminal.
#include "app/cli/typed_commands.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdlib>
#include <vector>

#include "tests/app/program_run.h"
#include "tests/app/terminal.h"

namespace tarvex {
namespace {

std::optional<SessionCommand> CommandOf(std::string_view line) {
  SessionCommands commands;
  if (!TakeTypedCommand(line, commands)) return std::nullopt;
  return commands.Take();
}

template <typename Command>
bool Is(std::string_view line) {
  const auto command = CommandOf(line);
  return command && std::holds_alternative<Command>(*command);
}

TEST(TypedCommands, AreOneALine) {
  for (const char* line : {"", " ", "s", "store", "\ts\r"}) EXPECT_TRUE(Is<StoreNow>(line)) << line;
  EXPECT_TRUE(Is<PauseStoring>("p"));
  EXPECT_TRUE(Is<ResumeStoring>("c"));
  EXPECT_TRUE(Is<RetryCorrections>("r"));
  EXPECT_TRUE(Is<EndSession>(" q "));
  EXPECT_TRUE(Is<NextTarget>("n"));
  EXPECT_TRUE(Is<SkipTarget>("k"));
  EXPECT_EQ(std::get<ChooseTarget>(*CommandOf("t A5")).name, "A5");
  EXPECT_EQ(std::get<SetDescription>(*CommandOf("d  old tree ")).description, "old tree");
  EXPECT_EQ(std::get<SetAntennaHeight>(*CommandOf("h 1.85")).height, 1.85);
  for (const char* line : {"x", "ss", "pause", "quit", "h", "h -1", "h 1001", "h 1,85", "d", "dx"})
    EXPECT_FALSE(CommandOf(line)) << line;
}

TEST(TypedCommands, AreTakenWhileProgressIsShown) {
  Terminal terminal;
  Program program{.files = SystemFiles(), .clock = SystemClock(), .console = StandardConsole()};
  SessionCommands commands;
  std::vector<SessionCommand> taken;
  {
    const TypedCommands typed(program, commands);
    terminal.Type("what\nd tree\n\x1b[2Jhere\ns\nq\n");
    for (int i = 0; i < 5000 && (i < 10 || !commands.EndSent()); ++i) {
      program.console.ShowProgress("N 1 E 2");
      terminal.Look();
      SystemClock().SleepMilliseconds(1);
    }
  }
  program.console.EndProgress();
  terminal.Look();
  while (auto command = commands.Take()) taken.push_back(*command);
  ASSERT_EQ(taken.size(), 3U);
  EXPECT_EQ(std::get<SetDescription>(taken[0]).description, "tree");
  EXPECT_TRUE(std::holds_alternative<StoreNow>(taken[1]));
  EXPECT_TRUE(std::holds_alternative<EndSession>(taken[2]));
  EXPECT_THAT(terminal.shown, testing::HasSubstr("\"what\" is not a command: Enter stores, "));
  EXPECT_THAT(terminal.shown, testing::HasSubstr("here\" is not a command: Enter stores, "));
  EXPECT_EQ(terminal.shown.find("Sanitizer"), std::string::npos) << terminal.shown;
  EXPECT_THAT(terminal.shown, testing::HasSubstr("\x1b[KN 1 E 2"));
}

TEST(TypedCommands, EndWithTheirSessionWhenNothingIsTyped) {
  Terminal terminal;
  Program program{.files = SystemFiles(), .clock = SystemClock(), .console = StandardConsole()};
  SessionCommands commands;
  const std::int64_t before = SystemClock().SteadyMilliseconds();
  {
    const TypedCommands typed(program, commands);
  }
  EXPECT_LT(SystemClock().SteadyMilliseconds() - before, 1000);
  EXPECT_FALSE(commands.Take());
}

// A receiver that says nothing: only the typed q ends the session before its patience does.
TEST(TypedCommands, ReachCollectAndStake) {
  ProgramFolder folder;
  ASSERT_EQ(folder.Run("new site.crd --system \"UTM/UTM WGS84 Zone 32\"").exitCode, 0);
  folder.Write("road.cl", "0,0,L,520401.5,5184299.4\n0,200,L,520401.5,5184499.4\n0,0,L,0,0\n");
  const int receiver = ::posix_openpt(O_RDWR | O_NOCTTY);
  ASSERT_EQ(::grantpt(receiver), 0);
  ASSERT_EQ(::unlockpt(receiver), 0);
  const std::string port = std::string(" --receiver serial:") + ::ptsname(receiver);
  for (const std::string line :
       {"collect site.crd", "road stake road.cl 50 --level --job site.crd"}) {
    Terminal terminal;
    terminal.Type("p\nq\n");
    const std::string command = "cd " + folder.Path("") +
                                " && TARVEX_DATA=data " TARVEX_PROGRAM " " + line + port +
                                " --patience 5 > OUT";
    EXPECT_NE(std::system(command.c_str()), -1);
    terminal.Look();
    EXPECT_THAT(terminal.shown, testing::HasSubstr("Stopped; the job is whole.")) << line;
  }
  ::close(receiver);
}

// A point a typed Enter, with the description typed before it; nothing of the positions between.
TEST(TypedCommands, StoreOnEnterAlone) {
  ProgramFolder folder;
  ASSERT_EQ(folder.Run("new site.crd --system \"UTM/UTM WGS84 Zone 32\"").exitCode, 0);
  EXPECT_EQ(folder.Run("collect site.crd --receiver simulated --on-enter").exitCode, 2);
  Terminal terminal;
  terminal.Type("d tree\n\n");
  const std::string command = "cd " + folder.Path("") +
                              " && TARVEX_DATA=data " TARVEX_PROGRAM
                              " collect site.crd --receiver simulated --on-enter --count 1 > OUT";
  EXPECT_EQ(std::system(command.c_str()), 0);
  terminal.Look();
  EXPECT_THAT(terminal.shown, testing::HasSubstr("Enter stores; d text"));
  const auto points = folder.Run("points site.crd");
  EXPECT_THAT(points.output, testing::HasSubstr("  tree\n1 point, Meters\n"));
}

}  // namespace
}  // namespace tarvex
