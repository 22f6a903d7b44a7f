#include "coordsys/projections/lanes.h"

#include <atomic>

namespace tarvex {
namespace {

std::atomic<bool> withoutFourLanes = false;

}  // namespace

bool HasFourLanes() noexcept {
#if defined(TARVEX_FOUR_LANES)
  return !withoutFourLanes && __builtin_cpu_supports("avx2");
#else
  return false;
#endif
}

void WithoutFourLanes(bool without) noexcept {
  withoutFourLanes = without;
}

}  // namespace tarvex
