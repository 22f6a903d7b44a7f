#include "roads/curve_piece.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace tarvex {
namespace {

constexpr double kPanelSweep = 0.5;
constexpr double kSmallAngle = 1e-4;
constexpr int kMostSteps = 60;
constexpr double kStepDone = 1e-11;
constexpr double kSoftFoot = 1e-3;  // 1 - k*o: nearer to the centre Newton's step is not trusted

// (s - middle) / half runs over -1..1: position and direction by one pass of Horner's rule each.
LocalFrame OnPanel(const SpiralPanel& panel, double s) {
  const double u = (s - panel.middle) / panel.half;
  double px = 0.0;
  double py = 0.0;
  double tx = 0.0;
  double ty = 0.0;
  static constexpr auto kReciprocal = [] {
    std::array<double, SpiralPanel::kTerms> reciprocal{};
    for (std::size_t n = 0; n < reciprocal.size(); ++n) {
      reciprocal[n] = 1.0 / static_cast<double>(n + 1);
    }
    return reciprocal;
  }();
  for (std::size_t n = SpiralPanel::kTerms; n-- > 0;) {
    px = px * u + panel.directionX[n] * kReciprocal[n];
    py = py * u + panel.directionY[n] * kReciprocal[n];
    tx = tx * u + panel.directionX[n];
    ty = ty * u + panel.directionY[n];
  }
  const double along = u * panel.half;
  return {panel.center.x + along * px, panel.center.y + along * py, tx, ty};
}

// The series of one panel whose middle has azimuth `theta` and curvature `k` (local frame).
void FillSeries(double theta, double k, double sharpness, SpiralPanel& panel) {
  const double a = k * panel.half;
  const double b = sharpness * panel.half * panel.half;
  auto& x = panel.directionX;
  auto& y = panel.directionY;
  x[0] = std::cos(theta);
  y[0] = std::sin(theta);
  for (std::size_t n = 0; n + 1 < SpiralPanel::kTerms; ++n) {
    const double beforeX = n > 0 ? x[n - 1] : 0.0;
    const double beforeY = n > 0 ? y[n - 1] : 0.0;
    const double next = 1.0 / static_cast<double>(n + 1);
    x[n + 1] = -(a * y[n] + b * beforeY) * next;
    y[n + 1] = (a * x[n] + b * beforeX) * next;
  }
}

struct PanelPlan {
  std::size_t count = 1;
  double sharpness = 0.0;
};

PanelPlan PlanPanels(double k0, double k1, double length) {
  // The most curved panel decides, so that none turns by more than kPanelSweep.
  constexpr double kMost = 4.0 * kLargestSpiralSweep;  // curvatures of both signs included
  const double turning = std::max(std::fabs(k0), std::fabs(k1)) * length;
  const double count = std::ceil((turning < kMost ? turning : kMost) / kPanelSweep);
  return {static_cast<std::size_t>(std::max(count, 1.0)), length > 0.0 ? (k1 - k0) / length : 0.0};
}

SpiralPanel MakePanel(double k0, const PanelPlan& plan, double length, std::size_t index,
                      const LocalFrame& from) {
  const double width = length / static_cast<double>(plan.count);
  SpiralPanel panel;
  panel.half = 0.5 * width;
  panel.middle = (static_cast<double>(index) + 0.5) * width;
  panel.from = from;
  const double m = panel.middle;
  FillSeries(k0 * m + 0.5 * plan.sharpness * m * m, k0 + plan.sharpness * m, plan.sharpness, panel);
  const LocalFrame relative = OnPanel(panel, m - panel.half);  // the centre is still 0
  panel.center = {from.x - relative.x, from.y - relative.y, panel.directionX[0],
                  panel.directionY[0]};
  return panel;
}

}  // namespace

double AbsoluteSweep(double k0, double k1, double length) {
  if (k0 * k1 >= 0.0) return 0.5 * std::fabs(k0 + k1) * length;
  return 0.5 * (k0 * k0 + k1 * k1) / std::fabs(k1 - k0) * length;
}

LocalFrame AppendSpiralPanels(double k0, double k1, double length,
                              std::vector<SpiralPanel>& panels) {
  const PanelPlan plan = PlanPanels(k0, k1, length);
  LocalFrame at;
  for (std::size_t i = 0; i < plan.count; ++i) {
    panels.push_back(MakePanel(k0, plan, length, i, at));
    at = OnPanel(panels.back(), panels.back().middle + panels.back().half);
  }
  return at;
}

