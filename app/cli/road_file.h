// A centerline file as the road commands work with it: loaded, made into geometry, with its station
// equations and the profile that was asked for.
#pragma once

#include <optional>
#include <span>
#include <string>
#include <vector>

#include "app/cli/json_text.h"
#include "app/cli/program.h"
#include "app/cli/road_profile.h"
#include "core/units/units.h"
#include "exchange/road_picture.h"
#include "roads/alignment_check.h"
#include "roads/design_surface.h"
#include "roads/road.h"
#include "roads/road_geometry.h"

namespace tarvex {

/// Where design elevations come from, as it is said on the command line.
struct DesignOptions {
  ProfileChoice profile;
  std::string elevation;       ///< in place of the profile; a number as typed
  std::string section;         ///< template file
  std::string superelevation;  ///< "LEFT,RIGHT" in percent, as typed
  bool level = false;
};

/// What the person says about the file and how the road is to be shown.
struct RoadFileOptions {
  std::string file;
  std::string unit = "metres";
  std::string stations;
  DesignOptions design;
  bool useLimits = false;
  bool aheadFirst = false;
  bool json = false;
};

struct OpenedRoad {
  Road road;
  RoadGeometry geometry;
  DesignSurface design;
  DistanceUnit unit = DistanceUnit::Metres;
  CheckLimits limits;
  StationStyle style;
  StationSpan span;

  const Alignment& alignment() const { return geometry.alignment; }
  /// The displayed station.
  std::string StationText(double internal) const;
  /// Displayed and internal station, region.
  Json StationJson(double internal) const;
  /// True outside the station limits that the road uses.
  bool OutsideLimits(double internal) const;
  /// The alignment from above, with marks beside it.
  std::string Picture(const std::string& title, std::span<const PictureMark> marks = {}) const;
};

/// 1+234.500 in metres, 12+34.50 in feet.
StationStyle DefaultStationStyle(DistanceUnit unit);

/// Nothing after a message that names the file and the line.
std::optional<OpenedRoad> OpenRoad(Program& program, const RoadFileOptions& options);

/// Warns on the error output when elements should not be staked, once a command.
void WarnAboutFaults(Program& program, const OpenedRoad& road, const RoadFileOptions& options);

/// What a person must know about a design elevation: why there is none, a vertical step, a curve
/// without superelevation, a station or an offset that nothing was said for. Each a warning.
void WarnAboutElevation(Program& program, const OpenedRoad& road, const DesignElevation& design,
                        double station, double offset);

/// "EL 101.5880 (template)", "no design elevation (outside the profile)"; empty where no elevation
/// was asked for.
std::string ElevationText(const DesignElevation& design);
/// Adds where the elevation comes from, and the outer side of a vertical step.
void AddElevationSource(Json& json, const DesignElevation& design);

/// A typed station as an internal one; nothing after a message (no such station, two of them).
std::optional<double> FindStation(Program& program, const OpenedRoad& road,
                                  const std::string& entry);

/// "before the start", "after the end", "at an angle point", empty on the alignment.
std::string PlaceText(Place place);
/// The same with "on the alignment", as JSON names the place.
std::string PlaceName(Place place);

inline constexpr int kRoadDecimals = 4;

}  // namespace tarvex
