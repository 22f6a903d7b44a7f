// The closed libraries of our own making, for tests that need them.
#pragma once

#include "platform/run_time_library.h"

namespace tarvex {

/// Makes "CoordSys.dll" be found where the build put it.
inline void RequireModules() {
  AddRunTimeLibraryFolder(TARVEX_MODULE_FOLDER);
}

}  // namespace tarvex
