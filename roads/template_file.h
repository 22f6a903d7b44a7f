// Template files (".tpl", docs/formats/tpl.md): reading, the text of a new one, writing.
#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "platform/file.h"
#include "roads/road.h"

namespace tarvex {

enum class [[nodiscard]] LoadTemplateResult : int{
    Loaded = 1, NotOpened = 0,
    TooLarge = -1,  ///< beyond kLargestTemplate
};

inline constexpr std::uint64_t kLargestTemplate = 4U << 20U;

/// Reads the template into the road; the road is left as it was unless the result is Loaded.
LoadTemplateResult LoadTemplate(FileSystem& files, Road& road, const std::string& path);

/// The template of a text. Every text is one; lines of an unknown key are passed over.
RoadTemplate ReadTemplate(std::string_view text);

/// What a new template is made from.
struct TemplateDraft {
  std::vector<SurfaceSegment> left;
  std::vector<SurfaceSegment> right;
  std::optional<SlopeRow> fill_left;
  std::optional<SlopeRow> fill_right;
  std::optional<SlopeRow> cut_left;
  std::optional<SlopeRow> cut_right;
};

/// The text of a new template. A ratio is written as the grade that it is: the form of a new file
/// knows grades and elevation changes only.
std::string NewTemplateText(const TemplateDraft& draft);

/// Writes a new template.
FileStatus WriteTemplate(FileSystem& files, const std::string& path, const TemplateDraft& draft);

/// Writes the template as it stands: the text that it was read from, byte for byte.
FileStatus WriteTemplate(FileSystem& files, const std::string& path, const RoadTemplate& section);

}  // namespace tarvex
