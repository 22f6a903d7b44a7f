#include "roads/alignment_check.h"

#include <algorithm>
#include <cmath>

#include "core/text/number_text.h"
#include "core/text/string_table.h"
#include "roads/road_texts.h"

namespace tarvex {
namespace {

constexpr double kJoinLimit = 1e-5;
constexpr double kFallingStation = 1e-6;
constexpr double kArcSecondsPerRadian = 206264.80624709636;
constexpr int kAmountDecimals = 4;

// By coordinates minus by stations; for a spiral its chord tells.
double Mismatch(const AlignmentElement& element) {
  const ElementResiduals& r = element.residuals;
  return element.shape == ElementShape::Spiral ? r.chord.value_or(0.0) : r.length.value_or(0.0);
}

// 12.3" for what rounding and old plans make, degrees for what no road has.
std::string AngleAmount(double radians) {
  constexpr double kLargestSeconds = 3600.0;
  const double seconds = radians * kArcSecondsPerRadian;
  return std::fabs(seconds) < kLargestSeconds ? FixedNumber(seconds, 1) + "\""
                                              : FixedNumber(seconds / 3600.0, 4) + " degrees";
}

std::string Amount(double value) {
  return FixedNumber(value, kAmountDecimals);
}

class Checker {
 public:
  Checker(const RoadGeometry& road, const CheckLimits& limits, const StationStyle& style)
      : road_(road),
        elements_(road.alignment.elements()),
        limits_(limits),
        style_(style),
        explained_(elements_.size()) {}

  std::vector<CheckFinding> Run() {
    WholeFile();
    for (std::size_t i = 0; i < elements_.size(); ++i) {
      if (!stationsUseless_ && i > 0) StationBetween(i - 1, i);
      if (elements_[i].shape == ElementShape::Arc) MovedPointOrCentre(i);
    }
    for (std::size_t i = 0; i < elements_.size(); ++i) Element(i);
    std::stable_sort(findings_.begin(), findings_.end(), [](const auto& a, const auto& b) {
      return a.element.value_or(0) + (a.element ? 1 : 0) <
             b.element.value_or(0) + (b.element ? 1 : 0);
    });
    return std::move(findings_);
  }

 private:
  std::string Station(std::size_t node) const {
    return road_.equations.Text(road_.chain[node].station, style_.mode, style_.decimals);
  }

  // "SC at 22+30.05"
  std::string NodeName(std::size_t node) const {
    return std::string(RecordName(road_.chain[node])) + " " + Station(node);
  }

  void Add(FindingKind kind, std::optional<std::size_t> element, std::size_t node, int text,
           std::initializer_list<std::string_view> arguments) {
    const int line = element ? road_.chain[node].line : 0;
    findings_.push_back({kind, element, line, Strings().Text(text, arguments)});
  }

  FindingKind Weight(std::size_t element) const {
    return elements_[element].sound ? FindingKind::Note : FindingKind::Refused;
  }

  bool Noted(double residual) const { return std::fabs(residual) > limits_.note; }

  void WholeFile() {
    if (road_.converted) Add(FindingKind::Note, {}, 0, kTextStationsConverted, {});
    if (road_.refusedEquation) {
      Add(FindingKind::Refused, {}, 0, kTextEquationRefused,
          {std::to_string(*road_.refusedEquation + 1)});
    }
    stationsUseless_ = std::all_of(elements_.begin(), elements_.end(),
                                   [](const auto& e) { return e.StationLength() == 0.0; });
    if (stationsUseless_) Add(FindingKind::Refused, {}, 0, kTextStationsAllSame, {});
  }

  // Two neighbours that miss by the same amount in opposite directions: the station between them.
  void StationBetween(std::size_t behind, std::size_t ahead) {
    const double a = Mismatch(elements_[behind]);
    const double b = Mismatch(elements_[ahead]);
    if (!Noted(a) || !Noted(b) || a * b > 0.0) return;
    if (std::fabs(a + b) > 0.05 * std::max(std::fabs(a), std::fabs(b))) return;
    if (Noted(elements_[ahead].residuals.endRadius.value_or(0.0)) ||
        Noted(elements_[behind].residuals.endRadius.value_or(0.0))) {
      return;
    }
    const std::size_t node = elements_[ahead].fromNode;
    explained_[behind] = explained_[ahead] = true;
    Add(Weight(ahead), ahead, node, kTextStationSuspect,
        {NodeName(node), Amount(std::fabs(b)), Strings().Text(b > 0.0 ? kTextLarge : kTextSmall)});
  }

