#include "coordsys/localization/localization_report.h"

#include <algorithm>
#include <cmath>

#include "core/number_text.h"
#include "core/string_table.h"

namespace tarvex {
namespace {

constexpr double kSmallExtent_m = 20.0;
constexpr double kFarScale_ppm = 200.0;
constexpr double kBlunderChance = 0.01;
constexpr double kFinest_m = 0.001;  // no control is better than a millimetre
constexpr double kBlunderAtLeast_m = 0.005;
constexpr double kLargeHorizontal_m = 0.05;
constexpr double kLargeVertical_m = 0.10;
constexpr double kThinnest = 0.02;

PlanePoint OnGrid(const ControlPoint& point) {
  return {point.grid.northing_m, point.grid.easting_m};
}

void SetResiduals(const ControlPoint& point, const LocalizationFit& fit, PointResidual& row) {
  GridMetres made = point.grid;
  (void)FittedLocalization(fit).ToLocal(made);
  row.east_m = point.local.easting_m - made.easting_m;
  row.north_m = point.local.northing_m - made.northing_m;
  row.elevation_m = point.local.elevation_m - made.elevation_m;
}

// Fits once more without the point.
void LeaveOut(const ControlPoints& points, std::size_t index, const LocalizationMethod& method,
              const LocalizationFit& fit, PointResidual& row) {
  ControlPoints others = points;
  others.erase(others.begin() + static_cast<std::ptrdiff_t>(index));
  const LocalizationFit without = FitLocalization(others, method);
  PointResidual missed;
  SetResiduals(points[index], without, missed);
  if (row.in_horizontal && fit.horizontal.result == FitResult::Fitted &&
      without.horizontal.result == FitResult::Fitted &&
      without.horizontal.method == fit.horizontal.method) {
    const PlaneSimilarity& a = without.horizontal.similarity;
    const PlaneSimilarity& b = fit.horizontal.similarity;
    row.left_out = LeftOut{
        .miss_east_m = missed.east_m,
        .miss_north_m = missed.north_m,
        .scale_change_ppm = (a.scale() - b.scale()) * 1e6,
        .rotation_change_rad = std::remainder(a.rotation_rad() - b.rotation_rad(), 2.0 * M_PI)};
  }
  if (row.in_vertical && without.vertical.result == FitResult::Fitted &&
      without.vertical.method == fit.vertical.method) {
    row.left_out_elevation_m = missed.elevation_m;
  }
}

std::optional<double> MeanGround_ppm(const ControlPoints& points) {
  double sum = 0.0;
  int count = 0;
  for (const ControlPoint& point : points) {
    if (!point.use_horizontal || !point.ground_scale) continue;
    sum += *point.ground_scale - 1.0;
    ++count;
  }
  if (count == 0) return std::nullopt;
  return 1e6 * sum / count;
}

// How much of a point's own observation its fitted place carries: 1/n plus its share of the spread.
double Leverage(const PlanePoint& at, const HorizontalFit& fit, double spread) {
  const double own = 1.0 / fit.points;
  if (fit.unknowns == 2 || spread == 0.0) return own;
  const double de = at.easting_m - fit.similarity.grid_easting_m;
  const double dn = at.northing_m - fit.similarity.grid_northing_m;
  const double share = (de * de + dn * dn) / spread;
  return own + (fit.unknowns == 4 ? share : 0.5 * share);
}

double Spread(const ControlPoints& points, const HorizontalFit& fit) {
  double spread = 0.0;
  for (const ControlPoint& point : points) {
    if (!point.use_horizontal) continue;
    const double de = point.grid.easting_m - fit.similarity.grid_easting_m;
    const double dn = point.grid.northing_m - fit.similarity.grid_northing_m;
    spread += de * de + dn * dn;
  }
  return spread;
}

void SetStatistics(const ControlPoints& points, LocalizationReport& report) {
  double east = 0.0;
  double north = 0.0;
  double up = 0.0;
  const bool fitted = report.fit.horizontal.result == FitResult::Fitted;
  for (const PointResidual& row : report.points) {
    if (row.in_horizontal && fitted) {
      east += row.east_m * row.east_m;
      north += row.north_m * row.north_m;
    }
    if (row.in_vertical) up += row.elevation_m * row.elevation_m;
  }
  const HorizontalFit& h = report.fit.horizontal;
  const VerticalFit& v = report.fit.vertical;
  report.rms_east_m = h.points > 0 ? std::sqrt(east / h.points) : 0.0;
  report.rms_north_m = h.points > 0 ? std::sqrt(north / h.points) : 0.0;
  report.rms_elevation_m = v.points > 0 ? std::sqrt(up / v.points) : 0.0;
  report.horizontal_redundancy = fitted ? std::max(0, h.redundancy()) : 0;
  report.vertical_redundancy = std::max(0, v.redundancy());
  if (report.horizontal_redundancy > 0) {
    report.sigma_horizontal_m = std::sqrt((east + north) / report.horizontal_redundancy);
  }
  if (report.vertical_redundancy > 0) {
    report.sigma_vertical_m = std::sqrt(up / report.vertical_redundancy);
  }
  if (!report.sigma_horizontal_m || *report.sigma_horizontal_m <= 0.0) return;
  const double spread = Spread(points, h);
  for (std::size_t i = 0; i < points.size(); ++i) {
    if (!report.points[i].in_horizontal) continue;
    const double left = 1.0 - Leverage(OnGrid(points[i]), h, spread);
    if (left < 1e-6) continue;
    report.points[i].standardised =
        report.points[i].horizontal_m() / (*report.sigma_horizontal_m * std::sqrt(2.0 * left));
  }
}

// Words for what should make a surveyor look again.
class WarningWriter {
 public:
  WarningWriter(const ControlPoints& points, DistanceUnit unit, LocalizationReport& report)
      : points_(points), unit_(unit), report_(report) {}

