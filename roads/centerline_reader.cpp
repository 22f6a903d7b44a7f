#include "roads/centerline_reader.h"

#include <cmath>
#include <numbers>
#include <utility>

#include "core/azimuth.h"
#include "core/no_value.h"
#include "core/number_text.h"
#include "core/text.h"
#include "roads/road_texts.h"
#include "roads/text_fields.h"

namespace tarvex {
namespace {

constexpr std::size_t kSignificantBytes = 254;
constexpr std::size_t kShortestLine = 3;
constexpr std::size_t kKindLength = 9;
constexpr double kMergeDistance = 0.002;
constexpr double kSameAzimuth = 0.0001;
constexpr double kLeadIn = 0.000001;
constexpr double kFullCircle = 2.0 * std::numbers::pi;

double Distance(const CenterlineElement& a, const CenterlineElement& b) {
  return std::hypot(a.northing - b.northing, a.easting - b.easting);
}

std::string_view KindText(std::string_view field) {
  field = WithoutOuterBlanks(field);
  return field.substr(0, std::min(field.size(), kKindLength));
}

struct KindName {
  std::string_view name;
  KeyPointKind kind;
};

constexpr KindName kKindNames[] = {
    {"L", KeyPointKind::Line},           {"PC", KeyPointKind::CurveStart},
    {"PT", KeyPointKind::CurveEnd},      {"TS", KeyPointKind::TangentSpiral},
    {"SC", KeyPointKind::SpiralCurve},   {"CS", KeyPointKind::CurveSpiral},
    {"ST", KeyPointKind::SpiralTangent}, {"SP", KeyPointKind::Spiral},
};

std::optional<KeyPointKind> KnownKind(std::string_view text) {
  for (const KindName& known : kKindNames) {
    if (known.name == text) return known.kind;
  }
  return std::nullopt;
}

// What an R line held last: a later R line without a value takes it from here.
struct RadiusLine {
  CenterlineId center_id;
  double angle = 0.0;
  double center_easting = 0.0;
  double center_northing = 0.0;
};

class ChainReader {
 public:
  ChainReader(std::string_view text, bool keepTangentPoints)
      : lines_(text, kSignificantBytes), keep_tangent_points_(keepTangentPoints) {}

  ChainReading Read() {
    std::string_view line;
    while (!stopped_ && lines_.Next(line)) TakeRecord(line);
    if (reading_.result == ReadChainResult::TooLong) return std::move(reading_);
    if (chain_.size() > 1) DropTerminator();
    CleanUpChain(chain_, keep_tangent_points_, &reading_.merged);
    for (CenterlineElement& element : chain_) {
      if (element.kind == ElementKind::LeadIn) element.kind = ElementKind::Vertex;
    }
    reading_.result = chain_.empty() ? ReadChainResult::Nothing : ReadChainResult::Read;
    reading_.elements = std::move(chain_);
    return std::move(reading_);
  }

 private:
  void Note(int text, std::string_view argument = {}) {
    if (reading_.notes.size() == kMostLineNotes) return;
    reading_.notes.push_back({lines_.number(), text, OneLine(argument)});
  }

  // The last element goes whatever it is; a file without its terminator loses a key point.
  void DropTerminator() {
    const CenterlineElement& last = chain_.back();
    if ((last.northing != 0.0 || last.easting != 0.0) && reading_.notes.size() < kMostLineNotes) {
      reading_.notes.push_back({last.line, kTextTerminatorMissing, {}});
    }
    chain_.pop_back();
  }

  // False for a line that holds no key point.
  bool HoldsKeyPoint(std::string_view line, const CommaFields& fields) {
    if (line.size() < kShortestLine) {
      if (!WithoutOuterBlanks(line).empty()) Note(kTextLineTooShort, line);
      return false;
    }
    if (line.find_first_not_of(", \t") == std::string_view::npos || fields[1] == "EQ") return false;
    if (LeadingInteger(fields[1]) < 0) {
      Note(kTextNegativeId, fields[1]);
      return false;
    }
    if (!fields.Has(4)) {
      Note(kTextFieldsMissing, line);
      return false;
    }
    return true;
  }

  void TakeRecord(std::string_view line) {
    const CommaFields fields(line);
    if (!HoldsKeyPoint(line, fields)) return;
    if (chain_.size() == kMostCenterlineElements) {
      reading_.result = ReadChainResult::TooLong;
      reading_.refused_line = lines_.number();
      stopped_ = true;
      return;
    }
    CenterlineElement element;
    element.id.Assign(fields[1]);
    element.station = fields.Number(2);
    element.easting = fields.Number(4);
    element.northing = fields.Number(5);
    element.line = lines_.number();
    const std::string_view kind_text = KindText(fields[3]);
    if (kind_text == "STARTPT") {
      reading_.start_point = {element.id, element.station, element.northing, element.easting};
      stopped_ = true;
      return;
    }
    const auto kind = KnownKind(kind_text);
    if (!kind) Note(kTextUnknownRecordKind, kind_text);
    if (!std::isfinite(element.station) || !std::isfinite(element.easting) ||
        !std::isfinite(element.northing)) {
      Note(kTextNumberOutOfRange, line);
    }
    element.record = kind.value_or(KeyPointKind::Line);
    chain_.push_back(element);
    TakeByKind(fields);
  }

