// The projection families, one row each. Whatever the rest of the system asks about a family is a
// field of its row: the reader and the writer of definitions, their check, the choice of the
// calculator's steps and the calculator itself know no family by name.
#pragma once

#include <array>
#include <memory>
#include <optional>
#include <span>
#include <string_view>

#include "coordsys/national_grids.h"
#include "coordsys/projections/projection.h"
#include "coordsys/projections/projection_types.h"

namespace tarvex {

/// Whether the formulas take the record's scale factor.
enum class ScaleFactorUse { Needed, NotUsed };

/// The point of the record that the formulas start from.
enum class ProjectionOrigin {
  OnCentralMeridian,  ///< latitude of origin, central meridian
  Centre,             ///< latitude and longitude of centre
};

/// How positions come from WGS84 to where the family projects them.
enum class FamilyDatum {
  OfRecord,   ///< by the shift of the definition or the job, to the record's datum
  Nad27Zone,  ///< the same, but a NAD27 datum by the NAD converter whatever the definition gives
  Wgs84,      ///< not at all: the shift is inside the family's computation, or in its grid
};

/// The national grid between the plane of projection and the official coordinates.
enum class NationalGridUse {
  AnyNamed,    ///< the family belongs to no country: the grid that the job names, or none
  Never,       ///< the family's own computation gives the official coordinates
  OwnIfNamed,  ///< the family's own, when the job names it
  Own,         ///< the family's own; a point without it is off by its correction, and that is said
  OwnOrNone,   ///< the family's own, and no coordinate without it
};

struct ProjectionFamily {
  ProjectionType type = {};
  std::string_view name;                         ///< in a definition; exact, letter case kept
  std::array<std::string_view, 2> aliases = {};  ///< read as well, never written

  /// One of the two makes the projection; the second one is of the families that the closed library
  /// computes.
  MadeProjection (*make)(const ProjectionParameters&) = nullptr;
  MadeProjection (*makeClosed)(const ProjectionParameters&,
                               const std::shared_ptr<ClosedLibrary>&) = nullptr;

  ScaleFactorUse scaleFactor = ScaleFactorUse::Needed;
  ProjectionOrigin origin = ProjectionOrigin::OnCentralMeridian;

  /// The parameters that a definition cannot go without; alternatives are behind "|".
  std::span<const std::string_view> parameters = {};
  /// What the field shared by the second standard parallel and the azimuth is written as.
  std::string_view parallel2Keyword = "standard_parallel_2";
  /// What is settled between the fields of a record after its definition was read; null for
  /// nothing.
  void (*settle)(ProjectionRecord&) = nullptr;

  FamilyDatum datum = FamilyDatum::OfRecord;
  NationalGridUse gridUse = NationalGridUse::AnyNamed;
  const NationalGrid* grid = nullptr;  ///< its own
  bool eastingsGrowWest = false;

  /// True for a grid that belongs to no system of this family.
  bool Refuses(const NationalGrid& named) const;
  /// True when the family's own grid is made without being named.
  bool TakesOwnGrid() const {
    return gridUse == NationalGridUse::Own || gridUse == NationalGridUse::OwnOrNone;
  }
};

/// All families, in the order of their numbers from 0.
std::span<const ProjectionFamily> ProjectionFamilies();

/// The family of a record's number. A number that no family has gives a row without a name, whose
/// projection cannot be made.
const ProjectionFamily& FamilyOf(int projectionType);

/// The name written into definitions; nothing for a number that no family has.
std::optional<std::string_view> ProjectionName(int code);

/// The type of a name or an alias, letter case kept; nothing for an unknown name.
std::optional<ProjectionType> ProjectionCode(std::string_view name);

}  // namespace tarvex
