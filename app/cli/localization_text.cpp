#include "app/cli/localization_text.h"

#include <algorithm>
#include <cmath>

#include "app/cli/table_text.h"
#include "app/workflow/job_localization.h"
#include "core/text/number_text.h"
#include "core/text/printable.h"
#include "core/text/text.h"
#include "core/units/angle.h"

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
    text_ += std::string(row.inHorizontal ? "H" : "-") + (row.inVertical ? "V" : "-") + ' ';
    text_ += Residual(row.northM, report_.fit.horizontal.result) +
             Residual(row.eastM, report_.fit.horizontal.result) +
             Residual(row.elevationM, report_.fit.vertical.result);
    if (row.leftOut) {
      const LeftOut& out = *row.leftOut;
      text_ += Length(std::hypot(out.missEastM, out.missNorthM), 18);
      text_ += Column(Number(out.scaleChangePpm, 2), 11);
      text_ += Column(Number(-out.rotationChangeRad * kSecondsPerRadian, 2), 11);
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
                               std::to_string(report_.horizontalRedundancy));
    Line("  Scale", FixedNumber(h.similarity.scale(), 10) + " (" + Number(report_.scalePpm, 3) +
                        " ppm from 1)");
    if (report_.groundPpm) {
      Line("  Ground distances", Number(*report_.groundPpm, 1) + " ppm longer than on the grid");
    }
    Line("  Rotation",
         AngleText(report_.rotationClockwiseRad) + " clockwise, added to grid azimuths");
    Line("  Grid centre", "N " + Length(h.similarity.gridNorthingM, 0) + "  E " +
                              Length(h.similarity.gridEastingM, 0));
    Line("  Local centre",
         "N " + Length(h.similarity.localYM, 0) + "  E " + Length(h.similarity.localXM, 0));
    if (report_.sigmaHorizontalM) {
      Line("  Standard deviation", Length(*report_.sigmaHorizontalM, 0) + " a coordinate");
    }
  }

  void Vertical() {
    const VerticalFit& v = report_.fit.vertical;
    Line("Vertical fit", std::string(VerticalMethodKey(v.method)) + ", " + PointCount(v.points) +
                             ", redundancy " + std::to_string(report_.verticalRedundancy));
    Line("  Shift", Length(v.plane.shiftM, 0) + " at the centre");
    if (v.method == VerticalMethod::InclinedPlane) {
      Line("  Tilt", Number(v.plane.slopeNorth * 1e6, 2) + " ppm to the north, " +
                         Number(v.plane.slopeEast * 1e6, 2) + " ppm to the east");
    }
    if (report_.sigmaVerticalM) {
      Line("  Standard deviation", Length(*report_.sigmaVerticalM, 0));
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
               {"horizontal", row.inHorizontal},
               {"vertical", row.inVertical},
               {"residual_east_m", residual(row.eastM, fit.horizontal.result)},
               {"residual_north_m", residual(row.northM, fit.horizontal.result)},
               {"residual_elevation_m", residual(row.elevationM, fit.vertical.result)},
               {"standardised", Optional(row.standardised)},
               {"left_out_elevation_m", Optional(row.leftOutElevationM)},
               {"left_out", nullptr}};
  if (row.leftOut) {
    json["left_out"] = {
        {"miss_east_m", row.leftOut->missEastM},
        {"miss_north_m", row.leftOut->missNorthM},
        {"scale_change_ppm", row.leftOut->scaleChangePpm},
        {"rotation_change_clockwise_arcsec", -row.leftOut->rotationChangeRad * kSecondsPerRadian}};
  }
  return json;
}

Json HorizontalJson(const LocalizationReport& report) {
  const HorizontalFit& h = report.fit.horizontal;
  if (h.result != FitResult::Fitted) return nullptr;
  const PlaneSimilarity& s = h.similarity;
  return {{"method", HorizontalMethodKey(h.method)},
          {"points", h.points},
          {"redundancy", report.horizontalRedundancy},
          {"scale", s.scale()},
          {"scale_ppm", report.scalePpm},
          {"ground_ppm", Optional(report.groundPpm)},
          {"rotation_clockwise_deg", report.rotationClockwiseRad * kDegreesPerRadian},
          {"a", s.a},
          {"b", s.b},
          {"grid_northing_m", s.gridNorthingM},
          {"grid_easting_m", s.gridEastingM},
          {"local_y_m", s.localYM},
          {"local_x_m", s.localXM},
          {"sigma_m", Optional(report.sigmaHorizontalM)},
          {"rms_east_m", report.rmsEastM},
          {"rms_north_m", report.rmsNorthM}};
}

Json VerticalJson(const LocalizationReport& report) {
  const VerticalFit& v = report.fit.vertical;
  if (v.result != FitResult::Fitted) return nullptr;
  return {{"method", VerticalMethodKey(v.method)},      {"points", v.points},
          {"redundancy", report.verticalRedundancy},    {"shift_m", v.plane.shiftM},
          {"tilt_north_ppm", v.plane.slopeNorth * 1e6}, {"tilt_east_ppm", v.plane.slopeEast * 1e6},
          {"sigma_m", Optional(report.sigmaVerticalM)}, {"rms_m", report.rmsElevationM}};
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
    text += std::string(p.useHorizontal == 'Y' ? "H" : "-") + (p.useVertical == 'Y' ? "V" : "-");
    text += Right(FixedNumber(p.gnss.latitudeRad * kDegreesPerRadian, 9), 14) +
            Right(FixedNumber(p.gnss.longitudeRad * kDegreesPerRadian, 9), 14) +
            Right(FixedNumber(p.gnss.heightM, 3), 10);
    for (const double value : {p.localY, p.localX})
      text += Right(FixedNumber(value, kDecimals), 17);
    text += Right(FixedNumber(p.localZ, kDecimals), 16) + "\n";
  }
  return text;
}

Json ControlListJson(const LocalizationList& list) {
  Json rows = Json::EmptyList();
  for (const auto& point : list) {
    if (!point) continue;
    rows.Add({{"description", point->description},
              {"latitude", Degrees(point->gnss.latitudeRad)},
              {"longitude", Degrees(point->gnss.longitudeRad)},
              {"ellipsoid_height_m", point->gnss.heightM},
              {"local_northing", point->localY},
              {"local_easting", point->localX},
              {"local_elevation", point->localZ},
              {"hrms", point->hrms},
              {"vrms", point->vrms},
              {"horizontal", point->useHorizontal == 'Y'},
              {"vertical", point->useVertical == 'Y'}});
  }
  return rows;
}

std::string LocalizationReportText(const LocalizationReport& report, DistanceUnit unit) {
  return ReportWriter(report, unit).Write();
}

Json LocalizationReportJson(const LocalizationReport& report) {
  Json points = Json::EmptyList();
  for (const PointResidual& row : report.points) points.Add(PointRow(row, report.fit));
  Json warnings = Json::EmptyList();
  for (const WarningText& warning : report.warnings) warnings.Add(warning.text);
  return {{"usable", report.fit.usable()},
          {"horizontal", HorizontalJson(report)},
          {"vertical", VerticalJson(report)},
          {"points", std::move(points)},
          {"warnings", std::move(warnings)}};
}

}  // namespace tarvex
