#include "tests/exchange/landxml_judge.h"

#include <cmath>
#include <cstdlib>
#include <numbers>
#include <pugixml.hpp>
#include <regex>

namespace tarvex {
namespace {

constexpr double kPoint = 2e-6;
constexpr double kLength = 2e-7;
constexpr double kDegree = std::numbers::pi / 180.0;
constexpr int kIntegrationSteps = 4000;

// What LandXML-1.2.xsd demands of an element: attributes with the form of their values, children.
struct SchemaRule {
  const char* element;
  std::vector<std::pair<const char*, const char*>> attributes;
  std::vector<const char*> children;
};

const std::string kDouble = "-?\\d+(\\.\\d+)?";

const std::vector<SchemaRule>& SchemaRules() {
  static const std::vector<SchemaRule> rules = {
      {"LandXML",
       {{"date", "\\d{4}-\\d\\d-\\d\\d"},
        {"time", "([01]\\d|2[0-3]):[0-5]\\d:[0-5]\\d"},
        {"version", "1\\.2"},
        {"xmlns", "http://www\\.landxml\\.org/schema/LandXML-1\\.2"}},
       {"Units", "Alignments"}},
      {"Metric",
       {{"areaUnit", "squareMeter"},
        {"linearUnit", "meter"},
        {"volumeUnit", "cubicMeter"},
        {"temperatureUnit", "celsius"},
        {"pressureUnit", "HPA"},
        {"angularUnit", "decimal degrees"},
        {"directionUnit", "decimal degrees"}},
       {}},
      {"Imperial",
       {{"areaUnit", "squareFoot"},
        {"linearUnit", "foot|USSurveyFoot"},
        {"volumeUnit", "cubicFeet"},
        {"temperatureUnit", "fahrenheit"},
        {"pressureUnit", "inHG"},
        {"angularUnit", "decimal degrees"},
        {"directionUnit", "decimal degrees"}},
       {}},
      {"Application", {{"name", ".+"}}, {}},
      {"Alignment", {{"name", ".+"}, {"length", "D"}, {"staStart", "D"}}, {"CoordGeom"}},
      {"Line", {{"length", "D"}, {"dir", "D"}, {"staStart", "D"}}, {"Start", "End"}},
      {"Curve",
       {{"rot", "cw|ccw"}, {"crvType", "arc"}, {"radius", "D"}, {"delta", "D"}, {"dirStart", "D"}},
       {"Start", "Center", "End"}},
      {"Spiral",
       {{"rot", "cw|ccw"},
        {"length", "D"},
        {"radiusStart", "INF|D"},
        {"radiusEnd", "INF|D"},
        {"spiType", "clothoid"}},
       {"Start", "PI", "End"}},
      {"StaEquation",
       {{"staAhead", "D"}, {"staInternal", "D"}, {"staIncrement", "increasing"}},
       {}},
      {"ProfAlign", {{"name", ".+"}}, {}},
      {"ParaCurve", {{"length", "D"}}, {}},
      {"UnsymParaCurve", {{"lengthIn", "D"}, {"lengthOut", "D"}}, {}},
      {"CircCurve", {{"length", "D"}, {"radius", "D"}}, {}},
  };
  return rules;
}

struct Point {
  double north = 0.0;
  double east = 0.0;
};

double Between(const Point& a, const Point& b) {
  return std::hypot(a.north - b.north, a.east - b.east);
}

double Azimuth(const Point& from, const Point& to) {
  return std::atan2(to.east - from.east, to.north - from.north);
}

class Judge {
 public:
  std::vector<std::string> Run(const std::string& text) {
    pugi::xml_document document;
    if (!document.load_string(text.c_str())) return {"not well formed"};
    HoldAgainstSchema(document.document_element());
    for (const pugi::xpath_node& found : document.select_nodes("//Alignment")) {
      JudgeAlignment(found.node());
    }
    return faults_;
  }

 private:
  void Complain(const pugi::xml_node& node, const std::string& about) {
    faults_.push_back(std::string(node.name()) + " at " + node.attribute("staStart").value() +
                      ": " + about);
  }
  void Near(const pugi::xml_node& node, const char* what, double found, double wanted,
            double tolerance) {
    if (std::fabs(found - wanted) <= tolerance) return;
    Complain(node, std::string(what) + " is " + std::to_string(found) + ", not " +
                       std::to_string(wanted));
  }

  void HoldAgainstSchema(const pugi::xml_node& node) {
    for (const SchemaRule& rule : SchemaRules()) {
      if (std::string(node.name()) != rule.element) continue;
      for (const auto& [name, form] : rule.attributes) {
        const std::string pattern =
            std::regex_replace(std::string(form), std::regex("\\bD\\b"), "(" + kDouble + ")");
        if (!std::regex_match(node.attribute(name).value(), std::regex(pattern))) {
          Complain(node, std::string("attribute ") + name + " is missing or malformed");
        }
      }
      for (const char* child : rule.children) {
        if (!node.child(child)) Complain(node, std::string(child) + " is missing");
      }
    }
    for (const pugi::xml_node& child : node.children()) HoldAgainstSchema(child);
  }

