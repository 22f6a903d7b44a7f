// The records of the raw data file as text, one function a record. Each text starts with "\n",
// because a record's line feed stands before it; AppendRawRecord (core/raw_file.h) writes it as it
// stands.
//
// Angles come in decimal degrees and are written packed (dd.mmss, rounded in seconds first);
// distances and coordinates are in the job's unit. Free text is brought onto one line.
// docs/formats/rw5.md shows every record.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "core/job.h"
#include "core/point.h"

namespace tarvex {

/// The header of a new raw file: job, mode, collector and coordinate-file lines, without a line
/// feed before the first.
std::string RawHeader(const Job& job, const LocalTime& now);

/// "\n--%s": any free note; a note of several lines becomes as many comment lines.
std::string CommentRecord(std::string_view text);
/// "\n--DT%s\n--TM%s".
std::string TimeStampRecord(const LocalTime& now);

std::string OccupyRecord(const Point& occupied);
std::string HeightsRecord(double instrument_height, double rod_height);
std::string RodHeightRecord(double rod_height);

struct Backsight {
  std::string occupied_id;
  std::string backsight_id;  ///< empty for an entered azimuth
  double azimuth_degrees = 0.0;
  double circle_degrees = 0.0;
};
std::string BacksightRecord(const Job& job, const Backsight& backsight);

/// The description is free text of any length here; the coordinate file keeps 31 bytes of it.
std::string StoredPointRecord(const Point& point, std::string_view description);

/// The comments that keep what a point was before it was replaced or deleted.
std::string ReplacedPointRecord(const Point& point);
std::string DeletedPointRecord(const Point& point);

struct GnssRecordFields {
  std::string point_id;
  double latitude_degrees = 0.0;
  double longitude_degrees = 0.0;
  double height = 0.0;  ///< as received
  std::string description;
};
std::string GnssRecord(const GnssRecordFields& fields);
/// The "--GS" comment: the grid coordinates computed from a GPS record.
std::string GnssGridRecord(const Point& point, std::string_view description);
std::string GnssBaseRecord(double latitude_degrees, double longitude_degrees, double height);

enum class HeightKind { Slant, Vertical };
std::string AntennaRecord(std::string_view antenna_type, HeightKind kind);
std::string EdmModeRecord(std::string_view mode);
std::string ElevationModeRecord(bool three_dimensional);
std::string Wgs84ShiftRecord(bool shifted);

struct ShiftParameters {
  double dx = 0.0, dy = 0.0, dz = 0.0;
  double rotation_x = 0.0, rotation_y = 0.0, rotation_z = 0.0;
  double scale = 0.0;
};
std::string ShiftParametersRecord(const ShiftParameters& shift);

}  // namespace tarvex
