// Localization files (".loc"): the list of control points as an XML document
// (docs/formats/localization.md).
//
// In the file angles are decimal degrees and lengths metres; in the list angles are radians and the
// local coordinates are in the job's distance unit. HRMS and VRMS go through as they are.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "coordsys/localization/localization_points.h"
#include "core/units/units.h"
#include "platform/file.h"

namespace tarvex {

enum class [[nodiscard]] SaveLocalizationResult : int {
  Saved = 1,
  NothingWritten = 0,  ///< no list, a value that is not a number, or the file cannot be written
};

/// The document. Points after the first empty slot are not part of it.
std::string LocalizationText(const LocalizationList& list, DistanceUnit unit);

/// Replaces the file in one step, so that a crash leaves the old one or the new one. `list` may be
/// null.
SaveLocalizationResult SaveLocalization(FileSystem& files, const std::string& path,
                                        const LocalizationList* list, DistanceUnit unit);

/// Why a file was refused: the line, 0 for the file as a whole, and a sentence.
struct LocalizationFault {
  int line = 0;
  std::string text;

  /// "PATH, line 12: ...".
  std::string Text(const std::string& path) const;
};

struct ReadLocalization {
  LocalizationList points;
  /// Values of the root record beside "Units", such as "Zone", "3TM" and "GEOID": name and text.
  std::vector<std::pair<std::string, std::string>> settings;
};

/// Nothing, and the fault, when the document is no localization or a damaged one.
std::optional<ReadLocalization> ParseLocalization(std::string_view document, DistanceUnit unit,
                                                  LocalizationFault& fault);
std::optional<ReadLocalization> LoadLocalization(FileSystem& files, const std::string& path,
                                                 DistanceUnit unit, LocalizationFault& fault);

}  // namespace tarvex