LocalFrame SpiralEnd(double k0, double k1, double length) {
  const PanelPlan plan = PlanPanels(k0, k1, length);
  LocalFrame at;
  for (std::size_t i = 0; i < plan.count; ++i) {
    const SpiralPanel panel = MakePanel(k0, plan, length, i, at);
    at = OnPanel(panel, panel.middle + panel.half);
  }
  return at;
}

LocalFrame CurvePiece::ToLocal(const PlanPoint& point) const {
  const double dn = point.northing - start.northing;
  const double de = point.easting - start.easting;
  return {dn * cosAzimuth + de * sinAzimuth, de * cosAzimuth - dn * sinAzimuth, 1.0, 0.0};
}

PlanPoint CurvePiece::ToGrid(double x, double y) const {
  return {start.northing + (x * cosAzimuth - y * sinAzimuth),
          start.easting + (x * sinAzimuth + y * cosAzimuth)};
}

LocalFrame CurvePiece::DirectionToGrid(const LocalFrame& at) const {
  return {at.tangentX * cosAzimuth - at.tangentY * sinAzimuth,
          at.tangentX * sinAzimuth + at.tangentY * cosAzimuth, 1.0, 0.0};
}

namespace {

LocalFrame OnArc(double curvature, double s) {
  if (curvature == 0.0) return {s, 0.0, 1.0, 0.0};
  const double half = 0.5 * curvature * s;
  const double sine = std::sin(half);
  const double cosine = std::cos(half);
  const double sinc = std::fabs(half) < kSmallAngle ? 1.0 - half * half / 6.0 : sine / half;
  const double chord = s * sinc;
  return {chord * cosine, chord * sine, cosine * cosine - sine * sine, 2.0 * sine * cosine};
}

// Station and offset against the whole circle (or line) of a piece: along in 0..2 pi R.
struct OnCircle {
  double along = 0.0;
  double offset = 0.0;
};

OnCircle ProjectOnCircle(double curvature, double length, double x, double y) {
  if (curvature == 0.0) return {x, y};
  const double q = y - 0.5 * curvature * (x * x + y * y);
  const double offset = 2.0 * q / (1.0 + std::sqrt(std::max(0.0, 1.0 - 2.0 * curvature * q)));
  double along = std::atan2(curvature * x, 1.0 - curvature * y) / curvature;
  // Of the turns of the circle take the one that lies in the piece, or nearest to it.
  const double around = 2.0 * std::numbers::pi / std::fabs(curvature);
  if (along < -kFootTolerance && along + around <= length + kFootTolerance) along += around;
  return {along, offset};
}

}  // namespace

LocalFrame CurvePiece::At(double s, std::span<const SpiralPanel> panels) const {
  if (panelCount == 0) return OnArc(curvature, s);
  const double width = length / static_cast<double>(panelCount);
  const double index = std::clamp(std::floor(s / width), 0.0, static_cast<double>(panelCount - 1));
  return OnPanel(panels[firstPanel + static_cast<std::size_t>(index)], s);
}

