#include "roads/template_keys.h"

#include <algorithm>
#include <cmath>

#include "core/text/number_text.h"
#include "core/text/text.h"

namespace tarvex {

double TemplateValues::Number() {
  return Noted(LeadingDouble(Next()));
}

double TemplateValues::Noted(double number) {
  if (!(std::fabs(number) <= kLargestTemplateNumber)) outOfRange_ = true;
  return number;
}

int TemplateValues::Integer() {
  constexpr long long kLimit = 2147483647;
  return static_cast<int>(std::clamp(LeadingInteger(Next()), -kLimit, kLimit));
}

std::string TemplateValues::Word() const {
  return std::string(WithoutOuterBlanks(Rest()));
}

namespace {

SurfaceSegment ReadSegment(TemplateValues& values) {
  SurfaceSegment segment;
  segment.width = values.Number();
  const std::string_view slope = values.Next();
  segment.value = values.Noted(LeadingDouble(slope));
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

void TakeSegment(TemplateValues& values, std::vector<SurfaceSegment>& segments) {
  SurfaceSegment segment = ReadSegment(values);
  if (IsKept(segment)) segments.push_back(std::move(segment));
}

void TakeRow(TemplateValues& values, std::vector<SlopeRow>& rows) {
  SlopeRow row;
  row.height = values.Number();
  row.ratio = values.Number();
  if (rows.size() == kMostSlopeRows) rows.pop_back();
  rows.push_back(row);
}

void TakeInsert(TemplateTarget& to, TemplateValues& values) {
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

constexpr TemplateKey kSurfaceKeys[] = {
    {"OFFSET",
     [](TemplateTarget& to, TemplateValues& v) {
       to.surface().offset = v.Number();
       to.surface().elevation = v.Number();
     }},
    {"MOVESL",
     [](TemplateTarget& to, TemplateValues& v) { TakeSegment(v, to.surface().segments); }},
    {"INSERT", TakeInsert},
};

void TakeSubgradeSegment(TemplateTarget& to, TemplateValues& values) {
  SubgradeSegment segment;
  const std::string_view text = values.Rest();
  segment.up = text.find("UP") != std::string_view::npos;
  segment.wrap = text.find("WRAP") != std::string_view::npos;
  segment.segment = ReadSegment(values);
  if (IsKept(segment.segment)) to.subgrade().segments.push_back(std::move(segment));
}

constexpr TemplateKey kSubgradeKeys[] = {
    {"MATERL", [](TemplateTarget& to, TemplateValues& v) { to.subgrade().material = v.Word(); }},
    {"HPIVOT", [](TemplateTarget& to, TemplateValues& v) { to.subgrade().highPivot = v.Word(); }},
    {"HSTYPE", [](TemplateTarget& to, TemplateValues& v) { to.subgrade().highType = v.Integer(); }},
    {"HSLOPE",
     [](TemplateTarget& to, TemplateValues& v) { to.subgrade().highSlopes[0] = v.Number(); }},
    {"HSLOP2",
     [](TemplateTarget& to, TemplateValues& v) { to.subgrade().highSlopes[1] = v.Number(); }},
    {"HSLOP3",
     [](TemplateTarget& to, TemplateValues& v) { to.subgrade().highSlopes[2] = v.Number(); }},
    {"LSLOPE",
     [](TemplateTarget& to, TemplateValues& v) { to.subgrade().lowSlopes[0] = v.Number(); }},
    {"LSLOP2",
     [](TemplateTarget& to, TemplateValues& v) { to.subgrade().lowSlopes[1] = v.Number(); }},
    {"LSLOP3",
     [](TemplateTarget& to, TemplateValues& v) { to.subgrade().lowSlopes[2] = v.Number(); }},
    {"LPIVOT", [](TemplateTarget& to, TemplateValues& v) { to.subgrade().lowPivot = v.Word(); }},
    {"LSTYPE", [](TemplateTarget& to, TemplateValues& v) { to.subgrade().lowType = v.Integer(); }},
    {"SUBDIR",
     [](TemplateTarget& to, TemplateValues& v) { to.subgrade().direction = v.Integer(); }},
    {"WRAPHT",
     [](TemplateTarget& to, TemplateValues& v) { to.subgrade().wrapHeight = v.Number(); }},
    {"OFFSET",
     [](TemplateTarget& to, TemplateValues& v) {
       to.subgrade().offset = v.Number();
       to.subgrade().elevation = v.Number();
     }},
    {"MOVESL", TakeSubgradeSegment},
};

constexpr TemplateKey kFillKeys[] = {
    {"FILDSL", [](TemplateTarget& to, TemplateValues& v) { TakeRow(v, to.fill().slopes); }},
    {"RATIO ",
     [](TemplateTarget& to, TemplateValues& v) { to.section.fillSettings.ratio = v.Integer(); }},
    {"SMOOTH",
     [](TemplateTarget& to, TemplateValues& v) { to.section.fillSettings.smooth = v.Integer(); }},
    {"SERIES",
     [](TemplateTarget& to, TemplateValues& v) { to.section.fillSettings.series = v.Integer(); }},
    {"PIVOT ",
     [](TemplateTarget& to, TemplateValues& v) { to.section.fillSettings.pivot = v.Integer(); }},
    {"TIE_EX", [](TemplateTarget& to,
                  TemplateValues& v) { to.section.fillSettings.tieExisting = v.Integer(); }},
    {"EXDESC", [](TemplateTarget& to,
                  TemplateValues& v) { to.section.fillSettings.existingDescription = v.Word(); }},
    {"REPEAT",
     [](TemplateTarget& to, TemplateValues& v) { to.section.fillSettings.repeat = v.Integer(); }},
    {"FDITCH",
     [](TemplateTarget& to, TemplateValues& v) {
       to.fill().ditch = v.Number();
       to.fill().ditchKind = v.Integer();
     }},
    {"GUARDV", [](TemplateTarget& to, TemplateValues& v) { to.fill().guardVertical = v.Number(); }},
    {"GUARDH",
     [](TemplateTarget& to, TemplateValues& v) { to.fill().guardHorizontal = v.Number(); }},
};

constexpr TemplateKey kCutKeys[] = {
    {"CUTUSL", [](TemplateTarget& to, TemplateValues& v) { TakeRow(v, to.cut().slopes); }},
    {"ROCKSL", [](TemplateTarget& to, TemplateValues& v) { to.cut().rockSlope = v.Number(); }},
    {"RORDER", [](TemplateTarget& to, TemplateValues& v) { to.cut().rockOrder = v.Integer(); }},
    {"RATIO ",
     [](TemplateTarget& to, TemplateValues& v) { to.section.cutSettings.ratio = v.Integer(); }},
    {"SMOOTH",
     [](TemplateTarget& to, TemplateValues& v) { to.section.cutSettings.smooth = v.Integer(); }},
    {"SERIES",
     [](TemplateTarget& to, TemplateValues& v) { to.section.cutSettings.series = v.Integer(); }},
    {"DEPTH ",
     [](TemplateTarget& to, TemplateValues& v) { to.section.cutSettings.depth = v.Integer(); }},
    {"BENCH1",
     [](TemplateTarget& to, TemplateValues& v) { to.section.cutSettings.benchKind = v.Integer(); }},
    {"BENCH2", [](TemplateTarget& to,
                  TemplateValues& v) { to.section.cutSettings.benchHeight = v.Number(); }},
    {"BENCH3",
     [](TemplateTarget& to, TemplateValues& v) { to.section.cutSettings.benchWidth = v.Number(); }},
    {"PIVOT ",
     [](TemplateTarget& to, TemplateValues& v) { to.section.cutSettings.pivot = v.Integer(); }},
    {"TIE_EX", [](TemplateTarget& to,
                  TemplateValues& v) { to.section.cutSettings.tieExisting = v.Integer(); }},
    {"EXDESC", [](TemplateTarget& to,
                  TemplateValues& v) { to.section.cutSettings.existingDescription = v.Word(); }},
    {"REPEAT",
     [](TemplateTarget& to, TemplateValues& v) { to.section.cutSettings.repeat = v.Integer(); }},
};

constexpr TemplateKey kSuperKeys[] = {
    {"LOWADJ",
     [](TemplateTarget& to, TemplateValues& v) { to.section.super.lowAdjust = v.Integer(); }},
    {"MAXDIF", [](TemplateTarget& to,
                  TemplateValues& v) { to.section.super.largestDifference = v.Number(); }},
    {"LOWPT ", [](TemplateTarget& to, TemplateValues& v) { to.section.super.lowPoint = v.Word(); }},
    {"HIGHPT",
     [](TemplateTarget& to, TemplateValues& v) { to.section.super.highPoint = v.Word(); }},
    {"LOWPT2",
     [](TemplateTarget& to, TemplateValues& v) { to.section.super.lowPoint2 = v.Word(); }},
    {"HIGHP2",
     [](TemplateTarget& to, TemplateValues& v) { to.section.super.highPoint2 = v.Word(); }},
    {"EDGESP", [](TemplateTarget&, TemplateValues&) {}},  // written as 0, never read back
};

constexpr TemplateKey kRowKeys[] = {
    {"RTAINL",
     [](TemplateTarget& to, TemplateValues& v) { to.section.rightOfWay.retainLeft = v.Integer(); }},
    {"RTAINR", [](TemplateTarget& to,
                  TemplateValues& v) { to.section.rightOfWay.retainRight = v.Integer(); }},
    {"ROWL  ",
     [](TemplateTarget& to, TemplateValues& v) { to.section.rightOfWay.left = v.Number(); }},
    {"ROWR  ",
     [](TemplateTarget& to, TemplateValues& v) { to.section.rightOfWay.right = v.Number(); }},
};

constexpr TemplateKey kBermKeys[] = {
    {"DEPTH ", [](TemplateTarget& to, TemplateValues& v) { to.section.bermDepth = v.Number(); }},
    {"MOVESL", [](TemplateTarget& to, TemplateValues& v) { TakeSegment(v, to.section.berm); }},
};

constexpr TemplateKey kDitchKeys[] = {
    {"MOVESL", [](TemplateTarget& to, TemplateValues& v) { TakeSegment(v, to.section.ditch); }},
};

void TakeCurbSlope(TemplateTarget& to, TemplateValues& values) {
  const std::string word = values.Word();
  to.curb().slopeKind = word == "FLAT"    ? Curb::Slope::Flat
                        : word == "MATCH" ? Curb::Slope::Match
                                          : Curb::Slope::Number;
  to.curb().slope = values.Noted(LeadingDouble(word));
}

constexpr TemplateKey kCurbKeys[] = {
    {"CBTOP ", [](TemplateTarget& to, TemplateValues& v) { to.curb().top = v.Number(); }},
    {"CBBASE", [](TemplateTarget& to, TemplateValues& v) { to.curb().base = v.Number(); }},
    {"SLOPE ", TakeCurbSlope},
    {"CBTAPR", [](TemplateTarget& to, TemplateValues& v) { to.curb().taper = v.Number(); }},
    {"CBHGT1", [](TemplateTarget& to, TemplateValues& v) { to.curb().height1 = v.Number(); }},
    {"CBHGT2", [](TemplateTarget& to, TemplateValues& v) { to.curb().height2 = v.Number(); }},
    {"CBDROP", [](TemplateTarget& to, TemplateValues& v) { to.curb().drop = v.Number(); }},
    {"CBWIDE", [](TemplateTarget& to, TemplateValues& v) { to.curb().width = v.Number(); }},
    {"CBUNIT", [](TemplateTarget& to, TemplateValues& v) { to.curb().unit = v.Integer(); }},
    {"CBTYPE", [](TemplateTarget& to, TemplateValues& v) { to.curb().type = v.Integer(); }},
    {"MATERL", [](TemplateTarget& to, TemplateValues& v) { to.curb().material = v.Word(); }},
    {"INTGRL", [](TemplateTarget& to, TemplateValues& v) { to.curb().integral = v.Word(); }},
    {"ROUND ", [](TemplateTarget& to, TemplateValues& v) { to.curb().round = v.Word(); }},
};

constexpr TemplateKey kMedianKeys[] = {
    {"MNAME ", [](TemplateTarget& to, TemplateValues& v) { to.median().name = v.Word(); }},
    {"MGRADE",
     [](TemplateTarget& to, TemplateValues& v) {
       MedianGrade grade;
       grade.numbers[0] = v.Number();
       grade.numbers[1] = v.Number();
       grade.codes[0] = v.Integer();
       grade.codes[1] = v.Integer();
       to.median().grades.push_back(grade);
     }},
};

}  // namespace

TemplateKeys SurfaceKeys() {
  return kSurfaceKeys;
}
TemplateKeys SubgradeKeys() {
  return kSubgradeKeys;
}
TemplateKeys FillKeys() {
  return kFillKeys;
}
TemplateKeys CutKeys() {
  return kCutKeys;
}
TemplateKeys SuperelevationKeys() {
  return kSuperKeys;
}
TemplateKeys RightOfWayKeys() {
  return kRowKeys;
}
TemplateKeys BermKeys() {
  return kBermKeys;
}
TemplateKeys DitchKeys() {
  return kDitchKeys;
}
TemplateKeys CurbKeys() {
  return kCurbKeys;
}
TemplateKeys MedianKeys() {
  return kMedianKeys;
}

}  // namespace tarvex
