#include <cmath>
#include <pugixml.hpp>
#include <utility>

#include "exchange/exchange_texts.h"
#include "exchange/landxml.h"
#include "exchange/landxml_geometry.h"
#include "exchange/landxml_profile.h"
#include "exchange/landxml_source.h"
#include "exchange/plan_elements.h"
#include "roads/centerline_reader.h"
#include "roads/centerline_writer.h"

namespace tarvex {
namespace {

// Written as a centerline file and read back: the chain is the one that the file will give.
Centerline MakeCenterline(const std::vector<PlanElement>& elements) {
  Centerline centerline;
  std::string text = CenterlineRecords(KeyPointsOf(elements), kExactCenterline);
  text += kCenterlineTerminator;
  if (auto chain = ReadChain(text, false)) {
    centerline.elements = std::move(chain->elements);
    centerline.startStation = centerline.elements.front().station;
  }
  return centerline;
}

class LandXmlReader {
 public:
  LandXmlReader(std::string_view text, std::optional<std::string_view> only)
      : text_(text), only_(only), source_(text) {}

  Outcome<LandXmlDocument, LandXmlFault> Read() {
    for (const pugi::xml_node& alignment : Alignments()) {
      if (!source_.refused()) TakeAlignment(alignment);
    }
    if (!source_.refused() && document_.alignments.empty()) {
      source_.Refuse(LandXmlFault::NoAlignment, std::ptrdiff_t{0}, kTextNoAlignmentWithGeometry);
    }
    if (source_.refused()) return source_.failure();
    document_.warnings = source_.warnings();
    return std::move(document_);
  }

  // Of the one alignment that is meant; another one's profile is another road.
  Outcome<LandXmlProfile, LandXmlFault> ReadProfileOnly() {
    const std::vector<pugi::xml_node> chosen = Alignments();
    if (chosen.size() > 1) {
      source_.Refuse(LandXmlFault::SeveralAlignments, chosen[1], kTextSeveralAlignments, {names_});
    }
    if (source_.refused()) return source_.failure();
    LandXmlAlignment alignment;
    alignment.name = chosen.front().attribute("name").value();
    TakeProfiles(chosen.front(), alignment);
    if (!source_.refused() && !alignment.profile) {
      source_.Refuse(LandXmlFault::NoProfile, chosen.front(), kTextAlignmentWithoutProfile,
                     {alignment.name});
    }
    if (source_.refused()) return source_.failure();
    return LandXmlProfile{.unit = document_.unit,
                          .alignment = std::move(alignment.name),
                          .name = std::move(alignment.profileName),
                          .profile = *std::move(alignment.profile),
                          .warnings = source_.warnings()};
  }

 private:
  // The alignments that are asked for, with the units and named points of the document taken; none
  // once it is refused.
  std::vector<pugi::xml_node> Alignments() {
    const pugi::xml_parse_result parsed = xml_.load_buffer(text_.data(), text_.size());
    if (!parsed) {
      const bool empty = parsed.status == pugi::status_no_document_element;
      source_.Refuse(LandXmlFault::NotXml, parsed.offset, empty ? kTextNoXml : kTextXmlUnreadable,
                     {parsed.description()});
      return {};
    }
    const pugi::xml_node root = Child(xml_, "LandXML");
    if (!root) {
      source_.Refuse(LandXmlFault::NotLandXml, std::ptrdiff_t{0}, kTextNoLandXml);
      return {};
    }
    TakeUnits(root);
    std::vector<pugi::xml_node> chosen;
    for (const pugi::xml_node& group : root.children()) {
      if (LocalName(group) == "CgPoints") TakeCgPoints(group);
      if (LocalName(group) != "Alignments") continue;
      for (const pugi::xml_node& alignment : group.children()) {
        if (LocalName(alignment) != "Alignment") continue;
        const std::string_view name = alignment.attribute("name").value();
        names_ += (names_.empty() ? "\"" : ", \"") + std::string(name) + "\"";
        if (!only_ || name == *only_) chosen.push_back(alignment);
      }
    }
    if (chosen.empty() && !source_.refused()) {
      const int text = !only_           ? kTextNoAlignment
                       : names_.empty() ? kTextNoSuchAlignmentNorOther
                                        : kTextNoSuchAlignment;
      source_.Refuse(LandXmlFault::NoAlignment, root, text, {only_.value_or(""), names_});
    }
    if (source_.refused()) chosen.clear();
    return chosen;
  }

