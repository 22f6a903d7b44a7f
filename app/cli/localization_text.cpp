#include "app/cli/localization_text.h"

#include <algorithm>
#include <cmath>

#include "app/cli/table_text.h"
#include "app/workflow/job_localization.h"
#include "core/angle.h"
#include "core/number_text.h"
#include "core/printable.h"
#include "core/text.h"

namespace tarvex {
namespace {

constexpr int kDecimals = 4;
constexpr double kSecondsPerRadian = kDegreesPerRadian * 3600.0;

// Without a minus in front of nothing but zeros.
std::string Number(double value, int decimals) {
  std::string text = FixedNumber(value, decimals);
  if (text.find_first_not_of("-0.") == std::string::npos && text[0] == '-') text.erase(0, 1);
  return text;
}

// A number in a column; one that fills it keeps a blank before it.
std::string Column(const std::string& number, std::size_t width) {
  return number.size() >= width && width > 0 ? ' ' + number : Right(number, width);
}

// To a hundredth of a second.
std::string AngleText(double radians) {
  const double seconds = radians * kSecondsPerRadian;
  return DegreesToDmsText(std::round(seconds * 100.0) / 100.0 / 3600.0);
}

// A name in its column of the tables.
std::string NameColumn(const std::string& name) {
  constexpr std::size_t kColumns = 18;
  return Left(std::string(CutAtCharacter(PrintableLine(name), kColumns)), kColumns);
}

// Degrees that were radians once, without the last bits that this cost: 30, not 29.999999999999996.
double Degrees(double radians) {
  constexpr double kFinest = 1e12;
  return std::round(radians * kDegreesPerRadian * kFinest) / kFinest;
}

class ReportWriter {
 public:
  ReportWriter(const LocalizationReport& report, DistanceUnit unit)
      : report_(report), unit_(unit) {}

  std::string Write() {
    Table();
    if (report_.fit.horizontal.result == FitResult::Fitted) Horizontal();
    if (report_.fit.vertical.result == FitResult::Fitted) Vertical();
    for (const WarningText& warning : report_.warnings)
      text_ += "WARNING: " + PrintableLine(warning.text) + "\n";
    return std::move(text_);
  }

 private:
  std::string Length(double metres, std::size_t width = 10) const {
    return Column(Number(FromMetres(metres, unit_), kDecimals), width);
  }

  // Blank where nothing was fitted that could leave a residual.
  std::string Residual(double metres, FitResult of) const {
    return of == FitResult::Fitted ? Length(metres) : std::string(10, ' ');
  }

  void Table() {
    text_ +=
        "  No Point              Use     North      East Elevation    Left out: miss"
        "  scale ppm  rotation\"\n";
    for (std::size_t i = 0; i < report_.points.size(); ++i) Row(i + 1, report_.points[i]);
  }

  void Row(std::size_t number, const PointResidual& row) {
    text_ += Right(std::to_string(number), 4) + ' ' + NameColumn(row.name) + ' ';
    text_ += std::string(row.in_horizontal ? "H" : "-") + (row.in_vertical ? "V" : "-") + ' ';
    text_ += Residual(row.north_m, report_.fit.horizontal.result) +
             Residual(row.east_m, report_.fit.horizontal.result) +
             Residual(row.elevation_m, report_.fit.vertical.result);
    if (row.left_out) {
      const LeftOut& out = *row.left_out;
      text_ += Length(std::hypot(out.miss_east_m, out.miss_north_m), 18);
      text_ += Column(Number(out.scale_change_ppm, 2), 11);
      text_ += Column(Number(-out.rotation_change_rad * kSecondsPerRadian, 2), 11);
    }
    text_ += "\n";
  }

  void Line(const std::string& name, const std::string& value) {
    text_ += Left(name, 22) + value + "\n";
  }

  void Horizontal() {
    const HorizontalFit& h = report_.fit.horizontal;
    Line("Horizontal fit", std::string(HorizontalMethodKey(h.method)) + ", " +
                               PointCount(h.points) + ", redundancy " +
                               std::to_string(report_.horizontal_redundancy));
    Line("  Scale", FixedNumber(h.similarity.scale(), 10) + " (" + Number(report_.scale_ppm, 3) +
                        " ppm from 1)");
    if (report_.ground_ppm) {
      Line("  Ground distances", Number(*report_.ground_ppm, 1) + " ppm longer than on the grid");
    }
    Line("  Rotation",
         AngleText(report_.rotation_clockwise_rad) + " clockwise, added to grid azimuths");
    Line("  Grid centre", "N " + Length(h.similarity.grid_northing_m, 0) + "  E " +
                              Length(h.similarity.grid_easting_m, 0));
    Line("  Local centre",
         "N " + Length(h.similarity.local_y_m, 0) + "  E " + Length(h.similarity.local_x_m, 0));
    if (report_.sigma_horizontal_m) {
      Line("  Standard deviation", Length(*report_.sigma_horizontal_m, 0) + " a coordinate");
    }
  }

  void Vertical() {
    const VerticalFit& v = report_.fit.vertical;
    Line("Vertical fit", std::string(VerticalMethodKey(v.method)) + ", " + PointCount(v.points) +
                             ", redundancy " + std::to_string(report_.vertical_redundancy));
    Line("  Shift", Length(v.plane.shift_m, 0) + " at the centre");
    if (v.method == VerticalMethod::InclinedPlane) {
      Line("  Tilt", Number(v.plane.slope_north * 1e6, 2) + " ppm to the north, " +
                         Number(v.plane.slope_east * 1e6, 2) + " ppm to the east");
    }
    if (report_.sigma_vertical_m) {
      Line("  Standard deviation", Length(*report_.sigma_vertical_m, 0));
    }
  }

