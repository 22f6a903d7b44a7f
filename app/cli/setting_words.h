// "KEY=VALUE" and "KEY" of a command line.
#pragma once

#include <string>
#include <vector>

#include "core/job/settings.h"

namespace tarvex {

/// The entries that are to be set; none when all words are keys alone. False with a sentence in
/// `problem` when there are both.
[[nodiscard]] bool ReadSettingWords(const std::vector<std::string>& words,
                                    std::vector<Settings::Entry>& entries, std::string& problem);

}  // namespace tarvex
