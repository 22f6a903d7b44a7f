#include "app/cli/road_stake_guide.h"
#include "roads/catch_point.h"

#include <cmath>
#include <utility>

#include "core/raw_data/raw_records.h"
#include "core/text/number_text.h"

namespace tarvex {
namespace {

constexpr int kShownDecimals = 3;

std::string Shown(double value) {
  return FixedNumber(std::fabs(value), kShownDecimals);
}

// What is shown as nothing has no sign.
std::string Difference(double value) {
  const std::string text = FixedNumber(value, kRoadDecimals);
  return text == FixedNumber(-0.0, kRoadDecimals) ? text.substr(1) : text;
}

}  // namespace

RoadStakeGuide::RoadStakeGuide(Program& program, const OpenedRoad& road, RoadStakePlan plan)
    : program_(program), road_(road), plan_(std::move(plan)), gate_(plan_.tolerance) {}

std::string RoadStakeGuide::StakeLine(const RoadStake& stake, bool inside) const {
  std::string line = "at " + road_.StationText(stake.current.station) + " " +
                     OffsetText(stake.current.offset, kShownDecimals);
  const std::string place = PlaceText(stake.current.place);
  if (!place.empty()) line += " (" + place + ")";
  if (road_.OutsideLimits(stake.current.station)) line += " (outside the station limits)";
  line += (stake.deltas.forward < 0.0 ? "  back " : "  forward ") + Shown(stake.deltas.forward) +
          (stake.deltas.right < 0.0 ? "  left " : "  right ") + Shown(stake.deltas.right) +
          (stake.deltas.goNorth < 0.0 ? "  S " : "  N ") + Shown(stake.deltas.goNorth) +
          (stake.deltas.goEast < 0.0 ? "  W " : "  E ") + Shown(stake.deltas.goEast);
  if (stake.cut) line += "  " + CutFillText(*stake.cut, kShownDecimals);
  if (inside) line += "  ON THE STAKE";
  if (!stake.sound) line += "  (this element should not be staked)";
  return line;
}

Json RoadStakeGuide::StakeJson(const RoadStake& stake, bool inside) const {
  Json json = road_.StationJson(stake.current.station);
  json["offset"] = stake.current.offset;
  json["station_to_go"] = stake.stationToGo;
  json["offset_to_go"] = stake.offsetToGo;
  json["forward"] = stake.deltas.forward;
  json["right"] = stake.deltas.right;
  json["go_north"] = stake.deltas.goNorth;
  json["go_east"] = stake.deltas.goEast;
  json["distance"] = stake.deltas.distance;
  json["outside_limits"] = road_.OutsideLimits(stake.current.station);
  if (plan_.target.elevation) json["design_elevation"] = *plan_.target.elevation;
  json["elevation_from"] = plan_.elevationFrom;
  if (stake.cut) json["cut"] = *stake.cut;
  json["inside_tolerance"] = inside;
  json["sound"] = stake.sound;
  return json;
}

// The catch point is looked for at the position, whatever its station.
std::optional<SlopeStep> RoadStakeGuide::NextSlope(const RoadStake& stake,
                                                   const StakePosition& at) {
  if (!plan_.slopeSide || !plan_.design || !at.elevation) return std::nullopt;
  const double sign = *plan_.slopeSide == Side::Right ? 1.0 : -1.0;
  const SlopeShot shot{sign * stake.current.offset, *at.elevation};
  const auto step =
      NextSlopeStep(*plan_.section, *plan_.design, *plan_.slopeSide, shot, shotBefore_);
  shotBefore_ = shot;
  return step;
}

bool RoadStakeGuide::Relate(const StakePosition& at) {
  RoadTarget target = plan_.target;
  if (!at.elevation) target.elevation.reset();
  const auto stake =
      StakeRoadPoint(road_.alignment(), target,
                     {at.northing, at.easting, at.elevation.value_or(0.0)}, stationBefore_);
  if (!stake) return false;
  stationBefore_ = stake->current.station;
  last_ = at;
  lastStake_ = stake;
  return true;
}

void RoadStakeGuide::TakeStored(const StakePosition& at) {
  (void)Relate(at);
}

StakeView RoadStakeGuide::Show(const StakePosition& at, bool good, const std::string& name) {
  if (!Relate(at)) return StakeView::NotRelated;
  const RoadStake& stake = *lastStake_;
  const bool inside = gate_.Update(stake.deltas.distance, stake.cut, good && stake.sound);
  PrintStake(stake, inside, NextSlope(stake, at), name);
  return inside ? StakeView::OnTheStake : StakeView::Shown;
}

void RoadStakeGuide::PrintStake(const RoadStake& stake, bool inside,
                                const std::optional<SlopeStep>& slope, const std::string& name) {
  if (plan_.json) {
    Json json{{"position", name}};
    json.Append(StakeJson(stake, inside));
    if (slope) {
      json["slope"] = {{"kind", slope->kind == EarthworkKind::Cut ? "cut" : "fill"},
                       {"ratio", slope->ratio},
                       {"difference", slope->difference},
                       {"go_out", slope->goOut},
                       {"caught", slope->caught}};
    }
    program_.console.Print(JsonLine(json) + "\n");
    return;
  }
  std::string line = name + ": " + StakeLine(stake, inside);
  if (slope) {
    line += slope->kind == EarthworkKind::Cut ? "  slope cut " : "  slope fill ";
    line += ShortestNumber(slope->ratio) + ":1 " + CutFillText(slope->difference, kShownDecimals);
    line += slope->caught ? "  CATCH POINT"
                          : (slope->goOut < 0.0 ? "  go in " : "  go out ") + Shown(slope->goOut);
  }
  program_.console.Print(line + "\n");
}

// Design, found and difference, so that the raw file says how far off a stake was.
std::vector<std::string> RoadStakeGuide::Records() const {
  if (!lastStake_ || !last_) return {};
  std::string text = "Stake: design " + road_.StationText(plan_.target.station) + " " +
                     OffsetText(plan_.target.offset, kShownDecimals);
  text += ", N " + FixedNumber(lastStake_->target.northing, kRoadDecimals) + ", E " +
          FixedNumber(lastStake_->target.easting, kRoadDecimals);
  if (plan_.target.elevation) text += ", EL " + FixedNumber(*plan_.target.elevation, kRoadDecimals);
  const std::string found =
      "Stake: found " + road_.StationText(lastStake_->current.station) + " " +
      OffsetText(lastStake_->current.offset, kShownDecimals) + ", N " +
      FixedNumber(last_->northing, kRoadDecimals) + ", E " +
      FixedNumber(last_->easting, kRoadDecimals) +
      (last_->elevation ? ", EL " + FixedNumber(*last_->elevation, kRoadDecimals) : "");
  std::string difference = "Stake: difference N " + Difference(-lastStake_->deltas.goNorth) +
                           ", E " + Difference(-lastStake_->deltas.goEast) + ", distance " +
                           FixedNumber(lastStake_->deltas.distance, kRoadDecimals);
  if (lastStake_->cut) difference += ", EL " + Difference(*lastStake_->cut);
  return {CommentRecord(text), CommentRecord(found), CommentRecord(difference)};
}

std::string RoadStakeGuide::Description() const {
  if (!lastStake_) return {};
  std::string text =
      road_.StationText(plan_.target.station) + " " + OffsetText(plan_.target.offset, 2);
  if (lastStake_->cut) text += " " + CutFillText(*lastStake_->cut, 2);
  return text;
}

}  // namespace tarvex
