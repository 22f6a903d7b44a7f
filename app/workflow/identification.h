#pragma once

#include <string>

namespace tarvex {

/// "Tarvex " and the version: what the program calls itself, in the raw file too.
std::string ProgramIdentification();

}  // namespace tarvex
