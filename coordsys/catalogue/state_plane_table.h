// The constants of the state-plane zones as the build's tables hold them (state_plane_table.cpp is
// made from data/tables).
#pragma once

#include <span>

namespace tarvex {

/// Angles in degrees, east positive; lengths in metres, but the last two: the Alaska series' false
/// easting in US survey feet and its central meridian in seconds of arc, west positive.
struct StatePlaneRow {
  int fips;  ///< state times 100 plus zone
  int projectionType;
  // Texts in place: pointers would have to be written into seven pages at each start of the
  // program.
  char state[32];
  char name[48];
  double latitudeOfOriginDeg;
  double centralMeridianDeg;
  double standardParallel1Deg;
  double standardParallel2OrAzimuthDeg;
  double rectifiedGridAngleDeg;
  double scaleFactor;
  double falseEastingM;
  double falseNorthingM;
  double seriesFalseEastingFt;
  double seriesCentralMeridianArcsec;
};

extern const std::span<const StatePlaneRow> kNad83StatePlane;
extern const std::span<const StatePlaneRow> kNad27StatePlane;

}  // namespace tarvex
