#include "app/workflow/recorded_clock.h"

#include <chrono>

#include "core/text/number_text.h"
#include "gnss/position/position_state.h"

namespace tarvex {
namespace {

namespace chrono = std::chrono;

constexpr std::int32_t kDayMs = 86'400'000;
constexpr std::int64_t kDaySeconds = 86'400;

chrono::year_month_day DateOf(const LocalTime& time) {
  return chrono::year(time.year) / chrono::month(static_cast<unsigned>(time.month)) /
         chrono::day(static_cast<unsigned>(time.day));
}

std::int64_t SecondsOf(const LocalTime& time) {
  return chrono::sys_days(DateOf(time)).time_since_epoch().count() * kDaySeconds +
         (time.hour * 60 + time.minute) * 60 + time.second;
}

LocalTime TimeOf(std::int64_t seconds) {
  const auto ofDay = static_cast<int>(((seconds % kDaySeconds) + kDaySeconds) % kDaySeconds);
  const chrono::year_month_day date{
      chrono::sys_days(chrono::days((seconds - ofDay) / kDaySeconds))};
  return {.year = static_cast<int>(date.year()),
          .month = static_cast<int>(static_cast<unsigned>(date.month())),
          .day = static_cast<int>(static_cast<unsigned>(date.day())),
          .hour = ofDay / 3600,
          .minute = ofDay / 60 % 60,
          .second = ofDay % 60};
}

// Forward over midnight, or back when that is not far: receivers settle, and logs are joined.
std::int32_t StepBetween(std::int32_t beforeMs, std::int32_t epochMs) {
  constexpr std::int32_t kFarthestBackMs = 3'600'000;
  const std::int32_t step = (epochMs - beforeMs + kDayMs) % kDayMs;
  return step >= kDayMs - kFarthestBackMs ? step - kDayMs : step;
}

}  // namespace

RecordedClock::RecordedClock(Clock& clock, const LocalTime& start)
    : clock_(clock), startS_(SecondsOf(start)), lastEpochMs_(kNoEpoch) {}

void RecordedClock::Follow(std::int32_t epochMs) {
  if (epochMs == kNoEpoch) return;
  if (lastEpochMs_ != kNoEpoch) passedMs_ += StepBetween(lastEpochMs_, epochMs);
  lastEpochMs_ = epochMs;
}

LocalTime RecordedClock::Now() {
  return TimeOf(startS_ + passedMs_ / 1000);
}

std::optional<LocalTime> ParseLocalTime(std::string_view text) {
  constexpr std::string_view kForm = "dddd-dd-dd dd:dd:dd";
  if (text.size() != kForm.size()) return std::nullopt;
  for (std::size_t i = 0; i < kForm.size(); ++i) {
    const bool digit = text[i] >= '0' && text[i] <= '9';
    const bool fits = kForm[i] == 'd'   ? digit
                      : kForm[i] == ' ' ? text[i] == ' ' || text[i] == 'T'
                                        : text[i] == kForm[i];
    if (!fits) return std::nullopt;
  }
  const auto number = [text](std::size_t at, std::size_t size) {
    return static_cast<int>(LeadingInteger(text.substr(at, size)));
  };
  const LocalTime time{.year = number(0, 4),
                       .month = number(5, 2),
                       .day = number(8, 2),
                       .hour = number(11, 2),
                       .minute = number(14, 2),
                       .second = number(17, 2)};
  const bool valid = DateOf(time).ok() && time.hour < 24 && time.minute < 60 && time.second < 60;
  return valid ? std::optional(time) : std::nullopt;
}

}  // namespace tarvex
