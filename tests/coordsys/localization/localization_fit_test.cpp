#include <gtest/gtest.h>

#include <cmath>
#include <random>

#include "coordsys/localization/localization_report.h"
#include "tests/coordsys/case_table.h"
#include "tests/support/random_numbers.h"

namespace tarvex {
namespace {

ControlPoint Control(const std::string& name, PlanePoint grid, PlanePoint local,
                     double height = 0.0, double elevation = 0.0) {
  return {.name = name,
          .grid = {grid.northingM, grid.eastingM, height},
          .local = {local.northingM, local.eastingM, elevation}};
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
    const auto rows = ReadCaseTable(file);
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
    EXPECT_NEAR(s.rotationRad() * kDegreesPerRadian, Stated(file, "rotation_deg"), 2e-7);
    const PlanePoint origin = s.ToLocal({0, 0});
    EXPECT_NEAR(origin.eastingM, Stated(file, "Te"), 1e-4);
    EXPECT_NEAR(origin.northingM, Stated(file, "Tn"), 1e-4);
    for (std::size_t i = 0; i < rows.size(); ++i) {
      if (i >= points.size()) {
        const PlanePoint made = s.ToLocal({rows[i].Number("y"), rows[i].Number("x")});
        EXPECT_NEAR(made.eastingM, rows[i].Number("E"), 1e-4);
        EXPECT_NEAR(made.northingM, rows[i].Number("N"), 1e-4);
        continue;
      }
      // The file's residuals are computed minus given.
      EXPECT_NEAR(-report.points[i].eastM, rows[i].Number("vE"), 6e-5);
      EXPECT_NEAR(-report.points[i].northM, rows[i].Number("vN"), 6e-5);
    }
    if (points.size() > 2) {
      EXPECT_NEAR(report.sigmaHorizontalM.value(), Stated(file, "s0"), 1e-6);
      EXPECT_EQ(report.horizontalRedundancy, 4);
    } else {
      EXPECT_FALSE(report.sigmaHorizontalM.has_value());
      EXPECT_TRUE(Warns(report, LocalizationWarning::NoHorizontalCheck));
    }
  }
}

TEST(HorizontalFit, AppliesASimilarityAsThePublishedExampleDoes) {
  for (const CaseRow& row : ReadCaseTable("localization/epsg_9621_similarity_application.tsv")) {
    const double turn = row.Number("theta_arcsec") / 3600.0 * kRadiansPerDegree;
    const PlaneSimilarity s = {.localXM = row.Number("xt0"),
                               .localYM = row.Number("yt0"),
                               .a = row.Number("k") * std::cos(turn),
                               .b = -row.Number("k") * std::sin(turn)};
    const PlanePoint made = s.ToLocal({row.Number("ys"), row.Number("xs")});
    EXPECT_NEAR(made.eastingM, row.Number("xt"), row.Number("tol"));
    EXPECT_NEAR(made.northingM, row.Number("yt"), row.Number("tol"));
    const PlanePoint back = s.ToGrid(made);
    EXPECT_NEAR(back.eastingM, row.Number("xs"), 1e-7);
  }
}

// Five points at 1e7 m that a known similarity made.
ControlPoints FarPoints(double scale, double turnRad, double noiseM = 0.0) {
  RandomNumbers random(11);
  std::normal_distribution<double> noise(0.0, 1.0);
  ControlPoints points;
  const PlaneSimilarity made = {.gridEastingM = 1.1e7,
                                .gridNorthingM = 1.0e7,
                                .localXM = 5000.0,
                                .localYM = 7000.0,
                                .a = scale * std::cos(turnRad),
                                .b = scale * std::sin(turnRad)};
  for (const auto& [e, n] :
       {std::pair{0.0, 0.0}, {900.0, 40.0}, {850.0, 700.0}, {-30.0, 640.0}, {400.0, 350.0}}) {
    const PlanePoint grid = {1.0e7 + n, 1.1e7 + e};
    PlanePoint local = made.ToLocal(grid);
    local.eastingM += noiseM * noise(random);
    local.northingM += noiseM * noise(random);
    points.push_back(Control("P" + std::to_string(points.size() + 1), grid, local, 300.0, 250.0));
  }
  return points;
}

TEST(HorizontalFit, KeepsItsDigitsAtTenMillionMetres) {
  const ControlPoints points = FarPoints(1.00012, 0.3);
  const HorizontalFit fit = FitHorizontal(points, HorizontalMethod::Similarity);
  EXPECT_NEAR(fit.similarity.scale(), 1.00012, 1e-11);
  EXPECT_NEAR(fit.similarity.rotationRad(), 0.3, 1e-11);
  for (const ControlPoint& point : points) {
    const PlanePoint made = fit.similarity.ToLocal({point.grid.northingM, point.grid.eastingM});
    EXPECT_NEAR(made.eastingM, point.local.eastingM, 1e-8);
    const PlanePoint back = fit.similarity.ToGrid(made);
    EXPECT_NEAR(back.northingM, point.grid.northingM, 1e-8);
  }
}

double SumOfSquares(const ControlPoints& points, const PlaneSimilarity& s) {
  double sum = 0.0;
  for (const ControlPoint& point : points) {
    const PlanePoint made = s.ToLocal({point.grid.northingM, point.grid.eastingM});
    sum += std::pow(made.eastingM - point.local.eastingM, 2) +
           std::pow(made.northingM - point.local.northingM, 2);
  }
  return sum;
}

// Whatever is free: any small change of it makes the sum of squares grow.
TEST(HorizontalFit, EveryMethodIsTheLeastSquaresOptimumOfItsUnknowns) {
  const ControlPoints points = FarPoints(1.0002, 0.1, 0.02);
  struct Case {
    HorizontalMethod method;
    double scale;
    bool scaleFree;
    bool turnFree;
  };
  for (const Case& c : {Case{HorizontalMethod::Similarity, 1.0, true, true},
                        Case{HorizontalMethod::FixedScale, 0.9996, false, true},
                        Case{HorizontalMethod::RotationOnly, 1.0, false, true},
                        Case{HorizontalMethod::Translation, 1.0, false, false}}) {
    const HorizontalFit fit = FitHorizontal(points, c.method, c.scale);
    ASSERT_EQ(fit.result, FitResult::Fitted);
    if (!c.scaleFree) {
      EXPECT_NEAR(fit.similarity.scale(), c.scale, 1e-14);
    }
    if (!c.turnFree) {
      EXPECT_EQ(fit.similarity.rotationRad(), 0.0);
    }
    const double least = SumOfSquares(points, fit.similarity);
    for (const double step : {-1e-6, 1e-6}) {
      PlaneSimilarity changed = fit.similarity;
      changed.localXM += 1e3 * step;
      EXPECT_GT(SumOfSquares(points, changed), least);
      changed = fit.similarity;
      changed.a = fit.similarity.a - step * fit.similarity.b;
      changed.b = fit.similarity.b + step * fit.similarity.a;
      if (c.turnFree) {
        EXPECT_GT(SumOfSquares(points, changed), least);
      }
      changed = fit.similarity;
      changed.a *= 1.0 + step;
      changed.b *= 1.0 + step;
      if (c.scaleFree) {
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
  two[1].grid.eastingM = std::nan("");
  EXPECT_EQ(FitHorizontal(two, HorizontalMethod::Similarity).result, FitResult::NotANumber);
  one[0].useHorizontal = false;
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
  EXPECT_FALSE(report.points[0].leftOut.has_value());
  EXPECT_EQ(report.rmsEastM, 0.0);
}

TEST(VerticalFit, ReproducesThePublishedPlane) {
  const std::string file = "localization/vertical_plane_fit_4.tsv";
  ControlPoints points;
  for (const CaseRow& row : ReadCaseTable(file)) {
    const PlanePoint at = {row.Number("N"), row.Number("E")};
    points.push_back(Control(row.Text("point"), at, at, row.Number("h_ellipsoidal"),
                             row.Number("H_orthometric")));
  }
  const LocalizationMethod method = {.vertical = VerticalMethod::InclinedPlane};
  const LocalizationReport report = ReportLocalization(points, method);
  const VerticalPlane& plane = report.fit.vertical.plane;
  EXPECT_NEAR(plane.gridNorthingM, Stated(file, "N0"), 1e-4);
  EXPECT_NEAR(plane.shiftM, Stated(file, "c"), 1e-5);
  EXPECT_NEAR(plane.slopeNorth * 1e6, Stated(file, "sN_ppm"), 1e-4);
  EXPECT_NEAR(plane.slopeEast * 1e6, Stated(file, "sE_ppm"), 1e-4);
  for (const PointResidual& row : report.points) EXPECT_LT(std::abs(row.elevationM), 0.00012);
  EXPECT_EQ(report.verticalRedundancy, 1);

  const VerticalFit shift = FitVertical(points, VerticalMethod::Shift);
  EXPECT_EQ(shift.plane.slopeEast, 0.0);
  EXPECT_NEAR(shift.plane.shiftM, -48.325, 1e-5);
}

TEST(VerticalFit, FallsBackToAShiftAndSaysWhy) {
  const auto points = [](std::initializer_list<GridMetres> grid, std::initializer_list<double> z) {
    ControlPoints made;
    auto next = z.begin();
    for (const GridMetres& g : grid) {
      made.push_back({.name = "P", .grid = g, .local = {g.northingM, g.eastingM, *next++}});
    }
    return made;
  };
  const auto plane = VerticalMethod::InclinedPlane;
  const VerticalFit two = FitVertical(points({{0, 0, 0}, {500, 0, 0}}, {1.0, 1.2}), plane);
  EXPECT_EQ(two.fallBack, PlaneFallBack::TooFewPoints);
  EXPECT_NEAR(two.plane.At({250, 900}), 1.1, 1e-12);
  const VerticalFit line =
      FitVertical(points({{0, 0, 0}, {500, 5, 0}, {1000, 0, 0}}, {1, 1, 1.3}), plane);
  EXPECT_EQ(line.fallBack, PlaneFallBack::OnALine);
  EXPECT_NEAR(line.plane.shiftM, 1.1, 1e-12);
  const VerticalFit steep =
      FitVertical(points({{0, 0, 0}, {500, 0, 0}, {0, 500, 0}}, {1, 1.1, 1}), plane);
  EXPECT_EQ(steep.fallBack, PlaneFallBack::TooSteep);
  EXPECT_EQ(steep.method, VerticalMethod::Shift);
}

TEST(LocalizationReport, LeavingAPointOutTellsWhatItWouldMissBy) {
  const ControlPoints points = FarPoints(1.00003, 0.05, 0.01);
  const LocalizationReport report = ReportLocalization(points, {});
  for (std::size_t i = 0; i < points.size(); ++i) {
    ControlPoints without = points;
    without[i].useHorizontal = false;
    const HorizontalFit fit = FitHorizontal(without, HorizontalMethod::Similarity);
    const PlanePoint made =
        fit.similarity.ToLocal({points[i].grid.northingM, points[i].grid.eastingM});
    ASSERT_TRUE(report.points[i].leftOut.has_value());
    const LeftOut& leftOut = *report.points[i].leftOut;
    EXPECT_NEAR(leftOut.missEastM, points[i].local.eastingM - made.eastingM, 1e-8);
    EXPECT_NEAR(leftOut.missNorthM, points[i].local.northingM - made.northingM, 1e-8);
    EXPECT_NEAR(leftOut.scaleChangePpm,
                (fit.similarity.scale() - report.fit.horizontal.similarity.scale()) * 1e6, 1e-6);
    // In the free fit the miss is the residual enlarged by the leverage.
    EXPECT_GT(std::hypot(leftOut.missEastM, leftOut.missNorthM), report.points[i].horizontalM());
  }
}

TEST(LocalizationReport, NamesTheBlunder) {
  ControlPoints points = FarPoints(1.0, 0.0, 0.004);
  EXPECT_FALSE(Warns(ReportLocalization(points, {}), LocalizationWarning::LikelyBlunder));
  points[2].local.eastingM += 0.12;
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
  wild[1].local.elevationM += 0.3;
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
    for (ControlPoint& point : points) point.groundScale = (1.0 + 1100.0 / 6'380'000.0) / 0.9996;
    const LocalizationReport report = ReportLocalization(points, {});
    EXPECT_NEAR(report.groundPpm.value_or(0.0), 572.6, 0.1);
    EXPECT_EQ(Warns(report, LocalizationWarning::FarScale), warns) << scale;
  }
}

TEST(LocalizationReport, WarnsInTheUnitOfTheJob) {
  ControlPoints wild = FarPoints(1.0, 0.0);
  wild[1].local.elevationM += 0.3048;
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
    points[i].local.elevationM += 0.003 * static_cast<double>(i * i);
  const FittedLocalization step(
      FitLocalization(points, {.vertical = VerticalMethod::InclinedPlane}));
  EXPECT_EQ(step.fit().vertical.method, VerticalMethod::InclinedPlane);
  for (const ControlPoint& point : points) {
    GridMetres at = point.grid;
    ASSERT_EQ(step.ToLocal(at).status, StepStatus::Done);
    EXPECT_NEAR(at.eastingM, point.local.eastingM, 0.1);
    ASSERT_EQ(step.ToGrid(at).status, StepStatus::Done);
    EXPECT_NEAR(at.eastingM, point.grid.eastingM, 1e-8);
    EXPECT_NEAR(at.elevationM, point.grid.elevationM, 1e-9);
  }
  EXPECT_NE(step.Describe().find("5 points horizontally"), std::string::npos) << step.Describe();
}

}  // namespace
}  // namespace tarvex
