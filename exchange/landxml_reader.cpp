#include <algorithm>
#include <cmath>
#include <map>
#include <pugixml.hpp>

#include "core/number_text.h"
#include "core/text.h"
#include "exchange/landxml.h"
#include "exchange/plan_elements.h"
#include "roads/centerline_reader.h"
#include "roads/centerline_writer.h"

namespace tarvex {
namespace {

constexpr double kStationWarning = 0.001;
constexpr double kLargestGap = 0.02;
constexpr double kSameRadius = 1e-6;  // relative

// The first problem is kept; every step asks whether there is one.
struct Problem {
  LandXmlResult result = LandXmlResult::Read;
  std::string text;

  explicit operator bool() const { return result != LandXmlResult::Read; }
};

// Element names with any namespace prefix taken off.
std::string_view LocalName(const pugi::xml_node& node) {
  const std::string_view name = node.name();
  return name.substr(name.find(':') + 1);
}

pugi::xml_node Child(const pugi::xml_node& parent, std::string_view name) {
  for (const pugi::xml_node& node : parent.children()) {
    if (LocalName(node) == name) return node;
  }
  return {};
}

class LandXmlReader {
 public:
  LandXmlReader(std::string_view text, std::optional<std::string_view> only)
      : text_(text), only_(only) {}

  LandXmlReading Read() {
    pugi::xml_document document;
    const pugi::xml_parse_result parsed = document.load_buffer(text_.data(), text_.size());
    if (!parsed) {
      Refuse(LandXmlResult::NotXml, parsed.offset,
             std::string("the XML cannot be read: ") + parsed.description());
    } else {
      TakeDocument(document);
    }
    reading_.result = problem_ ? problem_.result : LandXmlResult::Read;
    reading_.problem = problem_.text;
    return std::move(reading_);
  }

 private:
  int LineOf(std::ptrdiff_t offset) const {
    const auto end =
        std::min<std::size_t>(offset < 0 ? 0 : static_cast<std::size_t>(offset), text_.size());
    return 1 + static_cast<int>(
                   std::count(text_.begin(), text_.begin() + static_cast<long>(end), '\n'));
  }

  void Refuse(LandXmlResult result, std::ptrdiff_t offset, const std::string& sentence) {
    if (problem_) return;
    problem_ = {result, "Line " + std::to_string(LineOf(offset)) + ": " + sentence + "."};
  }
  void Refuse(LandXmlResult result, const pugi::xml_node& node, const std::string& sentence) {
    Refuse(result, node.offset_debug(), sentence);
  }
  void Warn(const std::string& sentence) {
    if (reading_.warnings.size() < kMostLineNotes) reading_.warnings.push_back(sentence);
  }

  void TakeDocument(const pugi::xml_document& document) {
    const pugi::xml_node root = Child(document, "LandXML");
    if (!root)
      return Refuse(LandXmlResult::NotLandXml, std::ptrdiff_t{0}, "this is no LandXML document");
    TakeUnits(root);
    for (const pugi::xml_node& points : root.children()) {
      if (LocalName(points) == "CgPoints") TakeCgPoints(points);
    }
    for (const pugi::xml_node& group : root.children()) {
      if (LocalName(group) != "Alignments") continue;
      for (const pugi::xml_node& alignment : group.children()) {
        if (problem_) return;
        if (LocalName(alignment) == "Alignment") TakeAlignment(alignment);
      }
    }
    if (!problem_ && reading_.alignments.empty()) {
      Refuse(LandXmlResult::NoAlignment, root,
             only_ ? "no alignment is called \"" + std::string(*only_) + "\""
                   : "the document holds no alignment with geometry");
    }
  }

  void TakeUnits(const pugi::xml_node& root) {
    const pugi::xml_node units = Child(root, "Units");
    pugi::xml_node system = Child(units, "Metric");
    if (!system) system = Child(units, "Imperial");
    if (!system) return Warn("The document names no unit; metres were assumed.");
    const std::string_view name = system.attribute("linearUnit").value();
    if (name == "meter") {
      reading_.unit = DistanceUnit::Metres;
    } else if (name == "USSurveyFoot") {
      reading_.unit = DistanceUnit::UsSurveyFeet;
    } else if (name == "foot") {
      reading_.unit = DistanceUnit::InternationalFeet;
      Warn("The unit is \"foot\", the international foot; some programs write it for survey feet.");
    } else {
      Refuse(LandXmlResult::CannotHold, system,
             "a job cannot have the unit \"" + std::string(name) + "\"");
    }
  }

