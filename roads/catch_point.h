// Where the cut or fill slope from the edge of a section meets the existing ground. Offsets are
// outward distances from the centerline on one side (>= 0), elevations absolute, both in the job's
// distance unit.
#pragma once

#include <optional>
#include <vector>

#include "roads/road_template.h"
#include "roads/section.h"

namespace tarvex {

/// The existing ground across one side of the road, outward: either a plane z = elevation + slope*u
/// or a polyline of rising offsets.
class GroundLine {
 public:
  struct Vertex {
    double offset = 0.0;
    double elevation = 0.0;
  };

  static GroundLine Plane(double elevationAtCenterline, double slope);
  /// Nothing when offsets fall or there are fewer than two vertices.
  static std::optional<GroundLine> Polyline(std::vector<Vertex> vertices);

  /// Nothing outside a polyline.
  std::optional<double> At(double offset) const;

  /// The first place from `from` to `to` (outward) where the line through (from, z) with `slope`
  /// meets the ground; at `from` itself only when it starts there.
  std::optional<Vertex> FirstMeeting(double from, double z, double slope, double to) const;
  /// Where the ground is known to; nothing when it goes on without end.
  std::optional<double> Reach() const;

 private:
  bool plane_ = true;
  double elevation_ = 0.0;
  double slope_ = 0.0;
  std::vector<Vertex> vertices_;
};

enum class EarthworkKind : int { None, Cut, Fill };

enum class [[nodiscard]] CatchResult : int {
  Caught = 1,
  OnGrade = 0,      ///< the edge lies on the ground, within 1 mm
  NoCatch = -1,     ///< the slope never meets the ground, or beyond 10000 units only
  NoGround = -2,    ///< the ground is not known at the edge of the surface
  GroundEnds = -3,  ///< no meeting within the ground that is known
  NoSlopes = -4     ///< the template has no slope for this kind on this side
};

/// The slope from the edge to the ground.
struct CatchPoint {
  CatchResult result = CatchResult::NoCatch;
  EarthworkKind kind = EarthworkKind::None;
  double hingeOffset = 0.0;  ///< last surface point
  double hingeElevation = 0.0;
  double slopeOffset = 0.0;  ///< where the slope starts: behind the ditch or berm
  double slopeElevation = 0.0;
  std::vector<SectionPoint> between;  ///< ditch or berm points, outward offsets
  std::vector<SectionPoint> breaks;   ///< of a stepped slope, between its bands
  double ratio = 0.0;                 ///< n of n:1 of the (last) slope
  int row = 0;                        ///< row of the table, from 1
  double offset = 0.0;                ///< the catch point
  double elevation = 0.0;
  double height = 0.0;          ///< between the start of the slope and the catch point
  bool ditchDaylights = false;  ///< the ditch came out above ground: taken as fill
  bool beyondRightOfWay = false;
};

CatchPoint FindCatchPoint(const RoadTemplate& section, const DesignSection& design, Side side,
                          const GroundLine& ground);

}  // namespace tarvex
