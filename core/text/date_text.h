// Date and time as the files carry them.
#pragma once

#include <string>

#include "platform/clock.h"

namespace tarvex {

/// "12-05-2008": month, day, year.
std::string DateText(const LocalTime& time);
/// "14:03:59".
std::string TimeText(const LocalTime& time);

}  // namespace tarvex
