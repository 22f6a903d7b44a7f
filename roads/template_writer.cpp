#include "roads/template_writer.h"

#include "core/number_text.h"
#include "core/text.h"

namespace tarvex {
namespace {

constexpr int kSegmentDecimals = 5;
constexpr int kSlopeDecimals = 3;
constexpr int kBench3Decimals = 2;
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
      for (; insert != surface.inserts.end() && insert->before_segment <= i; ++insert) {
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
    const SlopeSettings& both = section_.fill_settings;
    Line("*FILL-L");
    FillOf(Side::Left);
    Integer("RATIO ", both.ratio);
    Integer("SMOOTH", both.smooth);
    Integer("PIVOT ", both.pivot);
    Integer("SERIES", both.series);
    Integer("REPEAT", both.repeat);
    Integer("TIE_EX", both.tie_existing);
    Text("EXDESC", both.existing_description);
    Line("*FILL-R");
    FillOf(Side::Right);
  }

  void FillOf(Side side) {
    const FillSide& fill = section_.FillOf(side);
    Rows("FILDSL", fill.slopes);
    if (fill.ditch != 0.0 || fill.ditch_kind != 0) {
      Text("FDITCH",
           FixedNumber(fill.ditch, kSlopeDecimals) + ',' + std::to_string(fill.ditch_kind));
    }
    if (fill.guard_vertical != 0.0) Number("GUARDV", fill.guard_vertical, kSlopeDecimals);
    if (fill.guard_horizontal != 0.0) Number("GUARDH", fill.guard_horizontal, kSlopeDecimals);
  }

  void WriteCut() {
    const CutSettings& both = section_.cut_settings;
    Line("*CUT-L");
    Rows("CUTUSL", section_.CutOf(Side::Left).slopes);
    Integer("RATIO ", both.ratio);
    RockOf(Side::Left);
    Integer("SMOOTH", both.smooth);
    Integer("SERIES", both.series);
    Integer("DEPTH ", both.depth);
    Integer("BENCH1", both.bench1);
    Number("BENCH2", both.bench2, kSlopeDecimals);
    Number("BENCH3", both.bench3, kBench3Decimals);
    Integer("PIVOT ", both.pivot);
    Integer("REPEAT", both.repeat);
    Integer("TIE_EX", both.tie_existing);
    Text("EXDESC", both.existing_description);
    Line("*CUT-R");
    Rows("CUTUSL", section_.CutOf(Side::Right).slopes);
    RockOf(Side::Right);
  }

  void RockOf(Side side) {
    Number("ROCKSL", section_.CutOf(side).rock_slope, kSlopeDecimals);
    Integer("RORDER", section_.CutOf(side).rock_order);
  }

  void WriteSuperelevation() {
    const SuperelevationSettings& super = section_.super;
    Line("*SUPER");
    Integer("LOWADJ", super.low_adjust);
    Integer("EDGESP", 0);
    Number("MAXDIF", super.largest_difference, kGradeDecimals);
    Text("LOWPT ", super.low_point);
    Text("HIGHPT", super.high_point);
    Text("LOWPT2", super.low_point2);
    Text("HIGHP2", super.high_point2);
  }

  void WriteRightOfWay() {
    const RightOfWay& row = section_.right_of_way;
    Line("*ROW");
    Integer("RTAINL", row.retain_left);
    Integer("RTAINR", row.retain_right);
    Number("ROWL  ", row.left, kSlopeDecimals);
    Number("ROWR  ", row.right, kSlopeDecimals);
  }

  void WriteSubgrade(std::string_view name, const Subgrade& subgrade) {
    Line(name);
    Text("MATERL", subgrade.material);
    Text("HPIVOT", subgrade.high_pivot);
    Integer("HSTYPE", subgrade.high_type);
    Number("HSLOPE", subgrade.high_slopes[0], kSegmentDecimals);
    Number("HSLOP2", subgrade.high_slopes[1], kSegmentDecimals);
    Number("HSLOP3", subgrade.high_slopes[2], kSegmentDecimals);
    Number("LSLOPE", subgrade.low_slopes[0], kSegmentDecimals);
    Number("LSLOP2", subgrade.low_slopes[1], kSegmentDecimals);
    Number("LSLOP3", subgrade.low_slopes[2], kSegmentDecimals);
    Text("LPIVOT", subgrade.low_pivot);
    Integer("LSTYPE", subgrade.low_type);
    Integer("SUBDIR", subgrade.direction);
    Number("WRAPHT", subgrade.wrap_height, kSegmentDecimals);
    Pair("OFFSET", subgrade.offset, subgrade.elevation, kSegmentDecimals);
    for (const SubgradeSegment& segment : subgrade.segments) {
      std::string words = segment.segment.description;
      if (segment.up && words.find("UP") == std::string::npos) words += " UP";
      if (segment.wrap && words.find("WRAP") == std::string::npos) words += " WRAP";
      Segment(segment.segment, words);
    }
  }

  void WriteBermAndDitch() {
    if (!section_.berm.empty() || section_.berm_depth != 0.0) {
      Line("*BERM");
      Number("DEPTH ", section_.berm_depth, kSegmentDecimals);
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
    switch (curb.slope_kind) {
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
      Text("MGRADE", FixedNumber(grade.first, kSegmentDecimals) + ',' +
                         FixedNumber(grade.second, kSegmentDecimals) + ',' +
                         std::to_string(grade.third) + ',' + std::to_string(grade.fourth));
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
