#include "coordsys/definition/definition_writer.h"

#include <charconv>
#include <cmath>
#include <limits>
#include <system_error>

#include "coordsys/datum/coincident_datums.h"
#include "coordsys/definition/definition_reader.h"
#include "coordsys/projections/projection_families.h"
#include "core/text/number_text.h"
#include "core/text/text.h"

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
  std::string text = "DATUM[" + Quoted(record.datumName.view(), kDatumNameLimit);
  text += ",SPHEROID[" + Quoted(record.ellipsoidName.view());
  text += ',' + Number(ellipsoid.semiMajorM);
  text += ',' + InverseFlattening(ellipsoid.flattening) + ']';
  if (!HasDatumShift(record) && !CoincidesWithWgs84(record)) return text + ']';
  text += ",TOWGS84[" + Number(record.shiftDxM);
  for (const double value : {record.shiftDyM, record.shiftDzM, -record.shiftRxArcsec,
                             -record.shiftRyArcsec, -record.shiftRzArcsec, record.shiftScalePpm}) {
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

std::string Parameters(const ProjectionRecord& record) {
  std::string text;
  AppendParameter(text, "latitude_of_origin", record.latitudeOfOriginDeg);
  AppendParameter(text, "central_meridian", record.centralMeridianDeg);
  AppendUnlessZero(text, "standard_parallel_1", record.standardParallel1Deg);
  AppendUnlessZero(text, FamilyOf(record.projectionType).parallel2Keyword,
                   record.standardParallel2OrAzimuthDeg);
  AppendUnlessZero(text, "rectified_grid_angle", record.rectifiedGridAngleDeg);
  AppendUnlessZero(text, "scale_factor", record.scaleFactor);
  AppendParameter(text, "false_easting", record.falseEastingM);
  AppendParameter(text, "false_northing", record.falseNorthingM);
  AppendUnlessZero(text, "zone_width", record.zoneWidthDeg);
  for (std::size_t i = 0; i < record.coefficients.size(); ++i) {
    AppendUnlessZero(text, "T" + std::to_string(i + 1), record.coefficients[i]);
  }
  AppendUnlessZero(text, "denmark_area", record.denmarkArea);
  return text;
}

bool IsFinite(const ProjectionRecord& record) {
  const Ellipsoid ellipsoid = EllipsoidOf(record);
  double sum = ellipsoid.semiMajorM + 1.0 / ellipsoid.flattening;
  for (const double value :
       {record.shiftDxM, record.shiftDyM, record.shiftDzM, record.shiftRxArcsec,
        record.shiftRyArcsec, record.shiftRzArcsec, record.shiftScalePpm, record.falseEastingM,
        record.falseNorthingM, record.centralMeridianDeg, record.standardParallel1Deg,
        record.latitudeOfOriginDeg, record.standardParallel2OrAzimuthDeg, record.zoneWidthDeg,
        record.scaleFactor, record.rectifiedGridAngleDeg}) {
    sum += value * 0.0;
  }
  for (const double value : record.coefficients) sum += value * 0.0;
  return std::isfinite(sum);
}

}  // namespace

std::optional<std::string> WriteDefinition(const ProjectionRecord& record, std::string_view name,
                                           std::string_view compoundName) {
  const auto projection = ProjectionName(record.projectionType);
  if (!projection || !IsFinite(record)) return std::nullopt;
  std::string text = "PROJCS[" + Quoted(name) + ",GEOGCS[" + Quoted(record.datumName.view());
  text += ',' + Datum(record);
  text += R"(,PRIMEM["Greenwich",0],UNIT["degree",0.017453292519943295]])";
  text += ",PROJECTION[\"";
  text += *projection;
  text += "\"]" + Parameters(record) + R"(,UNIT["metre",1]])";
  if (!compoundName.empty() || !record.verticalDatumName.empty()) {
    const bool ellipsoid = record.verticalDatumName.empty();
    const std::string vertical =
        ellipsoid ? "\"Ellipsoid\"" : Quoted(record.verticalDatumName.view());
    text = "COMPD_CS[" + Quoted(compoundName.empty() ? name : compoundName) + ',' + text;
    text += ",VERT_CS[" + vertical + ",VERT_DATUM[" + vertical;
    text += ellipsoid ? ",2002]" : ",2005]";
    text += R"(,UNIT["metre",1]]])";
  }
  if (text.size() > kDefinitionLimit) return std::nullopt;
  return text;
}

}  // namespace tarvex
