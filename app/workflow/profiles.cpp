#include "app/workflow/profiles.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>

#include "app/workflow/known_settings.h"
#include "core/journal/file_rewrite.h"
#include "core/text/edit_distance.h"
#include "core/text/number_text.h"
#include "core/text/text.h"
#include "platform/secret.h"

namespace tarvex {
namespace {

namespace fs = std::filesystem;

constexpr std::string_view kExtension = ".profile";
constexpr std::uint64_t kLargestProfile = 1 << 20;
constexpr std::size_t kLongestName = 64;

std::string Environment(const char* name) {
  const char* value = std::getenv(name);
  return value == nullptr ? std::string() : value;
}

bool IsProfileName(std::string_view name) {
  const auto isPlain = [](char c) {
    return IsDigit(c) || (LowerCase(c) >= 'a' && LowerCase(c) <= 'z') || c == '-' || c == '_' ||
           c == '.';
  };
  return !name.empty() && name.size() <= kLongestName && name.front() != '.' &&
         name.front() != '-' && std::all_of(name.begin(), name.end(), isPlain);
}

// Why an entry has no place in a profile; empty when it has one.
std::string EntryProblem(const Settings::Entry& entry) {
  if (entry.key == "password") {
    return "A password has no place in a profile: put it into a file of its own that you alone can "
           "read (chmod 600) and set password_file=FILE.";
  }
  const KnownSetting* const setting = FindSetting(entry.key);
  const bool fits =
      setting == nullptr || setting->use == SettingUse::Session || entry.key == "units";
  if (!fits) {
    return entry.key + " belongs to a job, not to a profile: `tarvex settings JOB.crd " +
           entry.key + "=" + entry.value + "`.";
  }
  return SettingProblem(entry.key, entry.value);
}

std::string NoProfile(const std::string& name) {
  std::string nearest;
  std::size_t least = name.size() / 3 + 2;
  const std::vector<std::string> names = ProfileNames();
  for (const std::string& known : names) {
    const std::size_t distance = EditDistance(name, known);
    if (distance >= least) continue;
    least = distance;
    nearest = known;
  }
  return "There is no profile \"" + name + "\"" +
         (nearest.empty() ? names.empty()
                                ? "; `tarvex profile save " + name + " receiver=...` makes it."
                                : "; `tarvex profile list` shows those there are."
                          : "; did you mean " + nearest + "?");
}

// "ntrip://me@caster.example:2101", of an address with a mountpoint behind it.
std::string_view LoginOf(std::string_view address) {
  const std::size_t scheme = address.find("://");
  if (scheme == std::string_view::npos) return address;
  return address.substr(0, address.find('/', std::max(scheme + 3, address.rfind('@') + 1)));
}

}  // namespace

std::string ProfileFolder() {
  const std::string own = Environment("XDG_CONFIG_HOME");
  const std::string home = Environment("HOME");
  const fs::path folder =
      own.starts_with('/') ? fs::path(own) : fs::path(home.empty() ? "." : home) / ".config";
  return (folder / "tarvex" / "profiles").string() + "/";
}

std::string ProfilePath(const std::string& name) {
  return ProfileFolder() + name + std::string(kExtension);
}

std::vector<std::string> ProfileNames() {
  std::vector<std::string> names;
  std::error_code error;
  for (auto at = fs::directory_iterator(ProfileFolder(), error);
       !error && at != fs::directory_iterator(); at.increment(error)) {
    const std::string name = at->path().stem().string();
    if (at->path().extension() == kExtension && IsProfileName(name)) names.push_back(name);
  }
  std::sort(names.begin(), names.end());
  return names;
}

std::optional<Settings> LoadProfile(FileSystem& files, const std::string& name,
                                    std::string& problem) {
  if (!IsProfileName(name)) {
    problem = "\"" + name + "\" is no name for a profile: letters, digits, \"-\", \"_\" and \".\".";
    return std::nullopt;
  }
  const std::string path = ProfilePath(name);
  std::string text;
  const FileStatus status = ReadWholeFile(files, path, kLargestProfile, text);
  if (!status.ok()) {
    problem = status.notFound() ? NoProfile(name)
                                : "The profile " + path + " cannot be read: " + status.Text() + ".";
    return std::nullopt;
  }
  Settings profile(text);
  for (const Settings::Entry& entry : profile.Entries()) {
    problem = EntryProblem(entry);
    if (problem.empty()) continue;
    problem = "The profile " + path + " is not used: " + problem;
    return std::nullopt;
  }
  return profile;
}

std::vector<std::string> SaveProfile(FileSystem& files, const std::string& name,
                                     const std::vector<Settings::Entry>& entries) {
  Settings profile;
  std::string problem;
  if (files.Exists(ProfilePath(name))) {
    const auto read = LoadProfile(files, name, problem);
    if (!read) return {problem};
    profile = *read;
  } else if (!IsProfileName(name)) {
    (void)LoadProfile(files, name, problem);
    return {problem};
  }
  std::vector<std::string> problems;
  for (const Settings::Entry& entry : entries) {
    if (entry.value.empty()) {
      if (!profile.Get(entry.key)) {
        problems.push_back("The profile has no " + entry.key + " that could be removed.");
      }
      profile.Remove(entry.key);
      continue;
    }
    problem = EntryProblem(entry);
    const bool isSecret = entry.key == "password_file";
    if (problem.empty() && isSecret) problem = PasswordFileProblem(entry.value);
    if (!problem.empty()) problems.push_back(problem);
    profile.Set(entry.key, IsPathFromRoot(entry.key) ? WholePath(entry.value) : entry.value);
  }
  if (!problems.empty()) return problems;
  std::error_code error;
  fs::create_directories(ProfileFolder(), error);
  const FileStatus status = ReplaceWholeFile(files, ProfilePath(name), profile.Text());
  if (status.ok()) return {};
  return {"The profile " + ProfilePath(name) + " cannot be written: " + status.Text() + "."};
}

bool DeleteProfile(FileSystem& files, const std::string& name, std::string& problem) {
  const bool isThere = IsProfileName(name) && files.Exists(ProfilePath(name));
  const FileStatus status = isThere ? files.Remove(ProfilePath(name)) : FileStatus{};
  if (!isThere) problem = NoProfile(name);
  if (!status.ok()) problem = ProfilePath(name) + " cannot be removed: " + status.Text() + ".";
  return isThere && status.ok();
}

bool IsPasswordFor(std::string_view address, const Settings& settings) {
  const auto kept = settings.Get("corrections");
  return !kept || LoginOf(address) == LoginOf(*kept);
}

Settings WithProfile(const Settings& job, const Settings& profile, DistanceUnit jobUnit) {
  Settings merged = job;
  const auto ownCaster = job.Get("corrections");
  const DistanceUnit unit =
      ParseUnit(profile.GetOr("units", "metres")).value_or(DistanceUnit::Metres);
  for (const auto& [key, value] : profile.Entries()) {
    const KnownSetting* const setting = FindSetting(key);
    if (setting == nullptr || setting->use != SettingUse::Session || job.Get(key)) continue;
    if (key == "password_file" && ownCaster && !IsPasswordFor(*ownCaster, profile)) continue;
    const auto length = setting->isLength ? ParseNumber(value) : std::nullopt;
    const bool isOther = length && unit != jobUnit;
    merged.Set(key, isOther ? FixedNumber(FromMetres(ToMetres(*length, unit), jobUnit), 6) : value);
  }
  return merged;
}

std::string PasswordFileProblem(const std::string& path) {
  std::string secret;
  switch (ReadSecretFile(WholePath(path), secret)) {
    case SecretResult::Found:
      return {};
    case SecretResult::OpenToOthers:
      return "The password file " + path +
             " can be read by others; make it yours alone: chmod 600 " + path;
    case SecretResult::Missing:
      break;
  }
  return "The password file " + path + " cannot be read.";
}

bool IsPathFromRoot(std::string_view key) {
  return key == "password_file" || key == "ca_file";
}

std::string WholePath(const std::string& path) {
  if (path.starts_with("~/")) return Environment("HOME") + path.substr(1);
  std::error_code error;
  const std::string whole = fs::absolute(path, error).lexically_normal().string();
  return error ? path : whole;
}

}  // namespace tarvex
