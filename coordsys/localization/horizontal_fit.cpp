#include "coordsys/localization/horizontal_fit.h"

#include <algorithm>
#include <cmath>

namespace tarvex {
namespace {

constexpr double kCoincide_m = 0.001;

// Means of the used points; two passes, so that the sums over 1e7 m lose nothing.
struct Centroids {
  PlanePoint grid;
  PlanePoint local;
  int points = 0;
};

template <typename Visit>
void ForEachUsed(const ControlPoints& points, Visit visit) {
  for (const ControlPoint& point : points) {
    if (point.use_horizontal) visit(point);
  }
}

Centroids FindCentroids(const ControlPoints& points) {
  Centroids c;
  ForEachUsed(points, [&c](const ControlPoint& p) {
    if (c.points++ == 0) {
      c.grid = {p.grid.northing_m, p.grid.easting_m};
      c.local = {p.local.northing_m, p.local.easting_m};
    }
  });
  if (c.points == 0) return c;
  double off[4] = {};
  ForEachUsed(points, [&](const ControlPoint& p) {
    off[0] += p.grid.easting_m - c.grid.easting_m;
    off[1] += p.grid.northing_m - c.grid.northing_m;
    off[2] += p.local.easting_m - c.local.easting_m;
    off[3] += p.local.northing_m - c.local.northing_m;
  });
  c.grid.easting_m += off[0] / c.points;
  c.grid.northing_m += off[1] / c.points;
  c.local.easting_m += off[2] / c.points;
  c.local.northing_m += off[3] / c.points;
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
    const double de = point.grid.easting_m - c.grid.easting_m;
    const double dn = point.grid.northing_m - c.grid.northing_m;
    const double dx = point.local.easting_m - c.local.easting_m;
    const double dy = point.local.northing_m - c.local.northing_m;
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

double PlaneSimilarity::rotation_rad() const {
  return std::atan2(b, a);
}

PlanePoint PlaneSimilarity::ToLocal(const PlanePoint& grid) const noexcept {
  const double de = grid.easting_m - grid_easting_m;
  const double dn = grid.northing_m - grid_northing_m;
  return {.northing_m = local_y_m + b * de + a * dn, .easting_m = local_x_m + a * de - b * dn};
}

PlanePoint PlaneSimilarity::ToGrid(const PlanePoint& local) const noexcept {
  const double dx = local.easting_m - local_x_m;
  const double dy = local.northing_m - local_y_m;
  const double per_square = 1.0 / (a * a + b * b);
  return {.northing_m = grid_northing_m + (a * dy - b * dx) * per_square,
          .easting_m = grid_easting_m + (a * dx + b * dy) * per_square};
}

HorizontalFit FitHorizontal(const ControlPoints& points, HorizontalMethod method,
                            double given_scale) {
  HorizontalFit fit;
  const Centroids c = FindCentroids(points);
  fit.points = c.points;
  fit.method = c.points == 1 ? HorizontalMethod::Translation : method;
  fit.unknowns = Unknowns(fit.method);
  if (c.points == 0) return fit;
  const Moments m = FindMoments(points, c);
  if (!std::isfinite(m.s + m.l + m.p + m.q) || !(given_scale > 0.0)) {
    fit.result = FitResult::NotANumber;
    return fit;
  }
  const bool turns = fit.method != HorizontalMethod::Translation;
  if (turns && std::sqrt(std::min(m.s, m.l) / c.points) < kCoincide_m) {
    fit.result = FitResult::Coincide;
    return fit;
  }
  if (turns && std::hypot(m.p, m.q) < kCoincide_m * std::sqrt(m.s)) {
    fit.result = FitResult::Mirrored;
    return fit;
  }
  fit.similarity = {.grid_easting_m = c.grid.easting_m,
                    .grid_northing_m = c.grid.northing_m,
                    .local_x_m = c.local.easting_m,
                    .local_y_m = c.local.northing_m};
  const bool is_given =
      method == HorizontalMethod::FixedScale || method == HorizontalMethod::Translation;
  SetTurn(fit.similarity, m, fit.method, is_given ? given_scale : 1.0);
  fit.result = FitResult::Fitted;
  return fit;
}

}  // namespace tarvex
