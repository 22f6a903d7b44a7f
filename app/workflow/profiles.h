// Profiles: what a person works with on every job (receiver, antenna, caster, limits), kept under a
// name in the user's configuration folder. docs/formats/profile.md shows the file.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "core/job/settings.h"
#include "core/units/units.h"
#include "platform/file.h"

namespace tarvex {

/// $XDG_CONFIG_HOME/tarvex/profiles/, else ~/.config/tarvex/profiles/.
std::string ProfileFolder();
std::string ProfilePath(const std::string& name);

/// The names of the profiles that there are, in order.
std::vector<std::string> ProfileNames();

/// Nothing with a sentence in `problem`: no such profile (with the nearest name), or an entry that
/// makes no sense, for somebody relies on it.
std::optional<Settings> LoadProfile(FileSystem& files, const std::string& name,
                                    std::string& problem);

/// Sets entries of a profile, which is made when there is none; an entry without a value removes
/// one. All are taken or none, with the sentences that are returned.
std::vector<std::string> SaveProfile(FileSystem& files, const std::string& name,
                                     const std::vector<Settings::Entry>& entries);

/// False with a sentence in `problem`.
[[nodiscard]] bool DeleteProfile(FileSystem& files, const std::string& name, std::string& problem);

/// A kept password is for the user and the caster that are kept with it; another caster is not told
/// it. True as well when the settings keep no caster.
bool IsPasswordFor(std::string_view address, const Settings& settings);

/// What holds with this job and this profile: the job's own settings, and of the profile those that
/// the job does not have. Lengths of the profile come in the unit of the job.
Settings WithProfile(const Settings& job, const Settings& profile, DistanceUnit jobUnit);

/// Why a file cannot keep a password, in a sentence: it is not there, or others can read it.
std::string PasswordFileProblem(const std::string& path);

/// A setting that names a file, which is kept from the root: a profile is used everywhere.
bool IsPathFromRoot(std::string_view key);
/// From the root, with "~/" for the home folder.
std::string WholePath(const std::string& path);

}  // namespace tarvex
