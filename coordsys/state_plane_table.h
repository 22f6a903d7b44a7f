// The constants of the state-plane zones as the build's tables hold them (state_plane_table.cpp is
// made from data/tables).
#pragma once

#include <span>

namespace tarvex {

/// Angles in degrees, east positive; lengths in metres, but the last two: the Alaska series' false
/// easting in US survey feet and its central meridian in seconds of arc, west positive.
struct StatePlaneRow {
  int fips;  ///< state times 100 plus zone
  int projection_type;
  const char* state;
  const char* name;
  double latitude_of_origin;
  double central_meridian;
  double standard_parallel_1;
  double standard_parallel_2_or_azimuth;
  double rectified_grid_angle;
  double scale_factor;
  double false_easting;
  double false_northing;
  double series_false_easting_ft;
  double series_central_meridian_s;
};

extern const std::span<const StatePlaneRow> kNad83StatePlane;
extern const std::span<const StatePlaneRow> kNad27StatePlane;

}  // namespace tarvex