  void TakeUnits(const pugi::xml_node& root) {
    const pugi::xml_node units = Child(root, "Units");
    pugi::xml_node system = Child(units, "Metric");
    if (!system) system = Child(units, "Imperial");
    if (!system) return source_.Warn(kTextNoUnitNamed);
    const std::string_view name = system.attribute("linearUnit").value();
    if (name == "meter") {
      document_.unit = DistanceUnit::Metres;
    } else if (name == "USSurveyFoot") {
      document_.unit = DistanceUnit::UsSurveyFeet;
    } else if (name == "foot") {
      document_.unit = DistanceUnit::InternationalFeet;
      source_.Warn(kTextFootIsInternational);
    } else {
      source_.Refuse(LandXmlFault::CannotHold, system, kTextNoUnitOfAJob, {name});
    }
  }

  void TakeCgPoints(const pugi::xml_node& points) {
    for (const pugi::xml_node& point : points.children()) {
      if (LocalName(point) != "CgPoint") continue;
      const std::string name = point.attribute("name").value();
      if (!name.empty()) source_.NamePoint(name, point.child_value());
    }
  }

  void TakeAlignment(const pugi::xml_node& node) {
    const pugi::xml_node geometry = Child(node, "CoordGeom");
    if (!geometry) return;
    LandXmlAlignment alignment;
    alignment.name = node.attribute("name").value();
    const double start = StartStation(node, alignment.name);
    const std::vector<PlanElement> elements = ReadPlanGeometry(source_, geometry, start);
    if (source_.refused() || elements.empty()) return;
    alignment.centerline = MakeCenterline(elements);
    TakeEquations(node, alignment);
    TakeProfiles(node, alignment);
    if (!source_.refused()) document_.alignments.push_back(std::move(alignment));
  }

  double StartStation(const pugi::xml_node& node, const std::string& name) {
    const auto start = source_.Number(node, "staStart");
    if (start) return *start;
    const std::string given = node.attribute("staStart").value();
    source_.Warn(given.empty() ? kTextNoStartStation : kTextStartStationNoNumber,
                 {source_.LineText(node), name, given});
    return 0.0;
  }

  void TakeProfiles(const pugi::xml_node& node, LandXmlAlignment& alignment) {
    for (const pugi::xml_node& profile : node.children()) {
      if (LocalName(profile) == "Profile") ReadProfile(source_, profile, alignment);
    }
  }

  void TakeEquations(const pugi::xml_node& node, LandXmlAlignment& alignment) {
    double shift = 0.0;
    for (const pugi::xml_node& equation : node.children()) {
      if (LocalName(equation) != "StaEquation") continue;
      if (std::string_view(equation.attribute("staIncrement").value()) == "decreasing") {
        return source_.Refuse(LandXmlFault::CannotHold, equation, kTextDecreasingStations);
      }
      const double internal = source_.NeedNumber(equation, "staInternal");
      const double ahead = source_.NeedNumber(equation, "staAhead");
      const double back = source_.Number(equation, "staBack").value_or(internal + shift);
      if (std::fabs(back - shift - internal) > kStationWarning) {
        source_.Warn(kTextBackStationDisagrees, {source_.LineText(equation)});
      }
      if (alignment.equations.size() >= kMostStationEquations) {
        return source_.Refuse(LandXmlFault::CannotHold, equation, kTextTooManyEquations);
      }
      alignment.equations.push_back({internal + shift, ahead});
      shift = ahead - internal;
    }
  }

  std::string_view text_;
  std::optional<std::string_view> only_;
  pugi::xml_document xml_;
  LandXmlSource source_;
  std::string names_;  // of the alignments seen
  LandXmlDocument document_;
};

}  // namespace

Outcome<LandXmlDocument, LandXmlFault> ReadLandXml(std::string_view text,
                                                   std::optional<std::string_view> only) {
  return LandXmlReader(text, only).Read();
}

Outcome<LandXmlProfile, LandXmlFault> ReadLandXmlProfile(
    std::string_view text, std::optional<std::string_view> alignment) {
  return LandXmlReader(text, alignment).ReadProfileOnly();
}

}  // namespace tarvex