  void Write(const std::vector<PlanePoint>& job_points) {
    const HorizontalFit& h = report_.fit.horizontal;
    const VerticalFit& v = report_.fit.vertical;
    if (h.result == FitResult::Fitted) Horizontal(h, job_points);
    if (v.result == FitResult::Fitted) Vertical(v);
    LargeResiduals(h.result == FitResult::Fitted, v.result == FitResult::Fitted);
  }

 private:
  void Add(LocalizationWarning warning, int number,
           std::initializer_list<std::string_view> arguments = {}) {
    report_.warnings.push_back({warning, Strings().Text(number, arguments)});
  }

  std::string Length(double metres, int decimals) const {
    return FixedNumber(FromMetres(metres, unit_), decimals) +
           (unit_ == DistanceUnit::Metres ? " m" : " ft");
  }

  void Horizontal(const HorizontalFit& h, const std::vector<PlanePoint>& job_points) {
    if (report_.horizontal_redundancy == 0) {
      Add(LocalizationWarning::NoHorizontalCheck, 4130, {PointCount(h.points)});
    }
    const ControlHull hull = HullOf(points_);
    if (h.points >= 3 && IsThin()) Add(LocalizationWarning::CollinearControl, 4131);
    if (h.points >= 2 && hull.Extent_m() < kSmallExtent_m) {
      Add(LocalizationWarning::SmallExtent, 4132, {Length(hull.Extent_m(), 1)});
    }
    FarScale();
    Blunder();
    Outside(hull, job_points);
  }

  // Local coordinates lie on the grid or on the ground; a scale near neither is a mistake.
  void FarScale() {
    const double from_grid = report_.scale_ppm;
    if (std::abs(from_grid) <= kFarScale_ppm) return;
    if (!report_.ground_ppm) {
      return Add(LocalizationWarning::FarScale, 4133, {FixedNumber(from_grid, 1)});
    }
    if (std::abs(from_grid - *report_.ground_ppm) <= kFarScale_ppm) return;
    Add(LocalizationWarning::FarScale, 4141,
        {FixedNumber(from_grid, 1), FixedNumber(*report_.ground_ppm, 1)});
  }

  // By the eigenvalues of the spread of the used points.
  bool IsThin() const {
    const PlaneSimilarity& s = report_.fit.horizontal.similarity;
    double ee = 0.0;
    double nn = 0.0;
    double en = 0.0;
    for (const ControlPoint& point : points_) {
      if (!point.use_horizontal) continue;
      const double de = point.grid.easting_m - s.grid_easting_m;
      const double dn = point.grid.northing_m - s.grid_northing_m;
      ee += de * de;
      nn += dn * dn;
      en += de * dn;
    }
    const double half = 0.5 * (ee + nn);
    const double apart = std::hypot(0.5 * (ee - nn), en);
    return half - apart < kThinnest * kThinnest * (half + apart);
  }

