// Alignments and profiles to and from LandXML 1.2 (and 1.0, 1.1 and files of its dialects, which
// use the same elements).
//
// What comes in is turned into the chain of a centerline file, so that everything behind it works
// as with a file of our own. What the chain cannot hold is refused by name: transition curves that
// are no clothoids, irregular lines, decreasing stations, units that no job has.
//
// Points are "north east [elevation]"; directions are azimuths clockwise from north in decimal
// degrees; rot "cw" turns right. Schema: landxml.org/schema/LandXML-1.2.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/units/units.h"
#include "platform/clock.h"
#include "roads/centerline.h"
#include "roads/profile.h"
#include "roads/road_geometry.h"
#include "roads/station_equations.h"

namespace tarvex {

struct LandXmlAlignment {
  std::string name;
  Centerline centerline;
  std::vector<StationEquation> equations;
  std::optional<Profile> profile;
  std::string profileName;
};

enum class [[nodiscard]] LandXmlResult : int {
  Read = 1,
  NotXml = 0,              ///< not well formed
  NotLandXml = -1,         ///< another kind of document
  NoAlignment = -2,        ///< none, or none of the name asked for
  CannotHold = -3,         ///< something that a centerline cannot hold, by name
  BadNumber = -4,          ///< a number or point is missing or makes no sense
  SeveralAlignments = -5,  ///< a profile is asked for, but not of which alignment
  NoProfile = -6,          ///< the alignment has none
};

struct LandXmlReading {
  LandXmlResult result = LandXmlResult::NotXml;
  /// For every result but Read: a sentence with line number that says what is wrong.
  std::string problem;
  DistanceUnit unit = DistanceUnit::Metres;
  std::vector<LandXmlAlignment> alignments;
  /// Sentences for the person: what was assumed, what was left out.
  std::vector<std::string> warnings;
};

inline constexpr std::uint64_t kLargestLandXml = 64U << 20U;

/// Reads every alignment of the document, or the one called `only`.
LandXmlReading ReadLandXml(std::string_view text, std::optional<std::string_view> only = {});

struct LandXmlProfileReading {
  LandXmlResult result = LandXmlResult::NotXml;
  std::string problem;  ///< as in LandXmlReading
  DistanceUnit unit = DistanceUnit::Metres;
  std::string alignment;
  std::optional<Profile> profile;
  std::string profileName;
  std::vector<std::string> warnings;
};

/// The profile of the alignment called `alignment`, or of the only one of the document: never of
/// one alignment in place of another. The plan is not read, so that one which no centerline can
/// hold has its profile all the same.
LandXmlProfileReading ReadLandXmlProfile(std::string_view text,
                                         std::optional<std::string_view> alignment = {});

/// What goes out.
struct LandXmlExport {
  std::string name;
  DistanceUnit unit = DistanceUnit::Metres;
  const RoadGeometry* road = nullptr;
  const Profile* profile = nullptr;  ///< null for none
  std::string program;               ///< "Tarvex 1.0"
  LocalTime written;                 ///< date and time, which the schema demands
};

/// The document, every element with stations, directions, lengths and radii, so that a reader need
/// not derive them. Nothing when an element is drawn as a chord only, or is a spiral that turns to
/// both sides; `refused` then names it.
std::optional<std::string> WriteLandXml(const LandXmlExport& what, std::size_t* refused = nullptr);

}  // namespace tarvex
