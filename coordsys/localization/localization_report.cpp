#include "coordsys/localization/localization_report.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "coordsys/coordsys_texts.h"
#include "core/text/number_text.h"
#include "core/text/string_table.h"

namespace tarvex {
namespace {

constexpr double kSmallExtentM = 20.0;
constexpr double kFarScalePpm = 200.0;
constexpr double kBlunderChance = 0.01;
constexpr double kFinestM = 0.001;  // no control is better than a millimetre
constexpr double kBlunderAtLeastM = 0.005;
constexpr double kLargeHorizontalM = 0.05;
constexpr double kLargeVerticalM = 0.10;
constexpr double kThinnest = 0.02;

PlanePoint OnGrid(const ControlPoint& point) {
  return {point.grid.northingM, point.grid.eastingM};
}

void SetResiduals(const ControlPoint& point, const LocalizationFit& fit, PointResidual& row) {
  GridMetres made = point.grid;
  (void)FittedLocalization(fit).ToLocal(made);
  row.eastM = point.local.eastingM - made.eastingM;
  row.northM = point.local.northingM - made.northingM;
  row.elevationM = point.local.elevationM - made.elevationM;
}

// Fits once more without the point.
void LeaveOut(const ControlPoints& points, std::size_t index, const LocalizationMethod& method,
              const LocalizationFit& fit, PointResidual& row) {
  ControlPoints others = points;
  others.erase(others.begin() + static_cast<std::ptrdiff_t>(index));
  const LocalizationFit without = FitLocalization(others, method);
  PointResidual missed;
  SetResiduals(points[index], without, missed);
  if (row.inHorizontal && fit.horizontal.result == FitResult::Fitted &&
      without.horizontal.result == FitResult::Fitted &&
      without.horizontal.method == fit.horizontal.method) {
    const PlaneSimilarity& a = without.horizontal.similarity;
    const PlaneSimilarity& b = fit.horizontal.similarity;
    row.leftOut = LeftOut{.missEastM = missed.eastM,
                          .missNorthM = missed.northM,
                          .scaleChangePpm = (a.scale() - b.scale()) * 1e6,
                          .rotationChangeRad = std::remainder(a.rotationRad() - b.rotationRad(),
                                                              2.0 * std::numbers::pi)};
  }
  if (row.inVertical && without.vertical.result == FitResult::Fitted &&
      without.vertical.method == fit.vertical.method) {
    row.leftOutElevationM = missed.elevationM;
  }
}

std::optional<double> MeanGroundPpm(const ControlPoints& points) {
  double sum = 0.0;
  int count = 0;
  for (const ControlPoint& point : points) {
    if (!point.useHorizontal || !point.groundScale) continue;
    sum += *point.groundScale - 1.0;
    ++count;
  }
  if (count == 0) return std::nullopt;
  return 1e6 * sum / count;
}

// How much of a point's own observation its fitted place carries: 1/n plus its share of the spread.
double Leverage(const PlanePoint& at, const HorizontalFit& fit, double spread) {
  const double own = 1.0 / fit.points;
  if (fit.unknowns == 2 || spread == 0.0) return own;
  const double de = at.eastingM - fit.similarity.gridEastingM;
  const double dn = at.northingM - fit.similarity.gridNorthingM;
  const double share = (de * de + dn * dn) / spread;
  return own + (fit.unknowns == 4 ? share : 0.5 * share);
}

double Spread(const ControlPoints& points, const HorizontalFit& fit) {
  double spread = 0.0;
  for (const ControlPoint& point : points) {
    if (!point.useHorizontal) continue;
    const double de = point.grid.eastingM - fit.similarity.gridEastingM;
    const double dn = point.grid.northingM - fit.similarity.gridNorthingM;
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
    if (row.inHorizontal && fitted) {
      east += row.eastM * row.eastM;
      north += row.northM * row.northM;
    }
    if (row.inVertical) up += row.elevationM * row.elevationM;
  }
  const HorizontalFit& h = report.fit.horizontal;
  const VerticalFit& v = report.fit.vertical;
  report.rmsEastM = h.points > 0 ? std::sqrt(east / h.points) : 0.0;
  report.rmsNorthM = h.points > 0 ? std::sqrt(north / h.points) : 0.0;
  report.rmsElevationM = v.points > 0 ? std::sqrt(up / v.points) : 0.0;
  report.horizontalRedundancy = fitted ? std::max(0, h.redundancy()) : 0;
  report.verticalRedundancy = std::max(0, v.redundancy());
  if (report.horizontalRedundancy > 0) {
    report.sigmaHorizontalM = std::sqrt((east + north) / report.horizontalRedundancy);
  }
  if (report.verticalRedundancy > 0) {
    report.sigmaVerticalM = std::sqrt(up / report.verticalRedundancy);
  }
  if (!report.sigmaHorizontalM || *report.sigmaHorizontalM <= 0.0) return;
  const double spread = Spread(points, h);
  for (std::size_t i = 0; i < points.size(); ++i) {
    if (!report.points[i].inHorizontal) continue;
    const double left = 1.0 - Leverage(OnGrid(points[i]), h, spread);
    if (left < 1e-6) continue;
    report.points[i].standardised =
        report.points[i].horizontalM() / (*report.sigmaHorizontalM * std::sqrt(2.0 * left));
  }
}

// Words for what should make a surveyor look again.
class WarningWriter {
 public:
  WarningWriter(const ControlPoints& points, DistanceUnit unit, LocalizationReport& report)
      : points_(points), unit_(unit), report_(report) {}

