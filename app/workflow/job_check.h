// Holds the files of a job against each other: what is missing, double or contradictory. Nothing is
// changed but what opening a job finishes anyway, and nothing is printed.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "core/job/job.h"
#include "core/job/settings.h"

namespace tarvex {

enum class JobFault {
  // of the job as a whole
  SettingsMissing,
  SettingUnused,  ///< arguments: the sentence
  RawFileMissing,
  UnitContradicts,     ///< arguments: unit of the settings, unit of the raw header
  AzimuthsContradict,  ///< arguments: of the settings, of the raw header ("north" or "south")
  LayoutContradicts,   ///< arguments: of the file, of the raw header
  FileLeft,            ///< arguments: the path of what an interrupted change left
  // of the coordinate file
  CountContradicts,  ///< arguments: count of the header, records
  TrailingBytes,     ///< arguments: how many
  OutOfOrder,        ///< point, arguments: the one before it
  IdTwice,
  // of the raw file; with its line
  RecordBroken,   ///< a record without all its fields, arguments: the line
  NoCoordinates,  ///< a stored point that is not in the coordinate file and was not deleted
  // of a point
  NoObservation,
  StillThere,         ///< the raw file says that it was deleted
  CoordinatesDiffer,  ///< arguments: N, E, EL of the coordinate file, N, E, EL of its last record
  // of the notes; with its line
  QualityOnTyped,  ///< a GNSS quality for coordinates that were typed or computed
  QualityMissing,  ///< a GNSS position without its quality
  NoteTwice,
  NoteWithoutPoint,
};

struct JobFinding {
  JobFault fault = JobFault::NoObservation;
  std::string pointId = {};
  std::size_t line = 0;  ///< of the raw file or the notes, from 1; 0 when none is meant
  std::vector<std::string> arguments = {};
};

struct JobCheck {
  std::size_t points = 0;
  std::size_t rawRecords = 0;  ///< lines that are not comments
  std::size_t notes = 0;
  std::vector<JobFinding> findings;  ///< by kind, in the order of the files
};

/// Nothing after a message when a file cannot be read. The time grows with the files, the memory
/// with them too.
std::optional<JobCheck> CheckJob(Job& job, const Settings& settings);

}  // namespace tarvex
