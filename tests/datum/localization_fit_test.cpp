#include <gtest/gtest.h>

#include <cmath>
#include <random>

#include "case_table.h"
#include "coordsys/localization/localization_report.h"

namespace tarvex {
namespace {

ControlPoint Control(const std::string& name, PlanePoint grid, PlanePoint local,
                     double height = 0.0, double elevation = 0.0) {
  return {.name = name,
          .grid = {grid.northing_m, grid.easting_m, height},
          .local = {local.northing_m, local.easting_m, elevation}};
}

// The numbers that the remark "# name=value ..." of a case file gives.
double Stated(const std::string& file, const std::string& name) {
  const std::string bytes = TestBytes(file);
  const std::size_t at = bytes.find(name + "=");
  EXPECT_NE(at, std::string::npos) << name;
  return LeadingDouble(std::string_view(bytes).substr(at + name.size() + 1));
}

bool Warns(const LocalizationReport& report, LocalizationWarning warning) {
  for (const WarningText& text : report.warnings) {
    EXPECT_EQ(text.text.find("IDS_STRING"), std::string::npos);
    if (text.warning == warning) return true;
  }
  return false;
}

TEST(HorizontalFit, ReproducesThePublishedCases) {
  for (const char* file :
       {"localization/similarity_small.tsv", "localization/similarity_two_points.tsv"}) {
    const auto rows = ReadCases(file);
    ControlPoints points;
    for (const CaseRow& row : rows) {
      if (row.Text("role") != "control") continue;
      points.push_back(Control(row.Text("point"), {row.Number("y"), row.Number("x")},
                               {row.Number("N"), row.Number("E")}));
    }
    const LocalizationReport report = ReportLocalization(points, {});
    const PlaneSimilarity& s = report.fit.horizontal.similarity;
    // The stated numbers were solved about the origin and hold 3e-9; about the centroid, in exact
    // fractions, the small case has b = 0.2165144 and ours to 1e-12.
    EXPECT_NEAR(s.a, Stated(file, "a"), 4e-9);
    EXPECT_NEAR(s.b, Stated(file, "b"), 4e-9);
    EXPECT_NEAR(s.scale(), Stated(file, "scale"), 1e-9);
    EXPECT_NEAR(s.rotation_rad() * kDegreesPerRadian, Stated(file, "rotation_deg"), 2e-7);
    const PlanePoint origin = s.ToLocal({0, 0});
    EXPECT_NEAR(origin.easting_m, Stated(file, "Te"), 1e-4);
    EXPECT_NEAR(origin.northing_m, Stated(file, "Tn"), 1e-4);
    for (std::size_t i = 0; i < rows.size(); ++i) {
      if (i >= points.size()) {
        const PlanePoint made = s.ToLocal({rows[i].Number("y"), rows[i].Number("x")});
        EXPECT_NEAR(made.easting_m, rows[i].Number("E"), 1e-4);
        EXPECT_NEAR(made.northing_m, rows[i].Number("N"), 1e-4);
        continue;
      }
      // The file's residuals are computed minus given.
      EXPECT_NEAR(-report.points[i].east_m, rows[i].Number("vE"), 6e-5);
      EXPECT_NEAR(-report.points[i].north_m, rows[i].Number("vN"), 6e-5);
    }
    if (points.size() > 2) {
      EXPECT_NEAR(report.sigma_horizontal_m.value(), Stated(file, "s0"), 1e-6);
      EXPECT_EQ(report.horizontal_redundancy, 4);
    } else {
      EXPECT_FALSE(report.sigma_horizontal_m.has_value());
      EXPECT_TRUE(Warns(report, LocalizationWarning::NoHorizontalCheck));
    }
  }
}

TEST(HorizontalFit, AppliesASimilarityAsThePublishedExampleDoes) {
  for (const CaseRow& row : ReadCases("localization/epsg_9621_similarity_application.tsv")) {
    const double turn = row.Number("theta_arcsec") / 3600.0 * kRadiansPerDegree;
    const PlaneSimilarity s = {.local_x_m = row.Number("xt0"),
                               .local_y_m = row.Number("yt0"),
                               .a = row.Number("k") * std::cos(turn),
                               .b = -row.Number("k") * std::sin(turn)};
    const PlanePoint made = s.ToLocal({row.Number("ys"), row.Number("xs")});
    EXPECT_NEAR(made.easting_m, row.Number("xt"), row.Number("tol"));
    EXPECT_NEAR(made.northing_m, row.Number("yt"), row.Number("tol"));
    const PlanePoint back = s.ToGrid(made);
    EXPECT_NEAR(back.easting_m, row.Number("xs"), 1e-7);
  }
}

// Five points at 1e7 m that a known similarity made.
ControlPoints FarPoints(double scale, double turn_rad, double noise_m = 0.0) {
  std::mt19937_64 random(11);
  std::normal_distribution<double> noise(0.0, 1.0);
  ControlPoints points;
  const PlaneSimilarity made = {.grid_easting_m = 1.1e7,
                                .grid_northing_m = 1.0e7,
                                .local_x_m = 5000.0,
                                .local_y_m = 7000.0,
                                .a = scale * std::cos(turn_rad),
                                .b = scale * std::sin(turn_rad)};
  for (const auto& [e, n] :
       {std::pair{0.0, 0.0}, {900.0, 40.0}, {850.0, 700.0}, {-30.0, 640.0}, {400.0, 350.0}}) {
    const PlanePoint grid = {1.0e7 + n, 1.1e7 + e};
    PlanePoint local = made.ToLocal(grid);
    local.easting_m += noise_m * noise(random);
    local.northing_m += noise_m * noise(random);
    points.push_back(Control("P" + std::to_string(points.size() + 1), grid, local, 300.0, 250.0));
  }
  return points;
}

TEST(HorizontalFit, KeepsItsDigitsAtTenMillionMetres) {
  const ControlPoints points = FarPoints(1.00012, 0.3);
  const HorizontalFit fit = FitHorizontal(points, HorizontalMethod::Similarity);
  EXPECT_NEAR(fit.similarity.scale(), 1.00012, 1e-11);
  EXPECT_NEAR(fit.similarity.rotation_rad(), 0.3, 1e-11);
  for (const ControlPoint& point : points) {
    const PlanePoint made = fit.similarity.ToLocal({point.grid.northing_m, point.grid.easting_m});
    EXPECT_NEAR(made.easting_m, point.local.easting_m, 1e-8);
    const PlanePoint back = fit.similarity.ToGrid(made);
    EXPECT_NEAR(back.northing_m, point.grid.northing_m, 1e-8);
  }
}

double SumOfSquares(const ControlPoints& points, const PlaneSimilarity& s) {
  double sum = 0.0;
  for (const ControlPoint& point : points) {
    const PlanePoint made = s.ToLocal({point.grid.northing_m, point.grid.easting_m});
    sum += std::pow(made.easting_m - point.local.easting_m, 2) +
           std::pow(made.northing_m - point.local.northing_m, 2);
  }
  return sum;
}

// Whatever is free: any small change of it makes the sum of squares grow.
TEST(HorizontalFit, EveryMethodIsTheLeastSquaresOptimumOfItsUnknowns) {
  const ControlPoints points = FarPoints(1.0002, 0.1, 0.02);
  struct Case {
    HorizontalMethod method;
    double scale;
    bool scale_free;
    bool turn_free;
  };
  for (const Case& c : {Case{HorizontalMethod::Similarity, 1.0, true, true},
                        Case{HorizontalMethod::FixedScale, 0.9996, false, true},
                        Case{HorizontalMethod::RotationOnly, 1.0, false, true},
                        Case{HorizontalMethod::Translation, 1.0, false, false}}) {
    const HorizontalFit fit = FitHorizontal(points, c.method, c.scale);
    ASSERT_EQ(fit.result, FitResult::Fitted);
    if (!c.scale_free) {
      EXPECT_NEAR(fit.similarity.scale(), c.scale, 1e-14);
    }
    if (!c.turn_free) {
      EXPECT_EQ(fit.similarity.rotation_rad(), 0.0);
    }
    const double least = SumOfSquares(points, fit.similarity);
    for (const double step : {-1e-6, 1e-6}) {
      PlaneSimilarity changed = fit.similarity;
      changed.local_x_m += 1e3 * step;
      EXPECT_GT(SumOfSquares(points, changed), least);
      changed = fit.similarity;
      changed.a = fit.similarity.a - step * fit.similarity.b;
      changed.b = fit.similarity.b + step * fit.similarity.a;
      if (c.turn_free) {
        EXPECT_GT(SumOfSquares(points, changed), least);
      }
      changed = fit.similarity;
      changed.a *= 1.0 + step;
      changed.b *= 1.0 + step;
      if (c.scale_free) {
        EXPECT_GT(SumOfSquares(points, changed), least);
      }
    }
  }
}

TEST(HorizontalFit, OnePointIsATranslationAndOnePlaceIsNoFit) {
  ControlPoints one = {Control("A", {100, 200}, {1100, 1200})};
  const HorizontalFit fit = FitHorizontal(one, HorizontalMethod::Similarity);
  EXPECT_EQ(fit.result, FitResult::Fitted);
  EXPECT_EQ(fit.method, HorizontalMethod::Translation);
  EXPECT_EQ(fit.similarity.ToLocal({105, 207}), (PlanePoint{1105, 1207}));
  ControlPoints two = one;
  two.push_back(Control("B", {100.0002, 200}, {1300, 1200}));
  EXPECT_EQ(FitHorizontal(two, HorizontalMethod::Similarity).result, FitResult::Coincide);
  EXPECT_EQ(FitHorizontal(two, HorizontalMethod::RotationOnly).result, FitResult::Coincide);
  two[1].grid.easting_m = std::nan("");
  EXPECT_EQ(FitHorizontal(two, HorizontalMethod::Similarity).result, FitResult::NotANumber);
  one[0].use_horizontal = false;
  EXPECT_EQ(FitHorizontal(one, HorizontalMethod::Similarity).result, FitResult::NoPoints);
}

// A scale is given to the methods that take one; a single point leaves the others at 1.
TEST(HorizontalFit, OnePointTakesAGivenScaleOnlyWhereItIsAskedFor) {
  const ControlPoints one = {Control("A", {100, 200}, {1100, 1200})};
  using enum HorizontalMethod;
  EXPECT_EQ(FitHorizontal(one, Similarity, 1.0001).similarity.scale(), 1.0);
  EXPECT_EQ(FitHorizontal(one, RotationOnly, 1.0001).similarity.scale(), 1.0);
  EXPECT_EQ(FitHorizontal(one, FixedScale, 1.0001).similarity.scale(), 1.0001);
  EXPECT_EQ(FitHorizontal(one, Translation, 1.0001).similarity.scale(), 1.0001);
}

// A square with northing and easting swapped: the points do not coincide, and nothing turns one
// into the other. What was not fitted has no residuals to warn of.
TEST(HorizontalFit, MirroredControlIsNamedAsThat) {
  ControlPoints square;
  for (const auto& [n, e] : {std::pair{0, 0}, {0, 100}, {100, 100}, {100, 0}}) {
    square.push_back(Control("S", {n + 5e6, e + 5e5}, {static_cast<double>(e), 1.0 * n}));
  }
  EXPECT_EQ(FitHorizontal(square, HorizontalMethod::Similarity).result, FitResult::Mirrored);
  const LocalizationReport report = ReportLocalization(square, {});
  EXPECT_FALSE(report.fit.usable());
  EXPECT_FALSE(Warns(report, LocalizationWarning::LargeResidual));
  EXPECT_FALSE(report.points[0].left_out.has_value());
  EXPECT_EQ(report.rms_east_m, 0.0);
}

TEST(VerticalFit, ReproducesThePublishedPlane) {
  const std::string file = "localization/vertical_plane_fit_4.tsv";
  ControlPoints points;
  for (const CaseRow& row : ReadCases(file)) {
    const PlanePoint at = {row.Number("N"), row.Number("E")};
    points.push_back(Control(row.Text("point"), at, at, row.Number("h_ellipsoidal"),
                             row.Number("H_orthometric")));
  }
  const LocalizationMethod method = {.vertical = VerticalMethod::InclinedPlane};
  const LocalizationReport report = ReportLocalization(points, method);
  const VerticalPlane& plane = report.fit.vertical.plane;
  EXPECT_NEAR(plane.grid_northing_m, Stated(file, "N0"), 1e-4);
  EXPECT_NEAR(plane.shift_m, Stated(file, "c"), 1e-5);
  EXPECT_NEAR(plane.slope_north * 1e6, Stated(file, "sN_ppm"), 1e-4);
  EXPECT_NEAR(plane.slope_east * 1e6, Stated(file, "sE_ppm"), 1e-4);
  for (const PointResidual& row : report.points) EXPECT_LT(std::abs(row.elevation_m), 0.00012);
  EXPECT_EQ(report.vertical_redundancy, 1);

  const VerticalFit shift = FitVertical(points, VerticalMethod::Shift);
  EXPECT_EQ(shift.plane.slope_east, 0.0);
  EXPECT_NEAR(shift.plane.shift_m, -48.325, 1e-5);
}

TEST(VerticalFit, FallsBackToAShiftAndSaysWhy) {
  const auto points = [](std::initializer_list<GridMetres> grid, std::initializer_list<double> z) {
    ControlPoints made;
    auto next = z.begin();
    for (const GridMetres& g : grid) {
      made.push_back({.name = "P", .grid = g, .local = {g.northing_m, g.easting_m, *next++}});
    }
    return made;
  };
  const auto plane = VerticalMethod::InclinedPlane;
  const VerticalFit two = FitVertical(points({{0, 0, 0}, {500, 0, 0}}, {1.0, 1.2}), plane);
  EXPECT_EQ(two.fall_back, PlaneFallBack::TooFewPoints);
  EXPECT_NEAR(two.plane.At({250, 900}), 1.1, 1e-12);
  const VerticalFit line =
      FitVertical(points({{0, 0, 0}, {500, 5, 0}, {1000, 0, 0}}, {1, 1, 1.3}), plane);
  EXPECT_EQ(line.fall_back, PlaneFallBack::OnALine);
  EXPECT_NEAR(line.plane.shift_m, 1.1, 1e-12);
  const VerticalFit steep =
      FitVertical(points({{0, 0, 0}, {500, 0, 0}, {0, 500, 0}}, {1, 1.1, 1}), plane);
  EXPECT_EQ(steep.fall_back, PlaneFallBack::TooSteep);
  EXPECT_EQ(steep.method, VerticalMethod::Shift);
}

TEST(LocalizationReport, LeavingAPointOutTellsWhatItWouldMissBy) {
  const ControlPoints points = FarPoints(1.00003, 0.05, 0.01);
  const LocalizationReport report = ReportLocalization(points, {});
  for (std::size_t i = 0; i < points.size(); ++i) {
    ControlPoints without = points;
    without[i].use_horizontal = false;
    const HorizontalFit fit = FitHorizontal(without, HorizontalMethod::Similarity);
    const PlanePoint made =
        fit.similarity.ToLocal({points[i].grid.northing_m, points[i].grid.easting_m});
    ASSERT_TRUE(report.points[i].left_out.has_value());
    const LeftOut& left_out = *report.points[i].left_out;
    EXPECT_NEAR(left_out.miss_east_m, points[i].local.easting_m - made.easting_m, 1e-8);
    EXPECT_NEAR(left_out.miss_north_m, points[i].local.northing_m - made.northing_m, 1e-8);
    EXPECT_NEAR(left_out.scale_change_ppm,
                (fit.similarity.scale() - report.fit.horizontal.similarity.scale()) * 1e6, 1e-6);
    // In the free fit the miss is the residual enlarged by the leverage.
    EXPECT_GT(std::hypot(left_out.miss_east_m, left_out.miss_north_m),
              report.points[i].horizontal_m());
  }
}

TEST(LocalizationReport, NamesTheBlunder) {
  ControlPoints points = FarPoints(1.0, 0.0, 0.004);
  EXPECT_FALSE(Warns(ReportLocalization(points, {}), LocalizationWarning::LikelyBlunder));
  points[2].local.easting_m += 0.12;
  const LocalizationReport report = ReportLocalization(points, {});
  ASSERT_TRUE(Warns(report, LocalizationWarning::LikelyBlunder));
  for (const WarningText& warning : report.warnings) {
    if (warning.warning == LocalizationWarning::LikelyBlunder) {
      EXPECT_NE(warning.text.find("P3"), std::string::npos) << warning.text;
    }
  }
}

TEST(LocalizationReport, WarnsInWords) {
  ControlPoints far = FarPoints(1.0003, 0.0);
  EXPECT_TRUE(Warns(ReportLocalization(far, {}), LocalizationWarning::FarScale));
  EXPECT_FALSE(
      Warns(ReportLocalization(FarPoints(1.0001, 0.0), {}), LocalizationWarning::FarScale));
  const ControlPoints good = FarPoints(1.0, 0.0);
  EXPECT_TRUE(Warns(ReportLocalization(good, {}, {{1.0e7 + 5000, 1.1e7}}),
                    LocalizationWarning::OutsideControl));
  EXPECT_FALSE(Warns(ReportLocalization(good, {}, {{1.0e7 + 300, 1.1e7 + 300}}),
                     LocalizationWarning::OutsideControl));
  ControlPoints line;
  for (double n : {0.0, 100.0, 250.0}) line.push_back(Control("L", {n, 0.01 * n}, {n, 0.01 * n}));
  EXPECT_TRUE(Warns(ReportLocalization(line, {}), LocalizationWarning::CollinearControl));
  ControlPoints small;
  for (double n : {0.0, 3.0, 9.0}) small.push_back(Control("S", {n, n * n}, {n, n * n}));
  EXPECT_FALSE(Warns(ReportLocalization(small, {}), LocalizationWarning::CollinearControl));
  small = {Control("S", {0, 0}, {0, 0}), Control("T", {5, 5}, {5, 5})};
  EXPECT_TRUE(Warns(ReportLocalization(small, {}), LocalizationWarning::SmallExtent));
  ControlPoints wild = FarPoints(1.0, 0.0);
  wild[1].local.elevation_m += 0.3;
  EXPECT_TRUE(Warns(ReportLocalization(wild, {}), LocalizationWarning::LargeResidual));
}

// Ground distances on the edge of a zone at 1100 m: 572 ppm longer than on the grid. A scale of the
// grid and one of the ground are right, one between other things is not.
TEST(LocalizationReport, ComparesTheScaleWithGridAndGround) {
  for (const auto& [scale, warns] : {std::pair{1.00057, false},
                                     {1.00062, false},
                                     {1.0, false},
                                     {1.0003, true},
                                     {1.0009, true},
                                     {0.99943, true}}) {
    ControlPoints points = FarPoints(scale, 0.0);
    EXPECT_EQ(Warns(ReportLocalization(points, {}), LocalizationWarning::FarScale), scale != 1.0);
    for (ControlPoint& point : points) point.ground_scale = (1.0 + 1100.0 / 6'380'000.0) / 0.9996;
    const LocalizationReport report = ReportLocalization(points, {});
    EXPECT_NEAR(report.ground_ppm.value_or(0.0), 572.6, 0.1);
    EXPECT_EQ(Warns(report, LocalizationWarning::FarScale), warns) << scale;
  }
}

TEST(LocalizationReport, WarnsInTheUnitOfTheJob) {
  ControlPoints wild = FarPoints(1.0, 0.0);
  wild[1].local.elevation_m += 0.3048;
  const LocalizationReport report =
      ReportLocalization(wild, {}, {}, DistanceUnit::InternationalFeet);
  bool seen = false;
  for (const WarningText& warning : report.warnings) {
    seen = seen || warning.text == "P2 has a large residual: 0.800 ft vertically.";
  }
  EXPECT_TRUE(seen);
}

TEST(ControlHull, KnowsInsideAndHowFarOutside) {
  const ControlHull hull({{0, 0}, {0, 100}, {100, 100}, {100, 0}, {50, 50}, {0, 50}});
  EXPECT_EQ(hull.corners().size(), 4U);
  EXPECT_EQ(hull.MetresOutside({50, 20}), 0.0);
  EXPECT_EQ(hull.MetresOutside({0, 50}), 0.0);
  EXPECT_DOUBLE_EQ(hull.MetresOutside({50, 130}), 30.0);
  EXPECT_DOUBLE_EQ(hull.MetresOutside({-30, -40}), 50.0);
  EXPECT_DOUBLE_EQ(ControlHull({{0, 0}, {0, 10}}).MetresOutside({7, 5}), 7.0);
  EXPECT_DOUBLE_EQ(ControlHull({{1, 1}}).MetresOutside({4, 5}), 5.0);
  EXPECT_EQ(ControlHull().MetresOutside({4, 5}), 0.0);
}

TEST(FittedLocalization, GoesThereAndBack) {
  ControlPoints points = FarPoints(1.0001, 0.4, 0.01);
  for (std::size_t i = 0; i < points.size(); ++i)
    points[i].local.elevation_m += 0.003 * static_cast<double>(i * i);
  const FittedLocalization step(
      FitLocalization(points, {.vertical = VerticalMethod::InclinedPlane}));
  EXPECT_EQ(step.fit().vertical.method, VerticalMethod::InclinedPlane);
  for (const ControlPoint& point : points) {
    GridMetres at = point.grid;
    ASSERT_EQ(step.ToLocal(at).status, StepStatus::Done);
    EXPECT_NEAR(at.easting_m, point.local.easting_m, 0.1);
    ASSERT_EQ(step.ToGrid(at).status, StepStatus::Done);
    EXPECT_NEAR(at.easting_m, point.grid.easting_m, 1e-8);
    EXPECT_NEAR(at.elevation_m, point.grid.elevation_m, 1e-9);
  }
  EXPECT_NE(step.Describe().find("5 points horizontally"), std::string::npos) << step.Describe();
}

}  // namespace
}  // namespace tarvex
