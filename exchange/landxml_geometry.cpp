#include "exchange/landxml_geometry.h"

#include <cmath>
#include <numbers>

#include "core/text/number_text.h"
#include "core/text/text.h"
#include "exchange/exchange_texts.h"
#include "roads/centerline_reader.h"

namespace tarvex {
namespace {

constexpr double kLargestGap = 0.02;
constexpr double kSameRadius = 1e-6;  // relative

class GeometryReader {
 public:
  explicit GeometryReader(LandXmlSource& source) : source_(source) {}

  std::vector<PlanElement> TakeGeometry(const pugi::xml_node& geometry, double station) {
    std::vector<PlanElement> elements;
    for (const pugi::xml_node& node : geometry.children()) {
      const std::string_view name = LocalName(node);
      if (source_.refused()) return elements;
      if (name == "Line") {
        elements.push_back(TakeLine(node));
      } else if (name == "Curve") {
        elements.push_back(TakeCurve(node));
      } else if (name == "Spiral") {
        elements.push_back(TakeSpiral(node));
      } else if (name == "IrregularLine" || name == "Chain") {
        source_.Refuse(LandXmlFault::CannotHold, node, kTextElementNotHeld, {name});
        return elements;
      } else {
        continue;
      }
      if (elements.size() >= kMostCenterlineElements / 2) {
        source_.Refuse(LandXmlFault::CannotHold, node, kTextTooManyElements);
      }
      PlanElement& element = elements.back();
      element.station = station;
      CheckAgainstNeighbours(node, elements);
      station += element.length;
    }
    return elements;
  }

 private:
  double Turn(const pugi::xml_node& node) {
    const std::string_view rotation = node.attribute("rot").value();
    if (rotation != "cw" && rotation != "ccw") {
      source_.Refuse(LandXmlFault::BadNumber, node, kTextRotationMissing, {LocalName(node)});
    }
    return rotation == "ccw" ? -1.0 : 1.0;
  }

  double Radius(const pugi::xml_node& node, const char* attribute) {
    if (EqualsIgnoringCase(node.attribute(attribute).value(), "INF")) return 0.0;
    return std::fabs(source_.NeedNumber(node, attribute));
  }

  PlanElement TakeLine(const pugi::xml_node& node) {
    PlanElement line;
    line.start = source_.NeedPoint(node, "Start");
    line.end = source_.NeedPoint(node, "End");
    line.length = source_.Number(node, "length").value_or(Distance(line.start, line.end));
    return line;
  }

  PlanElement TakeCurve(const pugi::xml_node& node) {
    PlanElement arc;
    arc.shape = PlanShape::Curve;
    arc.start = source_.NeedPoint(node, "Start");
    arc.end = source_.NeedPoint(node, "End");
    arc.turn = Turn(node);
    const auto length = source_.Number(node, "length");
    const auto radius = source_.Number(node, "radius");
    if (Child(node, "Center")) {
      arc.center = source_.NeedPoint(node, "Center");
    } else {
      arc.center = CenterOfArc(arc, source_.NeedNumber(node, "radius"), length);
    }
    arc.radiusStart = arc.radiusEnd = Distance(arc.start, arc.center);
    arc.length = length.value_or(arc.radiusStart * SweepOf(arc));
    if (radius) Compare(node, "radius", *radius, arc.radiusStart);
    if (length) Compare(node, "length", *length, arc.radiusStart * SweepOf(arc));
    return arc;
  }

  // Of the two arcs of a radius the one whose length is the stated one; without it the short one.
  static PlanPoint CenterOfArc(const PlanElement& arc, double radius,
                               const std::optional<double>& length) {
    const PlanPoint onTurn = CenterOfShortArc(arc.start, arc.end, radius, arc.turn);
    const bool longWay = length && *length > std::numbers::pi * std::fabs(radius);
    return longWay ? CenterOfShortArc(arc.start, arc.end, radius, -arc.turn) : onTurn;
  }

  void Compare(const pugi::xml_node& node, const char* what, double stated, double byPoints) {
    if (std::fabs(std::fabs(stated) - byPoints) <= kLargestGap) return;
    source_.Warn(kTextCurveDisagrees,
                 {source_.LineText(node), what, FixedNumber(byPoints, 3), FixedNumber(stated, 3)});
  }

  PlanElement TakeSpiral(const pugi::xml_node& node) {
    const std::string_view type = node.attribute("spiType").value();
    if (!type.empty() && type != "clothoid") {
      source_.Refuse(LandXmlFault::CannotHold, node, kTextTransitionNotHeld, {type});
    }
    PlanElement spiral;
    spiral.shape = PlanShape::Spiral;
    spiral.start = source_.NeedPoint(node, "Start");
    spiral.end = source_.NeedPoint(node, "End");
    spiral.turn = Turn(node);
    spiral.radiusStart = Radius(node, "radiusStart");
    spiral.radiusEnd = Radius(node, "radiusEnd");
    spiral.length = source_.NeedNumber(node, "length");
    const double difference = std::fabs(spiral.radiusStart - spiral.radiusEnd);
    if (spiral.radiusStart > 0.0 && difference <= kSameRadius * spiral.radiusStart) {
      spiral.shape = PlanShape::Curve;  // an arc that is called a spiral
      spiral.center = CenterOfShortArc(spiral.start, spiral.end, spiral.radiusStart, spiral.turn);
    } else if (difference == 0.0) {
      spiral.shape = PlanShape::Line;
    }
    return spiral;
  }

  void CheckAgainstNeighbours(const pugi::xml_node& node,
                              const std::vector<PlanElement>& elements) {
    const PlanElement& element = elements.back();
    const auto stated = source_.Number(node, "staStart");
    if (stated && std::fabs(*stated - element.station) > kStationWarning) {
      source_.Warn(kTextStartDisagrees, {source_.LineText(node), FixedNumber(element.station, 4),
                                         FixedNumber(*stated, 4)});
    }
    if (elements.size() < 2) return;
    const double gap = Distance(elements[elements.size() - 2].end, element.start);
    if (gap > kLargestGap) {
      source_.Refuse(LandXmlFault::CannotHold, node, kTextElementsApart, {FixedNumber(gap, 3)});
    }
  }

  LandXmlSource& source_;
};

}  // namespace

std::vector<PlanElement> ReadPlanGeometry(LandXmlSource& source, const pugi::xml_node& geometry,
                                          double station) {
  return GeometryReader(source).TakeGeometry(geometry, station);
}

}  // namespace tarvex
