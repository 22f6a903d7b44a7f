// Field coding: the description of a point names a code, which line of that code the point belongs
// to, and what the line does there ("EP1 B": edge of pavement, line 1, begins). The words and their
// rules are in docs/formats/codes.md.
#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "core/codes/code_list.h"

namespace tarvex {

/// What a line does at a point.
enum class LineAction {
  Begin,       ///< B: a new line begins here
  Continue,    ///< C: it goes on here, also when it was ended
  End,         ///< E: here is its last point
  Close,       ///< CL: the same, and it goes back to its first point
  CurveBegin,  ///< BC: from here on it is a curve through its points
  CurveEnd     ///< EC: up to here
};

/// "B" of Begin.
std::string_view LineActionWord(LineAction action);

/// A description taken apart.
struct FieldCoding {
  std::string code;                      ///< the first word without the number of the line
  std::string number;                    ///< digits; empty for a code without one
  std::vector<LineAction> actions = {};  ///< in their order, none twice
  std::string text;                      ///< what is behind them

  bool operator==(const FieldCoding&) const = default;
};

/// The digits that end the first word are the number of the line, unless the word is a code of the
/// list itself or nothing but digits. The words behind it are actions, in any letter case, up to
/// the first that is none. When text follows the actions and the code is not in the list, all of it
/// is text: "corner C of the house" is not line work.
FieldCoding ParseFieldCoding(std::string_view description, const CodeList& codes);

/// The description with which the next point goes on: the same without its actions.
std::string DescriptionOfNextPoint(std::string_view description, const CodeList& codes);

/// That the code of a description is not in the list, with the one that was probably meant: a
/// sentence; empty when it is, and for a description without a word or a list without codes.
std::string UnknownCodeWarning(std::string_view description, const CodeList& codes);

struct LineVertex {
  std::size_t point = 0;     ///< its place in the list of descriptions
  bool curveToNext = false;  ///< with the vertices before and behind it one smooth curve

  bool operator==(const LineVertex&) const = default;
};

/// At least two vertices.
struct FieldLine {
  std::string code;
  std::string number;
  bool closed = false;  ///< it goes back from the last vertex to the first
  std::vector<LineVertex> vertices;

  bool operator==(const FieldLine&) const = default;
};

/// An action that makes no sense where it is. The line is drawn without it.
struct LineProblem {
  enum class Kind {
    NothingOpen,    ///< C, E, CL, BC or EC without a line of this code and number
    SinglePoint,    ///< a line of one point alone: not drawn
    CurveNotBegun,  ///< EC
    CurveNotEnded,  ///< BC before the EC of another curve, or the line ends in a curve
    CurveTooShort   ///< a curve needs three points: drawn straight
  };
  Kind kind = Kind::NothingOpen;
  std::size_t point = 0;

  bool operator==(const LineProblem&) const = default;
};

struct LineWork {
  std::vector<FieldLine> lines;  ///< in the order in which they begin
  std::vector<LineProblem> problems;
};

/// The lines of points in the order in which they were measured. Lines of one code are told apart
/// by their number, and several may be open at a time.
LineWork DrawLines(std::span<const std::string> descriptions, const CodeList& codes);

}  // namespace tarvex
