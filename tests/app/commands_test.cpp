// The commands on job files, as a person types them.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <sstream>

#include "platform/file.h"
#include "tests/app/json_reading.h"
#include "tests/app/program_run.h"

namespace tarvex {
namespace {

TEST(Commands, KeepAJobFromTheFirstPointToTheLast) {
  ProgramFolder folder;
  EXPECT_EQ(
      folder.Run("new site.crd --units us-feet --scale-factor 0.9996 --south-azimuths").exitCode,
      0);
  EXPECT_EQ(folder.Run("store site.crd a-1 5000.25 -100.5 99.125 \"corner, \u00E9\"").output,
            "Stored point A_1.\n");
  EXPECT_EQ(folder.Run("store site.crd 2 1 2 3").exitCode, 0);
  const ProgramResult again = folder.Run("store site.crd 2 9 9 9 --existing cancel");
  EXPECT_EQ(again.exitCode, 1);
  EXPECT_EQ(again.errors,
            "ERROR: Point 2 exists; nothing was stored. (--existing overwrite or next decides.)\n");
  EXPECT_EQ(folder.Run("store site.crd 2 9 9 9 --existing next").output, "Stored point 3.\n");
  EXPECT_EQ(folder.Run("store site.crd 2 7 8 9 --existing overwrite").exitCode, 0);
  EXPECT_EQ(folder.Run("delete site.crd 3").output, "Deleted point 3.\n");
  EXPECT_EQ(folder.Run("delete site.crd 3").exitCode, 1);

  const auto listed = JsonReading(folder.Run("points site.crd --json").output);
  EXPECT_EQ(listed["unit"], "us-feet");
  ASSERT_EQ(listed["points"].size(), 2U);
  EXPECT_EQ(
      listed["points"][1],
      JsonReading("{\"id\":\"A_1\",\"northing\":5000.25,\"easting\":-100.5,\"elevation\":99.125,"
                  "\"description\":\"corner, \u00E9\"}"));
  const std::string table = folder.Run("points site.crd").output;
  EXPECT_NE(table.find("A_1              5000.2500       -100.5000         99.1250  corner, "
                       "\u00E9\n2 points, Feet\n"),
            std::string::npos)
      << table;

  const std::string raw = folder.Run("raw site.crd").output;
  EXPECT_NE(raw.find("\nMO,AD1,UN2,SF0.99960000,EC0,EO0.0,AU0\n"), std::string::npos);
  EXPECT_NE(raw.find("\nSP,PNA_1,N 5000.2500,E -100.5000,EL99.1250,--corner, \u00E9\n"),
            std::string::npos);
  EXPECT_NE(raw.find("\n--Deleted point:SP,PN3,"), std::string::npos);
  EXPECT_EQ(JsonReading(folder.Run("raw site.crd --json").output)["records"][0]["record"], "JB");

  EXPECT_EQ(folder.Run("note site.crd A-1 --add \"seen from north\"").output,
            "PT_ID:A_1\nNOTE1,seen from north\n");
  EXPECT_EQ(JsonReading(folder.Run("note site.crd a_1 --json").output)["notes"][0],
            "seen from north");
}

// Each store in a small file replaces it, so that whoever waits for its lock has to look again.
TEST(Commands, StoreInTurnWhenManyRunAtOnce) {
  ProgramFolder folder;
  EXPECT_EQ(folder.Run("new site.crd").exitCode, 0);
  std::vector<pid_t> processes;
  for (int i = 0; i < 16; ++i) {
    processes.push_back(folder.Start("store site.crd P" + std::to_string(16 - i) + " 1 2 3"));
  }
  for (const pid_t process : processes) EXPECT_EQ(folder.Finish(process).exitCode, 0);
  EXPECT_EQ(JsonReading(folder.Run("points site.crd --json").output)["points"].size(), 16U);
}

TEST(Commands, MakeAJobOnceWhenManyWantIt) {
  ProgramFolder folder;
  for (int round = 0; round < 10; ++round) {
    const std::string job = "job" + std::to_string(round) + ".crd";
    std::vector<pid_t> processes;
    for (int i = 0; i < 6; ++i) processes.push_back(folder.Start("new " + job));
    int created = 0;
    for (const pid_t process : processes) created += folder.Finish(process).exitCode == 0 ? 1 : 0;
    EXPECT_EQ(created, 1);
    EXPECT_EQ(folder.Run("store " + job + " 1 2 3 4").exitCode, 0);
    EXPECT_EQ(folder.Read("job" + std::to_string(round) + ".rw5").substr(0, 5), "JB,NM");
    EXPECT_FALSE(SystemFiles().Exists(folder.Path("job" + std::to_string(round) + ".job.tmp")));
  }
}

TEST(Commands, JournalWhatANewJobIsSetUpWith) {
  ProgramFolder folder;
  ASSERT_EQ(folder
                .Run("new site.crd --system \"UTM/UTM WGS84 Zone 32\" --datum-shift "
                     "TOWGS84=100,-50,20.5,1,2,-3,0.5")
                .exitCode,
            0);
  const std::string raw = folder.Read("site.rw5");
  EXPECT_NE(raw.find("\n--dX: 100.00000000, dY: -50.00000000, dZ: 20.50000000, rotX: "
                     "-1.0000000000, rotY: -2.0000000000, rotZ: 3.0000000000, scale: "
                     "0.5000000000\n--WGS84 raw positions no longer shifted to NAD83\n"
                     "--Elevation: 3D"),
            std::string::npos)
      << raw;
  ASSERT_EQ(folder.Run("new plain.crd").exitCode, 0);
  EXPECT_TRUE(folder.Read("plain.rw5").ends_with("\n--Coordinate System: none\n--Elevation: 3D"));
}

TEST(Commands, SayWhatTheyWaitFor) {
  ProgramFolder folder;
  EXPECT_EQ(folder.Run("new site.crd").exitCode, 0);
  std::unique_ptr<File> held;
  ASSERT_TRUE(OpenLocked(SystemFiles(), folder.Path("site.crd"), FileAccess::ReadWrite, held).ok());
  const pid_t process = folder.Start("store site.crd A 1 2 3");
  while (folder.Read("ERR").empty()) ::usleep(1000);
  EXPECT_EQ(folder.Read("ERR"), "Waiting for another program that works on site.crd ...\n");
  held.reset();
  const ProgramResult stored = folder.Finish(process);
  EXPECT_EQ(stored.exitCode, 0);
  EXPECT_EQ(stored.output, "Stored point A.\n");
}

struct WrongUse {
  const char* line;
  int exitCode;
  const char* errors;  // a part of what is said
};

const WrongUse kWrongUses[] = {
    {"", 2, "Say which of these commands"},
    {"collct", 2, "There is no command \"collct\". Did you mean collect?"},
    {"points --jsn numbers.crd", 2, "There is no option --jsn. Did you mean --json?"},
    {"frobnicate", 2, "There is no command \"frobnicate\""},
    {"road frobnicate", 2, "There is no command \"frobnicate\""},
    {"store numbers.crd 1 1 2 -x", 2, "goes after \"--\""},
    {"new site", 2, "ends in .crd: site.crd?"},
    {"new folder/", 2, "ends in .crd: folder/site.crd?"},
    {"new folder/.crd", 2, "needs a name before .crd"},
    {"new numbers.crd", 1, "numbers.crd exists; a new job overwrites nothing"},
    {"new x.crd --scale-factor zero", 2, "\"zero\" is not a number from 0.5 to 2"},
    {"new x.crd --system nowhere", 1, "There is no coordinate system \"nowhere\""},
    {"new x.crd --definition none.txt", 1, "none.txt cannot be read: No such file"},
    {"new x.crd --units furlongs", 2, "furlongs"},
    {"points none.crd", 1, "There is no job none.crd"},
    {"points numbers", 1, "There is no job numbers; there is numbers.crd."},
    {"store numbers.crd A1 1 2 3", 2, "\"A1\" is not a point number"},
    {"store numbers.crd 2000000 1 2 3", 2, "would leave 1999999 numbers empty"},
    {"store numbers.crd 1 0 0 0", 2, "counts as no point"},
    {"new x.crd --definition feet.txt", 1, "foot"},
    {"store numbers.crd 1 1 2,5 3", 2, "The easting \"2,5\" is not a number"},
    {"store numbers.crd 1 nan 2 3", 2, "The northing \"nan\" is not a number"},
    {"store numbers.crd 1 1 2 1e300", 2, "The elevation \"1e300\" is out of range"},
    {"note numbers.crd 9", 1, "There is no point 9"},
    {"collect numbers.crd --receiver usb", 2, "usb"},
    {"collect numbers.crd --receiver simulated", 1, "no coordinate system"},
    {"convert", 2, "--system NAME, --definition FILE, or --job"},
    {"store", 2, "JOB.crd is missing: tarvex store JOB.crd ID NORTHING EASTING ELEVATION ["},
    {"road write x.cl", 2, "--out FILE is missing"},
    {"collect x.crd --receiver", 2, "--receiver needs a value"},
    {"collect x.crd --average 1.5", 2, "--average: \"1.5\" is not a whole number"},
    {"collect x.crd --count -1", 2, "--count: \"-1\" is not a number from 0 to"},
    {"collect x.crd --every 1 --distance 2", 2, "--every and --distance do not go together"},
    {"collect x.crd --existing overwrit", 2, "overwrite, next, cancel. Did you mean overwrite?"},
    {"systems --definition x", 2, "--definition goes with --add only"},
    {"localize x.crd --wgs84 1 2", 2, "--wgs84 needs 3 values: LAT LON HEIGHT"},
    {"bases --known --near 97,8", 2, "the latitude is beyond 90 degrees"},
    {"collect numbers.crd", 2, "Say which receiver"},
    {"collect numbers.crd --profile rover", 2, "tarvex profile save rover"},
    {"watch", 2, "Say which receiver"},
    {"new b.crd --profile rover", 2, "There is no profile \"rover\""},
    {"settings nothere.crd", 1, "tarvex new nothere.crd"},
    {"settings numbers.crd unts", 2, "did you mean units?"},
    {"settings numbers.crd gate_hrms gate_vrms=1", 2, "gate_hrms=VALUE"},
    {"settings numbers.crd gate_solution=rtk", 2, "fixed, float, dgps or autonomous"},
    {"settings numbers.crd system=Nowhere", 2, "tarvex systems TEXT"},
    {"settings numbers.crd geoid=egm2008.gtx", 2, "system=NAME,GEOID=FILE"},
    {"settings numbers.crd definition=x", 2, "--definition FILE"},
    {"settings numbers.crd profile=rover", 2, "There is no profile \"rover\""},
    {"settings numbers.crd password_file=nothere", 2, "cannot be read"},
    {"checkin numbers.crd 1 --receiver simulated", 1, "`tarvex store` stores a known one"},
    {"checkin numbers.crd", 2, "POINT is missing"},
    {"recompute numbers.crd", 1, "no coordinate system"},
    {"note numbers.crd 1 --heights", 1, "There is no point 1"},
    {"profile", 2, "Say which of these commands"},
    {"profile save rover", 2, "Say what the profile holds"},
    {"profile save rover antenna_height=-1", 2, "a number from 0 to 1000"},
    {"profile save \"my rover\" average=2", 2, "is no name for a profile"},
    {"profile show rover", 1, "There is no profile \"rover\""},
    {"profile delete rover", 1, "There is no profile \"rover\""},
    {"systems xyzzy", 1, "\"xyzzy\""},
};

TEST(Commands, NameWhatIsWrong) {
  ProgramFolder folder;
  EXPECT_EQ(folder.Run("new numbers.crd --numeric").exitCode, 0);
  folder.Write(
      "feet.txt",
      "PROJCS[\"P\",GEOGCS[\"G\",DATUM[\"D\",SPHEROID[\"GRS 1980\",6378137,298.257222101],"
      "TOWGS84[0,0,0]]],PROJECTION[\"Transverse_Mercator\"],PARAMETER[\"central_meridian\",9],"
      "PARAMETER[\"latitude_of_origin\",0],PARAMETER[\"scale_factor\",1],"
      "PARAMETER[\"false_easting\",0],PARAMETER[\"false_northing\",0],"
      "UNIT[\"US survey foot\",0.304800609601219]]");
  for (const WrongUse& c : kWrongUses) {
    const ProgramResult result = folder.Run(c.line);
    EXPECT_EQ(result.exitCode, c.exitCode) << c.line;
    EXPECT_NE(result.errors.find(c.errors), std::string::npos) << c.line << "\n" << result.errors;
    EXPECT_EQ(result.output, "") << c.line;
  }
}

TEST(Commands, NameTheFileThatIsWrong) {
  ProgramFolder folder;
  EXPECT_EQ(folder.Run("new numbers.crd --numeric").exitCode, 0);
  folder.Write("numbers.job", "units=metres\nscale_factor=-1\n");
  EXPECT_NE(folder.Run("points numbers.crd").errors.find("scale_factor=-1 makes no sense"),
            std::string::npos);
  folder.Write("numbers.job", "units=met\n");
  EXPECT_NE(folder.Run("points numbers.crd")
                .errors.find("units=met makes no sense (metres, us-feet or intl-feet)"),
            std::string::npos);
  folder.Write("photo.crd", std::string(300, 'J'));
  EXPECT_NE(folder.Run("points photo.crd").errors.find("photo.crd is not a coordinate file"),
            std::string::npos);
}

// What cannot be wrong with the points themselves, but should not go unseen.
// Somebody relies on a limit: one that is not understood must not turn into none.
TEST(Commands, StoreNothingUnderALimitThatIsNotUnderstood) {
  ProgramFolder folder;
  ASSERT_EQ(folder.Run("new site.crd --system \"UTM/UTM WGS84 Zone 32\"").exitCode, 0);
  const std::string settings = folder.Read("site.job");
  for (const std::string limit : {"gate_solution=rtk", "gate_hrm=0.02", "gate_satellites=4.5"}) {
    folder.Write("site.job", settings + limit + "\n");
    const auto run = folder.Run("collect site.crd --receiver simulated");
    EXPECT_EQ(run.exitCode, 1) << limit;
    EXPECT_THAT(run.errors, testing::HasSubstr("The job's limit " + limit + " is not understood"));
  }
  EXPECT_THAT(folder.Run("points site.crd").output, testing::HasSubstr("holds no points"));
}

TEST(Commands, TellWhatIsMissing) {
  ProgramFolder folder;
  EXPECT_EQ(folder.Run("new site.crd").exitCode, 0);
  EXPECT_EQ(folder.Run("store site.crd A 1 2 3").exitCode, 0);
  EXPECT_EQ(folder.Run("points site.crd").errors, "");
  folder.Write("cut.crd", folder.Read("site.crd") + "torn");
  const ProgramResult cut = folder.Run("points cut.crd");
  EXPECT_EQ(cut.exitCode, 0);
  EXPECT_EQ(cut.errors,
            "WARNING: The job's settings cut.job are missing: metres, azimuths from north and no "
            "coordinate system are assumed.\n"
            "WARNING: No raw file says in which unit the points of cut.crd are. Nothing is stored "
            "until it is known: `tarvex settings cut.crd units=metres` (or us-feet, intl-feet) "
            "makes new settings.\n"
            "WARNING: cut.crd ends in the middle of a record: its last 4 bytes are no point.\n");
  EXPECT_EQ(folder.Run("new many.crd --numeric").exitCode, 0);
  EXPECT_EQ(folder.Run("store many.crd 1 1 2 3").exitCode, 0);
  folder.Write("many.crd", std::string(8, '\0') + folder.Read("many.crd").substr(8));
  EXPECT_EQ(
      folder.Run("points many.crd").errors,
      "WARNING: many.crd has records up to number 1, but its header counts to 0: those behind "
      "are listed, but not found by their number.\n");
}

// How many commands there are below the one that `words` call; each shows its own help.
int CommandsWithHelp(ProgramFolder& folder, const std::string& words) {
  const ProgramResult help = folder.Run(words + " --help");
  EXPECT_EQ(help.exitCode, 0) << words;
  EXPECT_NE(help.output.find("Usage: tarvex" + words + " "), std::string::npos) << help.output;
  std::istringstream lines(
      help.output.substr(std::min(help.output.find("\nSubcommands:\n"), help.output.size())));
  int count = 0;
  for (std::string line; std::getline(lines, line);) {
    const std::string name = line.substr(0, line.find(' ', 2));
    if (line.size() < 3 || line[2] == ' ' || !line.starts_with("  ")) continue;
    count += 1 + CommandsWithHelp(folder, words + " " + name.substr(2));
  }
  return count;
}

TEST(Commands, TeachTheirUse) {
  ProgramFolder folder;
  EXPECT_GE(CommandsWithHelp(folder, ""), 32);
  EXPECT_EQ(folder.Run("--version").output.substr(0, 7), "Tarvex ");
}

TEST(Commands, ImportNamesTheBadLines) {
  ProgramFolder folder;
  EXPECT_EQ(folder.Run("new site.crd").exitCode, 0);
  folder.Write("points.csv",
               "\xEF\xBB\xBF# exported\r\n10, 1.5 ,2,3,oak\r\nB2,1,2\nA2,1,x,3\n\n2,4,5,6\n"
               "1234567890,1,2,3\nx-1,1,2,3\nX_1,4,5,6\n");
  const ProgramResult refused = folder.Run("import site.crd points.csv");
  EXPECT_EQ(refused.exitCode, 1);
  EXPECT_EQ(refused.errors,
            "ERROR: points.csv line 3: fewer than four fields.\n"
            "ERROR: points.csv line 4: the easting \"x\" is not a number.\n"
            "ERROR: points.csv line 7: the id \"1234567890\" is longer than 9 characters.\n"
            "ERROR: points.csv line 9: point X_1 is on line 8 already.\n"
            "ERROR: Nothing was stored. (--skip-bad-lines stores the other lines.)\n");
  EXPECT_EQ(folder.Run("points site.crd").output, "The job holds no points.\n");
  const ProgramResult stored = folder.Run("import site.crd points.csv --skip-bad-lines");
  EXPECT_EQ(stored.exitCode, 1);
  EXPECT_EQ(stored.output, "Stored 3 points from points.csv.\n");
  const auto listed = JsonReading(folder.Run("points site.crd --json").output);
  EXPECT_EQ(listed["points"][0]["id"], "2");
  EXPECT_EQ(listed["points"][1]["description"], "oak");
}

TEST(Commands, ConvertGoesOnAfterABadLine) {
  ProgramFolder folder;
  const std::string system = "--system \"UTM/UTM WGS84 Zone 32\"";
  // 46.815172 N 9.267419 E: PROJ 9.1.1, EPSG:32632.
  const ProgramResult result = folder.Run(
      "convert " + system, "46.815172 9.267419 1101.4\nhere\n\n91 9\n46.815172,9.267419\n");
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_EQ(
      result.output,
      "5184659.8918 520400.6825 1101.4000\n"
      "ERROR: line 2: \"here\" is not a number or an angle\n"
      "\n"
      "ERROR: line 4: the latitude is beyond 90 degrees: latitude comes first, longitude second, "
      "and these look swapped\n"
      "5184659.8918 520400.6825\n");
  const ProgramResult inverse =
      folder.Run("convert --inverse --decimals 6 " + system, "5184659.8918 520400.6825 1101.4\n");
  EXPECT_EQ(inverse.exitCode, 0);
  EXPECT_EQ(inverse.output, "46.815172 9.267419 1101.4000\n");
  const ProgramResult feet =
      folder.Run("convert --units us-feet --decimals 2 " + system, "46.815172 9.267419 0\n");
  EXPECT_EQ(feet.output, "17010004.99 1707347.91 0.00\n");
}

}  // namespace
}  // namespace tarvex