  void TakeByKind(const CommaFields& fields) {
    switch (chain_.back().record) {
      case KeyPointKind::Spiral:
        TakeSpiral(fields);
        break;
      case KeyPointKind::CurveStart:
        InheritId();
        TakeRadiusLine();
        break;
      case KeyPointKind::TangentSpiral:
        chain_.back().kind = ElementKind::SpiralGroup;
        TakeTangentSpiral(fields);
        TakeRadiusLine();
        break;
      case KeyPointKind::SpiralCurve:
        chain_.back().kind = ElementKind::SpiralGroup;
        TakeRadiusLine();
        break;
      default:
        TakeVertex(fields);
        break;
    }
  }

  void TakeSpiral(const CommaFields& fields) {
    CenterlineElement& element = chain_.back();
    element.kind = ElementKind::Spiral;
    element.radius = fields.Given(6) ? fields.Number(6) : kNoValue;
    element.spiral_parameter = fields.Number(7);
    element.angle = fields.Number(8);
  }

  // The previous element when it is not the head and lies on the new one.
  CenterlineElement* CoincidentPrevious() {
    if (chain_.size() < 3) return nullptr;
    CenterlineElement& previous = chain_[chain_.size() - 2];
    return Distance(previous, chain_.back()) < kMergeDistance ? &previous : nullptr;
  }

  void DropPrevious() {
    reading_.merged.push_back({chain_[chain_.size() - 2].line, chain_.back().line});
    chain_[chain_.size() - 2] = chain_.back();
    chain_.pop_back();
  }

  void TakeVertex(const CommaFields& fields) {
    if (chain_.back().record == KeyPointKind::SpiralTangent) {
      if (fields.Given(6)) chain_.back().angle = fields.PackedRadians(6);
      return;
    }
    const CenterlineElement* previous = CoincidentPrevious();
    if (previous == nullptr || previous->angle == 0.0) return;
    chain_.back().angle = previous->angle;
    DropPrevious();
  }

  void InheritId() {
    if (chain_.size() < 2 || HasId(chain_.back().id)) return;
    chain_.back().id = chain_[chain_.size() - 2].id;
  }

  void TakeTangentSpiral(const CommaFields& fields) {
    const CenterlineElement* previous = keep_tangent_points_ ? nullptr : CoincidentPrevious();
    if (previous != nullptr && previous->angle == 0.0) DropPrevious();
    if (!fields.Given(6) || IsNoValue(fields.Number(6))) return;
    double azimuth = fields.Number(6);
    if (azimuth < 0.0) azimuth += kFullCircle;
    if (azimuth > kFullCircle) azimuth -= kFullCircle;
    chain_.back().tangent_azimuth = azimuth;
    if (!ArrivesAt(azimuth)) InsertLeadIn(azimuth);
  }

  // True when the run from the previous element already has the azimuth.
  bool ArrivesAt(double azimuth) const {
    if (chain_.size() < 2) return false;
    const CenterlineElement& from = chain_[chain_.size() - 2];
    const CenterlineElement& to = chain_.back();
    const double arriving = GridAzimuth(to.northing - from.northing, to.easting - from.easting);
    return std::fabs(std::remainder(arriving - azimuth, kFullCircle)) < kSameAzimuth;
  }

  void InsertLeadIn(double azimuth) {
    const CenterlineElement& spiral = chain_.back();
    CenterlineElement lead_in;
    lead_in.kind = ElementKind::LeadIn;
    lead_in.record = KeyPointKind::LeadIn;
    lead_in.station = spiral.station - kLeadIn;
    lead_in.northing = spiral.northing - std::cos(azimuth) * kLeadIn;
    lead_in.easting = spiral.easting - std::sin(azimuth) * kLeadIn;
    chain_.insert(chain_.end() - 1, lead_in);
  }

  // The line after a "PC", "TS" or "SC", whatever it holds.
  void TakeRadiusLine() {
    std::string_view line;
    if (!lines_.Next(line)) {
      Note(kTextRadiusLineMissing);
      stopped_ = true;
      return;
    }
    const CommaFields fields(line);
    if (KindText(fields[3]) != "R") Note(kTextNotARadiusLine, line);
    if (fields.Given(1)) radius_line_.center_id.Assign(fields[1]);
    if (fields.Given(2)) radius_line_.angle = fields.PackedRadians(2);
    if (fields.Given(4)) radius_line_.center_easting = fields.Number(4);
    if (fields.Given(5)) radius_line_.center_northing = fields.Number(5);
    CenterlineElement& element = chain_.back();
    element.center_id = radius_line_.center_id;
    element.angle = radius_line_.angle;
    element.center_easting = radius_line_.center_easting;
    element.center_northing = radius_line_.center_northing;
    element.radius = std::hypot(element.center_northing - element.northing,
                                element.center_easting - element.easting);
  }

  NumberedLines lines_;
  bool keep_tangent_points_;
  bool stopped_ = false;
  std::vector<CenterlineElement> chain_;
  RadiusLine radius_line_;
  ChainReading reading_;
};

}  // namespace

ChainReading ReadChain(std::string_view text, bool keepTangentPoints) {
  return ChainReader(text, keepTangentPoints).Read();
}

StationLimits ReadStationLimits(std::string_view text) {
  StationLimits limits;
  NumberedLines lines(text, kSignificantBytes);
  std::string_view line;
  while (lines.Next(line)) {
    const std::size_t equals = line.find('=');
    if (line.size() < kShortestLine || equals == std::string_view::npos) continue;
    const std::string_view key = line.substr(0, equals);
    const std::string_view entry = WithoutOuterBlanks(line.substr(equals + 1));
    const double station = LeadingDouble(entry);
    if (entry.empty() || IsNoValue(station)) continue;
    if (key == "START_STA") limits.start = station;
    if (key == "END_STA") limits.end = station;
  }
  return limits;
}

}  // namespace tarvex
