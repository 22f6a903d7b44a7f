#include "roads/alignment_builder.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <utility>

#include "core/units/no_value.h"
#include "roads/spiral_fit.h"

namespace tarvex {
namespace {

constexpr double kPi = std::numbers::pi;
constexpr double kZeroLength = 0.0005;  // a shorter run has no direction
constexpr double kSmallestRadius = 1e-3;
constexpr double kLargestRadius = 1e9;
constexpr double kHalfCircle = 1e-6;  // radians about a half circle where the centre has no side
constexpr std::size_t kMostPanels = 200000;

PlanPoint CenterOf(const CenterlineElement& node) {
  return {node.centerNorthing, node.centerEasting};
}

// > 0 when `point` lies right of the line from `from` to `to`.
double Side(const PlanPoint& from, const PlanPoint& to, const PlanPoint& point) {
  return (to.northing - from.northing) * (point.easting - from.easting) -
         (to.easting - from.easting) * (point.northing - from.northing);
}

bool IsFinite(const CenterlineElement& node) {
  // Beyond 1e12 the spacing of doubles is wider than what is staked.
  const auto usable = [](double value) { return std::fabs(value) < 1e12; };
  return usable(node.northing) && usable(node.easting) && usable(node.station) &&
         usable(node.centerNorthing) && usable(node.centerEasting) && std::isfinite(node.radius) &&
         std::isfinite(node.spiralParameter) && std::isfinite(node.angle);
}

}  // namespace

AlignmentBuilder::Run AlignmentBuilder::RunBetween(std::size_t from, std::size_t to) const {
  const PlanPoint a = PlaceOf(chain_[from]);
  const PlanPoint b = PlaceOf(chain_[to]);
  return {from, to, Distance(a, b), Azimuth(a, b), chain_[to].station - chain_[from].station};
}

Outcome<Alignment, AlignmentFault> AlignmentBuilder::Build() {
  for (const CenterlineElement& node : chain_) {
    if (!IsFinite(node)) {
      return Failure<AlignmentFault>{.code = AlignmentFault::OutOfRange,
                                     .place = static_cast<std::size_t>(node.line)};
    }
  }
  for (std::size_t node = 0; node + 1 < chain_.size();) node = TakeFrom(node);
  if (alignment_.elements_.empty()) return Failure<AlignmentFault>{.code = AlignmentFault::Nothing};
  AddJoins();
  JudgeSoundness();
  alignment_.index_ = AlignmentIndex(alignment_.pieces_);
  return std::move(alignment_);
}

// Takes the element that starts at `node`; returns the node that it ends at.
std::size_t AlignmentBuilder::TakeFrom(std::size_t node) {
  const CenterlineElement& start = chain_[node];
  if (start.record == KeyPointKind::TangentSpiral) return TakeGroup(node);
  if (start.record == KeyPointKind::SpiralCurve) return TakeLoneCurve(node);
  const Run run = RunBetween(node, node + 1);
  if (start.record == KeyPointKind::Spiral) {
    AddSpiralRecord(run);
  } else if (start.radius > 0.0) {
    AddArc(run, start);
  } else {
    AddTangent(run, ElementFault::None);
  }
  return node + 1;
}

// "TS", "SC", "CS" and the end of the group, whatever it is (an "ST" on the next "TS" has become
// that "TS"); or "TS", "CS" and the end, when the "SC" coincided with the "CS".
std::size_t AlignmentBuilder::TakeGroup(std::size_t node) {
  const std::size_t left = chain_.size() - node;
  const bool whole = left > 3 && chain_[node + 1].record == KeyPointKind::SpiralCurve &&
                     chain_[node + 2].kind == ElementKind::Vertex;
  const bool collapsed = !whole && left > 2 && chain_[node + 1].kind == ElementKind::Vertex &&
                         chain_[node + 1].angle != 0.0;
  if (!whole && !collapsed) {
    AddTangent(RunBetween(node, node + 1), ElementFault::BrokenGroup);
    return node + 1;
  }
  const std::size_t exit = whole ? node + 2 : node + 1;
  const Run entryRun = RunBetween(node, node + 1);
  const Run exitRun = RunBetween(exit, exit + 1);
  auto circle =
      CircleAt(node + 1, entryRun.chord >= kZeroLength ? entryRun : RunBetween(node + 1, exit));
  if (collapsed) {
    circle = CircleAt(node, RunBetween(node, exit + 1));
    if (circle) circle->radius = Distance(PlaceOf(chain_[exit]), circle->center);
  }
  if (!circle || circle->radius < kSmallestRadius) {
    for (std::size_t i = node; i <= exit; ++i) {
      AddTangent(RunBetween(i, i + 1), ElementFault::NoCentre);
    }
    return exit + 1;
  }
  AddTransition(entryRun, *circle, true, chain_[node].tangentAzimuth.value_or(kNoValue));
  if (whole) AddArc(RunBetween(node + 1, exit), chain_[node + 1]);
  const bool azimuthGiven = chain_[exit + 1].record == KeyPointKind::SpiralTangent;
  const double field = azimuthGiven ? chain_[exit + 1].angle : 0.0;
  AddTransition(exitRun, *circle, false, field != 0.0 ? field : kNoValue);
  return exit + 1;
}

// An "SC" without its "TS": an arc, and the exit spiral when a "CS" follows.
std::size_t AlignmentBuilder::TakeLoneCurve(std::size_t node) {
  const Run run = RunBetween(node, node + 1);
  const auto circle = CircleAt(node, run);
  if (!circle) {
    AddTangent(run, ElementFault::NoCentre);
    return node + 1;
  }
  AddArc(run, chain_[node]);
  const bool exit = chain_[node + 1].record == KeyPointKind::CurveSpiral;
  if (!exit || node + 2 >= chain_.size()) return node + 1;
  AddTransition(RunBetween(node + 1, node + 2), *circle, false, kNoValue);
  return node + 2;
}

std::optional<AlignmentBuilder::Circle> AlignmentBuilder::CircleAt(std::size_t node,
                                                                   const Run& run) const {
  const CenterlineElement& curve = chain_[node];
  const PlanPoint center = CenterOf(curve);
  const double radius = Distance(PlaceOf(curve), center);
  if (!(radius >= kSmallestRadius && radius <= kLargestRadius)) return std::nullopt;
  const double side = Side(PlaceOf(chain_[run.from]), PlaceOf(chain_[run.to]), center);
  return Circle{center, radius, side < 0.0 ? -1.0 : 1.0};
}

AlignmentElement AlignmentBuilder::Begin(const Run& run, ElementShape shape,
                                         ElementFault fault) const {
  AlignmentElement element;
  element.shape = shape;
  element.fault = fault;
  element.fromNode = run.from;
  element.toNode = run.to;
  element.stationStart = chain_[run.from].station;
  element.stationEnd = chain_[run.to].station;
  return element;
}

void AlignmentBuilder::Finish(AlignmentElement element, const CurvePiece& piece) {
  element.length = piece.length;
  element.curvatureStart = piece.curvature;
  element.curvatureEnd = piece.curvatureEnd;
  element.azimuthStart = FullAngle(std::atan2(piece.sinAzimuth, piece.cosAzimuth));
  const double sweep = 0.5 * (element.curvatureStart + element.curvatureEnd) * piece.length;
  element.azimuthEnd = FullAngle(element.azimuthStart + sweep);
  alignment_.elements_.push_back(element);
  alignment_.pieces_.push_back(piece);
}

void AlignmentBuilder::AddTangent(const Run& run, ElementFault fault) {
  if (run.chord < kZeroLength) return;
  AlignmentElement element = Begin(run, ElementShape::Tangent, fault);
  element.residuals.length = run.chord - run.stations;
  Finish(element, MakeArcPiece(PlaceOf(chain_[run.from]), run.azimuth, 0.0, run.chord));
}

// The centre decides the turn; the sign of the angle only where the centre lies on the chord.
double AlignmentBuilder::TurnOf(const Run& run, const CenterlineElement& curve, double side) const {
  const double angle = std::fabs(curve.angle);
  const bool onChord = std::fabs(side) <= 1e-6 * run.chord * curve.radius;
  if (onChord && std::fabs(angle - kPi) < kHalfCircle) return curve.angle < 0.0 ? -1.0 : 1.0;
  const double turn = side < 0.0 ? -1.0 : 1.0;
  return angle <= kPi ? turn : -turn;
}

void AlignmentBuilder::AddArc(const Run& run, const CenterlineElement& curve) {
  if (run.chord < kZeroLength) return;
  const PlanPoint from = PlaceOf(chain_[run.from]);
  const PlanPoint to = PlaceOf(chain_[run.to]);
  const PlanPoint center = CenterOf(curve);
  if (!(curve.radius >= kSmallestRadius && curve.radius <= kLargestRadius)) {
    return AddTangent(run, ElementFault::NoCentre);
  }
  const double turn = TurnOf(run, curve, Side(from, to, center));
  const double sweep = FullAngle(turn * (Azimuth(center, to) - Azimuth(center, from)));
  const double halfSine = std::sin(0.5 * sweep);
  if (!(halfSine > 1e-9)) return AddTangent(run, ElementFault::NoCentre);
  AlignmentElement element = Begin(run, ElementShape::Arc, ElementFault::None);
  element.center = center;
  element.residuals.length = curve.radius * sweep - run.stations;
  element.residuals.endRadius = Distance(to, center) - curve.radius;
  if (curve.angle != 0.0) element.residuals.angle = sweep - std::fabs(curve.angle);
  element.residuals.turnAgainstSign = curve.angle * turn < 0.0;
  // The key points are held: the radius that fits them differs from the centre's by rounding.
  const double radius = 0.5 * run.chord / halfSine;
  Finish(element,
         MakeArcPiece(from, run.azimuth - turn * 0.5 * sweep, turn / radius, radius * sweep));
}

void AlignmentBuilder::AddTransition(const Run& run, const Circle& circle, bool entry,
                                     double field) {
  if (run.chord < kZeroLength) return;
  const double curve = circle.turn / circle.radius;
  const double k0 = entry ? 0.0 : curve;
  const double k1 = entry ? curve : 0.0;
  AlignmentElement element = Begin(run, ElementShape::Spiral, ElementFault::None);
  double length = run.stations;
  if (IsSpiralBuildable(k0, k1, length)) {
    element.residuals.chord = run.chord - SpiralChord(k0, k1, length);
  } else {
    element.residuals.chord = run.chord;
  }
  const bool shorter = length < 0.9 * run.chord;  // a length that no curve of this chord can have
  if (shorter || std::fabs(*element.residuals.chord) > limits_.refuse) {
    const auto fitted = SpiralLengthOfChord(k0, k1, run.chord);
    if (!fitted) return AddTangent(run, ElementFault::SpiralTooTight);
    length = *fitted;
  }
  const double radial = Azimuth(circle.center, PlaceOf(chain_[entry ? run.to : run.from]));
  const double atCurve = radial + circle.turn * 0.5 * kPi;
  const double sweep = circle.turn * 0.5 * length / circle.radius;
  const double atTangent = entry ? atCurve - sweep : atCurve + sweep;
  if (!IsNoValue(field)) element.residuals.azimuthField = WrapAngle(field - atTangent);
  AddSpiral(run, element, k0, k1, length);
}

// Rotated and scaled so that its ends fall on the key points.
void AlignmentBuilder::AddSpiral(const Run& run, AlignmentElement element, double k0, double k1,
                                 double length) {
  const LocalFrame end = SpiralEnd(k0, k1, length);
  const double scale = run.chord / std::hypot(end.x, end.y);
  // Fitting may stretch by what the limits let pass; far more than that is no spiral of this chord.
  const bool fits = scale > 0.5 && scale < 2.0 && length < 100.0 * run.chord;
  if (!fits || alignment_.panels_.size() > kMostPanels) {
    return AddTangent(run, ElementFault::SpiralTooTight);
  }
  const double azimuth = run.azimuth - std::atan2(end.y, end.x);
  Finish(element, MakeSpiralPiece(PlaceOf(chain_[run.from]), azimuth, k0 / scale, k1 / scale,
                                  length * scale, alignment_.panels_));
}

// Radius at the record, parameter A, and 1 or 2 with the sign of the turn: tightening, relaxing.
void AlignmentBuilder::AddSpiralRecord(const Run& run) {
  if (run.chord < kZeroLength) return;
  const CenterlineElement& record = chain_[run.from];
  const bool straight = record.radius == 0.0 || IsNoValue(record.radius);
  const double turn = record.angle < 0.0 ? -1.0 : 1.0;
  const double kind = std::fabs(record.angle);
  const double k0 = straight ? 0.0 : 1.0 / std::fabs(record.radius);
  const double a2 = record.spiralParameter * record.spiralParameter;
  const bool readable = (kind == 1.0 || kind == 2.0) && a2 > 0.0 && std::isfinite(a2) &&
                        (straight || std::fabs(record.radius) >= kSmallestRadius);
  const double change = (kind == 1.0 ? 1.0 : -1.0) * run.stations / (readable ? a2 : 1.0);
  double k1 = k0 + change;
  // An end that the file's decimals keep from being straight is straight: how far it would lead
  // astray tells.
  if (std::fabs(k1) * run.stations * run.stations / 6.0 < limits_.straight) k1 = 0.0;
  if (!readable || !IsSpiralBuildable(k0, k1, run.stations)) {
    return AddTangent(run, ElementFault::SpiralUnknown);
  }
  AlignmentElement element = Begin(run, ElementShape::Spiral, ElementFault::None);
  element.residuals.chord = run.chord - SpiralChord(k0, k1, run.stations);
  if (std::fabs(*element.residuals.chord) > limits_.spiralRecord) {
    AddTangent(run, ElementFault::SpiralUnknown);
    if (!alignment_.elements_.empty()) {
      alignment_.elements_.back().residuals.chord = element.residuals.chord;
    }
    return;
  }
  AddSpiral(run, element, turn * k0, turn * k1, run.stations);
}

void AlignmentBuilder::AddJoins() {
  auto& elements = alignment_.elements_;
  for (std::size_t i = 1; i < elements.size(); ++i) {
    const bool anglePoint = elements[i - 1].shape == ElementShape::Tangent &&
                            elements[i].shape == ElementShape::Tangent;
    if (anglePoint) continue;
    elements[i].residuals.join = WrapAngle(elements[i].azimuthStart - elements[i - 1].azimuthEnd);
  }
}

void AlignmentBuilder::JudgeSoundness() {
  const auto beyond = [this](const std::optional<double>& residual) {
    return residual && !(std::fabs(*residual) <= limits_.refuse);
  };
  double before = -std::numeric_limits<double>::infinity();
  for (AlignmentElement& element : alignment_.elements_) {
    const ElementResiduals& r = element.residuals;
    element.sound = element.fault == ElementFault::None && !beyond(r.length) &&
                    !beyond(r.endRadius) && !beyond(r.chord) &&
                    std::fabs(r.join.value_or(0.0)) <= kBrokenJoin;
    if (element.stationStart < before || element.stationEnd < element.stationStart) {
      alignment_.stationsRise_ = false;
    }
    before = element.stationStart;
  }
}

Outcome<Alignment, AlignmentFault> Alignment::FromChain(std::span<const CenterlineElement> chain,
                                                        const CheckLimits& limits) {
  return AlignmentBuilder(chain, limits).Build();
}

}  // namespace tarvex
