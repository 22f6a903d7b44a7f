// tarvex check: a whole job says nothing, and each damage is found.
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>

#include "core/journal/change_journal.h"
#include "platform/file.h"
#include "tests/app/json_reading.h"
#include "tests/app/program_run.h"

namespace tarvex {
namespace {

// A job with everything that the commands write: typed, imported, overwritten, deleted and received
// points, notes, a localization's comment.
void MakeWholeJob(ProgramFolder& folder, const std::string& options = "") {
  ASSERT_EQ(folder.Run("new site.crd --system \"UTM/UTM WGS84 Zone 32\" " + options).exitCode, 0);
  ASSERT_EQ(folder
                .Run("collect site.crd --receiver simulated --count 4 --first 10 "
                     "--antenna-height 2 --description edge")
                .exitCode,
            0);
  ASSERT_EQ(folder.Run("store site.crd 1 5184900.12345 520300 -1100.25 \"bench, mark\"").exitCode,
            0);
  folder.Write("more.csv", "2,1,2,3,two\n3,-0.00004,2.00005,3,three\n1,7,8,9\n");
  ASSERT_EQ(folder.Run("import site.crd more.csv --existing overwrite").exitCode, 0);
  ASSERT_EQ(folder.Run("store site.crd 2 4 5 6 again --existing overwrite").exitCode, 0);
  ASSERT_EQ(folder.Run("store site.crd 4 4 5 6").exitCode, 0);
  ASSERT_EQ(folder.Run("delete site.crd 4 13").exitCode, 0);
  ASSERT_EQ(folder.Run("note site.crd 1 --add \"seen from north\"").exitCode, 0);
  ASSERT_EQ(folder.Run("note site.crd 10 --add \"seen from south\"").exitCode, 0);
}

std::vector<std::string> Kinds(ProgramFolder& folder) {
  const ProgramResult result = folder.Run("check site.crd --json");
  const JsonReading json = JsonReading(result.output);
  std::vector<std::string> kinds;
  for (const JsonReading& finding : json["findings"].values())
    kinds.push_back(finding["kind"].text());
  EXPECT_EQ(result.exitCode, kinds.empty() ? 0 : 1);
  EXPECT_EQ(json["ok"], kinds.empty());
  return kinds;
}

TEST(Check, SaysNothingAboutAWholeJob) {
  for (const char* options : {"", "--numeric", "--units us-feet --south-azimuths"}) {
    ProgramFolder folder;
    MakeWholeJob(folder, options);
    const ProgramResult result = folder.Run("check site.crd");
    EXPECT_EQ(result.exitCode, 0) << result.output;
    EXPECT_TRUE(result.output.starts_with("The job is whole: 6 points, ")) << result.output;
    EXPECT_EQ(result.errors, "");
  }
}

// Replaces the first `oldText` of a file of the job.
void Edit(ProgramFolder& folder, const std::string& name, const std::string& oldText,
          const std::string& newText) {
  std::string bytes = folder.Read(name);
  const std::size_t at = bytes.find(oldText);
  ASSERT_NE(at, std::string::npos) << name << " has no " << oldText;
  folder.Write(name, bytes.replace(at, oldText.size(), newText));
}

// Takes the block of a point out of the notes.
std::string WithoutBlock(const std::string& notes, const std::string& id) {
  const std::size_t start = notes.find("PT_ID:" + id + "\n");
  const std::size_t end = notes.find("PT_ID:", start + 1);
  return notes.substr(0, start) + (end == std::string::npos ? "" : notes.substr(end));
}

constexpr std::size_t kHeader = 104;
constexpr std::size_t kRecord = 66;

void SwapFirstRecords(ProgramFolder& folder) {
  const std::string crd = folder.Read("site.crd");
  folder.Write("site.crd", crd.substr(0, kHeader) + crd.substr(kHeader + kRecord, kRecord) +
                               crd.substr(kHeader, kRecord) + crd.substr(kHeader + 2 * kRecord));
}

void FirstRecordTwice(ProgramFolder& folder) {
  const std::string crd = folder.Read("site.crd");
  folder.Write("site.crd", crd.substr(0, kHeader + kRecord) + crd.substr(kHeader));
}

void WithoutFirstRecord(ProgramFolder& folder) {
  const std::string crd = folder.Read("site.crd");
  folder.Write("site.crd", crd.substr(0, kHeader) + crd.substr(kHeader + kRecord));
}

void CutRawFile(ProgramFolder& folder) {
  const std::string raw = folder.Read("site.rw5");
  folder.Write("site.rw5", raw + "\nSP,PN2,N 4.0000,E 5.00");
}

struct Damage {
  const char* kind;
  std::function<void(ProgramFolder&)> make;
};

std::vector<Damage> Damages() {
  const auto append = [](const char* name, const std::string& text) {
    return [=](ProgramFolder& folder) { folder.Write(name, folder.Read(name) + text); };
  };
  const auto edit = [](const char* name, const char* oldText, const char* newText) {
    return [=](ProgramFolder& folder) { Edit(folder, name, oldText, newText); };
  };
  const auto remove = [](const char* name) {
    return
        [=](ProgramFolder& folder) { ASSERT_TRUE(SystemFiles().Remove(folder.Path(name)).ok()); };
  };
  return {
      {"settings-missing", remove("site.job")},
      {"setting-unused", append("site.job", "gate_hrm=0.02\n")},
      {"setting-unused", append("site.job", "gate_hrms=0,02\n")},
      {"raw-file-missing", remove("site.rw5")},
      {"unit", edit("site.job", "units=metres", "units=us-feet")},
      {"azimuths", edit("site.job", "azimuths=north", "azimuths=south")},
      {"layout", edit("site.rw5", "--CRD: Alphanumeric", "--CRD: Numeric")},
      {"file-left", [](ProgramFolder& folder) { folder.Write("site.job.tmp", "x"); }},
      {"trailing-bytes", append("site.crd", "torn")},
      {"order", SwapFirstRecords},
      {"id-twice", FirstRecordTwice},
      {"record-broken", CutRawFile},
      {"no-coordinates", WithoutFirstRecord},
      {"no-observation", edit("site.rw5", "SP,PN3,", "SP,PN2,")},
      {"still-there", append("site.rw5", "\n--Deleted point:SP,PN2,N 4.0000,E 5.0000,EL6.0000,--")},
      {"coordinates", append("site.rw5", "\nSP,PN2,N 4.0000,E 5.0001,EL6.0000,--")},
      {"quality-of-typed", append("site.not", "PT_ID:2\nHRMS,0.010\nVRMS,0.010\n")},
      {"quality-missing",
       [](ProgramFolder& folder) {
         folder.Write("site.not", WithoutBlock(folder.Read("site.not"), "11"));
       }},
      {"note-twice", append("site.not", "PT_ID:1\nNOTE1,again\n")},
      {"note-without-point", append("site.not", "PT_ID:77\nNOTE1,what?\n")},
  };
}

TEST(Check, FindsEachDamage) {
  ProgramFolder whole;
  MakeWholeJob(whole);
  for (const Damage& damage : Damages()) {
    ProgramFolder folder;
    for (const char* name : {"site.crd", "site.job", "site.rw5", "site.not"}) {
      folder.Write(name, whole.Read(name));
    }
    ASSERT_EQ(Kinds(folder), std::vector<std::string>{}) << damage.kind;
    damage.make(folder);
    const std::vector<std::string> kinds = Kinds(folder);
    EXPECT_NE(std::find(kinds.begin(), kinds.end(), damage.kind), kinds.end()) << damage.kind;
  }
}

TEST(Check, NamesThePointAndTheLine) {
  ProgramFolder folder;
  MakeWholeJob(folder);
  folder.Write("site.rw5", folder.Read("site.rw5") + "\nSP,PN2,N 4.0000,E 5.0001,EL6.0000,--");
  const std::string raw = folder.Read("site.rw5");
  const auto line = std::to_string(1 + std::count(raw.begin(), raw.end(), '\n'));
  const std::string said = folder.Run("check site.crd").output;
  EXPECT_TRUE(
      said.starts_with("Point 2 is at N 4.0000, E 5.0000, EL 6.0000, but its last record "
                       "(site.rw5 line " +
                       line + ") says N 4.0000, E 5.0001, EL 6.0000.\n1 fault in "))
      << said;
}

// As a program leaves it that was killed before the files were durable.
TEST(Check, TellsAnInterruptedChange) {
  ProgramFolder folder;
  MakeWholeJob(folder);
  const std::string path = folder.Path("site.crd");
  std::unique_ptr<File> file;
  ASSERT_TRUE(SystemFiles().Open(path, FileAccess::ReadWrite, file).ok());
  std::uint64_t size = 0;
  ASSERT_TRUE(file->Size(size).ok());
  JournalPlace place;
  FilesStatus status;
  ASSERT_EQ(CarryOut(SystemFiles(), path, place, {{.oldSize = size, .newSize = size}},
                     {.coordinates = file.get()}, status),
            ChangeResult::Done);
  const ProgramResult first = folder.Run("check site.crd");
  EXPECT_EQ(first.exitCode, 0);
  EXPECT_TRUE(first.output.starts_with("The last work on the job was interrupted")) << first.output;
  EXPECT_TRUE(folder.Run("check site.crd").output.starts_with("The job is whole"));
}

TEST(Check, FindsWhatANumericHeaderHides) {
  ProgramFolder folder;
  MakeWholeJob(folder, "--numeric");
  folder.Write("site.crd", std::string(8, '\0') + folder.Read("site.crd").substr(8));
  EXPECT_EQ(Kinds(folder), std::vector<std::string>{"count"});
}

}  // namespace
}  // namespace tarvex
