#include "core/codes/line_work.h"

#include <algorithm>
#include <array>
#include <map>
#include <optional>
#include <utility>

#include "core/text/text.h"

namespace tarvex {
namespace {

constexpr std::array<std::pair<std::string_view, LineAction>, 6> kActions = {
    {{"B", LineAction::Begin},
     {"C", LineAction::Continue},
     {"E", LineAction::End},
     {"CL", LineAction::Close},
     {"BC", LineAction::CurveBegin},
     {"EC", LineAction::CurveEnd}}};

std::optional<LineAction> ActionOf(std::string_view word) {
  for (const auto& [name, action] : kActions) {
    if (EqualsIgnoringCase(name, word)) return action;
  }
  return std::nullopt;
}

// The first word of `rest`, which is taken off it together with the blanks behind it.
std::string_view TakeWord(std::string_view& rest) {
  const std::string_view word = rest.substr(0, rest.find_first_of(" \t"));
  rest = WithoutLeadingBlanks(rest.substr(word.size()));
  return word;
}

// Splits "EP12" into its code and the number of the line.
void TakeCode(std::string_view word, const CodeList& codes, FieldCoding& coding) {
  std::size_t digits = word.size();
  while (digits > 0 && IsDigit(word[digits - 1])) --digits;
  const bool whole = digits == 0 || codes.Find(word) != nullptr;
  coding.code = word.substr(0, whole ? word.size() : digits);
  coding.number = whole ? "" : word.substr(digits);
}

bool Has(const FieldCoding& coding, LineAction action) {
  return std::find(coding.actions.begin(), coding.actions.end(), action) != coding.actions.end();
}

// Lines under the pen, by code and number. What is said at one point is done in an order that makes
// sense however it was typed: a line begins or goes on, its curve ends, a curve begins, it ends.
class LineDrawing {
 public:
  void Take(std::size_t point, const FieldCoding& coding) {
    const auto key = std::pair(UpperCase(coding.code), coding.number);
    Pen& pen = pens_[key];
    if (Has(coding, LineAction::Begin)) {
      Finish(pen, point);
      pen = {.line = work_.lines.size(), .open = true, .drawn = true};
      work_.lines.push_back(
          {.code = coding.code, .number = coding.number, .closed = false, .vertices = {}});
    } else if (Has(coding, LineAction::Continue) && pen.drawn && !Line(pen).closed) {
      pen.open = true;
    }
    if (!pen.open) {
      if (!coding.actions.empty()) Note(LineProblem::Kind::NothingOpen, point);
      return;
    }
    Line(pen).vertices.push_back({.point = point});
    if (Has(coding, LineAction::CurveEnd)) EndCurve(pen, point);
    if (Has(coding, LineAction::CurveBegin)) BeginCurve(pen, point);
    if (Has(coding, LineAction::End) || Has(coding, LineAction::Close)) {
      Line(pen).closed = Has(coding, LineAction::Close) && Line(pen).vertices.size() > 2;
      Finish(pen, point);
    }
  }

  LineWork Done() {
    for (auto& [key, pen] : pens_) {
      if (pen.open) Finish(pen, Line(pen).vertices.back().point);
    }
    const auto single = [this](const FieldLine& line) {
      if (line.vertices.size() > 1) return false;
      Note(LineProblem::Kind::SinglePoint, line.vertices.front().point);
      return true;
    };
    work_.lines.erase(std::remove_if(work_.lines.begin(), work_.lines.end(), single),
                      work_.lines.end());
    std::stable_sort(work_.problems.begin(), work_.problems.end(),
                     [](const auto& a, const auto& b) { return a.point < b.point; });
    return std::move(work_);
  }

 private:
  struct Pen {
    std::size_t line = 0;
    bool open = false;
    bool drawn = false;                         ///< a line of this code and number was begun before
    std::optional<std::size_t> curveFrom = {};  ///< a vertex
  };

  FieldLine& Line(const Pen& pen) { return work_.lines[pen.line]; }
  void Note(LineProblem::Kind kind, std::size_t point) { work_.problems.push_back({kind, point}); }

  void BeginCurve(Pen& pen, std::size_t point) {
    if (pen.curveFrom) Note(LineProblem::Kind::CurveNotEnded, point);
    pen.curveFrom = Line(pen).vertices.size() - 1;
  }

  void EndCurve(Pen& pen, std::size_t point) {
    if (!pen.curveFrom) return Note(LineProblem::Kind::CurveNotBegun, point);
    const std::size_t last = Line(pen).vertices.size() - 1;
    if (last < *pen.curveFrom + 2) {
      Note(LineProblem::Kind::CurveTooShort, point);
    } else {
      for (std::size_t i = *pen.curveFrom; i < last; ++i) Line(pen).vertices[i].curveToNext = true;
    }
    pen.curveFrom.reset();
  }

  void Finish(Pen& pen, std::size_t point) {
    if (!pen.open) return;
    if (pen.curveFrom) {
      Note(LineProblem::Kind::CurveNotEnded, point);
      pen.curveFrom.reset();
    }
    pen.open = false;
  }

  LineWork work_;
  std::map<std::pair<std::string, std::string>, Pen> pens_;
};

}  // namespace

std::string_view LineActionWord(LineAction action) {
  for (const auto& [word, known] : kActions) {
    if (known == action) return word;
  }
  return {};
}

FieldCoding ParseFieldCoding(std::string_view description, const CodeList& codes) {
  FieldCoding coding;
  std::string_view rest = WithoutOuterBlanks(description);
  TakeCode(TakeWord(rest), codes, coding);
  const std::string_view behindCode = rest;
  while (!rest.empty()) {
    std::string_view further = rest;
    const auto action = ActionOf(TakeWord(further));
    if (!action) break;
    if (!Has(coding, *action)) coding.actions.push_back(*action);
    rest = further;
  }
  if (!rest.empty() && codes.Find(coding.code) == nullptr) {
    coding.actions.clear();
    rest = behindCode;
  }
  coding.text = rest;
  return coding;
}

std::string DescriptionOfNextPoint(std::string_view description, const CodeList& codes) {
  const FieldCoding coding = ParseFieldCoding(description, codes);
  if (coding.actions.empty()) return std::string(description);
  return coding.code + coding.number + (coding.text.empty() ? "" : " " + coding.text);
}

std::string UnknownCodeWarning(std::string_view description, const CodeList& codes) {
  const std::string code = ParseFieldCoding(description, codes).code;
  if (code.empty() || codes.empty() || codes.Find(code) != nullptr) return {};
  const FieldCode* meant = codes.Nearest(code);
  return "\"" + code + "\" is not in the job's list of codes" +
         (meant == nullptr ? "." : "; " + meant->code + "?");
}

LineWork DrawLines(std::span<const std::string> descriptions, const CodeList& codes) {
  LineDrawing drawing;
  for (std::size_t i = 0; i < descriptions.size(); ++i) {
    drawing.Take(i, ParseFieldCoding(descriptions[i], codes));
  }
  return drawing.Done();
}

}  // namespace tarvex
