// The Hungarian EOV from and to WGS84: the shift to HD72, then the double cylindrical projection.
//
// A position is taken at ellipsoid height 0, as the two coordinates of the interface leave no other
// choice; at 300 m this moves the grid point by less than 3 mm.
#pragma once

#include <optional>

#include "coordsys/closed/coord_sys_interface.h"
#include "coordsys/projections/projection.h"

namespace tarvex {

class Eov {
 public:
  /// Constants that the parameters leave at 0 are the official ones: ellipsoid GRS 1967, centre 47
  /// 08 39.8174 north 19 02 54.8584 east, scale 0.99993, false origin 650,000 east 200,000 north,
  /// and for the shift the country-wide set of EPSG 1448.
  explicit Eov(const CoordSysParameters& parameters);

  std::optional<PlanePoint> FromWgs84(LatLon wgs84) const;
  std::optional<LatLon> ToWgs84(PlanePoint point) const;

 private:
  Ellipsoid ellipsoid_;
  CoordSysParameters parameters_;
  std::unique_ptr<const Projection> projection_;  ///< null when the parameters give none
};

}  // namespace tarvex