namespace {

double Along(const LocalFrame& at, double x, double y) {
  return (x - at.x) * at.tangentX + (y - at.y) * at.tangentY;
}

double Offset(const LocalFrame& at, double x, double y) {
  return (y - at.y) * at.tangentX - (x - at.x) * at.tangentY;
}

// A stretch of a panel at whose ends f, the distance that the point lies ahead, changes from + to
// -.
struct Bracket {
  double low = 0.0;
  double high = 0.0;
  double fLow = 0.0;
  double fHigh = 0.0;
};

// Newton's step ds = f / (1 - k*o) inside the bracket, bisection where it leaves it.
NearestOnPiece Perpendicular(const CurvePiece& piece, const SpiralPanel& panel, Bracket bracket,
                             double x, double y) {
  double s =
      bracket.low + (bracket.high - bracket.low) * bracket.fLow / (bracket.fLow - bracket.fHigh);
  LocalFrame at;
  for (int step = 0; step < kMostSteps; ++step) {
    at = OnPanel(panel, s);
    const double f = Along(at, x, y);
    const double stiffness = 1.0 - piece.CurvatureAt(s) * Offset(at, x, y);
    (f > 0.0 ? bracket.low : bracket.high) = s;
    double next = stiffness > kSoftFoot ? s + f / stiffness : bracket.low - 1.0;
    if (!(next >= bracket.low && next <= bracket.high)) next = 0.5 * (bracket.low + bracket.high);
    const double change = std::fabs(next - s);
    if (change == 0.0) break;
    s = next;
    if (change < kStepDone) break;
  }
  at = OnPanel(panel, s);
  return {s, Offset(at, x, y), true};
}

// Calls take(foot) for each perpendicular of a spiral that is a minimum of the distance.
template <typename Take>
void VisitSpiralFeet(const CurvePiece& piece, std::span<const SpiralPanel> panels, double x,
                     double y, Take take) {
  const std::span<const SpiralPanel> own = panels.subspan(piece.firstPanel, piece.panelCount);
  double before = Along(own.front().from, x, y);
  if (std::fabs(before) <= kFootTolerance) {
    take(NearestOnPiece{0.0, Offset(own.front().from, x, y), true});
    before = -0.0;
  }
  for (std::size_t i = 0; i < own.size(); ++i) {
    const SpiralPanel& panel = own[i];
    const double middle = Along(panel.center, x, y);
    const double behind = Along(i + 1 < own.size() ? own[i + 1].from : piece.end, x, y);
    const double low = panel.middle - panel.half;
    const double high = panel.middle + panel.half;
    if (before > 0.0 && middle <= 0.0) {
      take(Perpendicular(piece, panel, {low, panel.middle, before, middle}, x, y));
    }
    if (middle > 0.0 && behind <= 0.0) {
      take(Perpendicular(piece, panel, {panel.middle, high, middle, behind}, x, y));
    }
    before = behind;
  }
  if (before > 0.0 && before <= kFootTolerance) {
    take(NearestOnPiece{piece.length, Offset(piece.end, x, y), true});
  }
}

NearestOnPiece NearerEnd(const CurvePiece& piece, double x, double y) {
  const double toStart = std::hypot(x, y);
  const double toEnd = std::hypot(x - piece.end.x, y - piece.end.y);
  return toStart <= toEnd ? NearestOnPiece{0.0, toStart, false}
                          : NearestOnPiece{piece.length, toEnd, false};
}

bool Inside(const CurvePiece& piece, double along) {
  return along >= -kFootTolerance && along <= piece.length + kFootTolerance;
}

}  // namespace

NearestOnPiece CurvePiece::Nearest(const PlanPoint& point,
                                   std::span<const SpiralPanel> panels) const {
  const LocalFrame local = ToLocal(point);
  if (panelCount == 0) {
    const OnCircle foot = ProjectOnCircle(curvature, length, local.x, local.y);
    if (!Inside(*this, foot.along)) return NearerEnd(*this, local.x, local.y);
    return {std::clamp(foot.along, 0.0, length), foot.offset, true};
  }
  NearestOnPiece best = NearerEnd(*this, local.x, local.y);
  VisitSpiralFeet(*this, panels, local.x, local.y, [&best](const NearestOnPiece& foot) {
    const double tie = best.perpendicular ? 0.0 : kFootTolerance;  // beside an end it is the foot
    if (std::fabs(foot.offset) <= std::fabs(best.offset) + tie) best = foot;
  });
  return best;
}

void CurvePiece::AppendFeet(const PlanPoint& point, std::span<const SpiralPanel> panels,
                            std::vector<NearestOnPiece>& feet) const {
  const LocalFrame local = ToLocal(point);
  if (panelCount == 0) {
    const OnCircle foot = ProjectOnCircle(curvature, length, local.x, local.y);
    if (Inside(*this, foot.along)) {
      feet.push_back({std::clamp(foot.along, 0.0, length), foot.offset, true});
    }
    return;
  }
  VisitSpiralFeet(*this, panels, local.x, local.y,
                  [&feet](const NearestOnPiece& foot) { feet.push_back(foot); });
}

CurvePiece MakeArcPiece(const PlanPoint& start, double azimuth, double curvature, double length) {
  CurvePiece piece;
  piece.start = start;
  piece.cosAzimuth = std::cos(azimuth);
  piece.sinAzimuth = std::sin(azimuth);
  piece.curvature = curvature;
  piece.curvatureEnd = curvature;
  piece.length = length;
  piece.end = OnArc(curvature, length);
  return piece;
}

CurvePiece MakeSpiralPiece(const PlanPoint& start, double azimuth, double k0, double k1,
                           double length, std::vector<SpiralPanel>& panels) {
  CurvePiece piece = MakeArcPiece(start, azimuth, k0, length);
  piece.curvatureEnd = k1;
  piece.sharpness = (k1 - k0) / length;
  piece.firstPanel = static_cast<std::uint32_t>(panels.size());
  piece.end = AppendSpiralPanels(k0, k1, length, panels);
  piece.panelCount = static_cast<std::uint32_t>(panels.size()) - piece.firstPanel;
  return piece;
}

}  // namespace tarvex
