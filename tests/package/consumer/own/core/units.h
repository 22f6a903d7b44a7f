// Units of the program that uses Tarvex; Tarvex has a file of the same name.
#pragma once

inline constexpr int kOwnUnits = 3;
