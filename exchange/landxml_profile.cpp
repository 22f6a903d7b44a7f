#include "exchange/landxml_profile.h"

#include <cmath>
#include <utility>

namespace tarvex {
namespace {

std::string ProfileProblem(ProfileResult result) {
  switch (result) {
    case ProfileResult::StationsFall:
      return "the profile's stations do not rise";
    case ProfileResult::CurvesOverlap:
      return "the vertical curve overlaps the one before";
    default:
      return "the vertical curve stands at an end of the profile or has no usable length";
  }
}

class ProfileReader {
 public:
  explicit ProfileReader(LandXmlSource& source) : source_(source) {}

  void TakeProfile(const pugi::xml_node& profile, LandXmlAlignment& alignment) {
    for (const pugi::xml_node& line : profile.children()) {
      const std::string_view name = LocalName(line);
      if (source_.refused()) return;
      if (name == "ProfSurf") {
        source_.Warn("The ground profile \"" + std::string(line.attribute("name").value()) +
                     "\" was left out.");
      }
      if (name != "ProfAlign") continue;
      if (alignment.profile) {
        source_.Warn("The further profile \"" + std::string(line.attribute("name").value()) +
                     "\" of alignment \"" + alignment.name + "\" was left out; \"" +
                     alignment.profileName + "\" was taken.");
        continue;
      }
      TakeVerticalPoints(line, alignment);
    }
  }

 private:
  std::optional<VerticalPoint> TakeVerticalPoint(const pugi::xml_node& node) {
    const std::string_view name = LocalName(node);
    VerticalPoint point;
    if (name == "ParaCurve") {
      point.curve = VerticalCurveKind::Parabola;
      point.lengthIn = point.lengthOut = 0.5 * source_.NeedNumber(node, "length");
    } else if (name == "UnsymParaCurve") {
      point.curve = VerticalCurveKind::Parabola;
      point.lengthIn = source_.NeedNumber(node, "lengthIn");
      point.lengthOut = source_.NeedNumber(node, "lengthOut");
    } else if (name == "CircCurve") {
      // Its length is along the arc and its sign has no fixed meaning: the grades tell the sense.
      point.curve = VerticalCurveKind::Circle;
      point.radius = std::fabs(source_.NeedNumber(node, "radius"));
    } else if (name != "PVI") {
      return std::nullopt;
    }
    const auto pair = LandXmlSource::Pair(node.child_value());
    if (!pair) {
      source_.Refuse(LandXmlResult::BadNumber, node,
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
      if (source_.refused()) return;
      if (!point) continue;
      points.push_back(*point);
      nodes.push_back(node);
    }
    ProfileMaking making = Profile::Make(std::move(points));
    if (making.result == ProfileResult::TooFew) {
      return source_.Warn("The profile \"" + std::string(line.attribute("name").value()) +
                          "\" has fewer than two points and was left out.");
    }
    if (making.result != ProfileResult::Made) {
      return source_.Refuse(LandXmlResult::BadNumber, nodes[making.at],
                            ProfileProblem(making.result));
    }
    alignment.profile = std::move(making.profile);
    alignment.profileName = line.attribute("name").value();
  }

  LandXmlSource& source_;
};

}  // namespace

void ReadProfile(LandXmlSource& source, const pugi::xml_node& profile,
                 LandXmlAlignment& alignment) {
  ProfileReader(source).TakeProfile(profile, alignment);
}

}  // namespace tarvex
