#include "coordsys/definition/parameter_keywords.h"

#include <algorithm>
#include <cstddef>
#include <limits>

#include "core/text/number_text.h"
#include "core/text/text.h"

namespace tarvex {
namespace {

enum class LetterCase { Ignored, Kept };

struct NumberKeyword {
  std::string_view name;
  LetterCase letterCase;
  void (*set)(ProjectionRecord&, double);
};

void SetCentralMeridian(ProjectionRecord& record, double value) {
  record.centralMeridianDeg = value;
  record.longitudeOfCenterDeg = value;
}
void SetLatitudeOfOrigin(ProjectionRecord& record, double value) {
  record.latitudeOfOriginDeg = value;
  record.latitudeOfCenterDeg = value;
}
void SetParallel1(ProjectionRecord& record, double value) {
  record.standardParallel1Deg = value;
}
void SetParallel2(ProjectionRecord& record, double value) {
  record.standardParallel2OrAzimuthDeg = value;
}

constexpr NumberKeyword kKeywords[] = {
    {"false_easting", LetterCase::Ignored,
     [](ProjectionRecord& record, double value) { record.falseEastingM = value; }},
    {"false_northing", LetterCase::Ignored,
     [](ProjectionRecord& record, double value) { record.falseNorthingM = value; }},
    {"central_meridian", LetterCase::Ignored, SetCentralMeridian},
    {"longitude_of_center", LetterCase::Ignored, SetCentralMeridian},
    {"latitude_of_origin", LetterCase::Ignored, SetLatitudeOfOrigin},
    {"latitude_of_center", LetterCase::Ignored, SetLatitudeOfOrigin},
    {"scale_factor", LetterCase::Ignored,
     [](ProjectionRecord& record, double value) { record.scaleFactor = value; }},
    {"zone_width", LetterCase::Ignored,
     [](ProjectionRecord& record, double value) { record.zoneWidthDeg = value; }},
    {"standard_parallel_1", LetterCase::Ignored, SetParallel1},
    {"standard_parallel1", LetterCase::Ignored, SetParallel1},
    {"standard_parallel_2", LetterCase::Ignored, SetParallel2},
    {"standard_parallel2", LetterCase::Ignored, SetParallel2},
    {"axis", LetterCase::Ignored, SetParallel2},
    {"azimuth", LetterCase::Ignored, SetParallel2},
    {"rectified_grid_angle", LetterCase::Kept,
     [](ProjectionRecord& record, double value) { record.rectifiedGridAngleDeg = value; }},
};

struct CoefficientKeyword {
  std::string_view name;
  std::size_t number;
  LetterCase letterCase = LetterCase::Kept;
};

// There is no "E": "F" follows "D". "CM" is a coefficient, not the central meridian.
constexpr CoefficientKeyword kCoefficients[] = {
    {"T1", 1},
    {"L1", 1},
    {"A", 1},
    {"T2", 2},
    {"L2", 2},
    {"B", 2},
    {"CM", 2},
    {"T3", 3},
    {"L3", 3},
    {"C", 3},
    {"T4", 4},
    {"L4", 4},
    {"D", 4},
    {"T5", 5},
    {"L5", 5},
    {"F", 5},
    {"T6", 6},
    {"L6", 6},
    {"G", 6},
    {"T7", 7},
    {"L7", 7},
    {"H", 7},
    {"T8", 8},
    {"L8", 8},
    {"I", 8},
    {"T9", 9},
    {"L9", 9},
    {"e", 9},
    {"T10", 10},
    {"L10", 10},
    {"epsilon", 10, LetterCase::Ignored},
    {"T11", 11},
    {"L11", 11},
    {"lambda0", 11, LetterCase::Ignored},
};

bool Matches(std::string_view keyword, std::string_view name, LetterCase letterCase) {
  return letterCase == LetterCase::Ignored ? EqualsIgnoringCase(keyword, name) : keyword == name;
}

int AsInt(long long value) {
  constexpr long long kLowest = std::numeric_limits<int>::min();
  constexpr long long kHighest = std::numeric_limits<int>::max();
  return static_cast<int>(std::clamp(value, kLowest, kHighest));
}

}  // namespace

bool SetParameter(ProjectionRecord& record, std::string_view keyword, std::string_view number) {
  if (keyword == "denmark_area") {
    record.denmarkArea = AsInt(LeadingInteger(number));
    return true;
  }
  for (const NumberKeyword& known : kKeywords) {
    if (!Matches(keyword, known.name, known.letterCase)) continue;
    known.set(record, LeadingDouble(number));
    return true;
  }
  for (const CoefficientKeyword& known : kCoefficients) {
    if (!Matches(keyword, known.name, known.letterCase)) continue;
    record.coefficients[known.number - 1] = LeadingDouble(number);
    return true;
  }
  return false;
}

}  // namespace tarvex
