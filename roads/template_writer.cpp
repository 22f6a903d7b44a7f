#include "roads/template_writer.h"

#include "core/text/number_text.h"
#include "core/text/text.h"

namespace tarvex {
namespace {

constexpr int kSegmentDecimals = 5;
constexpr int kSlopeDecimals = 3;
constexpr int kBenchWidthDecimals = 2;
constexpr int kGradeDecimals = 4;

class TemplateWriter {
 public:
  explicit TemplateWriter(const RoadTemplate& section) : section_(section) {}

  std::string Write() {
    WriteSurface("*SURFACEL", section_.SurfaceOf(Side::Left));
    WriteSurface("*SURFACER", section_.SurfaceOf(Side::Right));
    WriteFill();
    WriteCut();
    WriteSuperelevation();
    WriteRightOfWay();
    for (const Subgrade& subgrade : section_.subgrade[0]) WriteSubgrade("*SUBGRADE-L", subgrade);
    for (const Subgrade& subgrade : section_.subgrade[1]) WriteSubgrade("*SUBGRADE-R", subgrade);
    WriteBermAndDitch();
    for (const Curb& curb : section_.curbs) WriteCurb(curb);
    for (const Median& median : section_.medians) WriteMedian(median);
    return std::move(text_);
  }

 private:
  void Line(std::string_view line) {
    text_ += line;
    text_ += '\n';
  }
  void Text(std::string_view key, std::string_view value) {
    Line(std::string(key) + ',' + OneLine(value));
  }
  void Integer(std::string_view key, int value) { Text(key, std::to_string(value)); }
  void Number(std::string_view key, double value, int decimals) {
    Text(key, FixedNumber(value, decimals));
  }
  void Pair(std::string_view key, double first, double second, int decimals) {
    Text(key, FixedNumber(first, decimals) + ',' + FixedNumber(second, decimals));
  }

  // Two percent signs behind a grade, nothing behind an elevation change.
  void Segment(const SurfaceSegment& segment, std::string_view description) {
    const bool grade = segment.kind == SlopeKind::Grade;
    Text("MOVESL", FixedNumber(segment.width, kSegmentDecimals) + ',' +
                       FixedNumber(grade ? segment.value : segment.Rise(), kSegmentDecimals) +
                       (grade ? "%%," : ",") + OneLine(description));
  }

  void Insert(const SurfaceInsert& insert) {
    const bool curb = insert.kind == SurfaceInsert::Kind::Curb;
    Line((curb ? "INSERT,CURBL" : "INSERT,MEDIAN,") + OneLine(insert.name));
  }

  void WriteSurface(std::string_view name, const Surface& surface) {
    Line(name);
    Pair("OFFSET", surface.offset, surface.elevation, kSegmentDecimals);
    auto insert = surface.inserts.begin();
    for (std::size_t i = 0; i <= surface.segments.size(); ++i) {
      for (; insert != surface.inserts.end() && insert->beforeSegment <= i; ++insert) {
        Insert(*insert);
      }
      if (i < surface.segments.size()) {
        Segment(surface.segments[i], surface.segments[i].description);
      }
    }
    for (; insert != surface.inserts.end(); ++insert) Insert(*insert);
  }

  void Rows(std::string_view key, const std::vector<SlopeRow>& rows) {
    for (const SlopeRow& row : rows) Pair(key, row.height, row.ratio, kSlopeDecimals);
  }

  // Fill settings are one for both sides and are written once, on the left.
  void WriteFill() {
    const SlopeSettings& both = section_.fillSettings;
    Line("*FILL-L");
    FillOf(Side::Left);
    Integer("RATIO ", both.ratio);
    Integer("SMOOTH", both.smooth);
    Integer("PIVOT ", both.pivot);
    Integer("SERIES", both.series);
    Integer("REPEAT", both.repeat);
    Integer("TIE_EX", both.tieExisting);
    Text("EXDESC", both.existingDescription);
    Line("*FILL-R");
    FillOf(Side::Right);
  }

  void FillOf(Side side) {
    const FillSide& fill = section_.FillOf(side);
    Rows("FILDSL", fill.slopes);
    if (fill.ditch != 0.0 || fill.ditchKind != 0) {
      Text("FDITCH",
           FixedNumber(fill.ditch, kSlopeDecimals) + ',' + std::to_string(fill.ditchKind));
    }
    if (fill.guardVertical != 0.0) Number("GUARDV", fill.guardVertical, kSlopeDecimals);
    if (fill.guardHorizontal != 0.0) Number("GUARDH", fill.guardHorizontal, kSlopeDecimals);
  }

  void WriteCut() {
    const CutSettings& both = section_.cutSettings;
    Line("*CUT-L");
    Rows("CUTUSL", section_.CutOf(Side::Left).slopes);
    Integer("RATIO ", both.ratio);
    RockOf(Side::Left);
    Integer("SMOOTH", both.smooth);
    Integer("SERIES", both.series);
    Integer("DEPTH ", both.depth);
    Integer("BENCH1", both.benchKind);
    Number("BENCH2", both.benchHeight, kSlopeDecimals);
    Number("BENCH3", both.benchWidth, kBenchWidthDecimals);
    Integer("PIVOT ", both.pivot);
    Integer("REPEAT", both.repeat);
    Integer("TIE_EX", both.tieExisting);
    Text("EXDESC", both.existingDescription);
    Line("*CUT-R");
    Rows("CUTUSL", section_.CutOf(Side::Right).slopes);
    RockOf(Side::Right);
  }

