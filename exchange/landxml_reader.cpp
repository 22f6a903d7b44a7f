#include <algorithm>
#include <array>
#include <cmath>
#include <map>
#include <numbers>
#include <pugixml.hpp>

#include "core/number_text.h"
#include "core/text.h"
#include "exchange/landxml.h"
#include "roads/centerline_reader.h"
#include "roads/centerline_writer.h"

namespace tarvex {
namespace {

constexpr double kPi = std::numbers::pi;
constexpr double kStationWarning = 0.001;
constexpr double kLargestGap = 0.02;
constexpr double kSameRadius = 1e-6;  // relative

// Thrown nowhere: the first problem is kept, and every step asks whether there is one.
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

enum class Shape { Line, Curve, Spiral };

// One element of the document's geometry, as numbers.
struct PlanElement {
  Shape shape = Shape::Line;
  PlanPoint start;
  PlanPoint end;
  PlanPoint center;
  double turn = 1.0;          // +1 cw, right
  double radius_start = 0.0;  // 0 for INF
  double radius_end = 0.0;
  double length = 0.0;
  double station = 0.0;

  bool IsEntry() const { return shape == Shape::Spiral && radius_start == 0.0 && radius_end > 0.0; }
  bool IsExit() const { return shape == Shape::Spiral && radius_start > 0.0 && radius_end == 0.0; }
};

double Distance(const PlanPoint& a, const PlanPoint& b) {
  return std::hypot(a.northing - b.northing, a.easting - b.easting);
}

double Azimuth(const PlanPoint& from, const PlanPoint& to) {
  return std::atan2(to.easting - from.easting, to.northing - from.northing);
}

// Centre of the arc from start to end that turns less than half a circle.
PlanPoint CenterOfShortArc(const PlanPoint& start, const PlanPoint& end, double radius,
                           double turn) {
  const double half = 0.5 * Distance(start, end);
  const double height = std::sqrt(std::max(0.0, radius * radius - half * half));
  const double across = Azimuth(start, end) + turn * 0.5 * kPi;
  return {0.5 * (start.northing + end.northing) + height * std::cos(across),
          0.5 * (start.easting + end.easting) + height * std::sin(across)};
}

double SweepOf(const PlanElement& arc) {
  const double sweep = arc.turn * (Azimuth(arc.center, arc.end) - Azimuth(arc.center, arc.start));
  const double wrapped = std::fmod(sweep, 2.0 * kPi);
  return wrapped < 0.0 ? wrapped + 2.0 * kPi : wrapped;
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
    line.length = Number(node, "length").value_or(Distance(line.start, line.end));
    return line;
  }

