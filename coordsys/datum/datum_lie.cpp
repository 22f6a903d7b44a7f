#include "coordsys/datum/datum_lie.h"

#include <cmath>

#include "core/text.h"

namespace tarvex {

bool StandsOnWgs84(const ProjectionRecord& record) {
  const Ellipsoid ellipsoid = EllipsoidOf(record);
  return std::fabs(ellipsoid.semi_major_m - kWgs84.semi_major_m) < 0.001 &&
         std::fabs(ellipsoid.flattening - kWgs84.flattening) < 1e-10 &&
         FindIgnoringCase(record.datum_name.view(), "Intermediate") == std::string_view::npos;
}

}  // namespace tarvex
