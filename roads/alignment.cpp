#include "roads/alignment.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>

namespace tarvex {
namespace {

constexpr double kTie = 1e-9;
constexpr double kAngleBreak = 1e-5;  // a smaller jump of azimuth at a join is rounding
constexpr double kSameFoot = 1e-6;
constexpr double kOfferedDistance = 30.0;
constexpr double kOfferedFactor = 2.0;
constexpr double kFollowFactor = 1.1;
constexpr double kFeetPerMetre = 3.28;
constexpr double kMissedFoot = 0.001;  // runs of 0.0005 have no element: so wide a gap may be left

// The lower station of two that are as near.
bool IsBetter(const StationOffset& a, const StationOffset& b) {
  if (std::fabs(a.distance - b.distance) > kTie) return a.distance < b.distance;
  return a.station < b.station;
}

}  // namespace

CheckLimits CheckLimits::For(DistanceUnit unit) {
  const double factor = unit == DistanceUnit::Metres ? 1.0 : kFeetPerMetre;
  return {0.001 * factor, 0.02 * factor, 0.01 * factor, 5e-5 * factor};
}

double AlignmentElement::SpiralParameter() const {
  const double change = std::fabs(curvatureEnd - curvatureStart);
  return shape == ElementShape::Spiral && change > 0.0 ? std::sqrt(length / change) : 0.0;
}

double Alignment::length() const {
  double sum = 0.0;
  for (const AlignmentElement& element : elements_) sum += element.length;
  return sum;
}

// The last element that starts at or before the station; where stations fall, the first element
// that spans it.
std::optional<std::size_t> Alignment::ElementAt(double station) const {
  if (!stationsRise_) {
    for (std::size_t i = 0; i < elements_.size(); ++i) {
      const auto [low, high] = std::minmax(elements_[i].stationStart, elements_[i].stationEnd);
      if (station >= low && station <= high) return i;
    }
    return std::nullopt;
  }
  if (station < startStation() || station > endStation()) return std::nullopt;
  const auto above = std::upper_bound(
      elements_.begin(), elements_.end(), station,
      [](double value, const AlignmentElement& e) { return value < e.stationStart; });
  return static_cast<std::size_t>(above - elements_.begin()) - 1;
}

double Alignment::StationOn(std::size_t element, double along) const {
  const AlignmentElement& e = elements_[element];
  return e.stationStart + along * (e.StationLength() / e.length);
}

std::optional<AlignmentPoint> Alignment::PointAt(double station, double offset) const {
  if (!std::isfinite(station) || !std::isfinite(offset)) return std::nullopt;
  const auto found = ElementAt(station);
  const bool before = !found && station < startStation();
  const std::size_t i = found.value_or(before ? 0 : elements_.size() - 1);
  const AlignmentElement& element = elements_[i];
  const CurvePiece& piece = pieces_[i];
  LocalFrame at;
  AlignmentPoint point;
  if (found) {
    const double stations = element.StationLength();
    const double along =
        stations != 0.0 ? (station - element.stationStart) * (piece.length / stations) : 0.0;
    const double clamped = std::clamp(along, 0.0, piece.length);
    at = piece.At(clamped, panels_);
    point.curvature = piece.CurvatureAt(clamped);
  } else {
    const double past = station - (before ? startStation() : endStation());
    if (!before) at = piece.end;
    at.x += past * at.tangentX;
    at.y += past * at.tangentY;
    point.place = before ? Place::BeforeStart : Place::AfterEnd;
  }
  const LocalFrame direction = piece.DirectionToGrid(at);
  point.at = piece.ToGrid(at.x - offset * at.tangentY, at.y + offset * at.tangentX);
  point.azimuth = FullAngle(std::atan2(direction.y, direction.x));
  point.element = i;
  point.sound = element.sound;
  return point;
}

PlanPoint Alignment::PointOnElement(std::size_t element, double along) const {
  const CurvePiece& piece = pieces_[element];
  const LocalFrame at = piece.At(std::clamp(along, 0.0, piece.length), panels_);
  return piece.ToGrid(at.x, at.y);
}

StationOffset Alignment::FromFoot(const PlanPoint& point, const ElementFoot& foot) const {
  const NearestOnPiece& nearest = foot.nearest;
  if (nearest.perpendicular) {
    return {StationOn(foot.element, nearest.distanceAlong),
            nearest.offset,
            std::fabs(nearest.offset),
            Place::On,
            foot.element,
            elements_[foot.element].sound};
  }
  const bool atEnd = nearest.distanceAlong > 0.0;
  if (!atEnd && foot.element == 0) return AtStart(point);
  if (atEnd && foot.element + 1 == elements_.size()) {
    if (const auto beyond = BeyondEnd(point)) return *beyond;
  }
  return AtNode(point, atEnd ? foot.element : foot.element - 1);
}

// The node at the end of element `behind`; the bisector of its tangents decides the side.
StationOffset Alignment::AtNode(const PlanPoint& point, std::size_t behind) const {
  const CurvePiece& before = pieces_[behind];
  const bool last = behind + 1 == pieces_.size();
  const LocalFrame in = before.DirectionToGrid(before.end);
  const PlanPoint node = before.ToGrid(before.end.x, before.end.y);
  double north = in.x;
  double east = in.y;
  double turn = 0.0;
  if (!last) {
    const CurvePiece& after = pieces_[behind + 1];
    turn = std::atan2(in.x * after.sinAzimuth - in.y * after.cosAzimuth,
                      in.x * after.cosAzimuth + in.y * after.sinAzimuth);
    north += after.cosAzimuth;
    east += after.sinAzimuth;
  }
  const double dn = point.northing - node.northing;
  const double de = point.easting - node.easting;
  const double distance = std::hypot(dn, de);
  const double side = north * de - east * dn;
  StationOffset at;
  at.station = elements_[behind].stationEnd;
  at.offset = side < 0.0 ? -distance : distance;
  at.distance = distance;
  at.place = std::fabs(turn) > kAngleBreak ? Place::AtVertex : Place::On;
  at.element = behind;
  at.sound = elements_[behind].sound;
  return at;
}

// The start, of a point that is nearest to it: beyond it or, by rounding, beside it.
StationOffset Alignment::AtStart(const PlanPoint& point) const {
  if (const auto beyond = BeyondStart(point)) return *beyond;
  const LocalFrame local = pieces_.front().ToLocal(point);
  const double distance = std::hypot(local.x, local.y);
  return {startStation(),         std::copysign(distance, local.y), distance, Place::On, 0,
          elements_.front().sound};
}

std::optional<StationOffset> Alignment::BeyondStart(const PlanPoint& point) const {
  const LocalFrame local = pieces_.front().ToLocal(point);
  if (local.x >= 0.0) return std::nullopt;
  return StationOffset{startStation() + local.x, local.y, std::hypot(local.x, local.y),
                       Place::BeforeStart,       0,       elements_.front().sound};
}

std::optional<StationOffset> Alignment::BeyondEnd(const PlanPoint& point) const {
  const CurvePiece& piece = pieces_.back();
  const LocalFrame local = piece.ToLocal(point);
  const double dx = local.x - piece.end.x;
  const double dy = local.y - piece.end.y;
  const double past = dx * piece.end.tangentX + dy * piece.end.tangentY;
  if (past <= 0.0) return std::nullopt;
  const double offset = dy * piece.end.tangentX - dx * piece.end.tangentY;
  return StationOffset{endStation() + past,  offset,
                       std::hypot(dx, dy),   Place::AfterEnd,
                       elements_.size() - 1, elements_.back().sound};
}

std::optional<StationOffset> Alignment::Closest(const PlanPoint& point) const {
  if (!IsFinite(point)) return std::nullopt;
  ElementFoot best;
  double bestDistance = std::numeric_limits<double>::infinity();
  double reach = bestDistance;
  index_.Search(point, reach, [&](std::uint32_t i) {
    const NearestOnPiece nearest = pieces_[i].Nearest(point, panels_);
    const double distance = std::fabs(nearest.offset);
    // A tie goes to the perpendicular, then to the lower station.
    const bool tie = std::fabs(distance - bestDistance) <= kTie;
    const bool wins =
        tie ? (nearest.perpendicular != best.nearest.perpendicular ? nearest.perpendicular
                                                                   : i < best.element)
            : distance < bestDistance;
    if (wins) {
      best = {i, nearest};
      bestDistance = distance;
      reach = (distance + kTie) * (distance + kTie);
    }
    return reach;
  });
  return FromFoot(point, best);
}

std::vector<StationOffset> Alignment::Candidates(const PlanPoint& point) const {
  std::vector<StationOffset> found;
  if (!IsFinite(point)) return found;
  const auto add = [&found](const StationOffset& candidate) {
    const bool repeated = !found.empty() &&
                          std::fabs(found.back().station - candidate.station) < kSameFoot &&
                          std::fabs(found.back().offset - candidate.offset) < kSameFoot;
    if (!repeated) found.push_back(candidate);
  };
  if (const auto before = BeyondStart(point)) add(*before);
  std::vector<NearestOnPiece> feet;
  for (std::size_t i = 0; i < pieces_.size(); ++i) {
    feet.clear();
    pieces_[i].AppendFeet(point, panels_, feet);
    for (const NearestOnPiece& foot : feet) add(FromFoot(point, {i, foot}));
    if (i + 1 == pieces_.size()) break;
    const CurvePiece& piece = pieces_[i];
    const LocalFrame behind = piece.ToLocal(point);
    const double past = (behind.x - piece.end.x) * piece.end.tangentX +
                        (behind.y - piece.end.y) * piece.end.tangentY;
    if (past > 0.0 && pieces_[i + 1].ToLocal(point).x < 0.0) add(AtNode(point, i));
  }
  if (const auto after = BeyondEnd(point)) add(*after);
  std::sort(found.begin(), found.end(), IsBetter);
  AddMissedFoot(point, found);
  return found;
}

// At a join a foot can lie, by rounding, beyond the end of both elements.
void Alignment::AddMissedFoot(const PlanPoint& point, std::vector<StationOffset>& sorted) const {
  const auto closest = Closest(point);
  if (sorted.empty() || sorted.front().distance > closest->distance + kMissedFoot) {
    sorted.insert(sorted.begin(), *closest);
  }
}

std::optional<StationOffset> Alignment::Follow(const PlanPoint& point, double stationBefore) const {
  const std::vector<StationOffset> candidates = Candidates(point);
  if (candidates.empty()) return std::nullopt;
  const double reach = candidates.front().distance * kFollowFactor;
  const StationOffset* chosen = &candidates.front();
  for (const StationOffset& candidate : candidates) {
    if (candidate.distance > reach) break;
    if (std::fabs(candidate.station - stationBefore) < std::fabs(chosen->station - stationBefore)) {
      chosen = &candidate;
    }
  }
  return *chosen;
}

std::vector<StationOffset> Alignment::WorthOffering(std::vector<StationOffset> candidates) {
  if (candidates.empty()) return candidates;
  const double reach = std::max(kOfferedFactor * candidates.front().distance, kOfferedDistance);
  std::erase_if(candidates,
                [reach](const StationOffset& candidate) { return candidate.distance > reach; });
  return candidates;
}

std::vector<double> Alignment::GeometricStations(std::span<const CenterlineElement> chain) const {
  std::vector<double> stations(chain.size(), startStation());
  std::size_t node = 0;
  double station = startStation();
  for (const AlignmentElement& element : elements_) {
    for (; node < element.toNode; ++node) stations[node] = station;
    station += element.length;
  }
  for (; node < stations.size(); ++node) stations[node] = station;
  return stations;
}

}  // namespace tarvex
