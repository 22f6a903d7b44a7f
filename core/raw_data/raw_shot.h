// The raw records of total-station shots: sideshots, traverse shots, sets and offset readings.
#pragma once

#include <string>

#include "core/job/job.h"

namespace tarvex {

enum class HorizontalMode {
  AngleRight,
  AngleLeft,
  Azimuth,
  BearingNE,
  BearingSE,
  BearingSW,
  BearingNW
};
enum class VerticalMode { None, Zenith, VerticalAngle, ChangeInElevation };

struct Shot {
  std::string occupiedId;
  std::string foresightId;
  HorizontalMode horizontalMode = HorizontalMode::AngleRight;
  double horizontal = 0.0;  ///< decimal degrees; a bearing is the value as entered
  VerticalMode verticalMode = VerticalMode::Zenith;
  double vertical = 0.0;  ///< decimal degrees, or the change in elevation
  double distance = 0.0;  ///< slope distance, horizontal with a change in elevation
  std::string description;
};

/// SS and TR: an azimuth is written from south when the job measures azimuths so.
std::string SideshotRecord(const Job& job, const Shot& shot);
std::string TraverseRecord(const Job& job, const Shot& shot);

enum class SetReading { BacksightDirect, BacksightReverse, ForesightDirect, ForesightReverse };

struct Reading {
  double angleRightDegrees = 0.0;
  double zenithDegrees = 0.0;
  double slopeDistance = 0.0;
};

/// BD, BR, FD and FR.
std::string SetReadingRecord(SetReading kind, std::string_view occupiedId,
                             std::string_view foresightId, const Reading& reading,
                             std::string_view description);
/// "--Reading %d(D)" or "(R)": one reading of a set, with the rod height.
std::string SetReadingComment(int number, bool direct, std::string_view foresightId,
                              const Reading& reading, std::string_view description,
                              double rodHeight);
/// OF of an offset taken with the instrument, and with a laser range finder.
std::string OffsetRecord(const Reading& reading);
std::string LaserOffsetRecord(double azimuthDegrees, double changeInElevation,
                              double horizontalDistance);

}  // namespace tarvex
