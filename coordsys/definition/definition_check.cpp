#include "coordsys/definition/definition_check.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>
#include <span>

#include "coordsys/coordsys_texts.h"
#include "coordsys/datum/datum_route.h"
#include "coordsys/definition/definition_reader.h"
#include "coordsys/definition/definition_tree.h"
#include "coordsys/definition/parameter_keywords.h"
#include "coordsys/projections/projection_families.h"
#include "core/text/number_text.h"
#include "core/text/string_table.h"
#include "core/text/text.h"

namespace tarvex {
namespace {

using Kind = DefinitionIssueKind;
using Issues = std::vector<DefinitionIssue>;

bool HasParameter(const DefinitionNode& system, std::string_view name) {
  for (const DefinitionNode& node : system.nodes) {
    if (node.keyword == "PARAMETER" && EqualsIgnoringCase(node.Value(0), name)) return true;
  }
  return false;
}

bool HasOneOf(const DefinitionNode& system, std::string_view alternatives) {
  while (!alternatives.empty()) {
    const std::size_t bar = alternatives.find('|');
    if (HasParameter(system, alternatives.substr(0, bar))) return true;
    alternatives.remove_prefix(bar == std::string_view::npos ? alternatives.size() : bar + 1);
  }
  return false;
}

void CheckNeeds(const DefinitionNode& system, std::span<const std::string_view> needs,
                Issues& issues) {
  for (const std::string_view need : needs) {
    if (HasOneOf(system, need)) continue;
    issues.push_back({Kind::MissingParameter, std::string(need.substr(0, need.find('|')))});
  }
}

bool HasName(const std::vector<std::string_view>& names, std::string_view wanted) {
  return std::any_of(names.begin(), names.end(),
                     [&](std::string_view name) { return EqualsIgnoringCase(name, wanted); });
}

// "a", or "a, b, c and 97 more".
std::string FirstOf(const std::vector<std::string_view>& names) {
  constexpr std::size_t kMostNamed = 3;
  std::string text;
  for (std::size_t i = 0; i < std::min(names.size(), kMostNamed); ++i) {
    text += (i == 0 ? "" : ", ") + std::string(names[i]);
  }
  if (names.size() > kMostNamed) {
    text += " and " + std::to_string(names.size() - kMostNamed) + " more";
  }
  return text;
}

void CheckParameters(const DefinitionNode& system, Issues& issues) {
  std::vector<std::string_view> unknown;
  std::vector<std::string_view> known;
  for (const DefinitionNode& node : system.nodes) {
    if (node.keyword != "PARAMETER") continue;
    const std::string_view name = node.Value(0);
    ProjectionRecord scratch;
    if (!SetParameter(scratch, name, "0")) {
      unknown.push_back(name);
    } else if (!ParseNumber(node.Value(1))) {
      issues.push_back({Kind::ParameterNotANumber, std::string(name)});
    } else if (HasName(known, name)) {
      issues.push_back({Kind::ParameterTwice, std::string(name)});
    } else {
      known.push_back(name);
    }
  }
  if (!unknown.empty()) issues.push_back({Kind::UnknownParameter, FirstOf(unknown)});
}

bool IsNumberNear(std::string_view text, double wanted, double tolerance) {
  const auto number = ParseNumber(text);
  return number && std::fabs(*number - wanted) <= tolerance;
}

void CheckUnits(const DefinitionNode& system, Issues& issues) {
  constexpr double kDegree = 0.017453292519943295;
  const DefinitionNode* linear = system.Child("UNIT");
  if (linear && !IsNumberNear(linear->Value(1), 1.0, 1e-12)) {
    issues.push_back({Kind::LinearUnit, std::string(linear->Value(0))});
  }
  const DefinitionNode* geographic = system.Child("GEOGCS");
  if (!geographic) return;
  const DefinitionNode* angular = geographic->Child("UNIT");
  if (angular && !IsNumberNear(angular->Value(1), kDegree, 1e-12)) {
    issues.push_back({Kind::AngularUnit, std::string(angular->Value(0))});
  }
  const DefinitionNode* meridian = geographic->Child("PRIMEM");
  if (meridian && !IsNumberNear(meridian->Value(1), 0.0, 0.0)) {
    issues.push_back({Kind::PrimeMeridian, std::string(meridian->Value(0))});
  }
}

void CheckAxes(const DefinitionNode& system, Issues& issues) {
  for (const DefinitionNode& node : system.nodes) {
    if (node.keyword != "AXIS") continue;
    const std::string_view direction = node.Value(1);
    if (EqualsIgnoringCase(direction, "EAST") || EqualsIgnoringCase(direction, "NORTH")) continue;
    issues.push_back(
        {Kind::AxisDirection, std::string(node.Value(0)) + " " + std::string(direction)});
  }
}

void CheckProjection(const DefinitionNode& system, Issues& issues) {
  const DefinitionNode* projection = system.Child("PROJECTION");
  if (!projection) {
    issues.push_back({Kind::NoProjection, ""});
    return;
  }
  const auto type = ProjectionCode(projection->Value(0));
  if (!type) {
    issues.push_back({Kind::UnknownProjection, std::string(projection->Value(0))});
  }
  CheckUnits(system, issues);
  CheckAxes(system, issues);
  if (type) CheckNeeds(system, FamilyOf(static_cast<int>(*type)).parameters, issues);
  CheckParameters(system, issues);
}

void CheckDatumShift(std::string_view text, Issues& issues) {
  ProjectionRecord record;
  DefinitionFacts facts;
  ReadDefinition(text, record, facts, nullptr);
  if (record.semiMajorM == 0.0) return;  // nothing is known about the datum, which was reported
  if (DatumRouteOf(record, facts.givesShift) == DatumRoute::Unknown) {
    issues.push_back({Kind::NoDatumShift, ""});
  }
}

void CheckShiftNumbers(const DefinitionNode& system, Issues& issues) {
  const DefinitionNode* shift = system.Find("TOWGS84");
  if (!shift) return;
  const auto& values = shift->values;
  const bool numbers = std::all_of(values.begin(), values.end(), [](std::string_view value) {
    return ParseNumber(value).has_value();
  });
  if (numbers && (values.size() == 3 || values.size() == 7)) return;
  std::string text;
  for (const std::string_view value : values)
    text += (text.empty() ? "" : ",") + std::string(value);
  issues.push_back({Kind::DatumShiftNumbers, "TOWGS84[" + text + "]"});
}

void CheckEastings(const DefinitionNode& system, Issues& issues) {
  const DefinitionNode* projection = system.Child("PROJECTION");
  const auto type = projection ? ProjectionCode(projection->Value(0)) : std::nullopt;
  if (type && FamilyOf(static_cast<int>(*type)).eastingsGrowWest) {
    issues.push_back({Kind::WestwardEastings, ""});
  }
}

void CheckDatum(const DefinitionNode& system, Issues& issues) {
  const DefinitionNode* datum = system.Find("DATUM");
  if (!datum) issues.push_back({Kind::NoDatum, ""});
  const DefinitionNode* spheroid = datum ? datum->Child("SPHEROID") : nullptr;
  const bool numbers =
      spheroid && ParseNumber(spheroid->Value(1)) && ParseNumber(spheroid->Value(2));
  if (!numbers) issues.push_back({Kind::NoEllipsoid, ""});
}

}  // namespace

std::vector<DefinitionIssue> CheckDefinition(std::string_view text) {
  const std::string line = OneLineDefinition(text);
  Issues issues;
  if (line.size() > kDefinitionLimit) issues.push_back({Kind::TooLong, ""});
  std::size_t stoppedAt = 0;
  const auto root = ReadDefinitionTree(line, stoppedAt);
  if (!root) {
    constexpr std::size_t kShown = 30;
    const std::size_t begin = stoppedAt > kShown ? stoppedAt - kShown : 0;
    issues.insert(issues.begin(), {Kind::NotWellFormed, line.substr(begin, stoppedAt - begin + 1)});
    return issues;
  }
  const DefinitionNode* system = root->keyword == "PROJCS" ? &*root : root->Find("PROJCS");
  if (!system) {
    issues.push_back({Kind::NoProjectedSystem, ""});
    return issues;
  }
  CheckDatum(*system, issues);
  CheckProjection(*system, issues);
  CheckDatumShift(line, issues);
  CheckShiftNumbers(*system, issues);
  CheckEastings(*system, issues);
  return issues;
}

bool IsSerious(DefinitionIssueKind kind) {
  return kind != Kind::UnknownParameter && kind != Kind::NoDatumShift &&
         kind != Kind::WestwardEastings;
}

std::string IssueText(const DefinitionIssue& issue) {
  static_assert(kTextFirstDefinitionIssue + static_cast<int>(Kind::ParameterTwice) ==
                kTextLastDefinitionIssue);
  return Strings().Text(kTextFirstDefinitionIssue + static_cast<int>(issue.kind), {issue.argument});
}

}  // namespace tarvex
