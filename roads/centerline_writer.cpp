#include "roads/centerline_writer.h"

#include <algorithm>
#include <cmath>

#include "core/text/number_text.h"
#include "core/text/text.h"
#include "core/units/angle.h"
#include "core/units/units.h"
#include "roads/centerline_cleanup.h"
#include "roads/centerline_reader.h"

namespace tarvex {
namespace {

constexpr int kEquationDecimals = 5;
constexpr int kStartPointDecimals = 8;
constexpr int kTangentAzimuthDecimals = 8;
constexpr int kSpiralParameterDecimals = 9;
constexpr int kSpiralDirectionDecimals = 1;
constexpr int kSpiralRadiusDecimals = 6;
constexpr int kAngleDecimals = 12;

// An id as a field: "0" for none, and never a comma or a line end inside.
std::string IdField(const CenterlineId& id, bool written) {
  if (!written || !HasId(id)) return "0";
  std::string field = OneLine(id.view());
  std::replace(field.begin(), field.end(), ',', '_');
  return field;
}

class RecordWriter {
 public:
  explicit RecordWriter(const CenterlineFormat& format) : format_(format) {}

  void KeyPoint(const CenterlineElement& element, std::string_view kind) {
    text_ += IdField(element.id, format_.pointIds);
    Number(element.station, format_.stationDecimals);
    text_ += ',';
    text_ += kind;
    const int decimals = Decimals(kind);
    Number(element.easting, decimals);
    Number(element.northing, decimals);
  }
  void Number(double value, int decimals) {
    text_ += ',';
    AppendFixed(text_, value, decimals);
  }
  void PackedAngle(double radians) {
    text_ += ',';
    text_ += PackedField(radians * kDegreesPerRadian, kAngleDecimals);
  }
  void EndRecord() { text_ += '\n'; }

  void RadiusLine(const CenterlineElement& curve) {
    text_ += IdField(curve.centerId, format_.pointIds);
    PackedAngle(curve.angle);
    text_ += ",R";
    Number(curve.centerEasting, format_.coordinateDecimals);
    Number(curve.centerNorthing, format_.coordinateDecimals);
    EndRecord();
  }

  std::string Take() { return std::move(text_); }

 private:
  int Decimals(std::string_view kind) const {
    if (kind == "L" || kind == "PT") return format_.vertexDecimals;
    return kind == "PC" ? format_.curveStartDecimals : format_.coordinateDecimals;
  }

  CenterlineFormat format_;
  std::string text_;
};

std::string_view KindName(const CenterlineElement& element) {
  switch (element.record) {
    case KeyPointKind::CurveStart:
      return "PC";
    case KeyPointKind::TangentSpiral:
      return "TS";
    case KeyPointKind::SpiralCurve:
      return "SC";
    case KeyPointKind::SpiralTangent:
      return "ST";
    case KeyPointKind::Spiral:
      return "SP";
    case KeyPointKind::CurveEnd:
      return element.angle != 0.0 ? "ST" : "PT";
    case KeyPointKind::CurveSpiral:
      return element.angle != 0.0 ? "ST" : "CS";
    default:
      return element.angle != 0.0 ? "ST" : "L";
  }
}

// Key points that coincide are left in a chain where a third one was merged between them. So that
// they stay when they are read again, a record goes between them that the reader takes away: an "L"
// under a "TS", or under a "PC" so that this has its id from there; an "ST" behind a key point with
// an angle, whose place a vertex would take.
class StandIns {
 public:
  StandIns(std::span<const CenterlineElement> chain, bool pointIds)
      : chain_(chain), pointIds_(pointIds), walked_(chain.size()) {
    for (std::size_t i = 0; i < chain.size(); i += WalkStep(chain[i])) walked_[i] = true;
  }

  void WriteBefore(std::size_t i, RecordWriter& writer) const {
    if (i == 0 || chain_[i].record == KeyPointKind::LeadIn) return;
    if (chain_[i].record == KeyPointKind::TangentSpiral) {
      if (ReplacesPrevious(i)) Write(writer, "L", chain_[i]);
    } else if (chain_[i].kind == ElementKind::Vertex) {
      WriteBeforeVertex(i, writer);
    }
  }

 private:
  static void Write(RecordWriter& writer, std::string_view kind, const CenterlineElement& place) {
    CenterlineElement record;
    record.station = place.station;
    record.easting = place.easting;
    record.northing = place.northing;
    writer.KeyPoint(record, kind);
    writer.EndRecord();
  }

  // True for a "TS" that would take the place of what is before it and its lead-in; never the head.
  bool ReplacesPrevious(std::size_t i) const {
    if (chain_[i - 1].record == KeyPointKind::LeadIn) --i;
    return i > 1 && chain_[i - 1].angle == 0.0 &&
           Distance(chain_[i - 1], chain_[i]) < kMergeDistance;
  }

