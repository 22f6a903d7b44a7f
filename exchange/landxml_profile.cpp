#include "exchange/landxml_profile.h"

#include <cmath>
#include <utility>

#include "exchange/exchange_texts.h"

namespace tarvex {
namespace {

int ProfileProblem(ProfileFault fault) {
  switch (fault) {
    case ProfileFault::StationsFall:
      return kTextProfileFalls;
    case ProfileFault::CurvesOverlap:
      return kTextVerticalCurvesOverlap;
    default:
      return kTextVerticalCurveUnusable;
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
        source_.Warn(kTextGroundLeftOut, {line.attribute("name").value()});
      }
      if (name != "ProfAlign") continue;
      if (alignment.profile) {
        source_.Warn(kTextFurtherProfileLeftOut,
                     {line.attribute("name").value(), alignment.name, alignment.profileName});
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
      source_.Refuse(LandXmlFault::BadNumber, node, kTextStationAndElevationUnusable, {name});
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
    auto made = Profile::Make(std::move(points));
    if (!made && made.failure().code == ProfileFault::TooFew) {
      return source_.Warn(kTextShortProfileLeftOut, {line.attribute("name").value()});
    }
    if (!made) {
      return source_.Refuse(LandXmlFault::BadNumber, nodes[made.failure().place],
                            ProfileProblem(made.failure().code));
    }
    alignment.profile = *std::move(made);
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
