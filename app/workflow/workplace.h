// Where work is done: the files, the clock, and the observer of it. A face (the command line, a
// screen, a test) hands it in; the workflow itself prints nothing and ends nothing.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "core/job/job.h"
#include "platform/clock.h"
#include "platform/file.h"

namespace tarvex {

/// The point that a person has to decide about: one of this id exists.
struct ExistingPointQuestion {
  std::string id;
  Point existing;
  std::optional<GridPoint> wanted;  ///< what is to be stored, where it is known
};

class WorkObserver {
 public:
  virtual ~WorkObserver() = default;

  /// Something was not done; the sentence says what and why.
  virtual void OnError(const std::string& sentence) = 0;
  /// Something to know before going on.
  virtual void OnWarning(const std::string& sentence) = 0;
  /// A message that brings its own title.
  virtual void OnMessage(std::string_view title, std::string_view text) = 0;
  /// How far a longer work is; `line` replaces the one before.
  virtual void OnProgress(std::string_view line) = 0;
  virtual void OnProgressEnd() = 0;
  virtual ExistingPointAnswer AskExistingPoint(const ExistingPointQuestion& question) = 0;
};

struct Workplace {
  FileSystem& files;
  Clock& clock;
  WorkObserver& observer;
};

}  // namespace tarvex
