#include "tests/coordsys/case_file.h"

#include <gtest/gtest.h>

#include <map>
#include <string_view>

#include "core/text/number_text.h"
#include "core/text/text.h"
#include "platform/file.h"

namespace tarvex {
namespace {

std::vector<std::string_view> Split(std::string_view text, char separator) {
  std::vector<std::string_view> parts;
  while (true) {
    const std::size_t at = text.find(separator);
    parts.push_back(text.substr(0, at));
    if (at == std::string_view::npos) return parts;
    text.remove_prefix(at + 1);
  }
}

// "0.01 us-ft"
bool ReadTolerance(std::string_view text, GeodesyCase& c) {
  static const std::map<std::string_view, double> kUnits = {
      {"m", 1.0}, {"us-ft", 1200.0 / 3937.0}, {"ft", 0.3048}, {"clarke-link", 0.201166195164}};
  const auto parts = Split(text, ' ');
  const auto number = ParseNumber(parts[0]);
  if (!number || parts.size() != 2 || !kUnits.contains(parts[1])) return false;
  c.metresPerUnit = kUnits.at(parts[1]);
  c.toleranceM = *number * c.metresPerUnit;
  return true;
}

bool ReadPair(std::string_view text, double& first, double& second) {
  const auto parts = Split(text, ' ');
  if (parts.size() != 2) return false;
  const auto a = ParseNumber(parts[0]);
  const auto b = ParseNumber(parts[1]);
  if (!a || !b) return false;
  first = *a;
  second = *b;
  return true;
}

bool ReadCase(const std::vector<std::string_view>& fields, GeodesyCase& c) {
  if (fields.size() != 5) return false;
  c.forward = fields[0] != "inverse";
  c.inverse = fields[0] != "forward";
  const bool gridFirst = fields[0] == "inverse";
  return ReadTolerance(fields[1], c) &&
         ReadPair(fields[gridFirst ? 3 : 2], c.latitudeDeg, c.longitudeDeg) &&
         ReadPair(fields[gridFirst ? 2 : 3], c.northing, c.easting);
}

}  // namespace

std::vector<GeodesyCase> ReadCases(const std::string& fileName) {
  const std::string path = std::string(TARVEX_TEST_DATA) + "/coordsys/" + fileName;
  std::string bytes;
  EXPECT_TRUE(ReadWholeFile(SystemFiles(), path, 100'000'000, bytes).ok()) << path;
  std::vector<GeodesyCase> cases;
  std::string definition;
  std::string_view rest = bytes;
  for (int lineNumber = 1; const auto line = TakeLine(rest); ++lineNumber) {
    if (line->empty() || line->starts_with('#')) continue;
    const auto fields = Split(*line, '\t');
    if (fields[0] == "system") {
      definition = fields.back();
      continue;
    }
    GeodesyCase c;
    c.definition = definition;
    const bool whole = ReadCase(fields, c);
    EXPECT_TRUE(whole) << fileName << ':' << lineNumber;
    if (!whole) continue;
    c.where = fileName + ':' + std::to_string(lineNumber) + ' ' + std::string(fields.back());
    cases.push_back(std::move(c));
  }
  EXPECT_FALSE(cases.empty()) << path;
  return cases;
}

}  // namespace tarvex
