#include "app/workflow/stake_target.h"

#include <cmath>

namespace tarvex {
namespace {

constexpr int kDescribedDecimals = 2;

}  // namespace

StakeRecord StakeRecordOf(const StakeRelation& relation, const GridPoint& found,
                          const StakeTolerance& tolerance, bool good) {
  const StakeDesign& design = relation.design;
  StakeRecord record = MakeStakeRecord(
      design.name, {design.northing, design.easting, design.elevation.value_or(0.0)},
      design.elevation.has_value(), found);
  record.found = relation.currentText;
  record.horizontalTolerance = tolerance.horizontal;
  record.verticalTolerance = tolerance.vertical;
  record.withinTolerance = good && relation.sound && record.distance <= tolerance.horizontal &&
                           std::fabs(record.difference.elevation) <= tolerance.vertical;
  return record;
}

std::string StakeDescription(const StakeRelation& relation) {
  if (!relation.cut) return relation.design.name;
  return relation.design.name + " " + CutFillText(*relation.cut, kDescribedDecimals);
}

std::optional<StakeRelation> PointTarget::Relate(const StakePosition& at,
                                                 const StakeHeading& heading) {
  if (!std::isfinite(at.northing) || !std::isfinite(at.easting)) return std::nullopt;
  StakeRelation relation;
  relation.design = design_;
  relation.reference = heading.reference;
  const double elevation = at.elevation.value_or(0.0);
  relation.deltas = DeltasTo(
      {at.northing, at.easting, elevation},
      {design_.northing, design_.easting, design_.elevation.value_or(elevation)}, heading.azimuth);
  if (at.elevation && design_.elevation) relation.cut = relation.deltas.cut;
  return relation;
}

void TravelDirection::Take(const StakePosition& at, int solution) {
  if (!from_ || solution != solution_) {
    from_ = at;
    solution_ = solution;
    return;
  }
  const double north = at.northing - from_->northing;
  const double east = at.easting - from_->easting;
  if (std::hypot(north, east) < least_) return;
  azimuth_ = std::atan2(east, north);
  from_ = at;
}

}  // namespace tarvex
