#include <cmath>
#include <numbers>
#include <pugixml.hpp>

#include "core/text/number_text.h"
#include "core/units/units.h"
#include "exchange/landxml.h"

namespace tarvex {
namespace {

constexpr int kCoordinateDecimals = 8;
constexpr int kLengthDecimals = 8;
constexpr int kAngleDecimals = 10;
constexpr double kLeastLength = 0.0005;

class LandXmlWriter {
 public:
  explicit LandXmlWriter(const LandXmlExport& what)
      : what_(what), alignment_(what.road->alignment) {}

  std::string Write() {
    pugi::xml_node declaration = document_.append_child(pugi::node_declaration);
    declaration.append_attribute("version") = "1.0";
    declaration.append_attribute("encoding") = "UTF-8";
    pugi::xml_node root = document_.append_child("LandXML");
    root.append_attribute("xmlns") = "http://www.landxml.org/schema/LandXML-1.2";
    root.append_attribute("version") = "1.2";
    AppendStamp(root);
    AppendUnits(root);
    if (!what_.program.empty()) {
      root.append_child("Application").append_attribute("name") = what_.program.c_str();
    }
    AppendAlignment(root.append_child("Alignments"));
    Collector collector;
    document_.save(collector, "  ", pugi::format_default, pugi::encoding_utf8);
    return std::move(collector.text);
  }

 private:
  struct Collector final : pugi::xml_writer {
    std::string text;
    void write(const void* data, std::size_t size) override {
      text.append(static_cast<const char*>(data), size);
    }
  };

  static void Set(pugi::xml_node node, const char* name, double value, int decimals) {
    node.append_attribute(name) = FixedNumber(value, decimals).c_str();
  }
  static void SetLength(pugi::xml_node node, const char* name, double value) {
    Set(node, name, value, kLengthDecimals);
  }
  static void SetAngle(pugi::xml_node node, const char* name, double radians) {
    Set(node, name, radians * kDegreesPerRadian, kAngleDecimals);
  }
  static void AppendPair(pugi::xml_node node, const char* name, double first, double second) {
    const std::string text =
        FixedNumber(first, kCoordinateDecimals) + " " + FixedNumber(second, kCoordinateDecimals);
    node.append_child(name).append_child(pugi::node_pcdata).set_value(text.c_str());
  }
  static void AppendPoint(pugi::xml_node node, const char* name, const PlanPoint& at) {
    AppendPair(node, name, at.northing, at.easting);
  }

  // The schema demands both.
  void AppendStamp(pugi::xml_node root) const {
    const LocalTime& at = what_.written;
    const auto parts = [](char separator, std::initializer_list<int> numbers) {
      std::string text;
      for (const int number : numbers) {
        if (!text.empty()) text += separator;
        AppendInteger(text, number, 2);
      }
      return text;
    };
    const std::string date = parts('-', {at.year, at.month, at.day});
    const std::string time = parts(':', {at.hour, at.minute, at.second});
    root.append_attribute("date") = date.c_str();
    root.append_attribute("time") = time.c_str();
  }

  void AppendUnits(pugi::xml_node root) const {
    const bool metric = what_.unit == DistanceUnit::Metres;
    pugi::xml_node units = root.append_child("Units").append_child(metric ? "Metric" : "Imperial");
    units.append_attribute("areaUnit") = metric ? "squareMeter" : "squareFoot";
    units.append_attribute("linearUnit") = metric ? "meter"
                                           : what_.unit == DistanceUnit::UsSurveyFeet
                                               ? "USSurveyFoot"
                                               : "foot";
    units.append_attribute("volumeUnit") = metric ? "cubicMeter" : "cubicFeet";
    units.append_attribute("temperatureUnit") = metric ? "celsius" : "fahrenheit";
    units.append_attribute("pressureUnit") = metric ? "HPA" : "inHG";
    units.append_attribute("angularUnit") = "decimal degrees";
    units.append_attribute("directionUnit") = "decimal degrees";
  }

  PlanPoint NodeAt(std::size_t node) const {
    const CenterlineElement& element = what_.road->chain[node];
    return {element.northing, element.easting};
  }

  pugi::xml_node Begin(pugi::xml_node geometry, const char* name, const AlignmentElement& element) {
    pugi::xml_node node = geometry.append_child(name);
    SetLength(node, "staStart", station_);
    SetLength(node, "length", element.length);
    station_ += element.length;
    return node;
  }

  static void SetDirections(pugi::xml_node node, const AlignmentElement& element) {
    SetAngle(node, "dirStart", element.azimuthStart);
    SetAngle(node, "dirEnd", element.azimuthEnd);
  }

  void AppendElement(pugi::xml_node geometry, const AlignmentElement& element) {
    const PlanPoint start = NodeAt(element.fromNode);
    const PlanPoint end = NodeAt(element.toNode);
    if (element.shape == ElementShape::Tangent) {
      pugi::xml_node line = Begin(geometry, "Line", element);
      SetAngle(line, "dir", element.azimuthStart);
      AppendPoint(line, "Start", start);
      AppendPoint(line, "End", end);
      return;
    }
    const bool arc = element.shape == ElementShape::Arc;
    pugi::xml_node node = Begin(geometry, arc ? "Curve" : "Spiral", element);
    const double turning = element.curvatureStart + element.curvatureEnd;
    node.append_attribute("rot") = turning > 0.0 ? "cw" : "ccw";
    if (arc) {
      AppendArc(node, element, start, end);
    } else {
      AppendSpiral(node, element, start, end);
    }
  }

