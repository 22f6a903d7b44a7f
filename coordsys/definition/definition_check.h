// What a user must be told about a definition text before a job trusts it: a record takes metres,
// degrees and Greenwich for granted, keeps silent about what is missing, and passes over what it
// does not know. The check changes nothing in how a record is read.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace tarvex {

enum class DefinitionIssueKind : int {
  NotWellFormed,  ///< argument: the text where it stops
  TooLong,
  NoProjectedSystem,
  NoDatum,
  NoEllipsoid,
  NoProjection,
  UnknownProjection,    ///< argument: its name
  LinearUnit,           ///< argument: the unit; the record's lengths are metres
  AngularUnit,          ///< argument: the unit; the record's angles are degrees
  PrimeMeridian,        ///< argument: its name; the record's longitudes are from Greenwich
  AxisDirection,        ///< argument: the axis and where it points
  MissingParameter,     ///< argument: its name
  UnknownParameter,     ///< argument: the names, the first few of many
  ParameterNotANumber,  ///< argument: its name
  NoDatumShift,         ///< another datum than WGS84, and no shift between them is known
  WestwardEastings,     ///< System 34: eastings grow to the west
  DatumShiftNumbers,    ///< argument: a TOWGS84 that is not three or seven numbers
  ParameterTwice,       ///< argument: its name; the record keeps the last
};

struct DefinitionIssue {
  DefinitionIssueKind kind;
  std::string argument;

  bool operator==(const DefinitionIssue&) const = default;
};

/// The issues of a text, pasted or on one line, in the order above.
std::vector<DefinitionIssue> CheckDefinition(std::string_view text);

/// True for an issue with which no coordinate, or a wrong one, would come out.
bool IsSerious(DefinitionIssueKind kind);

/// An issue in a sentence.
std::string IssueText(const DefinitionIssue& issue);

}  // namespace tarvex
