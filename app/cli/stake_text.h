// What a stake's position, difference and doubt are in words and in JSON.
#pragma once

#include <functional>
#include <string>

#include "app/cli/json_text.h"
#include "app/workflow/stake_events.h"

namespace tarvex {

/// "at 1+209.996 3.606 L  forward 0.004  right 0.006  S 0.006  E 0.004  C 0.005  ON THE STAKE".
std::string StakeSeenText(const StakeSeen& seen);
/// The same for one line that may be cut at its end: what matters most comes first.
std::string StakeSeenShort(const StakeSeen& seen);
/// "N 0.006, E -0.004, EL 0.005, distance 0.007, within the tolerance".
std::string StakeDifferenceText(const StakeRecord& record);
/// Why it is not stored at once, and what stores it all the same.
std::string StakeDoubtText(const StakeDoubted& doubted);

using StationJson = std::function<Json(double station)>;
/// Without the station of a plain point; `elevationFrom` may be empty.
Json StakeSeenJson(const StakeSeen& seen, const StationJson& station,
                   const std::string& elevationFrom);
/// Its design, differences and verdict.
Json StakeRecordJson(const StakeRecord& record);
Json StakeStoredJson(const StakeStored& stored);

}  // namespace tarvex
