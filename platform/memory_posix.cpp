#include <sys/mman.h>

#include <cstdint>

#include "platform/memory.h"

namespace tarvex {

void PreferLargePages(void* memory, std::size_t size) {
#ifdef MADV_HUGEPAGE
  constexpr std::uintptr_t kLargePage = std::uintptr_t{2} << 20U;
  const auto from = reinterpret_cast<std::uintptr_t>(memory);
  const std::uintptr_t first = (from + kLargePage - 1) & ~(kLargePage - 1);
  const std::uintptr_t last = (from + size) & ~(kLargePage - 1);
  if (first >= last) return;
  // NOLINTNEXTLINE(performance-no-int-to-ptr): the first large page inside the block
  (void)::madvise(reinterpret_cast<void*>(first), last - first, MADV_HUGEPAGE);
#else
  (void)memory;
  (void)size;
#endif
}

}  // namespace tarvex
