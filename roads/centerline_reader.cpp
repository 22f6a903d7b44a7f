#include "roads/centerline_reader.h"

#include <cmath>
#include <numbers>
#include <utility>

#include "core/job/azimuth.h"
#include "core/text/number_text.h"
#include "core/text/text.h"
#include "core/units/no_value.h"
#include "roads/centerline_cleanup.h"
#include "roads/road_texts.h"
#include "roads/text_fields.h"

namespace tarvex {
namespace {

constexpr std::size_t kSignificantBytes = 254;
constexpr std::size_t kShortestLine = 3;
constexpr std::size_t kKindLength = 9;
constexpr double kSameAzimuth = 0.0001;
constexpr double kLeadIn = 0.000001;

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
  CenterlineId centerId;
  double angle = 0.0;
  double centerEasting = 0.0;
  double centerNorthing = 0.0;
};

class ChainReader {
 public:
  ChainReader(std::string_view text, bool keepTangentPoints)
      : lines_(text, kSignificantBytes), keepTangentPoints_(keepTangentPoints) {}

  Outcome<CenterlineChain, ChainFault> Read() {
    std::string_view line;
    while (!stopped_ && lines_.Next(line)) TakeRecord(line);
    if (tooLong_) {
      return Failure<ChainFault>{.code = ChainFault::TooLong,
                                 .place = static_cast<std::size_t>(lines_.number())};
    }
    if (chain_.empty()) return Failure<ChainFault>{.code = ChainFault::Nothing};
    if (chain_.size() > 1) DropTerminator();
    CleanUpChain(chain_, keepTangentPoints_, &read_.merged);
    for (CenterlineElement& element : chain_) {
      if (element.kind == ElementKind::LeadIn) element.kind = ElementKind::Vertex;
    }
    read_.elements = std::move(chain_);
    return std::move(read_);
  }

 private:
  void Note(int text, std::string_view argument = {}) {
    if (read_.notes.size() == kMostLineNotes) return;
    read_.notes.push_back({lines_.number(), text, OneLine(argument)});
  }

  // The last element goes whatever it is; a file without its terminator loses a key point.
  void DropTerminator() {
    const CenterlineElement& last = chain_.back();
    if ((last.northing != 0.0 || last.easting != 0.0) && read_.notes.size() < kMostLineNotes) {
      read_.notes.push_back({last.line, kTextTerminatorMissing, {}});
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
      tooLong_ = true;
      stopped_ = true;
      return;
    }
    CenterlineElement element;
    element.id.Assign(fields[1]);
    element.station = fields.Number(2);
    element.easting = fields.Number(4);
    element.northing = fields.Number(5);
    element.line = lines_.number();
    const std::string_view kindText = KindText(fields[3]);
    if (kindText == "STARTPT") {
      read_.startPoint = {element.id, element.station, element.northing, element.easting};
      stopped_ = true;
      return;
    }
    const auto kind = KnownKind(kindText);
    if (!kind) Note(kTextUnknownRecordKind, kindText);
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
    element.spiralParameter = fields.Number(7);
    element.angle = fields.Number(8);
  }

  // The previous element when it is not the head and lies on the new one.
  CenterlineElement* CoincidentPrevious() {
    if (chain_.size() < 3) return nullptr;
    CenterlineElement& previous = chain_[chain_.size() - 2];
    return Distance(previous, chain_.back()) < kMergeDistance ? &previous : nullptr;
  }

  void DropPrevious() {
    read_.merged.push_back({chain_[chain_.size() - 2].line, chain_.back().line});
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
    const CenterlineElement* previous = keepTangentPoints_ ? nullptr : CoincidentPrevious();
    if (previous != nullptr && previous->angle == 0.0) DropPrevious();
    if (!fields.Given(6) || IsNoValue(fields.Number(6))) return;
    double azimuth = fields.Number(6);
    if (azimuth < 0.0) azimuth += kFullCircle;
    if (azimuth > kFullCircle) azimuth -= kFullCircle;
    chain_.back().tangentAzimuth = azimuth;
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
    CenterlineElement leadIn;
    leadIn.kind = ElementKind::LeadIn;
    leadIn.record = KeyPointKind::LeadIn;
    leadIn.station = spiral.station - kLeadIn;
    leadIn.northing = spiral.northing - std::cos(azimuth) * kLeadIn;
    leadIn.easting = spiral.easting - std::sin(azimuth) * kLeadIn;
    chain_.insert(chain_.end() - 1, leadIn);
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
    if (fields.Given(1)) radiusLine_.centerId.Assign(fields[1]);
    if (fields.Given(2)) radiusLine_.angle = fields.PackedRadians(2);
    if (fields.Given(4)) radiusLine_.centerEasting = fields.Number(4);
    if (fields.Given(5)) radiusLine_.centerNorthing = fields.Number(5);
    CenterlineElement& element = chain_.back();
    element.centerId = radiusLine_.centerId;
    element.angle = radiusLine_.angle;
    element.centerEasting = radiusLine_.centerEasting;
    element.centerNorthing = radiusLine_.centerNorthing;
    element.radius = std::hypot(element.centerNorthing - element.northing,
                                element.centerEasting - element.easting);
  }

  NumberedLines lines_;
  bool keepTangentPoints_;
  bool stopped_ = false;
  bool tooLong_ = false;
  std::vector<CenterlineElement> chain_;
  RadiusLine radiusLine_;
  CenterlineChain read_;
};

}  // namespace

Outcome<CenterlineChain, ChainFault> ReadChain(std::string_view text, bool keepTangentPoints) {
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
