// Settings of a job are changed together or not at all, durably, and the raw file tells of those
// that change what is measured.
#pragma once

#include <string>
#include <vector>

#include "app/workflow/job_session.h"

namespace tarvex {

enum class [[nodiscard]] SettingsResult {
  Done,
  BadEntry,  ///< nothing was changed; a sentence for each entry that makes no sense
  Failed     ///< a file could not be written; nothing was changed
};

struct SettingsOutcome {
  SettingsResult result = SettingsResult::Done;
  std::vector<std::string> problems;
};

/// An entry without a value removes the setting. The job was loaded.
SettingsOutcome ChangeSettings(const Workplace& work, JobSession& session,
                               const std::vector<Settings::Entry>& entries);

}  // namespace tarvex
