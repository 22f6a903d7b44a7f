#include "app/cli/refusal_lines.h"

namespace tarvex {
namespace {

// The limits count as kept when they are kept for so long.
constexpr std::int64_t kCalmMs = 3000;

}  // namespace

std::optional<std::string> RefusalLines::Take(const LimitRefuses& what, std::int64_t nowMs) {
  if (!what.refusal) {
    if (told_) keptSinceMs_ = nowMs;
    return std::nullopt;
  }
  keptSinceMs_.reset();
  if (told_) return std::nullopt;
  told_ = true;
  beganMs_ = nowMs;
  return "Not stored: " + RefusalSentence(*what.refusal);
}

std::optional<std::string> RefusalLines::Look(std::int64_t nowMs) {
  if (!keptSinceMs_ || nowMs - *keptSinceMs_ < kCalmMs) return std::nullopt;
  const std::int64_t refusedMs = *keptSinceMs_ - beganMs_;
  *this = {};
  return "The limits are kept again, after " + std::to_string(refusedMs / 1000) + " s.";
}

}  // namespace tarvex
