// Which settings a job can have, and what is wrong with those that it has.
#pragma once

#include <string>
#include <vector>

#include "core/job/job.h"
#include "core/job/settings.h"

namespace tarvex {

/// What is wrong with a job's settings, a sentence each: keys that the program does not know, with
/// the one that was probably meant, and values of receiver settings and limits that make no sense
/// and are not used. They stay in the file.
std::vector<std::string> UnknownSettings(const Settings& settings);

/// Why nothing may be stored: the job's unit is another than that in which its raw file was begun,
/// because the settings were lost or changed. A sentence; empty when they agree or there is no raw
/// file.
std::string UnitProblem(Job& job);

}  // namespace tarvex
