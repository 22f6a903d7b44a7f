// What the raw file tells of a job whose settings file was lost: its unit, its azimuths, its
// coordinate system. What it does not tell keeps the job from storing, so that nothing is stored by
// a guess.
#pragma once

#include <string>

#include "core/job/job.h"
#include "core/job/settings.h"

namespace tarvex {

struct RecoveredSettings {
  Settings settings;
  std::string taken;           ///< what was taken from where, the end of a sentence
  std::string storingProblem;  ///< why nothing may be stored; empty when everything may
};

/// Reads the raw file; nothing is written.
RecoveredSettings RecoverSettings(Job& job);

}  // namespace tarvex
