#include "coordsys/localization/horizontal_fit.h"

#include <algorithm>
#include <cmath>

namespace tarvex {
namespace {

constexpr double kCoincideM = 0.001;

// Means of the used points; two passes, so that the sums over 1e7 m lose nothing.
struct Centroids {
  PlanePoint grid;
  PlanePoint local;
  int points = 0;
};

template <typename Visit>
void ForEachUsed(const ControlPoints& points, Visit visit) {
  for (const ControlPoint& point : points) {
    if (point.useHorizontal) visit(point);
  }
}

Centroids FindCentroids(const ControlPoints& points) {
  Centroids c;
  ForEachUsed(points, [&c](const ControlPoint& p) {
    if (c.points++ == 0) {
      c.grid = {p.grid.northingM, p.grid.eastingM};
      c.local = {p.local.northingM, p.local.eastingM};
    }
  });
  if (c.points == 0) return c;
  double off[4] = {};
  ForEachUsed(points, [&](const ControlPoint& p) {
    off[0] += p.grid.eastingM - c.grid.eastingM;
    off[1] += p.grid.northingM - c.grid.northingM;
    off[2] += p.local.eastingM - c.local.eastingM;
    off[3] += p.local.northingM - c.local.northingM;
  });
  c.grid.eastingM += off[0] / c.points;
  c.grid.northingM += off[1] / c.points;
  c.local.eastingM += off[2] / c.points;
  c.local.northingM += off[3] / c.points;
  return c;
}

// Sums over coordinates about the centroids.
struct Moments {
  double s = 0.0;  // of the grid's squares
  double l = 0.0;  // of the local squares
  double p = 0.0;  // of the products along
  double q = 0.0;  // of the products across
};

Moments FindMoments(const ControlPoints& points, const Centroids& c) {
  Moments m;
  ForEachUsed(points, [&](const ControlPoint& point) {
    const double de = point.grid.eastingM - c.grid.eastingM;
    const double dn = point.grid.northingM - c.grid.northingM;
    const double dx = point.local.eastingM - c.local.eastingM;
    const double dy = point.local.northingM - c.local.northingM;
    m.s += de * de + dn * dn;
    m.l += dx * dx + dy * dy;
    m.p += de * dx + dn * dy;
    m.q += de * dy - dn * dx;
  });
  return m;
}

int Unknowns(HorizontalMethod method) {
  switch (method) {
    case HorizontalMethod::Similarity:
      return 4;
    case HorizontalMethod::FixedScale:
    case HorizontalMethod::RotationOnly:
      return 3;
    case HorizontalMethod::Translation:
      break;
  }
  return 2;
}

void SetTurn(PlaneSimilarity& similarity, const Moments& m, HorizontalMethod method, double scale) {
  if (method == HorizontalMethod::Translation) {
    similarity.a = scale;
    similarity.b = 0.0;
  } else if (method == HorizontalMethod::Similarity) {
    similarity.a = m.p / m.s;
    similarity.b = m.q / m.s;
  } else {
    const double length = std::hypot(m.p, m.q);
    similarity.a = scale * m.p / length;
    similarity.b = scale * m.q / length;
  }
}

}  // namespace

double PlaneSimilarity::scale() const {
  return std::hypot(a, b);
}

double PlaneSimilarity::rotationRad() const {
  return std::atan2(b, a);
}

PlanePoint PlaneSimilarity::ToLocal(const PlanePoint& grid) const noexcept {
  const double de = grid.eastingM - gridEastingM;
  const double dn = grid.northingM - gridNorthingM;
  return {.northingM = localYM + b * de + a * dn, .eastingM = localXM + a * de - b * dn};
}

PlanePoint PlaneSimilarity::ToGrid(const PlanePoint& local) const noexcept {
  const double dx = local.eastingM - localXM;
  const double dy = local.northingM - localYM;
  const double perSquare = 1.0 / (a * a + b * b);
  return {.northingM = gridNorthingM + (a * dy - b * dx) * perSquare,
          .eastingM = gridEastingM + (a * dx + b * dy) * perSquare};
}

HorizontalFit FitHorizontal(const ControlPoints& points, HorizontalMethod method,
                            double givenScale) {
  HorizontalFit fit;
  const Centroids c = FindCentroids(points);
  fit.points = c.points;
  fit.method = c.points == 1 ? HorizontalMethod::Translation : method;
  fit.unknowns = Unknowns(fit.method);
  if (c.points == 0) return fit;
  const Moments m = FindMoments(points, c);
  if (!std::isfinite(m.s + m.l + m.p + m.q) || !(givenScale > 0.0)) {
    fit.result = FitResult::NotANumber;
    return fit;
  }
  const bool turns = fit.method != HorizontalMethod::Translation;
  if (turns && std::sqrt(std::min(m.s, m.l) / c.points) < kCoincideM) {
    fit.result = FitResult::Coincide;
    return fit;
  }
  if (turns && std::hypot(m.p, m.q) < kCoincideM * std::sqrt(m.s)) {
    fit.result = FitResult::Mirrored;
    return fit;
  }
  fit.similarity = {.gridEastingM = c.grid.eastingM,
                    .gridNorthingM = c.grid.northingM,
                    .localXM = c.local.eastingM,
                    .localYM = c.local.northingM};
  const bool isGiven =
      method == HorizontalMethod::FixedScale || method == HorizontalMethod::Translation;
  SetTurn(fit.similarity, m, fit.method, isGiven ? givenScale : 1.0);
  fit.result = FitResult::Fitted;
  return fit;
}

}  // namespace tarvex
