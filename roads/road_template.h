// A road's typical cross-section as its template file (".tpl", docs/formats/tpl.md) gives it: the
// finished surface on each side, the slopes that run out to the ground, superelevation, right of
// way.
//
// Widths, heights and elevation changes are in the job's distance unit, measured outward from the
// centerline; positive slopes rise outward. The template keeps the text that it was read from, so
// that writing it back unchanged loses nothing, not even unknown keys.
#pragma once

#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "roads/centerline.h"

namespace tarvex {

enum class Side : int { Left, Right };

enum class SlopeKind : int {
  Grade = 0,           ///< percent
  Ratio = 1,           ///< n of n:1, horizontal to vertical
  ElevationChange = 2  ///< over the whole segment
};

struct SurfaceSegment {
  double width = 0.0;
  SlopeKind kind = SlopeKind::Grade;
  double value = 0.0;
  std::string description;

  /// Change of elevation over the segment, outward.
  double Rise() const;

  bool operator==(const SurfaceSegment&) const = default;
};

/// A curb or median named where the surface has it.
struct SurfaceInsert {
  enum class Kind : int { Curb, Median };
  Kind kind = Kind::Curb;
  std::string name;
  std::size_t beforeSegment = 0;  ///< it is before this segment of its side

  bool operator==(const SurfaceInsert&) const = default;
};

struct Surface {
  double offset = 0.0;     ///< of the first point from the centerline, outward
  double elevation = 0.0;  ///< of the first point above the centerline
  std::vector<SurfaceSegment> segments;
  std::vector<SurfaceInsert> inserts;

  bool operator==(const Surface&) const = default;
};

/// A slope for heights up to a limit: n of n:1.
struct SlopeRow {
  double height = 0.0;
  double ratio = 0.0;

  bool operator==(const SlopeRow&) const = default;
};

/// No width, height or slope of a road is larger.
inline constexpr double kLargestTemplateNumber = 1e9;

/// At most this many rows; a further row replaces the last one.
inline constexpr std::size_t kMostSlopeRows = 5;

struct FillSide {
  std::vector<SlopeRow> slopes;
  double ditch = 0.0;
  int ditchKind = 0;
  double guardVertical = 0.0;
  double guardHorizontal = 0.0;

  bool operator==(const FillSide&) const = default;
};

struct CutSide {
  std::vector<SlopeRow> slopes;
  double rockSlope = 1.0;
  int rockOrder = 0;

  bool operator==(const CutSide&) const = default;
};

/// What fill and cut both have, once for both sides.
struct SlopeSettings {
  int ratio = 1;
  int smooth = 1;
  int series = 0;  ///< 0: one slope over the whole height; 1: a slope for each height band
  int pivot = 0;
  int tieExisting = 0;
  std::string existingDescription;
  int repeat = 0;

  bool operator==(const SlopeSettings&) const = default;
};

struct CutSettings : SlopeSettings {
  int depth = 1;
  int benchKind = 0;          ///< "BENCH1"; benches are kept for the file, no section has any
  double benchHeight = 10.0;  ///< "BENCH2"
  double benchWidth = 1.0;    ///< "BENCH3"

  bool operator==(const CutSettings&) const = default;
};

struct SubgradeSegment {
  SurfaceSegment segment;
  bool up = false;
  bool wrap = false;

  bool operator==(const SubgradeSegment&) const = default;
};

struct Subgrade {
  std::string material;
  std::string highPivot;
  int highType = 0;
  std::array<double, 3> highSlopes{};
  std::array<double, 3> lowSlopes{};
  std::string lowPivot;
  int lowType = 0;
  int direction = 0;
  double wrapHeight = 0.0;
  double offset = 0.0;
  double elevation = 0.0;
  std::vector<SubgradeSegment> segments;

  bool operator==(const Subgrade&) const = default;
};

struct Curb {
  std::string name;
  enum class Slope : int { Number, Flat, Match };
  double top = 0.0;
  double base = 0.0;
  Slope slopeKind = Slope::Number;
  double slope = 0.0;
  double taper = 0.0;
  double height1 = 0.0;
  double height2 = 0.0;
  double drop = 0.0;
  double width = 0.0;
  int unit = 0;
  int type = 0;
  std::string material;
  std::string integral;
  std::string round;

  bool operator==(const Curb&) const = default;
};

/// An "MGRADE" line, kept for the file: its two numbers and the two integers behind them.
struct MedianGrade {
  std::array<double, 2> numbers{};
  std::array<int, 2> codes{};

  bool operator==(const MedianGrade&) const = default;
};

struct Median {
  std::string name;
  std::vector<MedianGrade> grades;

  bool operator==(const Median&) const = default;
};

struct SuperelevationSettings {
  int lowAdjust = 0;
  double largestDifference = 7.0;  ///< roll-over limit between lane and shoulder, percent
  std::string lowPoint;
  std::string highPoint;
  std::string lowPoint2;
  std::string highPoint2;

  bool operator==(const SuperelevationSettings&) const = default;
};

struct RightOfWay {
  int retainLeft = 0;
  int retainRight = 0;
  double left = 0.0;
  double right = 0.0;

  bool operator==(const RightOfWay&) const = default;
};

struct RoadTemplate {
  std::array<Surface, 2> surface;
  std::array<std::vector<Subgrade>, 2> subgrade;
  std::array<FillSide, 2> fill;
  std::array<CutSide, 2> cut;
  SlopeSettings fillSettings;
  CutSettings cutSettings;
  std::vector<SurfaceSegment> ditch;
  std::vector<SurfaceSegment> berm;
  double bermDepth = 0.0;
  std::vector<Curb> curbs;
  std::vector<Median> medians;
  SuperelevationSettings super;
  RightOfWay rightOfWay;

  std::string text;             ///< the file, byte for byte
  std::vector<LineNote> notes;  ///< lines that were passed over
  /// The first line with a number beyond kLargestTemplateNumber, from 1; 0 for none. Such a
  /// template can be written back, but nothing is to be computed with it.
  int lineOutOfRange = 0;

  const Surface& SurfaceOf(Side side) const { return surface[static_cast<std::size_t>(side)]; }
  const FillSide& FillOf(Side side) const { return fill[static_cast<std::size_t>(side)]; }
  const CutSide& CutOf(Side side) const { return cut[static_cast<std::size_t>(side)]; }
  const Curb* FindCurb(std::string_view name) const;
  const Median* FindMedian(std::string_view name) const;

  bool operator==(const RoadTemplate&) const = default;
};

}  // namespace tarvex
