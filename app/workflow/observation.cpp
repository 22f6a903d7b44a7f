#include "app/workflow/observation.h"

#include "core/raw_data/raw_records.h"
#include "core/text/date_text.h"
#include "gnss/quality/point_quality.h"
#include "gnss/receivers/position_reader.h"
#include "gnss/receivers/receiver_make.h"

namespace tarvex {
namespace {

constexpr const char* kNoPrecision =
    "The receiver sends no precision; HRMS and VRMS are unknown and written as 0.";

// A person who set the receiver to send none is not warned of it; the file says it of every point.
constexpr bool kPrecisionMatters = true;

// A precision that was not told is 0 wherever it is written, also where a damaged or partly empty
// sentence left a number.
GnssPositionState WrittenState(const Observation& observation) {
  GnssPositionState state = observation.point.state;
  if (!state.precisionKnown) state.hrms = state.vrms = 0.0;
  return state;
}

// What the raw file says of the stored point, in the order in which it is written.
std::vector<std::string> RawRecords(const Observation& observation, const Point& stored,
                                    const LocalTime& now, DistanceUnit unit) {
  const GnssPositionState state = WrittenState(observation);
  const std::string date = DateText(now);
  const std::string time = TimeText(now);
  const bool quality = FindMake(observation.makeCode).qualityInsteadOfRms;
  std::vector<std::string> records = observation.setup;
  const std::string own[] = {
      TimeStampRecord(now), RodHeightRecord(observation.antennaHeight),
      GnssRecord({.pointId = stored.id.str(),
                  .latitudeDegrees = state.latitude,
                  .longitudeDegrees = state.longitude,
                  .height = state.height,
                  .description = observation.description}),
      GnssGridRecord(stored, observation.description),
      QualityComment(state, quality, QualityStamp{.date = date, .time = time})};
  records.insert(records.end(), std::begin(own), std::end(own));
  for (const std::string& warning : PositionWarnings(state, kPrecisionMatters)) {
    records.push_back(CommentRecord("Warning: " + warning));
  }
  for (std::string& record :
       CollectionRecords(observation.point, observation.position.steps, observation.antennaHeight,
                         stored.at.elevation, unit)) {
    records.push_back(std::move(record));
  }
  records.insert(records.end(), observation.comments.begin(), observation.comments.end());
  return records;
}

NoteEdit QualityNote(const Observation& observation, const Point& stored, const LocalTime& now) {
  const std::string date = DateText(now);
  const std::string time = TimeText(now);
  return {
      .kind = NoteEdit::Kind::SetQuality,
      .note = {.pointId = stored.id.str(),
               .lines = {},
               .qualityLines = QualityBlockLines(WrittenState(observation),
                                                 FindMake(observation.makeCode).qualityInsteadOfRms,
                                                 QualityStamp{.date = date, .time = time})}};
}

}  // namespace

std::string NoGridText(const GridPosition& position) {
  return "The position has no grid coordinates: " +
         CalculationText(position.result, position.steps) +
         " Is the job's coordinate system the one of this place, and are its files there "
         "(tarvex settings JOB.crd system)?";
}

GridPosition PlaceOnGrid(const GnssPositionState& state, const CTrgCalculator& calculator,
                         double antennaHeight, DistanceUnit unit) {
  GridPosition position;
  position.result = calculator.ToGrid({.latitudeRad = state.latitude * kRadiansPerDegree,
                                       .longitudeRad = state.longitude * kRadiansPerDegree,
                                       .heightM = state.height - ToMetres(antennaHeight, unit)},
                                      position.at, &position.steps);
  return position;
}

std::vector<std::string> PositionWarnings(const GnssPositionState& state, bool expectsPrecision) {
  std::vector<std::string> warnings;
  if (std::string origin = OriginSentence(state.origin); !origin.empty()) {
    warnings.push_back(std::move(origin));
  }
  if (std::string height = HeightSentence(state); !height.empty()) {
    warnings.push_back(std::move(height));
  }
  if (!state.precisionKnown && expectsPrecision) warnings.emplace_back(kNoPrecision);
  return warnings;
}

StoredPoint StoreObservation(JobSession& session, const Observation& observation,
                             Settling settling) {
  return StorePointUnit(
      session, observation.position.at, observation.description, settling,
      [&](JobUnit& unit, const Point& stored) {
        const LocalTime now = session.clock().Now();
        unit.AppendRaw(RawRecords(observation, stored, now, session.job().options.unit));
        unit.EditNote(stored.id.view(), QualityNote(observation, stored, now));
      });
}

}  // namespace tarvex