  static double Number(const pugi::xml_node& node, const char* name) {
    return node.attribute(name).as_double(std::nan(""));
  }
  static Point PointOf(const pugi::xml_node& node, const char* name) {
    char* rest = nullptr;
    const double north = std::strtod(node.child_value(name), &rest);
    return {north, std::strtod(rest, nullptr)};
  }
  static double Turn(const pugi::xml_node& node) {
    return std::string(node.attribute("rot").value()) == "cw" ? 1.0 : -1.0;
  }
  static double Curvature(const pugi::xml_node& node, const char* radius) {
    const std::string text = node.attribute(radius).value();
    return text == "INF" ? 0.0 : Turn(node) / std::strtod(text.c_str(), nullptr);
  }

  void JudgeAlignment(const pugi::xml_node& alignment) {
    double station = Number(alignment, "staStart");
    const double start = station;
    Point before;
    bool first = true;
    for (const pugi::xml_node& element : alignment.child("CoordGeom").children()) {
      Near(element, "staStart", Number(element, "staStart"), station, kLength);
      const Point from = PointOf(element, "Start");
      if (!first && Between(before, from) > kPoint) Complain(element, "starts away from the last");
      first = false;
      before = PointOf(element, "End");
      station += Number(element, "length");
      JudgeElement(element);
    }
    Near(alignment, "length", Number(alignment, "length"), station - start, 1e-6);
    double shift = 0.0;
    for (const pugi::xml_node& equation : alignment.children("StaEquation")) {
      const double internal = Number(equation, "staInternal");
      if (equation.attribute("staBack")) {
        Near(equation, "staBack", Number(equation, "staBack"), internal + shift, kLength);
      }
      shift = Number(equation, "staAhead") - internal;
    }
  }

  void JudgeElement(const pugi::xml_node& node) {
    const std::string name = node.name();
    if (name == "Line") {
      return Integrate(node, Number(node, "dir") * kDegree, 0.0, 0.0);
    }
    const double azimuth = Number(node, "dirStart") * kDegree;
    if (name == "Curve") return JudgeCurve(node, azimuth);
    if (name == "Spiral") return JudgeSpiral(node, azimuth);
    Complain(node, "no element of the plan");
  }

  void JudgeCurve(const pugi::xml_node& node, double azimuth) {
    const double radius = Number(node, "radius");
    const Point center = PointOf(node, "Center");
    Near(node, "distance of Start from Center", Between(PointOf(node, "Start"), center), radius,
         kPoint);
    Near(node, "distance of End from Center", Between(PointOf(node, "End"), center), radius,
         kPoint);
    Near(node, "delta", Number(node, "delta") * kDegree * radius, Number(node, "length"), kPoint);
    const double towards = Azimuth(PointOf(node, "Start"), center);
    Near(node, "side of Center", std::sin(towards - azimuth), Turn(node), 1e-6);
    Integrate(node, azimuth, Turn(node) / radius, Turn(node) / radius);
  }

  void JudgeSpiral(const pugi::xml_node& node, double azimuth) {
    const double length = Number(node, "length");
    const double k0 = Curvature(node, "radiusStart");
    const double k1 = Curvature(node, "radiusEnd");
    for (const double k : {k0, k1}) {
      if (k != 0.0 && std::fabs(k) < 1e-9) Complain(node, "a radius beyond 1e9 is not INF");
    }
    const double a = Number(node, "constant");
    Near(node, "constant", a, std::sqrt(length / std::fabs(k1 - k0)), 1e-6 * a);
    Near(node, "theta", Number(node, "theta") * kDegree, 0.5 * std::fabs(k0 + k1) * length, 1e-9);
    const Point pi = PointOf(node, "PI");
    const Point start = PointOf(node, "Start");
    const Point end = PointOf(node, "End");
    const double out = azimuth + 0.5 * (k0 + k1) * length;
    Near(node, "PI beside the first tangent",
         std::sin(Azimuth(start, pi) - azimuth) * Between(start, pi), 0.0, 1e-5);
    Near(node, "PI beside the second tangent", std::sin(Azimuth(pi, end) - out) * Between(pi, end),
         0.0, 1e-5);
    Integrate(node, azimuth, k0, k1);
  }

  // Simpson's rule over the direction; nothing of a clothoid's formulas.
  void Integrate(const pugi::xml_node& node, double azimuth, double k0, double k1) {
    const double length = Number(node, "length");
    const double step = length / kIntegrationSteps;
    Point at;  // from the start: small numbers keep their digits
    const auto direction = [&](double s) {
      return azimuth + k0 * s + 0.5 * (k1 - k0) * s * s / length;
    };
    for (int i = 0; i < kIntegrationSteps; ++i) {
      const double from = direction(i * step);
      const double middle = direction((i + 0.5) * step);
      const double to = direction((i + 1) * step);
      at.north += step / 6.0 * (std::cos(from) + 4.0 * std::cos(middle) + std::cos(to));
      at.east += step / 6.0 * (std::sin(from) + 4.0 * std::sin(middle) + std::sin(to));
    }
    const Point start = PointOf(node, "Start");
    const Point endPoint = PointOf(node, "End");
    const double miss = Between(at, {endPoint.north - start.north, endPoint.east - start.east});
    if (!(miss <= kPoint)) Complain(node, "misses its End by " + std::to_string(miss));
    if (node.attribute("dirEnd")) {
      const double end = Number(node, "dirEnd") * kDegree;
      Near(node, "dirEnd", std::remainder(end - direction(length), 2.0 * std::numbers::pi), 0.0,
           1e-9);
    }
  }

  std::vector<std::string> faults_;
};

}  // namespace

std::vector<std::string> FaultsOfLandXml(const std::string& text) {
  return Judge().Run(text);
}

}  // namespace tarvex
