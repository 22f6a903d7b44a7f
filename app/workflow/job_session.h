// A job as the program opens it: the settings file beside the coordinate file, the core's Job
// filled from it, and the answers to what the store may ask.
#pragma once

#include <optional>
#include <string>

#include "app/workflow/known_settings.h"
#include "app/workflow/workplace.h"
#include "core/job/job.h"
#include "core/job/settings.h"
#include "core/raw_data/raw_file.h"

namespace tarvex {

/// What happens when a point to store exists already.
enum class ExistingPolicy { Ask, Overwrite, Next, Cancel };

class JobSession final : public JobHost {
 public:
  /// `path` names the coordinate file.
  JobSession(const Workplace& work, const std::string& path);
  /// Makes durable what is not yet, and leaves the job as its files alone.
  ~JobSession() override;
  JobSession(const JobSession&) = delete;
  JobSession& operator=(const JobSession&) = delete;

  /// Reads NAME.job and fills the job; a missing file means the settings of a new job. False after
  /// a message when the settings cannot be read or make no sense.
  bool Load();
  /// The same for a job that must exist: without its coordinate file there is nothing to work on.
  /// Settings that were lost are taken from the raw file, or nothing is stored.
  bool LoadExisting();
  /// Writes the settings durably; false after a message.
  bool Save();

  Job& job() { return job_; }
  Settings& settings() { return settings_; }
  std::string settingsPath() const;
  WorkObserver& observer() { return work_.observer; }
  /// Work that an interruption had left was finished when the job was opened.
  bool wasInterrupted() const { return wasInterrupted_; }
  /// Why nothing may be stored in this job, in a sentence; empty when everything may.
  const std::string& storingProblem() const { return storingProblem_; }

  /// What opens the raw file for further work, to be written with the first unit of this session:
  /// the identification line where it is missing, date and time. Empty once it is written.
  std::string RawOpening() { return rawOpened_ ? "" : RawOpeningRecords(job_); }
  void RawIsOpened() { rawOpened_ = true; }
  void setPolicy(ExistingPolicy policy) { policy_ = policy; }
  ExistingPolicy policy() const { return policy_; }

  // What the core asks for.
  FileSystem& files() override { return work_.files; }
  Clock& clock() override { return work_.clock; }
  ExistingPointAnswer AskExistingPoint(const std::string& id, bool exists) override;
  void ShowMessage(const std::string& text) override;
  void ShowWaitCursor(bool shown) override;

 private:
  bool TakeRecovered();
  bool TakeSettings();

  Workplace work_;
  Settings settings_;
  Job job_;
  bool rawOpened_ = false;
  bool wasInterrupted_ = false;
  std::string storingProblem_;
  ExistingPolicy policy_ = ExistingPolicy::Cancel;
};

}  // namespace tarvex