  // The point that the others miss most, when that is far beyond what they miss themselves by.
  void Blunder() {
    const PointResidual* worst = nullptr;
    double worst_miss = kBlunderAtLeast_m;
    for (const PointResidual& row : report_.points) {
      if (!row.left_out) continue;
      const double miss = std::hypot(row.left_out->miss_east_m, row.left_out->miss_north_m);
      if (miss > worst_miss) {
        worst = &row;
        worst_miss = miss;
      }
    }
    if (worst == nullptr) return;
    const double chance = Chance(*worst);
    if (chance * report_.fit.horizontal.points < kBlunderChance) {
      Add(LocalizationWarning::LikelyBlunder, 4134, {worst->name, Length(worst_miss, 3)});
    }
  }

  // How likely a good point misses the others by this much: the tail of the F distribution of its
  // share of the squares, two degrees of freedom, against those of the fit without it. 1 when the
  // others have no redundancy of their own.
  double Chance(const PointResidual& row) const {
    const int redundancy = report_.fit.horizontal.redundancy() - 2;
    if (redundancy <= 0) return 1.0;
    double squares = 0.0;
    for (const PointResidual& other : report_.points) {
      if (other.in_horizontal) squares += other.horizontal_m() * other.horizontal_m();
    }
    // Leaving a point out takes the product of its residual and its miss off the squares.
    const double share =
        row.east_m * row.left_out->miss_east_m + row.north_m * row.left_out->miss_north_m;
    const double left = std::max(squares - share, redundancy * kFinest_m * kFinest_m);
    return std::pow(1.0 + share / left, -0.5 * redundancy);
  }

  void Outside(const ControlHull& hull, const std::vector<PlanePoint>& job_points) {
    int outside = 0;
    double farthest = 0.0;
    for (const PlanePoint& point : job_points) {
      const double beyond = hull.MetresOutside(point);
      if (beyond <= 0.1 * hull.Extent_m()) continue;
      ++outside;
      farthest = std::max(farthest, beyond);
    }
    if (outside == 0) return;
    Add(LocalizationWarning::OutsideControl, 4135,
        {std::to_string(outside), std::to_string(job_points.size()), Length(farthest, 0)});
  }

  void Vertical(const VerticalFit& v) {
    if (report_.vertical_redundancy == 0) {
      Add(LocalizationWarning::NoVerticalCheck, 4136, {PointCount(v.points)});
    }
    switch (v.fall_back) {
      case PlaneFallBack::TooFewPoints:
        return Add(LocalizationWarning::PlaneNotFitted, 4137);
      case PlaneFallBack::OnALine:
        return Add(LocalizationWarning::PlaneNotFitted, 4138);
      case PlaneFallBack::TooSteep:
        return Add(LocalizationWarning::PlaneNotFitted, 4139);
      case PlaneFallBack::None:
        break;
    }
  }

  void LargeResiduals(bool horizontal, bool vertical) {
    for (const PointResidual& row : report_.points) {
      const bool wide = horizontal && row.in_horizontal && row.horizontal_m() > kLargeHorizontal_m;
      const bool high = vertical && row.in_vertical && std::abs(row.elevation_m) > kLargeVertical_m;
      if (wide) {
        Add(LocalizationWarning::LargeResidual, 4140, {row.name, Length(row.horizontal_m(), 3)});
      }
      if (high) {
        Add(LocalizationWarning::LargeResidual, 4142, {row.name, Length(row.elevation_m, 3)});
      }
    }
  }

  const ControlPoints& points_;
  DistanceUnit unit_;
  LocalizationReport& report_;
};

}  // namespace

double PointResidual::horizontal_m() const {
  return std::hypot(east_m, north_m);
}

LocalizationReport ReportLocalization(const ControlPoints& points, const LocalizationMethod& method,
                                      const std::vector<PlanePoint>& job_points,
                                      DistanceUnit unit) {
  LocalizationReport report;
  report.fit = FitLocalization(points, method);
  const PlaneSimilarity& similarity = report.fit.horizontal.similarity;
  report.scale_ppm = (similarity.scale() - 1.0) * 1e6;
  report.ground_ppm = MeanGround_ppm(points);
  report.rotation_clockwise_rad = -similarity.rotation_rad();
  for (std::size_t i = 0; i < points.size(); ++i) {
    PointResidual row;
    row.name = points[i].name;
    row.in_horizontal = points[i].use_horizontal;
    row.in_vertical = points[i].use_vertical;
    SetResiduals(points[i], report.fit, row);
    LeaveOut(points, i, method, report.fit, row);
    report.points.push_back(std::move(row));
  }
  SetStatistics(points, report);
  WarningWriter(points, unit, report).Write(job_points);
  return report;
}

}  // namespace tarvex