  void TakeCgPoints(const pugi::xml_node& points) {
    for (const pugi::xml_node& point : points.children()) {
      if (LocalName(point) != "CgPoint") continue;
      const std::string_view name = point.attribute("name").value();
      if (!name.empty()) cg_points_[std::string(name)] = point.child_value();
    }
  }

  std::optional<double> Number(const pugi::xml_node& node, const char* attribute) {
    const pugi::xml_attribute found = node.attribute(attribute);
    return found ? ParseNumber(found.value()) : std::nullopt;
  }

  double NeedNumber(const pugi::xml_node& node, const char* attribute) {
    const auto number = Number(node, attribute);
    if (!number) {
      Refuse(LandXmlResult::BadNumber, node,
             std::string(LocalName(node)) + " has no usable \"" + attribute + "\"");
    }
    return number.value_or(0.0);
  }

  // Two numbers, blank separated; further ones are elevations.
  std::optional<PlanPoint> Pair(std::string_view text) {
    text = WithoutOuterBlanks(text);
    const std::size_t gap = text.find_first_of(" \t\r\n");
    if (gap == std::string_view::npos) return std::nullopt;
    const std::string_view rest = WithoutLeadingBlanks(text.substr(gap));
    const auto first = ParseNumber(text.substr(0, gap));
    const auto second = ParseNumber(rest.substr(0, rest.find_first_of(" \t\r\n")));
    if (!first || !second) return std::nullopt;
    return PlanPoint{*first, *second};
  }

  PlanPoint NeedPoint(const pugi::xml_node& element, std::string_view name) {
    const pugi::xml_node node = Child(element, name);
    std::string_view text = node.child_value();
    const std::string_view reference = node.attribute("pntRef").value();
    if (!reference.empty()) {
      const auto found = cg_points_.find(std::string(reference));
      if (found != cg_points_.end()) text = found->second;
    }
    const auto point = Pair(text);
    if (!point) {
      Refuse(LandXmlResult::BadNumber, element,
             std::string(LocalName(element)) + " has no usable " + std::string(name) + " point");
    }
    return point.value_or(PlanPoint{});
  }

  double Turn(const pugi::xml_node& node) {
    const std::string_view rotation = node.attribute("rot").value();
    if (rotation != "cw" && rotation != "ccw") {
      Refuse(LandXmlResult::BadNumber, node,
             std::string(LocalName(node)) + R"( lacks rot="cw" or "ccw")");
    }
    return rotation == "ccw" ? -1.0 : 1.0;
  }

  double Radius(const pugi::xml_node& node, const char* attribute) {
    if (EqualsIgnoringCase(node.attribute(attribute).value(), "INF")) return 0.0;
    return std::fabs(NeedNumber(node, attribute));
  }

  PlanElement TakeLine(const pugi::xml_node& node) {
    PlanElement line;
    line.start = NeedPoint(node, "Start");
    line.end = NeedPoint(node, "End");
    line.length = Number(node, "length").value_or(DistanceBetween(line.start, line.end));
    return line;
  }

  PlanElement TakeCurve(const pugi::xml_node& node) {
    PlanElement arc;
    arc.shape = PlanShape::Curve;
    arc.start = NeedPoint(node, "Start");
    arc.end = NeedPoint(node, "End");
    arc.turn = Turn(node);
    if (Child(node, "Center")) {
      arc.center = NeedPoint(node, "Center");
    } else {
      arc.center = CenterOfShortArc(arc.start, arc.end, NeedNumber(node, "radius"), arc.turn);
    }
    arc.radius_start = arc.radius_end = DistanceBetween(arc.start, arc.center);
    arc.length = Number(node, "length").value_or(arc.radius_start * SweepOf(arc));
    return arc;
  }

