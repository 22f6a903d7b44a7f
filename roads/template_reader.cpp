// The layers of a template: lines, sections, keys (six characters, compared with their padding),
// values. Each section has one table of its keys.
#include <algorithm>
#include <array>

#include "core/number_text.h"
#include "core/text.h"
#include "roads/road_texts.h"
#include "roads/template_file.h"
#include "roads/text_fields.h"

namespace tarvex {
namespace {

constexpr std::size_t kSignificantBytes = 121;

// The values behind a key; the last one asked for runs to the end of the line.
class Values {
 public:
  explicit Values(std::string_view text) : rest_(text) {}

  double Number() { return LeadingDouble(Next()); }
  int Integer() {
    constexpr long long kLimit = 2147483647;
    return static_cast<int>(std::clamp(LeadingInteger(Next()), -kLimit, kLimit));
  }
  std::string_view Next() {
    const std::size_t comma = rest_.find(',');
    const std::string_view value = rest_.substr(0, comma);
    rest_.remove_prefix(comma == std::string_view::npos ? rest_.size() : comma + 1);
    return value;
  }
  std::string_view Rest() { return rest_; }
  std::string Word() { return std::string(WithoutOuterBlanks(rest_)); }

 private:
  std::string_view rest_;
};

SurfaceSegment ReadSegment(Values& values) {
  SurfaceSegment segment;
  segment.width = values.Number();
  const std::string_view slope = values.Next();
  segment.value = LeadingDouble(slope);
  if (slope.find('%') == std::string_view::npos) {
    const bool ratio = slope.find(':') != std::string_view::npos;
    segment.kind = ratio ? SlopeKind::Ratio : SlopeKind::ElevationChange;
    if (ratio && segment.value == 0.0) segment.kind = SlopeKind::Grade;
  }
  segment.description = values.Rest();
  return segment;
}

bool IsKept(const SurfaceSegment& segment) {
  return segment.width != 0.0 || segment.kind == SlopeKind::ElevationChange;
}

void TakeSegment(Values& values, std::vector<SurfaceSegment>& segments) {
  SurfaceSegment segment = ReadSegment(values);
  if (IsKept(segment)) segments.push_back(std::move(segment));
}

void TakeRow(Values& values, std::vector<SlopeRow>& rows) {
  SlopeRow row;
  row.height = values.Number();
  row.ratio = values.Number();
  if (rows.size() == kMostSlopeRows) rows.pop_back();
  rows.push_back(row);
}

// Where a section's lines go.
struct Target {
  RoadTemplate& section;
  std::size_t side = 0;

