// Published localization cases through the command, from positions to residuals.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <fstream>
#include <sstream>

#include "tests/app/json_reading.h"
#include "tests/app/program_run.h"

namespace tarvex {
namespace {

struct Row {
  std::string point;
  std::vector<double> numbers;
  bool control = true;
};

std::vector<Row> PublishedRows(const std::string& name) {
  std::ifstream file(std::string(TARVEX_TEST_DATA) + "/localization/" + name);
  std::vector<Row> rows;
  for (std::string line; std::getline(file, line);) {
    if (line.starts_with('#') || line.starts_with("point")) continue;
    std::istringstream words(line);
    Row row;
    words >> row.point;
    for (double value = 0.0; words >> value;) row.numbers.push_back(value);
    row.control = line.find("computed") == std::string::npos;
    rows.push_back(row);
  }
  return rows;
}

std::string Line(const char* format, double a, double b, double c) {
  char text[160];
  std::snprintf(text, sizeof text, format, a, b, c);
  return text;
}

// A job on a transverse Mercator about 47 N 9 E. Points of its grid are brought in as the positions
// that lie there.
class PublishedSite {
 public:
  PublishedSite(double falseNorthing, double falseEasting) {
    folder_.Write(
        "site.txt",
        "PROJCS[\"s\",GEOGCS[\"g\",DATUM[\"WGS_1984\",SPHEROID[\"WGS 84\",6378137,298.257223563]],"
        "PRIMEM[\"Greenwich\",0],UNIT[\"degree\",0.0174532925199433]],"
        "PROJECTION[\"Transverse_Mercator\"],PARAMETER[\"latitude_of_origin\",47],"
        "PARAMETER[\"central_meridian\",9],PARAMETER[\"scale_factor\",1],PARAMETER[" +
            Line("\"false_northing\",%.1f],PARAMETER[\"false_easting\",%.1f],UNIT[\"metre\",%.0f]]",
                 falseNorthing, falseEasting, 1.0));
    EXPECT_EQ(folder_.Run("new site.crd --definition site.txt").exitCode, 0);
  }

  // Latitude, longitude and height of a place on the job's grid.
  std::string PositionOf(double northing, double easting, double height) {
    const auto at = JsonReading(folder_
                                    .Run("convert --inverse --json --definition site.txt",
                                         Line("%.17g %.17g %.17g\n", northing, easting, height))
                                    .output);
    return Line("%.15f %.15f %.6f", at["latitude"].number(), at["longitude"].number(),
                at["height"].number());
  }

  void AddControl(const std::string& position, const std::string& local) {
    const ProgramResult added =
        folder_.Run("localize site.crd --wgs84 " + position + " --local " + local);
    EXPECT_EQ(added.exitCode, 0) << added.errors;
  }

  JsonReading Report(const std::string& options = "") {
    return JsonReading(folder_.Run("localize site.crd --json " + options).output);
  }
  std::string Convert(const std::string& position) {
    return folder_.Run("convert --job site.crd", position + "\n").output;
  }

 private:
  ProgramFolder folder_;
};

// Columns: grid x y, local E N, residuals (computed minus given) E N.
JsonReading FitSimilarity(const std::string& file) {
  PublishedSite site(1000.0, 1000.0);
  std::vector<Row> control;
  const auto rows = PublishedRows(file);
  for (const Row& row : rows) {
    const std::vector<double>& n = row.numbers;
    if (!row.control) continue;
    site.AddControl(site.PositionOf(n[1], n[0], 50.0), Line("%.4f %.4f %.4f", n[3], n[2], 50.0));
    control.push_back(row);
  }
  JsonReading report = site.Report();
  EXPECT_EQ(report["points"].size(), control.size());
  for (std::size_t i = 0; i < control.size(); ++i) {
    EXPECT_NEAR(report["points"][i]["residual_east_m"].number(), -control[i].numbers[4], 6e-5);
    EXPECT_NEAR(report["points"][i]["residual_north_m"].number(), -control[i].numbers[5], 6e-5);
  }
  for (const Row& row : rows) {  // the point that takes no part
    if (row.control) continue;
    const std::vector<double>& n = row.numbers;
    double northing = 0.0;
    double easting = 0.0;
    const std::string at = site.Convert(site.PositionOf(n[1], n[0], 50.0));
    EXPECT_EQ(std::sscanf(at.c_str(), "%lf %lf", &northing, &easting), 2) << at;
    EXPECT_NEAR(northing, n[3], 1.5e-4);
    EXPECT_NEAR(easting, n[2], 1.5e-4);
  }
  return report;
}

TEST(PublishedLocalization, SimilarityOfFourPoints) {
  const JsonReading horizontal = FitSimilarity("similarity_small.tsv")["horizontal"];
  EXPECT_NEAR(horizontal["scale"].number(), 1.000114202, 5e-9);
  EXPECT_NEAR(horizontal["rotation_clockwise_deg"].number(), -12.5029382, 5e-7);
  EXPECT_NEAR(horizontal["sigma_m"].number(), 0.008514, 1e-6);
  EXPECT_EQ(horizontal["redundancy"], 4);
}

TEST(PublishedLocalization, SimilarityOfTwoPoints) {
  const JsonReading report = FitSimilarity("similarity_two_points.tsv");
  EXPECT_NEAR(report["horizontal"]["scale"].number(), 1.000034862, 5e-9);
  EXPECT_NEAR(report["horizontal"]["rotation_clockwise_deg"].number(), -12.5039812, 5e-7);
  EXPECT_TRUE(report["horizontal"]["sigma_m"].isNull());
  EXPECT_GT(report["warnings"].size(), 0U);
}

// Columns: grid N E, ellipsoid height, orthometric height, residual (computed minus given).
TEST(PublishedLocalization, InclinedPlaneAndShiftOfFourBenchMarks) {
  PublishedSite site(5207000.0, 430000.0);
  const auto rows = PublishedRows("vertical_plane_fit_4.tsv");
  ASSERT_EQ(rows.size(), 4U);
  for (const Row& row : rows) {
    const std::vector<double>& n = row.numbers;
    site.AddControl(site.PositionOf(n[0], n[1], n[2]), Line("%.4f %.4f %.4f", n[0], n[1], n[3]));
  }
  const JsonReading plane = site.Report("--heights plane");
  EXPECT_NEAR(plane["vertical"]["tilt_north_ppm"].number(), 19.1255, 2e-3);
  EXPECT_NEAR(plane["vertical"]["tilt_east_ppm"].number(), 5.9167, 2e-3);
  EXPECT_NEAR(plane["vertical"]["shift_m"].number(), -48.325, 2e-5);
  for (std::size_t i = 0; i < rows.size(); ++i) {
    EXPECT_NEAR(plane["points"][i]["residual_elevation_m"].number(), -rows[i].numbers[4], 1.1e-4);
  }
  const JsonReading shift = site.Report("--heights shift");
  EXPECT_NEAR(shift["vertical"]["shift_m"].number(), -48.325, 2e-5);
  double largest = 0.0;
  for (const auto& point : shift["points"].values()) {
    largest = std::max(largest, std::fabs(point["residual_elevation_m"].number()));
  }
  EXPECT_NEAR(largest, 0.042, 1e-5);
}

}  // namespace
}  // namespace tarvex
