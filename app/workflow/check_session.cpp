#include "app/workflow/check_session.h"

#include "app/workflow/observation.h"
#include "core/observations/job_unit.h"
#include "core/raw_data/raw_records.h"
#include "core/text/date_text.h"
#include "gnss/quality/point_quality.h"
#include "gnss/receivers/receiver_make.h"

namespace tarvex {

CheckSession::CheckSession(const Workplace& work, JobSession& session,
                           const CTrgCalculator& calculator, const CheckPlan& plan,
                           SessionListener& listener, SessionCommands& commands, StopAsked stop,
                           const PortMaker& ports)
    : ReceiverSession(work, session, calculator, plan, listener, commands, std::move(stop), ports),
      job_(session),
      known_(plan.known),
      horizontalTolerance_(plan.horizontalTolerance),
      verticalTolerance_(plan.verticalTolerance) {}

bool CheckSession::TakeEpoch(const std::optional<GateRefusal>& refusal) {
  const bool complete = !refusal && !paused() && PointComplete();
  TellPosition(refusal);
  return !complete || Compare();
}

bool CheckSession::Compare() {
  const GridPosition place = PointPlace();
  const GnssPositionState measured = collected().state;
  DropPoint();
  if (place.result != CalculationResult::Done) {
    WarnOnce(place.usable() ? CalculationText(place.result, place.steps) : NoGridText(place));
    if (!place.usable()) return true;
  }
  for (const std::string& warning : PositionWarnings(measured, !plan().receiver.settings.noRms)) {
    WarnOnce(warning);
  }
  CheckRecord check{.known = known_,
                    .found = place.at,
                    .latitudeDegrees = measured.latitude,
                    .longitudeDegrees = measured.longitude,
                    .heightM = measured.height,
                    .antennaHeight = plan().antennaHeight,
                    .difference = {},
                    .distance = 0.0,
                    .horizontalTolerance = horizontalTolerance_,
                    .verticalTolerance = verticalTolerance_,
                    .passed = false};
  CompareCheck(check);
  // An elevation that was not measured is none that could agree.
  check.passed = check.passed && measured.heightKnown;
  if (!Journal(check, measured)) return false;
  check_ = check;
  return true;
}

bool CheckSession::Journal(const CheckRecord& check, GnssPositionState measured) {
  const LocalTime now = job_.clock().Now();
  if (!measured.precisionKnown) measured.hrms = measured.vrms = 0.0;
  const auto unit = JobUnit::Begin(job_.job());
  if (!unit) return false;
  unit->AppendRaw(job_.RawOpening());
  unit->AppendRaw(CheckComments(check));
  unit->AppendRaw(QualityComment(measured, FindMake(plan().receiver.makeCode).qualityInsteadOfRms,
                                 QualityStamp{.date = DateText(now), .time = TimeText(now)}));
  if (unit->Commit() != ChangeResult::Done) return false;
  job_.RawIsOpened();
  return true;
}

}  // namespace tarvex
