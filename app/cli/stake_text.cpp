#include "app/cli/stake_text.h"

#include <cmath>

#include "app/cli/road_file.h"
#include "core/text/number_text.h"
#include "core/units/angle.h"

namespace tarvex {
namespace {

constexpr int kShownDecimals = 3;
constexpr int kSecondDecimals = 0;

std::string Shown(double value) {
  return FixedNumber(std::fabs(value), kShownDecimals);
}

// What is shown as nothing has no sign.
std::string Signed(double value) {
  const std::string text = FixedNumber(value, kShownDecimals);
  return text == FixedNumber(-0.0, kShownDecimals) ? text.substr(1) : text;
}

std::string Way(double value, const char* ahead, const char* behind) {
  return std::string("  ") + (value < 0.0 ? behind : ahead) + " " + Shown(value);
}

std::string AlongText(const StakeDeltas& deltas) {
  return Way(deltas.forward, "forward", "back") + Way(deltas.right, "right", "left");
}

std::string GridText(const StakeDeltas& deltas) {
  return Way(deltas.goNorth, "N", "S") + Way(deltas.goEast, "E", "W");
}

std::string DistanceText(const StakeDeltas& deltas) {
  return "  distance " + Shown(deltas.distance) + " at " +
         DegreesToDmsText(deltas.azimuth * kDegreesPerRadian, kSecondDecimals);
}

std::string WhereText(const StakeRelation& relation) {
  if (!relation.current) return "to " + relation.design.name;
  std::string text = "at " + relation.currentText;
  const std::string place = PlaceText(relation.current->place);
  if (!place.empty()) text += " (" + place + ")";
  if (relation.outsideLimits) text += " (outside the station limits)";
  return text;
}

std::string SlopeText(const SlopeStep& slope) {
  std::string text = slope.kind == EarthworkKind::Cut ? "  slope cut " : "  slope fill ";
  text += ShortestNumber(slope.ratio) + ":1 " + CutFillText(slope.difference, kShownDecimals);
  return text + (slope.caught ? "  CATCH POINT" : Way(slope.goOut, "go out", "go in"));
}

// What a person has to know beside the way to go.
std::string RemarkText(const StakeRelation& relation) {
  std::string text = relation.sound ? "" : "  (this element should not be staked)";
  if (relation.slope) text += SlopeText(*relation.slope);
  return text;
}

std::string_view ReferenceName(StakeReference reference) {
  switch (reference) {
    case StakeReference::North:
      break;
    case StakeReference::Travel:
      return "travel";
    case StakeReference::TowardPoint:
      return "point";
    case StakeReference::Alignment:
      return "alignment";
  }
  return "north";
}

}  // namespace

std::string StakeSeenText(const StakeSeen& seen) {
  const StakeRelation& relation = seen.relation;
  std::string line = seen.from + ": " + WhereText(relation);
  if (relation.reference != StakeReference::North) line += AlongText(relation.deltas);
  line += GridText(relation.deltas);
  if (!relation.current) line += DistanceText(relation.deltas);
  if (relation.cut) line += "  " + CutFillText(*relation.cut, kShownDecimals);
  if (seen.onStake) line += "  ON THE STAKE";
  return line + RemarkText(relation);
}

std::string StakeSeenShort(const StakeSeen& seen) {
  const StakeRelation& relation = seen.relation;
  const bool grid = relation.reference == StakeReference::North;
  std::string line = seen.onStake ? "ON THE STAKE" : seen.from;
  line += grid ? GridText(relation.deltas) : AlongText(relation.deltas);
  if (relation.cut) line += "  " + CutFillText(*relation.cut, kShownDecimals);
  line += RemarkText(relation) + "  " + WhereText(relation);
  if (!grid) line += GridText(relation.deltas);
  return line + DistanceText(relation.deltas);
}

std::string StakeDifferenceText(const StakeRecord& record) {
  std::string text =
      "N " + Signed(record.difference.northing) + ", E " + Signed(record.difference.easting);
  if (record.designHasElevation) text += ", EL " + Signed(record.difference.elevation);
  return text + ", distance " + Shown(record.distance) +
         (record.withinTolerance ? ", within the tolerance" : ", NOT within the tolerance");
}

std::string StakeDoubtText(const StakeDoubted& doubted) {
  std::string text = "Not stored: the position is " + Shown(doubted.distance) + " off";
  if (doubted.cut) text += ", " + CutFillText(*doubted.cut, kShownDecimals);
  text += " (tolerance " + FixedNumber(doubted.tolerance.horizontal, kShownDecimals) + ", " +
          FixedNumber(doubted.tolerance.vertical, kShownDecimals) + ")";
  if (!doubted.fixed) text += " and " + std::string(SolutionText(doubted.solution)) + ", not FIXED";
  if (!doubted.precise) text += ", its HRMS more than half the tolerance";
  return text + ". Enter again stores it all the same.";
}

Json StakeSeenJson(const StakeSeen& seen, const StationJson& station,
                   const std::string& elevationFrom) {
  const StakeRelation& relation = seen.relation;
  Json json{{"position", seen.from}, {"target", relation.design.name}};
  if (relation.current) {
    json.Append(station(relation.current->station));
    json["offset"] = relation.current->offset;
    json["station_to_go"] = relation.stationToGo;
    json["offset_to_go"] = relation.offsetToGo;
  }
  json["forward_from"] = ReferenceName(relation.reference);
  json["forward"] = relation.deltas.forward;
  json["right"] = relation.deltas.right;
  json["go_north"] = relation.deltas.goNorth;
  json["go_east"] = relation.deltas.goEast;
  json["distance"] = relation.deltas.distance;
  json["azimuth"] = relation.deltas.azimuth * kDegreesPerRadian;
  if (relation.current) json["outside_limits"] = relation.outsideLimits;
  if (relation.design.elevation) json["design_elevation"] = *relation.design.elevation;
  if (!elevationFrom.empty()) json["elevation_from"] = elevationFrom;
  if (relation.cut) json["cut"] = *relation.cut;
  json["inside_tolerance"] = seen.onStake;
  if (relation.current) json["sound"] = relation.sound;
  if (relation.slope) {
    json["slope"] = {{"kind", relation.slope->kind == EarthworkKind::Cut ? "cut" : "fill"},
                     {"ratio", relation.slope->ratio},
                     {"difference", relation.slope->difference},
                     {"go_out", relation.slope->goOut},
                     {"caught", relation.slope->caught}};
  }
  return json;
}

Json StakeRecordJson(const StakeRecord& record) {
  Json design{{"name", record.design},
              {"northing", record.designAt.northing},
              {"easting", record.designAt.easting}};
  Json difference{{"northing", record.difference.northing}, {"easting", record.difference.easting}};
  if (record.designHasElevation) {
    design["elevation"] = record.designAt.elevation;
    difference["elevation"] = record.difference.elevation;
  }
  difference["distance"] = record.distance;
  return {{"design", std::move(design)},
          {"found_at", record.found},
          {"difference", std::move(difference)},
          {"within_tolerance", record.withinTolerance}};
}

Json StakeStoredJson(const StakeStored& stored) {
  Json json{{"point", PointJson(stored.point)}};
  json.Append(StakeRecordJson(stored.record));
  json["solution"] = SolutionText(stored.solution);
  return json;
}

}  // namespace tarvex
