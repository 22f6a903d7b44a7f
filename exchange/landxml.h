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

#include "core/text/outcome.h"
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

/// Why a document is refused: the line is the place, the text a sentence that says what is wrong.
enum class LandXmlFault {
  NotXml,             ///< not well formed
  NotLandXml,         ///< another kind of document
  NoAlignment,        ///< none, or none of the name asked for
  CannotHold,         ///< something that a centerline cannot hold, by name
  BadNumber,          ///< a number or point is missing or makes no sense
  SeveralAlignments,  ///< a profile is asked for, but not of which alignment
  NoProfile           ///< the alignment has none
};

struct LandXmlDocument {
  DistanceUnit unit = DistanceUnit::Metres;
  std::vector<LandXmlAlignment> alignments;
  /// Sentences for the person: what was assumed, what was left out.
  std::vector<std::string> warnings;
};

inline constexpr std::uint64_t kLargestLandXml = 64U << 20U;

/// Reads every alignment of the document, or the one called `only`.
Outcome<LandXmlDocument, LandXmlFault> ReadLandXml(std::string_view text,
                                                   std::optional<std::string_view> only = {});

struct LandXmlProfile {
  DistanceUnit unit = DistanceUnit::Metres;
  std::string alignment;
  std::string name;
  Profile profile;
  std::vector<std::string> warnings;  ///< as in LandXmlDocument
};

/// The profile of the alignment called `alignment`, or of the only one of the document: never of
/// one alignment in place of another. The plan is not read, so that one which no centerline can
/// hold has its profile all the same.
Outcome<LandXmlProfile, LandXmlFault> ReadLandXmlProfile(
    std::string_view text, std::optional<std::string_view> alignment = {});

/// Why a road does not go out; the element is the place.
enum class LandXmlRefusal {
  DrawnAsChord,     ///< the file does not say its shape
  TurnsToBothSides  ///< a spiral, for which the format has one direction of turn
};

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
/// not derive them.
Outcome<std::string, LandXmlRefusal> WriteLandXml(const LandXmlExport& what);

}  // namespace tarvex
