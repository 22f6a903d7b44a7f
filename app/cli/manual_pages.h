// Manual pages (man) of the program and of each of its commands.
#pragma once

#include <string>
#include <vector>

#include "app/cli/command_description.h"

namespace tarvex {

struct ManualPage {
  std::string file;  ///< "tarvex-road-stake.1"
  std::string text;  ///< for man, groff and mandoc
};

/// `version` as the foot of the pages has it: "Tarvex 0.2.0".
std::vector<ManualPage> ManualPages(const CommandDescription& program, const std::string& version);

}  // namespace tarvex
