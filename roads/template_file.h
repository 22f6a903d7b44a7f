// Template files (".tpl", docs/formats/tpl.md): reading and writing.
#pragma once

#include <string>
#include <string_view>

#include "platform/file.h"
#include "roads/road.h"

namespace tarvex {

enum class [[nodiscard]] LoadTemplateResult : int {
  Loaded = 1,
  NotOpened = 0,
  TooLarge = -1,  ///< beyond kLargestTemplate
};

inline constexpr std::uint64_t kLargestTemplate = 4U << 20U;

/// Reads the template into the road; the road is left as it was unless the result is Loaded.
LoadTemplateResult LoadTemplate(FileSystem& files, Road& road, const std::string& path);

/// Writes a template. One that is as it was read goes back byte for byte; a new one, and one whose
/// fields were changed, is written from its fields (roads/template_writer.h).
FileStatus WriteTemplate(FileSystem& files, const std::string& path, const RoadTemplate& section);

}  // namespace tarvex
