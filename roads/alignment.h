// The horizontal geometry of a road: elements derived from the chain of key points, points at
// stations and offsets, stations and offsets of points.
//
// Units: the job's distance unit; angles in radians, azimuths from north clockwise; offsets and
// curvature are positive to the right of rising stations. Stations are internal ones (no equations,
// roads/station_equations.h).
//
// Where coordinates and stations of the file disagree, the coordinates win: elements run from key
// point to key point, and stations are spread evenly over each. What disagrees, and by how much,
// is in the residuals of each element (roads/alignment_check.h tells it in words); an element
// that is not `sound` should not be staked.
//
// Accuracy: 1e-8 of the unit for points and stations at coordinates up to 1e7, short of the centre
// of a curve, where stations are soft. Reference: clothoid by Taylor series, roads/curve_piece.h.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "core/text/outcome.h"
#include "core/units/units.h"
#include "roads/alignment_index.h"
#include "roads/centerline.h"
#include "roads/curve_piece.h"

namespace tarvex {

/// From when on a residual is shown, and when the element should not be staked; in the job's unit.
struct CheckLimits {
  double note = 0.001;
  double refuse = 0.02;
  double spiralRecord = 0.01;  ///< an "SP" whose chord misses by more is drawn as a chord
  double straight = 5e-5;      ///< an "SP" whose end bends by less ends straight: rounded numbers

  static CheckLimits For(DistanceUnit unit);
};

/// An arc or spiral whose tangent breaks by more (1 degree) at its start should not be staked: no
/// road has such a kink, a wrong centre or a missing key point has.
inline constexpr double kBrokenJoin = 0.0174533;

enum class ElementShape : int { Tangent, Arc, Spiral };

/// What is wrong with an element beyond a number that is a little off.
enum class ElementFault : int {
  None,
  NoCentre,        ///< a curve without a usable centre: drawn as its chord
  BrokenGroup,     ///< a "TS" without its "SC" and "CS": drawn as a chord
  SpiralUnknown,   ///< an "SP" that does not fit its own chord: drawn as a chord
  SpiralTooTight,  ///< a spiral that turns more than a full circle: drawn as a chord
};

/// How far the numbers of the file miss each other; a residual that does not apply is missing.
struct ElementResiduals {
  std::optional<double> length;        ///< tangent, arc: by coordinates minus by stations
  std::optional<double> endRadius;     ///< arc: distance end - centre minus radius
  std::optional<double> angle;         ///< arc: sweep minus the angle of the R line
  bool turnAgainstSign = false;        ///< arc: the centre and the angle's sign disagree
  std::optional<double> chord;         ///< spiral: by coordinates minus by radius and stations
  std::optional<double> azimuthField;  ///< the azimuth of "TS"/"ST" minus the spiral's own
  std::optional<double> join;          ///< azimuth minus the end azimuth of the element before

  bool operator==(const ElementResiduals&) const = default;
};

struct AlignmentElement {
  ElementShape shape = ElementShape::Tangent;
  ElementFault fault = ElementFault::None;
  std::size_t fromNode = 0;  ///< index in the chain of the key point that starts it
  std::size_t toNode = 0;
  double stationStart = 0.0;
  double stationEnd = 0.0;
  double length = 0.0;  ///< by coordinates
  double azimuthStart = 0.0;
  double azimuthEnd = 0.0;
  double curvatureStart = 0.0;
  double curvatureEnd = 0.0;
  PlanPoint center;  ///< arcs
  ElementResiduals residuals;
  bool sound = true;  ///< no fault, no residual beyond the refuse limit, no broken join

  double StationLength() const { return stationEnd - stationStart; }
  /// Parameter A of a spiral: A^2 = length / change of curvature. 0 for other shapes.
  double SpiralParameter() const;
};

/// Where a point lies against the alignment.
enum class Place : int {
  On,
  AtVertex,     ///< at an angle point, where no perpendicular exists
  BeforeStart,  ///< beside the first tangent, extended backward
  AfterEnd      ///< beside the last tangent, extended forward
};

struct AlignmentPoint {
  PlanPoint at;
  double azimuth = 0.0;  ///< of the alignment there; at an angle point the one ahead
  double curvature = 0.0;
  Place place = Place::On;
  std::size_t element = 0;
  bool sound = true;
};

struct StationOffset {
  double station = 0.0;
  double offset = 0.0;
  double distance = 0.0;  ///< to the nearest point of the alignment itself
  Place place = Place::On;
  std::size_t element = 0;
  bool sound = true;
};

/// Why a chain gives no alignment.
enum class AlignmentFault {
  Nothing,    ///< no two key points apart
  OutOfRange  ///< a number of a key point is infinite; its line is the place
};

class Alignment {
 public:
  static Outcome<Alignment, AlignmentFault> FromChain(std::span<const CenterlineElement> chain,
                                                      const CheckLimits& limits = {});

  const std::vector<AlignmentElement>& elements() const { return elements_; }
  double startStation() const { return elements_.front().stationStart; }
  double endStation() const { return elements_.back().stationEnd; }
  /// Length by coordinates of the whole alignment.
  double length() const;

  /// The point `offset` right of the alignment at a station; before the start and after the end on
  /// the extended tangents. Nothing for numbers that are not finite.
  std::optional<AlignmentPoint> PointAt(double station, double offset = 0.0) const;

  /// The point `along` the length of an element.
  PlanPoint PointOnElement(std::size_t element, double along) const;

  /// Station and offset of the nearest place of the alignment; at equal distances (1e-9) the lower
  /// station. Nothing for a point that is not finite.
  std::optional<StationOffset> Closest(const PlanPoint& point) const;

  /// Every place whose distance is a local minimum, the nearest first: there is always one, unless
  /// the point is not finite.
  std::vector<StationOffset> Candidates(const PlanPoint& point) const;

  /// The candidate to follow from one position to the next: the one nearest to the station before,
  /// unless another is more than 10 % closer to the alignment.
  std::optional<StationOffset> Follow(const PlanPoint& point, double stationBefore) const;

  /// Of Candidates: those within twice the best distance or 30 units, the best one included.
  static std::vector<StationOffset> WorthOffering(std::vector<StationOffset> candidates);

  /// Station of each node of the chain by the geometry alone, from the start station on.
  std::vector<double> GeometricStations(std::span<const CenterlineElement> chain) const;

 private:
  friend class AlignmentBuilder;

  struct ElementFoot {
    std::size_t element = 0;
    NearestOnPiece nearest;
  };

  std::optional<std::size_t> ElementAt(double station) const;
  double StationOn(std::size_t element, double along) const;
  StationOffset FromFoot(const PlanPoint& point, const ElementFoot& foot) const;
  StationOffset AtNode(const PlanPoint& point, std::size_t behind) const;
  StationOffset AtStart(const PlanPoint& point) const;
  void AddMissedFoot(const PlanPoint& point, std::vector<StationOffset>& sorted) const;
  std::optional<StationOffset> BeyondStart(const PlanPoint& point) const;
  std::optional<StationOffset> BeyondEnd(const PlanPoint& point) const;

  std::vector<AlignmentElement> elements_;
  std::vector<CurvePiece> pieces_;  // one an element
  std::vector<SpiralPanel> panels_;
  AlignmentIndex index_;
  bool stationsRise_ = true;
};

}  // namespace tarvex
