#include "coordsys/datum/coincident_datums.h"

#include <cmath>

#include "core/text/text.h"

namespace tarvex {

bool CoincidesWithWgs84(const ProjectionRecord& record) {
  const Ellipsoid ellipsoid = EllipsoidOf(record);
  return std::fabs(ellipsoid.semiMajorM - kWgs84.semiMajorM) < 0.001 &&
         std::fabs(ellipsoid.flattening - kWgs84.flattening) < 1e-10 &&
         FindIgnoringCase(record.datumName.view(), "Intermediate") == std::string_view::npos;
}

}  // namespace tarvex