  PlanElement TakeSpiral(const pugi::xml_node& node) {
    const std::string_view type = node.attribute("spiType").value();
    if (!type.empty() && type != "clothoid") {
      Refuse(LandXmlResult::CannotHold, node,
             "a centerline holds no transition curve of the type \"" + std::string(type) + "\"");
    }
    PlanElement spiral;
    spiral.shape = PlanShape::Spiral;
    spiral.start = NeedPoint(node, "Start");
    spiral.end = NeedPoint(node, "End");
    spiral.turn = Turn(node);
    spiral.radius_start = Radius(node, "radiusStart");
    spiral.radius_end = Radius(node, "radiusEnd");
    spiral.length = NeedNumber(node, "length");
    const double difference = std::fabs(spiral.radius_start - spiral.radius_end);
    if (spiral.radius_start > 0.0 && difference <= kSameRadius * spiral.radius_start) {
      spiral.shape = PlanShape::Curve;  // an arc that is called a spiral
      spiral.center = CenterOfShortArc(spiral.start, spiral.end, spiral.radius_start, spiral.turn);
    } else if (difference == 0.0) {
      spiral.shape = PlanShape::Line;
    }
    return spiral;
  }

  std::vector<PlanElement> TakeGeometry(const pugi::xml_node& geometry, double station) {
    std::vector<PlanElement> elements;
    for (const pugi::xml_node& node : geometry.children()) {
      const std::string_view name = LocalName(node);
      if (problem_) return elements;
      if (name == "Line") {
        elements.push_back(TakeLine(node));
      } else if (name == "Curve") {
        elements.push_back(TakeCurve(node));
      } else if (name == "Spiral") {
        elements.push_back(TakeSpiral(node));
      } else if (name == "IrregularLine" || name == "Chain") {
        Refuse(LandXmlResult::CannotHold, node,
               "a centerline cannot hold the element \"" + std::string(name) + "\"");
        return elements;
      } else {
        continue;
      }
      if (elements.size() >= kMostCenterlineElements / 2) {
        Refuse(LandXmlResult::CannotHold, node, "the alignment has too many elements");
      }
      PlanElement& element = elements.back();
      element.station = station;
      CheckAgainstNeighbours(node, elements);
      station += element.length;
    }
    return elements;
  }

  void CheckAgainstNeighbours(const pugi::xml_node& node,
                              const std::vector<PlanElement>& elements) {
    const PlanElement& element = elements.back();
    const auto stated = Number(node, "staStart");
    if (stated && std::fabs(*stated - element.station) > kStationWarning) {
      Warn("Line " + std::to_string(LineOf(node.offset_debug())) + ": the element starts at " +
           FixedNumber(element.station, 4) + " by the lengths before it, but says " +
           FixedNumber(*stated, 4) + ".");
    }
    if (elements.size() < 2) return;
    const double gap = DistanceBetween(elements[elements.size() - 2].end, element.start);
    if (gap > kLargestGap) {
      Refuse(LandXmlResult::CannotHold, node,
             "the element starts " + FixedNumber(gap, 3) + " away from the end of the one before");
    }
  }

  void TakeAlignment(const pugi::xml_node& node) {
    const std::string name = node.attribute("name").value();
    if (only_ && name != *only_) return;
    const pugi::xml_node geometry = Child(node, "CoordGeom");
    if (!geometry) return;
    if (!Number(node, "staStart")) {
      Warn("Alignment \"" + name + "\" has no start station; it starts at 0.");
    }
    const double start = Number(node, "staStart").value_or(0.0);
    const std::vector<PlanElement> elements = TakeGeometry(geometry, start);
    if (problem_ || elements.empty()) return;
    LandXmlAlignment alignment;
    alignment.name = name;
    alignment.centerline = MakeCenterline(elements);
    TakeEquations(node, alignment);
    for (const pugi::xml_node& profile : node.children()) {
      if (LocalName(profile) == "Profile") TakeProfile(profile, alignment);
    }
    if (!problem_) reading_.alignments.push_back(std::move(alignment));
  }

  // Written as a centerline file and read back: the chain is the one that the file will give.
  Centerline MakeCenterline(const std::vector<PlanElement>& elements);

  void TakeEquations(const pugi::xml_node& node, LandXmlAlignment& alignment) {
    double shift = 0.0;
    for (const pugi::xml_node& equation : node.children()) {
      if (LocalName(equation) != "StaEquation") continue;
      if (std::string_view(equation.attribute("staIncrement").value()) == "decreasing") {
        return Refuse(LandXmlResult::CannotHold, equation,
                      "a centerline cannot hold stations that decrease behind an equation");
      }
      const double internal = NeedNumber(equation, "staInternal");
      const double ahead = NeedNumber(equation, "staAhead");
      const double back = Number(equation, "staBack").value_or(internal + shift);
      if (std::fabs(back - shift - internal) > kStationWarning) {
        Warn("Line " + std::to_string(LineOf(equation.offset_debug())) +
             ": the back station of the equation does not fit its internal station.");
      }
      if (alignment.equations.size() >= kMostStationEquations) {
        return Refuse(LandXmlResult::CannotHold, equation, "there are too many station equations");
      }
      alignment.equations.push_back({internal + shift, ahead});
      shift = ahead - internal;
    }
  }

