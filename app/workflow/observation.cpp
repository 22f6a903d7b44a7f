#include "app/workflow/observation.h"

#include "core/raw_records.h"
#include "gnss/point_quality.h"
#include "gnss/position_reader.h"
#include "gnss/receiver_make.h"

namespace tarvex {
namespace {

constexpr const char* kNoPrecision =
    "The receiver sends no precision; HRMS and VRMS are unknown and written as 0.";

// What the raw file says of the stored point, in the order in which it is written.
std::vector<std::string> RawRecords(const Observation& observation, const Point& stored,
                                    const LocalTime& now, DistanceUnit unit) {
  const GnssPositionState& state = observation.point.state;
  const std::string date = DateText(now);
  const std::string time = TimeText(now);
  const bool quality = FindMake(observation.make_code).quality_instead_of_rms;
  std::vector<std::string> records{
      TimeStampRecord(now), RodHeightRecord(observation.antenna_height),
      GnssRecord({.point_id = stored.id.str(),
                  .latitude_degrees = state.latitude,
                  .longitude_degrees = state.longitude,
                  .height = state.height,
                  .description = observation.description}),
      GnssGridRecord(stored, observation.description),
      QualityComment(state, quality, QualityStamp{.date = date, .time = time})};
  for (const std::string& warning : PositionWarnings(state, observation.expects_precision)) {
    records.push_back(CommentRecord("Warning: " + warning));
  }
  for (std::string& record :
       CollectionRecords(observation.point, observation.position.steps, observation.antenna_height,
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
      .note = {.point_id = stored.id.str(),
               .lines = {},
               .quality_lines = QualityBlockLines(
                   observation.point.state, FindMake(observation.make_code).quality_instead_of_rms,
                   QualityStamp{.date = date, .time = time})}};
}

}  // namespace

GridPosition PlaceOnGrid(const GnssPositionState& state, const CTrgCalculator& calculator,
                         double antenna_height, DistanceUnit unit) {
  GridPosition position;
  position.result = calculator.ToGrid({.latitude_rad = state.latitude * kRadiansPerDegree,
                                       .longitude_rad = state.longitude * kRadiansPerDegree,
                                       .height_m = state.height - ToMetres(antenna_height, unit)},
                                      position.at, &position.steps);
  return position;
}

std::vector<std::string> PositionWarnings(const GnssPositionState& state, bool expects_precision) {
  std::vector<std::string> warnings;
  if (std::string origin = OriginSentence(state.origin); !origin.empty()) {
    warnings.push_back(std::move(origin));
  }
  if (std::string height = HeightSentence(state); !height.empty()) {
    warnings.push_back(std::move(height));
  }
  if (!state.precision_known && expects_precision) warnings.emplace_back(kNoPrecision);
  return warnings;
}

StoredPoint StoreObservation(JobSession& session, const Observation& observation,
                             Settling settling) {
  return StorePointUnit(session, observation.position.at, observation.description, settling,
                        [&](JobUnit& unit, const Point& stored) {
                          const LocalTime now = session.clock().Now();
                          unit.AppendRaw(RawRecords(observation, stored, now, session.job().unit));
                          unit.EditNote(stored.id.view(), QualityNote(observation, stored, now));
                        });
}

}  // namespace tarvex
