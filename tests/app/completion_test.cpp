// What shells and `man` are given: tried in a real bash, read by a real formatter.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <string_view>

#include "tests/app/program_run.h"

namespace tarvex {
namespace {

// What a command of the shell prints.
std::string ShellOutput(const std::string& command) {
  std::string output;
  std::FILE* const pipe = ::popen(command.c_str(), "r");
  if (pipe == nullptr) return output;
  char bytes[4096];
  for (std::size_t got = 0; (got = std::fread(bytes, 1, sizeof bytes, pipe)) > 0;) {
    output.append(bytes, got);
  }
  ::pclose(pipe);
  return output;
}

class Completion : public testing::Test {
 protected:
  Completion() {
    folder_.Write("tarvex.bash", folder_.Run("completion bash").output);
    for (const char* file : {"site.crd", "road.cl", "my points.csv"}) folder_.Write(file, "");
    std::filesystem::create_directory(folder_.Path("sub"));
  }

  // What bash offers for the last of these words, separated by "|".
  std::string Offered(const std::string& words) {
    folder_.Write("try.bash",
                  "source ./tarvex.bash\nCOMP_WORDS=(" + words +
                      ")\nCOMP_CWORD=$((${#COMP_WORDS[@]} - 1))\n_tarvex 2>/dev/null\n"
                      "printf '%s\\n' \"${COMPREPLY[@]}\" | LC_ALL=C sort | paste -sd '|'\n");
    std::string offered = ShellOutput("cd '" + folder_.Path(".") + "' && bash try.bash");
    if (offered.ends_with('\n')) offered.pop_back();
    return offered;
  }

  ProgramFolder folder_;
};

TEST_F(Completion, OffersWhatCanComeNext) {
  EXPECT_EQ(Offered("tarvex co"), "collect|convert");
  EXPECT_EQ(Offered("tarvex road st"), "stake|station");
  EXPECT_EQ(Offered("tarvex collect site.crd --over"), "--override-gate");
  EXPECT_EQ(Offered("tarvex collect site.crd --existing ''"), "cancel|next|overwrite");
  EXPECT_EQ(Offered("tarvex collect --existing overwrite ''"), "site.crd|sub");
  EXPECT_EQ(Offered("tarvex collect --on-enter s"), "site.crd|sub");
  EXPECT_EQ(Offered("tarvex road stake ''"), "road.cl|sub");
  EXPECT_EQ(Offered("tarvex road stake road.cl --job ''"), "site.crd|sub");
  EXPECT_EQ(Offered("tarvex import site.crd my"), "my points.csv");
  EXPECT_EQ(Offered("tarvex store site.crd 1 ''"), "");
}

// A hidden command is offered and described nowhere; every other one has its page.
TEST(ManualPages, AreMadeForEveryCommand) {
  ProgramFolder folder;
  ASSERT_EQ(folder.Run("manual man").exitCode, 0);
  const std::string page = folder.Read("man/tarvex-road-stake.1");
  EXPECT_THAT(page, testing::StartsWith(".TH TARVEX-ROAD-STAKE 1 "));
  EXPECT_THAT(page, testing::HasSubstr("\\fB\\-\\-job\\fR \\fIJOB.crd\\fR"));
  EXPECT_THAT(folder.Read("man/tarvex.1"), testing::HasSubstr("\\fBtarvex\\-collect\\fR(1)"));
  EXPECT_FALSE(std::filesystem::exists(folder.Path("man/tarvex-manual.1")));
}

}  // namespace
}  // namespace tarvex
