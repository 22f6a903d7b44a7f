// Centerline files (".cl", docs/formats/cl.md) and their side file of station limits (".cle").
#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "core/text/outcome.h"
#include "platform/file.h"
#include "roads/road.h"

namespace tarvex {

/// A larger file is refused before it is read.
inline constexpr std::uint64_t kLargestRoadFile = 64U << 20U;

/// Why no centerline is loaded.
enum class CenterlineFault {
  Nothing,    ///< no path, or no key point in the file
  NotOpened,  ///< with reportErrors the message 5223 was shown
  TooLarge,   ///< beyond kLargestRoadFile
  TooLong     ///< beyond kMostCenterlineElements; the line is the place
};

struct LoadCenterlineOptions {
  bool reportErrors = false;
  bool keepTangentPoints = false;
};

/// Shows a text to the user.
using ShowMessage = std::function<void(std::string_view)>;

/// Reads the alignment into the road, the station limits first when the road uses them, and gives
/// the road's centerline. Without one the road is left as it was.
Outcome<Centerline*, CenterlineFault> LoadCenterline(FileSystem& files, Road& road,
                                                     const std::string& path,
                                                     LoadCenterlineOptions options = {},
                                                     const ShowMessage& show = {});

/// The side file of station limits: `path` with its extension replaced by "cle".
std::string StationLimitsPath(const std::string& path);

}  // namespace tarvex
