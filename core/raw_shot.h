// The raw records of total-station shots: sideshots, traverse shots, sets and offset readings.
#pragma once

#include <string>

#include "core/job.h"

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
  std::string occupied_id;
  std::string foresight_id;
  HorizontalMode horizontal_mode = HorizontalMode::AngleRight;
  double horizontal = 0.0;  ///< decimal degrees; a bearing is the value as entered
  VerticalMode vertical_mode = VerticalMode::Zenith;
  double vertical = 0.0;  ///< decimal degrees, or the change in elevation
  double distance = 0.0;  ///< slope distance, horizontal with a change in elevation
  std::string description;
};

/// SS and TR: an azimuth is written from south when the job measures azimuths so.
std::string SideshotRecord(const Job& job, const Shot& shot);
std::string TraverseRecord(const Job& job, const Shot& shot);

enum class SetReading { BacksightDirect, BacksightReverse, ForesightDirect, ForesightReverse };

struct Reading {
  double angle_right_degrees = 0.0;
  double zenith_degrees = 0.0;
  double slope_distance = 0.0;
};

/// BD, BR, FD and FR.
std::string SetReadingRecord(SetReading kind, std::string_view occupied_id,
                             std::string_view foresight_id, const Reading& reading,
                             std::string_view description);
/// "--Reading %d(D)" or "(R)": one reading of a set, with the rod height.
std::string SetReadingComment(int number, bool direct, std::string_view foresight_id,
                              const Reading& reading, std::string_view description,
                              double rod_height);
/// OF of an offset taken with the instrument, and with a laser range finder.
std::string OffsetRecord(const Reading& reading);
std::string LaserOffsetRecord(double azimuth_degrees, double change_in_elevation,
                              double horizontal_distance);

}  // namespace tarvex
