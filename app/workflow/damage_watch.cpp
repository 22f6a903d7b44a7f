#include "app/workflow/damage_watch.h"

namespace tarvex {
namespace {

constexpr std::int64_t kStretchMs = 10'000;
constexpr std::uint64_t kMany = 3;
constexpr std::uint64_t kPositionsForEach = 4;

}  // namespace

std::optional<SentencesDamaged> DamageWatch::Look(std::uint64_t damaged, std::uint64_t positions,
                                                  std::int64_t nowMs) {
  if (!stretch_) stretch_ = {nowMs, damaged, positions};
  const std::int64_t passedMs = nowMs - stretch_->fromMs;
  if (passedMs < kStretchMs) return std::nullopt;
  const std::uint64_t nowDamaged = damaged - stretch_->damaged;
  const std::uint64_t nowPositions = positions - stretch_->positions;
  stretch_ = {nowMs, damaged, positions};
  if (nowDamaged == 0) told_ = false;
  const bool many = nowDamaged >= kMany && nowDamaged * kPositionsForEach >= nowPositions;
  if (!many || told_) return std::nullopt;
  told_ = true;
  return SentencesDamaged{.count = nowDamaged, .inMs = passedMs};
}

}  // namespace tarvex