  const LocalizationReport& report_;
  DistanceUnit unit_;
  std::string text_;
};

Json Optional(const std::optional<double>& value) {
  return value ? Json(*value) : Json(nullptr);
}

Json PointRow(const PointResidual& row, const LocalizationFit& fit) {
  const auto residual = [](double metres, FitResult of) {
    return of == FitResult::Fitted ? Json(metres) : Json(nullptr);
  };
  Json json = {{"name", row.name},
               {"horizontal", row.in_horizontal},
               {"vertical", row.in_vertical},
               {"residual_east_m", residual(row.east_m, fit.horizontal.result)},
               {"residual_north_m", residual(row.north_m, fit.horizontal.result)},
               {"residual_elevation_m", residual(row.elevation_m, fit.vertical.result)},
               {"standardised", Optional(row.standardised)},
               {"left_out_elevation_m", Optional(row.left_out_elevation_m)},
               {"left_out", nullptr}};
  if (row.left_out) {
    json["left_out"] = {{"miss_east_m", row.left_out->miss_east_m},
                        {"miss_north_m", row.left_out->miss_north_m},
                        {"scale_change_ppm", row.left_out->scale_change_ppm},
                        {"rotation_change_clockwise_arcsec",
                         -row.left_out->rotation_change_rad * kSecondsPerRadian}};
  }
  return json;
}

Json HorizontalJson(const LocalizationReport& report) {
  const HorizontalFit& h = report.fit.horizontal;
  if (h.result != FitResult::Fitted) return nullptr;
  const PlaneSimilarity& s = h.similarity;
  return {{"method", HorizontalMethodKey(h.method)},
          {"points", h.points},
          {"redundancy", report.horizontal_redundancy},
          {"scale", s.scale()},
          {"scale_ppm", report.scale_ppm},
          {"ground_ppm", Optional(report.ground_ppm)},
          {"rotation_clockwise_deg", report.rotation_clockwise_rad * kDegreesPerRadian},
          {"a", s.a},
          {"b", s.b},
          {"grid_northing_m", s.grid_northing_m},
          {"grid_easting_m", s.grid_easting_m},
          {"local_y_m", s.local_y_m},
          {"local_x_m", s.local_x_m},
          {"sigma_m", Optional(report.sigma_horizontal_m)},
          {"rms_east_m", report.rms_east_m},
          {"rms_north_m", report.rms_north_m}};
}

Json VerticalJson(const LocalizationReport& report) {
  const VerticalFit& v = report.fit.vertical;
  if (v.result != FitResult::Fitted) return nullptr;
  return {
      {"method", VerticalMethodKey(v.method)},        {"points", v.points},
      {"redundancy", report.vertical_redundancy},     {"shift_m", v.plane.shift_m},
      {"tilt_north_ppm", v.plane.slope_north * 1e6},  {"tilt_east_ppm", v.plane.slope_east * 1e6},
      {"sigma_m", Optional(report.sigma_vertical_m)}, {"rms_m", report.rms_elevation_m}};
}

}  // namespace

std::string ControlListText(const LocalizationList& list) {
  std::string text =
      "  No Description        Use      Latitude     Longitude    Height"
      "   Local northing    Local easting Local elevation\n";
  for (std::size_t i = 0; i < list.size(); ++i) {
    if (!list[i]) continue;
    const LocalizationPoint& p = *list[i];
    text += Right(std::to_string(i + 1), 4) + ' ' + NameColumn(p.description) + ' ';
    text += std::string(p.use_horizontal == 'Y' ? "H" : "-") + (p.use_vertical == 'Y' ? "V" : "-");
    text += Right(FixedNumber(p.gnss.latitude_rad * kDegreesPerRadian, 9), 14) +
            Right(FixedNumber(p.gnss.longitude_rad * kDegreesPerRadian, 9), 14) +
            Right(FixedNumber(p.gnss.height_m, 3), 10);
    for (const double value : {p.local_y, p.local_x})
      text += Right(FixedNumber(value, kDecimals), 17);
    text += Right(FixedNumber(p.local_z, kDecimals), 16) + "\n";
  }
  return text;
}

Json ControlListJson(const LocalizationList& list) {
  Json rows = Json::array();
  for (const auto& point : list) {
    if (!point) continue;
    rows.push_back({{"description", point->description},
                    {"latitude", Degrees(point->gnss.latitude_rad)},
                    {"longitude", Degrees(point->gnss.longitude_rad)},
                    {"ellipsoid_height_m", point->gnss.height_m},
                    {"local_northing", point->local_y},
                    {"local_easting", point->local_x},
                    {"local_elevation", point->local_z},
                    {"hrms", point->hrms},
                    {"vrms", point->vrms},
                    {"horizontal", point->use_horizontal == 'Y'},
                    {"vertical", point->use_vertical == 'Y'}});
  }
  return rows;
}

std::string LocalizationReportText(const LocalizationReport& report, DistanceUnit unit) {
  return ReportWriter(report, unit).Write();
}

Json LocalizationReportJson(const LocalizationReport& report) {
  Json points = Json::array();
  for (const PointResidual& row : report.points) points.push_back(PointRow(row, report.fit));
  Json warnings = Json::array();
  for (const WarningText& warning : report.warnings) warnings.push_back(warning.text);
  return {{"usable", report.fit.usable()},
          {"horizontal", HorizontalJson(report)},
          {"vertical", VerticalJson(report)},
          {"points", std::move(points)},
          {"warnings", std::move(warnings)}};
}

}  // namespace tarvex
