#include "core/codes/code_list.h"

#include <algorithm>
#include <unordered_set>

#include "core/points/point.h"
#include "core/text/edit_distance.h"
#include "core/text/text.h"

namespace tarvex {
namespace {

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

bool IsText(std::string_view line) {
  return std::none_of(line.begin(), line.end(), [](char c) { return IsControl(c) && !IsBlank(c); });
}

}  // namespace

CodeList CodeList::Parse(std::string_view text, std::vector<CodeListProblem>& problems) {
  using Kind = CodeListProblem::Kind;
  CodeList list;
  std::unordered_set<std::string> known;
  if (text.starts_with(kByteOrderMark)) text.remove_prefix(kByteOrderMark.size());
  for (std::size_t number = 1; const auto whole = TakeLine(text); ++number) {
    const std::string_view line = WithoutOuterBlanks(*whole);
    if (line.empty() || line.front() == '#') continue;
    const std::string_view code = line.substr(0, line.find_first_of(" \t"));
    const auto leaveOut = [&](Kind kind) {
      problems.push_back({.kind = kind, .line = number, .code = OneLine(code)});
    };
    if (!IsText(line)) {
      leaveOut(Kind::NotText);
    } else if (code.size() > kDescriptionLength) {
      leaveOut(Kind::TooLong);
    } else if (!known.insert(UpperCase(code)).second) {
      leaveOut(Kind::Twice);
    } else {
      list.codes_.push_back({.code = std::string(code),
                             .title = OneLine(WithoutOuterBlanks(line.substr(code.size())))});
    }
  }
  list.Sort();
  return list;
}

void CodeList::Sort() {
  sorted_.reserve(codes_.size());
  for (std::size_t i = 0; i < codes_.size(); ++i)
    sorted_.emplace_back(UpperCase(codes_[i].code), i);
  std::sort(sorted_.begin(), sorted_.end());
}

const FieldCode* CodeList::Find(std::string_view code) const {
  const std::string key = UpperCase(code);
  const auto at = std::lower_bound(
      sorted_.begin(), sorted_.end(), key,
      [](const auto& entry, const std::string& wanted) { return entry.first < wanted; });
  return at != sorted_.end() && at->first == key ? &codes_[at->second] : nullptr;
}

std::vector<const FieldCode*> CodeList::StartingWith(std::string_view start) const {
  std::vector<const FieldCode*> found;
  for (const FieldCode& code : codes_) {
    const std::string_view head = std::string_view(code.code).substr(0, start.size());
    if (EqualsIgnoringCase(head, start)) found.push_back(&code);
  }
  return found;
}

const FieldCode* CodeList::Nearest(std::string_view code) const {
  constexpr std::size_t kNear = 2;
  const FieldCode* nearest = nullptr;
  // A short word is not half of it wrong.
  std::size_t least = std::min(kNear, (code.size() - (code.empty() ? 0 : 1)) / 2) + 1;
  for (const FieldCode& known : codes_) {
    const std::size_t distance = EditDistance(code, known.code);
    if (distance >= least) continue;
    least = distance;
    nearest = &known;
  }
  return nearest;
}

}  // namespace tarvex
