// Whole files of this machine: replaced, made once, and left to their owner.
#include "platform/file.h"

#include <grp.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <cerrno>
#include <fstream>

#include "core/journal/file_rewrite.h"
#include "platform/clock.h"
#include "tests/support/scratch_folder.h"

namespace tarvex {
namespace {

constexpr uid_t kSomebody = 65534;
constexpr uid_t kSomebodyElse = 65533;

struct stat Info(const std::string& path) {
  struct stat info{};
  EXPECT_EQ(::stat(path.c_str(), &info), 0) << path;
  return info;
}

std::string Read(const std::string& path) {
  std::string bytes;
  EXPECT_TRUE(ReadWholeFile(SystemFiles(), path, 1 << 20, bytes).ok()) << path;
  return bytes;
}

void Write(const std::string& path, const std::string& bytes) {
  ASSERT_TRUE(ReplaceWholeFile(SystemFiles(), path, bytes).ok());
}

// Runs `work` in a process of another user; its result as 0 or 1, 2 when nobody can be made one.
template <typename Work>
int AsUser(uid_t user, gid_t group, const Work& work) {
  const pid_t child = ::fork();
  if (child == 0) {
    if (::setgroups(0, nullptr) != 0 || ::setgid(group) != 0 || ::setuid(user) != 0) ::_exit(2);
    ::_exit(work() ? 0 : 1);
  }
  int status = 0;
  ::waitpid(child, &status, 0);
  return WEXITSTATUS(status);
}

TEST(OpenFile, KnowsThatSomebodyWroteToIt) {
  const ScratchFolder folder;
  const std::string path = folder.Path("site.not");
  Write(path, "old");
  std::unique_ptr<File> file;
  ASSERT_TRUE(SystemFiles().Open(path, FileAccess::Read, file).ok());
  const FileStamp stamp = file->Stamp();
  EXPECT_EQ(file->Stamp(), stamp);
  const std::int64_t giveUpMs = SystemClock().SteadyMilliseconds() + 3000;
  while (file->Stamp() == stamp && SystemClock().SteadyMilliseconds() < giveUpMs) {
    std::fstream(path, std::ios::in | std::ios::out) << "new";  // the same size
  }
  EXPECT_NE(file->Stamp(), stamp);
}

TEST(ReplacedFile, KeepsOwnerGroupAndRights) {
  if (::geteuid() != 0) GTEST_SKIP() << "only root can give files away";
  const ScratchFolder folder;
  const std::string path = folder.Path("site.crd");
  Write(path, "old");
  ASSERT_EQ(::chown(path.c_str(), kSomebody, kSomebodyElse), 0);
  ASSERT_EQ(::chmod(path.c_str(), 0640), 0);
  Write(path, "new");
  EXPECT_EQ(Read(path), "new");
  EXPECT_EQ(Info(path).st_uid, kSomebody);
  EXPECT_EQ(Info(path).st_gid, kSomebodyElse);
  EXPECT_EQ(Info(path).st_mode & 07777, 0640U);
}

TEST(FileMadeBesideAnother, BelongsToTheSameUser) {
  if (::geteuid() != 0) GTEST_SKIP() << "only root can give files away";
  const ScratchFolder folder;
  const std::string model = folder.Path("site.crd");
  const std::string path = folder.Path("site.not");
  Write(model, "points");
  ASSERT_EQ(::chown(model.c_str(), kSomebody, kSomebodyElse), 0);
  ASSERT_EQ(::chmod(model.c_str(), 0640), 0);
  std::unique_ptr<File> file;
  ASSERT_TRUE(MakeBeside(SystemFiles(), model, path, file).ok());
  EXPECT_EQ(Info(path).st_uid, kSomebody);
  EXPECT_EQ(Info(path).st_gid, kSomebodyElse);
  EXPECT_EQ(Info(path).st_mode & 07777, 0640U);
}

// A member of the group may write into the file, but not give a new one to its owner.
TEST(RewrittenFile, OfSomebodyElseStaysTheirs) {
  if (::geteuid() != 0) GTEST_SKIP() << "only root can be somebody else";
  const ScratchFolder folder;
  const std::string path = folder.Path("site.job");
  Write(path, "units=metres\n");
  ASSERT_EQ(::chown(path.c_str(), kSomebody, kSomebody), 0);
  ASSERT_EQ(::chmod(path.c_str(), 0660), 0);
  ASSERT_EQ(::chmod(folder.Path("").c_str(), 0777), 0);
  const struct stat before = Info(path);
  EXPECT_EQ(AsUser(kSomebodyElse, kSomebody,
                   [&] { return RewriteWholeFile(SystemFiles(), path, "units=us-feet\n").ok(); }),
            0);
  EXPECT_EQ(Read(path), "units=us-feet\n");
  EXPECT_EQ(Info(path).st_ino, before.st_ino);
  EXPECT_EQ(Info(path).st_uid, kSomebody);
  EXPECT_FALSE(SystemFiles().Exists(path + ".redo"));
}

TEST(RewrittenFile, KeepsItsOtherNamesAndItsAccessList) {
  const ScratchFolder folder;
  const std::string path = folder.Path("site.job");
  Write(path, "old");
  ASSERT_EQ(::link(path.c_str(), folder.Path("same.job").c_str()), 0);
  EXPECT_TRUE(RewriteWholeFile(SystemFiles(), path, "new").ok());
  EXPECT_EQ(Read(folder.Path("same.job")), "new");

  const std::string listed = folder.Path("listed.job");
  Write(listed, "old");
  EXPECT_TRUE(SystemFiles().IsReplaceable(listed));
  // Version 2; owner rw, user 65534 rw, group r, mask rw, others none.
  const unsigned char list[] = {2,  0, 0, 0,                      //
                                1,  0, 6, 0, 255, 255, 255, 255,  //
                                2,  0, 6, 0, 254, 255, 0,   0,    //
                                4,  0, 4, 0, 255, 255, 255, 255,  //
                                16, 0, 6, 0, 255, 255, 255, 255,  //
                                32, 0, 0, 0, 255, 255, 255, 255};
  constexpr const char* kList = "system.posix_acl_access";
  if (::setxattr(listed.c_str(), kList, list, sizeof list, 0) != 0) {
    GTEST_SKIP() << "this file system keeps no access lists";
  }
  EXPECT_FALSE(SystemFiles().IsReplaceable(listed));
  EXPECT_TRUE(RewriteWholeFile(SystemFiles(), listed, "new").ok());
  EXPECT_EQ(Read(listed), "new");
  EXPECT_EQ(::getxattr(listed.c_str(), kList, nullptr, 0), ssize_t{sizeof list});
}

// Its names cannot be synced through the folder itself.
TEST(ReplacedFile, IsDurableInAFolderThatCannotBeRead) {
  if (::geteuid() != 0) GTEST_SKIP() << "needs a second user";
  const ScratchFolder folder;
  ASSERT_EQ(::chmod(folder.Path("").c_str(), 0333), 0);
  const std::string path = folder.Path("new.job");
  EXPECT_EQ(
      AsUser(kSomebody, kSomebody, [&] { return ReplaceWholeFile(SystemFiles(), path, "x").ok(); }),
      0);
  EXPECT_EQ(Read(path), "x");
}

TEST(NewFile, IsRefusedWhereOneIs) {
  const ScratchFolder folder;
  const std::string path = folder.Path("site.crd");
  Write(path, "points");
  std::unique_ptr<File> file;
  EXPECT_EQ(SystemFiles().Open(path, FileAccess::CreateNew, file).code, EEXIST);
  EXPECT_EQ(Read(path), "points");
}

// Who may not give the file to the model's group lets no other group have its rights.
TEST(FileMadeBesideAnother, GivesAnotherGroupNoMoreThanEverybody) {
  if (::geteuid() != 0) GTEST_SKIP() << "only root can be somebody else";
  const ScratchFolder folder;
  const std::string model = folder.Path("site.crd");
  const std::string path = folder.Path("site.not");
  Write(model, "points");
  ASSERT_EQ(::chown(model.c_str(), kSomebody, kSomebody), 0);
  ASSERT_EQ(::chmod(model.c_str(), 0664), 0);
  ASSERT_EQ(::chmod(folder.Path("").c_str(), 0777), 0);
  EXPECT_EQ(AsUser(kSomebodyElse, kSomebodyElse,
                   [&] {
                     std::unique_ptr<File> file;
                     return MakeBeside(SystemFiles(), model, path, file).ok();
                   }),
            0);
  EXPECT_EQ(Info(path).st_gid, kSomebodyElse);
  EXPECT_EQ(Info(path).st_mode & 07777, 0644U);
}

TEST(NewFile, IsMadeByExactlyOne) {
  constexpr int kRounds = 20;
  constexpr int kProcesses = 8;
  const ScratchFolder folder;
  for (int round = 0; round < kRounds; ++round) {
    const std::string path = folder.Path("job" + std::to_string(round));
    std::vector<pid_t> processes;
    for (int i = 0; i < kProcesses; ++i) {
      const pid_t child = ::fork();
      if (child == 0) {
        const std::string mine(1000, static_cast<char>('a' + i));
        const FileStatus status = CreateWholeFile(SystemFiles(), path, mine);
        ::_exit(status.ok() ? i : status.code == EEXIST ? 100 : 101);
      }
      processes.push_back(child);
    }
    int winners = 0;
    int winner = -1;
    for (const pid_t child : processes) {
      int status = 0;
      ::waitpid(child, &status, 0);
      EXPECT_NE(WEXITSTATUS(status), 101);
      if (WEXITSTATUS(status) < kProcesses) ++winners, winner = WEXITSTATUS(status);
    }
    ASSERT_EQ(winners, 1);
    EXPECT_EQ(Read(path), std::string(1000, static_cast<char>('a' + winner)));
    EXPECT_FALSE(SystemFiles().Exists(path + ".tmp"));
  }
}

}  // namespace
}  // namespace tarvex