  Surface& surface() { return section.surface[side]; }
  Subgrade& subgrade() { return section.subgrade[side].back(); }
  FillSide& fill() { return section.fill[side]; }
  CutSide& cut() { return section.cut[side]; }
  Curb& curb() { return section.curbs.back(); }
  Median& median() { return section.medians.back(); }
};

struct KeyRule {
  std::string_view key;
  void (*take)(Target&, Values&);
};

void TakeInsert(Target& to, Values& values) {
  constexpr std::size_t kCurbName = 5;    // after "CURBL"
  constexpr std::size_t kMedianName = 7;  // after "MEDIAN,"
  const std::string_view value = values.Rest();
  const bool curb = value.find("CURB") != std::string_view::npos;
  if (!curb && value.find("MEDIAN") == std::string_view::npos) return;
  const std::size_t name = std::min(curb ? kCurbName : kMedianName, value.size());
  to.surface().inserts.push_back({curb ? SurfaceInsert::Kind::Curb : SurfaceInsert::Kind::Median,
                                  std::string(WithoutOuterBlanks(value.substr(name))),
                                  to.surface().segments.size()});
}

constexpr KeyRule kSurfaceKeys[] = {
    {"OFFSET",
     [](Target& to, Values& v) {
       to.surface().offset = v.Number();
       to.surface().elevation = v.Number();
     }},
    {"MOVESL", [](Target& to, Values& v) { TakeSegment(v, to.surface().segments); }},
    {"INSERT", TakeInsert},
};

void TakeSubgradeSegment(Target& to, Values& values) {
  SubgradeSegment segment;
  const std::string_view text = values.Rest();
  segment.up = text.find("UP") != std::string_view::npos;
  segment.wrap = text.find("WRAP") != std::string_view::npos;
  segment.segment = ReadSegment(values);
  if (IsKept(segment.segment)) to.subgrade().segments.push_back(std::move(segment));
}

constexpr KeyRule kSubgradeKeys[] = {
    {"MATERL", [](Target& to, Values& v) { to.subgrade().material = v.Word(); }},
    {"HPIVOT", [](Target& to, Values& v) { to.subgrade().high_pivot = v.Word(); }},
    {"HSTYPE", [](Target& to, Values& v) { to.subgrade().high_type = v.Integer(); }},
    {"HSLOPE", [](Target& to, Values& v) { to.subgrade().high_slopes[0] = v.Number(); }},
    {"HSLOP2", [](Target& to, Values& v) { to.subgrade().high_slopes[1] = v.Number(); }},
    {"HSLOP3", [](Target& to, Values& v) { to.subgrade().high_slopes[2] = v.Number(); }},
    {"LSLOPE", [](Target& to, Values& v) { to.subgrade().low_slopes[0] = v.Number(); }},
    {"LSLOP2", [](Target& to, Values& v) { to.subgrade().low_slopes[1] = v.Number(); }},
    {"LSLOP3", [](Target& to, Values& v) { to.subgrade().low_slopes[2] = v.Number(); }},
    {"LPIVOT", [](Target& to, Values& v) { to.subgrade().low_pivot = v.Word(); }},
    {"LSTYPE", [](Target& to, Values& v) { to.subgrade().low_type = v.Integer(); }},
    {"SUBDIR", [](Target& to, Values& v) { to.subgrade().direction = v.Integer(); }},
    {"WRAPHT", [](Target& to, Values& v) { to.subgrade().wrap_height = v.Number(); }},
    {"OFFSET",
     [](Target& to, Values& v) {
       to.subgrade().offset = v.Number();
       to.subgrade().elevation = v.Number();
     }},
    {"MOVESL", TakeSubgradeSegment},
};

constexpr KeyRule kFillKeys[] = {
    {"FILDSL", [](Target& to, Values& v) { TakeRow(v, to.fill().slopes); }},
    {"RATIO ", [](Target& to, Values& v) { to.section.fill_settings.ratio = v.Integer(); }},
    {"SMOOTH", [](Target& to, Values& v) { to.section.fill_settings.smooth = v.Integer(); }},
    {"SERIES", [](Target& to, Values& v) { to.section.fill_settings.series = v.Integer(); }},
    {"PIVOT ", [](Target& to, Values& v) { to.section.fill_settings.pivot = v.Integer(); }},
    {"TIE_EX", [](Target& to, Values& v) { to.section.fill_settings.tie_existing = v.Integer(); }},
    {"EXDESC",
     [](Target& to, Values& v) { to.section.fill_settings.existing_description = v.Word(); }},
    {"REPEAT", [](Target& to, Values& v) { to.section.fill_settings.repeat = v.Integer(); }},
    {"FDITCH",
     [](Target& to, Values& v) {
       to.fill().ditch = v.Number();
       to.fill().ditch_kind = v.Integer();
     }},
    {"GUARDV", [](Target& to, Values& v) { to.fill().guard_vertical = v.Number(); }},
    {"GUARDH", [](Target& to, Values& v) { to.fill().guard_horizontal = v.Number(); }},
};

constexpr KeyRule kCutKeys[] = {
    {"CUTUSL", [](Target& to, Values& v) { TakeRow(v, to.cut().slopes); }},
    {"ROCKSL", [](Target& to, Values& v) { to.cut().rock_slope = v.Number(); }},
    {"RORDER", [](Target& to, Values& v) { to.cut().rock_order = v.Integer(); }},
    {"RATIO ", [](Target& to, Values& v) { to.section.cut_settings.ratio = v.Integer(); }},
    {"SMOOTH", [](Target& to, Values& v) { to.section.cut_settings.smooth = v.Integer(); }},
    {"SERIES", [](Target& to, Values& v) { to.section.cut_settings.series = v.Integer(); }},
    {"DEPTH ", [](Target& to, Values& v) { to.section.cut_settings.depth = v.Integer(); }},
    {"BENCH1", [](Target& to, Values& v) { to.section.cut_settings.bench1 = v.Integer(); }},
    {"BENCH2", [](Target& to, Values& v) { to.section.cut_settings.bench2 = v.Number(); }},
    {"BENCH3", [](Target& to, Values& v) { to.section.cut_settings.bench3 = v.Number(); }},
    {"PIVOT ", [](Target& to, Values& v) { to.section.cut_settings.pivot = v.Integer(); }},
    {"TIE_EX", [](Target& to, Values& v) { to.section.cut_settings.tie_existing = v.Integer(); }},
    {"EXDESC",
     [](Target& to, Values& v) { to.section.cut_settings.existing_description = v.Word(); }},
    {"REPEAT", [](Target& to, Values& v) { to.section.cut_settings.repeat = v.Integer(); }},
};

constexpr KeyRule kSuperKeys[] = {
    {"LOWADJ", [](Target& to, Values& v) { to.section.super.low_adjust = v.Integer(); }},
    {"MAXDIF", [](Target& to, Values& v) { to.section.super.largest_difference = v.Number(); }},
    {"LOWPT ", [](Target& to, Values& v) { to.section.super.low_point = v.Word(); }},
    {"HIGHPT", [](Target& to, Values& v) { to.section.super.high_point = v.Word(); }},
    {"LOWPT2", [](Target& to, Values& v) { to.section.super.low_point2 = v.Word(); }},
    {"HIGHP2", [](Target& to, Values& v) { to.section.super.high_point2 = v.Word(); }},
    {"EDGESP", [](Target&, Values&) {}},  // written as 0, never read back
};

constexpr KeyRule kRowKeys[] = {
    {"RTAINL", [](Target& to, Values& v) { to.section.right_of_way.retain_left = v.Integer(); }},
    {"RTAINR", [](Target& to, Values& v) { to.section.right_of_way.retain_right = v.Integer(); }},
    {"ROWL  ", [](Target& to, Values& v) { to.section.right_of_way.left = v.Number(); }},
    {"ROWR  ", [](Target& to, Values& v) { to.section.right_of_way.right = v.Number(); }},
};

constexpr KeyRule kBermKeys[] = {
    {"DEPTH ", [](Target& to, Values& v) { to.section.berm_depth = v.Number(); }},
    {"MOVESL", [](Target& to, Values& v) { TakeSegment(v, to.section.berm); }},
};

constexpr KeyRule kDitchKeys[] = {
    {"MOVESL", [](Target& to, Values& v) { TakeSegment(v, to.section.ditch); }},
};

void TakeCurbSlope(Target& to, Values& values) {
  const std::string word = values.Word();
  to.curb().slope_kind = word == "FLAT"    ? Curb::Slope::Flat
                         : word == "MATCH" ? Curb::Slope::Match
                                           : Curb::Slope::Number;
  to.curb().slope = LeadingDouble(word);
}

constexpr KeyRule kCurbKeys[] = {
    {"CBTOP ", [](Target& to, Values& v) { to.curb().top = v.Number(); }},
    {"CBBASE", [](Target& to, Values& v) { to.curb().base = v.Number(); }},
    {"SLOPE ", TakeCurbSlope},
    {"CBTAPR", [](Target& to, Values& v) { to.curb().taper = v.Number(); }},
    {"CBHGT1", [](Target& to, Values& v) { to.curb().height1 = v.Number(); }},
    {"CBHGT2", [](Target& to, Values& v) { to.curb().height2 = v.Number(); }},
    {"CBDROP", [](Target& to, Values& v) { to.curb().drop = v.Number(); }},
    {"CBWIDE", [](Target& to, Values& v) { to.curb().width = v.Number(); }},
    {"CBUNIT", [](Target& to, Values& v) { to.curb().unit = v.Integer(); }},
    {"CBTYPE", [](Target& to, Values& v) { to.curb().type = v.Integer(); }},
    {"MATERL", [](Target& to, Values& v) { to.curb().material = v.Word(); }},
    {"INTGRL", [](Target& to, Values& v) { to.curb().integral = v.Word(); }},
    {"ROUND ", [](Target& to, Values& v) { to.curb().round = v.Word(); }},
};

constexpr KeyRule kMedianKeys[] = {
    {"MNAME ", [](Target& to, Values& v) { to.median().name = v.Word(); }},
    {"MGRADE",
     [](Target& to, Values& v) {
       MedianGrade grade;
       grade.first = v.Number();
       grade.second = v.Number();
       grade.third = v.Integer();
       grade.fourth = v.Integer();
       to.median().grades.push_back(grade);
     }},
};

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

