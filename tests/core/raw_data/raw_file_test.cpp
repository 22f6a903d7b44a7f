#include "core/raw_data/raw_file.h"

#include <gtest/gtest.h>

#include "core/coordinates/coordinate_file.h"
#include "core/job/settings.h"
#include "core/observations/next_id.h"
#include "core/observations/point_notes.h"
#include "core/observations/total_station.h"
#include "core/raw_data/raw_comments.h"
#include "core/raw_data/raw_header.h"
#include "core/raw_data/raw_records.h"
#include "core/raw_data/raw_shot.h"
#include "tests/support/test_host.h"

namespace tarvex {
namespace {

constexpr const char* kRawPath = "/jobs/site.rw5";
constexpr double kSecond = 1.0 / 3600;

const Point kPoint{.at = {.northing = 5000.123456, .easting = -0.00004, .elevation = 99.99996},
                   .description = Description("IP, 1/2\" rebar"),
                   .id = PointId("A1")};

TEST(RawFile, StartsWithItsHeader) {
  TestHost host;
  Job job = MakeJob(host, true);
  job.options.scaleFactor = 0.9996;
  job.options.unit = DistanceUnit::UsSurveyFeet;
  job.options.azimuthsFromSouth = true;
  EXPECT_EQ(AppendRawRecord(job, StoredPointRecord(kPoint, kPoint.description.view())),
            RawFileResult::Written);
  EXPECT_EQ(host.memory.Bytes(kRawPath),
            "JB,NM$noname$,DT12-05-2008,TM14:03:09\n"
            "MO,AD1,UN2,SF0.99960000,EC0,EO0.0,AU0\n"
            "--Tarvex\n"
            "--CRD: Alphanumeric\n"
            "SP,PNA1,N 5000.1235,E -0.0000,EL100.0000,--IP, 1/2\" rebar");
}

RawFileResult Resume(Job& job) {
  const std::string opening = RawOpeningRecords(job);
  return opening.empty() ? AppendRawRecords(job, {}) : AppendRawRecord(job, opening);
}

TEST(RawFile, IsResumedWithAStamp) {
  TestHost host;
  Job job = MakeJob(host, false);
  job.name = "site, north";
  job.options.unit = DistanceUnit::InternationalFeet;
  ASSERT_NE(OpenCoordinateFile(job), nullptr);
  EXPECT_EQ(Resume(job), RawFileResult::Written);
  const std::string header = host.memory.Bytes(kRawPath);
  EXPECT_EQ(header,
            "JB,NMsite_ north,DT12-05-2008,TM14:03:09\nMO,AD0,UN0,SF1.00000000,EC0,EO0.0,AU0\n"
            "--Tarvex\n--CRD: Numeric");
  EXPECT_EQ(Resume(job), RawFileResult::Written);
  const std::string resumed = header + "\n--DT12-05-2008\n--TM14:03:09";
  EXPECT_EQ(host.memory.Bytes(kRawPath), resumed);
  job.options.collector = "Tarvex 9";
  EXPECT_EQ(Resume(job), RawFileResult::Written);
  EXPECT_EQ(host.memory.Bytes(kRawPath), resumed + "\n--Tarvex 9\n--DT12-05-2008\n--TM14:03:09");
  host.memory.Put(kRawPath, "");  // an empty file is a new one: its header names the program once
  EXPECT_EQ(Resume(job), RawFileResult::Written);
  EXPECT_EQ(host.memory.Bytes(kRawPath), RawHeader(job, host.manualClock.now));
  host.memory.MakeReadOnly(kRawPath);
  EXPECT_EQ(AppendRawRecord(job, "\n--lost"), RawFileResult::Dropped);
}

TEST(RawRecords, AreWrittenToTheByte) {
  TestHost host;
  Job job = MakeJob(host, true);
  EXPECT_EQ(OccupyRecord(kPoint), "\nOC,OPA1,N 5000.12346,E -0.00004,EL100.000,--IP, 1/2\" rebar");
  EXPECT_EQ(HeightsRecord(1.5, 2), "\nLS,HI1.5000,HR2.0000");
  EXPECT_EQ(RodHeightRecord(0), "\nLS,HR0.0000");
  EXPECT_EQ(GnssRecord({.pointId = "7",
                        .latitudeDegrees = 12.0 + 29.0 / 60 + 59.99999999999 / 3600,
                        .longitudeDegrees = -97.5,
                        .height = 545.4,
                        .description = "two\nlines"}),
            "\nGPS,PN7,LA12.300000000000,LN-97.300000000000,EL545.400000,--two lines");
  EXPECT_EQ(GnssGridRecord(kPoint, kPoint.description.view()),
            "\n--GS,PNA1,N 5000.1235,E -0.0000,EL100.0000,--IP, 1/2\" rebar");
  EXPECT_EQ(GnssBaseRecord(1.5, 2.25, 3), "\nBP,PN,LA1.300000000000,LN2.150000000000,EL3.0000");
  EXPECT_EQ(CommentRecord("a\r\nb\n"), "\n--a\n--b");
  EXPECT_EQ(CommentRecord(""), "\n--");
  EXPECT_EQ(AntennaRecord("X1", HeightKind::Slant), "\n--Antenna Type: X1, Slant");
  EXPECT_EQ(ElevationModeRecord(true) + EdmModeRecord("Fine"),
            "\n--Elevation: 3D\n--EDM Mode: Fine");
  EXPECT_EQ(ShiftParametersRecord({.dx = 1,
                                   .dy = -2,
                                   .dz = 3.5,
                                   .rotationX = 0.1,
                                   .rotationY = 0,
                                   .rotationZ = 0,
                                   .scale = 1}),
            "\n--dX: 1.00000000, dY: -2.00000000, dZ: 3.50000000, rotX: 0.1000000000, rotY: "
            "0.0000000000, "
            "rotZ: 0.0000000000, scale: 1.0000000000");
  Backsight backsight{.occupiedId = "1",
                      .backsightId = "2",
                      .azimuthDegrees = 200,
                      .circleDegrees = 359 + 59.0 / 60 + 59.9996 * kSecond};
  EXPECT_EQ(BacksightRecord(job, backsight), "\nBK,OP1,BP2,BS200.0000,BC0.0000");
  job.options.azimuthsFromSouth = true;
  backsight.backsightId.clear();
  EXPECT_EQ(BacksightRecord(job, backsight), "\nBK,OP1,BP,BS20.0000,BC0.0000");
}

TEST(RawComments, TellResultsAndCommands) {
  EXPECT_EQ(AngleRmsComment(1.5) + DistanceRmsComment(0.01) + ElevationRmsComment(0.02),
            "\n--Ang RMS(Sec):1.5000\n--Dist RMS:0.0100\n--Elev RMS:0.0200");
  EXPECT_EQ(StandardDeviationComment(0.011, 0.0125) + ClosureComment(12345.6),
            "\n--StDev:N0.0110,E0.0125\n--Closure:12346");
  EXPECT_EQ(BacksightWarning(0.0123, "m"), "\n--Warning: Distances to backsight differ by 0.012m.");
  EXPECT_EQ(RotationComment(1, 2, 10.5), "\n--Rotated around N1.0000,E2.0000 by 10.3000");
  EXPECT_EQ(TranslationComment({.northing = 1, .easting = -2, .elevation = 0.5}),
            "\n--Translate: dy=1.0000, dx=-2.0000, dz=0.5000");
  EXPECT_EQ(ScaleComment(1, 2, 0.9996),
            "\n--Scaled from base N1.0000,E2.0000 by a factor of 0.9996000000");
}

TEST(RawShots, ChooseTheirFieldsByMode) {
  TestHost host;
  Job job = MakeJob(host, true);
  Shot shot{.occupiedId = "1",
            .foresightId = "2",
            .horizontal = 10.5,
            .vertical = 89.75,
            .distance = 100.25,
            .description = "TREE"};
  EXPECT_EQ(SideshotRecord(job, shot), "\nSS,OP1,FP2,AR10.3000,ZE89.4500,SD100.250000,--TREE");
  shot.horizontalMode = HorizontalMode::AngleLeft;
  shot.verticalMode = VerticalMode::None;
  EXPECT_EQ(TraverseRecord(job, shot), "\nTR,OP1,FP2,AL10.3000,ZE90.0000,SD100.250000,--TREE");
  shot.verticalMode = VerticalMode::VerticalAngle;
  shot.vertical = -0.25;
  shot.horizontalMode = HorizontalMode::BearingSW;
  EXPECT_EQ(SideshotRecord(job, shot), "\nSS,OP1,FP2,BRS10.500000W,VA-0.1500,SD100.250000,--TREE");
  shot.verticalMode = VerticalMode::ChangeInElevation;
  shot.horizontalMode = HorizontalMode::Azimuth;
  job.options.azimuthsFromSouth = true;
  shot.horizontal = 10.0;
  EXPECT_EQ(SideshotRecord(job, shot), "\nSS,OP1,FP2,AZ190.0000,CE-0.250000,HD100.250000,--TREE");
  const Reading reading{.angleRightDegrees = 180.5, .zenithDegrees = 90, .slopeDistance = 12};
  EXPECT_EQ(SetReadingRecord(SetReading::ForesightReverse, "1", "2", reading, "x"),
            "\nFR,OP1,FP2,AR180.3000,ZE90.0000,SD12.000000,--x");
  EXPECT_EQ(SetReadingComment(3, false, "2", reading, "x", 1.5),
            "\n--Reading 3(R):FP2,AR180.3000,ZE90.0000,SD12.0000--x,HR1.500");
  EXPECT_EQ(OffsetRecord(reading), "\nOF,AR180.3000,ZE90.0000,SD12.000000");
  EXPECT_EQ(LaserOffsetRecord(10 + 12.0 / 60 + 34 * kSecond, -1, 5),
            "\nOF,AZ10.123,CE-1.0000,HD5.0000");
}

TEST(TotalStation, JournalsASetupAndTheShotsThatWereStored) {
  TestHost host;
  Job job = MakeJob(host, true);
  job.ids.current = "1";
  ASSERT_EQ(StorePoint(job, kPoint.at, "BM", false, OpenCoordinateFile(job).get()),
            StorePointResult::Stored);
  const std::size_t before = RawHeader(job, host.manualClock.now).size();
  EXPECT_EQ(
      OccupyAndBacksight(
          job,
          {.occupiedId = "1", .azimuthDegrees = 45.5, .instrumentHeight = 1.5, .rodHeight = 2}),
      RawFileResult::Written);
  EXPECT_EQ(host.memory.Bytes(kRawPath).substr(before),
            "\nOC,OP1,N 5000.12346,E "
            "-0.00004,EL100.000,--BM\nLS,HI1.5000,HR2.0000\nBK,OP1,BP,BS45.3000,BC0.0000");
  EXPECT_EQ(job.setup.occupiedId, "1");
  const Shot shot{.occupiedId = "1",
                  .foresightId = "1",
                  .horizontal = 10,
                  .vertical = 90,
                  .distance = 5,
                  .description = ""};
  const std::string journal = host.memory.Bytes(kRawPath);
  host.answer = {.choice = ExistingPointAnswer::Choice::Cancel};
  EXPECT_EQ(StoreShot(job, ShotKind::Sideshot, shot, kPoint.at, true).stored,
            StorePointResult::Cancelled);
  EXPECT_EQ(host.memory.Bytes(kRawPath), journal);  // a failed store writes nothing
  host.answer = {.choice = ExistingPointAnswer::Choice::UseOtherId, .otherId = "2"};
  EXPECT_EQ(StoreShot(job, ShotKind::Traverse, shot, kPoint.at, true).record,
            RawFileResult::Written);
  EXPECT_EQ(host.memory.Bytes(kRawPath),
            journal + "\nTR,OP1,FP2,AR10.0000,ZE90.0000,SD5.000000,--");
}

TEST(PointNotes, ReplaceTheBlockOfThePoint) {
  TestHost host;
  Job job = MakeJob(host, true);
  EXPECT_TRUE(WriteNote(
      job, {.pointId = "A1", .lines = {"one\ntwo", "PT_ID:9"}, .qualityLines = "HRMS,0.010\n"}));
  EXPECT_TRUE(WriteNote(job, {.pointId = "B", .lines = {}, .qualityLines = "HRMS,0.020\n"}));
  EXPECT_EQ(host.memory.Bytes("/jobs/site.not"),
            "PT_ID:A1\nNOTE1,one\nNOTE2,two\nNOTE3,PT_ID:9\nHRMS,0.010\nPT_ID:B\nHRMS,0.020\n");
  FileStatus status;
  const auto note = ReadPointNote(job, "a1", status);
  ASSERT_TRUE(note && status.ok());
  EXPECT_EQ(note->lines, (std::vector<std::string>{"one", "two", "PT_ID:9"}));
  EXPECT_EQ(note->qualityLines, "HRMS,0.010\n");
  EXPECT_TRUE(WriteNote(job, {.pointId = "A1", .lines = {}, .qualityLines = "SATS,9\n"}));
  EXPECT_EQ(host.memory.Bytes("/jobs/site.not"), "PT_ID:B\nHRMS,0.020\nPT_ID:A1\nSATS,9\n");
  EXPECT_FALSE(ReadPointNote(job, "C", status));
  host.memory.Put("/jobs/site.not", "stray\nPT_ID:B\nHRMS,1");  // hand-edited, its end missing
  EXPECT_TRUE(WriteNote(job, {.pointId = "C", .lines = {}, .qualityLines = ""}));
  EXPECT_EQ(host.memory.Bytes("/jobs/site.not"), "stray\nPT_ID:B\nHRMS,1\nPT_ID:C\n");
}

// Another program gives a block to another point; the file keeps its size and its end.
TEST(PointNotes, NoticeAnEditInTheMiddle) {
  TestHost host;
  Job job = MakeJob(host, true);
  const std::string end(80, 'x');
  const auto note = [](const std::string& id, const std::string& line) {
    return PointNote{.pointId = id, .lines = {line}, .qualityLines = ""};
  };
  EXPECT_TRUE(WriteNote(job, note("A", "a")));
  EXPECT_TRUE(WriteNote(job, note("C", end)));
  host.memory.Put("/jobs/site.not", "PT_ID:B\nNOTE1,a\nPT_ID:C\nNOTE1," + end + "\n");
  EXPECT_TRUE(WriteNote(job, note("B", "b")));
  EXPECT_EQ(host.memory.Bytes("/jobs/site.not"), "PT_ID:C\nNOTE1," + end + "\nPT_ID:B\nNOTE1,b\n");
}

// As another program may have left it: its lines end with CR and LF, a point has two blocks.
TEST(PointNotes, KeepTheLinesOfEveryBlockOfThePoint) {
  constexpr const char* kFile =
      "PT_ID:A1\r\nNOTE1,one\r\nHRMS,1.000\r\nPT_ID:B\r\nNOTE1,b\r\nPT_ID:a1\r\nNOTE1,two\r\n"
      "HRMS,0.020\r\nSTATUS,FIXED";
  const std::string other = "PT_ID:B\r\nNOTE1,b\r\n";
  const auto edit = [](NoteEdit::Kind kind, const std::string& id, const std::string& quality) {
    return NoteEdit{.kind = kind, .note = {.pointId = id, .lines = {}, .qualityLines = quality}};
  };
  using Kind = NoteEdit::Kind;
  const std::string kept = other + "PT_ID:A1\nNOTE1,one\nNOTE2,two\n";
  const std::pair<NoteEdit, std::string> cases[] = {
      {edit(Kind::SetQuality, "A1", "HRMS,0.010\n"), kept + "HRMS,0.010\n"},
      {edit(Kind::DropQuality, "A1", ""), kept},
      {edit(Kind::Remove, "A1", ""), other},
      {edit(Kind::Replace, "C", ""), kFile + std::string("\nPT_ID:C\n")}};
  for (const auto& [change, expected] : cases) {
    TestHost host;
    Job job = MakeJob(host, true);
    host.memory.Put("/jobs/site.not", kFile);
    FileStatus status;
    const auto note = ReadPointNote(job, "A1", status);
    ASSERT_TRUE(note);
    EXPECT_EQ(note->lines, (std::vector<std::string>{"one", "two"}));
    EXPECT_EQ(note->qualityLines, "HRMS,0.020\nSTATUS,FIXED\n");
    EXPECT_EQ(MeasuredPoints(job, status), std::unordered_set<std::string>{"A1"});
    EXPECT_TRUE(EditNote(job, change.note.pointId, change));
    EXPECT_EQ(host.memory.Bytes("/jobs/site.not"), expected);
  }
}

TEST(RawHeader, TellsTheModeOfTheJob) {
  TestHost host;
  Job job = MakeJob(host, true);
  EXPECT_FALSE(ReadRawMode(job));
  job.options.unit = DistanceUnit::InternationalFeet;
  job.options.azimuthsFromSouth = true;
  job.options.scaleFactor = 0.9996;
  ASSERT_EQ(AppendRawRecords(job, {}), RawFileResult::Written);
  const auto mode = ReadRawMode(job);
  ASSERT_TRUE(mode);
  EXPECT_EQ(mode->unit, DistanceUnit::InternationalFeet);
  EXPECT_EQ(mode->azimuthsFromSouth, true);
  EXPECT_EQ(mode->scaleFactor, 0.9996);
  EXPECT_FALSE(ParseRawMode("JB,NMx\nMO,AD7,UNx")->unit);
  EXPECT_FALSE(ParseRawMode("JB,NMx\n--MO,UN1"));
}

// Under which id does work go on after these raw records?
TEST(NextId, IsTheOneBehindTheLastThatWasMeasured) {
  struct Case {
    std::vector<const char*> points;
    const char* records;
    const char* next;
  };
  const Case cases[] = {
      {{}, "", "1"},
      {{"BM1"}, "", "BM2"},
      {{"BM1"}, "\nSP,PNBM1,N 1.0000,E 2.0000,EL3.0000,--", "BM2"},
      {{"100", "101", "BM1"}, "\nGPS,PN101,LA1,LN2,EL3,--\nSP,PNBM1,N 1,E 2,EL3,--", "102"},
      {{"101", "102", "103"}, "\nGPS,PN101,LA1,LN2,EL3,--", "104"},  // 102, 103 are there already
      {{"9", "TOOLONGNA"}, "\nSS,OP1,FP9,AR1,ZE90,SD1,--,FP77\n--GPS,PN5,LA1", "10"},
      {{"A"}, "\nGPS,PN7,LA1,LN2,EL3,--\n--Deleted point:SP,PN7,N 1,E 2,EL3,--", "8"},
      {{"A"},
       "\nGPS,PN7,LA1,LN2,EL3,--\nGPS,PN8,LA1,LN2,EL3,--\n--Taken back point:SP,PN8,N 1,E 2,EL3,--",
       "8"},
      {{"7"},  // 7 was measured, replaced, taken back and so is measured again
       "\nGPS,PN7,LA1,LN2,EL3,--\nGPS,PN7,LA1,LN2,EL3,--\n--Taken back point:SP,PN7,N 1,E 2,EL3,--"
       "\nGPS,PN9,LA1,LN2,EL3,--\n--Taken back point:SP,PN9,N 1,E 2,EL3,--",
       "8"},
  };
  for (const Case& c : cases) {
    TestHost host;
    Job job = MakeJob(host, true);
    for (const char* id : c.points) {
      job.ids.current = id;
      ASSERT_EQ(StorePoint(job, kPoint.at, "", false, OpenCoordinateFile(job).get()),
                StorePointResult::Stored);
    }
    if (*c.records != 0) {
      ASSERT_EQ(AppendRawRecord(job, c.records), RawFileResult::Written);
    }
    EXPECT_EQ(NextIdToUse(job, *OpenCoordinateFile(job)), c.next) << c.records;
  }
  TestHost host;
  Job job = MakeJob(host, false);
  for (const char* id : {"5", "6", "100"}) {
    job.ids.current = id;
    ASSERT_EQ(StorePoint(job, kPoint.at, "", false, OpenCoordinateFile(job).get()),
              StorePointResult::Stored);
  }
  EXPECT_EQ(NextIdToUse(job, *OpenCoordinateFile(job)), "101");
  ASSERT_EQ(AppendRawRecord(job, "\nGPS,PN5,LA1,LN2,EL3,--"), RawFileResult::Written);
  EXPECT_EQ(NextIdToUse(job, *OpenCoordinateFile(job)), "7");
}

TEST(Settings, KeepWhatTheyDoNotKnow) {
  Settings settings("# a comment\nunits=metres\n\nodd line\nunits = us-feet \r\nname=a=b\n");
  EXPECT_EQ(settings.Get("units"), "us-feet");
  EXPECT_EQ(settings.Get("name"), "a=b");
  EXPECT_EQ(settings.Get("UNITS"), std::nullopt);
  ASSERT_EQ(settings.Entries().size(), 3U);
  EXPECT_EQ(settings.Entries()[1].value, "us-feet");
  settings.Set("units", "intl\nfeet");
  settings.Set("new", "1");
  settings.Remove("name");
  EXPECT_EQ(settings.Text(), "# a comment\nunits=metres\n\nodd line\nunits=intl feet\nnew=1\n");
}

}  // namespace
}  // namespace tarvex
