// Every setting that a job or a profile can have: one table for what the program takes, what it
// says of a setting, and what it calls a mistake. docs/formats/job.md is made of the same rows.
#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "core/units/units.h"

namespace tarvex {

/// What a setting belongs to, which says who may change it.
enum class SettingUse {
  Header,        ///< the raw file begins with it: it stays as the job was made
  System,        ///< where the coordinates lie
  Localization,  ///< `tarvex localize` changes it
  Job,           ///< of one job
  Session        ///< of the work with a receiver: a profile may hold it as well
};

struct KnownSetting {
  std::string_view key;
  std::string_view meaning;
  std::string_view byDefault;  ///< empty: without it there is none
  std::string_view values;     ///< what it takes; empty: what SettingValues says of a receiver's
  SettingUse use = SettingUse::Job;
  bool journaled = false;  ///< it changes what is measured: the raw file tells of a change
  bool isLength = false;   ///< in the job's unit; in a profile in the profile's
  bool (*accepts)(std::string_view value) = nullptr;  ///< null: as the receiver or the gate does

  std::string Values() const;
};

/// All of them, in the order in which they are listed.
std::span<const KnownSetting> KnownSettings();

/// Null for a key that is none. COM2, COM3 ... are found under COM1, of which there is one row.
const KnownSetting* FindSetting(std::string_view key);

/// The key that was probably meant; empty when none is near.
std::string_view NearestSetting(std::string_view key);

/// Why this cannot be set, in a sentence; empty when it can. The value is not empty.
std::string SettingProblem(std::string_view key, std::string_view value);

/// "us-feet", "metres" and "intl-feet", as settings and options name the units.
std::optional<DistanceUnit> ParseUnit(std::string_view name);
std::string_view UnitKey(DistanceUnit unit);

}  // namespace tarvex