  void RockOf(Side side) {
    Number("ROCKSL", section_.CutOf(side).rockSlope, kSlopeDecimals);
    Integer("RORDER", section_.CutOf(side).rockOrder);
  }

  void WriteSuperelevation() {
    const SuperelevationSettings& super = section_.super;
    Line("*SUPER");
    Integer("LOWADJ", super.lowAdjust);
    Integer("EDGESP", 0);
    Number("MAXDIF", super.largestDifference, kGradeDecimals);
    Text("LOWPT ", super.lowPoint);
    Text("HIGHPT", super.highPoint);
    Text("LOWPT2", super.lowPoint2);
    Text("HIGHP2", super.highPoint2);
  }

  void WriteRightOfWay() {
    const RightOfWay& row = section_.rightOfWay;
    Line("*ROW");
    Integer("RTAINL", row.retainLeft);
    Integer("RTAINR", row.retainRight);
    Number("ROWL  ", row.left, kSlopeDecimals);
    Number("ROWR  ", row.right, kSlopeDecimals);
  }

  void WriteSubgrade(std::string_view name, const Subgrade& subgrade) {
    Line(name);
    Text("MATERL", subgrade.material);
    Text("HPIVOT", subgrade.highPivot);
    Integer("HSTYPE", subgrade.highType);
    Number("HSLOPE", subgrade.highSlopes[0], kSegmentDecimals);
    Number("HSLOP2", subgrade.highSlopes[1], kSegmentDecimals);
    Number("HSLOP3", subgrade.highSlopes[2], kSegmentDecimals);
    Number("LSLOPE", subgrade.lowSlopes[0], kSegmentDecimals);
    Number("LSLOP2", subgrade.lowSlopes[1], kSegmentDecimals);
    Number("LSLOP3", subgrade.lowSlopes[2], kSegmentDecimals);
    Text("LPIVOT", subgrade.lowPivot);
    Integer("LSTYPE", subgrade.lowType);
    Integer("SUBDIR", subgrade.direction);
    Number("WRAPHT", subgrade.wrapHeight, kSegmentDecimals);
    Pair("OFFSET", subgrade.offset, subgrade.elevation, kSegmentDecimals);
    for (const SubgradeSegment& segment : subgrade.segments) {
      std::string words = segment.segment.description;
      if (segment.up && words.find("UP") == std::string::npos) words += " UP";
      if (segment.wrap && words.find("WRAP") == std::string::npos) words += " WRAP";
      Segment(segment.segment, words);
    }
  }

  void WriteBermAndDitch() {
    if (!section_.berm.empty() || section_.bermDepth != 0.0) {
      Line("*BERM");
      Number("DEPTH ", section_.bermDepth, kSegmentDecimals);
      for (const SurfaceSegment& segment : section_.berm) Segment(segment, segment.description);
    }
    if (section_.ditch.empty()) return;
    Line("*DITCH");
    for (const SurfaceSegment& segment : section_.ditch) Segment(segment, segment.description);
  }

  // The "L" before the name is the one that INSERT has: a name may begin with one of its own.
  void WriteCurb(const Curb& curb) {
    Line("**CURBL" + OneLine(curb.name));
    Number("CBTOP ", curb.top, kSegmentDecimals);
    Number("CBBASE", curb.base, kSegmentDecimals);
    switch (curb.slopeKind) {
      case Curb::Slope::Flat:
        Text("SLOPE ", "FLAT");
        break;
      case Curb::Slope::Match:
        Text("SLOPE ", "MATCH");
        break;
      case Curb::Slope::Number:
        Number("SLOPE ", curb.slope, kSegmentDecimals);
        break;
    }
    Number("CBTAPR", curb.taper, kSegmentDecimals);
    Number("CBHGT1", curb.height1, kSegmentDecimals);
    Number("CBHGT2", curb.height2, kSegmentDecimals);
    Number("CBDROP", curb.drop, kSegmentDecimals);
    Number("CBWIDE", curb.width, kSegmentDecimals);
    Integer("CBUNIT", curb.unit);
    Integer("CBTYPE", curb.type);
    Text("MATERL", curb.material);
    Text("INTGRL", curb.integral);
    Text("ROUND ", curb.round);
  }

  void WriteMedian(const Median& median) {
    Line("**MEDIAN");
    Text("MNAME ", median.name);
    for (const MedianGrade& grade : median.grades) {
      Text("MGRADE", FixedNumber(grade.numbers[0], kSegmentDecimals) + ',' +
                         FixedNumber(grade.numbers[1], kSegmentDecimals) + ',' +
                         std::to_string(grade.codes[0]) + ',' + std::to_string(grade.codes[1]));
    }
  }

  const RoadTemplate& section_;
  std::string text_;
};

}  // namespace

std::string TemplateText(const RoadTemplate& section) {
  return TemplateWriter(section).Write();
}

}  // namespace tarvex
