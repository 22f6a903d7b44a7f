// Centerline files (".cl", docs/formats/cl.md) and their side file of station limits (".cle").
#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "platform/file.h"
#include "roads/road.h"

namespace tarvex {

/// A larger file is refused before it is read.
inline constexpr std::uint64_t kLargestRoadFile = 64U << 20U;

enum class [[nodiscard]] LoadCenterlineResult : int {
  Loaded = 1,
  Nothing = 0,     ///< no path, or no key point in the file
  NotOpened = -1,  ///< with reportErrors the message 5223 was shown
  TooLarge = -2,   ///< beyond kLargestRoadFile
  TooLong = -3     ///< beyond kMostCenterlineElements; `line` tells where
};

struct [[nodiscard]] CenterlineLoad {
  LoadCenterlineResult result = LoadCenterlineResult::Nothing;
  int line = 0;
};

struct LoadCenterlineOptions {
  bool reportErrors = false;
  bool keepTangentPoints = false;
};

/// Shows a text to the user.
using ShowMessage = std::function<void(std::string_view)>;

/// Reads the alignment into the road, the station limits first when the road uses them. The road is
/// left as it was unless the result is Loaded.
CenterlineLoad LoadCenterline(FileSystem& files, Road& road, const std::string& path,
                              LoadCenterlineOptions options = {}, const ShowMessage& show = {});

/// The side file of station limits: `path` with its extension replaced by "cle".
std::string StationLimitsPath(const std::string& path);

}  // namespace tarvex
