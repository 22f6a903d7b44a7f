#include "coordsys/chain/calculator.h"

#include <cmath>
#include <utility>

#include "coordsys/chain/calculator_run.h"
#include "coordsys/coordsys_texts.h"
#include "coordsys/datum/coincident_datums.h"
#include "core/text/string_table.h"

namespace tarvex {
namespace {

CalculationResult ResultOf(ProjectionResult result) {
  switch (result) {
    case ProjectionResult::Done:
      return CalculationResult::Done;
    case ProjectionResult::NotANumber:
      return CalculationResult::NotANumber;
    case ProjectionResult::LibraryMissing:
      return CalculationResult::LibraryMissing;
    case ProjectionResult::OutsideDomain:
      break;
  }
  return CalculationResult::OutsideDomain;
}

int FaultText(ProjectionFault fault) {
  constexpr int kFirst = kTextFirstProjectionFault - static_cast<int>(ProjectionFault::Ellipsoid);
  static_assert(kFirst + static_cast<int>(ProjectionFault::NotAvailable) ==
                kTextLastProjectionFault);
  return kFirst + static_cast<int>(fault);
}

}  // namespace

std::string CalculationText(CalculationResult result) {
  switch (result) {
    case CalculationResult::Done:
      return Strings().Text(kTextConverted);
    case CalculationResult::DoneInPart:
      return Strings().Text(kTextConvertedInPart);
    case CalculationResult::LibraryMissing:
      return Strings().Text(kTextProjectionLibraryMissing);
    case CalculationResult::NotANumber:
      return Strings().Text(kTextNotANumber);
    case CalculationResult::NoSystem:
      return Strings().Text(kTextNoSystem);
    case CalculationResult::NotAvailable:
      return Strings().Text(kTextSystemNotAvailable);
    case CalculationResult::OutsideDomain:
      return Strings().Text(kTextOutsideProjection);
    case CalculationResult::NoDatumShift:
      return Strings().Text(kTextShiftNotAvailable);
    case CalculationResult::StepRefused:
      return Strings().Text(kTextStepRefused);
    case CalculationResult::NotConverging:
      return Strings().Text(kTextHeightNotSettled);
    case CalculationResult::NoGridCorrection:
      break;
  }
  return Strings().Text(kTextNationalGridNeeded);
}

std::string UndoneText(const CalculationReport& report) {
  std::string text;
  for (const ExplainedStep& step : report.steps) {
    if (step.outcome.reason == 0) continue;
    if (!text.empty()) text += ' ';
    text += Strings().Text(step.outcome.reason);
    const std::string& what = step.description;
    if (!what.empty() && what != Strings().Text(step.outcome.reason)) text += " (" + what + ")";
  }
  return text;
}

std::string CalculationText(CalculationResult result, const CalculationReport& report) {
  const std::string undone = UndoneText(report);
  return undone.empty() ? CalculationText(result) : undone;
}

int CTrgCalculator::ParseDefinition(std::string_view text, MessageBox* messages) {
  ProjectionRecord record = record_;
  DefinitionFacts facts;
  ReadDefinition(text, record, facts, messages);
  SetRecord(record);
  compoundName_ = facts.compoundName;
  givesShift_ = facts.givesShift;
  // A projection that is unknown, or not named, leaves the record's type as it was: it is not ours
  // to compute with.
  if (!ProjectionCode(record.projectionName.view())) {
    projection_.reset();
    fault_ = ProjectionFault::UnknownType;
  }
  return 1;
}

void CTrgCalculator::SetRecord(const ProjectionRecord& record) {
  record_ = record;
  hasSystem_ = true;
  givesShift_ = HasDatumShift(record_);
  MadeProjection made = MakeProjection(record_);
  projection_.reset();
  if (made) {
    projection_ = *std::move(made);
  } else {
    fault_ = made.failure().code;
  }
  family_ = &FamilyOf(record_.projectionType);
  needsDatumShift_ = !TakesWgs84() && (HasDatumShift(record_) || !CoincidesWithWgs84(record_));
}

ZoneSelection CTrgCalculator::SelectZone(StatePlaneDatum datum, std::string_view group,
                                         int number) {
  const auto zone = ZoneOfGroup(datum, group, number);
  if (!zone) return ZoneSelection::Rejected;
  SetRecord(zone->record);
  compoundName_ = zone->name;
  return ZoneSelection::Selected;
}

// True when the plane of projection has no meaning without the family's national grid.
bool CTrgCalculator::NeedsNationalGrid() const {
  return family_->gridUse == NationalGridUse::OwnOrNone;
}

// True for a national projection whose grid was not given.
bool CTrgCalculator::LacksNationalGrid() const {
  return !steps_.gridCorrection && family_->TakesOwnGrid();
}

bool CTrgCalculator::TakesWgs84() const {
  return family_->datum == FamilyDatum::Wgs84;
}

bool CTrgCalculator::ShiftsDatum() const {
  return steps_.datumShift && !TakesWgs84();
}

CalculationResult CTrgCalculator::State() const {
  if (!hasSystem_) return CalculationResult::NoSystem;
  if (!projection_) return CalculationResult::NotAvailable;
  if (needsDatumShift_ && !steps_.datumShift) return CalculationResult::NoDatumShift;
  if (NeedsNationalGrid() && !steps_.gridCorrection) return CalculationResult::NoGridCorrection;
  return CalculationResult::Done;
}

std::string CTrgCalculator::StateText() const {
  switch (State()) {
    case CalculationResult::Done:
      return "";
    case CalculationResult::NotAvailable:
      return Strings().Text(FaultText(fault_));
    case CalculationResult::NoDatumShift:
      return Strings().Text(kTextNoShiftKnown);
    default:
      return CalculationText(State());
  }
}

void CTrgCalculator::Run::Add(CalculationStep step, const StepValue& value) {
  report->steps.push_back({step, value, "", {}, std::nullopt});
}

CalculationResult CTrgCalculator::ToSystemDatum(Geodetic& position, Run& run) const {
  if (!ShiftsDatum()) return CalculationResult::Done;
  const StepOutcome outcome = steps_.datumShift->ToSystem(position);
  run.Note(CalculationStep::DatumShift, position);
  return run.Take(*steps_.datumShift, outcome);
}

CalculationResult CTrgCalculator::FromSystemDatum(Geodetic& position, Run& run) const {
  if (!ShiftsDatum()) return CalculationResult::Done;
  const StepOutcome outcome = steps_.datumShift->ToWgs84(position);
  run.Note(CalculationStep::DatumShift, position);
  return run.Take(*steps_.datumShift, outcome);
}

// The national grid, one way or the other. A plane that is a little off without it is said to be
// so; one that has no meaning without it is refused.
CalculationResult CTrgCalculator::CorrectGrid(GridMetres& at,
                                              StepOutcome (GridCorrection::*way)(GridMetres&) const,
                                              Run& run) const {
  if (!steps_.gridCorrection) {
    if (LacksNationalGrid())
      run.LeaveUndone(CalculationStep::GridCorrection, at, kTextNationalGridLeftOut);
    return CalculationResult::Done;
  }
  const StepOutcome outcome = (*steps_.gridCorrection.*way)(at);
  run.Note(CalculationStep::GridCorrection, at);
  const CalculationResult result = run.Take(*steps_.gridCorrection, outcome);
  if (result != CalculationResult::Done) return result;
  const bool uncorrected = outcome.status == StepStatus::LeftUndone;
  return uncorrected && NeedsNationalGrid() ? CalculationResult::StepRefused
                                            : CalculationResult::Done;
}

// A WGS84 position on the system's datum, and its elevation.
CalculationResult CTrgCalculator::OnDatum(const Geodetic& wgs84, Geodetic& position,
                                          double& elevationM, Run& run) const {
  if (!IsNumber(wgs84.latitudeRad, wgs84.longitudeRad, wgs84.heightM)) {
    return CalculationResult::NotANumber;
  }
  run.Note(CalculationStep::Wgs84, wgs84);
  position = wgs84;
  position.longitudeRad = WithinHalfTurns(position.longitudeRad);
  const CalculationResult shifted = ToSystemDatum(position, run);
  if (shifted != CalculationResult::Done) return shifted;
  elevationM = position.heightM;
  if (!steps_.geoid) return CalculationResult::Done;
  double undulationM = 0.0;
  const StepOutcome outcome =
      steps_.geoid->Undulation(wgs84.latitudeRad, wgs84.longitudeRad, undulationM);
  run.Note(CalculationStep::Geoid, GeoidUndulation{undulationM});
  const CalculationResult result = run.Take(*steps_.geoid, outcome);
  if (outcome.status == StepStatus::Done) elevationM = wgs84.heightM - undulationM;
  return result;
}

// From the plane of projection to the job: grid correction, localization, unit.
CalculationResult CTrgCalculator::FromPlane(GridMetres metres, GridPoint& point, Run& run) const {
  const CalculationResult corrected = CorrectGrid(metres, &GridCorrection::ToGrid, run);
  if (corrected != CalculationResult::Done) return corrected;
  if (steps_.localization) {
    const StepOutcome outcome = steps_.localization->ToLocal(metres);
    run.Note(CalculationStep::Localization, metres);
    const CalculationResult localized = run.Take(*steps_.localization, outcome);
    if (localized != CalculationResult::Done) return localized;
  }
  point = InJobUnit(metres);
  run.Note(CalculationStep::JobUnit, point);
  return run.End();
}

// From the job to the plane of projection.
CalculationResult CTrgCalculator::ToPlane(const GridPoint& point, GridMetres& at, Run& run) const {
  if (!IsNumber(point.northing, point.easting, point.elevation)) {
    return CalculationResult::NotANumber;
  }
  run.Note(CalculationStep::JobUnit, point);
  at = InMetres(point);
  if (steps_.localization) {
    const StepOutcome outcome = steps_.localization->ToGrid(at);
    run.Note(CalculationStep::Localization, at);
    const CalculationResult result = run.Take(*steps_.localization, outcome);
    if (result != CalculationResult::Done) return result;
  }
  return CorrectGrid(at, &GridCorrection::ToPlane, run);
}

// From the system's datum, the height still the elevation, to WGS84.
CalculationResult CTrgCalculator::FromDatum(Geodetic position, Geodetic& wgs84, Run& run) const {
  CalculationResult result = CalculationResult::Done;
  if (steps_.geoid) {
    Geodetic settled;
    result = SettleHeight(position, position.heightM, settled, run);
    position = settled;
  } else {
    result = FromSystemDatum(position, run);
  }
  if (result != CalculationResult::Done) return result;
  wgs84 = position;
  run.Note(CalculationStep::Wgs84, wgs84);
  return run.End();
}

// The WGS84 position whose height above the geoid is `elevationM`: the height on the system's
// datum is not known beforehand, and moves until the two agree.
CalculationResult CTrgCalculator::SettleHeight(Geodetic onDatum, double elevationM, Geodetic& wgs84,
                                               Run& run) const {
  onDatum.heightM = elevationM;
  for (int pass = 0; pass < kHeightPasses; ++pass) {
    Run silent;
    wgs84 = onDatum;
    CalculationResult result = FromSystemDatum(wgs84, silent);
    if (result != CalculationResult::Done) return result;
    double undulationM = 0.0;
    const StepOutcome outcome =
        steps_.geoid->Undulation(wgs84.latitudeRad, wgs84.longitudeRad, undulationM);
    const double changeM = elevationM + undulationM - wgs84.heightM;
    const bool settled = std::fabs(changeM) < kHeightSettledM;
    if (settled || outcome.status != StepStatus::Done) {
      Geodetic shown = onDatum;
      result = FromSystemDatum(shown, run);
      if (result != CalculationResult::Done) return result;
      run.Note(CalculationStep::Geoid, GeoidUndulation{undulationM});
      return run.Take(*steps_.geoid, outcome);
    }
    onDatum.heightM += changeM;
  }
  return CalculationResult::NotConverging;
}

GridMetres CTrgCalculator::InMetres(const GridPoint& point) const {
  return {ToMetres(point.northing, unit_), ToMetres(point.easting, unit_),
          ToMetres(point.elevation, unit_)};
}

GridPoint CTrgCalculator::InJobUnit(const GridMetres& metres) const {
  return {FromMetres(metres.northingM, unit_), FromMetres(metres.eastingM, unit_),
          FromMetres(metres.elevationM, unit_)};
}

CalculationResult CTrgCalculator::ToGrid(const Geodetic& wgs84, GridPoint& point,
                                         CalculationReport* report) const {
  const CalculationResult state = State();
  if (state != CalculationResult::Done) return state;
  Run run{report};
  Geodetic position;
  GridMetres metres;
  const CalculationResult entered = OnDatum(wgs84, position, metres.elevationM, run);
  if (entered != CalculationResult::Done) return entered;
  const LatLon at{position.latitudeRad, position.longitudeRad};
  PlanePoint plane;
  const CalculationResult projected = ResultOf(projection_->Forward(at, plane));
  if (projected != CalculationResult::Done) return projected;
  metres.northingM = plane.northingM;
  metres.eastingM = plane.eastingM;
  run.Note(CalculationStep::Projection, metres);
  run.NoteScale(*projection_, at);
  return FromPlane(metres, point, run);
}

CalculationResult CTrgCalculator::ToWgs84(const GridPoint& point, Geodetic& wgs84,
                                          CalculationReport* report) const {
  const CalculationResult state = State();
  if (state != CalculationResult::Done) return state;
  Run run{report};
  GridMetres plane;
  const CalculationResult entered = ToPlane(point, plane, run);
  if (entered != CalculationResult::Done) return entered;
  LatLon at;
  const auto unprojected = ResultOf(projection_->Inverse({plane.northingM, plane.eastingM}, at));
  if (unprojected != CalculationResult::Done) return unprojected;
  const Geodetic position{at.latitudeRad, at.longitudeRad, plane.elevationM};
  run.Note(CalculationStep::Projection, position);
  run.NoteScale(*projection_, at);
  return FromDatum(position, wgs84, run);
}

}  // namespace tarvex