  void TakeProfile(const pugi::xml_node& profile, LandXmlAlignment& alignment) {
    for (const pugi::xml_node& line : profile.children()) {
      const std::string_view name = LocalName(line);
      if (problem_) return;
      if (name == "ProfSurf") {
        Warn("The ground profile \"" + std::string(line.attribute("name").value()) +
             "\" was left out.");
      }
      if (name != "ProfAlign") continue;
      if (alignment.profile) {
        Warn("The further profile \"" + std::string(line.attribute("name").value()) +
             "\" was left out.");
        continue;
      }
      TakeVerticalPoints(line, alignment);
    }
  }

  std::optional<VerticalPoint> TakeVerticalPoint(const pugi::xml_node& node) {
    const std::string_view name = LocalName(node);
    VerticalPoint point;
    if (name == "ParaCurve") {
      point.curve = VerticalCurveKind::Parabola;
      point.length_in = point.length_out = 0.5 * NeedNumber(node, "length");
    } else if (name == "UnsymParaCurve") {
      point.curve = VerticalCurveKind::Parabola;
      point.length_in = NeedNumber(node, "lengthIn");
      point.length_out = NeedNumber(node, "lengthOut");
    } else if (name == "CircCurve") {
      // Its length is along the arc and its sign has no fixed meaning: the grades tell the sense.
      point.curve = VerticalCurveKind::Circle;
      point.radius = std::fabs(NeedNumber(node, "radius"));
    } else if (name != "PVI") {
      return std::nullopt;
    }
    const auto pair = Pair(node.child_value());
    if (!pair) {
      Refuse(LandXmlResult::BadNumber, node,
             std::string(name) + " has no usable station and elevation");
      return std::nullopt;
    }
    point.station = pair->northing;
    point.elevation = pair->easting;
    return point;
  }

  void TakeVerticalPoints(const pugi::xml_node& line, LandXmlAlignment& alignment) {
    std::vector<VerticalPoint> points;
    std::vector<pugi::xml_node> nodes;
    for (const pugi::xml_node& node : line.children()) {
      const auto point = TakeVerticalPoint(node);
      if (problem_) return;
      if (!point) continue;
      points.push_back(*point);
      nodes.push_back(node);
    }
    ProfileMaking making = Profile::Make(std::move(points));
    if (making.result == ProfileResult::TooFew) {
      return Warn("The profile \"" + std::string(line.attribute("name").value()) +
                  "\" has fewer than two points and was left out.");
    }
    if (making.result != ProfileResult::Made) {
      return Refuse(LandXmlResult::BadNumber, nodes[making.at], ProfileProblem(making.result));
    }
    alignment.profile = std::move(making.profile);
    alignment.profile_name = line.attribute("name").value();
  }

  static std::string ProfileProblem(ProfileResult result) {
    switch (result) {
      case ProfileResult::StationsFall:
        return "the profile's stations do not rise";
      case ProfileResult::CurvesOverlap:
        return "the vertical curve overlaps the one before";
      default:
        return "the vertical curve stands at an end of the profile or has no usable length";
    }
  }

  std::string_view text_;
  std::optional<std::string_view> only_;
  std::map<std::string, std::string> cg_points_;
  LandXmlReading reading_;
  Problem problem_;
};

Centerline LandXmlReader::MakeCenterline(const std::vector<PlanElement>& elements) {
  Centerline centerline;
  centerline.elements = KeyPointsOf(elements);
  centerline.elements = ReadChain(CenterlineText(centerline, {}), false).elements;
  if (!centerline.elements.empty()) centerline.start_station = centerline.elements.front().station;
  return centerline;
}

}  // namespace

LandXmlReading ReadLandXml(std::string_view text, std::optional<std::string_view> only) {
  return LandXmlReader(text, only).Read();
}

}  // namespace tarvex
