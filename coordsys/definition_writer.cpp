#include "coordsys/definition_writer.h"

#include <charconv>
#include <cmath>
#include <limits>
#include <system_error>

#include "coordsys/datum/datum_lie.h"
#include "coordsys/definition_reader.h"
#include "core/number_text.h"
#include "core/text.h"

namespace tarvex {
namespace {

constexpr std::size_t kDatumNameLimit = 98;  // the reader takes 100 with the quotes

std::string Quoted(std::string_view name, std::size_t limit = 100) {
  std::string text = OneLine(CutAtCharacter(name, limit));
  for (char& c : text) {
    if (c == '"') c = '\'';
    if (c == ',') c = ';';
  }
  return '"' + text + '"';
}

// The shortest digits that read back the same, without an exponent where that stays readable.
std::string Number(double value) {
  value += 0.0;  // a negative zero is written as 0
  const double size = std::fabs(value);
  if (size != 0.0 && (size < 1e-5 || size >= 1e15)) return ShortestNumber(value);
  char buffer[40];
  const auto [end, error] =
      std::to_chars(buffer, buffer + sizeof buffer, value, std::chars_format::fixed);
  return error == std::errc{} ? std::string(buffer, end) : ShortestNumber(value);
}

// The text of the inverse flattening whose reciprocal is `flattening`: the shortest one there is.
std::string InverseFlattening(double flattening) {
  const double inverse = 1.0 / flattening;
  for (int decimals = 0; decimals <= 14; ++decimals) {
    std::string text = FixedNumber(inverse, decimals);
    if (1.0 / LeadingDouble(text) == flattening) return text;
  }
  for (const double towards : {0.0, std::numeric_limits<double>::infinity()}) {
    const double neighbour = std::nextafter(inverse, towards);
    if (1.0 / neighbour == flattening) return ShortestNumber(neighbour);
  }
  return ShortestNumber(inverse);
}

std::string Datum(const ProjectionRecord& record) {
  const Ellipsoid ellipsoid = EllipsoidOf(record);
  std::string text = "DATUM[" + Quoted(record.datum_name.view(), kDatumNameLimit);
  text += ",SPHEROID[" + Quoted(record.ellipsoid_name.view());
  text += ',' + Number(ellipsoid.semi_major_m);
  text += ',' + InverseFlattening(ellipsoid.flattening) + ']';
  if (!HasDatumShift(record) && !StandsOnWgs84(record)) return text + ']';
  text += ",TOWGS84[" + Number(record.shift_dx);
  for (const double value : {record.shift_dy, record.shift_dz, -record.shift_rx, -record.shift_ry,
                             -record.shift_rz, record.shift_scale}) {
    text += ',' + Number(value);
  }
  return text + "]]";
}

void AppendParameter(std::string& out, std::string_view keyword, double value) {
  out += ",PARAMETER[\"";
  out += keyword;
  out += "\"," + Number(value) + ']';
}

void AppendUnlessZero(std::string& out, std::string_view keyword, double value) {
  if (value != 0.0) AppendParameter(out, keyword, value);
}

// "azimuth" where the shared field means one.
std::string_view SecondParallelKeyword(int projection_type) {
  switch (static_cast<ProjectionType>(projection_type)) {
    case ProjectionType::ObliqueMercator83:
    case ProjectionType::ObliqueMercator27:
    case ProjectionType::ObliqueMercator:
    case ProjectionType::ObliqueMercatorEov:
      return "azimuth";
    default:
      return "standard_parallel_2";
  }
}

std::string Parameters(const ProjectionRecord& record) {
  std::string text;
  AppendParameter(text, "latitude_of_origin", record.latitude_of_origin);
  AppendParameter(text, "central_meridian", record.central_meridian);
  AppendUnlessZero(text, "standard_parallel_1", record.standard_parallel_1);
  AppendUnlessZero(text, SecondParallelKeyword(record.projection_type),
                   record.standard_parallel_2_or_azimuth);
  AppendUnlessZero(text, "rectified_grid_angle", record.rectified_grid_angle);
  AppendUnlessZero(text, "scale_factor", record.scale_factor);
  AppendParameter(text, "false_easting", record.false_easting);
  AppendParameter(text, "false_northing", record.false_northing);
  AppendUnlessZero(text, "zone_width", record.zone_width);
  for (std::size_t i = 0; i < record.coefficients.size(); ++i) {
    AppendUnlessZero(text, "T" + std::to_string(i + 1), record.coefficients[i]);
  }
  AppendUnlessZero(text, "denmark_area", record.denmark_area);
  return text;
}

bool IsFinite(const ProjectionRecord& record) {
  const Ellipsoid ellipsoid = EllipsoidOf(record);
  double sum = ellipsoid.semi_major_m + 1.0 / ellipsoid.flattening;
  for (const double value :
       {record.shift_dx, record.shift_dy, record.shift_dz, record.shift_rx, record.shift_ry,
        record.shift_rz, record.shift_scale, record.false_easting, record.false_northing,
        record.central_meridian, record.standard_parallel_1, record.latitude_of_origin,
        record.standard_parallel_2_or_azimuth, record.zone_width, record.scale_factor,
        record.rectified_grid_angle}) {
    sum += value * 0.0;
  }
  for (const double value : record.coefficients) sum += value * 0.0;
  return std::isfinite(sum);
}

}  // namespace

std::optional<std::string> WriteDefinition(const ProjectionRecord& record, std::string_view name,
                                           std::string_view compound_name) {
  const auto projection = ProjectionName(record.projection_type);
  if (!projection || !IsFinite(record)) return std::nullopt;
  std::string text = "PROJCS[" + Quoted(name) + ",GEOGCS[" + Quoted(record.datum_name.view());
  text += ',' + Datum(record);
  text += R"(,PRIMEM["Greenwich",0],UNIT["degree",0.017453292519943295]])";
  text += ",PROJECTION[\"";
  text += *projection;
  text += "\"]" + Parameters(record) + R"(,UNIT["metre",1]])";
  if (!compound_name.empty() || !record.vertical_datum_name.empty()) {
    const bool ellipsoid = record.vertical_datum_name.empty();
    const std::string vertical =
        ellipsoid ? "\"Ellipsoid\"" : Quoted(record.vertical_datum_name.view());
    text = "COMPD_CS[" + Quoted(compound_name.empty() ? name : compound_name) + ',' + text;
    text += ",VERT_CS[" + vertical + ",VERT_DATUM[" + vertical;
    text += ellipsoid ? ",2002]" : ",2005]";
    text += R"(,UNIT["metre",1]]])";
  }
  if (text.size() > kDefinitionLimit) return std::nullopt;
  return text;
}

}  // namespace tarvex