  void MovedPointOrCentre(std::size_t i) {
    const double radius = elements_[i].residuals.endRadius.value_or(0.0);
    if (!Noted(radius)) return;
    const bool nextMisses = i + 1 < elements_.size() && Noted(Mismatch(elements_[i + 1]));
    explained_[i] = true;
    if (nextMisses) {
      explained_[i + 1] = true;
      Add(Weight(i), i, elements_[i].toNode, kTextPointSuspect,
          {NodeName(elements_[i].toNode), Amount(radius)});
    } else {
      Add(Weight(i), i, elements_[i].fromNode, kTextCentreSuspect,
          {NodeName(elements_[i].fromNode), Amount(radius)});
    }
  }

  void Element(std::size_t i) {
    const AlignmentElement& e = elements_[i];
    if (e.fault != ElementFault::None) {
      Add(FindingKind::Refused, i, e.fromNode, FaultText(e.fault), {NodeName(e.fromNode)});
      return;
    }
    if (!stationsUseless_ && !explained_[i] && Noted(Mismatch(e))) {
      Add(Weight(i), i, e.fromNode, kTextLengthMismatch,
          {NodeName(e.fromNode), NodeName(e.toNode), Amount(std::fabs(Mismatch(e))),
           Strings().Text(Mismatch(e) > 0.0 ? kTextLonger : kTextShorter)});
    }
    Angles(i);
    if (!stationsUseless_ && e.stationEnd < e.stationStart - kFallingStation) {
      Add(FindingKind::Note, i, e.toNode, kTextStationFalls, {NodeName(e.toNode)});
    }
  }

  void Angles(std::size_t i) {
    const AlignmentElement& e = elements_[i];
    const ElementResiduals& r = e.residuals;
    const double angleLimit = std::max(limits_.note * std::fabs(e.curvatureStart), 1e-8);
    if (r.angle && std::fabs(*r.angle) > angleLimit) {
      Add(FindingKind::Note, i, e.fromNode, kTextAngleMismatch,
          {NodeName(e.fromNode), AngleAmount(*r.angle)});
    }
    if (r.turnAgainstSign) {
      Add(FindingKind::Note, i, e.fromNode, kTextTurnAgainstSign,
          {NodeName(e.fromNode), Strings().Text(e.curvatureStart > 0.0 ? kTextRight : kTextLeft)});
    }
    if (r.azimuthField && std::fabs(*r.azimuthField) > limits_.note / e.length) {
      const std::size_t node = e.curvatureStart == 0.0 ? e.fromNode : e.toNode;
      Add(FindingKind::Note, i, node, kTextAzimuthFieldSuspect,
          {NodeName(node), AngleAmount(*r.azimuthField)});
    }
    if (r.join && std::fabs(*r.join) > kJoinLimit) {
      const bool broken = std::fabs(*r.join) > kBrokenJoin;
      Add(broken ? FindingKind::Refused : FindingKind::Note, i, e.fromNode, kTextJoinBroken,
          {NodeName(e.fromNode), AngleAmount(*r.join)});
    }
  }

  static int FaultText(ElementFault fault) {
    switch (fault) {
      case ElementFault::NoCentre:
        return kTextNoCentre;
      case ElementFault::BrokenGroup:
        return kTextBrokenGroup;
      case ElementFault::SpiralTooTight:
        return kTextSpiralTooTight;
      default:
        return kTextSpiralUnknown;
    }
  }

  const RoadGeometry& road_;
  const std::vector<AlignmentElement>& elements_;
  CheckLimits limits_;
  StationStyle style_;
  std::vector<bool> explained_;
  bool stationsUseless_ = false;
  std::vector<CheckFinding> findings_;
};

}  // namespace

std::vector<CheckFinding> CheckAlignment(const RoadGeometry& road, const CheckLimits& limits,
                                         const StationStyle& style) {
  return Checker(road, limits, style).Run();
}

LargestMismatch FindLargestMismatch(const Alignment& alignment) {
  LargestMismatch largest;
  for (std::size_t i = 0; i < alignment.elements().size(); ++i) {
    const AlignmentElement& e = alignment.elements()[i];
    const double amount =
        std::max(std::fabs(Mismatch(e)), std::fabs(e.residuals.endRadius.value_or(0.0)));
    if (amount > largest.amount) largest = {amount, i};
  }
  return largest;
}

std::string_view RecordName(const CenterlineElement& node) {
  switch (node.record) {
    case KeyPointKind::CurveStart:
      return "PC";
    case KeyPointKind::CurveEnd:
      return "PT";
    case KeyPointKind::TangentSpiral:
      return "TS";
    case KeyPointKind::SpiralCurve:
      return "SC";
    case KeyPointKind::CurveSpiral:
      return "CS";
    case KeyPointKind::SpiralTangent:
      return "ST";
    case KeyPointKind::Spiral:
      return "SP";
    default:
      return "L";
  }
}

}  // namespace tarvex
