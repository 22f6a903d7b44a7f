// Checks on a known point, and measured points that are computed anew.
#include "app/workflow/check_session.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <cmath>

#include "app/workflow/collect_session.h"
#include "app/workflow/job_check.h"
#include "app/workflow/point_frames.h"
#include "app/workflow/point_recompute.h"
#include "app/workflow/point_storing.h"
#include "app/workflow/stored_coordinates.h"
#include "core/coordinates/point_list.h"
#include "core/coordinates/point_store.h"
#include "core/observations/job_unit.h"
#include "core/raw_data/raw_file.h"
#include "core/raw_data/raw_records.h"
#include "tests/workflow/field_site.h"

namespace tarvex {
namespace {

using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

class MeasuredJob : public FieldSite {
 protected:
  PointList Points() {
    PointList points;
    EXPECT_EQ(LoadAllPoints(session->job(), points), LoadPointsResult::Loaded);
    return points;
  }

  void Collect(long long count) {
    CollectPlan plan;
    plan.receiver = ConnectedReceiver();
    plan.antennaHeight = 2.0;
    plan.count = count;
    std::string epochs;
    for (int second = 1; second <= count; ++second) epochs += Epoch(second);
    connections = {{epochs}};
    CollectSession collecting(work, *session, calculator, plan, listener, commands, {}, Ports());
    ASSERT_EQ(collecting.Run(), SessionEnd::Complete);
  }

  void Comment(const std::string& text) {
    ASSERT_EQ(AppendRawRecord(session->job(), CommentRecord(text)), RawFileResult::Written);
  }

