#include "app/workflow/stake_session.h"

#include <cmath>
#include <utility>

#include "core/number_text.h"
#include "gnss/port_error.h"

namespace tarvex {
namespace {

constexpr int kShownDecimals = 3;
constexpr std::int64_t kPatienceMs = 60000;

std::string Shown(double value) {
  return FixedNumber(std::fabs(value), kShownDecimals);
}

}  // namespace

StakeSession::StakeSession(Program& program, const OpenedRoad& road, StakePlan plan)
    : program_(program), road_(road), plan_(std::move(plan)), gate_(plan_.tolerance) {}

std::string StakeSession::StakeLine(const RoadStake& stake, bool inside) const {
  std::string line = "at " + road_.StationText(stake.current.station) + " " +
                     OffsetText(stake.current.offset, kShownDecimals);
  const std::string place = PlaceText(stake.current.place);
  if (!place.empty()) line += " (" + place + ")";
  if (road_.OutsideLimits(stake.current.station)) line += " (outside the station limits)";
  line += (stake.deltas.forward < 0.0 ? "  back " : "  forward ") + Shown(stake.deltas.forward) +
          (stake.deltas.right < 0.0 ? "  left " : "  right ") + Shown(stake.deltas.right) +
          (stake.deltas.go_north < 0.0 ? "  S " : "  N ") + Shown(stake.deltas.go_north) +
          (stake.deltas.go_east < 0.0 ? "  W " : "  E ") + Shown(stake.deltas.go_east);
  if (stake.cut) line += "  " + CutFillText(*stake.cut, kShownDecimals);
  if (inside) line += "  ON THE STAKE";
  if (!stake.sound) line += "  (this element should not be staked)";
  return line;
}

Json StakeSession::StakeJson(const RoadStake& stake, bool inside) const {
  Json json = road_.StationJson(stake.current.station);
  json["offset"] = stake.current.offset;
  json["station_to_go"] = stake.station_to_go;
  json["offset_to_go"] = stake.offset_to_go;
  json["forward"] = stake.deltas.forward;
  json["right"] = stake.deltas.right;
  json["go_north"] = stake.deltas.go_north;
  json["go_east"] = stake.deltas.go_east;
  json["distance"] = stake.deltas.distance;
  json["outside_limits"] = road_.OutsideLimits(stake.current.station);
  if (plan_.target.elevation) json["design_elevation"] = *plan_.target.elevation;
  json["elevation_from"] = plan_.elevation_from;
  if (stake.cut) json["cut"] = *stake.cut;
  json["inside_tolerance"] = inside;
  json["sound"] = stake.sound;
  return json;
}

// The catch point is looked for where the position stands, whatever its station.
std::optional<SlopeStep> StakeSession::NextSlope(const RoadStake& stake, const StakePosition& at) {
  if (!plan_.slope_side || !plan_.design || !at.elevation) return std::nullopt;
  const double sign = *plan_.slope_side == Side::Right ? 1.0 : -1.0;
  const SlopeShot shot{sign * stake.current.offset, *at.elevation};
  const auto step =
      NextSlopeStep(*plan_.section, *plan_.design, *plan_.slope_side, shot, shot_before_);
  shot_before_ = shot;
  return step;
}

void StakeSession::Show(const StakePosition& at, bool good_position, const std::string& name) {
  RoadTarget target = plan_.target;
  if (!at.elevation) target.elevation.reset();
  const auto stake =
      StakeRoadPoint(road_.alignment(), target,
                     {at.northing, at.easting, at.elevation.value_or(0.0)}, station_before_);
  if (!stake) return;
  station_before_ = stake->current.station;
  last_ = at;
  last_stake_ = stake;
  const bool inside =
      gate_.Update(stake->deltas.distance, stake->cut, good_position && stake->sound);
  PrintStake(*stake, inside, NextSlope(*stake, at), name);
}

void StakeSession::PrintStake(const RoadStake& stake, bool inside,
                              const std::optional<SlopeStep>& slope, const std::string& name) {
  if (plan_.json) {
    Json json{{"position", name}};
    json.update(StakeJson(stake, inside));
    if (slope) {
      json["slope"] = {{"kind", slope->kind == EarthworkKind::Cut ? "cut" : "fill"},
                       {"ratio", slope->ratio},
                       {"difference", slope->difference},
                       {"go_out", slope->go_out},
                       {"caught", slope->caught}};
    }
    program_.console.Print(json.dump() + "\n");
    return;
  }
  std::string line = name + ": " + StakeLine(stake, inside);
  if (slope) {
    line += slope->kind == EarthworkKind::Cut ? "  slope cut " : "  slope fill ";
    line += ShortestNumber(slope->ratio) + ":1 " + CutFillText(slope->difference, kShownDecimals);
    line += slope->caught ? "  CATCH POINT"
                          : (slope->go_out < 0.0 ? "  go in " : "  go out ") + Shown(slope->go_out);
  }
  program_.console.Print(line + "\n");
}

void StakeSession::ShowPosition(const StakePosition& at, const std::string& name) {
  Show(at, true, name);
}

bool StakeSession::TakePosition(const GnssPositionState& state, const CTrgCalculator& calculator,
                                DistanceUnit unit) {
  GridPoint at;
  const CalculationResult converted =
      calculator.ToGrid({.latitude_rad = state.latitude * kRadiansPerDegree,
                         .longitude_rad = state.longitude * kRadiansPerDegree,
                         .height_m = state.height - ToMetres(plan_.antenna_height, unit)},
                        at);
  if (converted != CalculationResult::Done && converted != CalculationResult::DoneInPart) {
    program_.console.PrintError(
        "The position has no grid coordinates: " + CalculationText(converted) + "\n");
    return false;
  }
  // A stake goes in on a fixed position only, precise to half the tolerance where that is known.
  const bool precise = !state.precision_known || state.precision_carried_over ||
                       state.hrms <= 0.5 * plan_.tolerance.horizontal;
  const auto elevation = state.height_known ? std::optional(at.elevation) : std::nullopt;
  Show({at.northing, at.easting, elevation}, state.solutionType == SolutionType::Fixed && precise,
       std::string(SolutionText(state.solutionType)));
  return true;
}

ExitCode StakeSession::Follow(const ChosenReceiver& receiver, const CTrgCalculator& calculator,
                              DistanceUnit unit) {
  LastErrorRecord& errors = SystemLastError();
  errors.Clear();
  const auto port =
      MakePort(receiver.address, program_.files, program_.clock, errors, InterruptRequested);
  if (port && port->Open() != PortError::None) return program_.Fail(ErrorSentences(errors));
  GnssConnection connection{
      .port = port.get(), .clock = program_.clock, .settings = receiver.settings};
  connection.settings.unit = unit;
  connection.stop = this;
  GnssPositionState state;
  long long shown = 0;
  std::int64_t last_new = program_.clock.SteadyMilliseconds();
  while (!InterruptRequested() && (plan_.count == 0 || shown < plan_.count)) {
    const GnssReadResult result = ReadGnssPosition(state, connection, receiver.make_code);
    if (result == GnssReadResult::Accepted && !state.repeated_epoch) {
      last_new = program_.clock.SteadyMilliseconds();
      if (TakePosition(state, calculator, unit)) ++shown;
      continue;
    }
    if (result != GnssReadResult::Accepted && connection.ended()) break;
    if (program_.clock.SteadyMilliseconds() - last_new > kPatienceMs) {
      return program_.Fail("No new position came within a minute. " + ResultSentence(result));
    }
  }
  if (shown > 0) return ExitCode::Done;
  return program_.Fail("The receiver gave no position to stake from.");
}

std::string StakeSession::StakeText() const {
  if (!last_stake_) return {};
  std::string text =
      road_.StationText(plan_.target.station) + " " + OffsetText(plan_.target.offset, 2);
  if (last_stake_->cut) text += " " + CutFillText(*last_stake_->cut, 2);
  return text;
}

}  // namespace tarvex