  void WriteBeforeVertex(std::size_t i, RecordWriter& writer) const {
    if (!walked_[i]) return;  // what goes before it would stay
    const CenterlineElement& previous = chain_[i - 1];
    const CenterlineElement& here = chain_[i];
    const double distance = Distance(previous, here);
    // What the walk removes behind it, and what takes its place already while reading.
    const bool keepsAngle = walked_[i - 1] && previous.kind == ElementKind::Vertex &&
                            previous.radius == 0.0 && previous.angle != 0.0;
    const bool giveWay = i > 1 && previous.angle != 0.0 && distance < kMergeDistance;
    const bool isCurve = here.record == KeyPointKind::CurveStart;
    const bool mayMerge = !isCurve && KindName(here) != "ST";
    const bool inheritsId = pointIds_ && isCurve && !HasId(here.id) && HasId(previous.id);
    if ((keepsAngle && distance < kSamePlace) || (giveWay && mayMerge) || (giveWay && inheritsId)) {
      Write(writer, "ST", keepsAngle ? previous : here);
    } else if (inheritsId) {
      Write(writer, "L", here);
    }
  }

  std::span<const CenterlineElement> chain_;
  bool pointIds_;
  std::vector<bool> walked_;
};

void WriteElement(RecordWriter& writer, const CenterlineElement& element) {
  if (element.record == KeyPointKind::LeadIn) return;
  const std::string_view kind = KindName(element);
  writer.KeyPoint(element, kind);
  if (kind == "ST" && element.angle != 0.0) writer.PackedAngle(element.angle);
  if (element.record == KeyPointKind::TangentSpiral && element.tangentAzimuth) {
    writer.Number(*element.tangentAzimuth, kTangentAzimuthDecimals);
  }
  if (element.record == KeyPointKind::Spiral) {
    writer.Number(element.radius, kSpiralRadiusDecimals);
    writer.Number(element.spiralParameter, kSpiralParameterDecimals);
    writer.Number(element.angle, kSpiralDirectionDecimals);
  }
  writer.EndRecord();
  if (kind == "PC" || kind == "TS" || kind == "SC") writer.RadiusLine(element);
}

// With its id in every form: the record has one form without and one with it.
std::string StartPointRecord(const CenterlineStartPoint& start) {
  CenterlineElement element;
  element.id = start.id;
  element.station = start.station;
  element.easting = start.easting;
  element.northing = start.northing;
  RecordWriter writer({.stationDecimals = kEquationDecimals,
                       .coordinateDecimals = kStartPointDecimals,
                       .pointIds = true});
  writer.KeyPoint(element, "STARTPT");
  writer.EndRecord();
  return writer.Take();
}

}  // namespace

std::string CenterlineRecords(std::span<const CenterlineElement> chain,
                              const CenterlineFormat& format) {
  RecordWriter writer(format);
  for (const CenterlineElement& element : chain) WriteElement(writer, element);
  return writer.Take();
}

std::string CenterlineText(const Centerline& centerline, std::span<const StationEquation> equations,
                           const CenterlineFormat& format) {
  const std::vector<CenterlineElement>& chain = centerline.elements;
  RecordWriter writer(format);
  const StandIns standIns(chain, format.pointIds);
  for (std::size_t i = 0; i < chain.size(); ++i) {
    standIns.WriteBefore(i, writer);
    WriteElement(writer, chain[i]);
  }
  std::string text = writer.Take();
  text += kCenterlineTerminator;
  if (centerline.startPoint) {
    text += StartPointRecord(*centerline.startPoint);
    text += kCenterlineTerminator;
  }
  for (const StationEquation& equation : equations) {
    text += "EQ,";
    AppendFixed(text, equation.back, kEquationDecimals);
    text += ',';
    AppendFixed(text, equation.ahead, kEquationDecimals);
    text += '\n';
  }
  return text;
}

std::string WithStations(std::string_view text, std::span<const LineStation> stations,
                         int decimals) {
  std::string changed;
  auto next = stations.begin();
  for (int number = 1; !text.empty(); ++number) {
    const std::size_t end = std::min(text.find('\n'), text.size() - 1) + 1;
    const std::string_view line = text.substr(0, end);
    text.remove_prefix(end);
    const std::size_t first = line.find(',');
    const std::size_t second = first == std::string_view::npos ? first : line.find(',', first + 1);
    const bool named = next != stations.end() && next->line == number;
    if (!named || second == std::string_view::npos) {
      changed += line;
    } else {
      changed += line.substr(0, first + 1);
      AppendFixed(changed, next->station, decimals);
      changed += line.substr(second);
    }
    if (named) ++next;
  }
  return changed;
}

bool IsWritable(const Centerline& centerline, std::span<const StationEquation> equations) {
  const auto finite = [](const CenterlineElement& e) {
    return std::isfinite(e.northing) && std::isfinite(e.easting) && std::isfinite(e.station) &&
           std::isfinite(e.angle) && std::isfinite(e.radius) && std::isfinite(e.centerNorthing) &&
           std::isfinite(e.centerEasting) && std::isfinite(e.spiralParameter) &&
           std::isfinite(e.tangentAzimuth.value_or(0.0));
  };
  const auto& start = centerline.startPoint;
  if (start && !(std::isfinite(start->station) && std::isfinite(start->northing) &&
                 std::isfinite(start->easting))) {
    return false;
  }
  return std::all_of(centerline.elements.begin(), centerline.elements.end(), finite) &&
         std::all_of(equations.begin(), equations.end(), [](const StationEquation& e) {
           return std::isfinite(e.back) && std::isfinite(e.ahead);
         });
}

}  // namespace tarvex
