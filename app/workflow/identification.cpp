#include "app/workflow/identification.h"

#include "app/version.h"

namespace tarvex {

std::string ProgramIdentification() {
  return std::string("Tarvex ") + kVersion;
}

}  // namespace tarvex