  PlanElement TakeCurve(const pugi::xml_node& node) {
    PlanElement arc;
    arc.shape = Shape::Curve;
    arc.start = NeedPoint(node, "Start");
    arc.end = NeedPoint(node, "End");
    arc.turn = Turn(node);
    if (Child(node, "Center")) {
      arc.center = NeedPoint(node, "Center");
    } else {
      arc.center = CenterOfShortArc(arc.start, arc.end, NeedNumber(node, "radius"), arc.turn);
    }
    arc.radius_start = arc.radius_end = Distance(arc.start, arc.center);
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
    spiral.shape = Shape::Spiral;
    spiral.start = NeedPoint(node, "Start");
    spiral.end = NeedPoint(node, "End");
    spiral.turn = Turn(node);
    spiral.radius_start = Radius(node, "radiusStart");
    spiral.radius_end = Radius(node, "radiusEnd");
    spiral.length = NeedNumber(node, "length");
    const double difference = std::fabs(spiral.radius_start - spiral.radius_end);
    if (spiral.radius_start > 0.0 && difference <= kSameRadius * spiral.radius_start) {
      spiral.shape = Shape::Curve;  // an arc that is called a spiral
      spiral.center = CenterOfShortArc(spiral.start, spiral.end, spiral.radius_start, spiral.turn);
    } else if (difference == 0.0) {
      spiral.shape = Shape::Line;
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
    const double gap = Distance(elements[elements.size() - 2].end, element.start);
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

// From elements to key points.
class KeyPointList {
 public:
  explicit KeyPointList(const std::vector<PlanElement>& elements) : elements_(elements) {}

  std::vector<CenterlineElement> Make() {
    for (std::size_t i = 0; i < elements_.size();) i = Take(i);
    const PlanElement& last = elements_.back();
    Add(behind_, last.end, last.station + last.length);
    return std::move(list_);
  }

 private:
  CenterlineElement& Add(KeyPointKind kind, const PlanPoint& at, double station) {
    CenterlineElement element;
    element.record = kind;
    element.northing = at.northing;
    element.easting = at.easting;
    element.station = station;
    list_.push_back(element);
    return list_.back();
  }

  void AddCurve(KeyPointKind kind, const PlanElement& at, const PlanElement& arc) {
    CenterlineElement& element = Add(kind, at.start, at.station);
    element.angle = arc.turn * SweepOf(arc);
    element.center_northing = arc.center.northing;
    element.center_easting = arc.center.easting;
  }

  // INF to R, the arc (or none), R to INF, all of one radius and turn.
  bool IsGroup(std::size_t i, std::size_t exit) const {
    if (exit >= elements_.size()) return false;
    const PlanElement& entry = elements_[i];
    const PlanElement& out = elements_[exit];
    const double radius = entry.radius_end;
    const auto same = [&](double other) {
      return std::fabs(other - radius) <= std::max(1e-3, kSameRadius * radius);
    };
    return entry.IsEntry() && out.IsExit() && entry.turn == out.turn && same(out.radius_start) &&
           (exit == i + 1 ||
            (elements_[i + 1].shape == Shape::Curve && elements_[i + 1].turn == entry.turn &&
             same(elements_[i + 1].radius_start)));
  }

  std::size_t Take(std::size_t i) {
    const PlanElement& element = elements_[i];
    if (element.shape == Shape::Line) {
      Add(behind_, element.start, element.station);
      behind_ = KeyPointKind::Line;
      return i + 1;
    }
    if (IsGroup(i, i + 2)) return TakeGroup(i, elements_[i + 1], i + 2);
    if (IsGroup(i, i + 1)) {
      PlanElement none = elements_[i + 1];  // an arc of no length at the top of the spirals
      none.end = none.start;
      none.center = CenterAtTop(elements_[i]);
      return TakeGroup(i, none, i + 1);
    }
    if (element.shape == Shape::Curve) {
      AddCurve(KeyPointKind::CurveStart, element, element);
      behind_ = KeyPointKind::CurveEnd;
      return i + 1;
    }
    AddSpiral(element);
    behind_ = KeyPointKind::Line;
    return i + 1;
  }

  std::size_t TakeGroup(std::size_t i, const PlanElement& arc, std::size_t exit) {
    AddCurve(KeyPointKind::TangentSpiral, elements_[i], arc);
    list_.back().tangent_azimuth.reset();
    AddCurve(KeyPointKind::SpiralCurve, arc, arc);
    Add(KeyPointKind::CurveSpiral, elements_[exit].start, elements_[exit].station);
    behind_ = KeyPointKind::SpiralTangent;
    return exit + 1;
  }

  // The centre at the end of an entry spiral, from its own shape between its end points.
  static PlanPoint CenterAtTop(const PlanElement& entry) {
    const double curvature = entry.turn / entry.radius_end;
    const LocalFrame end = SpiralEnd(0.0, curvature, entry.length);
    const double azimuth = Azimuth(entry.start, entry.end) - std::atan2(end.y, end.x) +
                           0.5 * curvature * entry.length + entry.turn * 0.5 * kPi;
    return {entry.end.northing + entry.radius_end * std::cos(azimuth),
            entry.end.easting + entry.radius_end * std::sin(azimuth)};
  }

  void AddSpiral(const PlanElement& spiral) {
    const auto curvature = [](double radius) { return radius > 0.0 ? 1.0 / radius : 0.0; };
    const double k0 = curvature(spiral.radius_start);
    const double k1 = curvature(spiral.radius_end);
    CenterlineElement& element = Add(KeyPointKind::Spiral, spiral.start, spiral.station);
    element.radius = spiral.radius_start;
    element.spiral_parameter = std::sqrt(spiral.length / std::fabs(k1 - k0));
    element.angle = spiral.turn * (k1 > k0 ? 1.0 : 2.0);
  }

  const std::vector<PlanElement>& elements_;
  std::vector<CenterlineElement> list_;
  KeyPointKind behind_ = KeyPointKind::Line;  // what ends at the next key point
};

Centerline LandXmlReader::MakeCenterline(const std::vector<PlanElement>& elements) {
  Centerline centerline;
  centerline.elements = KeyPointList(elements).Make();
  centerline.elements = ReadChain(CenterlineText(centerline, {}), false).elements;
  if (!centerline.elements.empty()) centerline.start_station = centerline.elements.front().station;
  return centerline;
}

}  // namespace

LandXmlReading ReadLandXml(std::string_view text, std::optional<std::string_view> only) {
  return LandXmlReader(text, only).Read();
}

}  // namespace tarvex
