// The horizontal alignment of a road as its centerline file gives it: a chain of key points in file
// order, each with its station, and what goes with the chain (start point, station limits).
//
// Northings, eastings, stations and radii are in the job's distance unit, angles in radians,
// azimuths from north clockwise. The geometry between the key points is roads/alignment.h.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "core/text/fixed_text.h"
#include "roads/plan_point.h"
#include "roads/station_equations.h"

namespace tarvex {

inline constexpr std::size_t kCenterlineIdLength = 10;
using CenterlineId = FixedText<kCenterlineIdLength>;

/// The record that a key point came from.
enum class KeyPointKind : int {
  Line,           ///< "L", and any kind that is not known
  CurveStart,     ///< "PC"
  CurveEnd,       ///< "PT"
  TangentSpiral,  ///< "TS"
  SpiralCurve,    ///< "SC"
  CurveSpiral,    ///< "CS"
  SpiralTangent,  ///< "ST"
  Spiral,         ///< "SP"
  LeadIn          ///< no record: made by the reader before a "TS" with an azimuth of its own
};

enum class ElementKind : int {
  Vertex = 0,       ///< "L", "PC", "PT", "CS", "ST"
  SpiralGroup = 1,  ///< "TS", "SC"
  LeadIn = 2,       ///< only while the chain is built; handed out as Vertex
  Spiral = 3        ///< "SP"
};

/// One node of the chain: one key point.
struct CenterlineElement {
  double northing = 0.0;
  double easting = 0.0;
  double station = 0.0;
  /// Curves: the signed central angle; "ST": the azimuth of the outgoing tangent; "SP": field 8.
  double angle = 0.0;
  /// Curves: distance from the key point to the centre; "SP": field 6.
  double radius = 0.0;
  double centerNorthing = 0.0;
  double centerEasting = 0.0;
  double spiralParameter = 0.0;  ///< "SP": field 7
  CenterlineId id;
  CenterlineId centerId;
  ElementKind kind = ElementKind::Vertex;

  KeyPointKind record = KeyPointKind::Line;
  std::optional<double> tangentAzimuth;  ///< "TS": field 6, as given
  int line = 0;                          ///< line of the file, from 1; 0 for a lead-in

  bool operator==(const CenterlineElement&) const = default;
};

inline PlanPoint PlaceOf(const CenterlineElement& element) {
  return {element.northing, element.easting};
}

inline double Distance(const CenterlineElement& a, const CenterlineElement& b) {
  return Distance(PlaceOf(a), PlaceOf(b));
}

/// "0" and an empty text both mean no point id.
inline bool HasId(const CenterlineId& id) {
  return !id.empty() && id.view() != "0";
}

struct CenterlineStartPoint {
  CenterlineId id;
  double station = 0.0;
  double northing = 0.0;
  double easting = 0.0;

  bool operator==(const CenterlineStartPoint&) const = default;
};

/// The part of the alignment that may be used, as the side file gives it.
struct StationLimits {
  std::optional<double> start;
  std::optional<double> end;

  bool operator==(const StationLimits&) const = default;
};

/// A line of a file that was not taken as it is: `text` is a number of the string table, with
/// `argument` for its %s.
struct LineNote {
  int line = 0;
  int text = 0;
  std::string argument;

  bool operator==(const LineNote&) const = default;
};

/// A record that was read into another one: a vertex on top of another key point.
struct MergedLine {
  int line = 0;
  int into = 0;  ///< the line of the record that stayed (which may itself be merged further)

  bool operator==(const MergedLine&) const = default;
};

/// The alignment with everything that its file says.
struct Centerline {
  std::vector<CenterlineElement> elements;
  std::optional<CenterlineStartPoint> startPoint;
  double startStation = 0.0;
  StationLimits limits;
  std::vector<LineNote> notes;  ///< at most kMostLineNotes, the first ones
  std::vector<MergedLine> merged;
  std::vector<StationEquation> equations;  ///< in file order, the first station the back one
  std::string text;                        ///< the file, byte for byte
};

inline constexpr std::size_t kMostLineNotes = 100;

}  // namespace tarvex
