// Compiled into every program that links Tarvex::coordsys: the closed libraries are found where
// they were installed.
#include "tarvex/platform/run_time_library.h"

namespace {

[[maybe_unused]] const bool kAdded = (tarvex::AddRunTimeLibraryFolder(TARVEX_MODULE_FOLDER), true);

}  // namespace
