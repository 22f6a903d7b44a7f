// The folder for passing files that nobody else can reach.
#include "platform/private_folder.h"

#include <gtest/gtest.h>
#include <stdlib.h>
#include <sys/stat.h>

#include <filesystem>
#include <fstream>

#include "platform/file.h"

namespace tarvex {
namespace {

TEST(PrivateFolder, IsMadeAnewForItsOwnerAloneAndLeavesNothing) {
  std::string path;
  {
    const PrivateFolder one;
    const PrivateFolder other;
    path = one.path();
    ASSERT_TRUE(one.made() && other.made());
    EXPECT_NE(path, other.path()) << "no name that another could have taken before";
    struct stat status{};
    ASSERT_EQ(::lstat(path.substr(0, path.size() - 1).c_str(), &status), 0);
    EXPECT_TRUE(S_ISDIR(status.st_mode));
    EXPECT_EQ(status.st_mode & 0777U, 0700U);
    std::ofstream(path + "tmp_sourcetable.txt") << "STR;";
    ASSERT_TRUE(std::filesystem::exists(path + "tmp_sourcetable.txt"));
  }
  EXPECT_FALSE(std::filesystem::exists(path));
}

TEST(PrivateFolder, OpensNoFileWhereItCannotBeMade) {
  std::unique_ptr<File> file;
  const std::string nowhere = "/dev/null/tmp_sourcetable.txt";
  EXPECT_FALSE(SystemFiles().Open(nowhere, FileAccess::CreateOrTruncate, file).ok());
}

}  // namespace
}  // namespace tarvex
