// The national grids that the system knows by name: how a job chooses them and which files of the
// data folder they are.
#pragma once

#include <array>
#include <string_view>

namespace tarvex {

/// The labels under which national shifts are chosen.
inline constexpr std::string_view kFrenchGridLabel = "GR3DF97A";
inline constexpr std::string_view kDutchGridLabel = "NADCON";
inline constexpr std::string_view kHungarianGridLabel = "VITEL";
inline constexpr std::string_view kBelgianGridLabel = "Belge 1972 - xyGridLb72";

struct NationalGrid {
  std::string_view label;  ///< empty: chosen by the projection type alone
  std::string_view area;
  std::array<std::string_view, 3> files;  ///< east, north, height; or one; the others empty
};

inline constexpr NationalGrid kBritishGrid = {
    "", "Great Britain", {"ostn02_x.bin", "ostn02_y.bin", ""}};
inline constexpr NationalGrid kFrenchGrid = {kFrenchGridLabel, "France", {"gr3df97a.bin", "", ""}};
inline constexpr NationalGrid kDutchGrid = {
    kDutchGridLabel, "the Netherlands", {"X2c.grd", "Y2c.grd", ""}};
inline constexpr NationalGrid kHungarianGrid = {
    kHungarianGridLabel,
    "Hungary",
    {"HungarianEOV_dEast.grd", "HungarianEOV_dNorth.grd", "HungarianEOV_dHeight.grd"}};
inline constexpr NationalGrid kBelgianGrid = {
    kBelgianGridLabel, "Belgium", {"Belgium72_dEast.grd", "Belgium72_dNorth.grd", ""}};

/// The grid that a file of this name, without its folder, belongs to; null for any other name.
constexpr const NationalGrid* NationalGridOfFile(std::string_view name) {
  for (const NationalGrid* grid :
       {&kBritishGrid, &kFrenchGrid, &kDutchGrid, &kHungarianGrid, &kBelgianGrid}) {
    for (const std::string_view file : grid->files) {
      if (!file.empty() && file == name) return grid;
    }
  }
  return nullptr;
}

/// The pairs of .las and .los files that the NAD converter looks for, from the most local to the
/// widest.
inline constexpr std::array<std::string_view, 7> kNadconGrids = {
    "stgeorge", "stlrnc", "stpaul", "prvi", "hawaii", "alaska", "conus"};

}  // namespace tarvex