  void Write(const std::vector<PlanePoint>& jobPoints) {
    const HorizontalFit& h = report_.fit.horizontal;
    const VerticalFit& v = report_.fit.vertical;
    if (h.result == FitResult::Fitted) Horizontal(h, jobPoints);
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

  void Horizontal(const HorizontalFit& h, const std::vector<PlanePoint>& jobPoints) {
    if (report_.horizontalRedundancy == 0) {
      Add(LocalizationWarning::NoHorizontalCheck, kTextNoHorizontalCheck, {PointCount(h.points)});
    }
    const ControlHull hull = HullOf(points_);
    if (h.points >= 3 && IsThin()) Add(LocalizationWarning::CollinearControl, kTextControlOnALine);
    if (h.points >= 2 && hull.ExtentM() < kSmallExtentM) {
      Add(LocalizationWarning::SmallExtent, kTextControlTooClose, {Length(hull.ExtentM(), 1)});
    }
    FarScale();
    Blunder();
    Outside(hull, jobPoints);
  }

  // Local coordinates lie on the grid or on the ground; a scale near neither is a mistake.
  void FarScale() {
    const double fromGrid = report_.scalePpm;
    if (std::abs(fromGrid) <= kFarScalePpm) return;
    if (!report_.groundPpm) {
      return Add(LocalizationWarning::FarScale, kTextFarScale, {FixedNumber(fromGrid, 1)});
    }
    if (std::abs(fromGrid - *report_.groundPpm) <= kFarScalePpm) return;
    Add(LocalizationWarning::FarScale, kTextFarScaleOnGround,
        {FixedNumber(fromGrid, 1), FixedNumber(*report_.groundPpm, 1)});
  }

  // By the eigenvalues of the spread of the used points.
  bool IsThin() const {
    const PlaneSimilarity& s = report_.fit.horizontal.similarity;
    double ee = 0.0;
    double nn = 0.0;
    double en = 0.0;
    for (const ControlPoint& point : points_) {
      if (!point.useHorizontal) continue;
      const double de = point.grid.eastingM - s.gridEastingM;
      const double dn = point.grid.northingM - s.gridNorthingM;
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
    double worstMiss = kBlunderAtLeastM;
    for (const PointResidual& row : report_.points) {
      if (!row.leftOut) continue;
      const double miss = std::hypot(row.leftOut->missEastM, row.leftOut->missNorthM);
      if (miss > worstMiss) {
        worst = &row;
        worstMiss = miss;
      }
    }
    if (worst == nullptr) return;
    const double chance = Chance(*worst);
    if (chance * report_.fit.horizontal.points < kBlunderChance) {
      Add(LocalizationWarning::LikelyBlunder, kTextLikelyBlunder,
          {worst->name, Length(worstMiss, 3)});
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
      if (other.inHorizontal) squares += other.horizontalM() * other.horizontalM();
    }
    // Leaving a point out takes the product of its residual and its miss off the squares.
    const double share = row.eastM * row.leftOut->missEastM + row.northM * row.leftOut->missNorthM;
    const double left = std::max(squares - share, redundancy * kFinestM * kFinestM);
    return std::pow(1.0 + share / left, -0.5 * redundancy);
  }

  void Outside(const ControlHull& hull, const std::vector<PlanePoint>& jobPoints) {
    int outside = 0;
    double farthest = 0.0;
    for (const PlanePoint& point : jobPoints) {
      const double beyond = hull.MetresOutside(point);
      if (beyond <= 0.1 * hull.ExtentM()) continue;
      ++outside;
      farthest = std::max(farthest, beyond);
    }
    if (outside == 0) return;
    Add(LocalizationWarning::OutsideControl, kTextOutsideControl,
        {std::to_string(outside), std::to_string(jobPoints.size()), Length(farthest, 0)});
  }

  void Vertical(const VerticalFit& v) {
    if (report_.verticalRedundancy == 0) {
      Add(LocalizationWarning::NoVerticalCheck, kTextNoVerticalCheck, {PointCount(v.points)});
    }
    switch (v.fallBack) {
      case PlaneFallBack::TooFewPoints:
        return Add(LocalizationWarning::PlaneNotFitted, kTextPlaneNeedsThreePoints);
      case PlaneFallBack::OnALine:
        return Add(LocalizationWarning::PlaneNotFitted, kTextPlanePointsOnALine);
      case PlaneFallBack::TooSteep:
        return Add(LocalizationWarning::PlaneNotFitted, kTextPlaneTooSteep);
      case PlaneFallBack::None:
        break;
    }
  }

  void LargeResiduals(bool horizontal, bool vertical) {
    for (const PointResidual& row : report_.points) {
      const bool wide = horizontal && row.inHorizontal && row.horizontalM() > kLargeHorizontalM;
      const bool high = vertical && row.inVertical && std::abs(row.elevationM) > kLargeVerticalM;
      if (wide) {
        Add(LocalizationWarning::LargeResidual, kTextLargeHorizontalResidual,
            {row.name, Length(row.horizontalM(), 3)});
      }
      if (high) {
        Add(LocalizationWarning::LargeResidual, kTextLargeVerticalResidual,
            {row.name, Length(row.elevationM, 3)});
      }
    }
  }

  const ControlPoints& points_;
  DistanceUnit unit_;
  LocalizationReport& report_;
};

}  // namespace

double PointResidual::horizontalM() const {
  return std::hypot(eastM, northM);
}

LocalizationReport ReportLocalization(const ControlPoints& points, const LocalizationMethod& method,
                                      const std::vector<PlanePoint>& jobPoints, DistanceUnit unit) {
  LocalizationReport report;
  report.fit = FitLocalization(points, method);
  const PlaneSimilarity& similarity = report.fit.horizontal.similarity;
  report.scalePpm = (similarity.scale() - 1.0) * 1e6;
  report.groundPpm = MeanGroundPpm(points);
  report.rotationClockwiseRad = -similarity.rotationRad();
  for (std::size_t i = 0; i < points.size(); ++i) {
    PointResidual row;
    row.name = points[i].name;
    row.inHorizontal = points[i].useHorizontal;
    row.inVertical = points[i].useVertical;
    SetResiduals(points[i], report.fit, row);
    LeaveOut(points, i, method, report.fit, row);
    report.points.push_back(std::move(row));
  }
  SetStatistics(points, report);
  WarningWriter(points, unit, report).Write(jobPoints);
  return report;
}

}  // namespace tarvex
