// The job's coordinate-system calculator. WGS84 latitude, longitude and ellipsoid height enter it;
// northing, easting and elevation of the job, in the job's distance unit, leave it, and back:
//
//   WGS84 -> datum shift -> projection -> grid correction -> localization -> job unit
//
// The elevation is the WGS84 height minus the geoid's undulation, or, without a geoid model, the
// ellipsoid height on the system's datum. A job's grid scale factor is not applied here.
//
// Nothing falls back silently: a datum shift that the definition asks for and that was not given
// is a refusal, a step that had to be left undone is part of the result.
#pragma once

#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "coordsys/calculation_steps.h"
#include "coordsys/catalogue/state_plane_zones.h"
#include "coordsys/coordinates.h"
#include "coordsys/definition/definition_reader.h"
#include "coordsys/message_box.h"
#include "coordsys/projections/projection.h"
#include "coordsys/projections/projection_families.h"
#include "core/points/point.h"
#include "core/units/units.h"

namespace tarvex {

enum class [[nodiscard]] CalculationResult : int {
  Done = 1,
  DoneInPart = 2,      ///< a point came out, but a step was left undone: see the report
  LibraryMissing = 0,  ///< the closed library that computes the projection cannot be loaded
  NotANumber = -1,
  NoSystem = -2,          ///< the calculator has no coordinate system
  NotAvailable = -3,      ///< the system cannot be made: see SystemText
  OutsideDomain = -4,     ///< the point lies where the projection does not hold
  NoDatumShift = -5,      ///< the datum is another than WGS84, and no step shifts it
  StepRefused = -6,       ///< a step could not be made: see the report
  NotConverging = -7,     ///< the height and the geoid did not settle
  NoGridCorrection = -8,  ///< the projection has no meaning without its national grid
};

enum class [[nodiscard]] ZoneSelection : int { Selected = 1, Rejected = 0 };

/// A result in a sentence.
std::string CalculationText(CalculationResult result);

enum class CalculationStep {
  Wgs84,
  DatumShift,
  Projection,
  GridCorrection,
  Localization,
  JobUnit,
  Geoid
};

struct GeoidUndulation {
  double undulationM = 0.0;
};

/// A value of the chain: a position, a point of the plane or the grid, or of the job in its unit.
using StepValue = std::variant<Geodetic, GridMetres, GridPoint, GeoidUndulation>;

struct ExplainedStep {
  CalculationStep step = CalculationStep::Wgs84;
  StepValue value;          ///< after the step
  std::string description;  ///< parameters, grid or geoid in words
  StepOutcome outcome;
  std::optional<double> pointScale;  ///< of the projection, where its family gives one
};

/// What a caller can have beside the result.
struct CalculationReport {
  std::vector<ExplainedStep> steps;
};

/// The steps given; one that is not there is not made.
struct CalculationSteps {
  std::shared_ptr<const DatumShift> datumShift = nullptr;
  std::shared_ptr<const GridCorrection> gridCorrection = nullptr;
  std::shared_ptr<const GeoidModel> geoid = nullptr;
  std::shared_ptr<const SiteLocalization> localization = nullptr;
};

/// What the steps that were left undone or refused say, in sentences; empty when all were made.
std::string UndoneText(const CalculationReport& report);

/// Why a point did not come out whole: which step was not made and why, else the result's sentence.
std::string CalculationText(CalculationResult result, const CalculationReport& report);

class CTrgCalculator {
 public:
  /// Reads a definition text into the record, whose fields keep their values where the text is
  /// silent (a new calculator's are all 0), and makes the projection. Steps given before stay;
  /// `messages` may be null. Returns 1, whatever the text gives: State() says what came of it.
  int ParseDefinition(std::string_view text, MessageBox* messages);

  /// Takes a record as it is.
  void SetRecord(const ProjectionRecord& record);

  /// Takes a built-in state-plane zone by its number in a group
  /// (coordsys/catalogue/state_plane_zones.h). A number above 27, or one that the group does not
  /// have, is rejected and nothing changes.
  ZoneSelection SelectZone(StatePlaneDatum datum, std::string_view group, int number);

  /// Whether the text said how its datum lies against WGS84 (TOWGS84). Without it the record's
  /// shift is what it was before, and a step made of those numbers would be a guess.
  bool definitionGivesShift() const { return givesShift_; }

  const ProjectionRecord& record() const { return record_; }
  const std::string& compoundName() const { return compoundName_; }

  void SetSteps(CalculationSteps steps) { steps_ = std::move(steps); }
  const CalculationSteps& steps() const { return steps_; }

  void SetDistanceUnit(DistanceUnit unit) { unit_ = unit; }
  DistanceUnit distanceUnit() const { return unit_; }

  /// Whether points can be converted: Done, NoSystem, NotAvailable, NoDatumShift or
  /// NoGridCorrection.
  CalculationResult State() const;
  /// What keeps the system from being used, in a sentence; empty when nothing does.
  std::string StateText() const;

  /// `point` and `wgs84` are written only for Done and DoneInPart.
  CalculationResult ToGrid(const Geodetic& wgs84, GridPoint& point,
                           CalculationReport* report = nullptr) const;
  CalculationResult ToWgs84(const GridPoint& point, Geodetic& wgs84,
                            CalculationReport* report = nullptr) const;

  /// Whole arrays of one length, the same to the bit as point by point, at half the time or less:
  /// a point is written only where its result is Done or DoneInPart.
  void ToGrid(std::span<const Geodetic> wgs84, std::span<GridPoint> points,
              std::span<CalculationResult> results) const;
  void ToWgs84(std::span<const GridPoint> points, std::span<Geodetic> wgs84,
               std::span<CalculationResult> results) const;

 private:
  struct Run;
  struct Block;

  bool TakesWgs84() const;
  bool ShiftsDatum() const;
  bool LacksNationalGrid() const;
  bool NeedsNationalGrid() const;
  CalculationResult ToSystemDatum(Geodetic& position, Run& run) const;
  CalculationResult FromSystemDatum(Geodetic& position, Run& run) const;
  CalculationResult OnDatum(const Geodetic& wgs84, Geodetic& position, double& elevationM,
                            Run& run) const;
  CalculationResult FromPlane(GridMetres metres, GridPoint& point, Run& run) const;
  CalculationResult ToPlane(const GridPoint& point, GridMetres& at, Run& run) const;
  CalculationResult FromDatum(Geodetic position, Geodetic& wgs84, Run& run) const;
  void BlockOnDatum(std::span<const Geodetic> wgs84, Block& block) const;
  void BlockFromDatum(Block& block) const;
  void SettleHeights(Block& block) const;
  CalculationResult CorrectGrid(GridMetres& at,
                                StepOutcome (GridCorrection::*way)(GridMetres&) const,
                                Run& run) const;
  CalculationResult SettleHeight(Geodetic onDatum, double elevationM, Geodetic& wgs84,
                                 Run& run) const;
  GridMetres InMetres(const GridPoint& point) const;
  GridPoint InJobUnit(const GridMetres& metres) const;

  bool hasSystem_ = false;
  bool givesShift_ = false;
  ProjectionRecord record_;
  const ProjectionFamily* family_ = &FamilyOf(0);
  std::string compoundName_;
  std::shared_ptr<const Projection> projection_;
  ProjectionFault fault_ = ProjectionFault::UnknownType;  ///< why there is no projection
  bool needsDatumShift_ = false;                          ///< of the record and its projection
  CalculationSteps steps_;
  DistanceUnit unit_ = DistanceUnit::Metres;
};

}  // namespace tarvex
