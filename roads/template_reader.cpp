#include "roads/template_reader.h"

#include <algorithm>

#include "core/text/text.h"
#include "roads/road_texts.h"
#include "roads/template_keys.h"
#include "roads/text_fields.h"

namespace tarvex {
namespace {

constexpr std::size_t kSignificantBytes = 121;

char CharacterAt(std::string_view line, std::size_t number) {
  return line.size() >= number ? line[number - 1] : '\0';
}

constexpr std::size_t kLeft = 0;
constexpr std::size_t kRight = 1;

// Names a curb block: what follows "**CURB", with the blanks, commas or "L" that separate it.
std::string CurbName(std::string_view line) {
  std::string_view name = line.substr(line.find("**CURB") + 6);
  if (name.starts_with('L')) name.remove_prefix(1);
  while (!name.empty() && (IsBlank(name.front()) || name.front() == ',')) name.remove_prefix(1);
  return std::string(WithoutOuterBlanks(name));
}

class TemplateReader {
 public:
  explicit TemplateReader(std::string_view text) : lines_(text, kSignificantBytes) {
    section_.text = text;
  }

  RoadTemplate Read() {
    std::string_view line;
    while (lines_.Next(line)) {
      if (line.starts_with('*')) {
        Open(line);
      } else {
        TakeKey(line);
      }
    }
    return std::move(section_);
  }

 private:
  void Note(int text, std::string_view argument) {
    if (section_.notes.size() == kMostLineNotes) return;
    section_.notes.push_back({lines_.number(), text, OneLine(argument)});
  }

  void Use(TemplateKeys keys, std::size_t side = kLeft) {
    keys_ = keys;
    target_.side = side;
  }

  void Open(std::string_view line) {
    if (line.find("**CURB") != std::string_view::npos) {
      section_.curbs.emplace_back();
      section_.curbs.back().name = CurbName(line);
      return Use(CurbKeys());
    }
    if (line.find("**MEDIAN") != std::string_view::npos) {
      section_.medians.emplace_back();
      return Use(MedianKeys());
    }
    if (line.starts_with("*SURFACE")) {
      return Use(SurfaceKeys(), CharacterAt(line, 9) == 'L' ? kLeft : kRight);
    }
    if (line.starts_with("*SUBGRADE")) {
      const std::size_t side = CharacterAt(line, 11) == 'R' ? kRight : kLeft;
      section_.subgrade[side].emplace_back();
      return Use(SubgradeKeys(), side);
    }
    if (line.starts_with("*FILL-L")) return Use(FillKeys(), kLeft);
    if (line.starts_with("*FILL-R")) return Use(FillKeys(), kRight);
    if (line.starts_with("*CUT-L")) return Use(CutKeys(), kLeft);
    if (line.starts_with("*CUT-R")) return Use(CutKeys(), kRight);
    if (line.starts_with("*SUPER")) return Use(SuperelevationKeys());
    if (line.starts_with("*ROW")) return Use(RightOfWayKeys());
    if (line.starts_with("*BERM")) return Use(BermKeys());
    if (line.starts_with("*DITCH")) return Use(DitchKeys());
    Note(kTextUnknownSection, line);
    Use({});
  }

  void TakeKey(std::string_view line) {
    const std::size_t comma = line.find(',');
    const std::string_view key = line.substr(0, comma);
    const auto rule = std::find_if(keys_.begin(), keys_.end(),
                                   [key](const TemplateKey& known) { return known.key == key; });
    if (rule == keys_.end() || comma == std::string_view::npos) {
      if (!WithoutOuterBlanks(line).empty()) Note(kTextUnknownKey, line);
      return;
    }
    TemplateValues values(line.substr(comma + 1));
    rule->take(target_, values);
    if (!values.out_of_range()) return;
    Note(kTextNumberOutOfRange, line);
    if (section_.lineOutOfRange == 0) section_.lineOutOfRange = lines_.number();
  }

  NumberedLines lines_;
  RoadTemplate section_;
  TemplateTarget target_{section_};
  TemplateKeys keys_;
};

}  // namespace

RoadTemplate ReadTemplate(std::string_view text) {
  return TemplateReader(text).Read();
}

}  // namespace tarvex
