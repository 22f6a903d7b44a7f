// How much alike two words are: for "did you mean" of names, keys and commands.
#pragma once

#include <cstddef>
#include <string_view>

namespace tarvex {

/// How many letters must be changed, added or dropped to make `a` of `b`, without regard to letter
/// case (Levenshtein).
std::size_t EditDistance(std::string_view a, std::string_view b);

}  // namespace tarvex
