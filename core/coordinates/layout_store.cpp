#include "core/coordinates/layout_store.h"

#include "core/coordinates/alphanumeric_store.h"
#include "core/coordinates/numeric_store.h"

namespace tarvex {

std::unique_ptr<LayoutStore> MakeLayoutStore(Job& job, RecordFile& file, bool alphanumeric) {
  if (alphanumeric) return std::make_unique<AlphanumericStore>(job, file);
  return std::make_unique<NumericStore>(job, file);
}

}  // namespace tarvex
