// What a person types as a point id, made once into what the coordinate file looks it up by.
#pragma once

#include <optional>
#include <string_view>

#include "core/points/point.h"

namespace tarvex {

struct PointKey {
  PointId id;            ///< as the file holds it: the number in decimal, or the normalised id
  long long number = 0;  ///< in a numeric file; any integer, also one that no point can have
  PointId typed;         ///< in an alphanumeric file, with the "-" and "," that an older program
                         ///< may have stored
};

/// The key of an id in a file of this layout; nothing for text that names no point there: no whole
/// number in a numeric file, nothing but blanks in an alphanumeric one.
std::optional<PointKey> MakePointKey(std::string_view id, bool alphanumeric);

/// The id after this one in a file of this layout, in steps of the increment, whether a point is
/// there or not.
std::string IdAfter(std::string_view id, long long increment, bool alphanumeric);

}  // namespace tarvex
