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
  const char* state;
  const char* name;
  double latitudeOfOrigin;
  double centralMeridian;
  double standardParallel1;
  double standardParallel2OrAzimuth;
  double rectifiedGridAngle;
  double scaleFactor;
  double falseEasting;
  double falseNorthing;
  double seriesFalseEastingFt;
  double seriesCentralMeridianS;
};

extern const std::span<const StatePlaneRow> kNad83StatePlane;
extern const std::span<const StatePlaneRow> kNad27StatePlane;

}  // namespace tarvex
