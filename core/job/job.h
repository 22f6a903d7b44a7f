// The open job: where its coordinate file is, what is known of it, and which point id comes next.
// Files are opened for each operation and closed again; the job never holds one open.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "core/journal/job_files.h"
#include "core/points/point.h"
#include "core/units/units.h"
#include "platform/clock.h"
#include "platform/file.h"

namespace tarvex {

/// What the person in front of the program decides when the point to store may exist already.
struct ExistingPointAnswer {
  enum class Choice { Overwrite, UseOtherId, UseNextFreeId, Cancel, Failed };
  Choice choice = Choice::Overwrite;
  std::string otherId = {};  ///< with UseOtherId
};

/// What a job needs from the program around it.
class JobHost {
 public:
  virtual ~JobHost() = default;

  virtual FileSystem& files() = 0;
  virtual Clock& clock() = 0;
  /// Called before a store that was asked to check, when the id is not beyond the last one.
  /// `exists` says whether a point with this id is really there.
  virtual ExistingPointAnswer AskExistingPoint(const std::string& id, bool exists) = 0;
  virtual void ShowMessage(const std::string& text) = 0;
  virtual void ShowWaitCursor(bool shown) = 0;
};

/// Texts that a job carries about itself.
struct JobInformation {
  std::string startDate;
  std::string startTime;
  std::string lastModifiedDate;
  std::string lastModifiedTime;
};

/// The point under the instrument and what it was sighted to.
struct InstrumentSetup {
  std::string occupiedId;
  std::string backsightId;
  double circleDegrees = 0.0;

  bool operator==(const InstrumentSetup&) const = default;
};

/// The coordinate file as it was when it was last opened or stored into.
struct StoreState {
  bool alphanumeric = true;       ///< the layout; decided when the file is opened
  std::string lastPointId = "0";  ///< "0" in an empty file
  long long lastPointNumber = 0;  ///< numeric: the highest; alphanumeric: with which lastPointId
                                  ///< begins, else 0
  std::uint64_t foundRecordPosition = 0;  ///< of the last lookup in an alphanumeric file; bytes
  Point lastStoredPoint;

  /// "Alphanumeric" or "Numeric", as the raw file names it.
  std::string_view layoutName() const { return alphanumeric ? "Alphanumeric" : "Numeric"; }
};

/// Which id the next store uses, and how it goes on from there.
struct IdSequence {
  std::string current;  ///< a number in a numeric file
  long long increment = 1;
};

/// How the job counts and measures, and how it names what collects.
struct JobOptions {
  bool alphanumericNewFiles = true;
  DistanceUnit unit = DistanceUnit::Metres;
  bool azimuthsFromSouth = false;
  double scaleFactor = 1.0;
  bool curvatureCorrection = false;
  std::string collector = "Tarvex";  ///< identification line of the raw file
};

struct Job {
  explicit Job(JobHost& jobHost) : host(jobHost) {}

  JobHost& host;
  std::string path;  ///< of the coordinate file
  std::string name;  ///< written into the raw file; empty for a job without a name
  JobOptions options;
  JobInformation information;
  InstrumentSetup setup;

  StoreState store;
  IdSequence ids;

  // What is remembered between two operations, and checked against the files before it is used.
  JournalPlace journal;  ///< what this program has not yet settled
  NoteIndex noted;       ///< the points that have a block in the notes
};

/// Moves the job's current point id on by its increment, after a store.
void AdvanceCurrentPoint(Job& job);

}  // namespace tarvex
