// Choosing and converting by coordinate systems, as a person types it.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/app/program_run.h"

namespace tarvex {
namespace {

using testing::HasSubstr;
using testing::Not;

// A datum whose way to WGS84 nobody knows gives no coordinates until one is named.
TEST(Systems, AnUnknownDatumShiftMustBeNamed) {
  ProgramFolder folder;
  const std::string system = "CHINA/Xian 1980/3-degree Gauss-Kruger CM 102E";
  const std::string at = "30 103 0\n";
  EXPECT_THAT(folder.Run("systems xian 102E").output,
              HasSubstr(system + "  [needs --datum-shift]\n"));
  EXPECT_THAT(folder.Run("systems EPSG:32633").output, Not(HasSubstr("[")));
  const ProgramResult refused = folder.Run("convert --system \"" + system + "\"", at);
  EXPECT_EQ(refused.exit_code, 1);
  EXPECT_EQ(refused.output, "");
  EXPECT_THAT(refused.errors, HasSubstr("TOWGS84=dX,dY,dZ"));
  EXPECT_EQ(folder.Run("new site.crd --system \"" + system + "\"").exit_code, 1);
  EXPECT_EQ(folder.Run("new site.crd --datum-shift NONE").exit_code, 2);

  const std::string none = " --system \"" + system + "\" --datum-shift NONE";
  // By PROJ 9.1.1: the projection alone, and with +towgs84=10,20,30.
  EXPECT_EQ(folder.Run("convert --strict" + none, at).output, "3320535.9838 596488.7935 0.0000\n");
  const ProgramResult made = folder.Run("new site.crd" + none);
  EXPECT_EQ(made.exit_code, 0);
  EXPECT_THAT(made.errors, HasSubstr("hundreds of metres off"));
  EXPECT_EQ(folder.Run("convert --job site.crd", at).output, "3320535.9838 596488.7935 0.0000\n");
  EXPECT_EQ(folder.Run("convert --system \"" + system + "\" --datum-shift TOWGS84=10,20,30", at)
                .output.substr(0, 26),
            "3320518.7674 596503.1887 -");
  const ProgramResult wrong = folder.Run("new b.crd --system \"" + system + "\" --datum-shift X");
  EXPECT_EQ(wrong.exit_code, 1);
  EXPECT_THAT(wrong.errors, HasSubstr("There is no datum shift \"X\""));
}

}  // namespace
}  // namespace tarvex