  void Use(std::span<const KeyRule> keys, std::size_t side = kLeft) {
    keys_ = keys;
    target_.side = side;
  }

  void Open(std::string_view line) {
    if (line.find("**CURB") != std::string_view::npos) {
      section_.curbs.emplace_back();
      section_.curbs.back().name = CurbName(line);
      return Use(kCurbKeys);
    }
    if (line.find("**MEDIAN") != std::string_view::npos) {
      section_.medians.emplace_back();
      return Use(kMedianKeys);
    }
    if (line.starts_with("*SURFACE")) {
      return Use(kSurfaceKeys, CharacterAt(line, 9) == 'L' ? kLeft : kRight);
    }
    if (line.starts_with("*SUBGRADE")) {
      const std::size_t side = CharacterAt(line, 11) == 'R' ? kRight : kLeft;
      section_.subgrade[side].emplace_back();
      return Use(kSubgradeKeys, side);
    }
    if (line.starts_with("*FILL-L")) return Use(kFillKeys, kLeft);
    if (line.starts_with("*FILL-R")) return Use(kFillKeys, kRight);
    if (line.starts_with("*CUT-L")) return Use(kCutKeys, kLeft);
    if (line.starts_with("*CUT-R")) return Use(kCutKeys, kRight);
    if (line.starts_with("*SUPER")) return Use(kSuperKeys);
    if (line.starts_with("*ROW")) return Use(kRowKeys);
    if (line.starts_with("*BERM")) return Use(kBermKeys);
    if (line.starts_with("*DITCH")) return Use(kDitchKeys);
    Note(kTextUnknownSection, line);
    Use({});
  }

  void TakeKey(std::string_view line) {
    const std::size_t comma = line.find(',');
    const std::string_view key = line.substr(0, comma);
    const auto rule = std::find_if(keys_.begin(), keys_.end(),
                                   [key](const KeyRule& known) { return known.key == key; });
    if (rule == keys_.end() || comma == std::string_view::npos) {
      if (!WithoutOuterBlanks(line).empty()) Note(kTextUnknownKey, line);
      return;
    }
    Values values(line.substr(comma + 1));
    rule->take(target_, values);
  }

  NumberedLines lines_;
  RoadTemplate section_;
  Target target_{section_};
  std::span<const KeyRule> keys_;
};

}  // namespace

RoadTemplate ReadTemplate(std::string_view text) {
  return TemplateReader(text).Read();
}

}  // namespace tarvex