  // The system of the same zone, its northings 1000 m greater.
  void MoveSystem() {
    std::string moved(kUtm32);
    moved.replace(moved.find("\"false_northing\",0"), 18, "\"false_northing\",1000");
    calculator.ParseDefinition(moved, nullptr);
  }
};

TEST_F(MeasuredJob, IsCheckedOnAKnownPointAndStoresNothing) {
  Collect(1);
  Point known = Points()[0];
  const std::string bytes = memory.Bytes(kSitePath);
  const std::string notes = Notes();
  const auto check = [&](const GridPoint& at, double antennaHeight) {
    CheckPlan plan;
    plan.receiver = ConnectedReceiver();
    plan.antennaHeight = antennaHeight;
    plan.average = 3;
    plan.gate.solution = SolutionType::Fixed;
    plan.known = known;
    plan.known.at = at;
    plan.horizontalTolerance = 0.03;
    plan.verticalTolerance = 0.05;
    connections = {{Epoch(1) + Epoch(2, 2) + Epoch(3) + Epoch(4) + Epoch(5)}};
    CheckSession checking(work, *session, calculator, plan, listener, commands, {}, Ports());
    EXPECT_EQ(checking.Run(), SessionEnd::Complete);
    return checking.check().value_or(CheckRecord{});
  };
  EXPECT_TRUE(check(known.at, 2.0).passed);
  EXPECT_THAT(Raw(), AllOf(HasSubstr("\n--Check known:PN1,N "), HasSubstr("\n--Check found:N "),
                           HasSubstr(",HR2.0000\n--Check difference:N 0.0000,E 0.0000,EL0.0000,"
                                     "HD0.0000,HT0.0300,VT0.0500,--passed\n--HRMS:0.010")));
  GridPoint away = known.at;
  away.northing -= 0.02;
  away.easting += 0.03;
  const CheckRecord failed = check(away, 2.0);
  EXPECT_FALSE(failed.passed);
  EXPECT_NEAR(failed.distance, 0.0361, 1e-4);
  EXPECT_THAT(Raw(), HasSubstr("N 0.0200,E -0.0300,EL0.0000,HD0.0361,HT0.0300,VT0.0500,--failed"));
  const CheckRecord low = check(known.at, 0.0);  // the antenna height was forgotten
  EXPECT_FALSE(low.passed);
  EXPECT_NEAR(low.difference.elevation, 2.0, 1e-9);
  EXPECT_EQ(memory.Bytes(kSitePath), bytes);
  EXPECT_EQ(Notes(), notes);
}

TEST_F(MeasuredJob, TellsOfAZoneOfTheOtherHemisphere) {
  std::string south(kUtm32);
  south.replace(south.find("\"false_northing\",0"), 18, "\"false_northing\",10000000");
  calculator.ParseDefinition(south, nullptr);
  Collect(1);
  std::string told;
  for (const SessionWarning& warning : listener.Of<SessionWarning>()) told += warning.sentence;
  EXPECT_THAT(told, HasSubstr("zone of the southern hemisphere"));
}

TEST_F(MeasuredJob, IsComputedAnewWhereItWasMeasured) {
  Collect(3);
  const auto typed =
      StoreTypedPoint(*session, {.id = "BM", .at = {.northing = 1.0}, .description = "typed"});
  ASSERT_EQ(typed.stored.result, StoringResult::Stored);
  session->setPolicy(ExistingPolicy::Overwrite);
  const auto over =
      StoreTypedPoint(*session, {.id = "2", .at = {.northing = 2.0}, .description = "typed over"});
  ASSERT_EQ(over.stored.result, StoringResult::Stored);
  const PointList before = Points();
  MoveSystem();
  const auto plan = PlanRecompute(*session, calculator, {});
  ASSERT_TRUE(plan);
  ASSERT_EQ(plan->moved.size(), 2U);
  EXPECT_EQ(plan->left.size(), 2U);
  EXPECT_EQ(Points(), before);  // a plan changes nothing
  ASSERT_TRUE(Recompute(*session, *plan));
  const PointList after = Points();
  EXPECT_NEAR(after[0].at.northing, before[0].at.northing + 1000.0, 1e-4);
  EXPECT_EQ(after[1], before[1]);
  EXPECT_EQ(after[3], before[3]);
  EXPECT_THAT(Raw(), HasSubstr("\n--Recomputed point:SP,PN1,N "));
  EXPECT_THAT(Notes(), HasSubstr("PT_ID:1\nHRMS,"));
  const auto checked = CheckJob(session->job(), session->settings());
  ASSERT_TRUE(checked);
  EXPECT_THAT(checked->findings, IsEmpty());
  const auto again = PlanRecompute(*session, calculator, {});
  EXPECT_THAT(again->moved, IsEmpty());
  EXPECT_EQ(again->unmoved, 2U);
}

// Whoever changed a coordinate by hand meant it.
TEST_F(MeasuredJob, LeavesAnEditedPointAlone) {
  Collect(1);
  const Point point = Points()[0];
  session->job().ids.current = "1";
  const GridPoint edited = {point.at.northing + 0.5, point.at.easting, 0.0};
  auto unit = JobUnit::Begin(session->job());
  ASSERT_EQ(StorePoint(session->job(), edited, "", false, &unit->coordinates()),
            StorePointResult::Stored);
  ASSERT_EQ(unit->Commit(), ChangeResult::Done);
  unit.reset();
  MoveSystem();
  const auto plan = PlanRecompute(*session, calculator, {"1", "7"});
  ASSERT_TRUE(plan);
  EXPECT_THAT(plan->moved, IsEmpty());
  ASSERT_EQ(plan->left.size(), 2U);
  EXPECT_EQ(plan->left[0].reason, RecomputeReason::Edited);
  EXPECT_EQ(plan->left[1].reason, RecomputeReason::NotFound);
}

TEST_F(MeasuredJob, IsComputedAnewWholeOrNotAtAll) {
  Collect(3);
  const std::string crd = memory.Bytes(kSitePath);
  const std::string raw = Raw();
  MoveSystem();
  bool happened = true;
  for (int step = 1; happened; ++step) {
    memory.Put(kSitePath, crd);
    memory.Put("/jobs/site.rw5", raw);
    session.emplace(work, kSitePath);
    ASSERT_TRUE(session->LoadExisting());
    const PointList before = Points();
    const auto plan = PlanRecompute(*session, calculator, {});
    ASSERT_TRUE(plan);
    memory.Expect(Mishap::PowerLoss, step);
    const bool done = Recompute(*session, *plan);
    happened = memory.happened();
    session.reset();
    memory.Restart(static_cast<unsigned>(step));
    session.emplace(work, kSitePath);
    ASSERT_TRUE(session->LoadExisting());
    const PointList after = Points();
    const double moved = after[0].at.northing - before[0].at.northing;
    EXPECT_TRUE(moved == 0.0 || std::abs(moved - 1000.0) < 1e-3) << step;
    EXPECT_TRUE(!done || moved != 0.0) << step;
    for (std::size_t i = 0; i < after.size(); ++i) {
      EXPECT_NEAR(after[i].at.northing - before[i].at.northing, moved, 1e-3) << step;
    }
    const auto checked = CheckJob(session->job(), session->settings());
    ASSERT_TRUE(checked) << step;
    EXPECT_THAT(checked->findings, IsEmpty()) << step;
  }
}

TEST_F(MeasuredJob, MarksWhatAnotherLocalizationMade) {
  Collect(2);
  const auto marked = [&] {
    std::vector<std::string> ids;
    for (const PointId& id : PointsOfEarlierFrames(Raw(), true)) ids.push_back(id.str());
    std::sort(ids.begin(), ids.end());
    return ids;
  };
  EXPECT_THAT(marked(), IsEmpty());
  Comment("Localization control changed");
  Comment("Localization: 1 point");
  EXPECT_THAT(marked(), ElementsAre("1", "2"));
  const auto plan = PlanRecompute(*session, calculator, {"2"});
  ASSERT_TRUE(plan);
  RecomputePlan moved = *plan;
  moved.moved = {{Points()[1], {1.0, 2.0, 3.0}}};
  ASSERT_TRUE(Recompute(*session, moved));
  EXPECT_THAT(marked(), ElementsAre("1"));
  // Switched off and on again it is the same; with other control it is not, whatever it is called.
  Comment("Localization: off");
  EXPECT_THAT(marked(), ElementsAre("2"));
  Comment("Localization: 1 point");
  EXPECT_THAT(marked(), ElementsAre("1"));
  Comment("Localization control changed");
  Comment("Localization: 1 point");
  EXPECT_THAT(marked(), ElementsAre("1", "2"));
}

TEST_F(MeasuredJob, IsNotHeldAgainstThePositionThatATypedPointReplaced) {
  Collect(2);
  session->setPolicy(ExistingPolicy::Overwrite);
  ASSERT_TRUE(StoreTypedPoint(*session, {.id = "1", .at = {1, 2, 3}, .description = "typed"})
                  .problem.empty());
  MoveSystem();
  const StoredCoordinates found = CompareStoredCoordinates(session->job(), calculator);
  EXPECT_EQ(found.elsewhere, 1U);  // the measured one, which can be computed anew
  EXPECT_EQ(found.example, "2");
  const auto plan = PlanRecompute(*session, calculator, {});
  ASSERT_TRUE(plan);
  EXPECT_EQ(plan->moved.size(), 1U);
}

TEST_F(MeasuredJob, MarksNothingWhenTheDatumShiftIsWhatItWas) {
  Collect(1);
  const std::string begun = Raw();
  const auto marks = [&] { return PointsOfEarlierFrames(Raw(), true).size(); };
  Comment("Setting: datum_shift=TOWGS84=100,0,0");
  EXPECT_EQ(marks(), 1U);
  Comment("Setting: datum_shift removed, was TOWGS84=100,0,0");
  EXPECT_EQ(marks(), 0U);
  memory.Put("/jobs/site.rw5", begun);
  Comment("Setting: datum_shift removed, was TOWGS84=1,0,0");
  EXPECT_EQ(marks(), 1U);
  Comment("Setting: datum_shift=TOWGS84=1,0,0");
  EXPECT_EQ(marks(), 0U);
}

}  // namespace
}  // namespace tarvex