  static void AppendArc(pugi::xml_node node, const AlignmentElement& element,
                        const PlanPoint& start, const PlanPoint& end) {
    node.append_attribute("crvType") = "arc";
    const double radius = 1.0 / std::fabs(element.curvatureStart);
    const double across =
        element.azimuthStart + std::copysign(0.5 * std::numbers::pi, element.curvatureStart);
    SetLength(node, "radius", radius);
    SetAngle(node, "delta", element.length / radius);
    SetDirections(node, element);
    AppendPoint(node, "Start", start);
    AppendPoint(
        node, "Center",
        {start.northing + radius * std::cos(across), start.easting + radius * std::sin(across)});
    AppendPoint(node, "End", end);
  }

  static void SetRadius(pugi::xml_node node, const char* name, double curvature) {
    if (curvature == 0.0) {
      node.append_attribute(name) = "INF";
    } else {
      SetLength(node, name, 1.0 / std::fabs(curvature));
    }
  }

  void AppendSpiral(pugi::xml_node node, const AlignmentElement& element, const PlanPoint& start,
                    const PlanPoint& end) {
    SetRadius(node, "radiusStart", element.curvatureStart);
    SetRadius(node, "radiusEnd", element.curvatureEnd);
    node.append_attribute("spiType") = "clothoid";
    SetLength(node, "constant", element.SpiralParameter());
    const double theta =
        0.5 * std::fabs(element.curvatureStart + element.curvatureEnd) * element.length;
    SetAngle(node, "theta", theta);
    SetDirections(node, element);
    AppendPoint(node, "Start", start);
    // Where the tangents at both ends meet.
    const double dn = end.northing - start.northing;
    const double de = end.easting - start.easting;
    const double x = dn * std::cos(element.azimuthStart) + de * std::sin(element.azimuthStart);
    const double y =
        std::fabs(de * std::cos(element.azimuthStart) - dn * std::sin(element.azimuthStart));
    const double along = theta > 0.0 ? x - y / std::tan(theta) : 0.5 * x;
    AppendPoint(node, "PI",
                {start.northing + along * std::cos(element.azimuthStart),
                 start.easting + along * std::sin(element.azimuthStart)});
    AppendPoint(node, "End", end);
  }

  void AppendAlignment(pugi::xml_node alignments) {
    pugi::xml_node node = alignments.append_child("Alignment");
    node.append_attribute("name") = what_.name.c_str();
    SetLength(node, "length", alignment_.length());
    SetLength(node, "staStart", alignment_.startStation());
    station_ = alignment_.startStation();
    pugi::xml_node geometry = node.append_child("CoordGeom");
    for (const AlignmentElement& element : alignment_.elements()) {
      if (element.length >= kLeastLength) AppendElement(geometry, element);
    }
    AppendEquations(node);
    if (what_.profile != nullptr) AppendProfile(node.append_child("Profile"));
  }

  void AppendEquations(pugi::xml_node alignment) const {
    const StationEquations& equations = what_.road->equations;
    for (std::size_t i = 0; i < equations.equations().size(); ++i) {
      pugi::xml_node node = alignment.append_child("StaEquation");
      SetLength(node, "staBack", equations.equations()[i].back);
      SetLength(node, "staAhead", equations.equations()[i].ahead);
      SetLength(node, "staInternal", equations.At(i));
      node.append_attribute("staIncrement") = "increasing";
    }
  }

  void AppendProfile(pugi::xml_node profile) const {
    pugi::xml_node line = profile.append_child("ProfAlign");
    line.append_attribute("name") = what_.name.c_str();
    for (std::size_t i = 0; i < what_.profile->points().size(); ++i) {
      AppendVerticalPoint(line, i);
    }
  }

  void AppendVerticalPoint(pugi::xml_node line, std::size_t index) const {
    const VerticalPoint& point = what_.profile->points()[index];
    const bool circle = point.curve == VerticalCurveKind::Circle;
    const bool parabola = point.curve == VerticalCurveKind::Parabola;
    const bool symmetric = point.lengthIn == point.lengthOut;
    AppendPair(line,
               circle                   ? "CircCurve"
               : parabola && !symmetric ? "UnsymParaCurve"
               : parabola               ? "ParaCurve"
                                        : "PVI",
               point.station, point.elevation);
    pugi::xml_node node = line.last_child();
    if (circle) {
      const Profile::CurveSpan span = what_.profile->SpanOf(index);
      const auto in = what_.profile->At(span.from);
      const auto out = what_.profile->At(span.to);
      const double turn = in && out ? std::fabs(std::atan(out->grade) - std::atan(in->grade)) : 0.0;
      SetLength(node, "length", point.radius * turn);
      SetLength(node, "radius", point.radius);
    } else if (parabola && symmetric) {
      SetLength(node, "length", point.lengthIn + point.lengthOut);
    } else if (parabola) {
      SetLength(node, "lengthIn", point.lengthIn);
      SetLength(node, "lengthOut", point.lengthOut);
    }
  }

  const LandXmlExport& what_;
  const Alignment& alignment_;
  pugi::xml_document document_;
  double station_ = 0.0;
};

}  // namespace

Outcome<std::string, LandXmlRefusal> WriteLandXml(const LandXmlExport& what) {
  const auto& elements = what.road->alignment.elements();
  for (std::size_t i = 0; i < elements.size(); ++i) {
    if (elements[i].fault != ElementFault::None) {
      return Failure<LandXmlRefusal>{.code = LandXmlRefusal::DrawnAsChord, .place = i};
    }
    // One rot for a spiral: it cannot turn to both sides.
    if (elements[i].curvatureStart * elements[i].curvatureEnd < 0.0) {
      return Failure<LandXmlRefusal>{.code = LandXmlRefusal::TurnsToBothSides, .place = i};
    }
  }
  return LandXmlWriter(what).Write();
}

}  // namespace tarvex
