// The profile of a LandXML file as the road commands open it.
#pragma once

#include <optional>
#include <string>

#include "app/cli/program.h"
#include "core/units/units.h"
#include "roads/profile.h"
#include "roads/road.h"

namespace tarvex {

struct ProfileChoice {
  std::string file;
  std::string alignment;  ///< whose profile; empty when the file holds one alignment only
};

/// Nothing after a message: the file cannot be read, holds no such profile, or holds several
/// alignments and none is named. What the reader left out or assumed is given as warnings, and so
/// is a profile that runs beside the stations of the road.
std::optional<Profile> OpenProfile(Program& program, const ProfileChoice& choice,
                                   DistanceUnit unitOfRoad, const StationSpan& road);

}  // namespace tarvex
