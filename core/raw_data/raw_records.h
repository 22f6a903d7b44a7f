// The records of the raw data file as text, one function a record. Each text starts with "\n",
// because a record's line feed is before it; AppendRawRecord (core/raw_data/raw_file.h) writes
// it as it stands.
//
// Angles come in decimal degrees and are written packed (dd.mmss, rounded in seconds first);
// distances and coordinates are in the job's unit. Free text is brought onto one line.
// docs/formats/rw5.md shows every record.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "core/job/job.h"
#include "core/points/point.h"

namespace tarvex {

/// The header of a new raw file: job, mode, collector and coordinate-file lines, without a line
/// feed before the first.
std::string RawHeader(const Job& job, const LocalTime& now);

/// "\n--%s": any free note; a note of several lines becomes as many comment lines.
std::string CommentRecord(std::string_view text);
/// "\n--DT%s\n--TM%s".
std::string TimeStampRecord(const LocalTime& now);

std::string OccupyRecord(const Point& occupied);
std::string HeightsRecord(double instrumentHeight, double rodHeight);
std::string RodHeightRecord(double rodHeight);

struct Backsight {
  std::string occupiedId;
  std::string backsightId;  ///< empty for an entered azimuth
  double azimuthDegrees = 0.0;
  double circleDegrees = 0.0;
};
std::string BacksightRecord(const Job& job, const Backsight& backsight);

/// The description is free text of any length here; the coordinate file keeps 31 bytes of it.
std::string StoredPointRecord(const Point& point, std::string_view description);

/// The comments that keep what a point was before it was replaced or deleted, or before the store
/// of it was taken back.
std::string ReplacedPointRecord(const Point& point);
std::string DeletedPointRecord(const Point& point);
/// The same of a point that was computed anew from its position.
std::string RecomputedPointRecord(const Point& point);
std::string TakenBackPointRecord(const Point& point);

struct GnssRecordFields {
  std::string pointId;
  double latitudeDegrees = 0.0;
  double longitudeDegrees = 0.0;
  double height = 0.0;  ///< as received
  std::string description;
};
std::string GnssRecord(const GnssRecordFields& fields);
/// The "--GS" comment: the grid coordinates computed from a GPS record.
std::string GnssGridRecord(const Point& point, std::string_view description);
std::string GnssBaseRecord(double latitudeDegrees, double longitudeDegrees, double height);

enum class HeightKind { Slant, Vertical };
std::string AntennaRecord(std::string_view antennaType, HeightKind kind);
std::string EdmModeRecord(std::string_view mode);
std::string ElevationModeRecord(bool threeDimensional);
std::string Wgs84ShiftRecord(bool shifted);

struct ShiftParameters {
  double dx = 0.0, dy = 0.0, dz = 0.0;
  double rotationX = 0.0, rotationY = 0.0, rotationZ = 0.0;
  double scale = 0.0;
};
std::string ShiftParametersRecord(const ShiftParameters& shift);

}  // namespace tarvex
