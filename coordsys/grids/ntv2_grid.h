// NTv2 grid-shift files (".gsb"): shifts of latitude and longitude from a local datum, with denser
// grids inside wider ones.
//
// Positions are radians, north and east positive. Forward is the file's own direction, from its
// SYSTEM_F to its SYSTEM_T (usually the local datum to WGS84), bilinear in the densest grid that
// holds the point, whichever way its longitude is spelt at the 180th meridian; the inverse finds
// the position whose forward shift leads back, to 1e-13 rad (6e-7 m). Either byte order is read; of
// the four numbers of a node the two shifts are kept, so that a grid costs half the memory of its
// file. A cell with a node that the file marks as without a shift (both shifts 0 with an accuracy
// below 0) has none. A node's shift is taken as a 32-bit float of radians, as the widely used
// readers take it, so that all agree to 1e-9 degree even on grids with shifts of degrees; a shift
// of 10" is then good to 0.02 mm. Source: Geodetic Survey of Canada, NTv2 developer's guide (1995).
#pragma once

#include <span>
#include <string>
#include <vector>

#include "coordsys/coordinates.h"
#include "coordsys/grids/grid_geometry.h"
#include "coordsys/grids/grid_status.h"
#include "core/codec/byte_codec.h"
#include "platform/file_bytes.h"

namespace tarvex {

enum class [[nodiscard]] GridShiftResult {
  Done,
  Outside,       ///< no grid holds the point
  NoCorrection,  ///< the nodes around the point carry no shift
};

/// One of the grids of a file: degrees, the first coordinate is the longitude, east positive.
struct Ntv2Part {
  std::string name;
  std::string parent;  ///< empty for a grid of its own
  GridGeometry geometry;
};

class Ntv2Grid {
 public:
  static GridStatus Load(FileSystem& files, const std::string& path, Ntv2Grid& grid);
  /// `path` is only for the error's text.
  static GridStatus Parse(FileBytes bytes, const std::string& path, Ntv2Grid& grid);

  /// The position is changed only when Done; the height stays.
  GridShiftResult Forward(Geodetic& position) const noexcept;
  GridShiftResult Inverse(Geodetic& position) const noexcept;

  /// Arrays of positions in place, of one length; NaN where the single position is refused. Returns
  /// how many were. Bit for bit what single positions give.
  std::size_t Forward(std::span<double> latitudeRad, std::span<double> longitudeRad) const noexcept;
  std::size_t Inverse(std::span<double> latitudeRad, std::span<double> longitudeRad) const noexcept;

  /// The names of the two systems, as the file gives them.
  const std::string& fromSystem() const { return fromSystem_; }
  const std::string& toSystem() const { return toSystem_; }
  std::size_t gridCount() const { return grids_.size(); }
  Ntv2Part Part(std::size_t index) const;

 private:
  friend class Ntv2Parser;

  struct SubGrid {
    std::string name;
    std::string parent;
    GridGeometry geometry;  // radians; the first coordinate is the longitude, west positive
    std::size_t firstNode = 0;
    std::vector<int> children;
  };
  struct Shift {
    double northRad = 0.0;
    double westRad = 0.0;
  };
  // In radians; a node without a shift holds NaN.
  struct Node {
    float north;
    float west;
  };

  // Four nodes of the grid in which a place lies, and where it lies between them.
  struct Around {
    const Node* south;  // east, west
    const Node* north;
    GridCell cell;
  };

  static Shift Interpolate(const GridCell& cell, const Node& se, const Node& sw, const Node& ne,
                           const Node& nw) noexcept;
  static Shift InterpolateBesideNone(const Around& around) noexcept;
  GridShiftResult ShiftAt(double latitude, double west, Shift& shift) const noexcept;
  GridShiftResult InverseAt(double& latitude, double& west) const noexcept;
  bool FindAround(double latitude, double west, Around& around) const noexcept;
  const SubGrid* Densest(double latitude, double west, GridCell& cell) const noexcept;

  std::string fromSystem_;
  std::string toSystem_;
  std::vector<SubGrid> grids_;
  std::vector<int> roots_;
  std::vector<Node> nodes_;  // of all grids
};

}  // namespace tarvex
